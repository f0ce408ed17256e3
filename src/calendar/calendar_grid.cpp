// The calendar grid above and behind the chart: three header rows (each day's date and weekday
// over its first column, the time of day of each column or of each hour), one chart column per
// calendar unit with the night and the days off hidden, a heavier line where a day begins, light
// lines at every hour and between task rows, and the column of the current moment marked.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>

#include "calendar/calendar.h"
#include "core/clock.h"
#include "core/engine_state.h"
#include "settings/settings.h"
#include "values/values.h"
#include "workbook/workbook.h"

namespace {

constexpr std::int64_t kMinutesPerHour = 60;
constexpr std::int64_t kMinutesPerDay = 1440;
constexpr std::int64_t kLastSheetColumn = 16384;

// The spreadsheet's enumeration values used here.
constexpr int kEdgeLeft = 7;
constexpr int kEdgeBottom = 9;
constexpr int kInsideHorizontal = 12;
constexpr int kContinuous = 1;
constexpr int kNoColour = -4142;  // also "no line"
constexpr int kThin = 2;
constexpr int kMedium = -4138;
constexpr int kAlignLeft = -4131;
constexpr int kAlignCentre = -4108;

// Colours: fills are RGB longs (red + 256 green + 65536 blue), lines and fonts palette indexes.
constexpr double kHeaderFill = 0xF7EBDD;  // pale blue, as the table's own header reads
constexpr double kNowFill = 0x99E6FF;     // amber, the column of the current moment
constexpr int kHourLine = 15;             // light grey
constexpr int kRowLine = 15;
constexpr int kDayLine = 16;  // dark grey
constexpr int kSundayFont = 3;
constexpr int kSaturdayFont = 5;
constexpr int kNowFont = 3;
constexpr double kHeaderFontSize = 8;

constexpr std::array<const char*, 7> kWeekdayNames = {"Sun", "Mon", "Tue", "Wed",
                                                      "Thu", "Fri", "Sat"};

// Where this drawing puts things on the task sheet.
struct GridPlace {
    std::int64_t unit = 0;
    std::int64_t firstColumn = 0;
    std::int64_t lastColumn = 0;
    std::int64_t clearToColumn = 0;  // the last column of this grid or of an earlier, wider one
    std::int64_t dateRow = 0;
    std::int64_t timeRow = 0;
    std::int64_t weekdayRow = 0;
    std::int64_t firstBodyRow = 0;
    std::int64_t lastBodyRow = 0;
};

std::string CellAddress(std::int64_t row, std::int64_t column) {
    return ColumnLetters(column) + std::to_string(row);
}

std::string BlockAddress(std::int64_t top, std::int64_t left, std::int64_t bottom,
                         std::int64_t right) {
    return CellAddress(top, left) + ":" + CellAddress(bottom, right);
}

std::string ColumnsAddress(std::int64_t left, std::int64_t right) {
    return ColumnLetters(left) + ":" + ColumnLetters(right);
}

// An earlier grid drawn with a shorter unit reaches further right; its columns are known by the
// header fill every grid column gets, and nothing else is taken for one: whatever stands to the
// right of the chart belongs to the workbook.
std::int64_t LastColumnOfEarlierGrid(const XlObject& sheet, std::int64_t row, std::int64_t after) {
    std::int64_t column = after;
    while (column < kLastSheetColumn &&
           sheet.Cell(row, column + 1).GetNumber("Interior.Color") == kHeaderFill) {
        ++column;
    }
    return column;
}

// Column widths in characters that keep the labels readable: a whole day needs its date, an
// hour its number; shorter units share the hour's room between their columns.
double ColumnWidthFor(std::int64_t unit) {
    if (unit >= kMinutesPerDay) return 11;
    if (unit >= kMinutesPerHour) return 3.3;
    return std::max(0.8, 4.0 * static_cast<double>(unit) / kMinutesPerHour);
}

// "8" for a whole hour, "8:30" otherwise.
std::string TimeLabel(double t) {
    const values::DateTime parts = values::SerialToDateTime(t);
    std::string label = std::to_string(parts.hour);
    if (parts.minute != 0) {
        label += (parts.minute < 10 ? ":0" : ":") + std::to_string(parts.minute);
    }
    return label;
}

int WeekdayIndex(double t) {
    // Serial 1 (31 December 1899) was a Sunday.
    const auto days = static_cast<std::int64_t>(std::floor(t)) - 1;
    return static_cast<int>(((days % 7) + 7) % 7);
}

bool IsWorking(const CalendarDay* day, double t) {
    return day != nullptr && values::MinutesBetween(day->start, t) >= 0 &&
           values::MinutesBetween(t, day->end) > 0;
}

// A label is text whatever it looks like: a date or an hour typed in would become a number.
void PutLabel(const XlObject& sheet, std::int64_t row, std::int64_t column,
              const std::string& text) {
    sheet.SetCell(row, column, "'" + text);
}

void DrawLeftLine(const XlObject& sheet, const GridPlace& place, std::int64_t column, int weight,
                  int colour) {
    const XlObject edge =
        sheet.RangeOf(BlockAddress(place.dateRow, column, place.lastBodyRow, column))
            .GetObjectPath(".Borders(%d)", kEdgeLeft);
    edge.SetNumber("LineStyle", kContinuous);
    edge.SetNumber("Weight", weight);
    edge.SetNumber("ColorIndex", colour);
}

GridPlace PlaceOfGrid(const XlObject& sheet) {
    const SettingsRecord& settings = EngineSettings();
    const CalendarSettings& calendar = EngineCalendarSettings();
    GridPlace place;
    place.unit = calendar.CSCalendarUnit;
    place.firstColumn = settings.calendarFirstColNo;
    place.lastColumn = std::max(settings.calendarLastColNo, settings.calendarFirstColNo);
    place.dateRow = calendar.headerRow1;
    place.timeRow = calendar.headerRow2;
    place.weekdayRow = calendar.CSWeekdayRow;
    place.firstBodyRow = calendar.firstBodyRow;
    place.lastBodyRow = std::max(calendar.CSLastTaskRow, calendar.CSWeekdayRow);
    place.clearToColumn = LastColumnOfEarlierGrid(sheet, place.timeRow, place.lastColumn);
    return place;
}

// Empties the header of this and any earlier grid and takes the lines and fills off its body
// (whose values stay: they are the workbook's), shows every column again, then gives the header
// its fill, font and widths.
void PrepareGrid(const XlObject& sheet, const GridPlace& place) {
    sheet
        .RangeOf(
            BlockAddress(place.dateRow, place.firstColumn, place.weekdayRow, place.clearToColumn))
        .Clear();
    if (place.lastBodyRow >= place.firstBodyRow) {
        const XlObject body = sheet.RangeOf(BlockAddress(place.firstBodyRow, place.firstColumn,
                                                         place.lastBodyRow, place.clearToColumn));
        body.SetNumber("Interior.ColorIndex", kNoColour);
        body.SetNumber("Borders.LineStyle", kNoColour);
    }
    sheet.RangeOf(ColumnsAddress(place.firstColumn, place.clearToColumn))
        .Put(".EntireColumn.Hidden=%b", FALSE);
    sheet.RangeOf(ColumnsAddress(place.firstColumn, place.lastColumn))
        .SetNumber("ColumnWidth", ColumnWidthFor(place.unit));

    const XlObject header = sheet.RangeOf(
        BlockAddress(place.dateRow, place.firstColumn, place.weekdayRow, place.lastColumn));
    header.SetNumber("Interior.Color", kHeaderFill);
    header.SetNumber("Font.Size", kHeaderFontSize);
    const bool dayColumns = place.unit >= kMinutesPerDay;
    header.SetNumber("HorizontalAlignment", dayColumns ? kAlignCentre : kAlignLeft);
    sheet.RangeOf(BlockAddress(place.dateRow, place.firstColumn, place.dateRow, place.lastColumn))
        .SetNumber("Font.Bold", 1);
    if (place.unit >= kMinutesPerHour) {
        sheet
            .RangeOf(
                BlockAddress(place.timeRow, place.firstColumn, place.timeRow, place.lastColumn))
            .SetNumber("HorizontalAlignment", kAlignCentre);
    }
    const XlObject headerBottom = sheet
                                      .RangeOf(BlockAddress(place.weekdayRow, place.firstColumn,
                                                            place.weekdayRow, place.lastColumn))
                                      .GetObjectPath(".Borders(%d)", kEdgeBottom);
    headerBottom.SetNumber("LineStyle", kContinuous);
    headerBottom.SetNumber("Weight", kMedium);
}

void FormatBody(const XlObject& sheet, const GridPlace& place) {
    if (place.lastBodyRow < place.firstBodyRow) return;
    const XlObject body = sheet.RangeOf(
        BlockAddress(place.firstBodyRow, place.firstColumn, place.lastBodyRow, place.lastColumn));
    for (const int edge : {kInsideHorizontal, kEdgeBottom}) {
        const XlObject line = body.GetObjectPath(".Borders(%d)", edge);
        line.SetNumber("LineStyle", kContinuous);
        line.SetNumber("Weight", kThin);
        line.SetNumber("ColorIndex", kRowLine);
    }
}

void DrawColumn(const XlObject& sheet, const GridPlace& place, std::int64_t column, double t,
                const CalendarDay& day, bool firstOfDay) {
    const bool dayColumns = place.unit >= kMinutesPerDay;
    const values::DateTime parts = values::SerialToDateTime(t);
    if (firstOfDay) {
        PutLabel(sheet, place.dateRow, column, values::FormatDate(t, "yyyy/mm/dd"));
        const int weekday = WeekdayIndex(t);
        PutLabel(sheet, place.weekdayRow, column, kWeekdayNames[weekday]);
        if (weekday == 0 || weekday == 6) {
            sheet.Cell(place.weekdayRow, column)
                .SetNumber("Font.ColorIndex", weekday == 0 ? kSundayFont : kSaturdayFont);
        }
        DrawLeftLine(sheet, place, column, kMedium, kDayLine);
    } else if (parts.minute == 0 && !dayColumns) {
        DrawLeftLine(sheet, place, column, kThin, kHourLine);
    }
    if (dayColumns) {
        // A column that stands for a whole day shows the day's working hours.
        PutLabel(
            sheet, place.timeRow, column,
            values::FormatDate(day.start, "hh:mm") + "-" + values::FormatDate(day.end, "hh:mm"));
    } else if (place.unit >= kMinutesPerHour || parts.minute == 0 || firstOfDay) {
        PutLabel(sheet, place.timeRow, column, TimeLabel(t));
    }
}

// The column of the current moment, when the project spans it.
void MarkNow(const XlObject& sheet, const GridPlace& place) {
    const SettingsRecord& settings = EngineSettings();
    const double now = NowSerial();
    if (values::MinutesBetween(settings.projectStart, now) < 0 ||
        values::MinutesBetween(now, settings.projectEnd) < 0) {
        return;
    }
    const std::int64_t column = DateToColumn(now);
    if (place.lastBodyRow >= place.firstBodyRow) {
        sheet.RangeOf(BlockAddress(place.firstBodyRow, column, place.lastBodyRow, column))
            .SetNumber("Interior.Color", kNowFill);
    }
    const XlObject label = sheet.Cell(place.timeRow, column);
    label.SetNumber("Font.ColorIndex", kNowFont);
    label.SetNumber("Font.Bold", 1);
    label.SetNumber("Interior.Color", kNowFill);
}

}  // namespace

