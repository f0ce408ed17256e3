#include "wbs/task_table.h"

#include <gtest/gtest.h>

#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "calendar/bstr.h"
#include "calendar/calendar.h"
#include "engine/engine_state.h"
#include "settings/settings.h"
#include "support/task_workbook.h"
#include "values/values.h"

namespace {

using testsupport::TaskColumns;
using testsupport::TaskWorkbook;
using values::DateSerial;
using values::TimeSerial;

constexpr int kFirst = TaskWorkbook::kFirstTaskRow;

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

// The outline of every loaded task, in sheet order.
std::vector<Outline> LoadedOutline() {
    std::vector<Outline> outline;
    for (const TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        outline.push_back({task->wbsNo, task->level, task->isLeaf, task->groupIndex});
    }
    return outline;
}

class TaskTableTest : public ::testing::Test {
  protected:
    void SetUp() override {
        project_.AddCalendarDay(DateSerial(2024, 4, 1), TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
        project_.AddCalendarDay(DateSerial(2024, 4, 2), TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
    }

    void Load() {
        ASSERT_TRUE(project_.Bind());
        TaskTable_Load();
    }

    TaskWorkbook project_;
};

TEST_F(TaskTableTest, OutlineComesFromTheNameColumn) {
    project_.AddTask(kFirst + 0, 1, "Plan");
    project_.AddTask(kFirst + 1, 2, "Scope");
    project_.AddTask(kFirst + 2, 2, "Budget");
    project_.AddTask(kFirst + 3, 3, "Estimate");
    project_.AddTask(kFirst + 4, 3, "Approve");
    project_.AddTask(kFirst + 5, 1, "Build");
    project_.AddTask(kFirst + 6, 2, "Code");
    Load();
    EXPECT_EQ(EngineTasks().taskCount, 7);
    const std::vector<Outline> expected = {
        {"1", 1, 0, 1},     {"1.1", 2, 1, 1}, {"1.2", 2, 0, 1}, {"1.2.1", 3, 1, 1},
        {"1.2.2", 3, 1, 1}, {"2", 1, 0, 2},   {"2.1", 2, 1, 2},
    };
    EXPECT_EQ(LoadedOutline(), expected);
}

TEST_F(TaskTableTest, FirstRowIsTopLevelWhateverItsColumn) {
    project_.AddTask(kFirst + 0, 2, "Kick-off");
    project_.AddTask(kFirst + 1, 2, "Charter");
    project_.AddTask(kFirst + 2, 1, "Delivery");
    Load();
    const std::vector<Outline> expected = {{"1", 1, 0, 1}, {"1.1", 2, 1, 1}, {"2", 1, 1, 2}};
    EXPECT_EQ(LoadedOutline(), expected);
}

TEST_F(TaskTableTest, NumberingBeginsAtTheSettingWithItsSeparator) {
    project_.SetSetting("WSWBSNoBegin", 0.0);
    project_.SetSetting("WSWBSNoFormat", std::string("-"));
    project_.AddTask(kFirst + 0, 1, "Plan");
    project_.AddTask(kFirst + 1, 2, "Scope");
    project_.AddTask(kFirst + 2, 3, "Interviews");
    project_.AddTask(kFirst + 3, 1, "Build");
    Load();
    const std::vector<Outline> expected = {
        {"0", 1, 0, 1}, {"0-1", 2, 0, 1}, {"0-1-1", 3, 1, 1}, {"1", 1, 1, 2}};
    EXPECT_EQ(LoadedOutline(), expected);
}

TEST_F(TaskTableTest, TopLevelCountsBlanksAsANameDeeperLevelsDoNot) {
    project_.AddTask(kFirst + 0, 1, "Plan");
    project_.AddTask(kFirst + 1, 2, "Scope");
    // Blanks beside a deeper name: a task row whose first name cell still starts a new group.
    project_.AddTask(kFirst + 2, 1, "   ");
    project_.AddTask(kFirst + 2, 2, "Budget");
    // Blanks alone do not make a task row.
    project_.AddTask(kFirst + 3, 2, "  ");
    project_.AddTask(kFirst + 4, 1, "Unseen");
    Load();
    // The deeper counter runs on from "1.1": it resets only on rows without a name at that level.
    const std::vector<Outline> expected = {{"1", 1, 0, 1}, {"1.1", 2, 1, 1}, {"2.2", 2, 1, 2}};
    EXPECT_EQ(LoadedOutline(), expected);
}

TEST_F(TaskTableTest, BlankRowEndsTheTaskList) {
    for (int i = 0; i < 5; ++i) {
        project_.AddTask(kFirst + i, 1, "Task " + std::to_string(i));
    }
    project_.AddTask(kFirst + 6, 1, "Below the gap");
    Load();
    EXPECT_EQ(EngineTasks().taskCount, 5);
    EXPECT_EQ(Tasks_Last()->row, kFirst + 4);
    EXPECT_EQ(Tasks_ByRow(kFirst + 6), nullptr);
}

TEST_F(TaskTableTest, EmptyFirstRowGivesNoTasks) {
    project_.AddTask(kFirst + 1, 1, "Too low");
    Load();
    EXPECT_EQ(EngineTasks().taskCount, 0);
    EXPECT_EQ(Tasks_First(), nullptr);
    EXPECT_EQ(Tasks_Last(), nullptr);
}

TEST_F(TaskTableTest, LoadStopsAtTenThousandRows) {
    for (int i = 0; i < 10000; ++i) {
        project_.AddTask(kFirst + i, 1, "T");
    }
    // Row 10,001 is not loaded, but its deeper name still makes the last task a summary.
    project_.AddTask(kFirst + 10000, 2, "Beyond the limit");
    Load();
    EXPECT_EQ(EngineTasks().taskCount, 10000);
    EXPECT_EQ(Tasks_Last()->wbsNo, "10000");
    EXPECT_EQ(Tasks_Last()->isLeaf, 0);
    EXPECT_EQ(Tasks_ByRow(kFirst + 9998)->isLeaf, 1);
    EXPECT_EQ(EngineTasks().poolSize, 10000);
}

TEST_F(TaskTableTest, PooledRecordsAreReusedAcrossLoads) {
    for (int i = 0; i < 250; ++i) {
        project_.AddTask(kFirst + i, 1, "T");
    }
    Load();
    std::vector<const TaskRecord*> first;
    for (const TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        first.push_back(task);
    }
    ASSERT_EQ(first.size(), 250u);
    EXPECT_EQ(std::set<const TaskRecord*>(first.begin(), first.end()).size(), 250u);

    project_.wbs.cells.erase({kFirst + 3, TaskColumns::kFirstName});
    TaskTable_Load();
    EXPECT_EQ(EngineTasks().taskCount, 3);
    EXPECT_EQ(Tasks_ByRow(kFirst + 2), first[2]);
}

TEST_F(TaskTableTest, LookUpsByRowWbsAndCode) {
    project_.AddTask(kFirst + 0, 1, "Design");
    project_.AddTask(kFirst + 1, 2, "UX: wireframes");
    project_.AddTask(kFirst + 2, 2, "api-spec");
    project_.AddTask(kFirst + 3, 3, "Review#2");
    Load();
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        TaskRecord_ReadRow(*task);
    }
    EXPECT_EQ(Tasks_ByRow(kFirst + 1)->wbsNo, "1.1");
    EXPECT_EQ(Tasks_ByRow(kFirst - 1), nullptr);
    EXPECT_EQ(Tasks_ByRow(kFirst + 4), nullptr);
    EXPECT_EQ(Tasks_Next(*Tasks_Last()), nullptr);

    EXPECT_EQ(Tasks_ByWbs("1.2.1")->row, kFirst + 3);
    EXPECT_EQ(Tasks_ByWbs("1.2.1 "), nullptr);

    // The code is the name up to the first of ":|,_-#", compared without regard to case.
    EXPECT_EQ(Tasks_ByCode("ux")->row, kFirst + 1);
    EXPECT_EQ(Tasks_ByCode("API")->row, kFirst + 2);
    EXPECT_EQ(Tasks_ByCode("review")->row, kFirst + 3);
    EXPECT_EQ(Tasks_ByCode("api-spec"), nullptr);
    EXPECT_EQ(Tasks_Find("design")->row, kFirst);
    EXPECT_EQ(Tasks_Find("1.2")->row, kFirst + 2);
    EXPECT_EQ(Tasks_Find("9"), nullptr);

    EXPECT_EQ(Tasks_AncestorRows(kFirst + 3), "7,5,");
    EXPECT_EQ(Tasks_AncestorRows(kFirst + 2), "5,");
    EXPECT_EQ(Tasks_AncestorRows(kFirst), "");
    EXPECT_EQ(Tasks_AncestorRows(kFirst + 40), "");
}

TEST_F(TaskTableTest, WbsLevelCountsSeparatorsAndCommas) {
    ASSERT_TRUE(project_.Bind());
    EXPECT_EQ(WbsLevel("1"), 1);
    EXPECT_EQ(WbsLevel("1.2.3"), 3);
    EXPECT_EQ(WbsLevel("1,2"), 2);
    EXPECT_EQ(WbsLevel(""), 1);
}

TEST_F(TaskTableTest, DescendantIsAPlainPrefixOfTheWbsText) {
    TaskRecord parent, child, grandchild, lookalike;
    parent.wbsNo = "1";
    parent.level = 1;
    child.wbsNo = "1.2";
    child.level = 2;
    grandchild.wbsNo = "1.2.1";
    grandchild.level = 3;
    lookalike.wbsNo = "12";
    lookalike.level = 1;
    EXPECT_TRUE(IsDescendant(parent, grandchild));
    EXPECT_TRUE(IsDescendant(parent, lookalike));
    EXPECT_FALSE(IsDescendant(child, parent));
    EXPECT_TRUE(IsChild(parent, child));
    EXPECT_FALSE(IsChild(parent, grandchild));
}

// Rows of the two top-level groups; the second group's day is 2 April.
class ReadRowTest : public ::testing::Test {
  protected:
    void AddProject(double secondDayStart) {
        project_.AddCalendarDay(DateSerial(2024, 4, 1), TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
        project_.AddCalendarDay(DateSerial(2024, 4, 2), secondDayStart, secondDayStart + 0.375);
        project_.AddTask(kFirst + 0, 1, "Prepare");
        project_.AddTask(kFirst + 1, 1, "Launch");
        project_.AddTask(kFirst + 2, 2, "Go live");
        SetCell(kFirst + 2, TaskColumns::kType, std::string("MS"));
        SetCell(kFirst + 2, TaskColumns::kResource, std::string("Ops"));
        SetCell(kFirst + 2, TaskColumns::kPv, std::string("480"));
        SetCell(kFirst + 2, TaskColumns::kPlannedStart, TimeSerial(9, 0, 0));
        SetCell(kFirst + 2, TaskColumns::kPlannedEnd, TimeSerial(17, 0, 0));
        SetCell(kFirst + 2, TaskColumns::kPercent, std::string("40"));
        SetCell(kFirst + 2, TaskColumns::kPredecessors, std::string("1FS"));
    }

    void SetCell(int row, int column, sheethost::Value value) {
        testsupport::EngineWorkbook::SetCell(project_.wbs, row, column, std::move(value));
    }

    TaskRecord& ReadGoLive() {
        EXPECT_TRUE(project_.Bind());
        TaskTable_Load();
        TaskRecord& task = *Tasks_ByRow(kFirst + 2);
        TaskRecord_ReadRow(task);
        return task;
    }

    TaskWorkbook project_;
};

TEST_F(ReadRowTest, ReadsTheCellsOntoTheGroupsCalendarDay) {
    AddProject(TimeSerial(8, 0, 0));
    const TaskRecord& task = ReadGoLive();
    EXPECT_EQ(task.groupIndex, 2);
    EXPECT_EQ(BstrText(task.nameCell), "Go live");
    EXPECT_EQ(BstrText(task.typeCell), "MS");
    EXPECT_EQ(BstrText(task.resourceCell), "Ops");
    EXPECT_EQ(task.pvText, "480");
    EXPECT_EQ(task.percentText, "40");
    EXPECT_EQ(task.predecessors, "1FS");
    EXPECT_DOUBLE_EQ(task.plannedStart, DateSerial(2024, 4, 2) + TimeSerial(9, 0, 0));
    EXPECT_DOUBLE_EQ(task.plannedEnd, DateSerial(2024, 4, 2) + TimeSerial(17, 0, 0));
    EXPECT_EQ(task.actualStart, 0.0);
    EXPECT_EQ(task.actualEnd, 0.0);
}

TEST_F(ReadRowTest, TimesBeforeTheWorkingStartBelongToTheNextDay) {
    // A night shift from 22:00: 09:00 lies after midnight, 22:30 on the day itself.
    AddProject(TimeSerial(22, 0, 0));
    SetCell(kFirst + 2, TaskColumns::kPlannedEnd, TimeSerial(22, 30, 0));
    const TaskRecord& task = ReadGoLive();
    EXPECT_DOUBLE_EQ(task.plannedStart, DateSerial(2024, 4, 3) + TimeSerial(9, 0, 0));
    EXPECT_DOUBLE_EQ(task.plannedEnd, DateSerial(2024, 4, 2) + TimeSerial(22, 30, 0));
}

TEST_F(ReadRowTest, GroupsPastTheCalendarTakeItsLastDay) {
    AddProject(TimeSerial(8, 0, 0));
    project_.AddTask(kFirst + 3, 1, "Handover");
    SetCell(kFirst + 3, TaskColumns::kActualStart, TimeSerial(10, 0, 0));
    ASSERT_TRUE(project_.Bind());
    TaskTable_Load();
    TaskRecord& task = *Tasks_ByRow(kFirst + 3);
    EXPECT_EQ(task.groupIndex, 3);
    TaskRecord_ReadRow(task);
    EXPECT_DOUBLE_EQ(task.actualStart, DateSerial(2024, 4, 2) + TimeSerial(10, 0, 0));
}

TEST_F(ReadRowTest, WithoutCalendarDaysStartsAreUnset) {
    project_.AddTask(kFirst, 1, "Alone");
    SetCell(kFirst, TaskColumns::kPlannedStart, TimeSerial(9, 0, 0));
    SetCell(kFirst, TaskColumns::kActualStart, TimeSerial(9, 0, 0));
    ASSERT_TRUE(project_.Bind());
    TaskTable_Load();
    TaskRecord& task = *Tasks_First();
    TaskRecord_ReadRow(task);
    EXPECT_EQ(task.plannedStart, 0.0);
    EXPECT_EQ(task.actualStart, 0.0);
}

}  // namespace
