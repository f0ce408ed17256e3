// The two layers of the picture of a sheet, written into one SVG document: the cells (grid
// lines, fills, borders, texts) and the drawing layer's shapes over them.
#pragma once

#include <string>
#include <vector>

#include "sheethost/model.h"

namespace render {

// Where the rows and columns of the drawn area lie, in points from the top-left corner of A1.
// Hidden rows and columns have no height or width.
struct SheetGeometry {
    int lastRow = 1;
    int lastColumn = 1;
    std::vector<double> columnLeft;  // [1 .. lastColumn + 1]; the last entry is the right edge
    std::vector<double> rowTop;      // [1 .. lastRow + 1]; the last entry is the bottom edge

    double Width() const { return columnLeft[static_cast<std::size_t>(lastColumn) + 1]; }
    double Height() const { return rowTop[static_cast<std::size_t>(lastRow) + 1]; }
    double Left(int column) const { return columnLeft[static_cast<std::size_t>(column)]; }
    double Top(int row) const { return rowTop[static_cast<std::size_t>(row)]; }
    double ColumnWidth(int column) const { return Left(column + 1) - Left(column); }
    double RowHeight(int row) const { return Top(row + 1) - Top(row); }
};

// From A1 to the last cell with a value or a format of its own, or under the last shape.
SheetGeometry MeasureSheet(const sheethost::Sheet& sheet);

void WriteCells(std::string& svg, const sheethost::Workbook& book, const sheethost::Sheet& sheet,
                const SheetGeometry& geometry);
// Every visible shape in z-order, back to front.
void WriteShapes(std::string& svg, const sheethost::Sheet& sheet);

}  // namespace render
