// The WBS filter: the modes of the settings' filter cell, the summaries and linked tasks kept
// visible on request, the predecessor texts stripped of every F and S, and the list kept as the
// filter in force.
#include "wbs/filter.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "core/engine_state.h"
#include "engine/exports.h"
#include "settings/settings.h"
#include "support/project_json.h"
#include "support/times_of_day.h"

namespace {

using testsupport::k0800;
using testsupport::k0900;
using testsupport::k1000;
using testsupport::k1200;
using testsupport::k1300;
using testsupport::k1400;
using testsupport::k1500;
using testsupport::k1600;

using testsupport::ProjectJson;

class FilterTest : public ::testing::Test {
  protected:
    // Runs the filter with `setting` in the settings' filter cell; the task table is loaded by an
    // update first, as the workbook's users run it.
    void Filter(const std::string& setting) {
        EngineSettingsSheet().RangeOf(kFilterCell).SetValue(setting);
        kpWBSFilter();
    }

    std::set<int> VisibleRows(int first, int last) const {
        std::set<int> rows;
        for (int row = first; row <= last; ++row) {
            if (!project.RowHidden(row)) rows.insert(row);
        }
        return rows;
    }

    ProjectJson project;
};

// Two groups; task codes "A1", "B2", "3", "FIX", "IX"; resources AL and BO.
class LinkedProject : public FilterTest {
  protected:
    LinkedProject() {
        project.Task(12, 1, "Plan");
        project.Task(13, 2, "A1: Design",
                     {{"C", "AL"}, {"P", k0800}, {"D", k0900}, {"E", k0800}, {"X", k0900}});
        project.Task(14, 2, "B2: Build", {{"C", "BO"}, {"P", k0900}, {"D", k1000}, {"H", "A1"}});
        project.Task(15, 2, "3: Deliver", {{"C", "AL"}, {"P", k0900}, {"D", k1000}});
        project.Task(16, 1, "Ship");
        project.Task(17, 2, "C1: Pack", {{"C", "BO"}, {"P", k0800}, {"D", k0900}, {"H", "3FS"}});
        project.Task(18, 2, "FIX: Check", {{"C", "AL"}, {"P", k0800}, {"D", k0900}});
        project.Task(19, 2, "D1: Test", {{"C", "AL"}, {"P", k0900}, {"D", k1000}, {"H", "FIX"}});
        project.Task(20, 2, "IX: Inspect", {{"C", "AL"}, {"P", k0800}, {"D", k0900}});
    }
};

// Mode 0 shows every row and clears the filter; an unknown mode hides every task row; a text
// without a comma is no filter.
TEST_F(LinkedProject, NoFilterAndUnknownModes) {
    project.HideRow(14);
    project.Bind();
    kpUpdateWBS();
    ASSERT_EQ(EngineSettings().filterRows, ",12,,13,,15,,16,,17,,18,,19,,20,");

    Filter("0,");
    EXPECT_EQ(VisibleRows(12, 20).size(), 9u);
    EXPECT_EQ(EngineSettings().filterRows, "");

    Filter("99,");
    EXPECT_EQ(EngineSettings().filterRows, ",");
    EXPECT_TRUE(VisibleRows(12, 20).empty());

    Filter("5");
    EXPECT_EQ(VisibleRows(12, 20).size(), 9u);
}

TEST_F(LinkedProject, CompletedTasksWithTheirSummaries) {
    project.Setting("WSFilterOptionShowSummary", 1);
    project.Bind();
    kpUpdateWBS();

    Filter("5,");

    EXPECT_EQ(EngineSettings().filterRows, ",13,12,");
    EXPECT_EQ(VisibleRows(12, 20), (std::set<int>{12, 13}));
}

// "3FS" names task 3 with its link type; the filter strips every F and S, so "FIX" is looked up
// as "IX" and finds the task IX, not FIX.
TEST_F(LinkedProject, LinkedTasksStayVisibleThroughPredecessorTextsWithoutFAndS) {
    project.Setting("WSFilterOptionShowDependence", 1);
    project.Bind();
    kpUpdateWBS();

    Filter("1,BO,");
    EXPECT_EQ(EngineSettings().filterRows, ",14,13,17,15,");
    EXPECT_EQ(VisibleRows(12, 20), (std::set<int>{13, 14, 15, 17}));

    Filter("7,");
    EXPECT_EQ(VisibleRows(12, 20), (std::set<int>{13, 14, 15, 17, 19, 20}));
    // A task shows the tasks that name it as their predecessor, too.
    EXPECT_EQ(DependentRows(13), "14,");
    EXPECT_EQ(DependentRows(15), "17,");
    EXPECT_EQ(DependentRows(18), "");
    EXPECT_EQ(DependentRows(20), "19,");
}

TEST_F(LinkedProject, RangesOfDatesAndOfNamedColumns) {
    project.Bind();
    kpUpdateWBS();
    const std::string day = std::to_string(static_cast<int>(ProjectJson::kDay1));

    // Planned spans overlapping 09:30..09:45 of the first day: the tasks of 09:00-10:00 in the
    // first group (the second group's times are on the second day).
    Filter("2,1," + day + ".3958," + day + ".40625");
    EXPECT_EQ(VisibleRows(12, 20), (std::set<int>{14, 15}));
    // Actual dates: only Design has some.
    Filter("2,2," + day + "," + day + ".99");
    EXPECT_EQ(VisibleRows(12, 20), (std::set<int>{13}));
    // A named column: planned work of 60 minutes from 50 up (the update wrote it for every task).
    Filter("2,PVByTask,50,0");
    EXPECT_EQ(VisibleRows(12, 20), (std::set<int>{13, 14, 15, 17, 18, 19, 20}));
    Filter("2,PVByTask,0,50");
    EXPECT_EQ(VisibleRows(12, 20), (std::set<int>{}));
    // Any other number as the key matches nothing.
    Filter("2,3,0," + day + ".99");
    EXPECT_EQ(VisibleRows(12, 20), (std::set<int>{}));
}

// The filter kept in force is hidden again after an update has shown every row to write them.
TEST_F(LinkedProject, TheUpdateKeepsTheFilter) {
    project.Bind();
    kpUpdateWBS();
    Filter("1,AL,");
    const std::set<int> filtered = VisibleRows(12, 20);
    ASSERT_EQ(filtered, (std::set<int>{13, 15, 18, 19, 20}));

    kpUpdateWBS();
    EXPECT_EQ(VisibleRows(12, 20), filtered);
    kpWBSReschedule();
    EXPECT_EQ(VisibleRows(12, 20), filtered);
}

TEST_F(FilterTest, TheSummarySkeleton) {
    project.Task(12, 1, "Plan");
    project.Task(13, 2, "Phase");
    project.Task(14, 3, "Design", {{"C", "AL"}});
    project.Task(15, 1, "Review", {{"C", "AL"}});
    project.Setting("WSFilterOptionShowSummary", 1);
    project.Bind();
    kpUpdateWBS();

    Filter("6,1");
    EXPECT_EQ(VisibleRows(12, 15), (std::set<int>{12, 13, 15}));
    Filter("6,2");
    EXPECT_EQ(VisibleRows(12, 15), (std::set<int>{12, 15}));
}

// "Now" is noon. The four earned-value modes: over cost (CPI below 1), ahead of schedule (SPI
// above 1, or earned value before any is planned), behind schedule (SPI below 1), and not complete
// although some value is planned.
TEST_F(FilterTest, EarnedValueModes) {
    project.Task(12, 1, "Plan");
    // 480 planned minutes, 240 of them by noon; 25 % done is 120 earned at a cost of 100.
    project.Task(13, 2, "Behind",
                 {{"C", "AL"}, {"P", k0800}, {"D", k1600}, {"J", 25}, {"G", 100}, {"E", k0800}});
    // 120 planned by noon, 180 earned at a cost of 300.
    project.Task(14, 2, "Ahead",
                 {{"C", "AL"}, {"P", k1000}, {"D", k1400}, {"J", 75}, {"G", 300}, {"E", k1000}});
    // Starts at noon: nothing planned yet, 12 earned.
    project.Task(15, 2, "Early", {{"C", "BO"}, {"P", k1200}, {"D", k1300}, {"J", 20}});
    // Starts later: nothing planned, nothing earned.
    project.Task(16, 2, "Later", {{"C", "BO"}, {"P", k1400}, {"D", k1500}});
    project.Bind();
    kpUpdateWBS();

    Filter("4,");
    EXPECT_EQ(VisibleRows(12, 16), (std::set<int>{13, 14}));
    Filter("8,");
    EXPECT_EQ(VisibleRows(12, 16), (std::set<int>{14}));
    Filter("9,");
    EXPECT_EQ(VisibleRows(12, 16), (std::set<int>{14, 15}));
    Filter("10,");
    EXPECT_EQ(VisibleRows(12, 16), (std::set<int>{13}));
    // Halves of the planned work: Behind's first half ends at noon, when Early's begins.
    Filter("11,");
    EXPECT_EQ(VisibleRows(12, 16), (std::set<int>{15}));
    Filter("12,");
    EXPECT_EQ(VisibleRows(12, 16), (std::set<int>{13, 14}));
}

TEST_F(FilterTest, TypesAndRecurringTasks) {
    project.Task(12, 1, "Plan");
    project.Task(13, 2, "Kick-off", {{"B", "◇"}, {"C", "AL"}});
    project.Task(14, 2, "Weekly check", {{"B", "◇"}, {"C", "W1"}});
    project.Task(15, 2, "Monthly report", {{"C", "M"}});
    project.Task(16, 2, "Design", {{"C", "AL"}});
    project.Bind();
    kpUpdateWBS();

    Filter("3,");
    EXPECT_EQ(VisibleRows(12, 16), (std::set<int>{13}));
    Filter("13,");
    EXPECT_EQ(VisibleRows(12, 16), (std::set<int>{14, 15}));
}

}  // namespace
