#include "calendar/task_tests.h"

#include <gtest/gtest.h>

#include "core/clock.h"
#include "values/values.h"
#include "wbs/task_table.h"

namespace {

TEST(TaskProgress, StartedCompleteAndActualDates) {
    TaskRecord task;
    task.percentText = " 12.9";
    EXPECT_TRUE(IsTaskStarted(task));
    task.percentText = "abc";
    EXPECT_FALSE(IsTaskStarted(task));
    task.actualStart = 45383.4;
    EXPECT_TRUE(IsTaskStarted(task));

    task.percentText = "99.9";
    EXPECT_FALSE(IsTaskComplete(task));
    task.actualEnd = 45383.5;  // an actual finish makes it complete whatever the percentage
    EXPECT_TRUE(IsTaskComplete(task));
    EXPECT_EQ(task.percentText, "100");

    task.plannedStart = 45383.375;
    task.plannedEnd = 45383.5;
    EXPECT_FALSE(ActualStartIsPlanned(task));
    EXPECT_TRUE(ActualFinishIsPlanned(task));
    EXPECT_FALSE(ActualDatesArePlanned(task));
    task.actualStart = 0;
    EXPECT_TRUE(ActualDatesArePlanned(task));
}

TEST(TaskProgress, HalvesOfThePlannedTime) {
    TaskRecord task;
    const double start = 45383 + values::TimeSerial(8, 0, 0);
    task.plannedStart = start;
    task.plannedEnd = start + values::TimeSerial(2, 0, 0);
    task.pvText = "121";  // half is 60.5 minutes; the date-add drops the half minute

    PinNow(start - 1e-9);
    EXPECT_FALSE(IsTaskInFirstHalf(task));
    PinNow(values::AddMinutes(start, 59));
    EXPECT_TRUE(IsTaskInFirstHalf(task));
    PinNow(values::AddMinutes(start, 60));
    EXPECT_FALSE(IsTaskInFirstHalf(task));
    EXPECT_TRUE(IsTaskInLastHalf(task));
    PinNow(task.plannedEnd);
    EXPECT_FALSE(IsTaskInLastHalf(task));
    task.pvText = "1e999";  // an absurd cell: the half reaches past any date
    PinNow(start);
    EXPECT_TRUE(IsTaskInLastHalf(task));
    PinNow(0);

    EXPECT_FALSE(IsTaskBehind(task));
    task.sv = -0.01;
    EXPECT_TRUE(IsTaskBehind(task));
    EXPECT_FALSE(TaskHasType(task));
    BstrSet(task.typeCell, OLESTR("M"));
    EXPECT_TRUE(TaskHasType(task));
}

TEST(TaskCells, NameHeadCutsAtTheFirstSeparator) {
    TaskRecord task;
    const std::pair<const OLECHAR*, const char*> cases[] = {
        {OLESTR("DES-01 Design"), "DES"}, {OLESTR("A1:x|y"), "A1"}, {OLESTR("a,b"), "a"},
        {OLESTR("pour_slab"), "pour"},    {OLESTR("#3 kick"), ""},  {OLESTR("x|y"), "x"},
        {OLESTR("Kick off"), "Kick off"},
    };
    for (const auto& [name, head] : cases) {
        BstrSet(task.nameCell, name);
        EXPECT_EQ(TaskNameHead(task), head);
    }
}

TEST(TaskCells, CycleCodesAreUpperCaseWOrM) {
    TaskRecord task;
    const std::tuple<const OLECHAR*, bool, const char*, std::int64_t> cases[] = {
        {OLESTR("W"), true, "W", 1},      {OLESTR("M3"), true, "M", 3},
        {OLESTR("W&H10"), true, "W", 16}, {OLESTR("w2"), false, "", 1},
        {OLESTR("Alice"), false, "", 1},  {OLESTR(" W2"), false, "", 1},
    };
    for (const auto& [resource, cycle, unit, count] : cases) {
        BstrSet(task.resourceCell, resource);
        EXPECT_EQ(ParseTaskCycle(task), cycle);
        EXPECT_EQ(task.cycleUnit, unit);
        EXPECT_EQ(task.cycleCount, count);
    }
}

}  // namespace
