// The Gantt chart on the task sheet: each task's line of bars and labels, the connectors of its
// predecessor links, and the partial redraws that commands changing a few rows use.
//
// Every shape of a task's line is named after the bar template and the task's row ("GanntBar12A",
// "GanntBar12B", ...) and every connector after the connector template and its successor's row,
// so a redraw finds the old shapes by name, deletes them and leaves no duplicates. The task table
// and the settings must be loaded.
#pragma once

#include <cstdint>

#include "gantt/gantt.h"
#include "wbs/task_table.h"

// Deletes every bar and label of the sheet, draws every task of the table in table order, then
// every connector.
void DrawAllTaskBars();
// Draws the line of one task (reading its row again first): bars or typed symbols, progress and
// label. A task without a planned start gets nothing. The places of cells already read by the
// same drawing come from `geometry`.
void DrawTaskBars(TaskRecord& task, ChartGeometry& geometry);
void DrawTaskBars(TaskRecord& task);

// Deletes the row's bar-prefixed shapes "A", "B", ... up to the first missing letter; true when
// at least one was deleted.
bool DeleteRowShapes(std::int64_t row);
bool DeleteTaskShapes(const TaskRecord& task);
// Updates and redraws the task's ancestors from the top level down to the task itself; then every
// connector when `redrawConnectors` is true.
void RedrawTaskBranch(const TaskRecord& task, bool redrawConnectors);
// Redraws the branch at `row`, then each following row that holds a task or had shapes, then
// every connector.
void RedrawTasksFromRow(std::int64_t row);

// Deletes every connector of the sheet and draws those of every task in table order.
void DrawAllConnectors();
// One connector per item of the task's predecessors cell; references to no task are skipped.
void DrawTaskConnectors(const TaskRecord& task);
