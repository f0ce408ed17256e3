#include "cli/workbook_layout.h"

namespace {

using enum SettingKind;

}  // namespace

const std::vector<SettingCell>& SettingCells() {
    static const std::vector<SettingCell> cells{
        {"WSWBSSheetName", kSheetName, false, "WBS", "Tab name of the task sheet"},
        {"WSFirstCol", kColumn, true, "B", "First column of the task table"},
        {"WSLastCol", kColumn, true, "V",
         "Last column of the task table; its right border marks the table's rows"},
        {"WSProjectStartDateCell", kCellAddress, false, "N1", "Cell showing the project start"},
        {"WSProjectEndDateCell", kCellAddress, false, "V1", "Cell showing the project end"},
        {"WSCalendarDateRow", kRow, true, "3", "Row of the chart's dates"},
        {"WSCalendarFirstCol", kColumn, true, "W", "First column of the chart area"},
        {"WSFirstTaskRow", kRow, true, "5", "First task row"},
        {"WSWBSNoCol", kColumn, true, "B", "WBS number, written by update-wbs"},
        {"WSTaskNameCol", kColumn, true, "C",
         "First of the ten task-name columns: the column of a name is its outline level"},
        {"WSTaskTypeCol", kColumn, true, "M", "Task type, one of the TaskType table"},
        {"WSResourceCol", kColumn, true, "N",
         "Resource key from the Resources sheet, or a cycle code W or M"},
        {"WSPVByTaskCol", kColumn, true, "O", "Planned work in minutes, written by update-wbs"},
        {"WSPlannedStartDateCol", kColumn, true, "P", "Planned start (a time of the task's day)"},
        {"WSPlannedEndDateCol", kColumn, true, "Q", "Planned end"},
        {"WSACByTaskCol", kColumn, true, "R", "Actual work in minutes, written by update-wbs"},
        {"WSActualStartDateCol", kColumn, true, "S", "Actual start"},
        {"WSActualEndDateCol", kColumn, true, "T", "Actual end"},
        {"WSPercentCompleteCol", kColumn, true, "U", "Percent complete"},
        {"WSPredecessorsCol", kColumn, true, "V", "Predecessors: 3, A1SS, 1.2FF, ..."},
        {"WSWBSNoBegin", kNumber, true, "1", "Number of the first top-level task"},
        {"WSWBSNoFormat", kSeparator, true, ".", "Separator of WBS numbers"},
        {"WSTaskColorCompletedFlg", kFlag, false, "1", "1: grey out completed tasks"},
        {"WSTaskColorUseFlg", kFlag, false, "1", "1: mark tasks by status (late, ending, started)"},
        {"WSFilterOptionShowDependence", kFlag, false, "1", "1: the filter keeps linked tasks"},
        {"WSFilterOptionShowSummary", kFlag, false, "1", "1: the filter keeps summary tasks"},
        {"WSAutoUpdateMode", kFlag, false, "1", "1: update the WBS as rows are edited"},
        {"WSTaskLinkerColorFlg", kFlag, false, "1",
         "1: connectors take the TaskConnector template's colour"},
        {"CSFirstdayCol", kColumn, false, "E", "Calendar sheet: first-day flags"},
        {"CSLastdayCol", kColumn, false, "F", "Calendar sheet: last-day flags"},
        {"CSHolidayCol", kColumn, false, "G", "Calendar sheet: holidays"},
        {"CSWorkdayCol", kColumn, false, "H", "Calendar sheet: working days"},
        {"CSMonth1stdayCol", kColumn, false, "I", "Calendar sheet: first days of months"},
        {"CSHolidayCancelCol", kColumn, false, "J", "Calendar sheet: holidays worked after all"},
        {"CSBodyRange", kRangeAddress, false, "", "Body of the chart grid"},
        {"CSWeekdayRow", kRow, false, "4", "Row of the chart's weekday line"},
        {"CSLastTaskRow", kRow, false, "44", "Last row of the chart grid"},
        {"CSCalendarUnit", kUnit, true, "60",
         "Minutes per chart column (60 an hour, 1440 a day), more than 0"},
        {"CSUseCalendarDlg", kFlag, false, "1", "Kept for the workbook's own macros"},
        {"CSCalendarDlgDispFlg", kFlag, false, "1", "Kept for the workbook's own macros"},
        {"GanntBarStyle", kBarStyle, false, "0",
         "Bar style of the last chart: 0 plain bars, 1 to 6 shaped bars"},
        {"WSDurationCol", kOptionalColumn, false, "",
         "Task duration in whole days for the reports; empty: counted from the planned dates"},
        {"WSLoadCol", kOptionalColumn, false, "",
         "First load column, one per resource column (workload); empty: the planned work"},
        {"WSForecastBySpiFlg", kFlag, false, "0", "Forecast end dates by SPI (1) or CPI (0)"},
        {"WSResourceRateFlg", kFlag, false, "0",
         "1: multiply the project's earned value by the resources' rates"},
        {"WSResourceRateCol", kColumn, false, "E", "Rate column of the resource sheet"},
    };
    return cells;
}

const std::vector<SheetRole>& SheetRoles() {
    static const std::vector<SheetRole> roles{
        {"wsWBS", "WBS", true, "the task list and the chart"},
        {"wsSettings", "Settings", true, "the named settings cells and the template shapes"},
        {"wsCalendar", "Calendar", true, "the working days, one a row from row 3"},
        {"wsResource", "Resources", false, "the resources, one a row from row 4"},
        {"wsDictionary", "Dictionary", false, "the captions of the reports"},
    };
    return roles;
}
