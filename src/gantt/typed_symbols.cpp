// Typed tasks (milestones, reviews, deliveries, ...) show as text symbols instead of bars: the
// type text at the planned start, and once work has begun the "TaskType" table's text for the
// type at the actual start, joined by a slip line when the two lie apart.
#include <cmath>

#include "calendar/task_tests.h"
#include "core/engine_state.h"
#include "gantt/drawing.h"
#include "gantt/gantt.h"

WideString LookupTaskTypeLabel(WideStringView type) {
    const XlObject table = EngineSettingsSheet().RangeOf(kTaskTypeTable);
    const auto rows = static_cast<std::int64_t>(std::nearbyint(table.GetNumber("Rows.Count")));
    // The table's cells are numbered row by row through both columns.
    for (std::int64_t i = 1; i <= rows; ++i) {
        if (table.CellItem(2 * i - 1).GetWide("Value") == type) {
            return table.CellItem(2 * i).GetWide("Value");
        }
    }
    return {};
}

std::pair<double, double> DrawTypedSymbols(TaskRecord& task) {
    const WideString type = Widen(BstrText(task.typeCell));
    const BarRect& planned = task.plannedBar;
    if (!IsTaskStarted(task)) {
        return {AddLabel(task, type, planned.left, planned.top), 0.0};
    }
    const bool moved = !ActualStartIsPlanned(task);
    const double plannedRight = moved ? AddLabel(task, type, planned.left, planned.top) : 0.0;
    const double actualRight =
        AddLabel(task, LookupTaskTypeLabel(type), task.actualBar.left, task.actualBar.top - 0.1);
    // Days against minutes: the line shows once the start moved by more than a day for every
    // minute of the chart's unit, which in practice means only far-off starts get it.
    const double unit = static_cast<double>(EngineCalendarSettings().CSCalendarUnit);
    if (moved && std::fabs(task.actualStart - task.plannedStart) / unit > 1.0) {
        DrawSlipConnector(task);
    }
    return {plannedRight, actualRight};
}
