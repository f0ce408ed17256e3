#include "xlsx/drawing_anchor.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "xlsx/xml.h"

namespace xlsx {
namespace {

// The edges of lines 1 to one past the last line with a record (index 0 unused), from the size
// the host gives each line.
template <class Lines, class Size>
std::vector<double> Edges(const Lines& lines, Size size) {
    const int last = lines.empty() ? 0 : lines.rbegin()->first;
    std::vector<double> edges(static_cast<std::size_t>(last) + 2);
    for (int line = 2; line <= last + 1; ++line) {
        const auto at = static_cast<std::size_t>(line);
        edges[at] = edges[at - 1] + size(line - 1);
    }
    return edges;
}

double Edge(const std::vector<double>& edges, double standard, int line) {
    const std::size_t count = edges.size() - 1;  // edges[0] is unused
    if (static_cast<std::size_t>(line) <= count) return edges[static_cast<std::size_t>(line)];
    return edges[count] + (line - static_cast<double>(count)) * standard;
}

std::pair<int, double> LineAt(const std::vector<double>& edges, double standard, double at,
                              int maxLine) {
    const std::size_t count = edges.size() - 1;
    if (at >= edges[count]) {
        // Counted in floating point and capped before it becomes a line number: a shape far off
        // the sheet stays on its last line rather than wrapping to a negative one.
        const double beyond = std::floor((at - edges[count]) / standard);
        const int line = static_cast<int>(
            std::min(static_cast<double>(maxLine), static_cast<double>(count) + beyond));
        return {line, at - Edge(edges, standard, line)};
    }
    // The last line whose edge is at or before the point: hidden lines share their edge with
    // the next one, which wins.
    const auto found = std::upper_bound(edges.begin() + 1, edges.begin() + count + 1, at);
    const int line = std::max(1, static_cast<int>(found - edges.begin()) - 1);
    return {line, at - edges[static_cast<std::size_t>(line)]};
}

std::optional<std::pair<double, double>> ReadMarker(pugi::xml_node marker, const SheetGrid& grid) {
    if (!marker) return std::nullopt;
    // Zero-based; a number past the sheet's last line is taken as that line.
    const long long column = Child(marker, "col").text().as_llong(-1);
    const long long row = Child(marker, "row").text().as_llong(-1);
    if (column < 0 || row < 0) return std::nullopt;
    return std::make_pair(
        grid.Left(static_cast<int>(std::min<long long>(column, sheethost::kMaxColumn - 1)) + 1) +
            EmuToPoints(Child(marker, "colOff").text().as_llong()),
        grid.Top(static_cast<int>(std::min<long long>(row, sheethost::kMaxRow - 1)) + 1) +
            EmuToPoints(Child(marker, "rowOff").text().as_llong()));
}

std::optional<std::pair<double, double>> ReadPoint(pugi::xml_node node, const char* x,
                                                   const char* y) {
    if (!node || !node.attribute(x) || !node.attribute(y)) return std::nullopt;
    return std::make_pair(EmuToPoints(node.attribute(x).as_llong()),
                          EmuToPoints(node.attribute(y).as_llong()));
}

void WriteMarker(pugi::xml_node anchor, std::string_view name, double x, double y,
                 const SheetGrid& grid, const DrawingPrefixes& prefixes) {
    pugi::xml_node marker = AddElement(anchor, prefixes.xdr, name);
    const auto [column, columnOffset] = grid.ColumnAt(x);
    const auto [row, rowOffset] = grid.RowAt(y);
    AddElement(marker, prefixes.xdr, "col").text().set(column - 1);
    AddElement(marker, prefixes.xdr, "colOff")
        .text()
        .set(static_cast<long long>(PointsToEmu(columnOffset)));
    AddElement(marker, prefixes.xdr, "row").text().set(row - 1);
    AddElement(marker, prefixes.xdr, "rowOff")
        .text()
        .set(static_cast<long long>(PointsToEmu(rowOffset)));
}

}  // namespace

SheetGrid::SheetGrid(const sheethost::Sheet& sheet)
    : lefts_(Edges(sheet.columns,
                   [&](int column) { return sheethost::ColumnWidthPoints(sheet, column); })),
      tops_(Edges(sheet.rows, [&](int row) { return sheethost::RowHeightPoints(sheet, row); })),
      standardWidth_(sheethost::CharactersToPoints(sheethost::kStandardColumnWidth)) {}

double SheetGrid::Left(int column) const {
    return Edge(lefts_, standardWidth_, column);
}
double SheetGrid::Top(int row) const {
    return Edge(tops_, sheethost::kStandardRowHeight, row);
}

std::pair<int, double> SheetGrid::ColumnAt(double x) const {
    return LineAt(lefts_, standardWidth_, std::max(0.0, x), sheethost::kMaxColumn);
}
std::pair<int, double> SheetGrid::RowAt(double y) const {
    return LineAt(tops_, sheethost::kStandardRowHeight, std::max(0.0, y), sheethost::kMaxRow);
}

std::optional<Anchored> ReadAnchor(pugi::xml_node anchor, const SheetGrid& grid) {
    const std::string_view kind = LocalName(anchor);
    Anchored result;
    std::optional<std::pair<double, double>> from;
    if (kind == "absoluteAnchor") {
        result.placement = 3;
        from = ReadPoint(Child(anchor, "pos"), "x", "y");
    } else {
        from = ReadMarker(Child(anchor, "from"), grid);
    }
    if (!from) return std::nullopt;
    result.box.left = from->first;
    result.box.top = from->second;
    if (kind == "twoCellAnchor") {
        const std::string_view editAs = anchor.attribute("editAs").value();
        result.placement = editAs == "oneCell" ? 2 : editAs == "absolute" ? 3 : 1;
        const auto to = ReadMarker(Child(anchor, "to"), grid);
        if (!to) return std::nullopt;
        result.box.width = std::max(0.0, to->first - from->first);
        result.box.height = std::max(0.0, to->second - from->second);
        return result;
    }
    if (kind == "oneCellAnchor") result.placement = 2;
    const auto extent = ReadPoint(Child(anchor, "ext"), "cx", "cy");
    if (!extent) return std::nullopt;
    result.box.width = extent->first;
    result.box.height = extent->second;
    return result;
}

void WriteAnchor(pugi::xml_node anchor, int placement, const Box& box, const SheetGrid& grid,
                 const DrawingPrefixes& prefixes) {
    anchor.remove_attribute("editAs");
    if (placement != 1) {
        anchor.prepend_attribute("editAs").set_value(placement == 2 ? "oneCell" : "absolute");
    }
    for (std::string_view name : {"from", "to", "pos", "ext"}) {
        if (pugi::xml_node old = Child(anchor, name)) anchor.remove_child(old);
    }
    pugi::xml_document markers;
    pugi::xml_node holder = markers.append_child("holder");
    WriteMarker(holder, "from", box.left, box.top, grid, prefixes);
    WriteMarker(holder, "to", box.left + box.width, box.top + box.height, grid, prefixes);
    pugi::xml_node before = anchor.first_child();
    for (pugi::xml_node marker : holder.children()) {
        if (before) {
            anchor.insert_copy_before(marker, before);
        } else {
            anchor.append_copy(marker);
        }
    }
}

}  // namespace xlsx
