// What the three reports share: the report sheet (found by name or added, emptied when reused),
// the captions of the dictionary sheet, the border and red-marking recipes, the finishing of a
// sheet, the line charts, and a few text operations.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "com/text.h"
#include "workbook/workbook.h"

// Enumeration values of the spreadsheet program that the reports use.
inline constexpr int kXlMedium = -4138;
inline constexpr int kXlThin = 2;
inline constexpr int kXlEdgeTop = 8;
inline constexpr int kXlEdgeBottom = 9;

// The text with the first occurrence of `find` replaced; unchanged when it does not occur.
WideString ReplaceFirst(WideStringView text, WideStringView find, WideStringView replacement);
// "IF(ISERROR(expr),alt,expr)": a division by zero shows `alt` (the caller adds the "=").
std::string IfErrorFormula(std::string_view expr, std::string_view alt);
// The formula with every "#" replaced by the decimal row number: RowFormula("=E#-D#", 7) is
// "=E7-D7".
std::string RowFormula(std::string_view formula, std::int64_t row);
// The two-character text "" that shows as an empty cell.
inline constexpr std::string_view kEmptyText = "\"\"";
// A period label read back as a date: "2024/03/15" is that day, "2024/03" the first of March;
// the same without separators ("20240315", "202403").
double DateFromText(std::string_view text);

// The report captions: column B of the sheet whose code name is "wsDictionary" holds the keys,
// column C the texts. The sheet is bound while the object lives.
class ReportDictionary {
  public:
    ReportDictionary();
    // A missing key (or a missing sheet) gives the empty text, never an error.
    WideString Text(std::string_view key) const;
    void Write(const XlObject& sheet, std::int64_t row, std::int64_t column,
               std::string_view key) const;

  private:
    XlObject sheet_;
    XlObject functions_;
};

// The worksheet of that name in the engine's workbook, emptied of its cells and shapes (the charts
// of an earlier run go with them); a new sheet of that name when there is none.
XlObject OpenReportSheet(std::string_view name);

// A continuous line of the given weight and automatic colour on one edge of the range.
void SetEdgeBorder(const XlObject& range, int index, int weight);
// No diagonals, a medium frame and thin lines inside.
void DrawBox(const XlObject& range);
// The range's conditional formats replaced by one: values below the threshold in red.
void AddLessThanRed(const XlObject& range, std::string_view threshold);
// A light green solid fill.
void FillHeader(const XlObject& range);
// The fill, and the text centred both ways.
void CentreHeader(const XlObject& range);

// What every report does once its table is written: columns fitted, the title in B1, column A a
// narrow margin, and the sheet shown.
void FinishReportSheet(const XlObject& sheet, WideStringView title);
// The report's window zoomed to 85 %.
void ZoomReport();

// A line chart with markers over `source` (an address on the report sheet), placed on the sheet
// as an object; `plotBy` 1 takes the series from rows, 2 from columns. Returns the chart.
XlObject AddReportChart(const XlObject& sheet, WideStringView title, std::string_view source,
                        int plotBy);

// The title of the earned-value reports with the date put in place of its placeholder.
WideString EvmReportTitle(const ReportDictionary& dictionary, double now);
