// The selection event: a selection in the chart columns of a task row shows in the program's
// status bar what the selected cells stand for, so that a user can read times off the chart.
#include <algorithm>
#include <string>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "settings/settings.h"
#include "values/values.h"
#include "wbs/sheet_events.h"

namespace {

constexpr char kTimeFormat[] = "yyyy/mm/dd hh:mm";

std::string TimeText(double serial) {
    return values::FormatDate(serial, kTimeFormat);
}

// The start of chart column `column`: each column stands for CSCalendarUnit minutes counted from
// the project start.
double ColumnStart(std::int64_t column) {
    const SettingsRecord& settings = EngineSettings();
    return values::AddMinutes(settings.projectStart, (column - settings.calendarFirstColNo) *
                                                         EngineCalendarSettings().CSCalendarUnit);
}

// "1.2.1 Pack archive boxes | selected 2024/04/05 11:00 - 2024/04/05 13:00 | planned
// 2024/04/05 11:00 - 2024/04/05 14:00, 180 min, 100%"
std::string StatusText(TaskRecord& task, std::int64_t firstColumn, std::int64_t lastColumn) {
    TaskRecord_ReadRow(task);
    std::string text = task.wbsNo + " " + BstrText(task.nameCell);
    text += " | selected " + TimeText(ColumnStart(firstColumn)) + " - " +
            TimeText(ColumnStart(lastColumn + 1));
    if (task.plannedStart != 0) {
        text += " | planned " + TimeText(task.plannedStart) + " - " +
                (task.plannedEnd != 0 ? TimeText(task.plannedEnd) : std::string("?"));
    } else {
        text += " | not planned";
    }
    if (!task.pvText.empty()) {
        text += ", " + task.pvText + " min";
    }
    if (!task.percentText.empty()) {
        text += ", " + task.percentText + "%";
    }
    return text;
}

void ShowStatus(const std::string& text) {
    EngineWorkbook().Put(".Application.StatusBar=%S", Widen(text).c_str());
}

void GiveStatusBarBack() {
    EngineWorkbook().Put(".Application.StatusBar=%b", FALSE);
}

}  // namespace

void OnSelectionChange(const XlObject& target) {
    const SettingsRecord& settings = EngineSettings();
    const std::int64_t firstColumn = target.GetColumn();
    const auto columns = static_cast<std::int64_t>(target.GetNumber("Columns.Count"));
    const std::int64_t lastColumn = std::min(firstColumn + columns - 1, settings.calendarLastColNo);
    TaskRecord* task = Tasks_ByRow(target.GetRow());
    if (task == nullptr || firstColumn < settings.calendarFirstColNo ||
        firstColumn > settings.calendarLastColNo || EngineCalendarSettings().CSCalendarUnit == 0) {
        GiveStatusBarBack();
        return;
    }
    ShowStatus(StatusText(*task, firstColumn, lastColumn));
}
