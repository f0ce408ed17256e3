#include "wbs/task_table.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "calendar/bstr.h"
#include "core/engine_state.h"
#include "engine/refresh.h"
#include "settings/settings.h"
#include "support/project_json.h"
#include "values/values.h"

namespace {

using testsupport::ProjectJson;

constexpr int kFirst = ProjectJson::kFirstTaskRow;

struct Outline {
    std::string wbsNo;
    std::int64_t level;
    std::int64_t isLeaf;
    std::int64_t groupIndex;
    bool operator==(const Outline&) const = default;
};

void PrintTo(const Outline& o, std::ostream* out) {
    *out << o.wbsNo << " level " << o.level << " leaf " << o.isLeaf << " group " << o.groupIndex;
}

// One name per row from the first task row down: (outline level, name).
void AddNames(ProjectJson& project, std::initializer_list<std::pair<int, const char*>> names) {
    int row = kFirst;
    for (const auto& [level, name] : names) {
        project.Task(row++, level, name);
    }
}

void Load(ProjectJson& project) {
    project.Bind();
    ASSERT_TRUE(RefreshSettings());
    TaskTable_Load();
}

std::vector<Outline> LoadedOutline(ProjectJson& project) {
    Load(project);
    std::vector<Outline> outline;
    for (const TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        outline.push_back({task->wbsNo, task->level, task->isLeaf, task->groupIndex});
    }
    return outline;
}

TEST(TaskOutlineTest, ComesFromTheNameColumn) {
    ProjectJson project;
    AddNames(project, {{1, "Plan"},
                       {2, "Scope"},
                       {2, "Budget"},
                       {3, "Estimate"},
                       {3, "Approve"},
                       {1, "Build"},
                       {2, "Code"}});
    const std::vector<Outline> expected = {{"1", 1, 0, 1},     {"1.1", 2, 1, 1},   {"1.2", 2, 0, 1},
                                           {"1.2.1", 3, 1, 1}, {"1.2.2", 3, 1, 1}, {"2", 1, 0, 2},
                                           {"2.1", 2, 1, 2}};
    EXPECT_EQ(LoadedOutline(project), expected);
}

TEST(TaskOutlineTest, FirstRowIsTopLevelWhateverItsColumn) {
    ProjectJson project;
    AddNames(project, {{2, "Kick-off"}, {2, "Charter"}, {1, "Delivery"}});
    const std::vector<Outline> expected = {{"1", 1, 0, 1}, {"1.1", 2, 1, 1}, {"2", 1, 1, 2}};
    EXPECT_EQ(LoadedOutline(project), expected);
}

TEST(TaskOutlineTest, FollowsTheNumberingSettings) {
    ProjectJson project;
    project.Setting("WSWBSNoBegin", 0);
    project.Setting("WSWBSNoFormat", "-");
    AddNames(project, {{1, "Plan"}, {2, "Scope"}, {3, "Interviews"}, {1, "Build"}});
    const std::vector<Outline> expected = {
        {"0", 1, 0, 1}, {"0-1", 2, 0, 1}, {"0-1-1", 3, 1, 1}, {"1", 1, 1, 2}};
    EXPECT_EQ(LoadedOutline(project), expected);
}

TEST(TaskOutlineTest, TopLevelCountsBlanksAsANameDeeperLevelsDoNot) {
    ProjectJson project;
    AddNames(project, {{1, "Plan"}, {2, "Scope"}, {2, "Budget"}, {2, "  "}, {1, "Unseen"}});
    // Blanks in the first column beside "Budget" start a new group, and the deeper counter runs on
    // from "1.1" (it resets only on rows without a name at that level). Blanks alone are no task.
    project.Task(kFirst + 2, 1, "   ");
    const std::vector<Outline> expected = {{"1", 1, 0, 1}, {"1.1", 2, 1, 1}, {"2.2", 2, 1, 2}};
    EXPECT_EQ(LoadedOutline(project), expected);
}

TEST(TaskOutlineTest, FirstBlankRowEndsTheList) {
    ProjectJson project;
    AddNames(project, {{1, "A"}, {1, "B"}, {1, "C"}});
    project.Task(kFirst + 4, 1, "Below the gap");
    EXPECT_EQ(LoadedOutline(project).size(), 3u);
    EXPECT_EQ(Tasks_ByRow(kFirst + 4), nullptr);

    ProjectJson emptyFirstRow;
    emptyFirstRow.Task(kFirst + 1, 1, "Too low");
    EXPECT_TRUE(LoadedOutline(emptyFirstRow).empty());
    EXPECT_EQ(Tasks_Last(), nullptr);
}

TEST(TaskOutlineTest, StopsAtTenThousandRows) {
    ProjectJson project;
    for (int i = 0; i < 10000; ++i) {
        project.Task(kFirst + i, 1, "T");
    }
    // Row 10,001 is not loaded, but its deeper name still makes the last task a summary.
    project.Task(kFirst + 10000, 2, "Beyond the limit");
    Load(project);
    EXPECT_EQ(EngineTasks().taskCount, 10000);
    EXPECT_EQ(Tasks_Last()->wbsNo, "10000");
    EXPECT_EQ(Tasks_Last()->isLeaf, 0);
    EXPECT_EQ(Tasks_ByRow(kFirst + 9998)->isLeaf, 1);
}

TEST(TaskTableTest, PoolGrowsAndKeepsItsRecordsAcrossLoads) {
    ProjectJson project;
    for (int i = 0; i < 250; ++i) {
        project.Task(kFirst + i, 1, "T");
    }
    Load(project);
    std::set<const TaskRecord*> records;
    for (const TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        records.insert(task);
    }
    EXPECT_EQ(records.size(), 250u);
    const TaskRecord* third = Tasks_ByRow(kFirst + 2);
    EngineSettings().firstTaskRow = kFirst + 247;
    TaskTable_Load();
    EXPECT_EQ(EngineTasks().taskCount, 3);
    EXPECT_EQ(Tasks_Last(), third);
}

TEST(TaskTableTest, LooksUpByRowWbsAndCode) {
    ProjectJson project;
    AddNames(project, {{1, "Design"},
                       {2, "UX: wireframes"},
                       {2, "api-doc"},
                       {3, "Review#2"},
                       {1, "Ñ1: Ölçüm"},
                       {1, "Σχέδιο"},
                       {1, "ПЛАН-1"}});
    Load(project);
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        TaskRecord_ReadRow(*task);
    }
    EXPECT_EQ(Tasks_ByRow(kFirst + 1)->wbsNo, "1.1");
    EXPECT_EQ(Tasks_ByRow(kFirst - 1), nullptr);
    EXPECT_EQ(Tasks_Next(*Tasks_Last()), nullptr);
    EXPECT_EQ(Tasks_ByWbs("1.2.1")->row, kFirst + 3);
    EXPECT_EQ(Tasks_ByWbs("1.2.1 "), nullptr);
    // The code is the name up to the first of ":|,_-#", compared without regard to case; a
    // reference that is no code is tried as a WBS number.
    EXPECT_EQ(Tasks_ByCode("ux")->row, kFirst + 1);
    EXPECT_EQ(Tasks_ByCode("REVIEW")->row, kFirst + 3);
    EXPECT_EQ(Tasks_ByCode("api-doc"), nullptr);
    // Every letter folds, not only A to Z: Latin-1, Greek (with its final sigma), Cyrillic.
    EXPECT_EQ(Tasks_ByCode("ñ1")->row, kFirst + 4);
    EXPECT_EQ(Tasks_ByCode("σχέδιος"), nullptr);
    EXPECT_EQ(Tasks_ByCode("ΣΧΈΔΙΟ")->row, kFirst + 5);
    EXPECT_EQ(Tasks_ByCode("план")->row, kFirst + 6);
    EXPECT_EQ(Tasks_Find("1.2")->row, kFirst + 2);
    EXPECT_EQ(Tasks_Find("9"), nullptr);
    EXPECT_EQ(Tasks_AncestorRows(kFirst + 3),
              std::to_string(kFirst + 2) + "," + std::to_string(kFirst) + ",");
    EXPECT_EQ(Tasks_AncestorRows(kFirst), "");
    // A comma inside a WBS text separates components as the separator does.
    EXPECT_EQ(WbsLevel("1.2,3"), 3);
}

