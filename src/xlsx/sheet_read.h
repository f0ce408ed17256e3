// A worksheet part read into a host sheet.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <vector>

#include "sheethost/model.h"
#include "xlsx/styles.h"

namespace xlsx {

// Column widths in the file count the cell padding; the host counts characters as shown
// (9.140625 in the file is the standard 8.43). Both assume the default font's digit width.
double FileWidthToCharacters(double fileWidth);
double CharactersToFileWidth(double characters);

// Fills cells, rows, columns and the code name of `sheet` from the <worksheet> element.
void ReadWorksheet(const pugi::xml_node& worksheet, const std::vector<std::string>& sharedStrings,
                   const StyleSheet& styles, sheethost::Sheet& sheet);

}  // namespace xlsx
