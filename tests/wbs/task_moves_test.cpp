// Task moves through the selection of rows: blocks moved up and down with their formulas and
// shapes, indents and outdents keeping the structure inside the selection, the offset of planned
// times, and every refusal answered with 0 and nothing changed.
#include "wbs/task_moves.h"

#include <gtest/gtest.h>

#include <string>

#include "engine/exports.h"
#include "sheethost/model.h"
#include "support/project_json.h"

namespace {

using testsupport::ProjectJson;

constexpr double k0800 = 8.0 / 24;
constexpr double k0830 = 8.5 / 24;
constexpr double k0900 = 9.0 / 24;
constexpr double k0930 = 9.5 / 24;
constexpr double k1000 = 10.0 / 24;
constexpr double k1030 = 10.5 / 24;
constexpr double k1100 = 11.0 / 24;

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

// Plan (12) > Design, Build, Test; Ship (16) > Pack.
class TwoGroups : public TaskMoves {
  protected:
    TwoGroups() {
        project.Task(12, 1, "Plan");
        project.Task(13, 2, "Design", {{"C", "AL"}, {"P", k0800}, {"D", k0900}});
        project.Task(14, 2, "Build", {{"C", "AL"}, {"P", k0900}, {"D", k1000}});
        project.Task(15, 2, "Test", {{"C", "BO"}, {"P", k1000}, {"D", k1100}, {"H", "Build"}});
        project.Task(16, 1, "Ship");
        project.Task(17, 2, "Pack", {{"C", "BO"}, {"P", k0800}, {"D", k0900}});
        Open();
    }
};

TEST_F(TwoGroups, ABlockMovesDownWithItsCellsAndStaysSelected) {
    Select(13, 14);
    EXPECT_EQ(MoveTasks(+1), 1);

    EXPECT_EQ(Name(13, 2), "Test");
    EXPECT_EQ(Name(14, 2), "Design");
    EXPECT_EQ(Name(15, 2), "Build");
    EXPECT_EQ(SelectedRows(), "14:15");
    EXPECT_EQ(project.Text("A13"), "1.1");
    EXPECT_EQ(project.Text("A15"), "1.3");
    EXPECT_EQ(project.Text("H13"), "Build");
    EXPECT_EQ(project.Formula("P12"), "=IF(MIN(P13,P14,P15)=0,\"\",MIN(P13,P14,P15))");
    EXPECT_NEAR(project.Number("P14"), k0800, 1e-9);
    // The status marker and the bars of each row were drawn again for the task now on it.
    for (int row = 13; row <= 15; ++row) {
        const sheethost::Shape* bar = project.ShapeNamed("GanntBar" + std::to_string(row) + "A");
        ASSERT_NE(bar, nullptr) << row;
        const ProjectJson::Box box = project.CellBox("A" + std::to_string(row));
        EXPECT_GE(bar->top, box.top) << row;
        EXPECT_LE(bar->top + bar->height, box.top + box.height) << row;
    }
}

TEST_F(TwoGroups, ATaskMovesUpThroughTheExport) {
    Select(15, 15);
    kpTasksMoveUp();

    EXPECT_EQ(Name(14, 2), "Test");
    EXPECT_EQ(Name(15, 2), "Build");
    EXPECT_EQ(SelectedRows(), "14:14");
}

// Design moves below Ship, which becomes its parent: Plan is left without children and turns
// into an ordinary task whose roll-ups become plain values.
TEST_F(TwoGroups, AMoveCanLeaveASummaryWithoutChildren) {
    Select(13, 15);
    ASSERT_EQ(MoveTasks(+1), 1);

    EXPECT_EQ(Name(12, 1), "Plan");
    EXPECT_EQ(Name(13, 1), "Ship");
    EXPECT_EQ(project.Text("A13"), "2");
    EXPECT_EQ(project.Text("A14"), "2.1");
    EXPECT_EQ(project.Text("A17"), "2.4");
    EXPECT_EQ(project.Formula("P12"), "");
    EXPECT_NEAR(project.Number("P12"), k0800, 1e-9);
    EXPECT_EQ(project.Formula("P13"), "=IF(MIN(P14,P15,P16,P17)=0,\"\",MIN(P14,P15,P16,P17))");
    // An ordinary task now, it is asked for its resource.
    EXPECT_EQ(ProjectJson::Messages().back().text, "Please specify resource for task '1Plan'");
}

TEST_F(TwoGroups, MovesThatWouldBreakTheOutlineAreRefused) {
    // Up: the first task; a level-2 task onto the first row.
    ExpectRefused(12, 12, [] { return MoveTasks(-1); });
    ExpectRefused(13, 13, [] { return MoveTasks(-1); });
    // Down: a selection reaching the last task.
    ExpectRefused(16, 17, [] { return MoveTasks(+1); });
    // No task on the first selected row.
    ExpectRefused(18, 18, [] { return MoveTasks(+1); });
}

// Plan (12) > Phase (13) > Design (14); Ship (15) > Pack (16); Done (17).
class ThreeLevels : public TaskMoves {
  protected:
    ThreeLevels() {
        project.Task(12, 1, "Plan");
        project.Task(13, 2, "Phase");
        project.Task(14, 3, "Design", {{"C", "AL"}});
        project.Task(15, 1, "Ship");
        project.Task(16, 2, "Pack", {{"C", "BO"}});
        project.Task(17, 1, "Done", {{"C", "BO"}});
        Open();
    }
};

TEST_F(ThreeLevels, MovesThatWouldBreakTheOutlineAreRefused) {
    // Taking Phase out would leave Design two levels below Plan.
    ExpectRefused(13, 13, [] { return MoveTasks(+1); });
    ExpectRefused(13, 13, [] { return MoveTasks(-1); });
    // Design two levels below Plan, the task two rows up.
    ExpectRefused(14, 14, [] { return MoveTasks(-1); });
    // Design would land under Ship, two levels deeper.
    ExpectRefused(14, 14, [] { return MoveTasks(+1); });
}

TEST_F(ThreeLevels, IndentAndOutdentKeepTheStructureInsideTheSelection) {
    // Ship and Pack one level deeper: Ship becomes Plan's second child, Pack stays Ship's child.
    Select(15, 16);
    ASSERT_EQ(IndentTasks(+1), 1);
    EXPECT_EQ(Name(15, 2), "Ship");
    EXPECT_EQ(Name(15, 1), "");
    EXPECT_EQ(Name(16, 3), "Pack");
    EXPECT_EQ(project.Text("A15"), "1.2");
    EXPECT_EQ(project.Text("A16"), "1.2.1");
    EXPECT_EQ(project.Formula("F12"), "=IF(SUM(F13,F15)=0,\"\",SUM(F13,F15))");
    EXPECT_EQ(SelectedRows(), "15:16");

    ASSERT_EQ(IndentTasks(-1), 1);
    EXPECT_EQ(Name(15, 1), "Ship");
    EXPECT_EQ(Name(16, 2), "Pack");
    EXPECT_EQ(project.Text("A16"), "2.1");
    EXPECT_EQ(project.Formula("F12"), "=IF(SUM(F13)=0,\"\",SUM(F13))");
}

TEST_F(ThreeLevels, IndentsThatWouldBreakTheOutlineAreRefused) {
    // The first task row.
    ExpectRefused(12, 12, [] { return IndentTasks(+1); });
    ExpectRefused(12, 12, [] { return IndentTasks(-1); });
    // Design is already one level below Phase.
    ExpectRefused(14, 14, [] { return IndentTasks(+1); });
    // Ship is at the top level.
    ExpectRefused(15, 15, [] { return IndentTasks(-1); });
    // Design, right under the selected Phase, would be left without its parent.
    ExpectRefused(13, 13, [] { return IndentTasks(-1); });
    // No task on the first selected row.
    ExpectRefused(18, 19, [] { return IndentTasks(+1); });
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

// Plan (12) > Design 09:00-10:00, Running (started), Night 23:00-00:30; Ship (16).
class Offsets : public TaskMoves {
  protected:
    Offsets() {
        project.Task(12, 1, "Plan");
        project.Task(13, 2, "Design", {{"C", "AL"}, {"P", k0900}, {"D", k1000}});
        project.Task(14, 2, "Running", {{"C", "AL"}, {"P", k0900}, {"D", k1000}, {"J", 10}});
        project.Task(15, 2, "Night", {{"C", "BO"}, {"P", 23.0 / 24}, {"D", 0.5 / 24}});
        project.Task(16, 1, "Ship", {{"C", "BO"}, {"P", k0900}, {"D", k1000}});
        Open();
    }
};

TEST_F(Offsets, NotStartedOrdinaryTasksShiftKeepingTheirWork) {
    // The first task row cannot be offset.
    ExpectRefused(12, 15, [] { return OffsetTasks(2, 15); });

    Select(13, 15);
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