// The look-up by code answers from an index; it must keep answering what a walk down the table
// would: the first task in sheet order, after renames and reloads alike.
TEST(TaskTableTest, CodeLookUpFollowsRenamesAndSheetOrder) {
    ProjectJson project;
    AddNames(project, {{1, "Plan"}, {2, "ops: one"}, {2, "Build"}, {2, "OPS-two"}});
    Load(project);
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        TaskRecord_ReadRow(*task);
    }
    const std::int64_t nameColumn = ProjectJson::kFirstNameColumn + 1;
    EXPECT_EQ(Tasks_ByCode("Ops")->row, kFirst + 1);

    // The first "ops" task renamed: the second becomes the first, the new name is found.
    EngineWbsSheet().SetCell(kFirst + 1, nameColumn, "Review");
    TaskRecord_ReadRow(*Tasks_ByRow(kFirst + 1));
    EXPECT_EQ(Tasks_ByCode("ops")->row, kFirst + 3);
    EXPECT_EQ(Tasks_ByCode("review")->row, kFirst + 1);

    // A task below taking the code does not displace the one above it.
    EngineWbsSheet().SetCell(kFirst + 2, nameColumn, "ops#3");
    TaskRecord_ReadRow(*Tasks_ByRow(kFirst + 2));
    EXPECT_EQ(Tasks_ByCode("OPS")->row, kFirst + 2);

    // Renamed back, the task above takes its place again; nothing answers to a name given up.
    EngineWbsSheet().SetCell(kFirst + 1, nameColumn, "Ops|again");
    TaskRecord_ReadRow(*Tasks_ByRow(kFirst + 1));
    EXPECT_EQ(Tasks_ByCode("ops")->row, kFirst + 1);
    EXPECT_EQ(Tasks_ByCode("review"), nullptr);

    // Records are reused in pool order, so after a reload a task answers to the name its record
    // last read until its own row is read.
    EngineSettings().firstTaskRow = kFirst + 2;
    TaskTable_Load();
    EXPECT_EQ(Tasks_ByCode("plan")->row, kFirst + 2);
    EXPECT_EQ(Tasks_ByCode("ops")->row, kFirst + 3);
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        TaskRecord_ReadRow(*task);
    }
    // The new top row is a top-level task, named in the first name column, which is empty.
    EXPECT_EQ(Tasks_ByCode("plan"), nullptr);
    EXPECT_EQ(Tasks_ByCode("")->row, kFirst + 2);
    EXPECT_EQ(Tasks_ByCode("ops")->row, kFirst + 3);
}

