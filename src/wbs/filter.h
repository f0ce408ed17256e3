// The WBS filter: hides the task rows that do not match the filter the workbook's filter dialog
// writes into cell "A500" of the settings sheet, as "MODE,ARGUMENT". Summary tasks above a match
// and tasks linked to it can be kept visible too (the settings' two filter options). The rows
// left visible are kept in the settings' `filterRows`, so that the update and the rescheduling can
// show every row while they write and hide the same rows again afterwards.
#pragma once

#include <cstdint>
#include <string>

#include "wbs/task_table.h"

// The settings cell the filter dialog writes.
inline constexpr char kFilterCell[] = "A500";

// What a task must satisfy to stay visible, by mode:
//   0 everything is shown (no filter)
//   1 a resource cell of the task is one of the names of the argument, each between commas
//   2 the argument KEY,FROM,TO: planned dates (KEY 1) or actual dates (KEY 2) overlap FROM..TO,
//     or, for another KEY, the value of the column named by the settings cell "WS" KEY "Col"
//     lies in FROM..TO (FROM or TO 0 leaves that side open)
//   3 the task has a type and is not a recurring task
//   4 not complete although it should have begun (planned value above 0)
//   5 complete
//   6 top-level tasks; with argument "1" every summary task too
//   7 the task names predecessors
//   8 over cost: cost performance index below 1
//   9 ahead of schedule: schedule performance index above 1, or earned value before any is planned
//  10 behind schedule: schedule performance index below 1
//  11 in the first half of its planned time
//  12 in the last half of its planned time
//  13 a recurring task (its resource cell names a cycle, "W2", "M")
// Any other mode matches nothing. Only mode 6 matches summary tasks.
struct FilterSetting {
    std::int64_t mode = 0;
    std::string argument;
    // The whole cell text, in which mode 1 looks for ",name,".
    std::string text;
};

// The filter the user chose, as "MODE,ARGUMENT" in the settings sheet's filter cell. Without a
// comma the mode is 0.
FilterSetting ReadFilterSetting();
FilterSetting ParseFilterSetting(std::string text);

// The body of kpWBSFilter: builds the list, applies it and keeps it as the filter in force.
void FilterCommand();
// The rows to keep visible (",12,5,13,"; rows may repeat), or the empty text for mode 0. Reads
// every task's row first, so the tests see the sheet as it stands.
std::string BuildFilterList();
// The mode test. Computes the task's earned-value figures.
bool MatchesFilter(TaskRecord& task, const FilterSetting& setting);
// The rows of the tasks that name the task on `row` as a predecessor, each followed by ",".
std::string DependentRows(std::int64_t row);
