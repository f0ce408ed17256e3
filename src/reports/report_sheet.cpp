#include "reports/report_sheet.h"

#include <charconv>

#include "core/engine_state.h"
#include "values/values.h"

namespace {

constexpr int kXlContinuous = 1;
constexpr int kXlLineStyleNone = -4142;
constexpr int kXlColorIndexAutomatic = -4105;
constexpr int kXlCenter = -4108;
constexpr int kXlDiagonalDown = 5;
constexpr int kXlDiagonalUp = 6;
constexpr int kXlEdgeLeft = 7;
constexpr int kXlEdgeRight = 10;
constexpr int kXlInsideVertical = 11;
constexpr int kXlInsideHorizontal = 12;
constexpr int kXlCellValue = 1;
constexpr int kXlLess = 6;
constexpr int kRed = 3;
constexpr int kLightGreen = 35;
constexpr int kXlSolid = 1;
constexpr int kXlCategory = 1;
constexpr int kXlValue = 2;
constexpr int kXlPrimary = 1;
constexpr int kXlCategoryScale = 2;
constexpr int kXlLineMarkers = 65;
constexpr int kXlLocationAsObject = 2;
constexpr int kReportZoom = 85;

constexpr int kKeyColumn = 2;
constexpr int kTextColumn = 3;

// The digits of text[first, first + count) as a number; 0 when they are not all digits.
int DigitsAt(std::string_view text, std::size_t first, std::size_t count) {
    int number = 0;
    if (first + count > text.size()) return 0;
    const char* begin = text.data() + first;
    const auto [end, error] = std::from_chars(begin, begin + count, number);
    return error == std::errc() && end == begin + count ? number : 0;
}

}  // namespace

WideString ReplaceFirst(WideStringView text, WideStringView find, WideStringView replacement) {
    const std::size_t at = find.empty() ? WideStringView::npos : text.find(find);
    if (at == WideStringView::npos) return WideString(text);
    WideString replaced(text.substr(0, at));
    replaced.append(replacement).append(text.substr(at + find.size()));
    return replaced;
}

std::string IfErrorFormula(std::string_view expr, std::string_view alt) {
    std::string formula = "IF(ISERROR(";
    formula.append(expr).append("),").append(alt).append(",").append(expr).append(")");
    return formula;
}

std::string RowFormula(std::string_view formula, std::int64_t row) {
    std::string built;
    for (const char c : formula) {
        if (c == '#') {
            built += std::to_string(row);
        } else {
            built += c;
        }
    }
    return built;
}

double DateFromText(std::string_view text) {
    const bool separated = text.find('/') != std::string_view::npos;
    // A month label gets the first day; the longer day label keeps its own.
    std::string full(text);
    full += separated ? "/01" : "01";
    full.resize(separated ? 10 : 8, ' ');
    const int year = DigitsAt(full, 0, 4);
    const int month = separated ? DigitsAt(full, 5, 2) : DigitsAt(full, 4, 2);
    const int day = separated ? DigitsAt(full, 8, 2) : DigitsAt(full, 6, 2);
    return values::DateSerial(year, month, day);
}

ReportDictionary::ReportDictionary()
    // The binding is only for this report, so its reference is released with the object.
    : sheet_(SheetByCodeName("wsDictionary").object()),
      functions_(EngineWorkbook().GetObject("Application.WorksheetFunction")) {}

WideString ReportDictionary::Text(std::string_view key) const {
    const XlObject keys = sheet_.RangeOf("B:B");
    const auto row = static_cast<std::int64_t>(
        functions_.GetNumberPath(".Match(%S,%o,%d)", Widen(key).c_str(), keys.object(), 0));
    // A key the sheet lacks costs one refused read of its own row and gives the empty text.
    return sheet_.Cell(row, row > 0 ? kTextColumn : kKeyColumn).GetWide("Value");
}

void ReportDictionary::Write(const XlObject& sheet, std::int64_t row, std::int64_t column,
                             std::string_view key) const {
    sheet.Cell(row, column).SetWide("Value", Text(key));
}

