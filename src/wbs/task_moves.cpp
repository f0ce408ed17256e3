#include "wbs/task_moves.h"

#include <cmath>
#include <string>

#include "calendar/task_tests.h"
#include "com/text.h"
#include "core/engine_state.h"
#include "gantt/chart.h"
#include "settings/settings.h"
#include "values/values.h"
#include "wbs/reschedule.h"
#include "wbs/task_table.h"
#include "wbs/wbs_update.h"

namespace {

// The host's "shift cells down" for inserting rows.
constexpr int kShiftDown = -4121;

// The selected rows: `count` whole rows from `first`.
struct RowSelection {
    std::int64_t first = 0;
    std::int64_t count = 0;
};

// Nothing to move in a table of fewer than two tasks.
bool TooFewTasks() {
    return EngineTasks().taskCount < 2;
}

RowSelection ReadSelection() {
    const XlObject selection = EngineWorkbook().GetObjectPath(".Application.Selection");
    // The count is a double in the host; it is taken to the nearest whole number, ties to even.
    const double count = std::nearbyint(selection.GetNumber("Rows.Count"));
    return {selection.CellItem(1).GetRow(), static_cast<std::int64_t>(count)};
}

std::string RowSpan(std::int64_t first, std::int64_t last) {
    return std::to_string(first) + ":" + std::to_string(last);
}

// The row just below the selection, and the rows above it, decide whether taking the block out
// and putting it back one row away leaves every task at most one level below the task above it.
bool MoveBreaksOutline(const RowSelection& selection, std::int64_t delta) {
    const SettingsRecord& settings = EngineSettings();
    const std::int64_t f = selection.first;
    const std::int64_t n = selection.count;
    const TaskRecord* aboveTwo = Tasks_ByRow(f - 2);
    const TaskRecord* above = Tasks_ByRow(f - 1);
    const TaskRecord* first = Tasks_ByRow(f);
    const TaskRecord* below = Tasks_ByRow(f + n);
    if (above != nullptr && below != nullptr && below->level - above->level > 1) {
        return true;
    }
    if (delta < 0) {
        return f <= settings.firstTaskRow ||
               (f == settings.firstTaskRow + 1 && first->level != 1) ||
               (aboveTwo != nullptr && first->level - aboveTwo->level > 1);
    }
    return f + n >= settings.firstTaskRow + EngineTasks().taskCount ||
           (below != nullptr && first->level - below->level > 1);
}

bool IndentBreaksOutline(const RowSelection& selection, std::int64_t delta) {
    const TaskRecord* previous = Tasks_ByRow(selection.first - 1);
    const TaskRecord* first = Tasks_ByRow(selection.first);
    if (delta > 0) {
        return first->level > previous->level || first->level == kNameColumns;
    }
    // A child right under the selection would lose its parent.
    const TaskRecord* last = Tasks_ByRow(selection.first + selection.count - 1);
    const TaskRecord* next = Tasks_ByRow(selection.first + selection.count);
    return first->level == 1 || (last != nullptr && next != nullptr && next->level > last->level);
}

// What every accepted move ends with: the outline is read again from the sheet, the WBS numbers,
// work, checks, colours and roll-ups follow it, and the chart is redrawn from the row above the
// selection, whose task may have gained or lost children.
void UpdateAfterMove(const RowSelection& selection) {
    LoadResources();
    TaskTable_Load();
    UpdatePass();
    RedrawTasksFromRow(selection.first - 1);
}

}  // namespace

std::int64_t MoveTasks(std::int64_t delta) {
    if (TooFewTasks()) {
        return 0;
    }
    const RowSelection selection = ReadSelection();
    if (Tasks_ByRow(selection.first) == nullptr || MoveBreaksOutline(selection, delta)) {
        return 0;
    }
    const std::int64_t f = selection.first;
    const std::int64_t n = selection.count;
    const XlObject sheet = EngineWbsSheet();
    sheet.Call(".Rows(%S).Cut", Widen(RowSpan(f, f + n - 1)).c_str());
    const std::int64_t target = delta > 0 ? f + n + 1 : f - 1;
    sheet.Call(".Rows(%S).Insert(%d)", Widen(RowSpan(target, target)).c_str(), kShiftDown);
    sheet.Call(".Rows(%S).Select", Widen(RowSpan(f + delta, f + delta + n - 1)).c_str());
    UpdateAfterMove(selection);
    return 1;
}

std::int64_t IndentTasks(std::int64_t delta) {
    if (TooFewTasks()) {
        return 0;
    }
    const RowSelection selection = ReadSelection();
    // The first task row can be neither indented nor outdented.
    if (selection.first <= EngineSettings().firstTaskRow ||
        Tasks_ByRow(selection.first) == nullptr || IndentBreaksOutline(selection, delta)) {
        return 0;
    }
    const XlObject sheet = EngineWbsSheet();
    const std::int64_t nameColumn = EngineSettings().taskNameColNo;
    for (std::int64_t row = selection.first; row < selection.first + selection.count; ++row) {
        TaskRecord* task = Tasks_ByRow(row);
        if (task == nullptr) {
            continue;
        }
        // The name is read now: the record may not have been read since the last load.
        TaskRecord_ReadRow(*task);
        const std::int64_t column = nameColumn + task->level - 1;
        sheet.Cell(row, column + delta)
            .SetWide("Value", WideStringView(BstrGet(task->nameCell),
                                             static_cast<std::size_t>(BstrLength(task->nameCell))));
        sheet.Cell(row, column).ClearContents();
    }
    UpdateAfterMove(selection);
    return 1;
}

std::int64_t OffsetTasks(std::int64_t a, std::int64_t b) {
    if (TooFewTasks()) {
        return 0;
    }
    const RowSelection selection = ReadSelection();
    const SettingsRecord& settings = EngineSettings();
    if (selection.first <= settings.firstTaskRow) {
        return 0;
    }
    const XlObject sheet = EngineWbsSheet();
    for (std::int64_t row = selection.first; row < selection.first + selection.count; ++row) {
        TaskRecord* task = Tasks_ByRow(row);
        if (task == nullptr) {
            continue;
        }
        TaskRecord_ReadRow(*task);
        if (IsTaskStarted(*task) || task->isLeaf != 1) {
            continue;
        }
        // The cells hold times of the group's day; no date is added for the shift.
        const double start = sheet.Cell(row, settings.plannedStartDateColNo).GetValueNum();
        const auto work = static_cast<std::int64_t>(
            std::nearbyint(sheet.Cell(row, settings.pvByTaskColNo).GetValueNum()));
        const double newStart = values::AddMinutes(start, a * b);
        WritePlannedTimesOfDay(row, newStart, values::AddMinutes(newStart, work));
    }
    RedrawTasksFromRow(selection.first - 1);
    return 1;
}
