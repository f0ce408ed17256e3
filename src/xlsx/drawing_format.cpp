#include "xlsx/drawing_format.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "xlsx/colors.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

using sheethost::FillFormat;
using sheethost::Font;
using sheethost::LineFormat;
using sheethost::TextFrame;
using sheethost::TextRun;

// Pattern numbers 1 to 54 in the spreadsheet's order, as the file names them.
constexpr std::array<std::string_view, 54> kPatterns{
    "pct5",     "pct10",      "pct20",    "pct25",     "pct30",      "pct40",      "pct50",
    "pct60",    "pct70",      "pct75",    "pct80",     "pct90",      "dkHorz",     "dkVert",
    "dkDnDiag", "dkUpDiag",   "smCheck",  "trellis",   "ltHorz",     "ltVert",     "ltDnDiag",
    "ltUpDiag", "smGrid",     "dotDmnd",  "wdDnDiag",  "wdUpDiag",   "dashUpDiag", "dashDnDiag",
    "narVert",  "narHorz",    "dashVert", "dashHorz",  "lgConfetti", "lgGrid",     "horzBrick",
    "lgCheck",  "smConfetti", "zigZag",   "solidDmnd", "diagBrick",  "openDmnd",   "plaid",
    "sphere",   "weave",      "dotGrid",  "divot",     "shingle",    "wave",       "horz",
    "vert",     "cross",      "dnDiag",   "upDiag",    "diagCross"};

// Dash styles 1 to 12; the round dot (3) is the system dot with round caps.
constexpr std::array<std::string_view, 12> kDashes{
    "solid",  "sysDot",    "sysDot",       "dash",    "dashDot", "sysDashDotDot",
    "lgDash", "lgDashDot", "lgDashDotDot", "sysDash", "sysDot",  "sysDashDot"};
constexpr int kRoundDot = 3;

// Line styles 1 to 5 (single, thin-thin, thin-thick, thick-thin, thick between thin).
constexpr std::array<std::string_view, 5> kCompounds{"sng", "dbl", "thinThick", "thickThin", "tri"};

// Arrowheads 1 to 6 (none, triangle, open, stealth, diamond, oval).
constexpr std::array<std::string_view, 6> kArrowheads{"none",    "triangle", "arrow",
                                                      "stealth", "diamond",  "oval"};

template <std::size_t N>
int NumberOf(const std::array<std::string_view, N>& names, std::string_view name, int fallback) {
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? fallback : static_cast<int>(found - names.begin()) + 1;
}

template <std::size_t N>
std::string_view NameOf(const std::array<std::string_view, N>& names, int number) {
    return number >= 1 && number <= static_cast<int>(N)
               ? names[static_cast<std::size_t>(number - 1)]
               : names[0];
}

constexpr std::array<std::string_view, 6> kFillNames{"noFill",   "solidFill", "gradFill",
                                                     "blipFill", "pattFill",  "grpFill"};

bool IsFill(pugi::xml_node node) {
    return std::find(kFillNames.begin(), kFillNames.end(), LocalName(node)) != kFillNames.end();
}

pugi::xml_node FillOf(pugi::xml_node parent) {
    for (pugi::xml_node child : parent.children()) {
        if (IsFill(child)) return child;
    }
    return {};
}

struct Colour {
    std::uint32_t rgb = 0;  // 0xRRGGBB
    double alpha = 1;
};

double Percent(pugi::xml_node modifier) {
    return modifier.attribute("val").as_double() / 100000;
}

