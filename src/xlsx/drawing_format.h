// The formats of drawing objects in DrawingML: colours, fills, outlines and text bodies, read
// into the host's records and written from them.
#pragma once

#include <pugixml.hpp>

#include "sheethost/shape_model.h"
#include "xlsx/colors.h"
#include "xlsx/drawing_xml.h"

namespace xlsx {

// The fill and outline of a shape's properties (<spPr>), falling back on the theme references of
// its <style> where the properties give none.
sheethost::FillFormat ReadFill(pugi::xml_node shapeProperties, pugi::xml_node style,
                               const ThemeColors& theme);
sheethost::LineFormat ReadLine(pugi::xml_node shapeProperties, pugi::xml_node style,
                               const ThemeColors& theme);
sheethost::TextFrame ReadTextBody(pugi::xml_node textBody, const ThemeColors& theme);

// Replace the fill (after the geometry), the outline, or the whole text body.
void WriteFill(pugi::xml_node shapeProperties, const sheethost::FillFormat& fill,
               const DrawingPrefixes& prefixes);
void WriteLine(pugi::xml_node shapeProperties, const sheethost::LineFormat& line,
               const DrawingPrefixes& prefixes);
void WriteTextBody(pugi::xml_node textBody, const sheethost::TextFrame& frame,
                   const DrawingPrefixes& prefixes);

}  // namespace xlsx
