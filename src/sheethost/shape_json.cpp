// Shapes and charts as JSON. Keys are written sorted (nlohmann::json keeps objects ordered by key)
// and every property is written, absent optional parts as null, so that two dumps of the same
// drawing compare equal as text.
#include <nlohmann/json.hpp>
#include <type_traits>

#include "sheethost/shape_model.h"

namespace sheethost {
namespace {

using nlohmann::json;

// Readers of the nested records, each answering false for a description of the wrong shape.
bool ReadNested(const json& value, Font& font);
bool ReadNested(const json& value, TextRun& run);
bool ReadNested(const json& value, TextFrame& frame);
bool ReadNested(const json& value, LineFormat& line);
bool ReadNested(const json& value, FillFormat& fill);
bool ReadNested(const json& value, ConnectorEnd& end);
bool ReadNested(const json& value, FreeformNode& node);
bool ReadNested(const json& value, ChartAxis& axis);
bool ReadNested(const json& value, ChartSeries& series);
template <typename T>
bool ReadNested(const json& value, std::vector<T>& items);

// Reads the properties of one JSON object into a record, keeping the record's defaults for
// missing keys and remembering whether any present key had the wrong type.
class Reader {
  public:
    explicit Reader(const json& object) : object_(object), ok_(object.is_object()) {}

    bool ok() const { return ok_; }

    template <typename T>
    void Get(const char* key, T& out) {
        const json* value = Find(key);
        if (value == nullptr) return;
        if constexpr (std::is_same_v<T, bool>) {
            if (value->is_boolean()) return void(out = value->get<bool>());
        } else if constexpr (std::is_arithmetic_v<T>) {
            if (value->is_number()) return void(out = value->get<T>());
        } else if constexpr (std::is_same_v<T, std::string>) {
            if (value->is_string()) return void(out = value->get<std::string>());
        } else if constexpr (std::is_same_v<T, std::vector<double>>) {
            if (value->is_array()) {
                out.clear();
                for (const json& item : *value) {
                    if (!item.is_number()) return Fail();
                    out.push_back(item.get<double>());
                }
                return;
            }
        } else {
            // A nested record or list of records with its own reader function.
            if (ReadNested(*value, out)) return;
        }
        Fail();
    }

    // An optional part: null or missing leaves it empty.
    template <typename T>
    void GetOptional(const char* key, std::optional<T>& out) {
        const json* value = Find(key);
        if (value == nullptr || value->is_null()) return;
        T part{};
        if constexpr (std::is_arithmetic_v<T>) {
            if (!value->is_number()) return Fail();
            part = value->get<T>();
        } else if (!ReadNested(*value, part)) {
            return Fail();
        }
        out = std::move(part);
    }

  private:
    const json* Find(const char* key) const {
        if (!ok_) return nullptr;
        const auto found = object_.find(key);
        return found == object_.end() ? nullptr : &*found;
    }
    void Fail() { ok_ = false; }

