// The change event: which kind of change the user made, and what follows from it.
#include "wbs/sheet_events.h"

#include <cmath>
#include <string>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "gantt/chart.h"
#include "settings/settings.h"
#include "wbs/task_status.h"
#include "wbs/visible_rows.h"
#include "wbs/wbs_update.h"

namespace {

// The spreadsheet passes inserted or deleted rows as whole rows: from column A over at least the
// 256 columns of the oldest file format.
constexpr double kWholeRowColumns = 256;

// Rows inserted or deleted: renumber, recompute and, when a task stands at the row now, redraw
// from there down.
void ChangeWholeRows(std::int64_t row) {
    if (IsTaskRow(row)) {
        if (EngineSettings().rescheduleFlag != 0) {
            LoadResources();
        }
        TaskTable_Load();
        UpdatePass();
        RedrawTasksFromRow(row);
        return;
    }
    TaskTable_Load();
    UpdatePass();
}

// Task names removed from rows (cleared, or cells deleted with the rows below moving up). When a
// task moved up into the first row, the table is still whole and nothing is to be done.
// False when the rows were cleaned up: the filter is then not laid again.
bool ForgetDeletedRows(const XlObject& target) {
    const std::int64_t first = target.CellItem(1).GetRow();
    if (IsTaskRow(first)) {
        return true;
    }
    const auto rows = static_cast<std::int64_t>(std::nearbyint(target.GetNumber("Rows.Count")));
    for (std::int64_t k = rows; k >= 1; --k) {
        if (TaskRecord* record = Tasks_ByRow(first + k - 1)) {
            ForgetDeletedTask(*record, first + k - 1, k == 1);
        }
    }
    return false;
}

// An edit of cells. False for the cases that leave the filter lifted: a deletion cleaned up, or a
// row the last load has no task for.
bool ChangeCells(const XlObject& target, std::int64_t row, std::int64_t column,
                 std::int64_t lastRow) {
    const SettingsRecord& settings = EngineSettings();
    if (row < settings.firstTaskRow || row > lastRow || column < settings.firstColNo ||
        column > settings.lastColNo) {
        return true;
    }
    const std::int64_t loaded = EngineTasks().taskCount;
    const std::int64_t onSheet = TaskRowCount();
    if (onSheet < loaded) {
        return ForgetDeletedRows(target);
    }
    if (onSheet > loaded) {
        FillInsertedRow(target);
        return true;
    }
    TaskRecord* record = Tasks_ByRow(row);
    if (record == nullptr) {
        return false;
    }
    // The record may predate the user's last edits of the row.
    TaskRecord_ReadRow(*record);
    CompleteEditedRow(*record, target);
    return true;
}

}  // namespace

void OnSheetChange(const XlObject& target) {
    const SettingsRecord& settings = EngineSettings();
    if (settings.autoUpdateMode == 0) {
        return;
    }
    const std::int64_t lastRow = LastTableRow();
    const std::int64_t row = target.GetRow();
    if (row > lastRow) {
        return;
    }
    // Every task row is written to while the change is followed up.
    if (!settings.filterRows.empty()) {
        ApplyVisibleRows("");
    }
    const std::int64_t column = target.GetColumn();
    if (column == 1 && target.GetNumber("Columns.Count") >= kWholeRowColumns) {
        ChangeWholeRows(row);
    } else if (!ChangeCells(target, row, column, lastRow)) {
        return;
    }
    if (!settings.filterRows.empty()) {
        ApplyVisibleRows(settings.filterRows);
    }
}

void ForgetDeletedTask(TaskRecord& record, std::int64_t row, bool isLast) {
    DeleteTaskShapes(record);
    // As an ordinary task the row loses the colour of a summary.
    record.isLeaf = 1;
    ColourTaskRow(record);
    const SettingsRecord& settings = EngineSettings();
    const std::string number = std::to_string(row);
    const XlObject sheet = EngineWbsSheet();
    sheet.RangeOf(settings.firstCol + number + ":" + settings.lastCol + number).ClearContents();
    const XlObject marker = sheet.ShapeByName(kStatusMarkerPrefix + number);
    if (!marker.IsNothing()) {
        marker.Delete();
    }
    if (isLast) {
        TaskTable_Load();
        if (const TaskRecord* last = Tasks_Last()) {
            RedrawTaskBranch(*last, false);
        }
        DrawAllConnectors();
    }
}
