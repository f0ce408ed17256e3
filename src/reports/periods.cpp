#include "reports/periods.h"

#include <algorithm>
#include <cmath>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "reports/report_sheet.h"
#include "settings/settings.h"
#include "values/values.h"
#include "wbs/task_table.h"

namespace {

double DayOf(double serial) {
    return std::floor(serial);
}

// Monday = 1 ... Sunday = 7; day serial 2 (1 January 1900) was a Monday.
int WeekdayFromMonday(double serial) {
    const auto days = static_cast<std::int64_t>(DayOf(serial));
    return static_cast<int>(((days - 2) % 7 + 7) % 7) + 1;
}

}  // namespace

std::vector<std::string> PeriodLabels(int kind, int step, double start, double end) {
    std::vector<std::string> labels;
    if (kind == kEveryStepDays) {
        // A step of 0 would never move on.
        const std::int64_t days = std::max(step, 1);
        double day = NthWorkday(start, 1);
        labels.push_back(values::FormatDate(day, "yyyy/mm/dd"));
        for (day = NthWorkday(day, days + 1); day <= end; day = NthWorkday(day, days + 1)) {
            labels.push_back(values::FormatDate(day, "yyyy/mm/dd"));
        }
    } else if (kind == kWeeksFromMonday) {
        double monday = start - (WeekdayFromMonday(start) - 1);
        labels.push_back(values::FormatDate(monday, "yyyy/mm/dd"));
        for (monday += 7; monday <= end; monday += 7) {
            labels.push_back(values::FormatDate(monday, "yyyy/mm/dd"));
        }
    } else if (kind == kCalendarMonths) {
        labels.push_back(values::FormatDate(start, "yyyy/mm"));
        const values::DateTime first = values::SerialToDateTime(start);
        for (int month = first.month + 1;; ++month) {
            const double day = values::DateSerial(first.year, month, 1);
            if (day > end) break;
            labels.push_back(values::FormatDate(day, "yyyy/mm"));
        }
    }
    return labels;
}

PeriodSpan PeriodAt(const std::vector<std::string>& labels, std::size_t index, double projectStart,
                    double end) {
    PeriodSpan span;
    span.start = index == 0 ? projectStart : DateFromText(labels[index]);
    span.limit = index + 1 < labels.size() ? DateFromText(labels[index + 1]) : end + 1;
    return span;
}

std::int64_t WorkdaysBetween(double from, double to) {
    std::int64_t adjust = 0;
    return CountWorkdays(DayOf(from), DayOf(to), nullptr, adjust);
}

double NthWorkday(double start, std::int64_t n) {
    if (!std::isfinite(start)) return start;
    std::int64_t adjust = 0;
    std::int64_t count = 0;
    for (double day = start;; day += 1.0) {
        count += CountWorkdays(day, day, nullptr, adjust);
        if (count >= n) return day;
    }
}

void ReadReportTasks() {
    const SettingsRecord& settings = EngineSettings();
    const XlObject sheet = EngineWbsSheet();
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        TaskRecord_ReadRow(*task);
        if (settings.durationColNo > 0) {
            task->durationText = sheet.Cell(task->row, settings.durationColNo).GetValue();
        } else if (task->plannedStart != 0 && task->plannedEnd != 0) {
            task->durationText =
                std::to_string(WorkdaysBetween(task->plannedStart, task->plannedEnd));
        } else {
            task->durationText.clear();
        }
    }
}

double LatestTaskDate(double floor, bool withActualDates) {
    double latest = floor;
    for (const TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        latest = std::max(latest, task->plannedEnd);
        if (withActualDates) latest = std::max({latest, task->actualStart, task->actualEnd});
    }
    return latest;
}
