// The window a worksheet shows in: its zoom, the selected cells and the active cell, and whether
// its tab is the selected one.
#pragma once

#include <pugixml.hpp>

#include "sheethost/model.h"

namespace xlsx {

void ReadSheetView(pugi::xml_node worksheet, sheethost::Sheet& sheet);

// Updates the first <sheetView> (made when missing) and keeps the rest of it (panes, grid
// lines, view mode) as it was.
void WriteSheetView(pugi::xml_node worksheet, const sheethost::Sheet& sheet, bool active);

}  // namespace xlsx
