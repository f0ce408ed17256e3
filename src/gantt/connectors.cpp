// Connectors between the bars of linked tasks, glued to the first shape of each row so that the
// host keeps them attached when the bars move, and the slip line of a typed task.
#include <cctype>
#include <cmath>
#include <string>

#include "core/engine_state.h"
#include "gantt/chart.h"
#include "gantt/drawing.h"
#include "gantt/gantt.h"
#include "settings/settings.h"

namespace {

// Connection sites of a rectangle as the host numbers them.
constexpr int kLeftSite = 2;
constexpr int kRightSite = 4;
// Connector kinds and the triangle arrowhead.
constexpr int kStraight = 1;
constexpr int kElbow = 2;
constexpr double kTriangle = 2;

XlObject FirstShapeOfRow(std::string_view prefix, std::int64_t row, int index = 0) {
    return EngineWbsSheet().ShapeByName(RowShapeName(prefix, row, index));
}

// Begin and end sites of a link type; anything but the four known types links finish to start.
std::pair<int, int> SitesOf(std::string_view type) {
    if (type == "FF") return {kRightSite, kRightSite};
    if (type == "SS") return {kLeftSite, kLeftSite};
    if (type == "SF") return {kLeftSite, kRightSite};
    return {kRightSite, kLeftSite};
}

// The number nearest to `value`, ties to the even one.
float RoundHalfEven(float value) {
    return std::nearbyint(value);
}

void DrawLink(const TaskRecord& predecessor, const TaskRecord& successor, std::string_view type) {
    const std::string barPrefix = BarTemplateName();
    ConnectorLink link;
    link.fromShape = FirstShapeOfRow(barPrefix, predecessor.row);
    link.toShape = FirstShapeOfRow(barPrefix, successor.row);
    // A task without a line on the chart has nothing to glue to; an unglued connector would
    // stand at the sheet's corner.
    if (link.fromShape.IsNothing() || link.toShape.IsNothing()) {
        return;
    }
    link.colourFromTemplate = 1;
    link.adjustElbow = 1;
    const auto [begin, end] = SitesOf(type);
    AddConnector(link, begin, end);
    NameNewShape(link.connector, successor, ConnectorTemplateName());
    if (EngineSettings().taskLinkerColorFlg == 1) {
        link.connector.SetNumber("Line.ForeColor.RGB",
                                 link.fromShape.GetNumber("Fill.ForeColor.RGB"));
    }
}

}  // namespace

std::string RowShapeName(std::string_view prefix, std::int64_t row, int index) {
    return std::string(prefix) + std::to_string(row) + static_cast<char>('A' + index);
}

std::pair<float, float> ComputeElbowAdjustments(const ConnectorLink& link) {
    const float barHeight = static_cast<float>(PlainBarTemplate().Height());
    const float offset = barHeight / 2.0f + 2.0f;
    const float minimum = barHeight / 1.5f;
    const XlObject adjustments = link.connector.GetAdjustments();
    const float first = static_cast<float>(adjustments.GetItemNum(1));
    float p = std::fabs(first);
    float q = static_cast<float>(adjustments.GetItemNum(2));
    if (p > 0) {
        const float whole = RoundHalfEven(p + 0.5f) - 1.0f;
        const float fraction = p - whole;
        const float least = minimum / static_cast<float>(link.connector.GetWidth());
        p = whole < 1.0f ? (fraction < least ? fraction : least) : std::fabs(first) - least;
    }
    const float height = static_cast<float>(link.connector.GetHeight());
    if (height > barHeight) {
        q = offset / height;
    }
    return {p, q};
}

void AddConnector(ConnectorLink& link, int begin, int end) {
    const XlObject& from = link.fromShape;
    const XlObject& to = link.toShape;
    const double fromLeft = from.GetLeft();
    const double toLeft = to.GetLeft();
    // Bars that nearly meet, the second just after the first, are joined by a straight line.
    int kind = kElbow;
    if ((begin == kRightSite && end == kLeftSite) || (begin == kLeftSite && end == kRightSite)) {
        const float gap = begin == kRightSite
                              ? static_cast<float>(toLeft - fromLeft - from.GetWidth())
                              : static_cast<float>(fromLeft - toLeft - to.GetWidth());
        if (gap >= 0 && gap <= to.GetHeight() / 2) {
            kind = kStraight;
        }
    }
    link.connector = EngineWbsSheet().GetObjectPath(".Shapes.AddConnector(%d,%e,%e,%e,%e)", kind,
                                                    fromLeft, from.GetTop(), toLeft, to.GetTop());
    const XlObject& connector = link.connector;
    const ShapeTemplate look = ConnectorTemplate();
    // The line and the connector format are fetched once each.
    const XlObject line = connector.GetObjectPath(".Line");
    line.SetNumber("EndArrowheadStyle", kTriangle);
    line.SetNumber("ForeColor.RGB", link.colourFromTemplate == 1 ? look.LineColor() : 0);
    line.SetNumber("Weight", look.LineWeight());
    const XlObject format = connector.GetObjectPath(".ConnectorFormat");
    format.Call(".BeginConnect(%o,%d)", from.object(), begin);
    format.Call(".EndConnect(%o,%d)", to.object(), end);
    if (link.adjustElbow == 1) {
        const auto [position, offset] = ComputeElbowAdjustments(link);
        const XlObject adjustments = connector.GetAdjustments();
        // The elbow keeps the side the host routed it to.
        const float side = adjustments.GetItemNum(1) < 0 ? -1.0f : 1.0f;
        adjustments.SetItemNum(1, side * position);
        adjustments.SetItemNum(2, side * offset);
        adjustments.SetItemNum(3, 1.0 - adjustments.GetItemNum(1));
    }
    connector.SetNumber("Placement", kMoveAndSize);
    connector.SetTop(connector.GetTop() - 1.5);
}

void DrawSlipConnector(const TaskRecord& task) {
    const std::string barPrefix = BarTemplateName();
    ConnectorLink link;
    link.fromShape = FirstShapeOfRow(barPrefix, task.row, 0);
    link.toShape = FirstShapeOfRow(barPrefix, task.row, 1);
    if (task.actualStart >= task.plannedStart) {
        AddConnector(link, kRightSite, kLeftSite);
    } else {
        AddConnector(link, kLeftSite, kRightSite);
    }
    link.connector.SetHeight(0);
    // Named like the task's bars, so it goes with them.
    NameNewShape(link.connector, task, barPrefix);
}

void DrawTaskConnectors(const TaskRecord& task) {
    if (task.predecessors.empty()) {
        return;
    }
    std::string_view items = task.predecessors;
    for (;;) {
        const std::size_t comma = items.find(',');
        const std::string_view item = items.substr(0, comma);
        std::string type(item.substr(item.size() < 2 ? 0 : item.size() - 2));
        for (char& c : type) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        std::string_view reference = item.substr(0, item.size() - type.size());
        // An item without a type suffix ends in a digit of its reference.
        if (!type.empty() && std::isdigit(static_cast<unsigned char>(type.back()))) {
            type = "FS";
            reference = item;
        }
        if (const TaskRecord* predecessor = Tasks_Find(reference)) {
            DrawLink(*predecessor, task, type);
        }
        if (comma == std::string_view::npos) {
            return;
        }
        items.remove_prefix(comma + 1);
    }
}

void DrawAllConnectors() {
    DeleteTaskConnectors();
    for (const TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        DrawTaskConnectors(*task);
    }
}
