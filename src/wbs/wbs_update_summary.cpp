#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/engine_state.h"
#include "settings/settings.h"
#include "wbs/wbs_update.h"
#include "workbook/workbook.h"

namespace {

// The spreadsheet's empty text, as a formula writes it.
constexpr std::string_view kEmptyText = "\"\"";

// The cell addresses of the children in the column with `letters`, in list order.
std::vector<std::string> ChildCells(std::string_view childRows, std::string_view letters) {
    std::vector<std::string> cells;
    std::string cell;
    for (const char c : childRows) {
        if (c == ',') {
            cells.push_back(cell);
            cell.clear();
        } else if (c == '*') {
            cell += letters;
        } else {
            cell += c;
        }
    }
    if (!childRows.empty()) {
        cells.push_back(cell);
    }
    return cells;
}

std::string Joined(const std::vector<std::string>& pieces) {
    std::string text;
    for (const std::string& piece : pieces) {
        if (!text.empty()) {
            text += ',';
        }
        text += piece;
    }
    return text;
}

std::string RollUp(std::string_view function, std::string_view childRows,
                   std::string_view letters) {
    return "=" +
           IfZeroEmpty(std::string(function) + "(" + Joined(ChildCells(childRows, letters)) + ")");
}

// Empty until every child has an actual end, then the latest of them.
std::string ActualEndRollUp(std::string_view childRows, std::string_view letters) {
    const std::vector<std::string> cells = ChildCells(childRows, letters);
    std::vector<std::string> emptyTests;
    for (const std::string& cell : cells) {
        emptyTests.push_back(cell + "=" + std::string(kEmptyText));
    }
    return "=IF(OR(" + Joined(emptyTests) + ")," + std::string(kEmptyText) + ",MAX(" +
           Joined(cells) + "))";
}

// The children's percentages weighted by their planned values; N() makes empty cells count as 0.
std::string PercentRollUp(std::string_view childRows, std::string_view percentLetters,
                          std::string_view pvLetters, std::string_view ownPvCell) {
    std::vector<std::string> weighted;
    for (const std::string& percentCell : ChildCells(childRows, percentLetters)) {
        const std::string row = percentCell.substr(percentLetters.size());
        weighted.push_back("N(" + percentCell + ")*N(" + std::string(pvLetters) + row + ")");
    }
    const std::string own(ownPvCell);
    return "=IF(N(" + own + ")=0," + std::string(kEmptyText) + ",SUM(" + Joined(weighted) + ")/" +
           own + ")";
}

}  // namespace

std::string IfZeroEmpty(std::string_view x) {
    const std::string expression(x);
    return "IF(" + expression + "=0," + std::string(kEmptyText) + "," + expression + ")";
}

std::string IfErrorThen(std::string_view x, std::string_view y) {
    const std::string expression(x);
    return "IF(ISERROR(" + expression + ")," + std::string(y) + "," + expression + ")";
}

void WriteSummaryFormulas(const TaskRecord& summary, std::string_view childRows) {
    const SettingsRecord& settings = EngineSettings();
    const std::pair<std::int64_t, std::string> formulas[] = {
        {settings.plannedStartDateColNo, RollUp("MIN", childRows, settings.plannedStartDateCol)},
        {settings.plannedEndDateColNo, RollUp("MAX", childRows, settings.plannedEndDateCol)},
        {settings.actualStartDateColNo, RollUp("MIN", childRows, settings.actualStartDateCol)},
        {settings.actualEndDateColNo, ActualEndRollUp(childRows, settings.actualEndDateCol)},
        {settings.pvByTaskColNo, RollUp("SUM", childRows, settings.pvByTaskCol)},
        {settings.acByTaskColNo, RollUp("SUM", childRows, settings.acByTaskCol)},
        {settings.percentCompleteColNo,
         PercentRollUp(childRows, settings.percentCompleteCol, settings.pvByTaskCol,
                       settings.pvByTaskCol + std::to_string(summary.row))}};
    const XlObject sheet = EngineWbsSheet();
    // Seven neighbouring columns, as the usual layout has them, take their formulas in one call:
    // a formula text put as a value is entered as the formula.
    const auto [low, high] =
        std::ranges::minmax(formulas, {}, [](const auto& f) { return f.first; });
    std::set<std::int64_t> columns;
    for (const auto& formula : formulas) columns.insert(formula.first);
    if (columns.size() == std::size(formulas) &&
        high.first - low.first + 1 == std::ssize(formulas) && low.first >= 1 &&
        high.first <= kSheetColumns && summary.row >= 1 && summary.row <= kSheetRows) {
        CellValues block(1, std::ssize(formulas));
        for (const auto& [column, formula] : formulas)
            block.SetText(0, column - low.first, formula);
        WriteCellBlock(sheet, summary.row, low.first, block);
        return;
    }
    for (const auto& [column, formula] : formulas) {
        sheet.Cell(summary.row, column).SetFormula(formula);
    }
}

void SummaryRollup(const TaskRecord& summary) {
    std::string childRows;
    for (const TaskRecord* next = Tasks_Next(summary); next != nullptr; next = Tasks_Next(*next)) {
        if (!IsDescendant(summary, *next)) {
            // A summary without children before its next sibling still gets its formulas, over
            // an empty cell list.
            WriteSummaryFormulas(summary, childRows);
            return;
        }
        if (IsChild(summary, *next)) {
            childRows += (childRows.empty() ? "*" : ",*") + std::to_string(next->row);
        }
        if (next->isLeaf == 0) {
            SummaryRollup(*next);
        }
    }
    if (!childRows.empty()) {
        WriteSummaryFormulas(summary, childRows);
    }
}
