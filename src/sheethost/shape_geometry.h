// Geometry of shapes: the end points of lines and connectors, connection sites, resizing, and the
// rerouting that keeps glued connectors attached when the shapes they join move.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "sheethost/shape_list.h"
#include "sheethost/shape_model.h"

namespace sheethost {

struct Point {
    double x = 0;
    double y = 0;
};

bool IsConnector(const Shape& shape);

// The points a line or connector runs between, read from its box and flips.
Point BeginPoint(const Shape& shape);
Point EndPoint(const Shape& shape);
// Lays a line or connector between two points: its box spans them and the flips say which
// corner each is.
void SetEndPoints(Shape& shape, Point begin, Point end);

// Connection sites: every shape but a line or connector offers the four of its bounding box,
// numbered counter-clockwise from the top as the spreadsheet numbers a rectangle's
// (1 top middle, 2 left middle, 3 bottom middle, 4 right middle).
int ConnectionSiteCount(const Shape& shape);
std::optional<Point> ConnectionSite(const Shape& shape, int site);

// Moves and sizes a shape's box; a freeform's nodes are carried along and scaled with it.
void SetBounds(Shape& shape, double left, double top, double width, double height);

// The adjustments a new auto shape of this type starts with (none for a rectangle).
std::vector<double> DefaultAdjustments(int autoShapeType);

// Puts the glued ends of a connector back on their sites and, for elbow and curved connectors
// glued at both ends, gives it the adjustments of its route: one (the middle segment at half way)
// when the route runs straight on from site to site, three when it must double back around an end
// (a fixed stub out of each site), none when it turns once. Adjustments already set are kept while
// the kind of route stays the same.
void RerouteConnector(Shape& connector, const ShapeList& shapes);
// Reroutes every connector glued to the shape with this id.
void RerouteConnectorsOf(int shapeId, const ShapeList& shapes);

}  // namespace sheethost
