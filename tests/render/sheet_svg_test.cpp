// The picture of a small task sheet: which cells and shapes it draws, where, and how.
#include <gtest/gtest.h>

#include <pugixml.hpp>
#include <string>
#include <vector>

#include "render/render.h"
#include "sheethost/sheethost.h"

namespace {

constexpr const char* kWorkbook = R"json({
  "activeSheet": "Notes",
  "sheets": [
    {"name": "Notes", "cells": {"A1": "not the task sheet"}},
    {"name": "WBS", "codeName": "wsWBS",
     "columns": {"A": {"width": 10}, "B": {"hidden": true}, "C": {"width": 20}},
     "rows": {"2": {"height": 30}, "3": {"hidden": true}},
     "cells": {
       "A1": {"value": "Plan", "font": {"bold": true, "colorIndex": 3},
              "interior": {"colorIndex": 6, "pattern": 1}},
       "B1": "in a hidden column",
       "A2": {"value": 90, "numberFormat": "0\" min\""},
       "C2": {"value": {"date": "2024-04-05 08:00"}, "numberFormat": "yyyy/mm/dd"},
       "A3": "in a hidden row",
       "A4": "A long title that spills to the right",
       "E4": "stop",
       "C5": {"value": -2, "conditions": [{"type": 1, "operator": 6, "formula1": "=0",
                                          "fontColorIndex": 3, "interiorColorIndex": 6}]},
       "C6": {"value": 2, "conditions": [{"type": 1, "operator": 6, "formula1": "=0",
                                         "fontColorIndex": 3}]},
       "A5": {"value": "x", "borders": {"bottom": {"lineStyle": 1, "weight": -4138,
                                                   "colorIndex": 3}}}
     },
     "shapes": [
       {"id": 1, "name": "Bar", "left": 10, "top": 20, "width": 50, "height": 9,
        "fill": {"foreColor": 255}, "line": {"visible": false}},
       {"id": 2, "name": "Marker", "autoShapeType": 9, "left": 100, "top": 20, "width": 10,
        "height": 10},
       {"id": 3, "name": "Label", "type": 17, "left": 70, "top": 15, "width": 80, "height": 14,
        "fill": {"visible": false}, "line": {"visible": false},
        "textFrame": {"runs": [{"text": "Kick-off & <go>", "font": {"bold": true,
                                                                     "color": 255}}]}},
       {"id": 4, "name": "Link", "type": 9, "connectorType": 2, "left": 60, "top": 24,
        "width": 40, "height": 20, "adjustments": [0.5],
        "line": {"endArrowheadStyle": 2, "foreColor": 0}},
       {"id": 5, "name": "Gone", "visible": false, "left": 0, "top": 0, "width": 5, "height": 5},
       {"id": 6, "name": "Summary", "type": 5, "left": 0, "top": 40, "width": 40, "height": 10,
        "nodes": [{"x": 0, "y": 40}, {"x": 30, "y": 40},
                  {"segmentType": 1, "editingType": 1, "x": 35, "y": 40},
                  {"segmentType": 1, "editingType": 1, "x": 40, "y": 45},
                  {"segmentType": 1, "editingType": 1, "x": 40, "y": 50}, {"x": 0, "y": 40}]},
       {"id": 7, "name": "Back", "type": 9, "left": 200, "top": 100, "width": 30, "height": 10,
        "horizontalFlip": true},
       {"id": 8, "name": "Far", "left": 800, "top": 600, "width": 10, "height": 10}
     ]}
  ]
})json";

class SheetSvgTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        book_ = sheethost::LoadWorkbookJson(kWorkbook, &error);
        ASSERT_NE(book_, nullptr) << error;
        sheet_ = render::SheetToRender(*book_);
        ASSERT_NE(sheet_, nullptr);
        svg_ = render::RenderSheetSvg(*book_, *sheet_);
        ASSERT_TRUE(document_.load_string(svg_.c_str())) << svg_;
    }

    pugi::xml_node Root() const { return document_.child("svg"); }
    pugi::xml_node Shape(const char* name) const {
        return Root()
            .find_child_by_attribute("g", "id", "shapes")
            .find_child_by_attribute("g", "data-name", name);
    }
    // The clip box of the cell text `text` and the text element inside it.
    pugi::xml_node TextBox(const std::string& text) const {
        for (pugi::xml_node box :
             Root().find_child_by_attribute("g", "id", "cells").children("svg")) {
            if (text == box.child("text").text().get()) return box;
        }
        return {};
    }
    static double Number(pugi::xml_node node, const char* attribute) {
        return node.attribute(attribute).as_double(-1);
    }

    sheethost::BookPtr book_;
    const sheethost::Sheet* sheet_ = nullptr;
    std::string svg_;
    pugi::xml_document document_;
};

// 10 and 20 characters of the default font, in points; 48 is the standard width.
const double kColumnA = 56.25;
const double kColumnC = 108.75;

TEST_F(SheetSvgTest, DrawsTheTaskSheetInPointsUpToItsFarthestShape) {
    EXPECT_EQ(sheet_->name, "WBS");
    EXPECT_EQ(std::string(Root().child("title").text().get()), "WBS");
    const std::string viewBox = Root().attribute("viewBox").value();
    EXPECT_TRUE(viewBox.starts_with("0 0 ")) << viewBox;
    EXPECT_GE(Number(Root(), "width"), 810);  // "810pt" reads as 810
    EXPECT_GE(Number(Root(), "height"), 610);
}

