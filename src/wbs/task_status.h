// The status colours of a task row: completed tasks grey, summary tasks in the colour of their
// level, a frame around the predecessors cell of a task with a violated link, and a small marker in
// the name cell of an ordinary task that is late, in the last half or in the first half of its
// planned time. Colours and markers come from template shapes of the settings sheet.
#pragma once

#include <string>

#include "wbs/task_table.h"

// Shape names on the task sheet, with the row appended ("TaskStatus12"). The misspelling "Depand"
// is the workbook's own.
inline constexpr char kStatusMarkerPrefix[] = "TaskStatus";
inline constexpr char kDependencyFramePrefix[] = "TaskDepandS";

// Recolours the task's row from its record (read the row first). The row's old marker and frame
// are deleted first, so recolouring leaves at most one of each.
void ColourTaskRow(TaskRecord& task);

// Fills the task's earned-value figures (bac, ac, pv, ev, cv, sv, cpi, spi, eac, etc) as of now.
// Planned value counts the minutes elapsed since the planned start until the planned end has
// passed, and the whole budget after it.
void ComputeTaskEvm(TaskRecord& task);
