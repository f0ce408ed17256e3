#include "sheethost/shape_geometry.h"

#include <algorithm>
#include <cmath>

namespace sheethost {
namespace {

// How far a doubled-back elbow route stands off from the site it leaves or enters.
constexpr double kRouteStub = 18;

Point SiteDirection(int site) {
    switch (site) {
        case 1:
            return {0, -1};
        case 2:
            return {-1, 0};
        case 3:
            return {0, 1};
        default:
            return {1, 0};
    }
}

std::optional<Point> GluedPoint(const std::optional<ConnectorEnd>& end, const ShapeList& shapes) {
    if (!end) return std::nullopt;
    const std::shared_ptr<Shape> glued = shapes.WithId(end->shapeId);
    if (glued == nullptr) return std::nullopt;
    return ConnectionSite(*glued, end->site);
}

// The adjustments of an elbow route along one axis: `along` picks x (true) or y of the points and
// directions. `current` is kept when it already has the route's count.
std::vector<double> AxisRoute(double begin, double end, double beginDirection, double endDirection,
                              const std::vector<double>& current) {
    const double span = end - begin;
    std::vector<double> route;
    if (beginDirection == -endDirection) {
        if (span * beginDirection >= 0) {
            route = {0.5};
        } else {
            const double out = beginDirection * kRouteStub / span;
            route = {out, 0.5, 1 - out};
        }
    } else {
        // Both sites face the same way: the middle segment lies beyond the outer one.
        const double beyond = beginDirection > 0 ? std::max(begin, end) + kRouteStub
                                                 : std::min(begin, end) - kRouteStub;
        route = {span == 0 ? 1.0 : (beyond - begin) / span};
    }
    return current.size() == route.size() ? current : route;
}

std::vector<double> ElbowAdjustments(const Shape& connector, Point begin, Point end) {
    const Point from = SiteDirection(connector.beginConnection->site);
    const Point to = SiteDirection(connector.endConnection->site);
    const bool fromHorizontal = from.x != 0;
    const bool toHorizontal = to.x != 0;
    if (fromHorizontal != toHorizontal) return {};
    return fromHorizontal ? AxisRoute(begin.x, end.x, from.x, to.x, connector.adjustments)
                          : AxisRoute(begin.y, end.y, from.y, to.y, connector.adjustments);
}

}  // namespace

bool IsConnector(const Shape& shape) {
    return shape.connectorType.has_value();
}

Point BeginPoint(const Shape& shape) {
    return {shape.horizontalFlip ? shape.left + shape.width : shape.left,
            shape.verticalFlip ? shape.top + shape.height : shape.top};
}

Point EndPoint(const Shape& shape) {
    return {shape.horizontalFlip ? shape.left : shape.left + shape.width,
            shape.verticalFlip ? shape.top : shape.top + shape.height};
}

void SetEndPoints(Shape& shape, Point begin, Point end) {
    shape.left = std::min(begin.x, end.x);
    shape.top = std::min(begin.y, end.y);
    shape.width = std::abs(end.x - begin.x);
    shape.height = std::abs(end.y - begin.y);
    shape.horizontalFlip = end.x < begin.x;
    shape.verticalFlip = end.y < begin.y;
}

int ConnectionSiteCount(const Shape& shape) {
    return IsConnector(shape) ? 0 : 4;
}

std::optional<Point> ConnectionSite(const Shape& shape, int site) {
    if (site < 1 || site > ConnectionSiteCount(shape)) return std::nullopt;
    const double middleX = shape.left + shape.width / 2;
    const double middleY = shape.top + shape.height / 2;
    switch (site) {
        case 1:
            return Point{middleX, shape.top};
        case 2:
            return Point{shape.left, middleY};
        case 3:
            return Point{middleX, shape.top + shape.height};
        default:
            return Point{shape.left + shape.width, middleY};
    }
}

void SetBounds(Shape& shape, double left, double top, double width, double height) {
    const double scaleX = shape.width == 0 ? 1 : width / shape.width;
    const double scaleY = shape.height == 0 ? 1 : height / shape.height;
    for (FreeformNode& node : shape.nodes) {
        node.x = left + (node.x - shape.left) * scaleX;
        node.y = top + (node.y - shape.top) * scaleY;
    }
    shape.left = left;
    shape.top = top;
    shape.width = width;
    shape.height = height;
}

std::vector<double> DefaultAdjustments(int autoShapeType) {
    switch (autoShapeType) {
        case 2:   // parallelogram
        case 3:   // trapezoid
        case 10:  // hexagon
            return {0.25};
        case 5:
            return {0.16667};  // rounded rectangle
        case 6:
            return {0.29289};  // octagon
        case 7:                // isosceles triangle
        case 51:               // pentagon
        case 52:               // chevron
            return {0.5};
        case 33:  // right, left, up and down arrows
        case 34:
        case 35:
        case 36:
            return {0.5, 0.5};
        default:
            return {};
    }
}

void RerouteConnector(Shape& connector, const ShapeList& shapes) {
    const std::optional<Point> gluedBegin = GluedPoint(connector.beginConnection, shapes);
    const std::optional<Point> gluedEnd = GluedPoint(connector.endConnection, shapes);
    if (!gluedBegin && !gluedEnd) return;
    const Point begin = gluedBegin.value_or(BeginPoint(connector));
    const Point end = gluedEnd.value_or(EndPoint(connector));
    SetEndPoints(connector, begin, end);
    const bool routed = connector.connectorType == mso::kConnectorElbow ||
                        connector.connectorType == mso::kConnectorCurve;
    if (routed && gluedBegin && gluedEnd) {
        connector.adjustments = ElbowAdjustments(connector, begin, end);
    }
}

void RerouteConnectorsOf(int shapeId, const ShapeList& shapes) {
    for (const auto& connector : shapes.GluedTo(shapeId)) RerouteConnector(*connector, shapes);
}

}  // namespace sheethost
