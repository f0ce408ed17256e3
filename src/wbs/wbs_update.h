// The WBS update: the pass that every command changing the task sheet ends with. For each task in
// sheet order it writes the WBS number, turns an ordinary task's dates into planned and actual
// work in minutes, checks the task's resource and predecessor links (one message per finding),
// recolours the row, and gives every summary task formulas that roll its children up.
#pragma once

#include <string>
#include <string_view>

#include "wbs/task_table.h"

// The walk over every task of the loaded table. Places tasks first when the settings' reschedule
// flag is set.
void UpdatePass();

// Reads the task's row, then writes it back (WriteBackTask).
void UpdateTask(TaskRecord& task);
// The write-back of one task whose record holds what its row shows: WBS number, frozen values,
// work in minutes, dependency check, row colours and, for a top-level summary, the roll-up
// formulas of its whole subtree.
void WriteBackTask(TaskRecord& task);

// One piece of a predecessors cell: the task it names (by code or WBS number) and the link type.
struct LinkReference {
    std::string reference;
    std::string type;
};

// "3ss" names task 3 with an "SS" link; a piece ending in a digit ("3", "1.2") has no type and is
// a finish-to-start link. Any other ending is taken as a type, so "Design" reads as type "GN" on
// "Desi". Characters are counted as the host counts them (UTF-16 units), not as bytes.
LinkReference ParseLink(std::string_view piece);

// Checks every predecessor named in the task's predecessors cell ("3", "3ss", "Design,1.2FF"):
// sets `dependencyError` when one of the links is violated, clears it otherwise. Unknown
// references are skipped silently.
void CheckPredecessors(TaskRecord& successor);
// Tests one link of `type` ("FS", "FF", "SS", "SF"; any other type tests nothing) after reading the
// predecessor's row again; a violation sets the successor's `dependencyError`.
void CheckLink(TaskRecord& predecessor, TaskRecord& successor, std::string_view type);

// Writes the roll-up formulas of `summary` and of every summary below it.
void SummaryRollup(const TaskRecord& summary);
// Writes the seven roll-up formulas of a summary row. `childRows` lists the direct children's rows
// as "*13,*15": replacing "*" by a column's letters gives that column's cells of the children.
void WriteSummaryFormulas(const TaskRecord& summary, std::string_view childRows);

// IF(x=0,"",x): a roll-up that shows nothing rather than 0.
std::string IfZeroEmpty(std::string_view x);
// IF(ISERROR(x),y,x): a guarded division, as the reports write it.
std::string IfErrorThen(std::string_view x, std::string_view y);
