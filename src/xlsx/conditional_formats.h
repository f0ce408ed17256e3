// Conditional formats of a worksheet: the rules the host models (a cell's value compared with
// formulas, or a formula that holds, changing the font or interior colour) as the conditions of
// the cells they cover.
#pragma once

#include <pugixml.hpp>

#include "sheethost/model.h"
#include "xlsx/styles.h"

namespace xlsx {

// Adds the modelled rules of the sheet's <conditionalFormatting> elements to the conditions of
// the cells, rows and columns they cover.
void ReadConditionalFormats(pugi::xml_node worksheet, const StyleSheet& styles,
                            sheethost::Sheet& sheet);

// Replaces the <conditionalFormatting> elements whose rules the host models with the sheet's
// conditions; elements holding other kinds of rules (colour scales, data bars, ...) stay.
void WriteConditionalFormats(pugi::xml_node worksheet, StyleSheet& styles,
                             const sheethost::Sheet& sheet);

}  // namespace xlsx
