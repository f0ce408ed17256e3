#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "values/values.h"
#include "workbook/workbook.h"

void LoadCalendarSettings() {
    const XlObject sheet = EngineSettingsSheet();
    auto text = [&sheet](const char* key) { return sheet.RangeOf(key).GetValue(); };
    auto number = [&text](const char* key) { return values::TextToInteger(text(key)); };

    CalendarSettings& settings = EngineCalendarSettings();
    settings.CSFirstdayCol = text("CSFirstdayCol");
    settings.CSLastdayCol = text("CSLastdayCol");
    settings.CSHolidayCol = text("CSHolidayCol");
    settings.CSWorkdayCol = text("CSWorkdayCol");
    settings.CSMonth1stdayCol = text("CSMonth1stdayCol");
    settings.CSHolidayCancelCol = text("CSHolidayCancelCol");
    settings.CSBodyRange = text("CSBodyRange");
    settings.CSWeekdayRow = number("CSWeekdayRow");
    settings.CSLastTaskRow = number("CSLastTaskRow");
    settings.CSCalendarUnit = number("CSCalendarUnit");
    settings.CSUseCalendarDlg = number("CSUseCalendarDlg");
    settings.CSCalendarDlgDispFlg = number("CSCalendarDlgDispFlg");
    // The grid's two header rows stand above the weekday row and its body below it.
    settings.headerRow1 = settings.CSWeekdayRow - 2;
    settings.headerRow2 = settings.CSWeekdayRow - 1;
    settings.firstBodyRow = settings.CSWeekdayRow + 1;
}

void CreateCalendarSettings() {
    FreeCalendarSettings();
    Engine().calendarSettings = new CalendarSettings();
}

void FreeCalendarSettings() {
    delete Engine().calendarSettings;
    Engine().calendarSettings = nullptr;
}
