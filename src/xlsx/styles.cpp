#include "xlsx/styles.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "xlsx/colors.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace xl = sheethost::xl;
namespace {

constexpr const char* kMinimalStyles =
    R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">)"
    R"(<fonts count="1"><font><sz val="11"/><name val="Calibri"/><family val="2"/></font></fonts>)"
    R"(<fills count="2"><fill><patternFill patternType="none"/></fill>)"
    R"(<fill><patternFill patternType="gray125"/></fill></fills>)"
    R"(<borders count="1"><border><left/><right/><top/><bottom/><diagonal/></border></borders>)"
    R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)"
    R"(<cellXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/></cellXfs>)"
    R"(<cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles>)"
    R"(</styleSheet>)";

constexpr std::array<std::string_view, 12> kSectionOrder{
    "numFmts",    "fonts", "fills",       "borders", "cellStyleXfs", "cellXfs",
    "cellStyles", "dxfs",  "tableStyles", "colors",  "extLst"};

struct BuiltInFormat {
    int id;
    const char* code;
};
constexpr BuiltInFormat kBuiltInFormats[] = {
    {0, "General"},
    {1, "0"},
    {2, "0.00"},
    {3, "#,##0"},
    {4, "#,##0.00"},
    {9, "0%"},
    {10, "0.00%"},
    {11, "0.00E+00"},
    {12, "# ?/?"},
    {13, "# ?\?/??"},
    {14, "m/d/yyyy"},
    {15, "d-mmm-yy"},
    {16, "d-mmm"},
    {17, "mmm-yy"},
    {18, "h:mm AM/PM"},
    {19, "h:mm:ss AM/PM"},
    {20, "h:mm"},
    {21, "h:mm:ss"},
    {22, "m/d/yyyy h:mm"},
    {37, "#,##0 ;(#,##0)"},
    {38, "#,##0 ;[Red](#,##0)"},
    {39, "#,##0.00;(#,##0.00)"},
    {40, "#,##0.00;[Red](#,##0.00)"},
    {45, "mm:ss"},
    {46, "[h]:mm:ss"},
    {47, "mmss.0"},
    {48, "##0.0E+0"},
    {49, "@"},
};

struct BorderLook {
    const char* name;
    int lineStyle;
    int weight;
};
// The file's border styles as line style and weight; the first entry of a pair is the one
// written back.
constexpr BorderLook kBorderLooks[] = {
    {"thin", xl::kContinuous, xl::kThin},
    {"hair", xl::kContinuous, xl::kHairline},
    {"medium", xl::kContinuous, xl::kMedium},
    {"thick", xl::kContinuous, xl::kThick},
    {"dashed", -4115, xl::kThin},
    {"mediumDashed", -4115, xl::kMedium},
    {"dotted", -4118, xl::kThin},
    {"double", -4119, xl::kThick},
    {"dashDot", 4, xl::kThin},
    {"mediumDashDot", 4, xl::kMedium},
    {"dashDotDot", 5, xl::kThin},
    {"mediumDashDotDot", 5, xl::kMedium},
    {"slantDashDot", 13, xl::kMedium},
};

struct AlignmentName {
    const char* name;
    int value;
};
constexpr AlignmentName kHorizontal[] = {
    {"left", xl::kHAlignLeft},   {"center", xl::kHAlignCenter},
    {"right", xl::kHAlignRight}, {"fill", 5},
    {"justify", -4130},          {"centerContinuous", 7},
    {"distributed", -4117},
};
constexpr AlignmentName kVertical[] = {
    {"top", xl::kVAlignTop}, {"center", xl::kVAlignCenter}, {"bottom", xl::kVAlignBottom},
    {"justify", -4130},      {"distributed", -4117},
};

template <std::size_t N>
int AlignmentValue(const AlignmentName (&names)[N], std::string_view name, int fallback) {
    for (const auto& entry : names) {
        if (name == entry.name) return entry.value;
    }
    return fallback;
}

