// The day's progress line: one freeform polyline that runs down the chart column of the present
// moment and, on each task's row, swings out to the point the task has reached and back. Tasks
// ahead of plan pull it right, late tasks pull it left. It is named after the day, so a second
// drawing the same day replaces it while earlier days' lines stay as a history.
#include "gantt/progress_lines.h"

#include <string>

#include "calendar/task_tests.h"
#include "core/clock.h"
#include "core/engine_state.h"
#include "gantt/drawing.h"
#include "gantt/gantt.h"
#include "gantt/templates.h"
#include "settings/settings.h"
#include "values/values.h"

namespace {

// The host's values for a freeform of straight segments with corner nodes.
constexpr int kStraightSegment = 0;
constexpr int kCornerNode = 0;
// The look of the line when the workbook has no template for it: a red (255, 0, 0) line of 1.5
// points, solid, so that it stands out from the bars.
ShapeStyle BuiltInProgressLineStyle() {
    ShapeStyle style;
    style.lineWeight = 1.5;
    style.lineDashStyle = 1;
    style.lineStyle = 1;
    style.lineForeColor = 255;
    style.lineBackColor = 0xFFFFFF;
    style.fillTransparency = 1;
    return style;
}

// Where today's line stands. Kept in single precision, as the host's shape coordinates are.
struct ProgressLine {
    float x0 = 0;
    float y0 = 0;
    float height = 0;
    std::string name;
};

ProgressLine BeginProgressLine() {
    const double now = NowSerial();
    const SettingsRecord& settings = EngineSettings();
    const BarRect first = TimeToCellRect(settings.firstTaskRow, now);
    const BarRect last = TimeToCellRect(settings.lastTableRow, now);
    ProgressLine line;
    line.x0 = static_cast<float>(first.left);
    line.y0 = static_cast<float>(first.top);
    line.height = static_cast<float>((last.top - line.y0) + last.height);
    line.name = ProgressLineTemplateName() + values::FormatDate(now, "yyyymmdd");
    const XlObject earlier = EngineWbsSheet().ShapeByName(line.name);
    if (!earlier.IsNothing()) {
        earlier.Delete();
    }
    return line;
}

// The task's shape whose end shows how far it got: "A" is the first shape drawn for the row (the
// planned bar or symbol), "B" the second (the progress or actual bar, or the started symbol).
char ProgressShapeLetter(TaskRecord& task) {
    if (IsTaskComplete(task)) {
        return ActualDatesArePlanned(task) ? 'A' : 'B';
    }
    if (TaskHasType(task)) {
        return ActualStartIsPlanned(task) ? 'A' : 'B';
    }
    return IsTaskStarted(task) ? 'B' : 'A';
}

void AddProgressPoint(TaskRecord& task, const ProgressLine& line, const XlObject& builder) {
    // A summary's progress is that of its tasks, which add their own points.
    if (task.isLeaf != 1) {
        return;
    }
    const XlObject sheet = EngineWbsSheet();
    const XlObject shape =
        sheet.ShapeByName(BarTemplateName() + std::to_string(task.row) + ProgressShapeLetter(task));
    if (shape.IsNothing()) {
        return;
    }
    float x = static_cast<float>(shape.GetLeft() + shape.GetWidth());
    const float y = static_cast<float>(shape.GetTop() + shape.GetHeight() / 2);
    // Work finished before today draws no point.
    if (IsTaskComplete(task) && x < line.x0) {
        x = -1;
    }
    // A task not yet started pulls the line back to its start, unless it is not due yet.
    if (!IsTaskStarted(task)) {
        x = static_cast<float>(shape.GetLeft());
        if (x > line.x0) {
            x = -1;
        }
    }
    if (y > 0 && x > 0) {
        const XlObject rowCell = sheet.Cell(task.row, 1);
        const double top = rowCell.GetTop();
        builder.AddNodes(kStraightSegment, kCornerNode, line.x0, top);
        builder.AddNodes(kStraightSegment, kCornerNode, x, y);
        builder.AddNodes(kStraightSegment, kCornerNode, line.x0, top + rowCell.GetHeight());
    }
}

// Gives the line its template's look. The template's fill visibility is kept too: a polyline
// filled by force would cover the bars between it and today's column.
void StyleProgressLine(const XlObject& shape) {
    const XlObject& look = EngineGanttStyles().progressLineTemplate;
    if (!look.IsNothing()) {
        CopyShapeStyle(look, shape);
        shape.CopyNumber("Fill.Visible", look);
        return;
    }
    ApplyShapeStyle(BuiltInProgressLineStyle(), shape);
    shape.SetNumber("Fill.Visible", 0);
}

}  // namespace

void DrawProgressLines() {
    const ProgressLine line = BeginProgressLine();
    const XlObject builder = EngineWbsSheet().BuildFreeform(kCornerNode, line.x0, line.y0);
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        TaskRecord_ReadRow(*task);
        // Recurring tasks have no single point of progress.
        if (!ParseTaskCycle(*task)) {
            AddProgressPoint(*task, line, builder);
        }
    }
    builder.AddNodes(kStraightSegment, kCornerNode, line.x0, line.y0 + line.height);
    const XlObject shape = builder.ConvertToShape();
    shape.SetString("Name", line.name);
    StyleProgressLine(shape);
    shape.SetNumber("Placement", kMoveAndSize);
}
