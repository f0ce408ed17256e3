// The day's progress line on the sample project.
#include <gtest/gtest.h>

#include <string>

#include "core/clock.h"
#include "engine/exports.h"
#include "support/project_json.h"
#include "support/sample_json.h"
#include "values/values.h"

namespace {

using testsupport::ProjectJson;

// Move day (6 April) at 12:00, and the day after.
const double kMoveDayNoon = values::DateSerial(2024, 4, 6) + 0.5;

class ProgressLines : public ::testing::Test {
  protected:
    explicit ProgressLines(nlohmann::json sample = testsupport::SampleJson())
        : project(std::move(sample)) {
        PinNow(kMoveDayNoon);
        project.Bind();
        kpUpdateWBS();
    }
    ~ProgressLines() override { PinNow(0); }

    const sheethost::Shape* Line(const char* day) const {
        return project.ShapeNamed(std::string("ProgressLines") + day);
    }
    // The nodes that swing out on the task row `row` (its middle point).
    int PointsOnRow(const sheethost::Shape& line, int row) const {
        const auto box = project.CellBox("A" + std::to_string(row));
        int points = 0;
        for (const sheethost::FreeformNode& node : line.nodes) {
            if (node.y > box.top && node.y < box.top + box.height) ++points;
        }
        return points;
    }

    ProjectJson project;
};

TEST_F(ProgressLines, WithoutBarsTheLineRunsStraightDownTodaysColumn) {
    kpDrawProgressLines();
    const sheethost::Shape* line = Line("20240406");
    ASSERT_NE(line, nullptr);
    ASSERT_EQ(line->nodes.size(), 2u);
    EXPECT_EQ(line->nodes[0].x, line->nodes[1].x);
    // From the top of the first task row to the bottom of the last bordered row (44).
    EXPECT_DOUBLE_EQ(line->nodes[0].y, project.CellBox("W5").top);
    const auto last = project.CellBox("W44");
    EXPECT_FLOAT_EQ(static_cast<float>(line->nodes[1].y),
                    static_cast<float>(last.top + last.height));
    // Today's column: the first calendar day starts 5 April 08:00, one hour a column, so
    // 6 April 12:00 is 28 columns on.
    const auto column = project.CellBox("W5");
    EXPECT_GE(line->nodes[0].x, project.CellBox("AY5").left);
    EXPECT_LT(line->nodes[0].x, project.CellBox("AY5").left + column.width);
}

TEST_F(ProgressLines, OneLineADayAndEarlierDaysKept) {
    kpDrawGanntChart(0);
    kpDrawProgressLines();
    kpDrawProgressLines();
    EXPECT_EQ(project.ShapesNamed("ProgressLines").size(), 1u);
    PinNow(kMoveDayNoon + 1);
    kpDrawProgressLines();
    EXPECT_NE(Line("20240406"), nullptr);
    EXPECT_NE(Line("20240407"), nullptr);
    EXPECT_EQ(project.ShapesNamed("ProgressLines").size(), 2u);
    // The template's look: its red line, and no fill over the bars.
    const sheethost::Shape* line = Line("20240407");
    EXPECT_EQ(line->line.foreColor, 255);
    EXPECT_FALSE(line->fill.visible);
}

TEST_F(ProgressLines, LateTasksPullTheLineLeftAndTasksNotDueAddNoPoint) {
    kpDrawGanntChart(0);
    kpDrawProgressLines();
    const sheethost::Shape* line = Line("20240406");
    ASSERT_NE(line, nullptr);
    const double today = line->nodes[0].x;
    // D3 (row 22) should have started at 11:00 and has not: the line goes back to its start.
    ASSERT_EQ(PointsOnRow(*line, 22), 1);
    // Tasks of the next group (row 33 on, 8 April) are not due yet; finished work left of today
    // (row 7) adds nothing either.
    EXPECT_EQ(PointsOnRow(*line, 33), 0);
    EXPECT_EQ(PointsOnRow(*line, 7), 0);
    for (const sheethost::FreeformNode& node : line->nodes) {
        if (node.y > project.CellBox("A22").top &&
            node.y < project.CellBox("A22").top + project.CellBox("A22").height) {
            EXPECT_LT(node.x, today);
            EXPECT_DOUBLE_EQ(node.x, project.ShapeNamed("GanntBar22A")->left);
        }
    }
}

nlohmann::json SampleWithLastTaskOf(const char* resource) {
    nlohmann::json sample = testsupport::SampleJson();
    sample["sheets"][0]["cells"]["N40"] = resource;
    return sample;
}

class ProgressLinesOfCycleTasks : public ProgressLines {
  protected:
    ProgressLinesOfCycleTasks() : ProgressLines(SampleWithLastTaskOf("M2")) {}
};

class ProgressLinesOfOrdinaryTasks : public ProgressLines {
  protected:
    ProgressLinesOfOrdinaryTasks() : ProgressLines(SampleWithLastTaskOf("OFFICE")) {}
};

// The last task (row 40, 8 April 16:00, not started) is due two days later.
TEST_F(ProgressLinesOfCycleTasks, AddNoPoint) {
    kpDrawGanntChart(0);
    PinNow(values::DateSerial(2024, 4, 8) + 0.75);
    kpDrawProgressLines();
    EXPECT_EQ(PointsOnRow(*Line("20240408"), 40), 0);
}

TEST_F(ProgressLinesOfOrdinaryTasks, AddTheirPoint) {
    kpDrawGanntChart(0);
    PinNow(values::DateSerial(2024, 4, 8) + 0.75);
    kpDrawProgressLines();
    EXPECT_EQ(PointsOnRow(*Line("20240408"), 40), 1);
}

}  // namespace
