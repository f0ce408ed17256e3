#include "wbs/reschedule.h"

#include <cstdint>

#include "calendar/task_tests.h"
#include "core/engine_state.h"
#include "settings/settings.h"
#include "values/values.h"

void WritePlannedTimesOfDay(std::int64_t row, double start, double end) {
    const SettingsRecord& settings = EngineSettings();
    const XlObject sheet = EngineWbsSheet();
    sheet.SetCell(row, settings.plannedStartDateColNo,
                  values::NumberText(start - values::Fix(start)));
    sheet.SetCell(row, settings.plannedEndDateColNo, values::NumberText(end - values::Fix(end)));
}

void PlaceTask(TaskRecord& task, ResourceRecord& resource, const CalendarDay* currentDay) {
    const double pv = values::Val(task.pvText);
    if (!(pv > 0)) {
        return;
    }
    // Fractions of a minute are dropped, not rounded.
    const auto minutes = static_cast<std::int64_t>(pv);
    if (IsTaskStarted(task)) {
        resource.nextFree = IsTaskComplete(task) ? task.actualEnd : task.plannedEnd;
        return;
    }
    if (resource.nextFree != 0) {
        const double start = resource.nextFree;
        const double end = values::AddMinutes(start, minutes);
        WritePlannedTimesOfDay(task.row, start, end);
        resource.nextFree = end;
        return;
    }
    // The resource's first task of the group: one without a start of its own begins at the day's
    // working start; one with a start keeps it and the resource carries on from its end.
    if (task.plannedStart == 0) {
        // Before the first top-level group there is no day to start from.
        if (currentDay == nullptr) {
            return;
        }
        task.plannedStart = currentDay->start;
        task.plannedEnd = values::AddMinutes(task.plannedStart, minutes);
        WritePlannedTimesOfDay(task.row, task.plannedStart, task.plannedEnd);
    }
    resource.nextFree = task.plannedEnd;
}
