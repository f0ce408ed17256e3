#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "core/strdict.h"
#include "values/values.h"
#include "workbook/workbook.h"

namespace {

// Rows 1 and 2 of the calendar sheet are headings.
constexpr std::int64_t kFirstDayRow = 3;
constexpr std::int64_t kDateColumn = 2;
constexpr std::int64_t kStartColumn = 3;
constexpr std::int64_t kEndColumn = 4;

// Keyed by the date as "yyyy/mm/dd", in sheet order.
StrDict<CalendarDay>& CalendarDays() {
    // Never destroyed: unloading the library without kpQuit must not free what the host
    // may already have freed. kpQuit empties it.
    static auto* const days = new StrDict<CalendarDay>(Ownership::kOwnsRecords);
    return *days;
}

}  // namespace

void LoadCalendarDays() {
    FreeCalendarDays();
    // Unlike the engine's own sheets, this binding is only for the load, so its reference is
    // released when the load is done.
    const XlObject sheet(SheetByCodeName("wsCalendar").object());
    // The first empty date ends the list, so a blank row cuts the calendar there.
    for (std::int64_t row = kFirstDayRow;; ++row) {
        const XlObject dateCell = sheet.Cell(row, kDateColumn);
        if (dateCell.GetValue().empty()) break;
        auto* day = new CalendarDay;
        day->date = dateCell.GetValueNum();
        // An empty or non-numeric time counts as 0: the period collapses to the date's midnight.
        day->start = day->date + sheet.Cell(row, kStartColumn).GetValueNum();
        day->end = day->date + sheet.Cell(row, kEndColumn).GetValueNum();
        CalendarDays().Add(values::FormatDate(day->date, "yyyy/mm/dd"), day);
    }
}

void FreeCalendarDays() {
    CalendarDays().Clear(true);
}

CalendarDay* FindCalendarDay(std::string_view key) {
    return CalendarDays().Find(key);
}

std::int64_t CalendarDayCount() {
    return CalendarDays().Count();
}

CalendarDay* FirstCalendarDay() {
    return CalendarDays().ItemAt(1);
}

CalendarDay* LastCalendarDay() {
    return CalendarDays().ItemAt(CalendarDayCount());
}

CalendarDay* CalendarDayAt(std::int64_t index) {
    return CalendarDays().ItemAt(index > CalendarDayCount() ? CalendarDayCount() : index);
}
