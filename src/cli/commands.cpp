#include "cli/commands.h"

#include <algorithm>

#include "engine/exports.h"

namespace {

std::vector<EngineCommand> MakeCommands() {
    return {
        {"update-wbs",
         "Update the WBS: numbers, work, checks, summary roll-ups, row colours",
         {},
         true,
         [](std::span<const int>) { kpUpdateWBS(); }},
        {"reschedule",
         "Place the tasks that have not started one after another per resource",
         {},
         false,
         [](std::span<const int>) { kpWBSReschedule(); }},
        {"gantt",
         "Draw the Gantt bars and connectors",
         {{"style", true, 1}},
         true,
         [](std::span<const int> a) { kpDrawGanntChart(a[0]); }},
        {"calendar",
         "Draw the calendar strip and the Gantt bars",
         {{"unit", true, 0}},
         false,
         [](std::span<const int> a) { kpDrawCalendar(a[0]); }},
        {"filter",
         "Hide the task rows that do not match the filter",
         {},
         false,
         [](std::span<const int>) { kpWBSFilter(); }},
        {"progress-lines",
         "Draw the progress line of the status date",
         {},
         false,
         [](std::span<const int>) { kpDrawProgressLines(); }},
        {"move-up",
         "Move the selected tasks up",
         {},
         false,
         [](std::span<const int>) { kpTasksMoveUp(); }},
        {"move-down",
         "Move the selected tasks down",
         {},
         false,
         [](std::span<const int>) { kpTasksMoveDown(); }},
        {"indent",
         "Move the selected tasks one level deeper",
         {},
         false,
         [](std::span<const int>) { kpTasksMoveRight(); }},
        {"outdent",
         "Move the selected tasks one level up",
         {},
         false,
         [](std::span<const int>) { kpTasksMoveLeft(); }},
        {"offset",
         "Shift the dates of the selected tasks",
         {{"first"}, {"second"}},
         false,
         [](std::span<const int> a) { kpTasksOffset(a[0], a[1]); }},
        {"evm-task",
         "Write the earned-value figures of every task",
         {},
         false,
         [](std::span<const int>) { kpEVMByTask(); }},
        {"evm-project",
         "Write the earned-value report of the project",
         {{"kind"}, {"step"}},
         false,
         [](std::span<const int> a) { kpEVMByProject(a[0], a[1]); }},
        {"workload",
         "Write the workload report by resource",
         {{"kind"}, {"step"}},
         false,
         [](std::span<const int> a) { kpWorkload(a[0], a[1]); }},
    };
}

}  // namespace

const std::vector<EngineCommand>& EngineCommands() {
    static const std::vector<EngineCommand> commands = MakeCommands();
    return commands;
}

const EngineCommand* FindEngineCommand(std::string_view name) {
    const auto& commands = EngineCommands();
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const EngineCommand& c) { return c.name == name; });
    return found == commands.end() ? nullptr : &*found;
}
