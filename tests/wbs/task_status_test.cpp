// Status colouring of task rows: the reset, completed grey, the dependency frame, summary level
// colours, the three status markers centred in the name cell, and the built-in looks a workbook
// without templates gets.
#include "wbs/task_status.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/clock.h"
#include "engine/exports.h"
#include "support/project_json.h"
#include "support/times_of_day.h"

namespace {

using testsupport::k0800;
using testsupport::k0900;
using testsupport::k1100;
using testsupport::k1300;
using testsupport::k1400;
using testsupport::k1600;
using testsupport::k1700;

using testsupport::ProjectJson;

constexpr int kNoColour = -4142;

std::int32_t Rgb(int red, int green, int blue) {
    return red + green * 256 + blue * 65536;
}

// "Now" is noon of the first day. Plan (12) > Phase (13) > five leaves, then two completed leaves.
class StatusProject : public ::testing::Test {
  protected:
    explicit StatusProject(bool withTemplates = true) {
        if (withTemplates) project.AddStatusTemplates();
        project.Task(12, 1, "Plan");
        // A summary with a violated link gets both the frame and its level's colour. The link names
        // the WBS number: a task code is only known once the pass has read that task's row.
        project.Task(13, 2, "Phase", {{"H", "1.1.1FS"}});
        // 0 % of 180 elapsed minutes: behind schedule, and also in its first half.
        Leaf(14, 3, "Late", k0900, k1700, 0);
        // 80 % of 300 planned minutes, 240 elapsed: on time, in its last half.
        Leaf(15, 3, "Ending", k0800, k1300, 80);
        // 20 % of 360 planned minutes, 60 elapsed: on time, in its first half.
        Leaf(16, 3, "Starting", k1100, k1700, 20);
        Leaf(17, 3, "Future", k1400, k1600, 0);
        project.Task(18, 3, "Unplanned", {{"C", "AL"}});
        // Complete by its actual end, with a violated link; and complete by its percentage.
        project.Task(
            19, 2, "Done",
            {{"C", "AL"}, {"H", "LateFS"}, {"P", k0800}, {"D", k0900}, {"E", k0800}, {"X", k0900}});
        Leaf(20, 2, "Also done", k0800, k0900, 100);
        // A marker left on a row by an earlier run, where no marker belongs now.
        project.Shapes("WBS").push_back({{"name", "TaskStatus17"}, {"left", 1}, {"width", 5}});
    }

    // The planned value is filled in as an earlier update would have left it: the colouring of
    // a pass reads the row before the pass writes the minutes.
    void Leaf(int row, int level, std::string_view name, double start, double end, int percent) {
        const double minutes = std::round((end - start) * 1440);
        project.Task(row, level, name,
                     {{"C", "AL"}, {"P", start}, {"D", end}, {"F", minutes}, {"J", percent}});
    }

    const sheethost::Interior& RowInterior(int row) const {
        return project.StyleAt("B" + std::to_string(row)).interior;
    }

    // The fill colour of the row's marker; -1 when the row has none.
    std::int32_t MarkerFill(int row) const {
        const sheethost::Shape* marker = project.ShapeNamed("TaskStatus" + std::to_string(row));
        return marker != nullptr ? marker->fill.foreColor : -1;
    }

    void ExpectCentredMarker(int row, int autoShapeType, double width, double height) const {
        const std::string name = "TaskStatus" + std::to_string(row);
        const sheethost::Shape* marker = project.ShapeNamed(name);
        ASSERT_NE(marker, nullptr) << name;
        const ProjectJson::Box cell = project.CellBox("Y" + std::to_string(row));
        EXPECT_EQ(marker->autoShapeType, autoShapeType) << name;
        EXPECT_DOUBLE_EQ(marker->width, width) << name;
        EXPECT_DOUBLE_EQ(marker->height, height) << name;
        EXPECT_DOUBLE_EQ(marker->left, cell.left + (cell.width - width) / 2) << name;
        EXPECT_DOUBLE_EQ(marker->top, cell.top + (cell.height - height) / 2) << name;
        EXPECT_EQ(marker->placement, 1) << name;
    }

