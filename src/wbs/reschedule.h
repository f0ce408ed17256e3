// Rescheduling: with the settings' reschedule flag set, the update pass places every ordinary task
// that has not started yet one after another per resource, within the calendar day of the task's
// top-level group. Predecessor links do not place tasks; the pass only checks them.
#pragma once

#include <cstdint>

#include "calendar/calendar.h"
#include "wbs/task_table.h"

// Places one ordinary task whose resource was found, moving the resource's next-free time on.
// A started task keeps its dates and frees the resource at its actual end (when complete) or its
// planned end; a task without planned work is left alone. Only the planned-start and planned-end
// cells are written, as times of day; the caller reads the row again afterwards.
void PlaceTask(TaskRecord& task, ResourceRecord& resource, const CalendarDay* currentDay);

// Writes the planned start and end of the task on `row` as times of day (the fraction left when
// the whole days are taken off), as the date columns hold them: the reader adds the group's day
// back, and a time before the day's working start (a task running past midnight) is read as the
// next day.
void WritePlannedTimesOfDay(std::int64_t row, double start, double end);