template <std::size_t N>
const char* AlignmentText(const AlignmentName (&names)[N], int value) {
    for (const auto& entry : names) {
        if (value == entry.value) return entry.name;
    }
    return nullptr;
}

int ColorIndexOf(const pugi::xml_node& color, const ThemeColors& theme) {
    const auto rgb = ReadColor(color, theme);
    return rgb ? NearestColorIndex(*rgb) : xl::kAutomatic;
}

void SetColor(pugi::xml_node parent, const char* localName, int colorIndex) {
    if (colorIndex < 1 || colorIndex > 56) return;
    parent.append_child(QualifiedName(parent, localName).c_str())
        .append_attribute("rgb")
        .set_value(ArgbText(PaletteRgb(colorIndex)).c_str());
}

sheethost::CellFont ReadFont(const pugi::xml_node& node, const ThemeColors& theme) {
    sheethost::CellFont font;
    if (auto name = Child(node, "name")) font.name = name.attribute("val").value();
    if (auto size = Child(node, "sz")) font.size = size.attribute("val").as_double(11);
    // <b/> means bold; <b val="0"/> does not.
    if (auto bold = Child(node, "b")) font.bold = bold.attribute("val").as_bool(true);
    if (auto italic = Child(node, "i")) font.italic = italic.attribute("val").as_bool(true);
    font.colorIndex = ColorIndexOf(Child(node, "color"), theme);
    return font;
}

sheethost::Interior ReadFill(const pugi::xml_node& node, const ThemeColors& theme) {
    sheethost::Interior interior;
    const pugi::xml_node pattern = Child(node, "patternFill");
    if (std::string_view(pattern.attribute("patternType").value()) != "solid") return interior;
    const auto rgb = ReadColor(Child(pattern, "fgColor"), theme).value_or(0xFFFFFF);
    interior.pattern = xl::kPatternSolid;
    interior.color = RgbToColorLong(rgb);
    interior.colorIndex = NearestColorIndex(rgb);
    return interior;
}

sheethost::Border ReadBorderEdge(const pugi::xml_node& edge, const ThemeColors& theme) {
    sheethost::Border border;
    const std::string_view name = edge.attribute("style").value();
    for (const auto& look : kBorderLooks) {
        if (name == look.name) {
            border.lineStyle = look.lineStyle;
            border.weight = look.weight;
            border.colorIndex = ColorIndexOf(Child(edge, "color"), theme);
        }
    }
    return border;
}

sheethost::CellBorders ReadBorders(const pugi::xml_node& node, const ThemeColors& theme) {
    sheethost::CellBorders borders;
    auto at = [&](int index) -> sheethost::Border& {
        return borders[static_cast<std::size_t>(index - xl::kDiagonalDown)];
    };
    at(xl::kEdgeLeft) = ReadBorderEdge(Child(node, "left"), theme);
    at(xl::kEdgeTop) = ReadBorderEdge(Child(node, "top"), theme);
    at(xl::kEdgeBottom) = ReadBorderEdge(Child(node, "bottom"), theme);
    at(xl::kEdgeRight) = ReadBorderEdge(Child(node, "right"), theme);
    const sheethost::Border diagonal = ReadBorderEdge(Child(node, "diagonal"), theme);
    if (node.attribute("diagonalDown").as_bool()) at(xl::kDiagonalDown) = diagonal;
    if (node.attribute("diagonalUp").as_bool()) at(xl::kDiagonalUp) = diagonal;
    return borders;
}

void WriteBorderEdge(pugi::xml_node border, const char* localName, const sheethost::Border& edge) {
    pugi::xml_node node = border.append_child(QualifiedName(border, localName).c_str());
    if (edge.lineStyle == xl::kNone) return;
    const BorderLook* chosen = &kBorderLooks[0];
    for (const auto& look : kBorderLooks) {
        if (look.lineStyle == edge.lineStyle && look.weight == edge.weight) {
            chosen = &look;
            break;
        }
    }
    node.append_attribute("style").set_value(chosen->name);
    SetColor(node, "color", edge.colorIndex);
}

sheethost::Style WithoutConditions(sheethost::Style style) {
    style.conditions.clear();
    return style;
}

