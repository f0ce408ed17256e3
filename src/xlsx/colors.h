// Colours between the file's ARGB texts, indexed and theme colours and the host's ColorIndex
// (the 56-entry default palette) and colour longs (red + green * 256 + blue * 65536).
#pragma once

#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <string>

namespace xlsx {

// 0xRRGGBB of a palette entry 1..56.
std::uint32_t PaletteRgb(int colorIndex);
int NearestColorIndex(std::uint32_t rgb);

std::int32_t RgbToColorLong(std::uint32_t rgb);
std::uint32_t ColorLongToRgb(std::int32_t color);

// The colour a <color>, <fgColor> or <bgColor> element gives; empty for "automatic" (no element,
// auto="1", the system colours, or the theme's dark text colour the default font uses).
std::optional<std::uint32_t> ReadColor(const pugi::xml_node& element);

// 0xRRGGBB of the default office theme's colour `index` in the order theme="n" counts (light 1,
// dark 1, light 2, dark 2, accents 1 to 6, hyperlink, followed hyperlink); black out of range.
std::uint32_t ThemeColorRgb(int index);

// "FF" + RRGGBB, as the rgb attribute holds it.
std::string ArgbText(std::uint32_t rgb);

}  // namespace xlsx
