// Task moves through the selection of rows: blocks moved up and down with their formulas and
// shapes, indents and outdents keeping the structure inside the selection, the offset of planned
// times, and every refusal answered with 0 and nothing changed.
#include "wbs/task_moves.h"

#include <gtest/gtest.h>

#include <string>

#include "engine/exports.h"
#include "sheethost/model.h"
#include "support/project_json.h"
#include "support/times_of_day.h"

namespace {

using testsupport::k0800;
using testsupport::k0830;
using testsupport::k0900;
using testsupport::k0930;
using testsupport::k1000;
using testsupport::k1030;
using testsupport::k1100;

using testsupport::ProjectJson;

class TaskMoves : public ::testing::Test {
  protected:
    // Binds the project and updates it, as the workbook is before its user moves anything.
    void Open() {
        project.AddStatusTemplates();
        project.Bind();
        kpUpdateWBS();
    }

    // Selects whole rows of the task sheet, as the user does before a move.
    void Select(int first, int last) {
        project.Host("WBS").selection = {sheethost::Area{first, 1, last, sheethost::kMaxColumn}};
    }

    std::string SelectedRows() const {
        const sheethost::Area& area = project.Host("WBS").selection.front();
        return std::to_string(area.top) + ":" + std::to_string(area.bottom);
    }

    // The name in the name column of `level` on `row`.
    std::string Name(int row, int level) const {
        return project.Text(ColumnLetters(ProjectJson::kFirstNameColumn + level - 1) +
                            std::to_string(row));
    }

    // Every refusal must leave the workbook exactly as it was.
    template <class Move>
    void ExpectRefused(int first, int last, Move move) {
        Select(first, last);
        const std::string before = project.DumpWithoutShapeIds();
        EXPECT_EQ(move(), 0) << "rows " << first << ":" << last;
        EXPECT_EQ(project.DumpWithoutShapeIds(), before) << "rows " << first << ":" << last;
    }

