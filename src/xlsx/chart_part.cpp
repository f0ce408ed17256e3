#include "xlsx/chart_part.h"

#include <array>
#include <pugixml.hpp>
#include <string_view>

#include "xlsx/colors.h"
#include "xlsx/drawing_xml.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

using sheethost::Chart;
using sheethost::ChartSeries;

// The chart kinds the host draws, as ChartType numbers, with the plot element and its settings.
struct ChartKind {
    int chartType;
    std::string_view plot;
    std::string_view barDirection;  // bar plots only
    std::string_view grouping;
    bool markers;  // line plots only
};

constexpr std::array<ChartKind, 7> kKinds{{
    {51, "barChart", "col", "clustered", false},
    {52, "barChart", "col", "stacked", false},
    {57, "barChart", "bar", "clustered", false},
    {58, "barChart", "bar", "stacked", false},
    {4, "lineChart", "", "standard", false},
    {65, "lineChart", "", "standard", true},
    {5, "pieChart", "", "", false},
}};

constexpr int kCategoryScale = 2;
constexpr int kTimeScale = 3;

bool HasMarkers(pugi::xml_node plot) {
    for (pugi::xml_node series : Children(plot, "ser")) {
        const std::string_view symbol =
            Child(Child(series, "marker"), "symbol").attribute("val").value();
        if (symbol == "none") return false;
    }
    return std::string_view(Child(plot, "marker").attribute("val").as_string("1")) != "0";
}

std::optional<int> ChartTypeOf(pugi::xml_node plot) {
    const std::string_view name = LocalName(plot);
    const std::string_view direction = Child(plot, "barDir").attribute("val").as_string("col");
    const std::string_view grouping =
        Child(plot, "grouping").attribute("val").as_string("clustered");
    for (const ChartKind& kind : kKinds) {
        if (kind.plot != name) continue;
        if (name == "barChart" && (kind.barDirection != direction || kind.grouping != grouping)) {
            continue;
        }
        if (name == "lineChart" && kind.markers != HasMarkers(plot)) continue;
        return kind.chartType;
    }
    return std::nullopt;
}

const ChartKind& KindOf(int chartType) {
    for (const ChartKind& kind : kKinds) {
        if (kind.chartType == chartType) return kind;
    }
    return kKinds[0];
}

std::string Reference(pugi::xml_node holder) {
    for (std::string_view kind : {"strRef", "numRef", "multiLvlStrRef"}) {
        if (pugi::xml_node reference = Child(holder, kind)) {
            return "=" + std::string(Child(reference, "f").text().get());
        }
    }
    return "";
}

ChartSeries ReadSeries(pugi::xml_node series) {
    ChartSeries result;
    pugi::xml_node name = Child(series, "tx");
    result.nameReference = Reference(name);
    if (pugi::xml_node value = Child(name, "v")) result.name = value.text().get();
    if (pugi::xml_node cache = Child(Child(Child(name, "strRef"), "strCache"), "pt")) {
        result.name = Child(cache, "v").text().get();
    }
    result.values = Reference(Child(series, "val"));
    if (result.values.empty()) result.values = Reference(Child(series, "yVal"));
    result.xValues = Reference(Child(series, "cat"));
    if (result.xValues.empty()) result.xValues = Reference(Child(series, "xVal"));
    return result;
}

pugi::xml_node Add(pugi::xml_node parent, std::string_view name) {
    return AddElement(parent, "c", name);
}

pugi::xml_node AddValue(pugi::xml_node parent, std::string_view name, std::string_view value) {
    pugi::xml_node node = Add(parent, name);
    SetAttribute(node, "val", value);
    return node;
}

void AddReference(pugi::xml_node parent, std::string_view name, std::string_view kind,
                  const std::string& formula) {
    if (formula.empty()) return;
    pugi::xml_node reference = Add(Add(parent, name), kind);
    Add(reference, "f").text().set(formula.substr(formula.starts_with('=') ? 1 : 0).c_str());
}

void AddRichText(pugi::xml_node parent, const std::string& text) {
    pugi::xml_node rich = Add(Add(parent, "tx"), "rich");
    AddElement(rich, "a", "bodyPr");
    AddElement(AddElement(AddElement(rich, "a", "p"), "a", "r"), "a", "t").text().set(text.c_str());
}

void AddAxis(pugi::xml_node plotArea, std::string_view name, int id, int crossId,
             const sheethost::ChartAxis& axis, std::string_view position) {
    pugi::xml_node node = Add(plotArea, name);
    AddValue(node, "axId", std::to_string(id));
    AddValue(Add(node, "scaling"), "orientation", "minMax");
    AddValue(node, "delete", axis.hasAxis ? "0" : "1");
    AddValue(node, "axPos", position);
    if (name == "valAx") Add(node, "majorGridlines");
    AddValue(node, "crossAx", std::to_string(crossId));
    if (name == "catAx") {
        AddValue(node, "auto", axis.categoryType == kCategoryScale ? "0" : "1");
    }
}

}  // namespace