// The colour a fill or colour holder element gives (srgbClr, schemeClr, sysClr, prstClr with
// their modifiers).
std::optional<Colour> ReadColour(pugi::xml_node holder, const ThemeColors& theme) {
    for (pugi::xml_node node : holder.children()) {
        const std::string_view kind = LocalName(node);
        std::optional<std::uint32_t> rgb;
        if (kind == "srgbClr") {
            rgb = static_cast<std::uint32_t>(
                std::strtoul(node.attribute("val").value(), nullptr, 16));
        } else if (kind == "schemeClr") {
            rgb = theme.Named(node.attribute("val").value());
        } else if (kind == "sysClr") {
            rgb = static_cast<std::uint32_t>(
                std::strtoul(node.attribute("lastClr").as_string("000000"), nullptr, 16));
        } else if (kind == "prstClr") {
            const std::string_view name = node.attribute("val").value();
            rgb = name == "white" ? 0xFFFFFF : name == "red" ? 0xFF0000 : 0;
        } else {
            continue;
        }
        if (!rgb) return std::nullopt;
        Colour colour{*rgb, 1};
        double modulation = 1;
        double offset = 0;
        for (pugi::xml_node modifier : node.children()) {
            const std::string_view name = LocalName(modifier);
            const double value = Percent(modifier);
            if (name == "alpha") {
                colour.alpha = value;
            } else if (name == "lumMod") {
                modulation = value;
            } else if (name == "lumOff") {
                offset = value;
            } else if (name == "shade") {
                colour.rgb = ShadeColor(colour.rgb, value);
            } else if (name == "tint") {
                colour.rgb = TintColor(colour.rgb, value);
            }
        }
        if (modulation != 1 || offset != 0)
            colour.rgb = ScaleLightness(colour.rgb, modulation, offset);
        return colour;
    }
    return std::nullopt;
}

double Transparency(const Colour& colour) {
    return std::round((1 - colour.alpha) * 1e5) / 1e5;
}

void AddColour(pugi::xml_node holder, std::int32_t colorLong, double transparency,
               const DrawingPrefixes& prefixes) {
    pugi::xml_node colour = AddElement(holder, prefixes.a, "srgbClr");
    SetAttribute(colour, "val", std::string_view(ArgbText(ColorLongToRgb(colorLong))).substr(2));
    if (transparency > 0) {
        SetAttribute(AddElement(colour, prefixes.a, "alpha"), "val",
                     static_cast<std::int64_t>(std::lround((1 - transparency) * 100000)));
    }
}

// The fill of a <spPr> or <ln>: written in place of the old one, at the front of <ln> or after
// the geometry of <spPr>.
pugi::xml_node ReplaceFill(pugi::xml_node parent, std::string_view localName,
                           const DrawingPrefixes& prefixes) {
    pugi::xml_node old = FillOf(parent);
    pugi::xml_node fill;
    const std::string name = Prefixed(prefixes.a, localName);
    if (old) {
        fill = parent.insert_child_before(name.c_str(), old);
        parent.remove_child(old);
        return fill;
    }
    if (LocalName(parent) == "ln") return parent.prepend_child(name.c_str());
    pugi::xml_node geometry = Child(parent, "prstGeom");
    if (!geometry) geometry = Child(parent, "custGeom");
    if (!geometry) geometry = Child(parent, "xfrm");
    return geometry ? parent.insert_child_after(name.c_str(), geometry)
                    : parent.prepend_child(name.c_str());
}

void WriteFillElement(pugi::xml_node parent, bool visible, bool patterned, int pattern,
                      std::int32_t fore, std::int32_t back, double transparency,
                      const DrawingPrefixes& prefixes) {
    if (!visible) {
        ReplaceFill(parent, "noFill", prefixes);
    } else if (patterned) {
        pugi::xml_node fill = ReplaceFill(parent, "pattFill", prefixes);
        SetAttribute(fill, "prst", NameOf(kPatterns, pattern));
        AddColour(AddElement(fill, prefixes.a, "fgClr"), fore, transparency, prefixes);
        AddColour(AddElement(fill, prefixes.a, "bgClr"), back, transparency, prefixes);
    } else {
        AddColour(ReplaceFill(parent, "solidFill", prefixes), fore, transparency, prefixes);
    }
}

// The colour a <style> reference (lnRef, fillRef, fontRef) names.
std::optional<Colour> StyleColour(pugi::xml_node style, std::string_view reference,
                                  const ThemeColors& theme) {
    pugi::xml_node node = Child(style, reference);
    if (!node || node.attribute("idx").as_int(1) == 0) return std::nullopt;
    return ReadColour(node, theme);
}

std::int32_t ColorLong(const Colour& colour) {
    return RgbToColorLong(colour.rgb);
}

