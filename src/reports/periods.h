// The reporting periods of the project reports: their labels, the days each one covers, and the
// day counting the reports spread work with.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct TaskRecord;

// The kinds of period a planner asks for.
enum PeriodKind : int {
    kEveryStepDays = 1,    // a period every `step` days, labels "yyyy/mm/dd"
    kWeeksFromMonday = 2,  // labels "yyyy/mm/dd" of each Monday
    kCalendarMonths = 3,   // labels "yyyy/mm"
};

// The labels from the period holding `start` to the one holding `end`, in time order. Any other
// kind gives none; a step below 1 counts as 1.
std::vector<std::string> PeriodLabels(int kind, int step, double start, double end);

// The span of period `index`: from its first day (the project start for the first period) to
// the first day of the next one, or to the day after `end` for the last.
struct PeriodSpan {
    double start = 0.0;
    double limit = 0.0;
};
PeriodSpan PeriodAt(const std::vector<std::string>& labels, std::size_t index, double projectStart,
                    double end);

// The working days from the day of `from` to the day of `to`, both included; 0 when `to` falls
// on an earlier day. Whole days are counted, so a task from 08:00 to 09:30 is one day wherever
// a period boundary falls within its day.
std::int64_t WorkdaysBetween(double from, double to);

// The n-th working day counted from `start` (itself the first), as AddWorkdays forward finds it,
// in one walk instead of one count per candidate day. n below 1 counts as 1.
double NthWorkday(double start, std::int64_t n);

// Reads every task's row into its record, with its duration in whole days: the duration column
// when the workbook has one, else the working days of its planned dates.
void ReadReportTasks();

// The latest planned end of the tasks (and, when asked, actual start or end), at least `floor`.
double LatestTaskDate(double floor, bool withActualDates);