std::optional<Chart> ReadChartPart(const std::string& bytes, const std::string& partName) {
    pugi::xml_document document;
    ParseXml(document, bytes, partName);
    pugi::xml_node chart = Child(document.document_element(), "chart");
    pugi::xml_node plotArea = Child(chart, "plotArea");
    pugi::xml_node plot;
    for (pugi::xml_node child : plotArea.children()) {
        if (!LocalName(child).ends_with("Chart")) continue;
        if (plot) return std::nullopt;  // a combination of plots
        plot = child;
    }
    if (!plot) return std::nullopt;
    const auto chartType = ChartTypeOf(plot);
    if (!chartType) return std::nullopt;
    Chart result;
    result.chartType = *chartType;
    pugi::xml_node title = Child(chart, "title");
    result.hasTitle = title && !Child(chart, "autoTitleDeleted").attribute("val").as_bool();
    const auto paragraphs = Children(Child(Child(title, "tx"), "rich"), "p");
    for (std::size_t at = 0; at < paragraphs.size(); ++at) {
        if (at > 0) result.title += '\n';
        result.title += JoinedText(paragraphs[at]);
    }
    if (pugi::xml_node category = Child(plotArea, "dateAx")) {
        result.categoryAxis.hasAxis = !Child(category, "delete").attribute("val").as_bool();
        result.categoryAxis.categoryType = kTimeScale;
    } else if (pugi::xml_node category = Child(plotArea, "catAx")) {
        result.categoryAxis.hasAxis = !Child(category, "delete").attribute("val").as_bool();
        if (!Child(category, "auto").attribute("val").as_bool(true)) {
            result.categoryAxis.categoryType = kCategoryScale;
        }
    }
    if (pugi::xml_node value = Child(plotArea, "valAx")) {
        result.valueAxis.hasAxis = !Child(value, "delete").attribute("val").as_bool();
    }
    for (pugi::xml_node series : Children(plot, "ser")) result.series.push_back(ReadSeries(series));
    return result;
}

std::string WriteChartPart(const Chart& chart, const ThemeColors& theme) {
    pugi::xml_document document;
    pugi::xml_node space = document.append_child("c:chartSpace");
    SetAttribute(space, "xmlns:c", kChartNamespace);
    SetAttribute(space, "xmlns:a", kDrawingMainNamespace);
    SetAttribute(space, "xmlns:r", kRelationshipsNamespace);
    AddValue(space, "roundedCorners", "0");
    pugi::xml_node body = Add(space, "chart");
    if (chart.hasTitle) {
        pugi::xml_node title = Add(body, "title");
        AddRichText(title, chart.title);
        AddValue(title, "overlay", "0");
    }
    AddValue(body, "autoTitleDeleted", chart.hasTitle ? "0" : "1");
    pugi::xml_node plotArea = Add(body, "plotArea");
    Add(plotArea, "layout");
    const ChartKind& kind = KindOf(chart.chartType);
    pugi::xml_node plot = Add(plotArea, kind.plot);
    if (!kind.barDirection.empty()) AddValue(plot, "barDir", kind.barDirection);
    if (!kind.grouping.empty()) AddValue(plot, "grouping", kind.grouping);
    AddValue(plot, "varyColors", kind.plot == "pieChart" ? "1" : "0");
    for (std::size_t at = 0; at < chart.series.size(); ++at) {
        const ChartSeries& series = chart.series[at];
        pugi::xml_node node = Add(plot, "ser");
        AddValue(node, "idx", std::to_string(at));
        AddValue(node, "order", std::to_string(at));
        if (!series.nameReference.empty()) {
            AddReference(node, "tx", "strRef", series.nameReference);
        } else if (!series.name.empty()) {
            Add(Add(node, "tx"), "v").text().set(series.name.c_str());
        }
        if (kind.plot == "lineChart") {
            // Without an outline of their own, some programs draw only the markers.
            pugi::xml_node line = AddElement(Add(node, "spPr"), "a", "ln");
            SetAttribute(line, "w", std::string_view("28575"));
            // The theme's accents in turn, as the spreadsheet colours series.
            const std::string colour = ArgbText(theme.rgb[ThemeColors::kFirstAccent + at % 6]);
            SetAttribute(AddElement(AddElement(line, "a", "solidFill"), "a", "srgbClr"), "val",
                         std::string_view(colour).substr(2));
        }
        if (kind.plot == "lineChart" && !kind.markers) {
            AddValue(Add(node, "marker"), "symbol", "none");
        }
        AddReference(node, "cat", "strRef", series.xValues);
        AddReference(node, "val", "numRef", series.values);
        if (kind.plot == "lineChart") AddValue(node, "smooth", "0");
    }
    if (kind.plot == "barChart") {
        AddValue(plot, "gapWidth", "150");
        if (kind.grouping == "stacked") AddValue(plot, "overlap", "100");
    }
    if (kind.plot == "lineChart") AddValue(plot, "marker", "1");
    if (kind.plot != "pieChart") {
        AddValue(plot, "axId", "1001");
        AddValue(plot, "axId", "1002");
        const bool bars = kind.barDirection == "bar";
        AddAxis(plotArea, "catAx", 1001, 1002, chart.categoryAxis, bars ? "l" : "b");
        AddAxis(plotArea, "valAx", 1002, 1001, chart.valueAxis, bars ? "b" : "l");
    }
    pugi::xml_node legend = Add(body, "legend");
    AddValue(legend, "legendPos", "r");
    AddValue(legend, "overlay", "0");
    AddValue(body, "plotVisOnly", "1");
    return SerializeXml(document);
}

bool SameChartInFile(const Chart& a, const Chart& b) {
    auto inFile = [](const Chart& chart) {
        Chart copy = chart;
        copy.shapeId = 0;
        copy.sourceData.clear();
        copy.plotBy = sheethost::mso::kPlotByColumns;
        if (!copy.hasTitle) copy.title.clear();
        for (ChartSeries& series : copy.series) {
            if (!series.nameReference.empty()) series.name.clear();
        }
        return copy;
    };
    return inFile(a) == inFile(b);
}

}  // namespace xlsx
