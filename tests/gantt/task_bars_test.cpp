// Each task's line of the chart: where its bars stand, which template they copy, its progress,
// its labels and the symbols of typed tasks.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "chart_support.h"

namespace {

using namespace charttest;

using Names = std::vector<std::string>;

constexpr double Rgb(int red, int green, int blue) {
    return red + green * 256.0 + blue * 65536.0;
}

class TaskBars : public ChartTest {
  protected:
    TaskBars() {
        project.AddTemplate("GanntBar", 1, 40, 8, 0x808080);
        project.AddTemplate("GanntBar1", 1, 40, 8, 0x0000FF);
        project.AddTemplate("GanntBar100%", 1, 40, 4, 0x00FF00);
        project.AddTemplate("GanntBar%", 1, 40, 6, 0xFF0000);
    }

    // A planned bar's box as the host shows it: from the start slot to the end of the finish
    // slot, at the bar template's height in the middle of the row.
    ProjectJson::Box PlannedBar(int row, int startHours, int startMinutes, int finishHours,
                                int finishMinutes, double height) const {
        const std::string r = std::to_string(row);
        const ProjectJson::Box start = project.CellBox(ChartColumn(startHours) + r);
        const ProjectJson::Box finish = project.CellBox(ChartColumn(finishHours) + r);
        const double left = start.left + startMinutes * start.width / 60;
        const double right =
            finish.left + finishMinutes * finish.width / 60 + finish.width / 60 - 1.5;
        return {left, start.top + (start.height - height) / 2, right - left, height};
    }

