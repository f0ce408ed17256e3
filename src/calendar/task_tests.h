// Tests on a task's dates and progress, and the readings of its name and resource cells, shared by
// scheduling, colouring, filtering, drawing and the reports. "Now" is the engine's clock.
#pragma once

#include <string>

struct TaskRecord;

// Percent complete above 0, or an actual start set.
bool IsTaskStarted(const TaskRecord& task);
// Percent complete above 99; a task with an actual finish has its percent text set to "100" first.
bool IsTaskComplete(TaskRecord& task);
bool ActualStartIsPlanned(const TaskRecord& task);
bool ActualFinishIsPlanned(const TaskRecord& task);
bool ActualDatesArePlanned(const TaskRecord& task);
bool TaskHasType(const TaskRecord& task);
// planned start <= now < planned start + half the planned minutes
bool IsTaskInFirstHalf(const TaskRecord& task);
// planned finish - half the planned minutes <= now < planned finish
bool IsTaskInLastHalf(const TaskRecord& task);
// The schedule variance of the task's earned-value figures is below 0.
bool IsTaskBehind(const TaskRecord& task);
// The task code: the name up to the first of ":|,_-#", the whole name when none occurs.
std::string TaskNameHead(const TaskRecord& task);
// A resource cell beginning with "W" or "M" marks a recurring (cycle) task: the letter becomes
// the cycle unit and the number after it (1 when there is none) the cycle count. Otherwise the
// unit is emptied and the count is 1. True for a cycle task.
bool ParseTaskCycle(TaskRecord& task);
