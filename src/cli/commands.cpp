#include "cli/commands.h"

#include <algorithm>

#include "engine/exports.h"

namespace {

// The periods of the project reports.
const CommandArgument kPeriodKind{
    "kind", false, 0,
    "The periods: 1 = one every <step> days, 2 = weeks from Monday, 3 = calendar months"};
const CommandArgument kPeriodStep{"step", true, 1,
                                  "Days per period when kind is 1 (ignored by kinds 2 and 3)"};

std::vector<EngineCommand> MakeCommands() {
    return {
        {"update-wbs",
         "Update the WBS: numbers, work, checks, summary roll-ups, row colours",
         {},
         true,
         [](std::span<const int>) { kpUpdateWBS(); }},
        {"reschedule",
         "Place the not-started tasks one after another per resource, then redraw the chart",
         {},
         true,
         [](std::span<const int>) { kpWBSReschedule(); }},
        {"gantt",
         "Draw the Gantt bars and connectors",
         {{"style", true, 1}},
         true,
         [](std::span<const int> a) { kpDrawGanntChart(a[0]); }},
        {"calendar",
         "Draw the calendar strip and the Gantt bars",
         {{"unit", true, 0}},
         true,
         [](std::span<const int> a) { kpDrawCalendar(a[0]); }},
        {"filter",
         "Hide the task rows that do not match the filter of the settings sheet's cell A500",
         {},
         true,
         [](std::span<const int>) { kpWBSFilter(); },
         "The filter is \"MODE,ARGUMENT\" as the workbook's filter dialog writes it into cell "
         "A500 of the settings sheet; --spec writes it there first. Modes:\n"
         "  0  show every task row (no filter)\n"
         "  1  tasks of the resources listed in the argument, each followed by a comma: "
         "\"1,AL,BO,\"\n"
         "  2  KEY,FROM,TO with FROM and TO date serials or numbers: KEY 1 planned dates, KEY 2 "
         "actual dates overlapping FROM..TO; another KEY names the column of the settings cell "
         "WS<KEY>Col, whose value must lie in FROM..TO (0 leaves that side open)\n"
         "  3  tasks with a type that do not recur\n"
         "  4  tasks not complete although they should have begun\n"
         "  5  complete tasks\n"
         "  6  top-level tasks; argument 1: every summary task too\n"
         "  7  tasks with predecessors\n"
         "  8  over cost (cost performance index below 1)\n"
         "  9  ahead of schedule (schedule performance index above 1)\n"
         "  10 behind schedule (schedule performance index below 1)\n"
         "  11 tasks in the first half of their planned time\n"
         "  12 tasks in the last half of their planned time\n"
         "  13 recurring tasks (resource cell W or M with a count)\n"
         "Any other mode hides every task row. The settings WSFilterOptionShowSummary and "
         "WSFilterOptionShowDependence keep the summaries above a match and its linked tasks "
         "visible."},
        {"progress-lines",
         "Draw the progress line of the status date (--now): a line down the chart at that "
         "moment that swings out to the point each task has reached; the day's earlier line is "
         "replaced, earlier days' lines stay",
         {},
         true,
         [](std::span<const int>) { kpDrawProgressLines(); }},
        {"move-up",
         "Move the selected rows (--rows) up by one row as a block, if the outline allows it",
         {},
         true,
         [](std::span<const int>) { kpTasksMoveUp(); }},
        {"move-down",
         "Move the selected rows (--rows) down by one row as a block, if the outline allows it",
         {},
         true,
         [](std::span<const int>) { kpTasksMoveDown(); }},
        {"indent",
         "Move the selected tasks (--rows) one outline level deeper, if the outline allows it",
         {},
         true,
         [](std::span<const int>) { kpTasksMoveRight(); }},
        {"outdent",
         "Move the selected tasks (--rows) one outline level up, if the outline allows it",
         {},
         true,
         [](std::span<const int>) { kpTasksMoveLeft(); }},
        {"offset",
         "Shift the selected (--rows) not-started tasks by FIRST x SECOND minutes",
         {{"first", false, 0, "A whole number, multiplied by SECOND (negative: earlier)"},
          {"second", false, 0, "A whole number of minutes, multiplied by FIRST"}},
         true,
         [](std::span<const int> a) { kpTasksOffset(a[0], a[1]); }},
        {"evm-task",
         "Write the earned-value figures of every task on the sheet EVM0_<today>",
         {},
         true,
         [](std::span<const int>) { kpEVMByTask(); }},
        {"evm-project",
         "Write the project's earned value per period, with its two charts, on the sheet "
         "EVM<kind>_<today>",
         {kPeriodKind, kPeriodStep},
         true,
         [](std::span<const int> a) { kpEVMByProject(a[0], a[1]); }},
        {"workload",
         "Write every resource's load per period, with its chart, on the sheet Workload<kind>",
         {kPeriodKind, kPeriodStep},
         true,
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
