#include "calendar/task_tests.h"

#include <gtest/gtest.h>

#include "engine/clock.h"
#include "values/values.h"
#include "wbs/task_table.h"

namespace {

using values::DateSerial;
using values::TimeSerial;

TEST(TaskProgress, StartedAndComplete) {
    TaskRecord task;
    EXPECT_FALSE(IsTaskStarted(task));
    task.percentText = " 12.9";
    EXPECT_TRUE(IsTaskStarted(task));
    task.percentText = "abc";
    EXPECT_FALSE(IsTaskStarted(task));
    task.actualStart = DateSerial(2024, 4, 1);
    EXPECT_TRUE(IsTaskStarted(task));

    task.percentText = "99.9";
    EXPECT_FALSE(IsTaskComplete(task));
    task.percentText = "100";
    EXPECT_TRUE(IsTaskComplete(task));
    // An actual finish makes the task complete whatever its percentage said.
    task.percentText = "40";
    task.actualEnd = DateSerial(2024, 4, 1) + TimeSerial(12, 0, 0);
    EXPECT_TRUE(IsTaskComplete(task));
    EXPECT_EQ(task.percentText, "100");
}

TEST(TaskProgress, ActualDatesAgainstPlan) {
    TaskRecord task;
    task.plannedStart = 45383.375;
    task.plannedEnd = 45383.5;
    EXPECT_TRUE(ActualDatesArePlanned(task));  // nothing actual yet
    task.actualStart = 45383.375;
    EXPECT_TRUE(ActualStartIsPlanned(task));
    task.actualEnd = 45383.625;
    EXPECT_FALSE(ActualFinishIsPlanned(task));
    EXPECT_FALSE(ActualDatesArePlanned(task));
    task.actualEnd = 45383.5;
    task.actualStart = 45383.4;
    EXPECT_FALSE(ActualStartIsPlanned(task));
    EXPECT_TRUE(ActualFinishIsPlanned(task));
}

TEST(TaskProgress, HalvesOfThePlannedTime) {
    TaskRecord task;
    const double start = DateSerial(2024, 4, 1) + TimeSerial(8, 0, 0);
    task.plannedStart = start;
    task.plannedEnd = start + TimeSerial(2, 0, 0);
    task.pvText = "121";  // half is 60.5 minutes; the date-add drops the half minute
    auto at = [](double serial) { PinNow(serial); };

    at(start - 1e-9);  // a hair before the start is not yet in the task
    EXPECT_FALSE(IsTaskInFirstHalf(task));
    at(start);
    EXPECT_TRUE(IsTaskInFirstHalf(task));
    at(values::AddMinutes(start, 59));
    EXPECT_TRUE(IsTaskInFirstHalf(task));
    at(values::AddMinutes(start, 60));
    EXPECT_FALSE(IsTaskInFirstHalf(task));
    EXPECT_TRUE(IsTaskInLastHalf(task));
    at(task.plannedEnd);
    EXPECT_FALSE(IsTaskInLastHalf(task));
    at(values::AddMinutes(task.plannedEnd, -59));
    EXPECT_TRUE(IsTaskInLastHalf(task));
    task.pvText = "1e999";  // an absurd cell: the half reaches past any date
    EXPECT_TRUE(IsTaskInFirstHalf(task));
    EXPECT_TRUE(IsTaskInLastHalf(task));
    PinNow(0);
}

TEST(TaskProgress, BehindAndTyped) {
    TaskRecord task;
    EXPECT_FALSE(IsTaskBehind(task));
    task.sv = -0.01;
    EXPECT_TRUE(IsTaskBehind(task));
    EXPECT_FALSE(TaskHasType(task));
    BstrSet(task.typeCell, OLESTR("M"));
    EXPECT_TRUE(TaskHasType(task));
}

TEST(TaskNameHead, CutsAtTheFirstSeparator) {
    TaskRecord task;
    const std::pair<const OLECHAR*, const char*> cases[] = {
        {OLESTR("DES-01 Design review"), "DES"},
        {OLESTR("A1:setup|x"), "A1"},
        {OLESTR("x|y"), "x"},
        {OLESTR("a,b"), "a"},
        {OLESTR("pour_slab"), "pour"},
        {OLESTR("#3 kick-off"), ""},
        {OLESTR("Kick off meeting"), "Kick off meeting"},
        {OLESTR(""), ""},
    };
    for (const auto& [name, head] : cases) {
        BstrSet(task.nameCell, name);
        EXPECT_EQ(TaskNameHead(task), head);
    }
}

TEST(ParseTaskCycle, ReadsUpperCaseWeeklyAndMonthlyCodes) {
    TaskRecord task;
    BstrSet(task.resourceCell, OLESTR("W"));
    EXPECT_TRUE(ParseTaskCycle(task));
    EXPECT_EQ(task.cycleUnit, "W");
    EXPECT_EQ(task.cycleCount, 1);

    BstrSet(task.resourceCell, OLESTR("M3"));
    EXPECT_TRUE(ParseTaskCycle(task));
    EXPECT_EQ(task.cycleUnit, "M");
    EXPECT_EQ(task.cycleCount, 3);

    BstrSet(task.resourceCell, OLESTR("W&H10"));
    EXPECT_TRUE(ParseTaskCycle(task));
    EXPECT_EQ(task.cycleCount, 16);

    for (const OLECHAR* ordinary : {OLESTR("w2"), OLESTR("Alice"), OLESTR(""), OLESTR(" W2")}) {
        BstrSet(task.resourceCell, ordinary);
        EXPECT_FALSE(ParseTaskCycle(task));
        EXPECT_EQ(task.cycleUnit, "");
        EXPECT_EQ(task.cycleCount, 1);
    }
}

}  // namespace