    void ExpectBox(const sheethost::Shape& shape, const ProjectJson::Box& box) const {
        EXPECT_NEAR(shape.left, box.left, 1e-9) << shape.name;
        EXPECT_NEAR(shape.top, box.top, 1e-9) << shape.name;
        EXPECT_NEAR(shape.width, box.width, 1e-9) << shape.name;
        EXPECT_NEAR(shape.height, box.height, 1e-9) << shape.name;
    }
};

TEST_F(TaskBars, BarsFollowTimeAcrossTheNightAndSitInTheMiddleOfTheirRow) {
    project.Task(12, 1, "Build");
    project.Task(13, 2, "Design", {{"P", At(9, 15)}, {"D", At(16, 45)}});
    // Row 14 is 24 points high; the task ends on the second day.
    project.Task(14, 2, "Code", {{"P", At(10)}, {"D", 1 + At(9, 30)}});
    Draw();

    EXPECT_TRUE(RowShapes(12).empty());  // no planned start, no line at all
    ExpectBox(Shape("GanntBar13A"), PlannedBar(13, 1, 15, 8, 45, 8));
    // The night between the days keeps its columns: 09:30 next day is 25.5 hours in.
    ExpectBox(Shape("GanntBar14A"), PlannedBar(14, 2, 0, 25, 30, 8));
    EXPECT_EQ(Shape("GanntBar14A").placement, 1);

    const sheethost::Shape& label = Shape("GanntBar14B");
    EXPECT_EQ(TextOf(label), "1.2Code");
    EXPECT_NEAR(label.left, Shape("GanntBar14A").left + Shape("GanntBar14A").width + 5, 1e-9);
    const ProjectJson::Box row = project.CellBox("AI14");
    EXPECT_NEAR(label.top, row.top + (row.height - label.height) / 2 + 1, 1e-9);
    EXPECT_FALSE(label.fill.visible);
    EXPECT_FALSE(label.line.visible);
    ASSERT_TRUE(label.textFrame);
    EXPECT_TRUE(label.textFrame->autoSize);
    EXPECT_EQ(label.textFrame->marginLeft, 0);
}

TEST_F(TaskBars, TheTemplateFollowsCompletionResourceAndSummaryLevel) {
    project.AddTemplate("GanntBarByResAlice", 1, 40, 8, 0x123456, 0, "Resources");
    project.Task(12, 1, "Build", {{"P", At(9)}, {"D", At(16)}});
    project.Task(13, 2, "Alice's", {{"P", At(9)}, {"D", At(12)}, {"C", "AL"}});
    project.Task(14, 2, "Bob's", {{"P", At(9)}, {"D", At(12)}, {"C", "BO"}});
    project.Task(15, 2, "Nobody's", {{"P", At(9)}, {"D", At(12)}, {"C", "ZZ"}});
    project.Task(16, 2, "Done", {{"P", At(9)}, {"D", At(12)}, {"C", "AL"}, {"J", 100}});
    Draw();

    EXPECT_EQ(Shape("GanntBar12A").fill.foreColor, 0x0000FF);
    EXPECT_EQ(Shape("GanntBar13A").fill.foreColor, 0x123456);
    // Bob has no bar of his own on the resource sheet: the plain bar.
    EXPECT_EQ(Shape("GanntBar14A").fill.foreColor, 0x808080);
    EXPECT_EQ(Shape("GanntBar15A").fill.foreColor, 0x808080);
    EXPECT_EQ(Shape("GanntBar16A").fill.foreColor, 0x00FF00);
    EXPECT_DOUBLE_EQ(Shape("GanntBar16A").height, 4);
    EXPECT_EQ(TextOf(Shape("GanntBar13B")), "1.1Alice's (AL)");
}

TEST_F(TaskBars, ABareWorkbookGetsTheBuiltInLooks) {
    project.Shapes("Settings").clear();
    project.Task(12, 1, "Build", {{"P", At(9)}, {"D", At(16)}});
    project.Task(13, 2, "Work", {{"P", At(9)}, {"D", At(12)}, {"E", At(9)}, {"J", 50}});
    project.Task(14, 2, "Late", {{"P", At(9)}, {"D", At(10)}, {"E", At(11)}, {"X", At(12)}});
    Draw();

    const sheethost::Shape& summary = Shape("GanntBar12A");
    EXPECT_EQ(summary.fill.foreColor, Rgb(155, 194, 230));
    EXPECT_DOUBLE_EQ(summary.height, 10);
    EXPECT_EQ(Shape("GanntBar13A").fill.foreColor, Rgb(91, 155, 213));
    EXPECT_EQ(Shape("GanntBar13B").fill.foreColor, Rgb(47, 85, 151));
    EXPECT_DOUBLE_EQ(Shape("GanntBar13B").height, 6);
    EXPECT_EQ(Shape("GanntBar14B").fill.foreColor, Rgb(237, 125, 49));
    const ProjectJson::Box row = project.CellBox("AI13");
    EXPECT_NEAR(Shape("GanntBar13A").top, row.top + (row.height - 10) / 2, 1e-9);
}

TEST_F(TaskBars, LabelsAreCutAtAHundredCharactersAtEachStep) {
    const std::string longName(120, 'x');
    const std::string nearlyFull(95, 'y');
    project.Task(12, 1, longName, {{"P", At(9)}, {"D", At(10)}, {"C", "AL"}});
    project.Task(13, 1, nearlyFull, {{"P", At(9)}, {"D", At(10)}, {"C", "AL"}});
    Draw();

    EXPECT_EQ(TextOf(Shape("GanntBar12B")), "1" + std::string(99, 'x'));
    // "2" and 95 letters leave room for " (" and two letters of the resource only.
    EXPECT_EQ(TextOf(Shape("GanntBar13B")), "2" + nearlyFull + " (AL");
}

TEST_F(TaskBars, ProgressShowsOnThePlanOrWhereTheWorkBegan) {
    // One group, so that every task lies on the first calendar day.
    project.Task(12, 1, "Group");
    project.Task(13, 2, "Started", {{"P", At(9)}, {"D", At(13)}, {"E", At(9)}});
    project.Task(14, 2, "Late", {{"P", At(9)}, {"D", At(13)}, {"E", At(11)}, {"J", 50}});
    project.Task(15, 2, "On plan", {{"P", At(9)}, {"D", At(13)}, {"E", At(9)}, {"X", At(13)}});
    project.Task(16, 2, "Off plan", {{"P", At(9)}, {"D", At(13)}, {"E", At(10)}, {"X", At(14)}});
    project.Task(17, 2, "Not begun", {{"P", At(9)}, {"D", At(13)}});
    Draw();

    // Started without a percentage: shown a fifth done, with the overlay on the planned bar.
    EXPECT_EQ(RowShapes(13), (Names{"GanntBar13A", "GanntBar13B", "GanntBar13C", "GanntBar13D"}));
    const sheethost::Shape& planned = Shape("GanntBar13A");
    const sheethost::Shape& overlay = Shape("GanntBar13B");
    EXPECT_EQ(overlay.fill.foreColor, 0x00FF00);
    EXPECT_NEAR(overlay.left, planned.left, 1e-9);
    EXPECT_NEAR(overlay.width, planned.width * 0.2, 1e-9);
    EXPECT_EQ(TextOf(Shape("GanntBar13C")), "20%");
    EXPECT_NEAR(Shape("GanntBar13C").left, planned.left + planned.width * 0.2 + 2, 1e-9);
    EXPECT_EQ(TextOf(Shape("GanntBar13D")), "1.1Started");

    // Started two hours late: the progress also stands at the actual start.
    EXPECT_EQ(RowShapes(14).size(), 5u);
    const sheethost::Shape& progress = Shape("GanntBar14C");
    EXPECT_EQ(progress.fill.foreColor, 0xFF0000);
    EXPECT_NEAR(progress.left, project.CellBox(ChartColumn(3) + "14").left, 1e-9);
    EXPECT_NEAR(progress.width, Shape("GanntBar14A").width * 0.5, 1e-9);
    EXPECT_EQ(TextOf(Shape("GanntBar14D")), "50%");
    EXPECT_NEAR(Shape("GanntBar14D").left, progress.left + progress.width + 2, 1e-9);

    // Complete as planned: the complete bar and the label only.
    EXPECT_EQ(RowShapes(15), (Names{"GanntBar15A", "GanntBar15B"}));
    EXPECT_EQ(Shape("GanntBar15A").fill.foreColor, 0x00FF00);
    // Complete off plan: the actual bar follows, and the label goes past the later of the two.
    EXPECT_EQ(RowShapes(16), (Names{"GanntBar16A", "GanntBar16B", "GanntBar16C"}));
    const sheethost::Shape& actual = Shape("GanntBar16B");
    EXPECT_EQ(actual.fill.foreColor, 0xFF0000);
    EXPECT_NEAR(actual.left, project.CellBox(ChartColumn(2) + "16").left, 1e-9);
    EXPECT_NEAR(Shape("GanntBar16C").left, actual.left + actual.width + 5, 1e-9);

    EXPECT_EQ(RowShapes(17), (Names{"GanntBar17A", "GanntBar17B"}));
}

class TypedTasks : public TaskBars {
  protected:
    TypedTasks() {
        project.Name("TaskType", "=Settings!$E$2:$F$3");
        project.Cells("Settings")["E2"] = "MS";
        project.Cells("Settings")["F2"] = "Done";
        project.Cells("Settings")["E3"] = "RV";
        project.Cells("Settings")["F3"] = "Reviewed";
    }
};

TEST_F(TypedTasks, SymbolsStandAtThePlanAndOnceStartedWhereTheWorkBegan) {
    // One group, so that every task lies on the first calendar day.
    project.Task(12, 1, "Group");
    project.Task(13, 2, "Gate", {{"B", "MS"}, {"P", At(9)}, {"D", At(9)}});
    project.Task(14, 2, "Review", {{"B", "RV"}, {"P", At(9)}, {"D", At(10)}, {"E", At(11)}});
    project.Task(15, 2, "Odd", {{"B", "XX"}, {"P", At(9)}, {"D", At(10)}, {"J", 10}});
    project.Task(16, 2, "Far", {{"B", "MS"}, {"P", At(9)}, {"D", At(9)}, {"E", 61 + At(9)}});
    project.Task(17, 2, "Near", {{"B", "MS"}, {"P", At(9)}, {"D", At(9)}, {"E", 59 + At(9)}});
    Draw();

    const std::string planned = ChartColumn(1);
    // Not started: the type text at the planned start, then the label.
    EXPECT_EQ(RowShapes(13), (Names{"GanntBar13A", "GanntBar13B"}));
    EXPECT_EQ(TextOf(Shape("GanntBar13A")), "MS");
    EXPECT_NEAR(Shape("GanntBar13A").left, project.CellBox(planned + "13").left, 1e-9);
    EXPECT_EQ(TextOf(Shape("GanntBar13B")), "1.1Gate");

    // Started late: the type at the plan, the table's text at the actual start.
    EXPECT_EQ(RowShapes(14), (Names{"GanntBar14A", "GanntBar14B", "GanntBar14C"}));
    EXPECT_EQ(TextOf(Shape("GanntBar14A")), "RV");
    EXPECT_EQ(TextOf(Shape("GanntBar14B")), "Reviewed");
    EXPECT_NEAR(Shape("GanntBar14B").left, project.CellBox(ChartColumn(3) + "14").left, 1e-9);

    // Started on plan with a type the table lacks: one empty symbol.
    EXPECT_EQ(RowShapes(15), (Names{"GanntBar15A", "GanntBar15B"}));
    EXPECT_EQ(TextOf(Shape("GanntBar15A")), "");

    // More days away than the unit has minutes: a level slip line joins the two symbols.
    EXPECT_EQ(RowShapes(16).size(), 4u);
    const sheethost::Shape& slip = Shape("GanntBar16C");
    ASSERT_TRUE(slip.connectorType);
    EXPECT_DOUBLE_EQ(slip.height, 0);
    ASSERT_TRUE(slip.beginConnection && slip.endConnection);
    EXPECT_EQ(slip.beginConnection->site, 4);
    EXPECT_EQ(slip.endConnection->site, 2);
    EXPECT_EQ(slip.line.foreColor, 0);
    EXPECT_EQ(RowShapes(17).size(), 3u);
}

TEST_F(TaskBars, UnderABarStyleSummariesAreBracketsOverAnInvisibleBar) {
    project.Task(12, 1, "Build", {{"P", At(9)}, {"D", At(16)}, {"J", 50}});
    project.Task(13, 2, "Work", {{"P", At(9)}, {"D", At(16)}, {"J", 50}, {"E", At(9)}});
    Draw(3);

    EXPECT_EQ(RowShapes(12), (Names{"GanntBar12A", "GanntBar12B", "GanntBar12C"}));
    const sheethost::Shape& sites = Shape("GanntBar12A");
    EXPECT_FALSE(sites.fill.visible);
    EXPECT_FALSE(sites.line.visible);
    const sheethost::Shape& bracket = Shape("GanntBar12B");
    EXPECT_EQ(bracket.nodes.size(), 9u);
    EXPECT_EQ(bracket.fill.foreColor, 0x0000FF);
    EXPECT_EQ(bracket.placement, 1);
    EXPECT_EQ(TextOf(Shape("GanntBar12C")), "1Build");
    // An ordinary task keeps its plain bar and progress.
    EXPECT_EQ(RowShapes(13).size(), 4u);
    EXPECT_TRUE(Shape("GanntBar13A").nodes.empty());
}

TEST_F(TaskBars, AStyleBeyondSixLeavesSummariesTheirInvisibleBarOnly) {
    project.Task(12, 1, "Build", {{"P", At(9)}, {"D", At(16)}});
    project.Task(13, 2, "Work", {{"P", At(9)}, {"D", At(16)}});
    Draw(7);

    EXPECT_EQ(RowShapes(12), (Names{"GanntBar12A", "GanntBar12B"}));
    EXPECT_FALSE(Shape("GanntBar12A").fill.visible);
    EXPECT_EQ(TextOf(Shape("GanntBar12B")), "1Build");
}

}  // namespace
