#include <cmath>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "settings/settings.h"
#include "values/values.h"

bool IsHoliday(double, const ResourceRecord*) {
    return false;
}

bool IsHolidayCancelled(double, const ResourceRecord*) {
    return false;
}

std::int64_t CountWorkdays(double from, double to, const ResourceRecord* resource,
                           std::int64_t& adjust) {
    // A bound that is no number would never end the walk.
    if (!std::isfinite(from) || !std::isfinite(to)) return 0;
    std::int64_t count = 0;
    for (double day = from; !(day > to); day += 1.0) {
        if (!IsHoliday(day, nullptr)) {
            if (IsHoliday(day, resource)) {
                --adjust;  // the resource's own day off
            } else {
                ++count;
            }
        } else if (IsHolidayCancelled(day, nullptr)) {
            ++count;
        } else if (IsHolidayCancelled(day, resource)) {
            ++adjust;  // the resource works on a common holiday
            ++count;
        }
    }
    return count;
}

double AddWorkdays(double date, std::int64_t n, std::int64_t step, const ResourceRecord* resource) {
    if (n < 1) n = 1;
    // A step of 0 would never reach a second working day.
    if (step == 0 || !std::isfinite(date)) return date;
    std::int64_t scratch = 0;
    for (double day = date;; day += static_cast<double>(step)) {
        const std::int64_t count = step == 1 ? CountWorkdays(date, day, resource, scratch)
                                             : CountWorkdays(day, date, resource, scratch);
        if (count >= n) return day;
    }
}

std::int32_t DateToColumn(double t) {
    const SettingsRecord& settings = EngineSettings();
    const std::int64_t unit = EngineCalendarSettings().CSCalendarUnit;
    // The settings load refuses a zero unit, so a command never gets here with one.
    if (unit == 0) return static_cast<std::int32_t>(settings.calendarFirstColNo);
    // The upper bound first, so a project that ends before it starts maps everything to its start.
    if (!(settings.projectEnd >= t)) t = settings.projectEnd;
    if (!(t >= settings.projectStart)) t = settings.projectStart;
    // The minutes and the quotient are each kept as 32 bits, as the chart's column arithmetic is.
    const auto minutes =
        static_cast<std::int32_t>(values::MinutesBetween(settings.projectStart, t));
    const auto quotient = static_cast<std::int32_t>(minutes / unit);
    return static_cast<std::int32_t>(quotient + settings.calendarFirstColNo);
}