TEST_F(SheetSvgTest, HiddenRowsAndColumnsTakeNoRoomAndShowNothing) {
    EXPECT_EQ(svg_.find("in a hidden column"), std::string::npos);
    EXPECT_EQ(svg_.find("in a hidden row"), std::string::npos);
    // C stands right after A; row 4 right after row 2.
    const pugi::xml_node date = TextBox("2024/04/05");
    ASSERT_TRUE(date);
    EXPECT_DOUBLE_EQ(Number(date, "x"), kColumnA);
    EXPECT_DOUBLE_EQ(Number(date, "width"), kColumnC);
    EXPECT_DOUBLE_EQ(Number(TextBox("A long title that spills to the right"), "y"), 15 + 30);
}

TEST_F(SheetSvgTest, CellsShowTheirFormatsFillsAndBorders) {
    const pugi::xml_node plan = TextBox("Plan").child("text");
    EXPECT_STREQ(plan.attribute("font-weight").value(), "bold");
    EXPECT_STREQ(plan.attribute("fill").value(), "#ff0000");
    EXPECT_NE(svg_.find("<rect x=\"0\" y=\"0\" width=\"56.25\" height=\"15\" fill=\"#ffff00\"/>"),
              std::string::npos);
    // A number stands at the right of its cell, through its format.
    const pugi::xml_node minutes = TextBox("90 min");
    ASSERT_TRUE(minutes);
    EXPECT_STREQ(minutes.child("text").attribute("text-anchor").value(), "end");
    EXPECT_DOUBLE_EQ(Number(minutes, "width"), kColumnA);
    // A text spills over the empty (and hidden) neighbours up to the next cell that holds one.
    const pugi::xml_node title = TextBox("A long title that spills to the right");
    EXPECT_DOUBLE_EQ(Number(title, "width"), kColumnA + kColumnC + 48);
    // The medium red bottom border of A5 (rows 1, 2, 4 and 5 shown: 15 + 30 + 15 + 15).
    bool found = false;
    for (pugi::xml_node path :
         Root().find_child_by_attribute("g", "id", "cells").children("path")) {
        if (std::string(path.attribute("stroke").value()) == "#ff0000") {
            EXPECT_STREQ(path.attribute("stroke-width").value(), "1.5");
            EXPECT_STREQ(path.attribute("d").value(), "M0 75H56.25");
            found = true;
        }
    }
    EXPECT_TRUE(found);
}

TEST_F(SheetSvgTest, ConditionalFormatsColourTheFiguresThatMeetThem) {
    EXPECT_STREQ(TextBox("-2").child("text").attribute("fill").value(), "#ff0000");
    EXPECT_STREQ(TextBox("2").child("text").attribute("fill").value(), "#000000");
    // C5 (row 5 starts at 15 + 30 + 15 points) filled yellow.
    EXPECT_NE(svg_.find("<rect x=\"56.25\" y=\"60\" width=\"108.75\" height=\"15\" "
                        "fill=\"#ffff00\"/>"),
              std::string::npos);
}

TEST_F(SheetSvgTest, ShapesKeepTheirOrderGeometryAndLook) {
    std::vector<std::string> names;
    for (pugi::xml_node group : Root().find_child_by_attribute("g", "id", "shapes").children("g")) {
        names.push_back(group.attribute("data-name").value());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Bar", "Marker", "Label", "Link", "Summary", "Back",
                                               "Far"}));
    const pugi::xml_node bar = Shape("Bar").child("rect");
    EXPECT_STREQ(bar.attribute("fill").value(), "#ff0000");
    EXPECT_STREQ(bar.attribute("stroke").value(), "none");
    EXPECT_DOUBLE_EQ(Number(bar, "width"), 50);
    EXPECT_DOUBLE_EQ(Number(Shape("Marker").child("ellipse"), "rx"), 5);

    const pugi::xml_node label = Shape("Label").child("text");
    EXPECT_STREQ(label.child("tspan").text().get(), "Kick-off & <go>");
    EXPECT_STREQ(label.child("tspan").attribute("font-weight").value(), "bold");
    EXPECT_STREQ(label.child("tspan").attribute("fill").value(), "#ff0000");
    EXPECT_DOUBLE_EQ(Number(label, "x"), 70 + 7.2);  // inside the left margin

    EXPECT_STREQ(Shape("Summary").child("path").attribute("d").value(),
                 "M0 40L30 40C35 40 40 45 40 50L0 40Z");
}

TEST_F(SheetSvgTest, ConnectorsFollowTheirElbowAndFlipsAndCarryArrowheads) {
    const pugi::xml_node link = Shape("Link");
    EXPECT_STREQ(link.child("polyline").attribute("points").value(), "60,24 80,24 80,44 100,44");
    // The triangle's tip is the end point; its base lies back along the last segment.
    EXPECT_STREQ(link.child("polygon").attribute("points").value(), "100,44 95,46.5 95,41.5");
    // A flipped line runs from the top-right corner to the bottom-left one, without arrowheads.
    const pugi::xml_node back = Shape("Back");
    EXPECT_STREQ(back.child("polyline").attribute("points").value(), "230,100 200,110");
    EXPECT_FALSE(back.child("polygon"));
}

}  // namespace
