#include "xlsx/drawing_shape.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "sheethost/shape_geometry.h"
#include "xlsx/drawing_format.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

namespace mso = sheethost::mso;
using sheethost::Shape;

// AutoShapeType numbers as the file names their preset geometries: the basic shapes and block
// arrows (1 to 52), then the flowchart symbols and stars (61 to 96), which workbooks use for
// milestones and status marks. A shape of another preset is left to the file as it is.
constexpr std::array<std::string_view, 52> kBasicPresets{"rect",
                                                         "parallelogram",
                                                         "trapezoid",
                                                         "diamond",
                                                         "roundRect",
                                                         "octagon",
                                                         "triangle",
                                                         "rtTriangle",
                                                         "ellipse",
                                                         "hexagon",
                                                         "plus",
                                                         "pentagon",
                                                         "can",
                                                         "cube",
                                                         "bevel",
                                                         "foldedCorner",
                                                         "smileyFace",
                                                         "donut",
                                                         "noSmoking",
                                                         "blockArc",
                                                         "heart",
                                                         "lightningBolt",
                                                         "sun",
                                                         "moon",
                                                         "arc",
                                                         "bracketPair",
                                                         "bracePair",
                                                         "plaque",
                                                         "leftBracket",
                                                         "rightBracket",
                                                         "leftBrace",
                                                         "rightBrace",
                                                         "rightArrow",
                                                         "leftArrow",
                                                         "upArrow",
                                                         "downArrow",
                                                         "leftRightArrow",
                                                         "upDownArrow",
                                                         "quadArrow",
                                                         "leftRightUpArrow",
                                                         "bentArrow",
                                                         "uturnArrow",
                                                         "leftUpArrow",
                                                         "bentUpArrow",
                                                         "curvedRightArrow",
                                                         "curvedLeftArrow",
                                                         "curvedUpArrow",
                                                         "curvedDownArrow",
                                                         "stripedRightArrow",
                                                         "notchedRightArrow",
                                                         "homePlate",
                                                         "chevron"};
constexpr int kFirstFlowchartPreset = 61;
constexpr std::array<std::string_view, 36> kFlowchartAndStarPresets{"flowChartProcess",
                                                                    "flowChartAlternateProcess",
                                                                    "flowChartDecision",
                                                                    "flowChartInputOutput",
                                                                    "flowChartPredefinedProcess",
                                                                    "flowChartInternalStorage",
                                                                    "flowChartDocument",
                                                                    "flowChartMultidocument",
                                                                    "flowChartTerminator",
                                                                    "flowChartPreparation",
                                                                    "flowChartManualInput",
                                                                    "flowChartManualOperation",
                                                                    "flowChartConnector",
                                                                    "flowChartOffpageConnector",
                                                                    "flowChartPunchedCard",
                                                                    "flowChartPunchedTape",
                                                                    "flowChartSummingJunction",
                                                                    "flowChartOr",
                                                                    "flowChartCollate",
                                                                    "flowChartSort",
                                                                    "flowChartExtract",
                                                                    "flowChartMerge",
                                                                    "flowChartOnlineStorage",
                                                                    "flowChartDelay",
                                                                    "flowChartMagneticTape",
                                                                    "flowChartMagneticDisk",
                                                                    "flowChartMagneticDrum",
                                                                    "flowChartDisplay",
                                                                    "irregularSeal1",
                                                                    "irregularSeal2",
                                                                    "star4",
                                                                    "star5",
                                                                    "star8",
                                                                    "star16",
                                                                    "star24",
                                                                    "star32"};

std::optional<int> AutoShapeTypeOf(std::string_view preset) {
    for (std::size_t at = 0; at < kBasicPresets.size(); ++at) {
        if (kBasicPresets[at] == preset) return static_cast<int>(at) + 1;
    }
    for (std::size_t at = 0; at < kFlowchartAndStarPresets.size(); ++at) {
        if (kFlowchartAndStarPresets[at] == preset) {
            return static_cast<int>(at) + kFirstFlowchartPreset;
        }
    }
    return std::nullopt;
}