Font ReadRunFont(pugi::xml_node properties, Font font, const ThemeColors& theme) {
    if (!properties) return font;
    if (auto size = properties.attribute("sz")) font.size = size.as_double() / 100;
    if (auto bold = properties.attribute("b")) font.bold = bold.as_bool();
    if (auto italic = properties.attribute("i")) font.italic = italic.as_bool();
    if (auto colour = ReadColour(Child(properties, "solidFill"), theme))
        font.color = ColorLong(*colour);
    const std::string_view face = Child(properties, "latin").attribute("typeface").value();
    if (!face.empty() && !face.starts_with('+')) font.name = std::string(face);
    return font;
}

void WriteRunFont(pugi::xml_node properties, const Font& font, const DrawingPrefixes& prefixes) {
    SetAttribute(properties, "lang", "en-US");
    SetAttribute(properties, "sz", static_cast<std::int64_t>(std::lround(font.size * 100)));
    SetAttribute(properties, "b", font.bold ? "1" : "0");
    SetAttribute(properties, "i", font.italic ? "1" : "0");
    AddColour(AddElement(properties, prefixes.a, "solidFill"), font.color, 0, prefixes);
    SetAttribute(AddElement(properties, prefixes.a, "latin"), "typeface", font.name);
}

constexpr std::array<std::pair<std::string_view, int>, 5> kParagraphAlignments{
    {{"l", -4131}, {"ctr", -4108}, {"r", -4152}, {"just", -4130}, {"dist", -4117}}};
constexpr std::array<std::pair<std::string_view, int>, 3> kAnchors{
    {{"t", -4160}, {"ctr", -4108}, {"b", -4107}}};

template <std::size_t N>
int ValueOf(const std::array<std::pair<std::string_view, int>, N>& table, std::string_view name,
            int fallback) {
    for (const auto& [text, value] : table) {
        if (text == name) return value;
    }
    return fallback;
}

template <std::size_t N>
std::string_view TextOf(const std::array<std::pair<std::string_view, int>, N>& table, int value) {
    for (const auto& [text, number] : table) {
        if (number == value) return text;
    }
    return table[0].first;
}

// The colours of a fill element of a shape's properties or outline: the colour it shows (a
// pattern's foreground, a gradient's first stop) and a pattern's background. Without a fill
// element, the colour the shape's theme style gives through `reference`.
struct FillColours {
    std::optional<Colour> fore;
    std::optional<Colour> back;
};

FillColours ColoursOf(pugi::xml_node fill, pugi::xml_node style, std::string_view reference,
                      const ThemeColors& theme) {
    const std::string_view kind = LocalName(fill);
    if (!fill) return {StyleColour(style, reference, theme), std::nullopt};
    if (kind == "solidFill") return {ReadColour(fill, theme), std::nullopt};
    if (kind == "pattFill") {
        return {ReadColour(Child(fill, "fgClr"), theme), ReadColour(Child(fill, "bgClr"), theme)};
    }
    if (kind == "gradFill") return {ReadColour(Child(Child(fill, "gsLst"), "gs"), theme), {}};
    return {};
}

constexpr std::int64_t kDefaultSideInset = 91440;  // 7.2 points
constexpr std::int64_t kDefaultTopInset = 45720;   // 3.6 points

}  // namespace

FillFormat ReadFill(pugi::xml_node shapeProperties, pugi::xml_node style,
                    const ThemeColors& theme) {
    FillFormat fill;
    pugi::xml_node node = FillOf(shapeProperties);
    if (LocalName(node) == "noFill" || (!node && !style)) {
        fill.visible = false;
        return fill;
    }
    if (LocalName(node) == "pattFill") {
        fill.type = sheethost::mso::kFillPatterned;
        fill.pattern = NumberOf(kPatterns, node.attribute("prst").as_string("pct5"), 1);
    }
    const FillColours colours = ColoursOf(node, style, "fillRef", theme);
    if (!node && !colours.fore) fill.visible = false;
    if (colours.fore) {
        fill.foreColor = ColorLong(*colours.fore);
        fill.transparency = Transparency(*colours.fore);
    }
    if (colours.back) fill.backColor = ColorLong(*colours.back);
    return fill;
}

