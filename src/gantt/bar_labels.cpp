// Text on the chart: the label beside a task's bars and the percentage of a started task.
#include "calendar/task_tests.h"
#include "core/engine_state.h"
#include "gantt/drawing.h"
#include "gantt/gantt.h"
#include "values/values.h"

namespace {

// The host's text values: horizontal text, centred vertically, aligned left.
constexpr int kHorizontalText = 1;
constexpr double kCentre = -4108;
constexpr double kAlignLeft = -4131;

}  // namespace

double AddLabel(const TaskRecord& task, WideStringView text, double x, double y) {
    // The box starts with its position as its size; the automatic size replaces it at once.
    const XlObject box = EngineWbsSheet().GetObjectPath(".Shapes.AddTextbox(%d,%e,%e,%e,%e)",
                                                        kHorizontalText, x, y, x, y);
    const GanttStyles& styles = EngineGanttStyles();
    // The text frame, its characters and their font are fetched once: each step of a member
    // path is a call of its own.
    const XlObject frame = box.GetObjectPath(".TextFrame");
    const XlObject characters = frame.GetObjectPath(".Characters");
    characters.SetWide("Text", text);
    frame.SetNumber("AutoSize", -1);
    const XlObject font = characters.GetObjectPath(".font");
    font.SetWide("Name", styles.labelFontName);
    font.SetNumber("Size", styles.labelFontSize);
    frame.SetNumber("VerticalAlignment", kCentre);
    frame.SetNumber("HorizontalAlignment", kAlignLeft);
    frame.SetNumber("AutoMargins", 0);
    for (const char* margin : {"MarginLeft", "MarginBottom", "MarginRight", "MarginTop"}) {
        frame.SetNumber(margin, 0);
    }
    box.SetNumber("Fill.Visible", 0);
    box.SetNumber("Line.Visible", 0);
    box.SetNumber("Placement", kMoveAndSize);
    box.SetTop((task.plannedBar.height - box.GetHeight()) / 2 + y + 1.0);
    NameNewShape(box, task, BarTemplateName());
    return RightEdge(box);
}

double DrawProgressBar(TaskRecord& task) {
    const double plannedWidth =
        task.plannedBar.width * static_cast<double>(values::TextToInteger(task.percentText)) * 0.01;
    double x = task.actualBar.left + plannedWidth;
    // When the task started on plan the overlay on the planned bar already shows the progress;
    // otherwise the progress is drawn where the work actually began.
    if (!ActualStartIsPlanned(task)) {
        x = RightEdge(DrawBarShape(task, task.actualBar.left, task.plannedBar.top, plannedWidth,
                                   task.plannedBar.height, ProgressBarTemplate()));
    }
    const WideString text = Cut(Widen(task.percentText) + OLESTR("%"), kPercentLabelLength);
    return AddLabel(task, text, x + 2.0, task.plannedBar.top);
}