std::string_view PresetOf(int autoShapeType) {
    if (autoShapeType >= 1 && autoShapeType <= static_cast<int>(kBasicPresets.size())) {
        return kBasicPresets[static_cast<std::size_t>(autoShapeType - 1)];
    }
    const int flowchart = autoShapeType - kFirstFlowchartPreset;
    if (flowchart >= 0 && flowchart < static_cast<int>(kFlowchartAndStarPresets.size())) {
        return kFlowchartAndStarPresets[static_cast<std::size_t>(flowchart)];
    }
    return "rect";
}

constexpr std::array<std::string_view, 3> kConnectorPresets{"straightConnector1", "bentConnector3",
                                                            "curvedConnector3"};

std::optional<int> ConnectorTypeOf(std::string_view preset) {
    if (preset == "line" || preset == "straightConnector1") return mso::kConnectorStraight;
    if (preset.starts_with("bentConnector")) return mso::kConnectorElbow;
    if (preset.starts_with("curvedConnector")) return mso::kConnectorCurve;
    return std::nullopt;
}

// Elbow and curved connectors name their preset after their segments, one more than their
// adjustments: a route that turns once has none (bentConnector2), one that runs on from site to
// site one (bentConnector3), one that doubles back three (bentConnector5).
std::string ConnectorPreset(const Shape& shape) {
    if (shape.type == mso::kLine) return "line";
    const int type = shape.connectorType.value_or(mso::kConnectorStraight);
    const std::string_view preset =
        kConnectorPresets[static_cast<std::size_t>(std::clamp(type, 1, 3) - 1)];
    if (type == mso::kConnectorStraight) return std::string(preset);
    const std::size_t segments = std::clamp<std::size_t>(shape.adjustments.size() + 2, 2, 5);
    return std::string(preset.substr(0, preset.size() - 1)) + std::to_string(segments);
}

// The adjustments of a preset, as fractions (the file writes them in hundred-thousandths); the
// preset's own when the file gives none.
std::vector<double> ReadAdjustments(pugi::xml_node geometry, std::vector<double> preset) {
    std::vector<double> values;
    for (pugi::xml_node guide : Children(Child(geometry, "avLst"), "gd")) {
        const std::string_view formula = guide.attribute("fmla").value();
        if (!formula.starts_with("val ")) continue;
        values.push_back(std::strtod(std::string(formula.substr(4)).c_str(), nullptr) / 100000);
    }
    return values.empty() ? preset : values;
}

// Shapes with one adjustment call it "adj", except connectors, whose guides are always numbered.
void WriteAdjustments(pugi::xml_node geometry, const std::vector<double>& adjustments,
                      bool numbered, const DrawingPrefixes& prefixes) {
    pugi::xml_node list = AddElement(geometry, prefixes.a, "avLst");
    for (std::size_t at = 0; at < adjustments.size(); ++at) {
        pugi::xml_node guide = AddElement(list, prefixes.a, "gd");
        SetAttribute(guide, "name",
                     adjustments.size() == 1 && !numbered ? std::string("adj")
                                                          : "adj" + std::to_string(at + 1));
        SetAttribute(guide, "fmla", "val " + std::to_string(std::lround(adjustments[at] * 100000)));
    }
}

// A freeform's outline: the path's coordinates run over its own width and height, which span the
// shape's box.
std::vector<sheethost::FreeformNode> ReadPath(pugi::xml_node geometry, const Box& box) {
    std::vector<sheethost::FreeformNode> nodes;
    pugi::xml_node path = Child(Child(geometry, "pathLst"), "path");
    const double width = path.attribute("w").as_double();
    const double height = path.attribute("h").as_double();
    auto point = [&](pugi::xml_node pt, int segmentType, int editingType) {
        const double x = pt.attribute("x").as_double();
        const double y = pt.attribute("y").as_double();
        nodes.push_back(
            {segmentType, editingType,
             box.left + (width > 0 ? x / width * box.width : EmuToPoints(std::llround(x))),
             box.top + (height > 0 ? y / height * box.height : EmuToPoints(std::llround(y)))});
    };
    for (pugi::xml_node step : path.children()) {
        const std::string_view kind = LocalName(step);
        if (kind == "moveTo" || kind == "lnTo") {
            point(Child(step, "pt"), 0, 0);
        } else if (kind == "cubicBezTo") {
            for (pugi::xml_node pt : Children(step, "pt")) point(pt, 1, 1);
        }
    }
    return nodes;
}

