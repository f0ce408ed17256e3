// The text a cell shows: its value through its number format, as the spreadsheet displays it.
#pragma once

#include <string>
#include <string_view>

#include "sheethost/value.h"

namespace render {

// Numbers through the first section of the format (the second for a negative number when there
// is one): dates and times ("yyyy/mm/dd", "h:mm", "ddd"), fixed decimals ("0.00", "#,##0"),
// percentages ("0%") and literal prefixes and suffixes. General rounds a number to the characters
// its column has room for (at most 11), as the spreadsheet does. Texts, booleans and errors show
// as they are.
std::string ShownText(const sheethost::Value& value, std::string_view numberFormat,
                      std::size_t generalWidth = 11);

}  // namespace render
