// Bar geometry: the one-minute slot of a time in its chart cell, spans between slots, and a task's
// planned and actual bars.
#include <gtest/gtest.h>

#include <tuple>

#include "engine/refresh.h"
#include "gantt/gantt.h"
#include "support/project_json.h"
#include "wbs/task_table.h"

namespace {

using testsupport::ProjectJson;

constexpr double kStart = ProjectJson::kDay1 + 8.0 / 24;  // the project starts at 08:00
constexpr double kMinute = 1.0 / 1440;

// Chart columns AI and AJ are 30 points wide; one column covers 60 minutes.
class BarGeometry : public ::testing::Test {
  protected:
    BarGeometry() {
        project.Sheet("WBS")["columns"]["AI:AJ"] = {{"width", 5}};
        project.Task(12, 1, "Build");
        project.Bind();
        EXPECT_TRUE(RefreshSettings());
        TaskTable_Load();
        ai = project.CellBox("AI12");
        aj = project.CellBox("AJ12");
    }

    ProjectJson project;
    ProjectJson::Box ai{}, aj{};
};

TEST_F(BarGeometry, ASlotIsOneMinuteOfItsCellShortenedByOneAndAHalfPoints) {
    ASSERT_DOUBLE_EQ(ai.width, 30);

    const BarRect slot = TimeToCellRect(12, kStart + 15 * kMinute);
    EXPECT_DOUBLE_EQ(slot.left, ai.left + 7.5);
    EXPECT_DOUBLE_EQ(slot.top, ai.top);
    EXPECT_DOUBLE_EQ(slot.width, -1.0);  // passed on as it is
    EXPECT_DOUBLE_EQ(slot.height, ai.height);

    const BarRect next = TimeToCellRect(12, kStart + 75 * kMinute);
    EXPECT_DOUBLE_EQ(next.left, aj.left + 7.5);
}

TEST_F(BarGeometry, ATimeBeforeTheProjectKeepsItsOffsetInTheFirstColumn) {
    const BarRect slot = TimeToCellRect(12, kStart - 15 * kMinute);
    EXPECT_DOUBLE_EQ(slot.left, ai.left - 7.5);
}

TEST_F(BarGeometry, CellsMeasuredOnceKeepTheirOwnRowsAndColumns) {
    // Rows and columns of different sizes, read in an order that mixes what is known already
    // with what is not: each cell must come out as it is on the sheet.
    project.Sheet("WBS")["rows"]["13"] = {{"height", 30}};
    project.Sheet("WBS")["columns"]["AK"] = {{"width", 12}};
    project.Bind();
    ChartGeometry geometry;
    for (const auto& [row, column, address] : {std::tuple{12, 35, "AI12"},
                                               {13, 35, "AI13"},
                                               {12, 36, "AJ12"},
                                               {13, 37, "AK13"},
                                               {12, 37, "AK12"},
                                               {13, 36, "AJ13"}}) {
        const BarRect cell = geometry.CellRect(row, column);
        const ProjectJson::Box box = project.CellBox(address);
        EXPECT_DOUBLE_EQ(cell.left, box.left) << address;
        EXPECT_DOUBLE_EQ(cell.top, box.top) << address;
        EXPECT_DOUBLE_EQ(cell.width, box.width) << address;
        EXPECT_DOUBLE_EQ(cell.height, box.height) << address;
    }
}

TEST(SpanRect, RunsFromTheFirstLeftEdgeToTheSecondRightEdge) {
    const BarRect a{10, 5, 2, 10};
    const BarRect b{40, 3, 4, 12};
    EXPECT_EQ(SpanRect(a, b).left, 10);
    EXPECT_EQ(SpanRect(a, b).top, 3);
    EXPECT_EQ(SpanRect(a, b).width, 34);
    EXPECT_EQ(SpanRect(a, b).height, 12);
    // Reversed: the left is the finish slot's, the width the absolute distance.
    const BarRect reversed = SpanRect(b, a);
    EXPECT_EQ(reversed.left, 10);
    EXPECT_EQ(reversed.width, 28);
    // The same slot twice spans the slot.
    EXPECT_EQ(SpanRect(a, a).width, 2);
}

TEST_F(BarGeometry, PlannedAndActualBarsFollowTheDatesThatAreSet) {
    TaskRecord task;
    task.row = 12;
    task.plannedStart = kStart + 30 * kMinute;
    task.plannedEnd = kStart + 90 * kMinute;
    task.actualStart = kStart + 60 * kMinute;

    ChartGeometry geometry;
    ComputeTaskBarRects(task, geometry);

    EXPECT_DOUBLE_EQ(task.plannedBar.left, ai.left + 15);
    EXPECT_DOUBLE_EQ(task.plannedBar.width, aj.left + 15 + 0.5 - 1.5 - (ai.left + 15));
    // An actual start without a finish: the actual bar is its slot.
    EXPECT_DOUBLE_EQ(task.actualBar.left, aj.left);
    EXPECT_DOUBLE_EQ(task.actualBar.width, 0.5 - 1.5);

    task.actualStart = 0;
    ComputeTaskBarRects(task, geometry);
    EXPECT_DOUBLE_EQ(task.actualBar.left, task.plannedBar.left);
    EXPECT_DOUBLE_EQ(task.actualBar.width, task.plannedBar.width);

    // Without a planned start the planned geometry stays as it was.
    const BarRect before = task.plannedBar;
    task.plannedStart = 0;
    task.plannedEnd = kStart;
    ComputeTaskBarRects(task, geometry);
    EXPECT_DOUBLE_EQ(task.plannedBar.left, before.left);
    EXPECT_DOUBLE_EQ(task.plannedBar.width, before.width);
}

}  // namespace
