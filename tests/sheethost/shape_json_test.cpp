// Shapes and charts as JSON: every property survives a round trip, dumps are canonical, and a
// description of the wrong type is refused rather than half read.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "sheethost/shape_model.h"

namespace {

using nlohmann::json;
using sheethost::Chart;
using sheethost::Shape;

Shape EveryPropertySet() {
    Shape shape;
    shape.id = 7;
    shape.name = "GanntBar12A";
    shape.type = sheethost::mso::kTextBox;
    shape.autoShapeType = 5;
    shape.left = 1.5;
    shape.top = 2.5;
    shape.width = 30.25;
    shape.height = 4;
    shape.horizontalFlip = true;
    shape.verticalFlip = true;
    shape.visible = false;
    shape.placement = 2;
    shape.line = {false, 2.25, 4, 3, 0x0000FF, 0x00FF00, 2, 3, 0.5};
    shape.fill = {false, 0.25, 0x123456, 0x654321, sheethost::mso::kFillPatterned, 5};
    sheethost::TextFrame frame;
    frame.runs = {{"1.2 ", {"Meiryo UI", 9, true, false, 0xFF}},
                  {"\xE8\xA8\xAD\xE8\xA8\x88", {"Calibri", 12, false, true, 0}}};
    frame.defaultFont.size = 10;
    frame.autoSize = true;
    frame.autoMargins = false;
    frame.horizontalAlignment = -4108;
    frame.verticalAlignment = -4107;
    frame.orientation = 5;
    frame.marginLeft = 1;
    frame.marginRight = 2;
    frame.marginTop = 3;
    frame.marginBottom = 4;
    shape.textFrame = frame;
    shape.adjustments = {-0.3, 0.5, 1.3};
    shape.connectorType = sheethost::mso::kConnectorElbow;
    shape.beginConnection = sheethost::ConnectorEnd{3, 4};
    shape.endConnection = sheethost::ConnectorEnd{5, 2};
    shape.nodes = {{0, 0, 1, 2}, {1, 1, 3, 4}};
    return shape;
}

TEST(ShapeJsonTest, EveryPropertySurvivesARoundTrip) {
    const Shape shape = EveryPropertySet();
    const std::optional<Shape> read = sheethost::ShapeFromJson(sheethost::ShapeToJson(shape));
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(*read, shape);

    // Through text as well, since fixtures are files.
    const json text = json::parse(sheethost::ShapeToJson(shape).dump());
    EXPECT_EQ(sheethost::ShapeFromJson(text), shape);
}

TEST(ShapeJsonTest, ADumpNamesEveryPropertyInAStableOrder) {
    const json dumped = sheethost::ShapeToJson(Shape{});
    EXPECT_EQ(dumped.size(), 20u);
    EXPECT_TRUE(dumped.at("textFrame").is_null());
    EXPECT_TRUE(dumped.at("beginConnection").is_null());
    EXPECT_TRUE(dumped.at("connectorType").is_null());
    EXPECT_EQ(dumped.at("line").size(), 9u);
    EXPECT_EQ(dumped.dump().substr(0, 22), R"({"adjustments":[],"aut)");
}

TEST(ShapeJsonTest, MissingPropertiesTakeTheirDefaultsAndWrongTypesAreRefused) {
    const std::optional<Shape> sparse =
        sheethost::ShapeFromJson(json::parse(R"({"name": "Frame", "line": {"weight": 2}})"));
    ASSERT_TRUE(sparse.has_value());
    Shape expected;
    expected.name = "Frame";
    expected.line.weight = 2;
    EXPECT_EQ(*sparse, expected);

    for (const char* wrong :
         {R"([1, 2])", R"({"left": "12"})", R"({"visible": 1})", R"({"line": {"weight": "x"}})",
          R"({"textFrame": 5})", R"({"textFrame": {"runs": [{"text": 3}]}})",
          R"({"adjustments": [0.5, "a"]})", R"({"beginConnection": {"site": true}})",
          R"({"nodes": {"x": 1}})"}) {
        EXPECT_FALSE(sheethost::ShapeFromJson(json::parse(wrong)).has_value()) << wrong;
    }
}

TEST(ShapeJsonTest, AChartSurvivesARoundTrip) {
    Chart chart;
    chart.shapeId = 4;
    chart.chartType = 65;
    chart.hasTitle = true;
    chart.title = "EVM 20240315";
    chart.categoryAxis = {true, 2};
    chart.valueAxis = {false, -4105};
    chart.sourceData = "=Report!$B$5:$E$8";
    chart.plotBy = 1;
    chart.series = {{"PV", "=Report!$C$5", "=Report!$C$6:$C$8", "=Report!$B$6:$B$8"},
                    {"Series2", "", "=Report!$D$6:$D$8", ""}};

    EXPECT_EQ(sheethost::ChartFromJson(json::parse(sheethost::ChartToJson(chart).dump())), chart);
    EXPECT_FALSE(sheethost::ChartFromJson(json::parse(R"({"series": [{"values": 1}]})")));
    EXPECT_EQ(sheethost::ChartFromJson(json::object()), Chart{});
}

}  // namespace
