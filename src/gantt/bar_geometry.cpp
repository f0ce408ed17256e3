#include <cmath>
#include <cstdint>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "gantt/gantt.h"
#include "settings/settings.h"
#include "values/values.h"

BarRect ChartGeometry::CellRect(std::int64_t row, std::int64_t column) {
    auto across = columns_.find(column);
    auto down = rows_.find(row);
    if (across == columns_.end() || down == rows_.end()) {
        const XlObject cell = EngineWbsSheet().Cell(row, column);
        if (across == columns_.end()) {
            across = columns_.emplace(column, Extent{cell.GetLeft(), cell.GetWidth()}).first;
        }
        if (down == rows_.end()) {
            down = rows_.emplace(row, Extent{cell.GetTop(), cell.GetHeight()}).first;
        }
    }
    return {across->second.start, down->second.start, across->second.size, down->second.size};
}

BarRect TimeToCellRect(std::int64_t row, double t, ChartGeometry& geometry) {
    const std::int64_t unit = EngineCalendarSettings().CSCalendarUnit;
    // The refresh refuses a zero unit before any drawing; this keeps a stray call from dividing.
    if (unit == 0) {
        return {};
    }
    const BarRect cell = geometry.CellRect(row, DateToColumn(t));
    const double minuteWidth = cell.width / static_cast<double>(unit);
    // The column is clamped to the project, the minute inside it is not: a time outside the span
    // keeps its offset within its column.
    const std::int64_t minute = values::MinutesBetween(EngineSettings().projectStart, t) % unit;
    // The slot is drawn 1.5 points short of a minute, so that neighbouring slots stay apart.
    return {cell.left + static_cast<double>(minute) * minuteWidth, cell.top, minuteWidth - 1.5,
            cell.height};
}

BarRect TimeToCellRect(std::int64_t row, double t) {
    ChartGeometry geometry;
    return TimeToCellRect(row, t, geometry);
}

BarRect SpanRect(const BarRect& a, const BarRect& b) {
    return {a.left < b.left ? a.left : b.left, a.top < b.top ? a.top : b.top,
            std::fabs(b.left + b.width - a.left), a.height >= b.height ? a.height : b.height};
}

void ComputeTaskBarRects(TaskRecord& task, ChartGeometry& geometry) {
    if (task.plannedStart != 0) {
        task.plannedStartSlot = TimeToCellRect(task.row, task.plannedStart, geometry);
        if (task.plannedEnd != 0) {
            task.plannedFinishSlot = TimeToCellRect(task.row, task.plannedEnd, geometry);
            task.plannedBar = SpanRect(task.plannedStartSlot, task.plannedFinishSlot);
        } else {
            task.plannedBar = task.plannedStartSlot;
        }
    }
    if (task.actualStart == 0) {
        task.actualBar = task.plannedBar;
        return;
    }
    task.actualStartSlot = TimeToCellRect(task.row, task.actualStart, geometry);
    if (task.actualEnd == 0) {
        task.actualBar = task.actualStartSlot;
        return;
    }
    task.actualFinishSlot = TimeToCellRect(task.row, task.actualEnd, geometry);
    task.actualBar = SpanRect(task.actualStartSlot, task.actualFinishSlot);
}
