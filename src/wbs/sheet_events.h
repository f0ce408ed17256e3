// The task sheet kept consistent while the user types. With the auto-update mode of the settings
// on, the workbook's macros pass every change of the task sheet here: an edited cell of a task row
// may complete other cells of its row, whole rows inserted or deleted renumber and redraw the
// table, a row typed below the last task gets default times and a resource, rows cleared take
// their shapes with them. A selection in the chart area shows in the status bar what the selected
// cells stand for.
//
// Both work on the settings and the task table as the last command loaded them.
#pragma once

#include "wbs/task_table.h"
#include "workbook/workbook.h"

// The sheet's change event with the changed range.
void OnSheetChange(const XlObject& target);

// The sheet's selection-change event with the selected range. When the selection lies in the
// chart columns of a task row, the status bar shows the time span the selected chart cells stand
// for beside the task's outline number, name, planned times, work and percent; anywhere else the
// status bar is given back to the program. It changes no cell and no shape.
void OnSelectionChange(const XlObject& target);

// The follow-ups of one edited cell of a task row, used by OnSheetChange.

// An ordinary task's row completed after an edit in `column`: the percent, actual start and actual
// end agree with one another, and a planned or actual end follows from start plus work.
void CompleteRowCells(TaskRecord& record, std::int64_t column);
// CompleteRowCells for an ordinary task, then the redraw: the connectors when the predecessors
// changed, else the task's branch.
void CompleteEditedRow(TaskRecord& record, const XlObject& target);
// Clean-up of one task row whose name was removed: its shapes, colours, cells and status marker.
// The last of a deletion reloads the table and redraws the connectors.
void ForgetDeletedTask(TaskRecord& record, std::int64_t row, bool isLast);
// Defaults for a task typed below the last one: start at the last task's end, one chart column
// of work, the last task's resource.
void FillInsertedRow(const XlObject& target);
