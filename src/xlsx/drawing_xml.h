// DrawingML as the drawing parts hold it: the namespaces, the prefixes a part binds them to, and
// the unit conversions. Reading matches elements by local name, so any prefix reads alike.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace xlsx {

inline constexpr std::string_view kSpreadsheetDrawingNamespace =
    "http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing";
inline constexpr std::string_view kDrawingMainNamespace =
    "http://schemas.openxmlformats.org/drawingml/2006/main";
inline constexpr std::string_view kChartNamespace =
    "http://schemas.openxmlformats.org/drawingml/2006/chart";
inline constexpr std::string_view kRelationshipsNamespace =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

inline constexpr double kEmuPerPoint = 12700;

// The widest coordinate a drawing may hold, in EMU.
inline constexpr double kMaxCoordinateEmu = 27273042316900.0;

// Rounded, and held to the coordinates a drawing may hold (not a number counts as 0), so that
// no size or position wraps into a negative one.
inline std::int64_t PointsToEmu(double points) {
    if (std::isnan(points)) return 0;
    const double emu = std::clamp(points * kEmuPerPoint, -kMaxCoordinateEmu, kMaxCoordinateEmu);
    return static_cast<std::int64_t>(emu + (emu < 0 ? -0.5 : 0.5));
}
inline double EmuToPoints(std::int64_t emu) {
    return static_cast<double>(emu) / kEmuPerPoint;
}

// The prefix `root` binds the namespace `uri` to ("" for its default namespace); when it binds
// none, the namespace is declared on `root` with the prefix `wanted`.
std::string NamespacePrefix(pugi::xml_node root, std::string_view uri, std::string_view wanted);

// The prefixes the root element of a part binds the namespaces to; missing bindings are declared
// on the root with the usual prefixes.
struct DrawingPrefixes {
    std::string xdr;
    std::string a;
    std::string r;
    std::string c;

    static DrawingPrefixes Bind(pugi::xml_node root);
};

// "prefix:localName", or the local name alone for an empty prefix.
std::string Prefixed(std::string_view prefix, std::string_view localName);

// Appends <prefix:localName>.
pugi::xml_node AddElement(pugi::xml_node parent, std::string_view prefix,
                          std::string_view localName);
// The child with that local name, created (appended) when missing.
pugi::xml_node ChildOrAdd(pugi::xml_node parent, std::string_view prefix,
                          std::string_view localName);
void SetAttribute(pugi::xml_node node, const char* name, std::string_view value);
void SetAttribute(pugi::xml_node node, const char* name, std::int64_t value);

}  // namespace xlsx
