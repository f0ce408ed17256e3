// One drawing object element (<sp>, <cxnSp>, <graphicFrame>) and the host's shape record.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <string_view>

#include "sheethost/shape_model.h"
#include "xlsx/colors.h"
#include "xlsx/drawing_anchor.h"
#include "xlsx/drawing_xml.h"

namespace xlsx {

// The record of an object the host models, standing in `box`: auto shapes of the geometries it
// knows, text boxes, freeforms, lines, connectors and chart frames. Empty for anything else
// (pictures, groups, other frames, unknown geometries), which the file keeps as it is.
std::optional<sheethost::Shape> ReadShapeElement(pugi::xml_node object, const Box& box,
                                                 const ThemeColors& theme);

// The element that holds the shape in a drawing: "sp", "cxnSp" or "graphicFrame".
std::string_view ObjectElementName(const sheethost::Shape& shape);

// A new object element of the shape's kind in `anchor`, with no properties yet.
pugi::xml_node AddShapeElement(pugi::xml_node anchor, const sheethost::Shape& shape,
                               const DrawingPrefixes& prefixes);

// Makes `object` describe `shape`. `before` is what the element described as it was read: only
// the properties that differ from it are written, so that what the host does not model there
// (effects, gradients, theme styles, text formatting) stays. Null for a new element, which gets
// every property.
void WriteShapeElement(pugi::xml_node object, const sheethost::Shape& shape,
                       const sheethost::Shape* before, const DrawingPrefixes& prefixes);

}  // namespace xlsx
