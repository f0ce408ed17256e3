// A task's line of the chart: its planned bar in the look its kind and resource choose, the
// progress of a started task, the actual bar of a finished task that ran off plan, and the label.
#include <algorithm>

#include "calendar/task_tests.h"
#include "core/engine_state.h"
#include "gantt/chart.h"
#include "gantt/drawing.h"
#include "gantt/gantt.h"
#include "values/values.h"

namespace {

// A complete task in the complete look, an ordinary task in its resource's, a summary task in
// its level's.
ShapeTemplate BarTemplateOf(TaskRecord& task) {
    if (IsTaskComplete(task)) {
        return CompleteBarTemplate();
    }
    if (task.isLeaf == 1) {
        const ResourceRecord* resource = FindResource(task.resourceCell);
        return resource != nullptr ? ResourceBarTemplate(resource->name) : PlainBarTemplate();
    }
    return SummaryLevelTemplate(task.level);
}

// The progress drawn over the planned bar; returns the right edge of the last shape drawn, 0 when
// there is nothing to draw.
double DrawProgress(TaskRecord& task) {
    if (IsTaskComplete(task)) {
        return ActualDatesArePlanned(task) ? 0.0
                                           : DrawBar(task, task.actualBar, ProgressBarTemplate());
    }
    if (!IsTaskStarted(task)) {
        return 0.0;
    }
    // A started task without a percentage shows as a fifth done rather than not at all.
    if (values::TextToInteger(task.percentText) == 0) {
        task.percentText = "20";
    }
    const BarRect& planned = task.plannedBar;
    const XlObject overlay = DrawBarShape(task, planned.left, planned.top, planned.width,
                                          planned.height, CompleteBarTemplate());
    overlay.SetWidth(static_cast<double>(values::TextToInteger(task.percentText)) * planned.width *
                     0.01);
    return DrawProgressBar(task);
}

// Outline number and name, then the resource in parentheses and the note in brackets, each step
// cut to the label's length.
WideString LabelText(const TaskRecord& task) {
    WideString text = Cut(Widen(task.wbsNo + BstrText(task.nameCell)), kLabelLength);
    if (BstrLength(task.resourceCell) > 0) {
        text = Cut(text + OLESTR(" (") + Widen(BstrText(task.resourceCell)) + OLESTR(")"),
                   kLabelLength);
    }
    if (!task.noteText.empty()) {
        text = Cut(text + OLESTR(" [ ") + Widen(task.noteText) + OLESTR(" ]"), kLabelLength);
    }
    return text;
}

}  // namespace

WideString Cut(WideString text, std::size_t length) {
    if (text.size() > length) {
        text.resize(length);
    }
    return text;
}

double RightEdge(const XlObject& shape) {
    return shape.GetLeft() + shape.GetWidth();
}

void DrawTaskBars(TaskRecord& task, ChartGeometry& geometry) {
    TaskRecord_ReadRow(task);
    ComputeTaskBarRects(task, geometry);
    if (task.plannedStart == 0) {
        return;
    }
    double plannedRight = 0;
    double actualRight = 0;
    if (TaskHasType(task)) {
        std::tie(plannedRight, actualRight) = DrawTypedSymbols(task);
    } else {
        const ShapeTemplate look = BarTemplateOf(task);
        plannedRight = DrawBar(task, task.plannedBar, look);
        // Under a bar style the summary line is a bracket over its children: no progress on it.
        if (!(EngineGanttStyles().barStyle > 0 && task.isLeaf == 0)) {
            actualRight = DrawProgress(task);
        }
    }
    const double x = 5.0 + std::max({0.0, plannedRight, actualRight});
    AddLabel(task, LabelText(task), x, task.plannedBar.top);
}

void DrawTaskBars(TaskRecord& task) {
    ChartGeometry geometry;
    DrawTaskBars(task, geometry);
}

void DrawAllTaskBars() {
    DeleteTaskBars();
    // Drawing shapes moves no row or column: each is measured once for the whole table.
    ChartGeometry geometry;
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        DrawTaskBars(*task, geometry);
    }
    DrawAllConnectors();
}
