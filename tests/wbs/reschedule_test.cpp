// Rescheduling: not-started tasks placed one after another per resource from the group day's
// working start (08:00 here), started tasks kept where they are, every resource free again at the
// next top-level group, and only times of day written into the planned cells.
#include <gtest/gtest.h>

#include <string>

#include "engine/exports.h"
#include "support/project_json.h"
#include "values/values.h"

namespace {

using testsupport::ProjectJson;

constexpr double kMinute = 1.0 / 1440;
constexpr double k0800 = 8.0 / 24;
constexpr double k0900 = 9.0 / 24;
constexpr double k0930 = 9.5 / 24;
constexpr double k1000 = 10.0 / 24;
constexpr double k1100 = 11.0 / 24;

class Reschedule : public ::testing::Test {
  protected:
    // The planned start and end cells of a row, as times of day.
    void ExpectPlanned(int row, double start, double end) {
        const std::string number = std::to_string(row);
        EXPECT_NEAR(project.Number("P" + number), start, 1e-9) << "row " << row;
        EXPECT_NEAR(project.Number("D" + number), end, 1e-9) << "row " << row;
    }

    ProjectJson project;
};

TEST_F(Reschedule, TasksOfOneResourceFollowEachOther) {
    project.Task(12, 1, "Plan");
    project.Task(13, 2, "Design", {{"C", "AL"}, {"F", 60}});
    project.Task(14, 2, "Review", {{"C", "AL"}, {"F", 30}});
    // Another resource starts at the day's start too.
    project.Task(15, 2, "Order", {{"C", "BO"}, {"F", 45}});
    project.Task(16, 2, "Build", {{"C", "AL"}, {"F", 90}});
    project.Bind();

    kpWBSReschedule();

    ExpectPlanned(13, k0800, k0900);
    ExpectPlanned(14, k0900, k0930);
    ExpectPlanned(15, k0800, k0800 + 45 * kMinute);
    ExpectPlanned(16, k0930, k1100);
    // The cells hold the time of day taken from the full date serial, as text the host reads back.
    const double end = values::AddMinutes(ProjectJson::kDay1 + k0800, 60);
    EXPECT_EQ(project.Text("D13"), values::NumberText(end - values::Fix(end)));
    // The update after the placement writes the work of the new dates; a second run changes
    // nothing.
    EXPECT_EQ(project.Text("F16"), "90");
    const std::string once = project.DumpWithoutShapeIds();
    kpWBSReschedule();
    EXPECT_EQ(project.DumpWithoutShapeIds(), once);
}

TEST_F(Reschedule, APlainUpdatePlacesNothing) {
    project.Task(12, 1, "Plan");
    project.Task(13, 2, "Design", {{"C", "AL"}, {"F", 60}});
    project.Task(14, 2, "Review", {{"C", "AL"}, {"F", 30}});
    project.Bind();

    kpUpdateWBS();

    EXPECT_EQ(project.Text("P13"), "");
    EXPECT_EQ(project.Text("P14"), "");
}

// Fractions of a minute are dropped; work of 0 or none places nothing and keeps the resource free.
TEST_F(Reschedule, WholeMinutesOfPositiveWorkOnly) {
    project.Task(12, 1, "Plan");
    project.Task(13, 2, "Design", {{"C", "AL"}, {"F", 90.9}});
    project.Task(14, 2, "Idle", {{"C", "BO"}});
    project.Task(15, 2, "Nothing", {{"C", "BO"}, {"F", 0}});
    project.Task(16, 2, "Order", {{"C", "BO"}, {"F", 30}});
    project.Bind();

    kpWBSReschedule();

    ExpectPlanned(13, k0800, k0930);
    EXPECT_EQ(project.Text("P14"), "");
    EXPECT_EQ(project.Text("P15"), "");
    ExpectPlanned(16, k0800, k0800 + 30 * kMinute);
}

// A started task keeps its dates and frees its resource at its actual end once complete (here
// before its planned end), at its planned end while running. A not-started task that has a start
// of its own keeps it when it is its resource's first.
TEST_F(Reschedule, StartedTasksAndOwnStartsStay) {
    project.Task(12, 1, "Plan");
    project.Task(13, 2, "Done early",
                 {{"C", "AL"}, {"F", 120}, {"P", k0800}, {"D", k1000}, {"E", k0800}, {"X", k0900}});
    project.Task(14, 2, "Next", {{"C", "AL"}, {"F", 30}});
    project.Task(15, 2, "Running", {{"C", "BO"}, {"F", 60}, {"P", k0900}, {"D", k1000}, {"J", 50}});
    project.Task(16, 2, "After", {{"C", "BO"}, {"F", 60}});
    project.Bind();

    kpWBSReschedule();

    ExpectPlanned(13, k0800, k1000);
    ExpectPlanned(14, k0900, k0930);
    ExpectPlanned(15, k0900, k1000);
    ExpectPlanned(16, k1000, k1100);
}

TEST_F(Reschedule, ATaskWithItsOwnStartLeadsItsResource) {
    project.Task(12, 1, "Plan");
    project.Task(13, 2, "Fixed", {{"C", "AL"}, {"F", 60}, {"P", k1000}, {"D", k1100}});
    project.Task(14, 2, "Then", {{"C", "AL"}, {"F", 30}});
    project.Bind();

    kpWBSReschedule();

    ExpectPlanned(13, k1000, k1100);
    ExpectPlanned(14, k1100, k1100 + 30 * kMinute);
}

// Each top-level group is the next calendar day, and every resource starts it free: Alice's
// second-day task begins at 08:00, not after her first-day work. The reader puts it on day 2.
TEST_F(Reschedule, ResourcesAreFreeAgainAtTheNextGroup) {
    project.Task(12, 1, "Day one");
    project.Task(13, 2, "Design", {{"C", "AL"}, {"F", 60}});
    project.Task(14, 1, "Day two");
    project.Task(15, 2, "Build", {{"C", "AL"}, {"F", 30}});
    project.Bind();

    kpWBSReschedule();

    ExpectPlanned(13, k0800, k0900);
    ExpectPlanned(15, k0800, k0800 + 30 * kMinute);
    // The summary of day two rolls its child up.
    EXPECT_NEAR(project.Number("P14"), k0800, 1e-9);
}

// A task placed past midnight is written as its time after midnight; the reader's rule (earlier
// than the working start is the next day) keeps its work right.
TEST_F(Reschedule, PastMidnightKeepsTheTimeOfDay) {
    project.Task(12, 1, "Night");
    project.Task(13, 2, "Long", {{"C", "AL"}, {"F", 900}});
    project.Task(14, 2, "After", {{"C", "AL"}, {"F", 90}});
    project.Bind();

    kpWBSReschedule();

    ExpectPlanned(13, k0800, 23.0 / 24);
    ExpectPlanned(14, 23.0 / 24, 0.5 / 24);
    EXPECT_EQ(project.Text("F14"), "90");
}

}  // namespace