    ProjectJson project;
};

// Plan (12) > Phase (13) > Design (14), Build (15); Ship (16) > Pack (17).
class Outline : public TaskMoves {
  protected:
    Outline() {
        project.Task(12, 1, "Plan");
        project.Task(13, 2, "Phase");
        project.Task(14, 3, "Design", {{"C", "AL"}, {"P", k0800}, {"D", k0900}});
        project.Task(15, 3, "Build", {{"C", "AL"}, {"P", k0900}, {"D", k1000}, {"H", "Design"}});
        project.Task(16, 1, "Ship");
        project.Task(17, 2, "Pack", {{"C", "BO"}, {"P", k0800}, {"D", k0900}});
        Open();
    }
};

TEST_F(Outline, MovesThatWouldBreakTheOutlineAreRefused) {
    const auto up = [] { return MoveTasks(-1); };
    const auto down = [] { return MoveTasks(+1); };
    const auto indent = [] { return IndentTasks(+1); };
    const auto outdent = [] { return IndentTasks(-1); };
    // The first task cannot move up, be indented or outdented.
    ExpectRefused(12, 12, up);
    ExpectRefused(12, 12, indent);
    ExpectRefused(12, 12, outdent);
    // Taking Phase out would leave Design two levels below Plan (and a level-2 task cannot become
    // the first).
    ExpectRefused(13, 13, up);
    ExpectRefused(13, 13, down);
    // Design would stand two levels below Plan, or Build two below Ship.
    ExpectRefused(14, 14, up);
    ExpectRefused(15, 15, down);
    // The selection reaches the last task; no task on the first selected row.
    ExpectRefused(16, 17, down);
    ExpectRefused(18, 19, down);
    ExpectRefused(18, 19, indent);
    // Design is already one level below Phase; Ship is at the top level; Design, right under the
    // selected Phase, would be left without its parent.
    ExpectRefused(14, 14, indent);
    ExpectRefused(16, 16, outdent);
    ExpectRefused(13, 13, outdent);
    // The first task row cannot be offset.
    ExpectRefused(12, 13, [] { return OffsetTasks(2, 15); });
}

TEST_F(Outline, ARowMovesWithItsCellsAndStaysSelected) {
    Select(15, 15);
    kpTasksMoveUp();

    EXPECT_EQ(Name(14, 3), "Build");
    EXPECT_EQ(Name(15, 3), "Design");
    EXPECT_EQ(SelectedRows(), "14:14");
    EXPECT_EQ(project.Text("A14"), "1.1.1");
    EXPECT_EQ(project.Text("H14"), "Design");
    EXPECT_EQ(project.Formula("P13"), "=IF(MIN(P14,P15)=0,\"\",MIN(P14,P15))");
    EXPECT_NEAR(project.Number("P15"), k0800, 1e-9);
    // Both rows' bars were drawn again for the task now on them.
    for (int row = 14; row <= 15; ++row) {
        const sheethost::Shape* bar = project.ShapeNamed("GanntBar" + std::to_string(row) + "A");
        ASSERT_NE(bar, nullptr) << row;
        const ProjectJson::Box box = project.CellBox("A" + std::to_string(row));
        EXPECT_GE(bar->top, box.top) << row;
        EXPECT_LE(bar->top + bar->height, box.top + box.height) << row;
    }
}

// Pack moves up under Plan: Ship is left without children and turns into an ordinary task whose
// roll-ups become plain values.
TEST_F(Outline, AMoveCanLeaveASummaryWithoutChildren) {
    Select(17, 17);
    ASSERT_EQ(MoveTasks(-1), 1);

    EXPECT_EQ(Name(16, 2), "Pack");
    EXPECT_EQ(project.Text("A16"), "1.2");
    EXPECT_EQ(project.Text("A17"), "2");
    EXPECT_EQ(project.Formula("F12"), "=IF(SUM(F13,F16)=0,\"\",SUM(F13,F16))");
    EXPECT_EQ(project.Formula("P17"), "");
    EXPECT_NEAR(project.Number("P17"), k0800, 1e-9);
    // An ordinary task now, it is asked for its resource.
    EXPECT_EQ(ProjectJson::Messages().back().text, "Please specify resource for task '2Ship'");
}

TEST_F(Outline, IndentAndOutdentKeepTheStructureInsideTheSelection) {
    // Ship and Pack one level deeper: Ship becomes Plan's second child, Pack stays Ship's child.
    Select(16, 17);
    ASSERT_EQ(IndentTasks(+1), 1);
    EXPECT_EQ(Name(16, 2), "Ship");
    EXPECT_EQ(Name(16, 1), "");
    EXPECT_EQ(Name(17, 3), "Pack");
    EXPECT_EQ(project.Text("A17"), "1.2.1");
    EXPECT_EQ(project.Formula("F12"), "=IF(SUM(F13,F16)=0,\"\",SUM(F13,F16))");

    ASSERT_EQ(IndentTasks(-1), 1);
    EXPECT_EQ(Name(16, 1), "Ship");
    EXPECT_EQ(Name(17, 2), "Pack");
    EXPECT_EQ(project.Text("A17"), "2.1");
    EXPECT_EQ(project.Formula("F12"), "=IF(SUM(F13)=0,\"\",SUM(F13))");
}

TEST_F(TaskMoves, TheTenthLevelIsTheDeepest) {
    for (int level = 1; level <= 10; ++level) {
        project.Task(11 + level, level, "Level " + std::to_string(level));
    }
    project.Task(22, 10, "Also ten", {{"C", "AL"}});
    Open();

    ExpectRefused(22, 22, [] { return IndentTasks(+1); });
}

TEST_F(TaskMoves, FewerThanTwoTasksMoveNothing) {
    project.Task(12, 1, "Alone", {{"C", "AL"}});
    Open();

    ExpectRefused(12, 12, [] { return MoveTasks(+1); });
    // Below the only task the offset would find nothing to shift; it still refuses.
    ExpectRefused(13, 13, [] { return OffsetTasks(1, 30); });
}

// Plan (12) > Design 09:00-10:00, Running (started), Night 23:00-00:30; Ship (16) > Pack (17).
class Offsets : public TaskMoves {
  protected:
    Offsets() {
        project.Task(12, 1, "Plan");
        project.Task(13, 2, "Design", {{"C", "AL"}, {"P", k0900}, {"D", k1000}});
        project.Task(14, 2, "Running", {{"C", "AL"}, {"P", k0900}, {"D", k1000}, {"J", 10}});
        project.Task(15, 2, "Night", {{"C", "BO"}, {"P", 23.0 / 24}, {"D", 0.5 / 24}});
        project.Task(16, 1, "Ship");
        project.Task(17, 2, "Pack", {{"C", "BO"}, {"P", k0900}, {"D", k1000}});
        Open();
    }
};

TEST_F(Offsets, NotStartedOrdinaryTasksShiftKeepingTheirWork) {
    // The first task row cannot be offset.
    ExpectRefused(12, 15, [] { return OffsetTasks(2, 15); });

    Select(13, 16);
    kpTasksOffset(2, 15);
    EXPECT_NEAR(project.Number("P13"), k0930, 1e-9);
    EXPECT_NEAR(project.Number("D13"), k1030, 1e-9);
    // Started: left alone.
    EXPECT_NEAR(project.Number("P14"), k0900, 1e-9);
    EXPECT_NEAR(project.Number("D14"), k1000, 1e-9);
    // 90 minutes from 23:30 end at 01:00: only the time of day is written.
    EXPECT_NEAR(project.Number("P15"), 23.5 / 24, 1e-9);
    EXPECT_NEAR(project.Number("D15"), 1.0 / 24, 1e-9);

    Select(13, 13);
    kpTasksOffset(-1, 60);
    EXPECT_NEAR(project.Number("P13"), k0830, 1e-9);
    EXPECT_NEAR(project.Number("D13"), k0930, 1e-9);

    // The start itself past midnight.
    Select(15, 15);
    kpTasksOffset(1, 90);
    EXPECT_NEAR(project.Number("P15"), 1.0 / 24, 1e-9);
    EXPECT_NEAR(project.Number("D15"), 2.5 / 24, 1e-9);
    // The redraw updated the rows: the work read back over midnight is still 90 minutes.
    EXPECT_EQ(project.Text("F15"), "90");
}

}  // namespace