void SetCount(pugi::xml_node section) {
    unsigned count = 0;
    for (pugi::xml_node child : section.children()) {
        if (child.type() == pugi::node_element) ++count;
    }
    pugi::xml_attribute attribute = section.attribute("count");
    if (!attribute) attribute = section.append_attribute("count");
    attribute.set_value(count);
}

}  // namespace

std::string BuiltInNumberFormat(int id) {
    for (const auto& format : kBuiltInFormats) {
        if (format.id == id) return format.code;
    }
    return {};
}

StyleSheet::StyleSheet(pugi::xml_document& document, const ThemeColors& theme) {
    if (!document.document_element()) document.load_string(kMinimalStyles);
    root_ = document.document_element();
    for (pugi::xml_node node : Children(Child(root_, "numFmts"), "numFmt")) {
        numberFormats_.emplace_back(node.attribute("numFmtId").as_int(),
                                    node.attribute("formatCode").value());
    }
    for (pugi::xml_node node : Children(Child(root_, "fonts"), "font")) {
        fonts_.push_back(ReadFont(node, theme));
    }
    for (pugi::xml_node node : Children(Child(root_, "fills"), "fill")) {
        fills_.push_back(ReadFill(node, theme));
    }
    for (pugi::xml_node node : Children(Child(root_, "borders"), "border")) {
        borders_.push_back(ReadBorders(node, theme));
    }
    auto pick = [](const auto& list, int index) {
        using Item = typename std::decay_t<decltype(list)>::value_type;
        return index >= 0 && index < static_cast<int>(list.size())
                   ? list[static_cast<std::size_t>(index)]
                   : Item{};
    };
    for (pugi::xml_node node : Children(Child(root_, "dxfs"), "dxf")) {
        Differential look;
        if (auto rgb = ReadColor(Child(Child(node, "font"), "color"), theme)) {
            look.fontColorIndex = NearestColorIndex(*rgb);
        }
        // A differential fill gives its solid colour as the background colour.
        pugi::xml_node pattern = Child(Child(node, "fill"), "patternFill");
        if (auto rgb = ReadColor(Child(pattern, "bgColor"), theme)) {
            look.interiorColorIndex = NearestColorIndex(*rgb);
        }
        differentials_.push_back(look);
    }
    for (pugi::xml_node node : Children(Child(root_, "cellXfs"), "xf")) {
        Format format;
        sheethost::Style& style = format.style.Edit();
        const int numberFormatId = node.attribute("numFmtId").as_int();
        style.numberFormat = BuiltInNumberFormat(numberFormatId);
        for (const auto& [id, code] : numberFormats_) {
            if (id == numberFormatId) style.numberFormat = code;
        }
        if (style.numberFormat.empty()) style.numberFormat = "General";
        style.font = pick(fonts_, node.attribute("fontId").as_int());
        style.interior = pick(fills_, node.attribute("fillId").as_int());
        style.borders = pick(borders_, node.attribute("borderId").as_int());
        if (pugi::xml_node alignment = Child(node, "alignment")) {
            style.horizontalAlignment = AlignmentValue(
                kHorizontal, alignment.attribute("horizontal").value(), xl::kHAlignGeneral);
            style.verticalAlignment = AlignmentValue(
                kVertical, alignment.attribute("vertical").value(), xl::kVAlignBottom);
            style.wrapText = alignment.attribute("wrapText").as_bool();
        }
        format.quotePrefix = node.attribute("quotePrefix").as_bool();
        formats_.push_back(std::move(format));
    }
    if (formats_.empty()) IndexOf(sheethost::Style{}, false);
}

const sheethost::SharedStyle& StyleSheet::StyleAt(int index) const {
    static const sheethost::SharedStyle kDefault;
    if (index < 0 || index >= static_cast<int>(formats_.size())) return kDefault;
    return formats_[static_cast<std::size_t>(index)].style;
}

bool StyleSheet::QuotePrefixAt(int index) const {
    return index >= 0 && index < static_cast<int>(formats_.size()) &&
           formats_[static_cast<std::size_t>(index)].quotePrefix;
}