LineFormat ReadLine(pugi::xml_node shapeProperties, pugi::xml_node style,
                    const ThemeColors& theme) {
    LineFormat line;
    pugi::xml_node ln = Child(shapeProperties, "ln");
    pugi::xml_node node = FillOf(ln);
    const FillColours colours = ColoursOf(node, style, "lnRef", theme);
    line.visible = LocalName(node) != "noFill" && (node || colours.fore);
    if (colours.fore) {
        line.foreColor = ColorLong(*colours.fore);
        line.transparency = Transparency(*colours.fore);
    }
    if (colours.back) line.backColor = ColorLong(*colours.back);
    if (auto width = ln.attribute("w")) line.weight = EmuToPoints(width.as_llong());
    line.style = NumberOf(kCompounds, ln.attribute("cmpd").as_string("sng"), 1);
    if (pugi::xml_node dash = Child(ln, "prstDash")) {
        const std::string_view name = dash.attribute("val").as_string("solid");
        line.dashStyle = name == "sysDot" && std::string_view(ln.attribute("cap").value()) == "rnd"
                             ? kRoundDot
                             : NumberOf(kDashes, name, 1);
    }
    line.beginArrowheadStyle =
        NumberOf(kArrowheads, Child(ln, "headEnd").attribute("type").as_string("none"), 1);
    line.endArrowheadStyle =
        NumberOf(kArrowheads, Child(ln, "tailEnd").attribute("type").as_string("none"), 1);
    return line;
}

void WriteFill(pugi::xml_node shapeProperties, const FillFormat& fill,
               const DrawingPrefixes& prefixes) {
    WriteFillElement(shapeProperties, fill.visible, fill.type == sheethost::mso::kFillPatterned,
                     fill.pattern, fill.foreColor, fill.backColor, fill.transparency, prefixes);
}

void WriteLine(pugi::xml_node shapeProperties, const LineFormat& line,
               const DrawingPrefixes& prefixes) {
    pugi::xml_node ln = Child(shapeProperties, "ln");
    if (!ln) {
        pugi::xml_node fill = FillOf(shapeProperties);
        const std::string name = Prefixed(prefixes.a, "ln");
        ln = fill ? shapeProperties.insert_child_after(name.c_str(), fill)
                  : shapeProperties.append_child(name.c_str());
    }
    SetAttribute(ln, "w", PointsToEmu(line.weight));
    SetAttribute(ln, "cmpd", NameOf(kCompounds, line.style));
    ln.remove_attribute("cap");
    if (line.dashStyle == kRoundDot) SetAttribute(ln, "cap", "rnd");
    WriteFillElement(ln, line.visible, false, 0, line.foreColor, line.backColor, line.transparency,
                     prefixes);
    for (std::string_view name : {"prstDash", "custDash", "headEnd", "tailEnd"}) {
        if (pugi::xml_node old = Child(ln, name)) ln.remove_child(old);
    }
    // prstDash follows the fill; the ends follow the join, which stays where it was.
    pugi::xml_node dash =
        ln.insert_child_after(Prefixed(prefixes.a, "prstDash").c_str(), FillOf(ln));
    SetAttribute(dash, "val", NameOf(kDashes, line.dashStyle));
    pugi::xml_node extensions = Child(ln, "extLst");
    for (auto [name, style] : {std::pair<const char*, int>{"headEnd", line.beginArrowheadStyle},
                               {"tailEnd", line.endArrowheadStyle}}) {
        const std::string qualified = Prefixed(prefixes.a, name);
        pugi::xml_node end = extensions ? ln.insert_child_before(qualified.c_str(), extensions)
                                        : ln.append_child(qualified.c_str());
        SetAttribute(end, "type", NameOf(kArrowheads, style));
    }
}

