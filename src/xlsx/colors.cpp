#include "xlsx/colors.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace xlsx {
namespace {

constexpr std::array<std::uint32_t, 56> kPalette{
    0x000000, 0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xFF00FF, 0x00FFFF,
    0x800000, 0x008000, 0x000080, 0x808000, 0x800080, 0x008080, 0xC0C0C0, 0x808080,
    0x9999FF, 0x993366, 0xFFFFCC, 0xCCFFFF, 0x660066, 0xFF8080, 0x0066CC, 0xCCCCFF,
    0x000080, 0xFF00FF, 0xFFFF00, 0x00FFFF, 0x800080, 0x800000, 0x008080, 0x0000FF,
    0x00CCFF, 0xCCFFFF, 0xCCFFCC, 0xFFFF99, 0x99CCFF, 0xFF99CC, 0xCC99FF, 0xFFCC99,
    0x3366FF, 0x33CCCC, 0x99CC00, 0xFFCC00, 0xFF9900, 0xFF6600, 0x666699, 0x969696,
    0x003366, 0x339966, 0x003300, 0x333300, 0x993300, 0x993366, 0x333399, 0x333333,
};

// The default office theme, in the order theme="n" counts: light 1, dark 1, light 2, dark 2,
// accents 1 to 6, hyperlink, followed hyperlink. Tints are not applied.
constexpr std::array<std::uint32_t, 12> kThemeColors{
    0xFFFFFF, 0x000000, 0xE7E6E6, 0x44546A, 0x4472C4, 0xED7D31,
    0xA5A5A5, 0xFFC000, 0x5B9BD5, 0x70AD47, 0x0563C1, 0x954F72,
};

}  // namespace

std::uint32_t PaletteRgb(int colorIndex) {
    if (colorIndex < 1 || colorIndex > 56) return 0;
    return kPalette[static_cast<std::size_t>(colorIndex - 1)];
}

int NearestColorIndex(std::uint32_t rgb) {
    auto channel = [](std::uint32_t value, int shift) {
        return static_cast<long>((value >> shift) & 0xFF);
    };
    int best = 1;
    long bestDistance = std::numeric_limits<long>::max();
    for (int index = 1; index <= 56; ++index) {
        long distance = 0;
        for (int shift : {0, 8, 16}) {
            const long delta = channel(rgb, shift) - channel(PaletteRgb(index), shift);
            distance += delta * delta;
        }
        if (distance < bestDistance) {
            best = index;
            bestDistance = distance;
        }
    }
    return best;
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
