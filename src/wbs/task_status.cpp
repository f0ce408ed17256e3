#include "wbs/task_status.h"

#include <optional>

#include "calendar/task_tests.h"
#include "core/engine_state.h"
#include "gantt/templates.h"
#include "settings/settings.h"

namespace {

// The host's "no colour" and its grey of the standard palette.
constexpr double kNoColour = -4142;
constexpr double kGrey = 15;
// Placement: the shape moves and sizes with the cells under it.
constexpr double kMoveAndSize = 1;
// The frame stands this far out of the predecessors cell on either side.
constexpr double kFrameMargin = 4;

XlObject RowRange(std::int64_t row) {
    const SettingsRecord& settings = EngineSettings();
    const std::string number = std::to_string(row);
    return EngineWbsSheet().RangeOf(settings.firstCol + number + ":" + settings.lastCol + number);
}

void DeleteShapeIfPresent(const std::string& name) {
    const XlObject shape = EngineWbsSheet().ShapeByName(name);
    if (!shape.IsNothing()) {
        shape.Delete();
    }
}

XlObject AddShape(const ShapeTemplate& look, const BarRect& box) {
    return EngineWbsSheet().GetObjectPath(".Shapes.AddShape(%e,%e,%e,%e,%e)", look.AutoShapeType(),
                                          box.left, box.top, box.width, box.height);
}

void FinishShape(const XlObject& shape, const ShapeTemplate& look, const std::string& name) {
    look.StyleShape(shape);
    shape.SetString("Name", name);
    shape.SetNumber("Placement", kMoveAndSize);
}

BarRect CellBox(const XlObject& cell) {
    return {cell.GetLeft(), cell.GetTop(), cell.GetWidth(), cell.GetHeight()};
}

void DrawDependencyFrame(const TaskRecord& task) {
    const ShapeTemplate look = DependencyFrameTemplate();
    const BarRect cell =
        CellBox(EngineWbsSheet().Cell(task.row, EngineSettings().predecessorsColNo));
    const XlObject frame = AddShape(
        look, {cell.left - kFrameMargin, cell.top, cell.width + 2 * kFrameMargin, cell.height});
    FinishShape(frame, look, kDependencyFramePrefix + std::to_string(task.row));
    // Only the outline shows, so the predecessors stay readable.
    frame.SetNumber("Fill.Visible", 0);
}

std::optional<StatusMarker> StatusOf(TaskRecord& task) {
    ComputeTaskEvm(task);
    // Taken in this order: a late task shows the delay marker even in its last half.
    if (IsTaskBehind(task)) return StatusMarker::kDelay;
    if (IsTaskInLastHalf(task)) return StatusMarker::kEnd;
    if (IsTaskInFirstHalf(task)) return StatusMarker::kStart;
    return std::nullopt;
}

void DrawStatusMarker(const TaskRecord& task, StatusMarker marker) {
    const ShapeTemplate look = StatusMarkerTemplate(marker);
    const BarRect cell = CellBox(EngineWbsSheet().Cell(task.row, EngineSettings().taskNameColNo));
    const double width = look.Width();
    const double height = look.Height();
    const XlObject shape = AddShape(look, {cell.left + (cell.width - width) / 2,
                                           cell.top + (cell.height - height) / 2, width, height});
    FinishShape(shape, look, kStatusMarkerPrefix + std::to_string(task.row));
}

}  // namespace

void ColourTaskRow(TaskRecord& task) {
    const SettingsRecord& settings = EngineSettings();
    const std::string row = std::to_string(task.row);
    const XlObject range = RowRange(task.row);
    range.Call(".FormatConditions.Delete");
    range.SetNumber("Interior.ColorIndex", kNoColour);
    DeleteShapeIfPresent(kStatusMarkerPrefix + row);
    DeleteShapeIfPresent(kDependencyFramePrefix + row);

    // The row's name cells are read last: most tasks are not complete.
    if (settings.taskColorCompletedFlg == 1 && IsTaskComplete(task) && IsTaskRow(task.row)) {
        // A completed task is done with: no frame, no marker.
        range.SetNumber("Interior.ColorIndex", kGrey);
        return;
    }
    if (task.dependencyError != 0) {
        DrawDependencyFrame(task);
    }
    if (task.isLeaf == 0) {
        range.SetNumber("Interior.Color", SummaryLevelTemplate(task.level).FillColor());
        return;
    }
    if (settings.taskColorUseFlg == 1 && !IsTaskComplete(task) && task.plannedStart != 0) {
        if (const std::optional<StatusMarker> marker = StatusOf(task)) {
            DrawStatusMarker(task, *marker);
        }
    }
}