    ProjectJson project;
};

TEST_F(StatusProject, MarkersFollowLateThenLastHalfThenFirstHalf) {
    project.Bind();
    kpUpdateWBS();

    ExpectCentredMarker(14, 9, 8, 6);   // delay template
    ExpectCentredMarker(15, 12, 6, 8);  // end template
    ExpectCentredMarker(16, 9, 7, 7);   // start template
    EXPECT_EQ(MarkerFill(16), 0x00B050);
    // Not started yet, no planned start, complete: no marker; the stale one is gone.
    EXPECT_EQ(project.ShapeNamed("TaskStatus17"), nullptr);
    EXPECT_EQ(project.ShapeNamed("TaskStatus18"), nullptr);
    EXPECT_EQ(project.ShapeNamed("TaskStatus19"), nullptr);
    EXPECT_EQ(project.ShapeNamed("TaskStatus20"), nullptr);
}

TEST_F(StatusProject, RowsTakeTheirColours) {
    project.Bind();
    kpUpdateWBS();

    EXPECT_EQ(RowInterior(12).color, 0x00C0FF);  // GanntBar1
    EXPECT_EQ(RowInterior(13).color, 0xFFCC99);  // GanntBar2
    EXPECT_NE(project.ShapeNamed("TaskDepandS13"), nullptr);
    EXPECT_EQ(RowInterior(14).colorIndex, kNoColour);
    // Completed rows are grey and get no frame, however their links stand.
    EXPECT_EQ(RowInterior(19).colorIndex, 15);
    EXPECT_EQ(RowInterior(20).colorIndex, 15);
    EXPECT_EQ(project.ShapeNamed("TaskDepandS19"), nullptr);
    // The colour covers the task block from its first to its last column, and no further.
    EXPECT_EQ(project.StyleAt("AH19").interior.colorIndex, 15);
    EXPECT_EQ(project.StyleAt("AI19").interior.colorIndex, kNoColour);
}

TEST_F(StatusProject, WithoutCompletedColouringACompletedTaskStaysPlain) {
    project.Setting("WSTaskColorCompletedFlg", 0);
    project.Bind();
    kpUpdateWBS();

    EXPECT_EQ(RowInterior(19).colorIndex, kNoColour);
    EXPECT_EQ(project.ShapeNamed("TaskStatus19"), nullptr);
    // Its violated link is framed now that the row is not done with.
    EXPECT_NE(project.ShapeNamed("TaskDepandS19"), nullptr);
}

TEST_F(StatusProject, WithoutStatusColouringNoMarkerIsDrawn) {
    project.Setting("WSTaskColorUseFlg", 0);
    project.Bind();
    kpUpdateWBS();

    EXPECT_TRUE(project.ShapesNamed("TaskStatus").empty());
    EXPECT_EQ(RowInterior(12).color, 0x00C0FF);
}

TEST_F(StatusProject, RecolouringLeavesOneMarkerAndOneFrameARow) {
    project.Bind();
    kpUpdateWBS();
    kpUpdateWBS();
    // A row recoloured on its own, as a sheet change does.
    TaskRecord_ReadRow(*Tasks_ByRow(14));
    ColourTaskRow(*Tasks_ByRow(14));

    EXPECT_EQ(project.ShapesNamed("TaskStatus14").size(), 1u);
    EXPECT_EQ(project.ShapesNamed("TaskStatus").size(), 3u);
    EXPECT_EQ(project.ShapesNamed("TaskDepandS").size(), 1u);
}

TEST_F(StatusProject, AResetClearsEarlierColoursAndConditions) {
    project.Bind();
    sheethost::Style& style = sheethost::CellAt(project.Host("WBS"), 14, 3).style.Edit();
    style.interior.colorIndex = 6;
    style.conditions.push_back({});

    kpUpdateWBS();

    EXPECT_EQ(project.StyleAt("C14").interior.colorIndex, kNoColour);
    EXPECT_TRUE(project.StyleAt("C14").conditions.empty());
}

class BareWorkbook : public StatusProject {
  protected:
    BareWorkbook() : StatusProject(false) {}
};

TEST_F(BareWorkbook, BuiltInLooksStandInForMissingTemplates) {
    project.Bind();
    kpUpdateWBS();

    EXPECT_EQ(RowInterior(12).color, Rgb(155, 194, 230));
    EXPECT_EQ(RowInterior(13).color, Rgb(169, 208, 142));
    ExpectCentredMarker(14, 9, 10, 10);
    ExpectCentredMarker(15, 9, 10, 10);
    EXPECT_EQ(MarkerFill(14), Rgb(255, 0, 0));
    EXPECT_EQ(MarkerFill(15), Rgb(255, 192, 0));
    EXPECT_EQ(MarkerFill(16), Rgb(0, 176, 80));
    const sheethost::Shape* frame = project.ShapeNamed("TaskDepandS13");
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->line.foreColor, Rgb(255, 0, 0));
    EXPECT_DOUBLE_EQ(frame->line.weight, 2.25);
    EXPECT_FALSE(frame->fill.visible);
    // Nothing was added to the settings sheet.
    EXPECT_TRUE(project.ShapesNamed("", "Settings").empty());
}

