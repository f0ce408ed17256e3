#include "cli/commands.h"

#include <algorithm>
#include <numeric>

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
         [](std::span<const int>) { kpUpdateWBS(); }},
        {"reschedule",
         "Place the not-started tasks one after another per resource, then redraw the chart",
         {},
         [](std::span<const int>) { kpWBSReschedule(); }},
        {"gantt",
         "Draw the Gantt bars and connectors",
         {{"style", true, 1,
           "Bar style: 0 plain bars copied from the templates, 1 to 6 shaped bars"}},
         [](std::span<const int> a) { kpDrawGanntChart(a[0]); }},
        {"calendar",
         "Draw the calendar strip and the Gantt bars",
         {{"unit", true, 0,
           "Minutes one chart column stands for (60 an hour, 1440 a day); 0 keeps the "
           "workbook's CSCalendarUnit"}},
         [](std::span<const int> a) { kpDrawCalendar(a[0]); }},
        {"filter",
         "Hide the task rows that do not match the filter of the settings sheet's cell A500",
         {},
         [](std::span<const int>) { kpWBSFilter(); },
         false,
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
         [](std::span<const int>) { kpDrawProgressLines(); }},
        {"move-up",
         "Move the selected rows (--rows) up by one row as a block, if the outline allows it",
         {},
         [](std::span<const int>) { kpTasksMoveUp(); },
         true},
        {"move-down",
         "Move the selected rows (--rows) down by one row as a block, if the outline allows it",
         {},
         [](std::span<const int>) { kpTasksMoveDown(); },
         true},
        {"indent",
         "Move the selected tasks (--rows) one outline level deeper, if the outline allows it",
         {},
         [](std::span<const int>) { kpTasksMoveRight(); },
         true},
        {"outdent",
         "Move the selected tasks (--rows) one outline level up, if the outline allows it",
         {},
         [](std::span<const int>) { kpTasksMoveLeft(); },
         true},
        {"offset",
         "Shift the planned times of the selected tasks that have not started by a x b minutes",
         {{"a", false, 0, "With b: the shift in minutes is a x b; negative moves earlier"},
          {"b", false, 0, "With a: 2 15 is 30 minutes later, -1 60 an hour earlier"}},
         [](std::span<const int> a) { kpTasksOffset(a[0], a[1]); },
         true},
        {"evm-task",
         "Write the earned-value figures of every task on the sheet EVM0_<today>",
         {},
         [](std::span<const int>) { kpEVMByTask(); }},
        {"evm-project",
         "Write the project's earned value per period, with its two charts, on the sheet "
         "EVM<kind>_<today>",
         {kPeriodKind, kPeriodStep},
         [](std::span<const int> a) { kpEVMByProject(a[0], a[1]); }},
        {"workload",
         "Write every resource's load per period, with its chart, on the sheet Workload<kind>",
         {kPeriodKind, kPeriodStep},
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

namespace {

// The number of single-letter insertions, deletions and substitutions between two names.
std::size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] != b[j - 1])});
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace

std::string ClosestCommandName(std::string_view name, std::span<const std::string_view> others) {
    std::string best;
    std::size_t bestDistance = std::max<std::size_t>(2, name.size() / 3) + 1;
    auto consider = [&](std::string_view candidate) {
        const std::size_t distance = EditDistance(name, candidate);
        if (distance < bestDistance) {
            bestDistance = distance;
            best = candidate;
        }
    };
    for (const EngineCommand& command : EngineCommands()) consider(command.name);
    for (std::string_view other : others) consider(other);
    return best;
}
