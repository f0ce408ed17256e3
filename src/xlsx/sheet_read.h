// A worksheet part read into a host sheet.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "sheethost/model.h"
#include "xlsx/styles.h"

namespace xlsx {

// Column widths in the file count the cell padding; the host counts characters as shown
// (9.140625 in the file is the standard 8.43). Both assume the default font's digit width.
double FileWidthToCharacters(double fileWidth);
double CharactersToFileWidth(double characters);

// The blocks of a list of references as the file writes them ("A1:B3 D5 7:9"); empty when a
// part of it is no reference.
std::optional<std::vector<sheethost::Area>> ParseSqref(std::string_view text);

// Fills cells, rows, columns and the code name of `sheet` from the <worksheet> element.
void ReadWorksheet(const pugi::xml_node& worksheet, const std::vector<std::string>& sharedStrings,
                   const StyleSheet& styles, sheethost::Sheet& sheet);

}  // namespace xlsx