void WritePath(pugi::xml_node geometry, const Shape& shape, const DrawingPrefixes& prefixes) {
    for (std::string_view name : {"avLst", "gdLst", "ahLst", "cxnLst"}) {
        AddElement(geometry, prefixes.a, name);
    }
    pugi::xml_node rect = AddElement(geometry, prefixes.a, "rect");
    SetAttribute(rect, "l", "0");
    SetAttribute(rect, "t", "0");
    SetAttribute(rect, "r", "r");
    SetAttribute(rect, "b", "b");
    pugi::xml_node path =
        AddElement(AddElement(geometry, prefixes.a, "pathLst"), prefixes.a, "path");
    SetAttribute(path, "w", PointsToEmu(shape.width));
    SetAttribute(path, "h", PointsToEmu(shape.height));
    auto addPoint = [&](pugi::xml_node step, const sheethost::FreeformNode& node) {
        pugi::xml_node pt = AddElement(step, prefixes.a, "pt");
        SetAttribute(pt, "x", PointsToEmu(node.x - shape.left));
        SetAttribute(pt, "y", PointsToEmu(node.y - shape.top));
    };
    const auto& nodes = shape.nodes;
    for (std::size_t at = 0; at < nodes.size();) {
        if (at > 0 && nodes[at].segmentType == 1 && nodes[at].editingType == 1 &&
            at + 2 < nodes.size()) {
            pugi::xml_node step = AddElement(path, prefixes.a, "cubicBezTo");
            for (std::size_t k = 0; k < 3; ++k) addPoint(step, nodes[at + k]);
            at += 3;
            continue;
        }
        addPoint(AddElement(path, prefixes.a, at == 0 ? "moveTo" : "lnTo"), nodes[at]);
        ++at;
    }
    if (nodes.size() > 2 && nodes.front().x == nodes.back().x &&
        nodes.front().y == nodes.back().y) {
        AddElement(path, prefixes.a, "close");
    }
}

std::optional<sheethost::ConnectorEnd> ReadConnection(pugi::xml_node node) {
    if (!node) return std::nullopt;
    // Sites count from 1 here and from 0 in the file, whose number may be the largest there is:
    // a number past every site stays past them.
    const long long index =
        std::clamp<long long>(node.attribute("idx").as_llong(), INT_MIN, INT_MAX - 1LL);
    return sheethost::ConnectorEnd{node.attribute("id").as_int(), static_cast<int>(index + 1)};
}

pugi::xml_node NonVisualProperties(pugi::xml_node object) {
    for (pugi::xml_node child : object.children()) {
        if (LocalName(child).starts_with("nv")) return child;
    }
    return {};
}

// The element holding the shape's position: <a:xfrm> in the shape properties, or the frame's own
// <xdr:xfrm>.
pugi::xml_node Transform(pugi::xml_node object) {
    if (LocalName(object) == "graphicFrame") return Child(object, "xfrm");
    return Child(Child(object, "spPr"), "xfrm");
}

bool SameBox(const Shape& a, const Shape& b) {
    return a.left == b.left && a.top == b.top && a.width == b.width && a.height == b.height &&
           a.horizontalFlip == b.horizontalFlip && a.verticalFlip == b.verticalFlip;
}

bool SameGeometry(const Shape& a, const Shape& b) {
    return a.type == b.type && a.autoShapeType == b.autoShapeType &&
           a.adjustments == b.adjustments && a.connectorType == b.connectorType &&
           a.nodes == b.nodes && (a.nodes.empty() || SameBox(a, b));
}

void WriteTransform(pugi::xml_node object, const Shape& shape, const DrawingPrefixes& prefixes) {
    const bool frame = LocalName(object) == "graphicFrame";
    pugi::xml_node transform = Transform(object);
    if (!transform) {
        pugi::xml_node parent = frame ? object : Child(object, "spPr");
        const std::string name = Prefixed(frame ? prefixes.xdr : prefixes.a, "xfrm");
        pugi::xml_node after = frame ? NonVisualProperties(object) : pugi::xml_node();
        transform = after ? parent.insert_child_after(name.c_str(), after)
                          : parent.prepend_child(name.c_str());
    }
    transform.remove_attribute("flipH");
    transform.remove_attribute("flipV");
    if (shape.horizontalFlip) SetAttribute(transform, "flipH", "1");
    if (shape.verticalFlip) SetAttribute(transform, "flipV", "1");
    pugi::xml_node offset = ChildOrAdd(transform, prefixes.a, "off");
    SetAttribute(offset, "x", PointsToEmu(shape.left));
    SetAttribute(offset, "y", PointsToEmu(shape.top));
    pugi::xml_node extent = ChildOrAdd(transform, prefixes.a, "ext");
    SetAttribute(extent, "cx", PointsToEmu(shape.width));
    SetAttribute(extent, "cy", PointsToEmu(shape.height));
}