void DrawCalendarSheet() {
    const SettingsRecord& settings = EngineSettings();
    const XlObject sheet = EngineWbsSheet();
    const GridPlace place = PlaceOfGrid(sheet);
    // The refresh refuses a zero unit; three header rows must fit above the weekday row.
    if (place.unit == 0 || place.dateRow < 1 || place.firstColumn < 1) return;

    PrepareGrid(sheet, place);
    FormatBody(sheet, place);
    if (!settings.projectStartDateCell.empty()) {
        sheet.RangeOf(settings.projectStartDateCell).SetValueNum(settings.projectStart);
    }
    if (!settings.projectEndDateCell.empty()) {
        sheet.RangeOf(settings.projectEndDateCell).SetValueNum(settings.projectEnd);
    }

    std::string previousDay;
    const std::int64_t minutes = settings.projectMinutes;
    for (std::int64_t i = 0; place.unit > 0 ? i <= minutes : i >= minutes; i += place.unit) {
        const double t = values::AddMinutes(settings.projectStart, i);
        const std::int64_t column = DateToColumn(t);
        const std::string dayKey = values::FormatDate(t, "yyyy/mm/dd");
        const CalendarDay* day = FindCalendarDay(dayKey);
        const bool working = IsWorking(day, t);
        sheet.Put(".Columns(%d).EntireColumn.Hidden=%b", static_cast<std::int32_t>(column),
                  working ? FALSE : TRUE);
        if (!working) continue;
        DrawColumn(sheet, place, column, t, *day, dayKey != previousDay);
        previousDay = dayKey;
    }
    MarkNow(sheet, place);
}
