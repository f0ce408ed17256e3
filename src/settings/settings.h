// The settings record: where everything is on the task sheet and how the commands behave, read
// from the named cells of the settings sheet at the start of every drawing and update command, so
// an edit there takes effect at the next command.
#pragma once

#include <cstdint>
#include <span>
#include <string>

// Column fields hold the letters as the user typed them ("A", "AB"); their numbers are derived by
// the load. Dates are date serials. The unnamed reserved slots are kept so the record reads in the
// same order as the settings it mirrors; nothing fills them.
struct SettingsRecord {
    std::string wbsSheetName;
    std::int64_t calendarDateRow = 0;
    std::string calendarFirstCol;
    std::string projectStartDateCell;
    std::string projectEndDateCell;
    std::string firstCol;
    std::string lastCol;
    std::string wbsNoCol;
    std::string taskNameCol;  // first of the ten name columns, one per outline level
    std::string taskTypeCol;
    std::string resourceCol;
    std::string reservedText1;
    std::string pvByTaskCol;
    std::string reservedText2;
    std::string acByTaskCol;
    std::string reservedText3;
    std::string plannedStartDateCol;
    std::string plannedEndDateCol;
    std::string actualStartDateCol;
    std::string actualEndDateCol;
    std::string percentCompleteCol;
    std::string predecessorsCol;
    std::int64_t firstTaskRow = 0;
    std::int64_t wbsNoBegin = 0;  // number of the first top-level task
    std::string wbsNoFormat;      // separator of WBS number components

    std::int64_t firstColNo = 0;
    std::int64_t lastColNo = 0;
    std::int64_t calendarFirstColNo = 0;
    std::int64_t wbsNoColNo = 0;
    std::int64_t taskNameColNo = 0;
    std::int64_t taskTypeColNo = 0;
    std::int64_t resourceColNo = 0;
    std::int64_t reservedNumber1 = 0;
    std::int64_t pvByTaskColNo = 0;
    std::int64_t reservedNumber2 = 0;
    std::int64_t acByTaskColNo = 0;
    std::int64_t reservedNumber3 = 0;
    std::int64_t plannedStartDateColNo = 0;
    std::int64_t plannedEndDateColNo = 0;
    std::int64_t actualStartDateColNo = 0;
    std::int64_t actualEndDateColNo = 0;
    std::int64_t percentCompleteColNo = 0;
    std::int64_t predecessorsColNo = 0;
    std::int64_t calendarLastColNo = 0;
    std::string calendarLastCol;
    std::int64_t calendarHeadRow = 0;  // calendarDateRow - 1
    std::int64_t calendarBodyRow = 0;  // calendarDateRow + 1
    double projectStart = 0.0;         // working start of the first calendar day
    double projectEnd = 0.0;           // working end of the last calendar day
    std::int64_t projectMinutes = 0;
    std::int64_t resourceToPvCols = 0;  // pvByTaskColNo - resourceColNo
    std::int64_t lastTableRow = 0;      // last row of the bordered task table
    std::int64_t rescheduleFlag = 0;    // 1 only while a reschedule runs
    std::int64_t taskColorCompletedFlg = 0;
    std::int64_t taskColorUseFlg = 0;
    std::int64_t filterOptionShowDependence = 0;
    std::int64_t filterOptionShowSummary = 0;
    // The earned-value forecast uses SPI when this is 1, else CPI ("WSForecastBySpiFlg"; a
    // workbook without that cell forecasts by CPI).
    std::int64_t forecastBySpi = 0;
    // Resource rates multiply the project's planned and earned values when this is 1
    // ("WSResourceRateFlg").
    std::int64_t resourceRateSwitch = 0;
    std::int64_t reservedNumber4 = 0;
    std::int64_t autoUpdateMode = 0;
    std::int64_t taskLinkerColorFlg = 0;
    // Columns the reports read. Each may be absent from a workbook (empty letters, number 0): the
    // reports then count a task's duration from its planned dates and take its planned work as
    // its load.
    std::string durationCol;      // "WSDurationCol": the task's duration in whole days
    std::string loadCol;          // "WSLoadCol": first load column, parallel to the resource ones
    std::string resourceRateCol;  // "WSResourceRateCol": the rate column of the resource sheet
    std::int64_t durationColNo = 0;
    std::int64_t loadColNo = 0;
    std::int64_t resourceRateColNo = 0;
    // The rows kept visible by the filter, each between two commas of its own (",12,,13,"); empty
    // when no filter is in force. Kept across commands, never loaded.
    std::string filterRows;
};

// Fills the engine's settings record from the settings sheet, loads the calendar days and derives
// the project span and the chart extent from them. A calendar unit of 0 (the minutes one chart
// column stands for) would divide by zero: the load then tells the user, records the runtime's
// division error and returns false before changing anything, and the command must stop.
bool LoadSettings();

// A column setting: the named cell that holds its letters, and the column number derived from them.
struct ColumnSetting {
    const char* key;
    std::string SettingsRecord::*letters;
    std::int64_t SettingsRecord::*number;
};
// Every column setting, in the order the loader derives them.
std::span<const ColumnSetting> ColumnSettings();

// The engine's settings record: kpInit creates it empty, kpQuit frees it.
void CreateSettingsRecord();
void FreeSettingsRecord();

// The last row, from the first task row on, whose last table column still has a right border;
// firstTaskRow - 1 when the first row has none.
std::int64_t LastTableRow();