void WriteGeometry(pugi::xml_node properties, const Shape& shape, const DrawingPrefixes& prefixes) {
    pugi::xml_node old = Child(properties, "prstGeom");
    if (!old) old = Child(properties, "custGeom");
    const bool freeform = shape.type == mso::kFreeform;
    const std::string name = Prefixed(prefixes.a, freeform ? "custGeom" : "prstGeom");
    pugi::xml_node geometry;
    if (old) {
        geometry = properties.insert_child_before(name.c_str(), old);
        properties.remove_child(old);
    } else if (pugi::xml_node transform = Child(properties, "xfrm")) {
        geometry = properties.insert_child_after(name.c_str(), transform);
    } else {
        geometry = properties.prepend_child(name.c_str());
    }
    if (freeform) return WritePath(geometry, shape, prefixes);
    SetAttribute(
        geometry, "prst",
        shape.connectorType ? ConnectorPreset(shape) : std::string(PresetOf(shape.autoShapeType)));
    WriteAdjustments(geometry, shape.adjustments, shape.connectorType.has_value(), prefixes);
}

void WriteConnections(pugi::xml_node object, const Shape& shape, const DrawingPrefixes& prefixes) {
    pugi::xml_node properties = Child(NonVisualProperties(object), "cNvCxnSpPr");
    for (std::string_view name : {"stCxn", "endCxn"}) {
        if (pugi::xml_node old = Child(properties, name)) properties.remove_child(old);
    }
    for (auto [name, end] :
         {std::pair{"stCxn", &shape.beginConnection}, std::pair{"endCxn", &shape.endConnection}}) {
        if (!*end) continue;
        pugi::xml_node node = AddElement(properties, prefixes.a, name);
        SetAttribute(node, "id", static_cast<std::int64_t>((*end)->shapeId));
        SetAttribute(node, "idx", static_cast<std::int64_t>((*end)->site) - 1);
    }
}

}  // namespace

std::string_view ObjectElementName(const Shape& shape) {
    if (shape.type == mso::kChart) return "graphicFrame";
    return shape.connectorType ? "cxnSp" : "sp";
}

std::optional<Shape> ReadShapeElement(pugi::xml_node object, const Box& box,
                                      const ThemeColors& theme) {
    const std::string_view kind = LocalName(object);
    if (kind != "sp" && kind != "cxnSp" && kind != "graphicFrame") return std::nullopt;
    pugi::xml_node nonVisual = NonVisualProperties(object);
    pugi::xml_node identity = Child(nonVisual, "cNvPr");
    Shape shape;
    shape.id = identity.attribute("id").as_int();
    shape.name = identity.attribute("name").value();
    shape.visible = !identity.attribute("hidden").as_bool();
    shape.left = box.left;
    shape.top = box.top;
    shape.width = box.width;
    shape.height = box.height;
    pugi::xml_node transform = Transform(object);
    shape.horizontalFlip = transform.attribute("flipH").as_bool();
    shape.verticalFlip = transform.attribute("flipV").as_bool();
    if (kind == "graphicFrame") {
        shape.type = mso::kChart;
        shape.autoShapeType = mso::kShapeNotPrimitive;
        return shape;
    }
    pugi::xml_node properties = Child(object, "spPr");
    pugi::xml_node style = Child(object, "style");
    shape.fill = ReadFill(properties, style, theme);
    shape.line = ReadLine(properties, style, theme);
    pugi::xml_node preset = Child(properties, "prstGeom");
    const std::string_view presetName = preset.attribute("prst").value();
    if (kind == "cxnSp" || presetName == "line") {
        const auto connector = ConnectorTypeOf(presetName);
        if (!connector) return std::nullopt;
        shape.connectorType = connector;
        shape.type = presetName == "line" ? mso::kLine : mso::kAutoShape;
        shape.autoShapeType = mso::kShapeMixed;
        // Each bend of an elbow or curve lies halfway unless the file says otherwise; the preset's
        // last digit counts its segments, one more than its bends.
        if (*connector != mso::kConnectorStraight) {
            const int segments = presetName.empty() ? 3 : presetName.back() - '0';
            shape.adjustments = ReadAdjustments(
                preset,
                std::vector<double>(static_cast<std::size_t>(std::clamp(segments, 2, 5) - 2), 0.5));
        }
        pugi::xml_node connections = Child(nonVisual, "cNvCxnSpPr");
        shape.beginConnection = ReadConnection(Child(connections, "stCxn"));
        shape.endConnection = ReadConnection(Child(connections, "endCxn"));
        return shape;
    }
    if (pugi::xml_node custom = Child(properties, "custGeom")) {
        shape.type = mso::kFreeform;
        shape.autoShapeType = mso::kShapeNotPrimitive;
        shape.nodes = ReadPath(custom, box);
    } else {
        const auto type = AutoShapeTypeOf(presetName);
        if (!type) return std::nullopt;
        shape.autoShapeType = *type;
        shape.adjustments = ReadAdjustments(preset, sheethost::DefaultAdjustments(*type));
        shape.type = Child(nonVisual, "cNvSpPr").attribute("txBox").as_bool() ? mso::kTextBox
                                                                              : mso::kAutoShape;
    }
    if (pugi::xml_node text = Child(object, "txBody")) {
        shape.textFrame = ReadTextBody(text, theme);
    } else if (shape.type != mso::kFreeform) {
        shape.textFrame = sheethost::TextFrame{};
    }
    return shape;
}