StyleSheet::Differential StyleSheet::DifferentialAt(int index) const {
    if (index < 0 || index >= static_cast<int>(differentials_.size())) return {};
    return differentials_[static_cast<std::size_t>(index)];
}

int StyleSheet::DifferentialIndex(const Differential& look) {
    auto found = std::find(differentials_.begin(), differentials_.end(), look);
    if (found != differentials_.end()) return static_cast<int>(found - differentials_.begin());
    pugi::xml_node section = Section("dxfs");
    pugi::xml_node dxf = section.append_child(QualifiedName(section, "dxf").c_str());
    if (look.fontColorIndex) {
        SetColor(dxf.append_child(QualifiedName(dxf, "font").c_str()), "color",
                 *look.fontColorIndex);
    }
    if (look.interiorColorIndex) {
        pugi::xml_node fill = dxf.append_child(QualifiedName(dxf, "fill").c_str());
        SetColor(fill.append_child(QualifiedName(fill, "patternFill").c_str()), "bgColor",
                 *look.interiorColorIndex);
    }
    SetCount(section);
    differentials_.push_back(look);
    return static_cast<int>(differentials_.size() - 1);
}

pugi::xml_node StyleSheet::Section(const char* localName) {
    return EnsureChild(root_, localName, kSectionOrder);
}

int StyleSheet::IndexOf(const sheethost::SharedStyle& wanted, bool quotePrefix) {
    auto& entries = entryOf_[quotePrefix ? 1 : 0];
    const sheethost::Style* key = wanted.operator->();
    if (const auto known = entries.find(key); known != entries.end()) return known->second.second;
    const int index = FormatIndex(*wanted, quotePrefix);
    entries.emplace(key, std::pair{wanted, index});
    return index;
}

int StyleSheet::FormatIndex(const sheethost::Style& wanted, bool quotePrefix) {
    const sheethost::Style style = WithoutConditions(wanted);
    for (std::size_t index = 0; index < formats_.size(); ++index) {
        if (formats_[index].quotePrefix == quotePrefix && formats_[index].style == style) {
            return static_cast<int>(index);
        }
    }
    const int numberFormatId = NumberFormatId(style.numberFormat);
    const int fontId = FontIndex(style.font);
    const int fillId = FillIndex(style.interior);
    const int borderId = BorderIndex(style.borders);
    pugi::xml_node section = Section("cellXfs");
    pugi::xml_node xf = section.append_child(QualifiedName(section, "xf").c_str());
    xf.append_attribute("numFmtId").set_value(numberFormatId);
    xf.append_attribute("fontId").set_value(fontId);
    xf.append_attribute("fillId").set_value(fillId);
    xf.append_attribute("borderId").set_value(borderId);
    xf.append_attribute("xfId").set_value(0);
    for (const char* apply :
         {"applyNumberFormat", "applyFont", "applyFill", "applyBorder", "applyAlignment"}) {
        xf.append_attribute(apply).set_value(1);
    }
    if (quotePrefix) xf.append_attribute("quotePrefix").set_value(1);
    const char* horizontal = AlignmentText(kHorizontal, style.horizontalAlignment);
    const char* vertical = AlignmentText(kVertical, style.verticalAlignment);
    if (horizontal || (vertical && style.verticalAlignment != xl::kVAlignBottom) ||
        style.wrapText) {
        pugi::xml_node alignment = xf.append_child(QualifiedName(xf, "alignment").c_str());
        if (horizontal) alignment.append_attribute("horizontal").set_value(horizontal);
        if (vertical && style.verticalAlignment != xl::kVAlignBottom) {
            alignment.append_attribute("vertical").set_value(vertical);
        }
        if (style.wrapText) alignment.append_attribute("wrapText").set_value(1);
    }
    SetCount(section);
    formats_.push_back(Format{style, quotePrefix});
    return static_cast<int>(formats_.size() - 1);
}

