// The drawing layer: auto shapes by their geometry, freeforms by their nodes, lines and
// connectors along their routes with arrowheads, and the text of text frames.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "render/drawing.h"
#include "render/svg.h"
#include "sheethost/shape_geometry.h"

namespace render {
namespace {

using sheethost::Point;
using sheethost::Shape;
namespace mso = sheethost::mso;

// Auto shape types drawn by their own outline; any other type is drawn as its box.
constexpr int kDiamond = 4;
constexpr int kRoundedRectangle = 5;
constexpr int kOctagon = 6;
constexpr int kIsoscelesTriangle = 7;
constexpr int kRightTriangle = 8;
constexpr int kOval = 9;
constexpr int kHexagon = 10;
constexpr int kRegularPentagon = 12;
constexpr int kRightArrow = 33;
constexpr int kPentagonArrow = 51;
constexpr int kChevron = 52;
constexpr int kStar5 = 92;

// Arrowhead styles.
constexpr int kArrowTriangle = 2;
constexpr int kArrowOpen = 3;
constexpr int kArrowStealth = 4;
constexpr int kArrowDiamond = 5;
constexpr int kArrowOval = 6;

// Text frame alignments.
constexpr int kAlignCentre = -4108;
constexpr int kAlignRight = -4152;
constexpr int kAlignBottom = -4107;

double Adjustment(const Shape& shape, std::size_t index, double preset) {
    return index < shape.adjustments.size() ? shape.adjustments[index] : preset;
}

std::string PointsText(const std::vector<Point>& points) {
    std::string text;
    for (const Point& p : points) {
        if (!text.empty()) text += ' ';
        text += Number(p.x) + "," + Number(p.y);
    }
    return text;
}

// A point of the shape's box given as fractions of its width and height, flips applied.
Point InBox(const Shape& shape, double u, double v) {
    if (shape.horizontalFlip) u = 1 - u;
    if (shape.verticalFlip) v = 1 - v;
    return {shape.left + u * shape.width, shape.top + v * shape.height};
}

std::vector<Point> Outline(const Shape& shape, const std::vector<std::pair<double, double>>& uv) {
    std::vector<Point> points;
    points.reserve(uv.size());
    for (const auto& [u, v] : uv) points.push_back(InBox(shape, u, v));
    return points;
}

// The points of a regular polygon or star inscribed in the box, starting at the top.
std::vector<Point> Radial(const Shape& shape, int corners, double innerRatio) {
    std::vector<Point> points;
    const int steps = innerRatio > 0 ? corners * 2 : corners;
    for (int i = 0; i < steps; ++i) {
        const double angle = -std::numbers::pi / 2 + 2 * std::numbers::pi * i / steps;
        const double radius = innerRatio > 0 && i % 2 == 1 ? innerRatio : 1.0;
        points.push_back(InBox(shape, 0.5 + 0.5 * radius * std::cos(angle),
                               0.5 + 0.5 * radius * std::sin(angle)));
    }
    return points;
}

std::string FillAttributes(const Shape& shape) {
    if (!shape.fill.visible) return " fill=\"none\"";
    std::string out = " fill=\"" + ColourText(shape.fill.foreColor) + "\"";
    if (shape.fill.transparency > 0)
        out += " fill-opacity=\"" + Number(1 - shape.fill.transparency) + "\"";
    return out;
}

std::string DashArray(int dashStyle, double weight) {
    const double w = std::max(weight, 0.75);
    switch (dashStyle) {
        case 2:
        case 3:
            return Number(w) + " " + Number(w);  // square and round dots
        case 4:
            return Number(3 * w) + " " + Number(w);  // dash
        case 5:
            return Number(4 * w) + " " + Number(w) + " " + Number(w) + " " + Number(w);
        case 6:
            return Number(4 * w) + " " + Number(w) + " " + Number(w) + " " + Number(w) + " " +
                   Number(w) + " " + Number(w);
        case 7:
            return Number(8 * w) + " " + Number(3 * w);  // long dash
        case 8:
            return Number(8 * w) + " " + Number(3 * w) + " " + Number(w) + " " + Number(3 * w);
        default:
            return "";
    }
}

std::string StrokeAttributes(const Shape& shape) {
    if (!shape.line.visible) return " stroke=\"none\"";
    std::string out = " stroke=\"" + ColourText(shape.line.foreColor) + "\" stroke-width=\"" +
                      Number(shape.line.weight) + "\"";
    if (shape.line.transparency > 0) {
        out += " stroke-opacity=\"" + Number(1 - shape.line.transparency) + "\"";
    }
    const std::string dashes = DashArray(shape.line.dashStyle, shape.line.weight);
    if (!dashes.empty()) out += " stroke-dasharray=\"" + dashes + "\"";
    return out;
}

std::string Polygon(const std::vector<Point>& points) {
    return "<polygon points=\"" + PointsText(points) + "\"";
}

// The outline element of an auto shape, without its closing "/>".
std::string AutoShapeElement(const Shape& shape) {
    const double w = shape.width;
    const double h = shape.height;
    const double shorter = std::max(std::min(w, h), 0.0);
    switch (shape.autoShapeType) {
        case kOval:
            return "<ellipse cx=\"" + Number(shape.left + w / 2) + "\" cy=\"" +
                   Number(shape.top + h / 2) + "\" rx=\"" + Number(w / 2) + "\" ry=\"" +
                   Number(h / 2) + "\"";
        case kRoundedRectangle: {
            const double radius = Adjustment(shape, 0, 1.0 / 6) * shorter;
            return "<rect x=\"" + Number(shape.left) + "\" y=\"" + Number(shape.top) +
                   "\" width=\"" + Number(w) + "\" height=\"" + Number(h) + "\" rx=\"" +
                   Number(radius) + "\"";
        }
        case kDiamond:
            return Polygon(Outline(shape, {{0.5, 0}, {1, 0.5}, {0.5, 1}, {0, 0.5}}));
        case kIsoscelesTriangle: {
            const double apex = Adjustment(shape, 0, 0.5);
            return Polygon(Outline(shape, {{apex, 0}, {1, 1}, {0, 1}}));
        }
        case kRightTriangle:
            return Polygon(Outline(shape, {{0, 0}, {1, 1}, {0, 1}}));
        case kOctagon: {
            const double a = w > 0 ? Adjustment(shape, 0, 0.2929) * shorter / w : 0;
            const double b = h > 0 ? Adjustment(shape, 0, 0.2929) * shorter / h : 0;
            return Polygon(Outline(
                shape,
                {{a, 0}, {1 - a, 0}, {1, b}, {1, 1 - b}, {1 - a, 1}, {a, 1}, {0, 1 - b}, {0, b}}));
        }
        case kHexagon: {
            const double a = w > 0 ? Adjustment(shape, 0, 0.25) * shorter / w : 0;
            return Polygon(
                Outline(shape, {{a, 0}, {1 - a, 0}, {1, 0.5}, {1 - a, 1}, {a, 1}, {0, 0.5}}));
        }
        case kRegularPentagon:
            return Polygon(Radial(shape, 5, 0));
        case kStar5:
            return Polygon(Radial(shape, 5, 0.38));
        case kPentagonArrow:
        case kChevron: {
            const double a = w > 0 ? Adjustment(shape, 0, 0.5) * shorter / w : 0;
            std::vector<std::pair<double, double>> uv = {
                {0, 0}, {1 - a, 0}, {1, 0.5}, {1 - a, 1}, {0, 1}};
            if (shape.autoShapeType == kChevron) uv.emplace_back(a, 0.5);
            return Polygon(Outline(shape, uv));
        }
        case kRightArrow: {
            const double body = Adjustment(shape, 0, 0.5) / 2;
            const double head = w > 0 ? Adjustment(shape, 1, 0.5) * shorter / w : 0;
            return Polygon(Outline(shape, {{0, 0.5 - body},
                                           {1 - head, 0.5 - body},
                                           {1 - head, 0},
                                           {1, 0.5},
                                           {1 - head, 1},
                                           {1 - head, 0.5 + body},
                                           {0, 0.5 + body}}));
        }
        default:
            return "<rect x=\"" + Number(shape.left) + "\" y=\"" + Number(shape.top) +
                   "\" width=\"" + Number(w) + "\" height=\"" + Number(h) + "\"";
    }
}

// The route of a line or connector from its begin point to its end point. Elbow routes bend at
// their adjustments (fractions of the box): none turns once, one runs on through a middle
// segment, two and three double back around an end.
std::vector<Point> Route(const Shape& shape) {
    const Point begin = sheethost::BeginPoint(shape);
    const Point end = sheethost::EndPoint(shape);
    if (shape.connectorType.value_or(mso::kConnectorStraight) != mso::kConnectorElbow) {
        return {begin, end};
    }
    // In the unflipped box the route runs from (0, 0) to (1, 1).
    std::vector<std::pair<double, double>> uv;
    const auto& a = shape.adjustments;
    switch (a.size()) {
        case 0:
            uv = {{0, 0}, {1, 0}, {1, 1}};
            break;
        case 1:
            uv = {{0, 0}, {a[0], 0}, {a[0], 1}, {1, 1}};
            break;
        case 2:
            uv = {{0, 0}, {a[0], 0}, {a[0], a[1]}, {1, a[1]}, {1, 1}};
            break;
        default:
            uv = {{0, 0}, {a[0], 0}, {a[0], a[1]}, {a[2], a[1]}, {a[2], 1}, {1, 1}};
            break;
    }
    return Outline(shape, uv);
}

// An arrowhead at `tip`, pointing away from `from`.
std::string Arrowhead(const Shape& shape, int style, Point tip, Point from) {
    if (style <= 1) return "";
    const double dx = tip.x - from.x;
    const double dy = tip.y - from.y;
    const double length = std::hypot(dx, dy);
    if (length == 0) return "";
    const double ux = dx / length;
    const double uy = dy / length;
    const double size = std::max(5.0, 3 * shape.line.weight);
    const double half = size * 0.5;
    const std::string colour = ColourText(shape.line.foreColor);
    auto at = [&](double back, double side) {
        return Point{tip.x - ux * back - uy * side, tip.y - uy * back + ux * side};
    };
    switch (style) {
        case kArrowOval:
            return "<circle cx=\"" + Number(tip.x) + "\" cy=\"" + Number(tip.y) + "\" r=\"" +
                   Number(half) + "\" fill=\"" + colour + "\"/>\n";
        case kArrowDiamond:
            return Polygon({at(-half, 0), at(0, half), at(half, 0), at(0, -half)}) + " fill=\"" +
                   colour + "\"/>\n";
        case kArrowOpen:
            return "<polyline points=\"" + PointsText({at(size, half), tip, at(size, -half)}) +
                   "\" fill=\"none\" stroke=\"" + colour + "\" stroke-width=\"" +
                   Number(shape.line.weight) + "\"/>\n";
        case kArrowStealth:
            return Polygon({tip, at(size, half), at(size * 0.7, 0), at(size, -half)}) + " fill=\"" +
                   colour + "\"/>\n";
        case kArrowTriangle:
        default:
            return Polygon({tip, at(size, half), at(size, -half)}) + " fill=\"" + colour + "\"/>\n";
    }
}

void WriteConnector(std::string& svg, const Shape& shape) {
    const std::vector<Point> route = Route(shape);
    svg += "<polyline points=\"" + PointsText(route) + "\" fill=\"none\"" +
           StrokeAttributes(shape) + "/>\n";
    if (!shape.line.visible) return;
    svg += Arrowhead(shape, shape.line.beginArrowheadStyle, route.front(), route[1]);
    svg += Arrowhead(shape, shape.line.endArrowheadStyle, route.back(), route[route.size() - 2]);
}

void WriteFreeform(std::string& svg, const Shape& shape) {
    const auto& nodes = shape.nodes;
    std::string path = "M" + Number(nodes.front().x) + " " + Number(nodes.front().y);
    for (std::size_t i = 1; i < nodes.size(); ++i) {
        // A curve given with corners is three nodes: two control points and its end.
        if (nodes[i].segmentType == 1 && nodes[i].editingType == 1 && i + 2 < nodes.size()) {
            path += "C" + Number(nodes[i].x) + " " + Number(nodes[i].y) + " " +
                    Number(nodes[i + 1].x) + " " + Number(nodes[i + 1].y) + " " +
                    Number(nodes[i + 2].x) + " " + Number(nodes[i + 2].y);
            i += 2;
        } else {
            path += "L" + Number(nodes[i].x) + " " + Number(nodes[i].y);
        }
    }
    const bool closed =
        nodes.size() > 2 && nodes.front().x == nodes.back().x && nodes.front().y == nodes.back().y;
    if (closed) path += "Z";
    // An open outline is filled as if closed, as the spreadsheet fills it.
    svg += "<path d=\"" + path + "\"" + FillAttributes(shape) + StrokeAttributes(shape) + "/>\n";
}

// The runs of a text frame cut into lines at its line and paragraph breaks.
std::vector<std::vector<sheethost::TextRun>> TextLines(const sheethost::TextFrame& frame) {
    std::vector<std::vector<sheethost::TextRun>> lines(1);
    for (const sheethost::TextRun& run : frame.runs) {
        std::string piece;
        for (const char c : run.text) {
            if (c == '\n' || c == '\r' || c == '\v') {
                if (!piece.empty()) lines.back().push_back({piece, run.font});
                piece.clear();
                lines.emplace_back();
            } else {
                piece += c;
            }
        }
        if (!piece.empty()) lines.back().push_back({piece, run.font});
    }
    return lines;
}

void WriteText(std::string& svg, const Shape& shape) {
    const sheethost::TextFrame& frame = *shape.textFrame;
    const auto lines = TextLines(frame);
    double lineHeight = 0;
    for (const auto& line : lines) {
        for (const auto& run : line) lineHeight = std::max(lineHeight, run.font.size * 1.2);
    }
    if (lineHeight == 0) return;  // no text
    const double blockHeight = lineHeight * static_cast<double>(lines.size());
    const double innerTop = shape.top + frame.marginTop;
    const double innerHeight = shape.height - frame.marginTop - frame.marginBottom;
    double top = innerTop;
    if (frame.verticalAlignment == kAlignCentre) top = innerTop + (innerHeight - blockHeight) / 2;
    if (frame.verticalAlignment == kAlignBottom) top = innerTop + innerHeight - blockHeight;

    double x = shape.left + frame.marginLeft;
    std::string anchor;
    if (frame.horizontalAlignment == kAlignCentre) {
        x = shape.left + shape.width / 2;
        anchor = " text-anchor=\"middle\"";
    } else if (frame.horizontalAlignment == kAlignRight) {
        x = shape.left + shape.width - frame.marginRight;
        anchor = " text-anchor=\"end\"";
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].empty()) continue;
        // The baseline sits where the line's descenders leave room below it.
        const double baseline = top + lineHeight * static_cast<double>(i + 1) - lineHeight * 0.28;
        svg += "<text x=\"" + Number(x) + "\" y=\"" + Number(baseline) + "\"" + anchor +
               " xml:space=\"preserve\">";
        for (const sheethost::TextRun& run : lines[i]) {
            svg += "<tspan font-family=\"" + FontFamily(run.font.name) + "\" font-size=\"" +
                   Number(run.font.size) + "\" fill=\"" + ColourText(run.font.color) + "\"";
            if (run.font.bold) svg += " font-weight=\"bold\"";
            if (run.font.italic) svg += " font-style=\"italic\"";
            svg += ">" + Escaped(run.text) + "</tspan>";
        }
        svg += "</text>\n";
    }
}

