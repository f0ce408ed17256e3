// Bar shapes: the plain bar copied from its template, and the six bracket shapes a summary line
// takes under a bar style.
#include <array>
#include <vector>

#include "core/engine_state.h"
#include "gantt/drawing.h"
#include "gantt/gantt.h"

namespace {

// One point of a shaped bar, relative to the bar box: x from its left (L) or right (R) end plus
// sign * H / divisor, y at its top, its bottom or half way down.
enum class End { kLeft, kRight };
enum class Depth { kTop, kBottom, kMiddle };
struct OutlinePoint {
    End end;
    int sign;
    int divisor;
    Depth depth;
};

constexpr End L = End::kLeft;
constexpr End R = End::kRight;
constexpr Depth T = Depth::kTop;
constexpr Depth B = Depth::kBottom;
constexpr Depth M = Depth::kMiddle;

// The upper half-height body of the bar with pointed ends reaching down to the bar's height.
const std::array<std::vector<OutlinePoint>, 6> kStyleOutlines = {{
    {{L, -1, 2, T},
     {L, -1, 2, M},
     {L, 0, 1, B},
     {L, 1, 2, M},
     {R, -1, 2, M},
     {R, 0, 1, B},
     {R, 1, 2, M},
     {R, 1, 2, T},
     {L, -1, 2, T}},
    {{L, 0, 1, T},
     {L, 0, 1, B},
     {L, 1, 2, M},
     {R, -1, 2, M},
     {R, 0, 1, B},
     {R, 0, 1, T},
     {L, 0, 1, T}},
    {{L, 0, 1, T},
     {L, -1, 2, M},
     {L, 0, 1, B},
     {L, 1, 2, M},
     {R, -1, 2, M},
     {R, 0, 1, B},
     {R, 1, 2, M},
     {R, 0, 1, T},
     {L, 0, 1, T}},
    {{L, -1, 6, T},
     {L, -1, 6, M},
     {L, -1, 2, M},
     {L, 0, 1, B},
     {L, 1, 2, M},
     {R, -1, 2, M},
     {R, 0, 1, B},
     {R, 1, 2, M},
     {R, 1, 6, M},
     {R, 1, 6, T},
     {L, -1, 6, T}},
    {{L, -1, 2, T},
     {L, 0, 1, B},
     {L, 1, 2, M},
     {R, -1, 2, M},
     {R, 0, 1, B},
     {R, 1, 2, T},
     {L, -1, 2, T}},
    {{L, 0, 1, T},
     {L, -1, 1, M},
     {L, 0, 1, B},
     {L, 0, 1, M},
     {R, 0, 1, M},
     {R, 0, 1, B},
     {R, 1, 1, M},
     {R, 0, 1, T},
     {L, 0, 1, T}},
}};

// Freeform editing and segment types: automatic, straight line.
constexpr int kEditAuto = 0;
constexpr int kSegmentLine = 0;

}  // namespace

XlObject BuildShapedBar(std::int64_t style, double left, double top, double width, double height) {
    if (style < 1 || style > static_cast<std::int64_t>(kStyleOutlines.size())) {
        return XlObject();
    }
    // Styles after the first place their right end at single precision.
    const double right =
        style == 1 ? left + width : static_cast<double>(static_cast<float>(left + width));
    const auto at = [&](const OutlinePoint& point) {
        const double x =
            (point.end == End::kLeft ? left : right) + point.sign * height / point.divisor;
        const double y = point.depth == Depth::kTop      ? top
                         : point.depth == Depth::kBottom ? top + height
                                                         : top + height / 2;
        return std::pair{x, y};
    };
    const std::vector<OutlinePoint>& outline = kStyleOutlines[static_cast<std::size_t>(style - 1)];
    const auto [firstX, firstY] = at(outline.front());
    const XlObject builder = EngineWbsSheet().BuildFreeform(kEditAuto, firstX, firstY);
    for (std::size_t i = 1; i < outline.size(); ++i) {
        const auto [x, y] = at(outline[i]);
        builder.AddNodes(kSegmentLine, kEditAuto, x, y);
    }
    return builder.ConvertToShape();
}

XlObject DrawBarShape(TaskRecord& task, double left, double top, double width, double rowHeight,
                      const ShapeTemplate& look) {
    const double height = look.Height();
    const double y = top + (rowHeight - height) / 2;
    const std::int64_t style = EngineGanttStyles().barStyle;
    XlObject shape;
    if (style > 0 && task.isLeaf == 0) {
        // The leaf flag doubles as the guard that draws the plain rectangle underneath: it keeps
        // the connection sites a connector glues to, hidden under the bracket.
        task.isLeaf = 1;
        const XlObject sites = DrawBarShape(task, left, top, width, rowHeight, look);
        task.isLeaf = 0;
        sites.SetNumber("Fill.Visible", 0);
        sites.SetNumber("Line.Visible", 0);
        shape = BuildShapedBar(style, left, y, width, height);
    } else {
        shape = EngineWbsSheet().GetObjectPath(".Shapes.AddShape(%e,%e,%e,%e,%e)",
                                               look.AutoShapeType(), left, y, width, height);
    }
    if (shape.IsNothing()) {
        return shape;
    }
    look.StyleShape(shape);
    NameNewShape(shape, task, BarTemplateName());
    shape.SetNumber("Placement", kMoveAndSize);
    return shape;
}

double DrawBar(TaskRecord& task, const BarRect& rect, const ShapeTemplate& look) {
    return RightEdge(DrawBarShape(task, rect.left, rect.top, rect.width, rect.height, look));
}
