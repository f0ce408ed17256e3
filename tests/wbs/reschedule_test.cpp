// Rescheduling: not-started tasks placed one after another per resource from the group day's
// working start (08:00), started tasks kept, every resource free again at the next top-level
// group, and only times of day written into the planned cells.
#include <gtest/gtest.h>

#include <string>

#include "engine/exports.h"
#include "support/project_json.h"
#include "values/values.h"

namespace {

using testsupport::ProjectJson;

double Hours(double hours) {
    return hours / 24;
}

TEST(Reschedule, PlacesTasksPerResourceWithinTheirGroupsDay) {
    ProjectJson project;
    project.Task(12, 1, "Day one");
    project.Task(13, 2, "Design", {{"C", "AL"}, {"F", 60}});
    project.Task(14, 2, "Review", {{"C", "AL"}, {"F", 30}});
    // Fractions of a minute are dropped.
    project.Task(15, 2, "Build", {{"C", "AL"}, {"F", 90.9}});
    // Without work: neither placed nor keeping Bob busy.
    project.Task(16, 2, "Idle", {{"C", "BO"}, {"F", 0}});
    // Complete before its planned end: Bob is free at its actual end.
    project.Task(17, 2, "Done early",
                 {{"C", "BO"},
                  {"F", 120},
                  {"P", Hours(8)},
                  {"D", Hours(10)},
                  {"E", Hours(8)},
                  {"X", Hours(9)}});
    project.Task(18, 2, "Next", {{"C", "BO"}, {"F", 30}});
    // The second group's day: Alice starts it free.
    project.Task(19, 1, "Day two");
    project.Task(20, 2, "Fresh", {{"C", "AL"}, {"F", 30}});
    // Running: it stays, and Alice goes on from its planned end.
    project.Task(21, 2, "Running",
                 {{"C", "AL"}, {"F", 60}, {"P", Hours(9)}, {"D", Hours(10)}, {"J", 50}});
    // Past midnight only the time of day is written; the reader takes it to the next day.
    project.Task(22, 2, "Long", {{"C", "AL"}, {"F", 900}});
    project.Task(23, 2, "Late", {{"C", "AL"}, {"F", 60}});
    // Bob's first task of the day keeps its own start.
    project.Task(24, 2, "Fixed", {{"C", "BO"}, {"F", 60}, {"P", Hours(10)}, {"D", Hours(11)}});
    project.Task(25, 2, "After", {{"C", "BO"}, {"F", 30}});
    project.Bind();

    kpUpdateWBS();
    EXPECT_EQ(project.Text("P13"), "") << "a plain update places nothing";

    kpWBSReschedule();

    const struct {
        int row;
        double start, end;
    } placed[] = {{13, 8, 9},   {14, 9, 9.5}, {15, 9.5, 11}, {17, 8, 10},
                  {18, 9, 9.5}, {20, 8, 8.5}, {21, 9, 10},   {22, 10, 1},
                  {23, 1, 2},   {24, 10, 11}, {25, 11, 11.5}};
    for (const auto& task : placed) {
        const std::string row = std::to_string(task.row);
        EXPECT_NEAR(project.Number("P" + row), Hours(task.start), 1e-9) << "row " << row;
        EXPECT_NEAR(project.Number("D" + row), Hours(task.end), 1e-9) << "row " << row;
    }
    EXPECT_EQ(project.Text("P16"), "");
    // The time of day is taken from the full date serial.
    const double end = values::AddMinutes(ProjectJson::kDay1 + Hours(8), 60);
    EXPECT_EQ(project.Text("D13"), values::NumberText(end - values::Fix(end)));
    // The update after each placement writes the work of the new dates, over midnight too.
    EXPECT_EQ(project.Text("F15"), "90");
    EXPECT_EQ(project.Text("F22"), "900");

    const std::string once = project.DumpWithoutShapeIds();
    kpWBSReschedule();
    EXPECT_EQ(project.DumpWithoutShapeIds(), once) << "a second run changes nothing";
}

}  // namespace