TextFrame ReadTextBody(pugi::xml_node textBody, const ThemeColors& theme) {
    TextFrame frame;
    pugi::xml_node body = Child(textBody, "bodyPr");
    frame.verticalAlignment = ValueOf(kAnchors, body.attribute("anchor").as_string("t"), -4160);
    frame.autoSize = static_cast<bool>(Child(body, "spAutoFit"));
    frame.autoMargins = true;
    for (const char* inset : {"lIns", "rIns", "tIns", "bIns"}) {
        if (body.attribute(inset)) frame.autoMargins = false;
    }
    frame.marginLeft = EmuToPoints(body.attribute("lIns").as_llong(kDefaultSideInset));
    frame.marginRight = EmuToPoints(body.attribute("rIns").as_llong(kDefaultSideInset));
    frame.marginTop = EmuToPoints(body.attribute("tIns").as_llong(kDefaultTopInset));
    frame.marginBottom = EmuToPoints(body.attribute("bIns").as_llong(kDefaultTopInset));
    // Paragraph and line breaks become line feeds in the text, in the font of the text before.
    auto append = [&](std::string text, const Font& font) {
        if (!frame.runs.empty() && frame.runs.back().font == font) {
            frame.runs.back().text += text;
        } else {
            frame.runs.push_back({std::move(text), font});
        }
    };
    auto lineFeed = [&] {
        append("\n", frame.runs.empty() ? frame.defaultFont : frame.runs.back().font);
    };
    bool first = true;
    for (pugi::xml_node paragraph : Children(textBody, "p")) {
        if (first) {
            frame.horizontalAlignment =
                ValueOf(kParagraphAlignments,
                        Child(paragraph, "pPr").attribute("algn").as_string("l"), -4131);
            frame.defaultFont =
                ReadRunFont(Child(paragraph, "endParaRPr"), frame.defaultFont, theme);
        } else {
            lineFeed();
        }
        first = false;
        for (pugi::xml_node run : paragraph.children()) {
            const std::string_view kind = LocalName(run);
            if (kind == "r" || kind == "fld") {
                append(Child(run, "t").text().get(), ReadRunFont(Child(run, "rPr"), Font{}, theme));
            } else if (kind == "br") {
                lineFeed();
            }
        }
    }
    return frame;
}

void WriteTextBody(pugi::xml_node textBody, const TextFrame& frame,
                   const DrawingPrefixes& prefixes) {
    while (textBody.first_child()) textBody.remove_child(textBody.first_child());
    pugi::xml_node body = AddElement(textBody, prefixes.a, "bodyPr");
    // A frame sized to its text is sized to it on one line: a program that wrapped the text
    // instead would break a label in two when its font measures a little wider than ours.
    SetAttribute(body, "wrap", frame.autoSize ? "none" : "square");
    if (!frame.autoMargins) {
        SetAttribute(body, "lIns", PointsToEmu(frame.marginLeft));
        SetAttribute(body, "tIns", PointsToEmu(frame.marginTop));
        SetAttribute(body, "rIns", PointsToEmu(frame.marginRight));
        SetAttribute(body, "bIns", PointsToEmu(frame.marginBottom));
    }
    SetAttribute(body, "anchor", TextOf(kAnchors, frame.verticalAlignment));
    if (frame.autoSize) AddElement(body, prefixes.a, "spAutoFit");
    AddElement(textBody, prefixes.a, "lstStyle");
    auto newParagraph = [&] {
        pugi::xml_node paragraph = AddElement(textBody, prefixes.a, "p");
        SetAttribute(AddElement(paragraph, prefixes.a, "pPr"), "algn",
                     TextOf(kParagraphAlignments, frame.horizontalAlignment));
        return paragraph;
    };
    pugi::xml_node paragraph = newParagraph();
    for (const TextRun& run : frame.runs) {
        std::string_view rest = run.text;
        while (true) {
            const std::size_t end = rest.find('\n');
            const std::string_view piece = rest.substr(0, end);
            if (!piece.empty()) {
                pugi::xml_node r = AddElement(paragraph, prefixes.a, "r");
                WriteRunFont(AddElement(r, prefixes.a, "rPr"), run.font, prefixes);
                AddElement(r, prefixes.a, "t").text().set(std::string(piece).c_str());
            }
            if (end == std::string_view::npos) break;
            rest.remove_prefix(end + 1);
            paragraph = newParagraph();
        }
    }
    WriteRunFont(AddElement(paragraph, prefixes.a, "endParaRPr"), frame.defaultFont, prefixes);
}

}  // namespace xlsx