// A chart is shown by its frame and title: the picture is of the task sheet, not of the charts
// the reports place on their own sheets.
void WriteChartFrame(std::string& svg, const Shape& shape, const sheethost::Sheet& sheet) {
    svg += "<rect x=\"" + Number(shape.left) + "\" y=\"" + Number(shape.top) + "\" width=\"" +
           Number(shape.width) + "\" height=\"" + Number(shape.height) +
           "\" fill=\"#ffffff\" stroke=\"#bfbfbf\" stroke-width=\"0.75\"/>\n";
    for (const auto& chart : sheet.charts) {
        if (chart->shapeId != shape.id || !chart->hasTitle) continue;
        svg += "<text x=\"" + Number(shape.left + shape.width / 2) + "\" y=\"" +
               Number(shape.top + 20) + "\" text-anchor=\"middle\" font-family=\"" +
               FontFamily("Calibri") + "\" font-size=\"14\" fill=\"#595959\">" +
               Escaped(chart->title) + "</text>\n";
    }
}

}  // namespace

void WriteShapes(std::string& svg, const sheethost::Sheet& sheet) {
    for (const auto& pointer : sheet.shapes) {
        const Shape& shape = *pointer;
        if (!shape.visible) continue;
        svg += "<g data-name=\"" + Escaped(shape.name) + "\">\n";
        if (shape.type == mso::kChart) {
            WriteChartFrame(svg, shape, sheet);
        } else if (shape.type == mso::kLine || sheethost::IsConnector(shape)) {
            WriteConnector(svg, shape);
        } else if (shape.type == mso::kFreeform && shape.nodes.size() >= 2) {
            WriteFreeform(svg, shape);
        } else {
            svg +=
                AutoShapeElement(shape) + FillAttributes(shape) + StrokeAttributes(shape) + "/>\n";
        }
        if (shape.textFrame) WriteText(svg, shape);
        svg += "</g>\n";
    }
}

}  // namespace render
