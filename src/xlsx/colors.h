// Colours between the file's ARGB texts, indexed and theme colours and the host's ColorIndex
// (the 56-entry default palette) and colour longs (red + green * 256 + blue * 65536).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "xlsx/opc.h"
#include "xlsx/package.h"

namespace xlsx {

// 0xRRGGBB of a palette entry 1..56.
std::uint32_t PaletteRgb(int colorIndex);
int NearestColorIndex(std::uint32_t rgb);

std::int32_t RgbToColorLong(std::uint32_t rgb);
std::uint32_t ColorLongToRgb(std::int32_t color);

// The colours of a workbook's theme as 0xRRGGBB, in the order theme="n" counts them: light 1,
// dark 1, light 2, dark 2, accents 1 to 6, hyperlink, followed hyperlink. The default is the
// office theme a new workbook gets.
struct ThemeColors {
    static constexpr int kFirstAccent = 4;
    std::array<std::uint32_t, 12> rgb{0xFFFFFF, 0x000000, 0xE7E6E6, 0x44546A, 0x4472C4, 0xED7D31,
                                      0xA5A5A5, 0xFFC000, 0x5B9BD5, 0x70AD47, 0x0563C1, 0x954F72};

    // A colour of the scheme by its DrawingML name ("accent1", "tx1", "bg2", ...).
    std::optional<std::uint32_t> Named(std::string_view name) const;
};

// The theme the workbook part relates to; the default theme when there is none or it cannot be
// read.
ThemeColors ReadThemeColors(const Package& package,
                            const std::vector<Relationship>& workbookRelationships);

// The colour a <color>, <fgColor> or <bgColor> element gives, with its tint; empty for
// "automatic" (no element, auto="1", the system colours, or the theme's dark text colour the
// default font uses).
std::optional<std::uint32_t> ReadColor(const pugi::xml_node& element, const ThemeColors& theme);

// The colour with its lightness (hue, saturation and lightness model) scaled and offset.
std::uint32_t ScaleLightness(std::uint32_t rgb, double modulation, double offset);
// A darker or lighter colour: each channel scaled towards black, or towards white, in linear
// light by a factor from 0 to 1 (1 leaves the colour as it is).
std::uint32_t ShadeColor(std::uint32_t rgb, double shade);
std::uint32_t TintColor(std::uint32_t rgb, double tint);

// "FF" + RRGGBB, as the rgb attribute holds it.
std::string ArgbText(std::uint32_t rgb);

}  // namespace xlsx
