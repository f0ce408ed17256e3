#include "cli/workbook_check.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "cli/workbook_layout.h"
#include "gantt/gantt.h"
#include "sheethost/address.h"
#include "sheethost/cell_values.h"
#include "sheethost/formula.h"
#include "values/values.h"

using sheethost::Sheet;
using sheethost::Workbook;

namespace {

// The template shapes every drawing copies its look from; without one, that drawing step fails.
constexpr std::array<std::string_view, 9> kTemplateShapes{"GanntBar",
                                                          "GanntBar%",
                                                          "GanntBar100%",
                                                          "TaskConnector",
                                                          "ProgressLines",
                                                          "WSDependsCheckError",
                                                          "WSTaskColorStyleDelay",
                                                          "WSTaskColorStyleEnd",
                                                          "WSTaskColorStyleStart"};

// The first row of the calendar's days and of the resources; the rows above are headings.
constexpr int kFirstCalendarRow = 3;

std::shared_ptr<Sheet> SheetByCode(const Workbook& book, std::string_view codeName) {
    for (const auto& sheet : book.sheets) {
        if (sheet->codeName == codeName) return sheet;
    }
    return nullptr;
}

std::string CellPlace(const Sheet& sheet, int row, int column) {
    return sheethost::QuotedSheetName(sheet.name) + "!" + sheethost::ColumnLetters(column) +
           std::to_string(row);
}

// Column letters as the engine takes them: upper case only, within the sheet's columns.
bool IsColumnLetters(std::string_view text) {
    return !text.empty() && text.size() <= 3 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= 'A' && c <= 'Z'; }) &&
           sheethost::ColumnNumber(text) > 0;
}

bool IsWholeNumber(std::string_view text) {
    const auto number = sheethost::TextToNumber(text);
    return number && *number == std::floor(*number);
}

// Why the value of a setting of `kind` is meaningless, or nothing when it makes sense.
std::optional<std::string> Meaningless(SettingKind kind, const std::string& text) {
    switch (kind) {
        case SettingKind::kSheetName:
        case SettingKind::kSeparator:
            if (text.empty()) return "it is empty";
            return std::nullopt;
        case SettingKind::kOptionalColumn:
            if (text.empty()) return std::nullopt;
            [[fallthrough]];
        case SettingKind::kColumn:
            if (IsColumnLetters(text)) return std::nullopt;
            return "'" + text +
                   "' is not a column; give column letters such as B or AB, in upper case";
        case SettingKind::kCellAddress:
        case SettingKind::kRangeAddress: {
            const auto area = sheethost::ParseArea(text);
            const bool oneCell = area && area->Rows() == 1 && area->Columns() == 1;
            if (area && (kind == SettingKind::kRangeAddress || oneCell)) return std::nullopt;
            return "'" + text + "' is not " +
                   (kind == SettingKind::kCellAddress ? "a cell address such as N1"
                                                      : "a range address such as W5:DA44");
        }
        case SettingKind::kRow:
            if (IsWholeNumber(text) && values::TextToInteger(text) >= 1) return std::nullopt;
            return "'" + text + "' is not a row number; give a whole number, 1 or more";
        case SettingKind::kNumber:
            if (IsWholeNumber(text)) return std::nullopt;
            return "'" + text + "' is not a whole number";
        case SettingKind::kFlag:
            if (text == "0" || text == "1") return std::nullopt;
            return "'" + text + "' is neither 0 (off) nor 1 (on)";
        case SettingKind::kUnit:
            if (IsWholeNumber(text) && values::TextToInteger(text) > 0) return std::nullopt;
            return "'" + text + "' is not a number of minutes more than 0 (60 for an hour per " +
                   "chart column, 1440 for a day)";
        case SettingKind::kBarStyle:
            if (IsWholeNumber(text) && values::TextToInteger(text) >= 0 &&
                values::TextToInteger(text) <= 6)
                return std::nullopt;
            return "'" + text + "' is not a bar style from 0 (plain) to 6";
    }
    return std::nullopt;
}

// The named settings as the engine will read them, by key.
struct SettingsRead {
    std::vector<std::pair<std::string_view, std::string>> values;

    std::optional<std::string> Find(std::string_view key) const {
        for (const auto& [name, text] : values) {
            if (name == key) return text;
        }
        return std::nullopt;
    }
};

class LayoutCheck {
  public:
    explicit LayoutCheck(const Workbook& book) : book_(book) {}

    std::vector<Finding> Run() {
        for (const SheetRole& role : SheetRoles()) {
            if (SheetByCode(book_, role.codeName) == nullptr) {
                Add(role.required, "the workbook",
                    "no sheet has the code name " + std::string(role.codeName) + " (" +
                        std::string(role.role) + ")");
            }
        }
        if (const auto settings = SheetByCode(book_, "wsSettings")) {
            CheckSettings(settings);
            CheckTemplates(*settings);
            if (const auto wbs = SheetByCode(book_, "wsWBS")) CheckTaskTable(*wbs);
        }
        if (const auto calendar = SheetByCode(book_, "wsCalendar")) CheckCalendar(*calendar);
        return std::move(findings_);
    }

  private:
    void Add(bool blocking, std::string place, std::string text) {
        findings_.push_back(Finding{blocking, std::move(place), std::move(text)});
    }

