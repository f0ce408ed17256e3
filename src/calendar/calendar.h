// The working calendar: the calendar settings, the calendar days of the calendar sheet (one row a
// day with its working period), working-day arithmetic and the mapping of a point in time to a
// chart column. Points in time are date serials; differences are whole minutes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "calendar/resources.h"

// The CS* cells of the settings sheet. The texts are kept as found; the whole numbers are the
// cell texts read by the runtime's string-to-integer rule.
struct CalendarSettings {
    std::string CSFirstdayCol;
    std::string CSLastdayCol;
    std::string CSHolidayCol;
    std::string CSWorkdayCol;
    std::string CSMonth1stdayCol;
    std::string CSHolidayCancelCol;
    std::string CSBodyRange;
    std::int64_t CSWeekdayRow = 0;
    std::int64_t CSLastTaskRow = 0;
    std::int64_t CSCalendarUnit = 0;  // minutes per chart column; 0 is refused by LoadSettings
    std::int64_t CSUseCalendarDlg = 0;
    std::int64_t CSCalendarDlgDispFlg = 0;
    std::int64_t headerRow1 = 0;    // CSWeekdayRow - 2
    std::int64_t headerRow2 = 0;    // CSWeekdayRow - 1
    std::int64_t firstBodyRow = 0;  // CSWeekdayRow + 1
};

// One row of the calendar sheet. Each top-level task group is scheduled on one calendar day,
// taken by the group's index.
struct CalendarDay {
    double date = 0.0;   // whole day serial
    double start = 0.0;  // date + the working period's start time
    double end = 0.0;    // date + the working period's end time
};

// Reads the CS* cells of the engine's settings sheet into the engine's calendar settings.
void LoadCalendarSettings();
// The engine's calendar settings record: kpInit creates it empty, kpQuit frees it.
void CreateCalendarSettings();
void FreeCalendarSettings();

// Empties the calendar-day list and fills it from the sheet whose code name is "wsCalendar":
// rows 3 down to the first empty date in column B, keyed by the date as "yyyy/mm/dd".
void LoadCalendarDays();
void FreeCalendarDays();
CalendarDay* FindCalendarDay(std::string_view key);
std::int64_t CalendarDayCount();
CalendarDay* FirstCalendarDay();
CalendarDay* LastCalendarDay();
// The day at a 1-based index; past the end the last day, below 1 none.
CalendarDay* CalendarDayAt(std::int64_t index);

// Holiday tests against the common calendar (null resource) or a resource's. Every instant is
// working time in this version: the holiday columns of the settings feed only the drawing of the
// calendar grid.
bool IsHoliday(double date, const ResourceRecord* resource);
bool IsHolidayCancelled(double date, const ResourceRecord* resource);

// The working days among from, from + 1, ... up to `to` (the fraction of `from` is kept).
// `adjust` counts the resource's own holidays (down) and cancelled common holidays (up).
std::int64_t CountWorkdays(double from, double to, const ResourceRecord* resource,
                           std::int64_t& adjust);
// The date of the n-th working day counted from `date` in steps of `step` days (+1 forward, -1
// backward); `date` itself is the first. n below 1 counts as 1; a step of 0 gives `date`.
double AddWorkdays(double date, std::int64_t n, std::int64_t step, const ResourceRecord* resource);

// The chart column that holds point `t`: one column per CSCalendarUnit minutes counted
// continuously from the project start (nights and gaps included); times outside the project land
// in its first or last column.
std::int32_t DateToColumn(double t);

// Draws the calendar grid of the task sheet for the settings the refresh just read: the header
// rows (each day's date and weekday over its first column, the time of day of each column or of
// each hour), one column per calendar unit from the project start with the columns outside their
// day's working period hidden, the day and hour lines of the body and the column of "now".
void DrawCalendarSheet();