XlObject OpenReportSheet(std::string_view name) {
    const XlObject workbook = EngineWorkbook();
    XlObject sheet = workbook.GetObjectArg("Sheets(%s)", name);
    if (sheet.IsNothing()) {
        sheet = workbook.GetObjectPath(".Sheets.Add");
        sheet.SetString("Name", name);
        return sheet;
    }
    sheet.Call(".Cells.Clear");
    // From the last shape down, so that no deletion moves a shape not yet visited.
    for (auto index = static_cast<int>(sheet.GetNumberPath(".Shapes.Count")); index >= 1; --index) {
        sheet.ShapeAt(index).Delete();
    }
    return sheet;
}

void SetEdgeBorder(const XlObject& range, int index, int weight) {
    range.SetNumberArg("Borders(%d).LineStyle", index, kXlContinuous);
    range.SetNumberArg("Borders(%d).Weight", index, weight);
    range.SetNumberArg("Borders(%d).ColorIndex", index, kXlColorIndexAutomatic);
}

void DrawBox(const XlObject& range) {
    range.SetNumberArg("Borders(%d).LineStyle", kXlDiagonalDown, kXlLineStyleNone);
    range.SetNumberArg("Borders(%d).LineStyle", kXlDiagonalUp, kXlLineStyleNone);
    for (const int edge : {kXlEdgeLeft, kXlEdgeTop, kXlEdgeBottom, kXlEdgeRight}) {
        SetEdgeBorder(range, edge, kXlMedium);
    }
    SetEdgeBorder(range, kXlInsideVertical, kXlThin);
    SetEdgeBorder(range, kXlInsideHorizontal, kXlThin);
}

void AddLessThanRed(const XlObject& range, std::string_view threshold) {
    range.Call(".FormatConditions.Delete");
    range.Call(".FormatConditions.Add(%d,%d,%S)", kXlCellValue, kXlLess, Widen(threshold).c_str());
    range.Put(".FormatConditions(%d).font.ColorIndex=%d", 1, kRed);
}

void FillHeader(const XlObject& range) {
    range.SetNumber("Interior.ColorIndex", kLightGreen);
    range.SetNumber("Interior.Pattern", kXlSolid);
}

void CentreHeader(const XlObject& range) {
    range.SetNumber("HorizontalAlignment", kXlCenter);
    range.SetNumber("VerticalAlignment", kXlCenter);
    FillHeader(range);
}

void FinishReportSheet(const XlObject& sheet, WideStringView title) {
    sheet.Call(".Cells.Select");
    sheet.Call(".Cells.EntireColumn.AutoFit");
    sheet.Cell(1, 2).SetWide("value", title);
    sheet.Put(".Columns(%d).ColumnWidth = %d", 1, 1);
    sheet.Call(".Activate");
}

void ZoomReport() {
    EngineWorkbook().Put(".Application.ActiveWindow.Zoom = %d", kReportZoom);
}

XlObject AddReportChart(const XlObject& sheet, WideStringView title, std::string_view source,
                        int plotBy) {
    const XlObject chart = EngineWorkbook().GetObjectPath(".Charts.Add");
    chart.Put(".HasTitle=%d", -1);
    chart.SetWide("ChartTitle.Characters.Text", title);
    chart.Put(".HasAxis(%d,%d)=%b", kXlCategory, kXlPrimary, TRUE);
    chart.Put(".HasAxis(%d,%d)=%b", kXlValue, kXlPrimary, TRUE);
    chart.Put(".Axes(%d,%d).CategoryType=%d", kXlCategory, kXlPrimary, kXlCategoryScale);
    chart.Put(".ChartType = %d", kXlLineMarkers);
    const XlObject range = sheet.RangeOf(source);
    chart.Call(".SetSourceData(%o,%d)", range.object(), plotBy);
    return chart.GetObjectPath(".Location(%d,%S)", kXlLocationAsObject,
                               Widen(sheet.GetName()).c_str());
}

WideString EvmReportTitle(const ReportDictionary& dictionary, double now) {
    return ReplaceFirst(dictionary.Text("EVMRPT"), OLESTR("\\*"),
                        Widen(values::FormatDate(values::Fix(now), "yyyymmdd")));
}
