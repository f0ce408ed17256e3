// Connectors of predecessor links: one per item, glued at the sites of the link type, straight
// when the bars nearly meet, elbows re-shaped, coloured from the template or the predecessor.
#include <gtest/gtest.h>

#include <utility>

#include "chart_support.h"
#include "core/engine_state.h"
#include "engine/refresh.h"
#include "gantt/drawing.h"

namespace {

using namespace charttest;

class Connectors : public ChartTest {
  protected:
    Connectors() {
        project.AddTemplate("GanntBar", 1, 40, 10, 0x808080);
        project.AddTemplate("TaskConnector", 1, 40, 10, 0xFFFFFF, 0x00AA00);
    }

    // The name of the shape a connector end is glued to, and the site.
    std::pair<std::string, int> Glue(const std::optional<sheethost::ConnectorEnd>& end) const {
        if (!end) return {"<none>", 0};
        for (const auto& shape : project.Host("WBS").shapes) {
            if (shape->id == end->shapeId) return {shape->name, end->site};
        }
        return {"<missing>", end->site};
    }
};

using Glued = std::pair<std::string, int>;

TEST_F(Connectors, EachLinkTypeGluesItsOwnSites) {
    project.AddTemplate("GanntBar1", 1, 40, 10, 0x0000FF);
    for (int row = 12; row <= 16; ++row) {
        project.Task(row, 1, "Step" + std::to_string(row), {{"P", At(9)}, {"D", At(10)}});
    }
    project.Task(17, 1, "Last",
                 {{"P", At(12)}, {"D", At(13)}, {"H", "1,2FF,3ss,4SF,5XY,99,Step12"}});
    Draw();

    const auto connectors = project.ShapesNamed("TaskConnector");
    ASSERT_EQ(connectors.size(), 6u);  // 99 names no task and is skipped
    const std::vector<std::pair<Glued, Glued>> expected = {
        {{"GanntBar12A", 4}, {"GanntBar17A", 2}}, {{"GanntBar13A", 4}, {"GanntBar17A", 4}},
        {{"GanntBar14A", 2}, {"GanntBar17A", 2}}, {{"GanntBar15A", 2}, {"GanntBar17A", 4}},
        {{"GanntBar16A", 4}, {"GanntBar17A", 2}}, {{"GanntBar12A", 4}, {"GanntBar17A", 2}}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const sheethost::Shape& connector = *connectors[i];
        EXPECT_EQ(connector.name, "TaskConnector17" + std::string(1, static_cast<char>('A' + i)));
        EXPECT_EQ(Glue(connector.beginConnection), expected[i].first) << connector.name;
        EXPECT_EQ(Glue(connector.endConnection), expected[i].second) << connector.name;
        EXPECT_EQ(connector.line.endArrowheadStyle, 2);
        EXPECT_EQ(connector.line.foreColor, 0x00AA00);
        EXPECT_DOUBLE_EQ(connector.line.weight, 1.5);
        EXPECT_EQ(connector.placement, 1);
    }
    EXPECT_TRUE(project.Messages().empty());
}

TEST_F(Connectors, WithTheLinkerColourFlagConnectorsTakeThePredecessorsFill) {
    project.AddTemplate("GanntBarByResAlice", 1, 40, 10, 0x123456, 0, "Resources");
    project.Setting("WSTaskLinkerColorFlg", 1);
    project.Task(12, 1, "First", {{"P", At(9)}, {"D", At(10)}, {"C", "AL"}});
    project.Task(13, 1, "Second", {{"P", At(12)}, {"D", At(13)}, {"H", "1"}});
    Draw();

    EXPECT_EQ(Shape("TaskConnector13A").line.foreColor, 0x123456);
}

TEST_F(Connectors, LinksToTasksWithoutALineAreLeftOut) {
    project.Task(12, 1, "Undated");
    project.Task(13, 1, "Dated", {{"P", At(12)}, {"D", At(13)}, {"H", "1"}});
    Draw();

    EXPECT_TRUE(project.ShapesNamed("TaskConnector").empty());
}

// Two bars 40 points wide and 10 high drawn straight onto the sheet, the second one `gap` points
// after the first in the direction the sites link them.
class ConnectorGap : public Connectors {
  protected:
    ConnectorGap() {
        project.Task(12, 1, "Build");
        project.Bind();
        EXPECT_TRUE(RefreshSettings());
    }

    int KindFor(double gap, int begin, int end) {
        project.Host("WBS").shapes.clear();
        ConnectorLink link;
        link.fromShape = Rectangle(100, 40);
        link.toShape = Rectangle(begin == 2 ? 100 - gap - 40 : 140 + gap, 60);
        AddConnector(link, begin, end);
        return project.ShapesNamed("").at(2)->connectorType.value_or(0);
    }

    XlObject Rectangle(double left, double top) const {
        return EngineWbsSheet().GetObjectPath(".Shapes.AddShape(%e,%e,%e,%e,%e)", 1.0, left, top,
                                              40.0, 10.0);
    }
};

TEST_F(ConnectorGap, BarsThatNearlyMeetAreJoinedStraight) {
    // Up to half the successor's height apart, and never overlapping.
    for (const auto& [gap, kind] : std::vector<std::pair<double, int>>{
             {-1, 2}, {-0.25, 2}, {0, 1}, {4, 1}, {5, 1}, {5.25, 2}, {6, 2}}) {
        EXPECT_EQ(KindFor(gap, 4, 2), kind) << "finish to start, gap " << gap;
        EXPECT_EQ(KindFor(gap, 2, 4), kind) << "start to finish, gap " << gap;
    }
}

TEST_F(ConnectorGap, OtherSitesAlwaysTakeAnElbow) {
    EXPECT_EQ(KindFor(2, 4, 4), 2);
}

TEST_F(Connectors, ElbowAdjustmentsKeepTheElbowCloseToItsStart) {
    project.Task(12, 1, "Build");
    project.Bind();
    ASSERT_TRUE(RefreshSettings());
    ConnectorLink link;
    link.connector = EngineWbsSheet().GetObjectPath(".Shapes.AddConnector(%d,%e,%e,%e,%e)", 2, 0.0,
                                                    0.0, 40.0, 30.0);
    const XlObject adjustments = link.connector.GetAdjustments();
    // Height of the bar template 10: the least elbow is 10 / 1.5 points, over a width of 40.
    const float least = (10.0f / 1.5f) / 40.0f;
    const float offset = (10.0f / 2.0f + 2.0f) / 30.0f;

    adjustments.SetItemNum(1, 0.5);
    EXPECT_EQ(ComputeElbowAdjustments(link), std::pair(least, offset));
    adjustments.SetItemNum(1, 0.1f);
    EXPECT_EQ(ComputeElbowAdjustments(link).first, 0.1f);
    adjustments.SetItemNum(1, -0.1f);
    EXPECT_EQ(ComputeElbowAdjustments(link).first, 0.1f);
    adjustments.SetItemNum(1, 2.25f);
    EXPECT_EQ(ComputeElbowAdjustments(link).first, 2.25f - least);
    adjustments.SetItemNum(1, 0);
    EXPECT_EQ(ComputeElbowAdjustments(link).first, 0.0f);

    // A connector no higher than a bar keeps its second adjustment (none here: 0).
    link.connector.SetHeight(10);
    EXPECT_EQ(ComputeElbowAdjustments(link).second, 0.0f);
}

}  // namespace
