// How a worksheet prints: the orientation and the fit to a number of pages. The rest of the page
// setup (margins, paper, printer settings) stays as the source file has it.
#pragma once

#include <pugixml.hpp>

#include "sheethost/model.h"

namespace xlsx {

void ReadPageSetup(pugi::xml_node worksheet, sheethost::Sheet& sheet);
void WritePageSetup(pugi::xml_node worksheet, const sheethost::Sheet& sheet);

}  // namespace xlsx
