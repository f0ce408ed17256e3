#include "calendar/task_tests.h"

#include <algorithm>
#include <string_view>

#include "core/clock.h"
#include "values/values.h"
#include "wbs/task_table.h"

namespace {

std::int64_t PercentComplete(const TaskRecord& task) {
    return values::TextToInteger(task.percentText);
}

// Half the planned minutes, as the date-add takes them: whole minutes only.
std::int64_t HalfPlannedMinutes(const TaskRecord& task) {
    // Far beyond any date; the bound keeps the conversion defined for an absurd cell ("1e999").
    constexpr double kMostMinutes = 1e15;
    const double half = values::Fix(values::Val(task.pvText) / 2.0);
    return static_cast<std::int64_t>(std::clamp(half, -kMostMinutes, kMostMinutes));
}

}  // namespace

bool IsTaskStarted(const TaskRecord& task) {
    return PercentComplete(task) > 0 || task.actualStart != 0.0;
}

bool IsTaskComplete(TaskRecord& task) {
    if (task.actualEnd != 0.0) task.percentText = "100";
    return PercentComplete(task) > 99;
}

bool ActualStartIsPlanned(const TaskRecord& task) {
    return task.actualStart == 0.0 || task.actualStart == task.plannedStart;
}

bool ActualFinishIsPlanned(const TaskRecord& task) {
    return task.actualEnd == 0.0 || task.actualEnd == task.plannedEnd;
}

bool ActualDatesArePlanned(const TaskRecord& task) {
    return ActualStartIsPlanned(task) && ActualFinishIsPlanned(task);
}

bool TaskHasType(const TaskRecord& task) {
    return BstrLength(task.typeCell) > 0;
}

bool IsTaskInFirstHalf(const TaskRecord& task) {
    const double now = NowSerial();
    return task.plannedStart <= now &&
           now < values::AddMinutes(task.plannedStart, HalfPlannedMinutes(task));
}

bool IsTaskInLastHalf(const TaskRecord& task) {
    const double now = NowSerial();
    return values::AddMinutes(task.plannedEnd, -HalfPlannedMinutes(task)) <= now &&
           now < task.plannedEnd;
}

bool IsTaskBehind(const TaskRecord& task) {
    return task.sv < 0.0;
}

std::string TaskNameHead(const TaskRecord& task) {
    const std::string name = BstrText(task.nameCell);
    return name.substr(0, name.find_first_of(":|,_-#"));
}

bool ParseTaskCycle(TaskRecord& task) {
    const std::string resource = BstrText(task.resourceCell);
    if (resource.starts_with('W') || resource.starts_with('M')) {
        task.cycleUnit = resource.substr(0, 1);
        task.cycleCount =
            resource.size() > 1 ? values::TextToInteger(std::string_view(resource).substr(1)) : 1;
        return true;
    }
    task.cycleUnit.clear();
    task.cycleCount = 1;
    return false;
}
