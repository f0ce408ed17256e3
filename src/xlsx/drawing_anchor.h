// Where a drawing object stands. The file anchors objects to cells (a column and row with an
// offset in EMUs) or to absolute positions; the host keeps boxes in points from the top-left of
// cell A1. Converting needs the sheet's column widths and row heights, gathered once per sheet.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <vector>

#include "sheethost/model.h"
#include "xlsx/drawing_xml.h"

namespace xlsx {

struct Box {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
};

// The left edges of columns and the tops of rows of one sheet, in points.
class SheetGrid {
  public:
    explicit SheetGrid(const sheethost::Sheet& sheet);

    double Left(int column) const;  // 1-based
    double Top(int row) const;
    // The cell a point lies in (1-based) and the point's offset from that cell's edge; a point
    // on the edge of hidden lines lies in the visible line that follows them.
    std::pair<int, double> ColumnAt(double x) const;
    std::pair<int, double> RowAt(double y) const;

  private:
    // Edges of the lines up to one past the last line with a record; the standard size goes on
    // from there.
    std::vector<double> lefts_;
    std::vector<double> tops_;
    double standardWidth_;
};

// The placement the anchor gives (1 moves and sizes with cells, 2 moves only, 3 free floating)
// and the object's box; empty for an element that is no anchor or lacks its position.
struct Anchored {
    int placement = 1;
    Box box;
};
std::optional<Anchored> ReadAnchor(pugi::xml_node anchor, const SheetGrid& grid);

// Makes `anchor` (a twoCellAnchor) hold the box for the placement: its from and to markers
// replaced, its editAs set.
void WriteAnchor(pugi::xml_node anchor, int placement, const Box& box, const SheetGrid& grid,
                 const DrawingPrefixes& prefixes);

}  // namespace xlsx