// "Prepare" and "Launch" head the two groups; "Go live" (group 2) falls on 2 April.
class ReadRowTest : public ::testing::Test {
  protected:
    ReadRowTest() {
        project_.Task(kFirst, 1, "Prepare");
        project_.Task(kFirst + 1, 1, "Launch");
        project_.Task(kFirst + 2, 2, "Go live",
                      {{ProjectJson::kType, "MS"},
                       {ProjectJson::kResource, "AL"},
                       {ProjectJson::kPv, "480"},
                       {ProjectJson::kPlannedStart, 0.375},
                       {ProjectJson::kPlannedEnd, 17.0 / 24},
                       {ProjectJson::kPercent, "40"},
                       {ProjectJson::kPredecessors, "1FS"}});
    }

    TaskRecord& Read(int row) {
        Load(project_);
        TaskRecord& task = *Tasks_ByRow(row);
        TaskRecord_ReadRow(task);
        return task;
    }

    ProjectJson project_;
};

TEST_F(ReadRowTest, ReadsTheCellsOntoTheGroupsCalendarDay) {
    const TaskRecord& task = Read(kFirst + 2);
    EXPECT_EQ(BstrText(task.nameCell), "Go live");
    EXPECT_EQ(BstrText(task.typeCell), "MS");
    EXPECT_EQ(BstrText(task.resourceCell), "AL");
    EXPECT_EQ(task.pvText, "480");
    EXPECT_EQ(task.percentText, "40");
    EXPECT_EQ(task.predecessors, "1FS");
    EXPECT_DOUBLE_EQ(task.plannedStart, ProjectJson::kDay2 + 0.375);
    EXPECT_DOUBLE_EQ(task.plannedEnd, ProjectJson::kDay2 + 17.0 / 24);
    EXPECT_EQ(task.actualStart, 0.0);
}

TEST_F(ReadRowTest, TimesBeforeTheWorkingStartBelongToTheNextDay) {
    // A night shift from 16:00: 09:00 lies after midnight, 17:00 on the day itself.
    project_.Cells("Calendar")["C4"] = 16.0 / 24;
    const TaskRecord& task = Read(kFirst + 2);
    EXPECT_DOUBLE_EQ(task.plannedStart, ProjectJson::kDay2 + 1 + 0.375);
    EXPECT_DOUBLE_EQ(task.plannedEnd, ProjectJson::kDay2 + 17.0 / 24);
}

TEST_F(ReadRowTest, GroupsPastTheCalendarTakeItsLastDay) {
    project_.Task(kFirst + 3, 1, "Handover", {{ProjectJson::kActualStart, 0.5}});
    const TaskRecord& task = Read(kFirst + 3);
    EXPECT_EQ(task.groupIndex, 3);
    EXPECT_DOUBLE_EQ(task.actualStart, ProjectJson::kDay2 + 0.5);
}

TEST_F(ReadRowTest, WithoutCalendarDaysStartsAreUnset) {
    project_.Cells("Calendar") = nlohmann::json::object();
    const TaskRecord& task = Read(kFirst + 2);
    EXPECT_EQ(task.plannedStart, 0.0);
}

}  // namespace