    void CheckSettings(const std::shared_ptr<Sheet>& settings) {
        for (const SettingCell& setting : SettingCells()) {
            const std::string key(setting.key);
            const auto range = sheethost::ResolveAddress(book_, settings, key);
            const bool named = sheethost::FindName(settings->names, key) != nullptr ||
                               sheethost::FindName(book_.names, key) != nullptr;
            if (!named || !range || range->sheet != settings || range->areas.empty()) {
                Add(setting.required, sheethost::QuotedSheetName(settings->name),
                    "no cell of this sheet is named " + key + " (" + std::string(setting.meaning) +
                        ")" + (setting.required ? "" : "; the engine reads it as empty"));
                continue;
            }
            const sheethost::Area& cell = range->areas.front();
            const std::string text = sheethost::DisplayText(
                sheethost::CellDisplayValue(book_, *settings, cell.top, cell.left));
            read_.values.emplace_back(setting.key, text);
            if (const auto why = Meaningless(setting.kind, text)) {
                Add(setting.required, CellPlace(*settings, cell.top, cell.left), key + ": " + *why);
            }
        }
        const auto tableName =
            sheethost::ResolveAddress(book_, settings, std::string(kTaskTypeTable));
        if (!tableName || tableName->sheet != settings) {
            Add(false, sheethost::QuotedSheetName(settings->name),
                "no range of this sheet is named TaskType (task types and the text shown once "
                "such a task has started); typed tasks get no label");
        }
    }

    void CheckTemplates(const Sheet& settings) {
        for (std::string_view name : kTemplateShapes) {
            const bool found = std::any_of(settings.shapes.begin(), settings.shapes.end(),
                                           [&](const auto& shape) { return shape->name == name; });
            if (!found) {
                Add(false, sheethost::QuotedSheetName(settings.name),
                    "no template shape named " + std::string(name) +
                        "; the drawings that copy its look draw nothing");
            }
        }
    }

    void CheckTaskTable(const Sheet& wbs) {
        if (const auto name = read_.Find("WSWBSSheetName");
            name && !name->empty() && !sheethost::SameName(*name, wbs.name)) {
            Add(false, sheethost::QuotedSheetName(wbs.name),
                "WSWBSSheetName says '" + *name + "', but the task sheet's tab is named '" +
                    wbs.name + "'");
        }
        const auto firstRow = read_.Find("WSFirstTaskRow");
        const auto lastCol = read_.Find("WSLastCol");
        const auto dateRow = read_.Find("WSCalendarDateRow");
        if (!firstRow || !lastCol || Meaningless(SettingKind::kRow, *firstRow) ||
            !IsColumnLetters(*lastCol)) {
            return;
        }
        const int row = static_cast<int>(values::TextToInteger(*firstRow));
        const int column = sheethost::ColumnNumber(*lastCol);
        if (dateRow && !Meaningless(SettingKind::kRow, *dateRow) &&
            row <= values::TextToInteger(*dateRow)) {
            Add(true, CellPlace(wbs, row, column),
                "WSFirstTaskRow " + *firstRow + " is not below the chart's date row " + *dateRow);
            return;
        }
        const auto& right = sheethost::EffectiveStyle(wbs, row, column)
                                ->borders[sheethost::xl::kEdgeRight - sheethost::xl::kDiagonalDown];
        if (right.lineStyle == sheethost::xl::kNone) {
            Add(true, CellPlace(wbs, row, column),
                "the first task row " + *firstRow +
                    " lies outside the task table: the table's "
                    "rows are those whose last column (" +
                    *lastCol + ") has a right border");
        }
    }

    void CheckCalendar(const Sheet& calendar) {
        int row = kFirstCalendarRow;
        double previous = 0;
        for (;; ++row) {
            const sheethost::Value date = sheethost::CellDisplayValue(book_, calendar, row, 2);
            if (sheethost::DisplayText(date).empty()) break;
            const auto* serial = std::get_if<double>(&date);
            if (serial == nullptr) {
                Add(true, CellPlace(calendar, row, 2),
                    "'" + sheethost::DisplayText(date) + "' is not a date");
                continue;
            }
            if (*serial <= previous) {
                Add(false, CellPlace(calendar, row, 2),
                    "the day is not after the day above it; top-level tasks take the days in "
                    "order");
            }
            previous = *serial;
            const auto start = sheethost::CellDisplayValue(book_, calendar, row, 3);
            const auto end = sheethost::CellDisplayValue(book_, calendar, row, 4);
            const auto* from = std::get_if<double>(&start);
            const auto* to = std::get_if<double>(&end);
            if (from == nullptr || to == nullptr || !(*to > *from)) {
                Add(false, CellPlace(calendar, row, 3),
                    "the working period (start in C, end in D) is empty or ends before it starts");
            }
        }
        if (row == kFirstCalendarRow) {
            Add(true, CellPlace(calendar, row, 2),
                "the calendar has no days: give one working day a row from row 3 (date in B, "
                "start and end time in C and D)");
            return;
        }
        for (const auto& [ref, cell] : calendar.cells) {
            if (ref.column == 2 && ref.row > row &&
                !sheethost::DisplayText(sheethost::CellDisplayValue(book_, calendar, ref.row, 2))
                     .empty()) {
                Add(false, CellPlace(calendar, row, 2),
                    "row " + std::to_string(row) + " is empty, so the days from row " +
                        std::to_string(ref.row) + " on are not read");
                break;
            }
        }
    }

    const Workbook& book_;
    SettingsRead read_;
    std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> CheckLayout(const Workbook& book) {
    return LayoutCheck(book).Run();
}

bool AnyBlocking(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.blocking; });
}

std::string FindingText(const Finding& finding) {
    return finding.place + ": " + finding.text;
}
