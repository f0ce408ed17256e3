// The drawing layer of worksheets in a package: the drawing part a worksheet refers to, read
// into the host's shapes and charts and written back from them.
#pragma once

#include <pugixml.hpp>
#include <string>

#include "sheethost/model.h"
#include "xlsx/colors.h"
#include "xlsx/opc.h"
#include "xlsx/package.h"

namespace xlsx {

// Adds the shapes and charts of the worksheet's drawing to `sheet`, whose rows and columns are
// already read. Objects the host does not model are left to the file.
void ReadDrawing(const Package& package, const std::string& worksheetPart, pugi::xml_node worksheet,
                 const ThemeColors& theme, sheethost::Sheet& sheet);

// Writes the sheet's shapes and charts into the worksheet's drawing part, creating, keeping or
// removing it and its relationships as needed. A drawing whose modelled objects are all as they
// were read is kept byte for byte. Otherwise the objects the host does not model (pictures,
// groups, other frames) stay behind the host's shapes, and each shape read from the file keeps
// what the host does not model of it unless that part of it changed.
void WriteDrawing(Package& package, ContentTypes& types, const std::string& worksheetPart,
                  pugi::xml_node worksheet, const ThemeColors& theme,
                  const sheethost::Sheet& sheet);

}  // namespace xlsx
