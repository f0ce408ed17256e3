#include "xlsx/colors.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "sheethost/palette.h"

namespace xlsx {
namespace {

// The default office theme, in the order theme="n" counts: light 1, dark 1, light 2, dark 2,
// accents 1 to 6, hyperlink, followed hyperlink. Tints are not applied.
constexpr std::array<std::uint32_t, 12> kThemeColors{
    0xFFFFFF, 0x000000, 0xE7E6E6, 0x44546A, 0x4472C4, 0xED7D31,
    0xA5A5A5, 0xFFC000, 0x5B9BD5, 0x70AD47, 0x0563C1, 0x954F72,
};

}  // namespace

std::uint32_t PaletteRgb(int colorIndex) {
    return ColorLongToRgb(sheethost::PaletteColor(colorIndex));
}

int NearestColorIndex(std::uint32_t rgb) {
    return sheethost::NearestColorIndex(RgbToColorLong(rgb));
}

std::int32_t RgbToColorLong(std::uint32_t rgb) {
    return static_cast<std::int32_t>(((rgb >> 16) & 0xFF) | (rgb & 0xFF00) | ((rgb & 0xFF) << 16));
}

std::uint32_t ColorLongToRgb(std::int32_t color) {
    return RgbToColorLong(static_cast<std::uint32_t>(color) & 0xFFFFFF);
}

std::optional<std::uint32_t> ReadColor(const pugi::xml_node& element) {
    if (!element || element.attribute("auto").as_bool()) return std::nullopt;
    if (pugi::xml_attribute rgb = element.attribute("rgb")) {
        const std::string_view text = rgb.value();
        return static_cast<std::uint32_t>(std::strtoul(
            std::string(text.substr(text.size() > 6 ? text.size() - 6 : 0)).c_str(), nullptr, 16));
    }
    if (pugi::xml_attribute indexed = element.attribute("indexed")) {
        const int index = indexed.as_int();
        if (index >= 0 && index < 8) return PaletteRgb(index + 1);
        if (index >= 8 && index < 64) return PaletteRgb(index - 7);
        return std::nullopt;  // the system foreground and background
    }
    if (pugi::xml_attribute theme = element.attribute("theme")) {
        const int index = theme.as_int();
        if (index == 1 || index < 0 || index >= static_cast<int>(kThemeColors.size())) {
            return std::nullopt;
        }
        return kThemeColors[static_cast<std::size_t>(index)];
    }
    return std::nullopt;
}

std::uint32_t ThemeColorRgb(int index) {
    if (index < 0 || index >= static_cast<int>(kThemeColors.size())) return 0;
    return kThemeColors[static_cast<std::size_t>(index)];
}

std::string ArgbText(std::uint32_t rgb) {
    char text[9];
    std::snprintf(text, sizeof text, "FF%06X", static_cast<unsigned>(rgb & 0xFFFFFF));
    return text;
}

}  // namespace xlsx
