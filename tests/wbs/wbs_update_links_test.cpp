// Predecessor links: how a piece of the predecessors cell is read (a trailing digit means no type,
// any other two letters are the type), the comparison sense of each type, silent skips, and the
// frame that marks a violated link.
#include <gtest/gtest.h>

#include <limits>
#include <set>

#include "engine/exports.h"
#include "support/project_json.h"
#include "support/times_of_day.h"
#include "wbs/task_table.h"
#include "wbs/wbs_update.h"

namespace {

using testsupport::k0800;
using testsupport::k0830;
using testsupport::k0900;
using testsupport::k0930;
using testsupport::k1000;
using testsupport::k1100;
using testsupport::k1200;

using testsupport::ProjectJson;

// Every task after row 13 names "3-Design" (code "3", WBS 1.1, 09:00 to 10:00) as its predecessor
// in some form. Status markers are off so that only frames are drawn.
class LinkProject : public ::testing::Test {
  protected:
    LinkProject() {
        project.Setting("WSTaskColorUseFlg", 0);
        project.AddStatusTemplates();
        project.Task(12, 1, "Plan");
        Link(13, "3-Design", "", k0900, k1000);
        // "Design" reads as type "GN" on "Desi": nothing is tested, though FS would be violated.
        Link(14, "Build", "Design", k0800, k0900);
        Link(15, "Test", "3", k0930, k1200);          // FS by code: starts before 10:00
        Link(16, "Ship", "3ss", k0930, k1200);        // SS: starts after 09:00
        Link(17, "Pack", "3SS", k0830, k1200);        // SS: starts before 09:00
        Link(18, "Late end", "1.1FF", k0800, k1100);  // FF: 10:00 < 11:00
        Link(19, "Early end", "1.1ff", k0800, k0930);
        // Unknown and blank-led references are skipped; SF: 09:00 < 08:30 does not hold.
        Link(20, "Sf ok", "Ghost, 3,1.1SF", k0800, k0830);
        Link(21, "Sf late", "1.1SF", k0800, k1200);
        Link(22, "Fs ok", "1.1", k1000, k1200);  // starts exactly when Design ends
        // What row 14 would wrongly find: "Desi" with type FS, or "Design" itself.
        Link(23, "Desi", "", k1000, k1200);
        Link(24, "Design", "", k1000, k1200);
        project.Bind();
    }

    void Link(int row, std::string_view name, std::string_view predecessors, double start,
              double end) {
        project.Task(row, 2, name, {{"C", "AL"}, {"H", predecessors}, {"P", start}, {"D", end}});
    }

    std::set<int> FlaggedRows() const {
        std::set<int> rows;
        for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
            if (task->dependencyError != 0) rows.insert(static_cast<int>(task->row));
        }
        return rows;
    }

    std::set<int> FramedRows() const {
        std::set<int> rows;
        for (const sheethost::Shape* frame : project.ShapesNamed("TaskDepandS")) {
            rows.insert(std::stoi(frame->name.substr(std::string("TaskDepandS").size())));
        }
        return rows;
    }

    ProjectJson project;
};

TEST_F(LinkProject, FlagsExactlyTheViolatedLinks) {
    kpUpdateWBS();

    const std::set<int> expected = {15, 17, 18, 21};
    EXPECT_EQ(FlaggedRows(), expected);
    EXPECT_EQ(FramedRows(), expected);
    EXPECT_TRUE(ProjectJson::Messages().empty());
}

TEST_F(LinkProject, FrameStandsOutOfThePredecessorsCellWithTheTemplatesOutline) {
    kpUpdateWBS();

    const sheethost::Shape* frame = project.ShapeNamed("TaskDepandS15");
    ASSERT_NE(frame, nullptr);
    const ProjectJson::Box cell = project.CellBox("H15");
    EXPECT_DOUBLE_EQ(frame->left, cell.left - 4);
    EXPECT_DOUBLE_EQ(frame->top, cell.top);
    EXPECT_DOUBLE_EQ(frame->width, cell.width + 8);
    EXPECT_DOUBLE_EQ(frame->height, cell.height);
    EXPECT_EQ(frame->autoShapeType, 5);
    EXPECT_EQ(frame->placement, 1);
    EXPECT_FALSE(frame->fill.visible);
    EXPECT_TRUE(frame->line.visible);
    EXPECT_EQ(frame->line.foreColor, 0x0000FF);
    EXPECT_DOUBLE_EQ(frame->line.weight, 1.5);
}

TEST_F(LinkProject, ARepairedLinkLosesItsFrameOnTheNextRun) {
    kpUpdateWBS();
    ASSERT_NE(project.ShapeNamed("TaskDepandS15"), nullptr);
    sheethost::CellAt(project.Host("WBS"), 15, ColumnNumber("P")).value = k1000;

    kpUpdateWBS();

    EXPECT_EQ(project.ShapeNamed("TaskDepandS15"), nullptr);
    EXPECT_EQ(project.ShapesNamed("TaskDepandS").size(), 3u);
}

TEST_F(LinkProject, OnceFlaggedAViolationStaysForThePass) {
    kpUpdateWBS();
    TaskRecord& late = *Tasks_ByRow(18);
    TaskRecord& design = *Tasks_ByRow(13);

    CheckLink(design, late, "FF");
    CheckLink(design, late, "FS");  // 08:00 < 10:00: also violated, flag unchanged
    EXPECT_EQ(late.dependencyError, 1);
    // A later clean link does not clear it; only a new check of the whole cell does.
    CheckLink(design, late, "SS");
    EXPECT_EQ(late.dependencyError, 1);
    late.predecessors = "1.1ss";
    CheckPredecessors(late);
    EXPECT_EQ(late.dependencyError, 1);  // 08:00 < 09:00
    late.predecessors = "";
    CheckPredecessors(late);
    EXPECT_EQ(late.dependencyError, 0);
}

TEST_F(LinkProject, DatesThatAreNotNumbersCountAsViolations) {
    kpUpdateWBS();
    TaskRecord& design = *Tasks_ByRow(13);
    TaskRecord& test = *Tasks_ByRow(15);
    TaskRecord_ReadRow(test);
    test.dependencyError = 0;
    test.plannedStart = std::numeric_limits<double>::quiet_NaN();
    CheckLink(design, test, "FS");
    EXPECT_EQ(test.dependencyError, 1);
}

}  // namespace