pugi::xml_node AddShapeElement(pugi::xml_node anchor, const Shape& shape,
                               const DrawingPrefixes& prefixes) {
    const std::string_view kind = ObjectElementName(shape);
    pugi::xml_node object = AddElement(anchor, prefixes.xdr, kind);
    const std::string nonVisualName = kind == "graphicFrame" ? "nvGraphicFramePr"
                                      : kind == "cxnSp"      ? "nvCxnSpPr"
                                                             : "nvSpPr";
    pugi::xml_node nonVisual = AddElement(object, prefixes.xdr, nonVisualName);
    AddElement(nonVisual, prefixes.xdr, "cNvPr");
    AddElement(nonVisual, prefixes.xdr,
               kind == "graphicFrame" ? "cNvGraphicFramePr"
               : kind == "cxnSp"      ? "cNvCxnSpPr"
                                      : "cNvSpPr");
    if (shape.type == mso::kTextBox) SetAttribute(Child(nonVisual, "cNvSpPr"), "txBox", "1");
    if (kind != "graphicFrame") AddElement(object, prefixes.xdr, "spPr");
    if (kind == "sp" && shape.textFrame) AddElement(object, prefixes.xdr, "txBody");
    return object;
}

void WriteShapeElement(pugi::xml_node object, const Shape& shape, const Shape* before,
                       const DrawingPrefixes& prefixes) {
    pugi::xml_node identity = Child(NonVisualProperties(object), "cNvPr");
    SetAttribute(identity, "id", static_cast<std::int64_t>(shape.id));
    SetAttribute(identity, "name", shape.name);
    identity.remove_attribute("hidden");
    if (!shape.visible) SetAttribute(identity, "hidden", "1");
    if (!before || !SameBox(shape, *before)) WriteTransform(object, shape, prefixes);
    if (shape.type == mso::kChart) return;

    pugi::xml_node properties = Child(object, "spPr");
    if (!before || !SameGeometry(shape, *before)) WriteGeometry(properties, shape, prefixes);
    if (!before || shape.fill != before->fill) WriteFill(properties, shape.fill, prefixes);
    if (!before || shape.line != before->line) WriteLine(properties, shape.line, prefixes);
    if (shape.connectorType) {
        if (!before || shape.beginConnection != before->beginConnection ||
            shape.endConnection != before->endConnection) {
            WriteConnections(object, shape, prefixes);
        }
        return;
    }
    if (shape.textFrame && (!before || shape.textFrame != before->textFrame)) {
        pugi::xml_node text = Child(object, "txBody");
        if (!text) text = AddElement(object, prefixes.xdr, "txBody");
        WriteTextBody(text, *shape.textFrame, prefixes);
    }
}

}  // namespace xlsx
