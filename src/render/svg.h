// Small helpers for writing SVG: escaped text, colours, numbers short enough to keep the document
// readable, and the font families that stand in for the spreadsheet's.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace render {

// Text with &, <, > and " escaped, fit for element content and attribute values.
std::string Escaped(std::string_view text);

// "#rrggbb" of one of the spreadsheet's colour longs (red + 256 green + 65536 blue).
std::string ColourText(std::int32_t colour);

// A coordinate or size in points with at most two decimals and no trailing zeros.
std::string Number(double value);

// The font-family list for a spreadsheet font: the font itself first, then metric-compatible
// stand-ins a Linux browser has, then a generic family.
std::string FontFamily(std::string_view name);

}  // namespace render
