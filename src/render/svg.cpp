#include "render/svg.h"

#include <cmath>
#include <cstdio>

namespace render {

std::string Escaped(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                // Control characters other than tab are not allowed in XML 1.0.
                if (static_cast<unsigned char>(c) >= 0x20 || c == '\t') out += c;
        }
    }
    return out;
}

std::string ColourText(std::int32_t colour) {
    const auto value = static_cast<std::uint32_t>(colour);
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", value & 0xFF, (value >> 8) & 0xFF,
                  (value >> 16) & 0xFF);
    return text;
}

std::string Number(double value) {
    const double rounded = std::round(value * 100) / 100;
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", rounded == 0 ? 0.0 : rounded);
    std::string out = text;
    while (out.back() == '0') out.pop_back();
    if (out.back() == '.') out.pop_back();
    return out;
}

std::string FontFamily(std::string_view name) {
    std::string family = "'" + Escaped(name) + "'";
    // Carlito has Calibri's metrics, Liberation Sans Arial's; both ship with LibreOffice.
    if (name == "Calibri") family += ", Carlito";
    return family + ", 'Liberation Sans', Arial, sans-serif";
}

}  // namespace render
