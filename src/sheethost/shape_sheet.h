// The drawing of one sheet: finding, adding, deleting and stacking its shapes. The order of
// `Sheet::shapes` is the z-order, back to front, and the order of the Shapes collection.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "sheethost/shape_model.h"

namespace sheethost {

// By name, compared case-insensitively as the spreadsheet compares shape names.
std::shared_ptr<Shape> FindShape(const Sheet& sheet, std::string_view name);
std::shared_ptr<Shape> FindShapeById(const Sheet& sheet, int id);
std::shared_ptr<Chart> FindChartOfShape(const Sheet& sheet, int shapeId);

// The name the spreadsheet gives a new shape of this kind, without its number ("Rectangle",
// "TextBox", "Elbow Connector", "Freeform", "Chart").
std::string DefaultBaseName(const Shape& shape);

// Puts a new shape in front of all others, with the next id and, when it has no name yet, its
// default name ("Rectangle 3").
std::shared_ptr<Shape> AddShapeToSheet(Sheet& sheet, Shape shape);

// Removes a shape. Once no shape of the sheet carries its id any more, the chart it framed goes
// with it and connectors glued to it come loose where they are.
void DeleteShapeFromSheet(Sheet& sheet, const Shape& shape);

// The spreadsheet's ZOrder commands: 0 bring to front, 1 send to back, 2 bring forward, 3 send
// backward. False for another command.
bool ZOrderShape(Sheet& sheet, const Shape& shape, int command);

// 1-based position in the z-order, 0 when the shape is not on the sheet.
int ZOrderPosition(const Sheet& sheet, const Shape& shape);

}  // namespace sheethost
