// Editing the outline through the user's selection of rows on the task sheet: moving the selected
// tasks up or down by one row as a block, indenting or outdenting them by one level, and shifting
// their planned times. Each answers 1 when it changed the sheet and 0 when it refused, silently and
// with nothing changed, because the move would break the outline or the table holds fewer than
// two tasks. The checks use the task table as the last load left it.
#pragma once

#include <cstdint>

// Cuts the selected rows and inserts them one row higher (delta -1) or lower (+1), selects them
// again, then updates the WBS and redraws from the row above the selection.
std::int64_t MoveTasks(std::int64_t delta);

// Moves each selected task's name one name column right (delta +1, one level deeper) or left
// (-1), so the structure inside the selection is kept; then updates the WBS and redraws.
std::int64_t IndentTasks(std::int64_t delta);

// Shifts the planned start of every selected ordinary task that has not started by a x b minutes
// and puts its planned end its planned work (minutes) later. Only times of day are written, so a
// shift past midnight keeps the time after midnight. The next update recomputes work and checks.
std::int64_t OffsetTasks(std::int64_t a, std::int64_t b);
