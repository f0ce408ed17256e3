#include "xlsx/colors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "sheethost/palette.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

std::uint32_t Channel(std::uint32_t rgb, int shift) {
    return (rgb >> shift) & 0xFF;
}

std::uint32_t Rgb(double red, double green, double blue) {
    auto clamp = [](double value) {
        return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 255.0)));
    };
    return clamp(red) << 16 | clamp(green) << 8 | clamp(blue);
}

// Shades and tints work on each channel in linear light, not on the gamma-encoded values the
// colour is written in.
template <class Change>
std::uint32_t InLinearLight(std::uint32_t rgb, Change change) {
    auto channel = [&](int shift) {
        const double encoded = Channel(rgb, shift) / 255.0;
        const double linear =
            encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
        const double changed = std::clamp(change(linear), 0.0, 1.0);
        const double back =
            changed <= 0.0031308 ? changed * 12.92 : 1.055 * std::pow(changed, 1 / 2.4) - 0.055;
        return back * 255;
    };
    return Rgb(channel(16), channel(8), channel(0));
}

// The scheme's colour names in the order of ThemeColors.
constexpr std::array<std::string_view, 12> kSchemeNames{
    "lt1",     "dk1",     "lt2",     "dk2",     "accent1", "accent2",
    "accent3", "accent4", "accent5", "accent6", "hlink",   "folHlink"};

constexpr std::string_view kThemeType =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/theme";

std::uint32_t HexColor(const char* text) {
    return static_cast<std::uint32_t>(std::strtoul(text, nullptr, 16)) & 0xFFFFFF;
}

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

std::optional<std::uint32_t> ThemeColors::Named(std::string_view name) const {
    if (name == "bg1") name = "lt1";
    if (name == "tx1") name = "dk1";
    if (name == "bg2") name = "lt2";
    if (name == "tx2") name = "dk2";
    const auto found = std::find(kSchemeNames.begin(), kSchemeNames.end(), name);
    if (found == kSchemeNames.end()) return std::nullopt;
    return rgb[static_cast<std::size_t>(found - kSchemeNames.begin())];
}

ThemeColors ReadThemeColors(const Package& package,
                            const std::vector<Relationship>& workbookRelationships) {
    ThemeColors theme;
    const Relationship* relationship = FindByType(workbookRelationships, kThemeType);
    const Part* part = relationship != nullptr ? package.Find(relationship->target) : nullptr;
    pugi::xml_document document;
    if (part == nullptr || !document.load_buffer(part->bytes.data(), part->bytes.size())) {
        return theme;
    }
    const pugi::xml_node scheme =
        Child(Child(document.document_element(), "themeElements"), "clrScheme");
    for (std::size_t at = 0; at < kSchemeNames.size(); ++at) {
        const pugi::xml_node colour = Child(scheme, kSchemeNames[at]).first_child();
        if (LocalName(colour) == "srgbClr") {
            theme.rgb[at] = HexColor(colour.attribute("val").value());
        } else if (LocalName(colour) == "sysClr" && colour.attribute("lastClr")) {
            theme.rgb[at] = HexColor(colour.attribute("lastClr").value());
        }
    }
    return theme;
}

std::optional<std::uint32_t> ReadColor(const pugi::xml_node& element, const ThemeColors& theme) {
    if (!element || element.attribute("auto").as_bool()) return std::nullopt;
    if (pugi::xml_attribute rgb = element.attribute("rgb")) {
        const std::string_view text = rgb.value();
        return HexColor(std::string(text.substr(text.size() > 6 ? text.size() - 6 : 0)).c_str());
    }
    if (pugi::xml_attribute indexed = element.attribute("indexed")) {
        const int index = indexed.as_int();
        if (index >= 0 && index < 8) return PaletteRgb(index + 1);
        if (index >= 8 && index < 64) return PaletteRgb(index - 7);
        return std::nullopt;  // the system foreground and background
    }
    if (pugi::xml_attribute index = element.attribute("theme")) {
        const int at = index.as_int();
        if (at == 1 || at < 0 || at >= static_cast<int>(theme.rgb.size())) return std::nullopt;
        const std::uint32_t rgb = theme.rgb[static_cast<std::size_t>(at)];
        // A tint below zero darkens towards black, above zero lightens towards white.
        const double tint = std::clamp(element.attribute("tint").as_double(), -1.0, 1.0);
        if (tint < 0) return ScaleLightness(rgb, 1 + tint, 0);
        if (tint > 0) return ScaleLightness(rgb, 1 - tint, tint);
        return rgb;
    }
    return std::nullopt;
}

std::uint32_t ScaleLightness(std::uint32_t rgb, double modulation, double offset) {
    const double r = Channel(rgb, 16) / 255.0;
    const double g = Channel(rgb, 8) / 255.0;
    const double b = Channel(rgb, 0) / 255.0;
    const double high = std::max({r, g, b});
    const double low = std::min({r, g, b});
    double lightness = (high + low) / 2;
    double hue = 0;
    double saturation = 0;
    if (high > low) {
        const double delta = high - low;
        saturation = lightness > 0.5 ? delta / (2 - high - low) : delta / (high + low);
        if (high == r) {
            hue = (g - b) / delta + (g < b ? 6 : 0);
        } else if (high == g) {
            hue = (b - r) / delta + 2;
        } else {
            hue = (r - g) / delta + 4;
        }
        hue /= 6;
    }
    lightness = std::clamp(lightness * modulation + offset, 0.0, 1.0);
    if (saturation == 0) return Rgb(lightness * 255, lightness * 255, lightness * 255);
    const double q = lightness < 0.5 ? lightness * (1 + saturation)
                                     : lightness + saturation - lightness * saturation;
    const double p = 2 * lightness - q;
    auto component = [&](double t) {
        t -= std::floor(t);
        if (t < 1.0 / 6) return p + (q - p) * 6 * t;
        if (t < 0.5) return q;
        if (t < 2.0 / 3) return p + (q - p) * (2.0 / 3 - t) * 6;
        return p;
    };
    return Rgb(component(hue + 1.0 / 3) * 255, component(hue) * 255,
               component(hue - 1.0 / 3) * 255);
}

std::uint32_t ShadeColor(std::uint32_t rgb, double shade) {
    return InLinearLight(rgb, [&](double channel) { return channel * shade; });
}

std::uint32_t TintColor(std::uint32_t rgb, double tint) {
    return InLinearLight(rgb, [&](double channel) { return channel * tint + 1 - tint; });
}

std::string ArgbText(std::uint32_t rgb) {
    char text[9];
    std::snprintf(text, sizeof text, "FF%06X", static_cast<unsigned>(rgb & 0xFFFFFF));
    return text;
}

}  // namespace xlsx
