// The outlines of the six shaped bars, and redrawing: a second drawing, a partial redraw and a
// drawing under a filter all leave the chart a full drawing leaves.
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "chart_support.h"
#include "core/engine_state.h"
#include "engine/refresh.h"
#include "gantt/chart.h"
#include "gantt/drawing.h"
#include "settings/settings.h"

namespace {

using namespace charttest;
using Points = std::vector<std::pair<double, double>>;

class ShapedBars : public ChartTest {
  protected:
    ShapedBars() {
        project.Task(12, 1, "Build");
        project.Bind();
        EXPECT_TRUE(RefreshSettings());
    }

    Points Outline(std::int64_t style, double left, double top, double width, double height) {
        project.Host("WBS").shapes.clear();
        const XlObject shape = BuildShapedBar(style, left, top, width, height);
        Points points;
        if (shape.IsNothing()) return points;
        for (const sheethost::FreeformNode& node : project.Host("WBS").shapes.at(0)->nodes) {
            points.emplace_back(node.x, node.y);
        }
        return points;
    }
};

TEST_F(ShapedBars, EachStyleHasItsOutline) {
    // Left 100, top 50, width 60, height 12: the right end at 160, half the height 6.
    const std::vector<Points> expected = {
        {{94, 50},
         {94, 56},
         {100, 62},
         {106, 56},
         {154, 56},
         {160, 62},
         {166, 56},
         {166, 50},
         {94, 50}},
        {{100, 50}, {100, 62}, {106, 56}, {154, 56}, {160, 62}, {160, 50}, {100, 50}},
        {{100, 50},
         {94, 56},
         {100, 62},
         {106, 56},
         {154, 56},
         {160, 62},
         {166, 56},
         {160, 50},
         {100, 50}},
        {{98, 50},
         {98, 56},
         {94, 56},
         {100, 62},
         {106, 56},
         {154, 56},
         {160, 62},
         {166, 56},
         {162, 56},
         {162, 50},
         {98, 50}},
        {{94, 50}, {100, 62}, {106, 56}, {154, 56}, {160, 62}, {166, 50}, {94, 50}},
        {{100, 50},
         {88, 56},
         {100, 62},
         {100, 56},
         {160, 56},
         {160, 62},
         {172, 56},
         {160, 50},
         {100, 50}},
    };
    for (std::size_t style = 1; style <= expected.size(); ++style) {
        EXPECT_EQ(Outline(static_cast<std::int64_t>(style), 100, 50, 60, 12), expected[style - 1])
            << "style " << style;
    }
    EXPECT_TRUE(Outline(0, 100, 50, 60, 12).empty());
    EXPECT_TRUE(Outline(7, 100, 50, 60, 12).empty());
}

TEST_F(ShapedBars, StylesAfterTheFirstPlaceTheRightEndAtSinglePrecision) {
    const double right = 0.1 + 0.2;
    const double single = static_cast<float>(right);
    ASSERT_NE(right, single);
    EXPECT_EQ(Outline(1, 0.1, 0, 0.2, 12).at(4).first, right - 6);
    EXPECT_EQ(Outline(2, 0.1, 0, 0.2, 12).at(3).first, single - 6);
    EXPECT_EQ(Outline(6, 0.1, 0, 0.2, 12).at(4).first, single);
}

class Redraws : public ChartTest {
  protected:
    Redraws() {
        project.AddTemplate("GanntBar", 1, 40, 8, 0x808080);
        project.Task(12, 1, "Build", {{"P", At(9)}, {"D", At(16)}});
        project.Task(13, 2, "Design", {{"P", At(9)}, {"D", At(11)}, {"E", At(9)}, {"J", 40}});
        project.Task(14, 2, "Code", {{"P", At(11)}, {"D", At(16)}, {"H", "1.1"}});
        project.Task(15, 1, "Ship", {{"P", At(16)}, {"D", At(17)}, {"H", "1"}});
    }

    // The chart of the updated sheet, as a partial redraw (which updates its rows) leaves it.
    void DrawUpdated() {
        project.Bind();
        kpUpdateWBS();
        kpDrawGanntChart(0);
    }
};

TEST_F(Redraws, ASecondDrawingLeavesTheSameShapes) {
    Draw(2);
    const std::vector<ShapeBox> first = Boxes(project);
    ASSERT_EQ(first.size(), 13u);

    kpDrawGanntChart(2);
    EXPECT_EQ(Boxes(project), first);
}

TEST_F(Redraws, DeletingARowsShapesStopsAtTheFirstMissingLetter) {
    Draw();
    EngineWbsSheet().Call(".Shapes(%S).Delete", OLESTR("GanntBar13B"));

    EXPECT_TRUE(DeleteRowShapes(13));
    EXPECT_EQ(RowShapes(13), (std::vector<std::string>{"GanntBar13C", "GanntBar13D"}));
    EXPECT_FALSE(DeleteRowShapes(13));
    EXPECT_FALSE(DeleteRowShapes(40));
}

TEST_F(Redraws, PartialRedrawsRestoreTheFullDrawing) {
    DrawUpdated();
    // Bars and connectors only: the update also redraws the rows' status markers.
    const auto sorted = [](std::vector<ShapeBox> boxes) {
        std::erase_if(boxes, [](const ShapeBox& box) {
            return !std::get<0>(box).starts_with("GanntBar") &&
                   !std::get<0>(box).starts_with("TaskConnector");
        });
        std::sort(boxes.begin(), boxes.end());
        return boxes;
    };
    const std::vector<ShapeBox> full = Boxes(project);

    DeleteRowShapes(12);
    DeleteRowShapes(13);
    RedrawTaskBranch(*Tasks_ByRow(13), true);
    EXPECT_EQ(sorted(Boxes(project)), sorted(full));

    // A row past the last task that still had shapes is cleared as well.
    EngineWbsSheet()
        .GetObjectPath(".Shapes.AddShape(%e,%e,%e,%e,%e)", 1.0, 0.0, 0.0, 5.0, 5.0)
        .SetString("Name", "GanntBar16A");
    RedrawTasksFromRow(13);
    EXPECT_EQ(sorted(Boxes(project)), sorted(full));
}

TEST_F(Redraws, RowsHiddenByTheFilterAreDrawnInFullAndHiddenAgain) {
    Draw();
    const std::vector<ShapeBox> unfiltered = Boxes(project);

    EngineSettings().filterRows = ",12,,14,,15,";
    kpDrawGanntChart(0);

    EXPECT_EQ(Boxes(project), unfiltered);
    EXPECT_TRUE(project.RowHidden(13));
    EXPECT_FALSE(project.RowHidden(14));
}

}  // namespace
