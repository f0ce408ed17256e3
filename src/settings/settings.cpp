#include "settings/settings.h"

#include <algorithm>
#include <optional>
#include <string>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "core/messages.h"
#include "values/values.h"
#include "workbook/workbook.h"

namespace {

// One named cell of the settings sheet and the field it fills: a text stored as read, or a whole
// number read by the runtime's string-to-integer rule.
struct SettingKey {
    const char* name;
    std::string SettingsRecord::*text;
    std::int64_t SettingsRecord::*number;
};

// In the order they are read.
constexpr SettingKey kKeys[] = {
    {"WSWBSSheetName", &SettingsRecord::wbsSheetName, nullptr},
    {"WSFirstCol", &SettingsRecord::firstCol, nullptr},
    {"WSLastCol", &SettingsRecord::lastCol, nullptr},
    {"WSProjectStartDateCell", &SettingsRecord::projectStartDateCell, nullptr},
    {"WSProjectEndDateCell", &SettingsRecord::projectEndDateCell, nullptr},
    {"WSCalendarDateRow", nullptr, &SettingsRecord::calendarDateRow},
    {"WSCalendarFirstCol", &SettingsRecord::calendarFirstCol, nullptr},
    {"WSFirstTaskRow", nullptr, &SettingsRecord::firstTaskRow},
    {"WSWBSNoCol", &SettingsRecord::wbsNoCol, nullptr},
    {"WSTaskNameCol", &SettingsRecord::taskNameCol, nullptr},
    {"WSTaskTypeCol", &SettingsRecord::taskTypeCol, nullptr},
    {"WSResourceCol", &SettingsRecord::resourceCol, nullptr},
    {"WSPVByTaskCol", &SettingsRecord::pvByTaskCol, nullptr},
    {"WSPlannedStartDateCol", &SettingsRecord::plannedStartDateCol, nullptr},
    {"WSPlannedEndDateCol", &SettingsRecord::plannedEndDateCol, nullptr},
    {"WSACByTaskCol", &SettingsRecord::acByTaskCol, nullptr},
    {"WSActualStartDateCol", &SettingsRecord::actualStartDateCol, nullptr},
    {"WSActualEndDateCol", &SettingsRecord::actualEndDateCol, nullptr},
    {"WSPercentCompleteCol", &SettingsRecord::percentCompleteCol, nullptr},
    {"WSPredecessorsCol", &SettingsRecord::predecessorsCol, nullptr},
    {"WSWBSNoBegin", nullptr, &SettingsRecord::wbsNoBegin},
    {"WSWBSNoFormat", &SettingsRecord::wbsNoFormat, nullptr},
    {"WSTaskColorCompletedFlg", nullptr, &SettingsRecord::taskColorCompletedFlg},
    {"WSTaskColorUseFlg", nullptr, &SettingsRecord::taskColorUseFlg},
    {"WSFilterOptionShowDependence", nullptr, &SettingsRecord::filterOptionShowDependence},
    {"WSFilterOptionShowSummary", nullptr, &SettingsRecord::filterOptionShowSummary},
    {"WSAutoUpdateMode", nullptr, &SettingsRecord::autoUpdateMode},
    {"WSTaskLinkerColorFlg", nullptr, &SettingsRecord::taskLinkerColorFlg},
    {"WSDurationCol", &SettingsRecord::durationCol, nullptr},
    {"WSLoadCol", &SettingsRecord::loadCol, nullptr},
    {"WSForecastBySpiFlg", nullptr, &SettingsRecord::forecastBySpi},
    {"WSResourceRateFlg", nullptr, &SettingsRecord::resourceRateSwitch},
    {"WSResourceRateCol", &SettingsRecord::resourceRateCol, nullptr},
};

constexpr int kRightEdge = 10;
constexpr double kNoLine = -4142;

constexpr char kUnitAdvice[] =
    " Enter the number of minutes one chart column stands for, for example 1440 for a day or 60 "
    "for an hour, and run the command again.";

// Why the calendar unit cannot be used, naming the sheet and the cell, so that the user finds
// what to mend: no settings sheet, no cell of that name, or a cell that holds no whole number of
// minutes above 0 (a text, an error value, 0.5, a negative number).
std::string UnusableUnitMessage() {
    const XlObject sheet = EngineSettingsSheet();
    if (sheet.IsNothing()) {
        return "The workbook has no settings sheet (no sheet has the code name wsSettings), so "
               "the calendar unit (CSCalendarUnit) and the other settings cannot be read.";
    }
    const std::string sheetName = "\"" + sheet.GetName() + "\"";
    const XlObject cell = sheet.RangeOf("CSCalendarUnit");
    if (cell.IsNothing()) {
        return "The settings sheet " + sheetName +
               " has no cell named CSCalendarUnit, so the calendar unit is 0." + kUnitAdvice;
    }
    const std::string text = cell.GetValue();
    return "The calendar unit (CSCalendarUnit, cell " + cell.GetString("Address") +
           " of the settings sheet " + sheetName + ") is " +
           (text.empty() ? std::string("empty") : "\"" + text + "\"") +
           ", not a whole number of minutes above 0." + kUnitAdvice;
}

}  // namespace

