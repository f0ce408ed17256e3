// A picture of a worksheet for people without a spreadsheet program: the cells with their texts,
// fills, borders and fonts at their column widths and row heights (hidden rows and columns left
// out), and every shape of the drawing layer over them, as an SVG document a browser shows.
#pragma once

#include <string>

#include "sheethost/model.h"

namespace render {

// The task sheet (code name "wsWBS") when the workbook has one, else the sheet its window shows;
// null for a workbook without worksheets.
const sheethost::Sheet* SheetToRender(const sheethost::Workbook& book);

// The SVG document of `sheet`, from cell A1 to the last cell that holds something and the last
// shape. One user unit is one point, as the sheet's geometry is measured.
std::string RenderSheetSvg(const sheethost::Workbook& book, const sheethost::Sheet& sheet);

}  // namespace render