int StyleSheet::FontIndex(const sheethost::CellFont& font) {
    auto found = std::find(fonts_.begin(), fonts_.end(), font);
    if (found != fonts_.end()) return static_cast<int>(found - fonts_.begin());
    pugi::xml_node section = Section("fonts");
    pugi::xml_node node = section.append_child(QualifiedName(section, "font").c_str());
    auto add = [&](const char* localName) {
        return node.append_child(QualifiedName(node, localName).c_str());
    };
    if (font.bold) add("b");
    if (font.italic) add("i");
    add("sz").append_attribute("val").set_value(font.size);
    SetColor(node, "color", font.colorIndex);
    add("name").append_attribute("val").set_value(font.name.c_str());
    SetCount(section);
    fonts_.push_back(font);
    return static_cast<int>(fonts_.size() - 1);
}

int StyleSheet::FillIndex(const sheethost::Interior& interior) {
    auto found = std::find(fills_.begin(), fills_.end(), interior);
    if (found != fills_.end()) return static_cast<int>(found - fills_.begin());
    pugi::xml_node section = Section("fills");
    pugi::xml_node fill = section.append_child(QualifiedName(section, "fill").c_str());
    pugi::xml_node pattern = fill.append_child(QualifiedName(fill, "patternFill").c_str());
    if (interior.pattern == xl::kNone) {
        pattern.append_attribute("patternType").set_value("none");
    } else {
        pattern.append_attribute("patternType").set_value("solid");
        pattern.append_child(QualifiedName(pattern, "fgColor").c_str())
            .append_attribute("rgb")
            .set_value(ArgbText(ColorLongToRgb(interior.color)).c_str());
        pattern.append_child(QualifiedName(pattern, "bgColor").c_str())
            .append_attribute("indexed")
            .set_value(64);
    }
    SetCount(section);
    fills_.push_back(interior);
    return static_cast<int>(fills_.size() - 1);
}

int StyleSheet::BorderIndex(const sheethost::CellBorders& borders) {
    auto found = std::find(borders_.begin(), borders_.end(), borders);
    if (found != borders_.end()) return static_cast<int>(found - borders_.begin());
    pugi::xml_node section = Section("borders");
    pugi::xml_node node = section.append_child(QualifiedName(section, "border").c_str());
    auto at = [&](int index) -> const sheethost::Border& {
        return borders[static_cast<std::size_t>(index - xl::kDiagonalDown)];
    };
    const bool down = at(xl::kDiagonalDown).lineStyle != xl::kNone;
    const bool up = at(xl::kDiagonalUp).lineStyle != xl::kNone;
    if (up) node.append_attribute("diagonalUp").set_value(1);
    if (down) node.append_attribute("diagonalDown").set_value(1);
    WriteBorderEdge(node, "left", at(xl::kEdgeLeft));
    WriteBorderEdge(node, "right", at(xl::kEdgeRight));
    WriteBorderEdge(node, "top", at(xl::kEdgeTop));
    WriteBorderEdge(node, "bottom", at(xl::kEdgeBottom));
    // The file has one diagonal line; the host's two take the same look.
    WriteBorderEdge(node, "diagonal", down ? at(xl::kDiagonalDown) : at(xl::kDiagonalUp));
    SetCount(section);
    borders_.push_back(borders);
    return static_cast<int>(borders_.size() - 1);
}

int StyleSheet::NumberFormatId(const std::string& code) {
    for (const auto& format : kBuiltInFormats) {
        if (code == format.code) return format.id;
    }
    int largest = 163;  // custom formats are numbered from 164
    for (const auto& [id, existing] : numberFormats_) {
        if (existing == code) return id;
        largest = std::max(largest, id);
    }
    pugi::xml_node section = Section("numFmts");
    pugi::xml_node node = section.append_child(QualifiedName(section, "numFmt").c_str());
    node.append_attribute("numFmtId").set_value(largest + 1);
    node.append_attribute("formatCode").set_value(code.c_str());
    SetCount(section);
    numberFormats_.emplace_back(largest + 1, code);
    return largest + 1;
}

}  // namespace xlsx