bool LoadSettings() {
    // The chart extent is divided by the unit below, and a negative unit would run the chart
    // backwards; refuse before anything is read or changed.
    if (EngineCalendarSettings().CSCalendarUnit <= 0) {
        ShowMessage(UnusableUnitMessage(), MB_ICONERROR);
        SetLastRuntimeError(kRuntimeErrorDivisionByZero);
        return false;
    }

    SettingsRecord& settings = EngineSettings();
    const XlObject sheet = EngineSettingsSheet();
    for (const SettingKey& key : kKeys) {
        const std::string text = sheet.RangeOf(key.name).GetValue();
        if (key.text != nullptr) {
            settings.*key.text = text;
        } else {
            settings.*key.number = values::TextToInteger(text);
        }
    }
    settings.rescheduleFlag = 0;

    for (const ColumnSetting& column : ColumnSettings()) {
        settings.*column.number = ColumnNumber(settings.*column.letters);
    }
    settings.resourceToPvCols = settings.pvByTaskColNo - settings.resourceColNo;

    LoadCalendarDays();
    // Without calendar days the project keeps the span it had.
    if (const CalendarDay* first = FirstCalendarDay()) settings.projectStart = first->start;
    if (const CalendarDay* last = LastCalendarDay()) settings.projectEnd = last->end;
    settings.projectMinutes = values::MinutesBetween(settings.projectStart, settings.projectEnd);
    settings.calendarLastColNo = settings.projectMinutes / EngineCalendarSettings().CSCalendarUnit +
                                 settings.calendarFirstColNo;
    settings.calendarLastCol = ColumnLetters(settings.calendarLastColNo);
    settings.calendarHeadRow = settings.calendarDateRow - 1;
    settings.calendarBodyRow = settings.calendarDateRow + 1;
    settings.lastTableRow = LastTableRow();
    return true;
}

std::int64_t LastTableRow() {
    const SettingsRecord& settings = EngineSettings();
    const XlObject sheet = EngineWbsSheet();
    // The last column's right edge is read for blocks of rows that double while every row of the
    // block has the same line, and halve when they differ: a few calls for thousands of rows, and
    // the same row found as by reading the rows one by one. A row stops the table when it has no
    // line; a failed read continues it. Letters that name no column are read row by row, as
    // they are given.
    const std::string& column = settings.lastCol;
    const bool inBlocks = settings.lastColNo >= 1 && settings.lastColNo <= kSheetColumns;
    std::int64_t row = settings.firstTaskRow;
    std::int64_t block = 1;
    // Reads past the sheet's last row fail, which would otherwise keep the scan going for ever.
    while (row <= kSheetRows) {
        const std::int64_t last = std::min(row + block - 1, kSheetRows);
        std::string address = column + std::to_string(row);
        if (last > row) address += ":" + column + std::to_string(last);
        const std::optional<double> line =
            sheet.RangeOf(address).GetCommonNumberArg("Borders(%d).LineStyle", kRightEdge);
        if (line && *line == kNoLine) break;  // the block's first row has no line
        if (line || last == row) {
            row = last + 1;
            if (inBlocks) block *= 2;
        } else {
            block /= 2;
        }
    }
    return row - 1;
}

void CreateSettingsRecord() {
    FreeSettingsRecord();
    Engine().settings = new SettingsRecord();
}

void FreeSettingsRecord() {
    delete Engine().settings;
    Engine().settings = nullptr;
}

std::span<const ColumnSetting> ColumnSettings() {
    static constexpr ColumnSetting kColumns[] = {
        {"WSFirstCol", &SettingsRecord::firstCol, &SettingsRecord::firstColNo},
        {"WSLastCol", &SettingsRecord::lastCol, &SettingsRecord::lastColNo},
        {"WSCalendarFirstCol", &SettingsRecord::calendarFirstCol,
         &SettingsRecord::calendarFirstColNo},
        {"WSWBSNoCol", &SettingsRecord::wbsNoCol, &SettingsRecord::wbsNoColNo},
        {"WSTaskNameCol", &SettingsRecord::taskNameCol, &SettingsRecord::taskNameColNo},
        {"WSTaskTypeCol", &SettingsRecord::taskTypeCol, &SettingsRecord::taskTypeColNo},
        {"WSResourceCol", &SettingsRecord::resourceCol, &SettingsRecord::resourceColNo},
        {"WSPVByTaskCol", &SettingsRecord::pvByTaskCol, &SettingsRecord::pvByTaskColNo},
        {"WSACByTaskCol", &SettingsRecord::acByTaskCol, &SettingsRecord::acByTaskColNo},
        {"WSPlannedStartDateCol", &SettingsRecord::plannedStartDateCol,
         &SettingsRecord::plannedStartDateColNo},
        {"WSPlannedEndDateCol", &SettingsRecord::plannedEndDateCol,
         &SettingsRecord::plannedEndDateColNo},
        {"WSActualStartDateCol", &SettingsRecord::actualStartDateCol,
         &SettingsRecord::actualStartDateColNo},
        {"WSActualEndDateCol", &SettingsRecord::actualEndDateCol,
         &SettingsRecord::actualEndDateColNo},
        {"WSPercentCompleteCol", &SettingsRecord::percentCompleteCol,
         &SettingsRecord::percentCompleteColNo},
        {"WSPredecessorsCol", &SettingsRecord::predecessorsCol, &SettingsRecord::predecessorsColNo},
        {"WSDurationCol", &SettingsRecord::durationCol, &SettingsRecord::durationColNo},
        {"WSLoadCol", &SettingsRecord::loadCol, &SettingsRecord::loadColNo},
        {"WSResourceRateCol", &SettingsRecord::resourceRateCol, &SettingsRecord::resourceRateColNo},
    };
    return kColumns;
}
