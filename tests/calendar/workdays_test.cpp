#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "settings/settings.h"
#include "values/values.h"

namespace {

using values::AddMinutes;

TEST(Workdays, CountAndAddWholeDaySteps) {
    std::int64_t adjust = 7;
    EXPECT_EQ(CountWorkdays(5, 5, nullptr, adjust), 1);
    EXPECT_EQ(CountWorkdays(6, 5, nullptr, adjust), 0);
    EXPECT_EQ(CountWorkdays(1.5, 3.2, nullptr, adjust), 2);  // 1.5 and 2.5
    // Weekends are working days too: the holiday columns feed only the calendar grid.
    EXPECT_EQ(CountWorkdays(45387, 45390, nullptr, adjust), 4);
    EXPECT_EQ(adjust, 7);
    EXPECT_EQ(CountWorkdays(45383, INFINITY, nullptr, adjust), 0);  // would never end

    const double d = 45383.375;
    EXPECT_EQ(AddWorkdays(d, 0, 1, nullptr), d);
    EXPECT_EQ(AddWorkdays(d, 5, 1, nullptr), d + 4);
    EXPECT_EQ(AddWorkdays(d, 3, -1, nullptr), d - 2);
    EXPECT_EQ(AddWorkdays(d, 5, 0, nullptr), d);  // would never end
}

// The project runs from 1 April 08:00 to 3 April 17:00 (3420 minutes); the chart starts at 20.
class DateToColumnTest : public ::testing::Test {
  protected:
    void SetUp() override {
        CreateSettingsRecord();
        CreateCalendarSettings();
        EngineSettings().projectStart = start_;
        EngineSettings().projectEnd = end_;
        EngineSettings().calendarFirstColNo = 20;
        EngineCalendarSettings().CSCalendarUnit = 60;
    }
    void TearDown() override {
        FreeSettingsRecord();
        FreeCalendarSettings();
    }

    const double start_ = 45383 + values::TimeSerial(8, 0, 0);
    const double end_ = 45385 + values::TimeSerial(17, 0, 0);
};

TEST_F(DateToColumnTest, SplitsTheAxisAtEveryUnitAndClampsToTheProject) {
    EXPECT_EQ(DateToColumn(AddMinutes(start_, 59)), 20);
    EXPECT_EQ(DateToColumn(AddMinutes(start_, 60)), 21);
    EXPECT_EQ(DateToColumn(start_ + 1.0 / 24.0 - 1e-10), 21);  // a hair short is the full hour
    EXPECT_EQ(DateToColumn(start_ + 1.0), 44);                 // nights count
    EXPECT_EQ(DateToColumn(AddMinutes(start_, -1)), 20);
    EXPECT_EQ(DateToColumn(end_ + 30.0), 20 + 57);
    EXPECT_EQ(DateToColumn(std::nan("")), 20 + 57);
}

TEST_F(DateToColumnTest, OtherUnitsAndAnInvertedProject) {
    EngineCalendarSettings().CSCalendarUnit = 1440;
    EXPECT_EQ(DateToColumn(end_), 22);
    EngineCalendarSettings().CSCalendarUnit = -60;
    EXPECT_EQ(DateToColumn(AddMinutes(start_, 150)), 18);  // truncated toward zero
    EngineCalendarSettings().CSCalendarUnit = 0;
    EXPECT_EQ(DateToColumn(end_), 20);
    // The end is applied first, so a project ending before it starts maps all to its start.
    EngineCalendarSettings().CSCalendarUnit = 60;
    EngineSettings().projectEnd = start_ - 1.0;
    EXPECT_EQ(DateToColumn(start_ + 0.5), 20);
}

}  // namespace