    const json& object_;
    bool ok_;
};

json FontToJson(const Font& font) {
    return {{"name", font.name},
            {"size", font.size},
            {"bold", font.bold},
            {"italic", font.italic},
            {"color", font.color}};
}

bool ReadNested(const json& value, Font& font) {
    Reader reader(value);
    reader.Get("name", font.name);
    reader.Get("size", font.size);
    reader.Get("bold", font.bold);
    reader.Get("italic", font.italic);
    reader.Get("color", font.color);
    return reader.ok();
}

bool ReadNested(const json& value, TextRun& run) {
    Reader reader(value);
    reader.Get("text", run.text);
    reader.Get("font", run.font);
    return reader.ok();
}

template <typename T>
bool ReadNested(const json& value, std::vector<T>& items) {
    if (!value.is_array()) return false;
    items.clear();
    for (const json& itemJson : value) {
        T item{};
        if (!ReadNested(itemJson, item)) return false;
        items.push_back(std::move(item));
    }
    return true;
}

json TextFrameToJson(const TextFrame& frame) {
    json runs = json::array();
    for (const TextRun& run : frame.runs) {
        runs.push_back({{"text", run.text}, {"font", FontToJson(run.font)}});
    }
    return {{"runs", runs},
            {"defaultFont", FontToJson(frame.defaultFont)},
            {"autoSize", frame.autoSize},
            {"autoMargins", frame.autoMargins},
            {"horizontalAlignment", frame.horizontalAlignment},
            {"verticalAlignment", frame.verticalAlignment},
            {"orientation", frame.orientation},
            {"marginLeft", frame.marginLeft},
            {"marginRight", frame.marginRight},
            {"marginTop", frame.marginTop},
            {"marginBottom", frame.marginBottom}};
}

bool ReadNested(const json& value, TextFrame& frame) {
    Reader reader(value);
    reader.Get("runs", frame.runs);
    reader.Get("defaultFont", frame.defaultFont);
    reader.Get("autoSize", frame.autoSize);
    reader.Get("autoMargins", frame.autoMargins);
    reader.Get("horizontalAlignment", frame.horizontalAlignment);
    reader.Get("verticalAlignment", frame.verticalAlignment);
    reader.Get("orientation", frame.orientation);
    reader.Get("marginLeft", frame.marginLeft);
    reader.Get("marginRight", frame.marginRight);
    reader.Get("marginTop", frame.marginTop);
    reader.Get("marginBottom", frame.marginBottom);
    return reader.ok();
}

json LineToJson(const LineFormat& line) {
    return {{"visible", line.visible},
            {"weight", line.weight},
            {"dashStyle", line.dashStyle},
            {"style", line.style},
            {"foreColor", line.foreColor},
            {"backColor", line.backColor},
            {"beginArrowheadStyle", line.beginArrowheadStyle},
            {"endArrowheadStyle", line.endArrowheadStyle},
            {"transparency", line.transparency}};
}

bool ReadNested(const json& value, LineFormat& line) {
    Reader reader(value);
    reader.Get("visible", line.visible);
    reader.Get("weight", line.weight);
    reader.Get("dashStyle", line.dashStyle);
    reader.Get("style", line.style);
    reader.Get("foreColor", line.foreColor);
    reader.Get("backColor", line.backColor);
    reader.Get("beginArrowheadStyle", line.beginArrowheadStyle);
    reader.Get("endArrowheadStyle", line.endArrowheadStyle);
    reader.Get("transparency", line.transparency);
    return reader.ok();
}

json FillToJson(const FillFormat& fill) {
    return {{"visible", fill.visible},     {"transparency", fill.transparency},
            {"foreColor", fill.foreColor}, {"backColor", fill.backColor},
            {"type", fill.type},           {"pattern", fill.pattern}};
}

bool ReadNested(const json& value, FillFormat& fill) {
    Reader reader(value);
    reader.Get("visible", fill.visible);
    reader.Get("transparency", fill.transparency);
    reader.Get("foreColor", fill.foreColor);
    reader.Get("backColor", fill.backColor);
    reader.Get("type", fill.type);
    reader.Get("pattern", fill.pattern);
    return reader.ok();
}

json ConnectionToJson(const std::optional<ConnectorEnd>& end) {
    if (!end) return nullptr;
    return {{"shape", end->shapeId}, {"site", end->site}};
}

bool ReadNested(const json& value, ConnectorEnd& end) {
    Reader reader(value);
    reader.Get("shape", end.shapeId);
    reader.Get("site", end.site);
    return reader.ok();
}

bool ReadNested(const json& value, FreeformNode& node) {
    Reader reader(value);
    reader.Get("segmentType", node.segmentType);
    reader.Get("editingType", node.editingType);
    reader.Get("x", node.x);
    reader.Get("y", node.y);
    return reader.ok();
}

json AxisToJson(const ChartAxis& axis) {
    return {{"hasAxis", axis.hasAxis}, {"categoryType", axis.categoryType}};
}

bool ReadNested(const json& value, ChartAxis& axis) {
    Reader reader(value);
    reader.Get("hasAxis", axis.hasAxis);
    reader.Get("categoryType", axis.categoryType);
    return reader.ok();
}

bool ReadNested(const json& value, ChartSeries& series) {
    Reader reader(value);
    reader.Get("name", series.name);
    reader.Get("nameReference", series.nameReference);
    reader.Get("values", series.values);
    reader.Get("xValues", series.xValues);
    return reader.ok();
}

}  // namespace

json ShapeToJson(const Shape& shape) {
    json nodes = json::array();
    for (const FreeformNode& node : shape.nodes) {
        nodes.push_back({{"segmentType", node.segmentType},
                         {"editingType", node.editingType},
                         {"x", node.x},
                         {"y", node.y}});
    }
    return {{"id", shape.id},
            {"name", shape.name},
            {"type", shape.type},
            {"autoShapeType", shape.autoShapeType},
            {"left", shape.left},
            {"top", shape.top},
            {"width", shape.width},
            {"height", shape.height},
            {"horizontalFlip", shape.horizontalFlip},
            {"verticalFlip", shape.verticalFlip},
            {"visible", shape.visible},
            {"placement", shape.placement},
            {"line", LineToJson(shape.line)},
            {"fill", FillToJson(shape.fill)},
            {"textFrame", shape.textFrame ? TextFrameToJson(*shape.textFrame) : json(nullptr)},
            {"adjustments", shape.adjustments},
            {"connectorType", shape.connectorType ? json(*shape.connectorType) : json(nullptr)},
            {"beginConnection", ConnectionToJson(shape.beginConnection)},
            {"endConnection", ConnectionToJson(shape.endConnection)},
            {"nodes", nodes}};
}

std::optional<Shape> ShapeFromJson(const json& value) {
    Shape shape;
    Reader reader(value);
    reader.Get("id", shape.id);
    reader.Get("name", shape.name);
    reader.Get("type", shape.type);
    reader.Get("autoShapeType", shape.autoShapeType);
    reader.Get("left", shape.left);
    reader.Get("top", shape.top);
    reader.Get("width", shape.width);
    reader.Get("height", shape.height);
    reader.Get("horizontalFlip", shape.horizontalFlip);
    reader.Get("verticalFlip", shape.verticalFlip);
    reader.Get("visible", shape.visible);
    reader.Get("placement", shape.placement);
    reader.Get("line", shape.line);
    reader.Get("fill", shape.fill);
    reader.GetOptional("textFrame", shape.textFrame);
    reader.Get("adjustments", shape.adjustments);
    reader.GetOptional("connectorType", shape.connectorType);
    reader.GetOptional("beginConnection", shape.beginConnection);
    reader.GetOptional("endConnection", shape.endConnection);
    reader.Get("nodes", shape.nodes);
    if (!reader.ok()) return std::nullopt;
    return shape;
}

json ChartToJson(const Chart& chart) {
    json series = json::array();
    for (const ChartSeries& item : chart.series) {
        series.push_back({{"name", item.name},
                          {"nameReference", item.nameReference},
                          {"values", item.values},
                          {"xValues", item.xValues}});
    }
    return {{"shape", chart.shapeId},
            {"chartType", chart.chartType},
            {"hasTitle", chart.hasTitle},
            {"title", chart.title},
            {"categoryAxis", AxisToJson(chart.categoryAxis)},
            {"valueAxis", AxisToJson(chart.valueAxis)},
            {"sourceData", chart.sourceData},
            {"plotBy", chart.plotBy},
            {"series", series}};
}

std::optional<Chart> ChartFromJson(const json& value) {
    Chart chart;
    Reader reader(value);
    reader.Get("shape", chart.shapeId);
    reader.Get("chartType", chart.chartType);
    reader.Get("hasTitle", chart.hasTitle);
    reader.Get("title", chart.title);
    reader.Get("categoryAxis", chart.categoryAxis);
    reader.Get("valueAxis", chart.valueAxis);
    reader.Get("sourceData", chart.sourceData);
    reader.Get("plotBy", chart.plotBy);
    reader.Get("series", chart.series);
    if (!reader.ok()) return std::nullopt;
    return chart;
}

}  // namespace sheethost