// The earned-value figures of one task as of a pinned "now".
class TaskEvm : public ::testing::Test {
  protected:
    TaskEvm() { PinNow(kNoon); }
    ~TaskEvm() override { PinNow(0); }

    static constexpr double kNoon = 45383.5;
    TaskRecord task;
};

TEST_F(TaskEvm, AFutureTaskHasOnlyItsBudgetAndCost) {
    task.pvText = "120";
    task.acText = "30";
    task.percentText = "50";
    task.plannedStart = kNoon + 1.0 / 24;
    task.plannedEnd = kNoon + 3.0 / 24;
    task.sv = -5;  // a figure from an earlier computation

    ComputeTaskEvm(task);

    EXPECT_EQ(task.bac, 120);
    EXPECT_EQ(task.ac, 30);
    for (double figure :
         {task.pv, task.ev, task.cv, task.sv, task.cpi, task.spi, task.eac, task.etc}) {
        EXPECT_EQ(figure, 0);
    }
}

TEST_F(TaskEvm, ARunningTaskCountsElapsedMinutes) {
    task.pvText = "480";
    task.acText = "200";
    task.percentText = "25";
    task.plannedStart = kNoon - 3.0 / 24;
    task.plannedEnd = kNoon + 5.0 / 24;

    ComputeTaskEvm(task);

    EXPECT_EQ(task.pv, 180);
    EXPECT_EQ(task.ev, 120);
    EXPECT_EQ(task.sv, -60);
    EXPECT_EQ(task.cv, -80);
    EXPECT_DOUBLE_EQ(task.spi, 120.0 / 180);
    EXPECT_DOUBLE_EQ(task.cpi, 0.6);
    EXPECT_DOUBLE_EQ(task.eac, 200 + 360 / 0.6);
    EXPECT_DOUBLE_EQ(task.etc, 360 / 0.6);
}

TEST_F(TaskEvm, AFinishedTaskEarnsItsWholeBudget) {
    task.pvText = "90";
    task.acText = "0";
    task.percentText = "100";
    task.plannedStart = kNoon - 3.0 / 24;
    task.plannedEnd = kNoon - 1.0 / 24;

    ComputeTaskEvm(task);

    EXPECT_EQ(task.pv, 90);
    EXPECT_EQ(task.ev, 90);
    EXPECT_EQ(task.sv, 0);
    EXPECT_EQ(task.spi, 1);
    // No cost: no CPI, no forecast, and ETC is 0 - AC.
    EXPECT_EQ(task.cpi, 0);
    EXPECT_EQ(task.eac, 0);
    EXPECT_EQ(task.etc, 0);
}

}  // namespace
