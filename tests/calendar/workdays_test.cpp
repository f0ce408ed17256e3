#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "calendar/calendar.h"
#include "engine/engine_state.h"
#include "settings/settings.h"
#include "values/values.h"

namespace {

using values::DateSerial;
using values::TimeSerial;

TEST(CountWorkdays, CountsWholeDayStepsThatDoNotPassTheEnd) {
    std::int64_t adjust = 7;
    EXPECT_EQ(CountWorkdays(5, 5, nullptr, adjust), 1);
    EXPECT_EQ(CountWorkdays(6, 5, nullptr, adjust), 0);
    EXPECT_EQ(CountWorkdays(1.5, 3.2, nullptr, adjust), 2);  // 1.5 and 2.5
    EXPECT_EQ(CountWorkdays(1.5, 3.5, nullptr, adjust), 3);
    const double april1 = DateSerial(2024, 4, 1);
    EXPECT_EQ(CountWorkdays(april1, DateSerial(2024, 4, 30), nullptr, adjust), 30);
    // Weekends are working days too: the holiday columns feed only the calendar grid.
    EXPECT_EQ(CountWorkdays(DateSerial(2024, 4, 5), DateSerial(2024, 4, 8), nullptr, adjust), 4);
    EXPECT_EQ(adjust, 7);  // no holidays: the adjustment is left alone
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(CountWorkdays(april1, inf, nullptr, adjust), 0);
    EXPECT_EQ(CountWorkdays(april1, std::nan(""), nullptr, adjust), 0);
}

TEST(AddWorkdays, CountsTheStartAsTheFirstDay) {
    const double d = DateSerial(2024, 4, 1) + TimeSerial(9, 0, 0);
    EXPECT_EQ(AddWorkdays(d, 0, 1, nullptr), d);
    EXPECT_EQ(AddWorkdays(d, 1, 1, nullptr), d);
    EXPECT_EQ(AddWorkdays(d, 5, 1, nullptr), d + 4);
    EXPECT_EQ(AddWorkdays(d, 3, -1, nullptr), d - 2);
    EXPECT_EQ(AddWorkdays(d, -4, -1, nullptr), d);
    EXPECT_EQ(AddWorkdays(d, 5, 0, nullptr), d);  // would never end
}

// The chart axis of the engine's records: one column per unit of minutes from the project start.
class DateToColumnTest : public ::testing::Test {
  protected:
    void SetUp() override {
        Engine().settings = std::make_unique<SettingsRecord>();
        Engine().calendarSettings = std::make_unique<CalendarSettings>();
        EngineSettings().projectStart = start_;
        EngineSettings().projectEnd = end_;
        EngineSettings().calendarFirstColNo = 20;
    }
    void TearDown() override {
        Engine().settings.reset();
        Engine().calendarSettings.reset();
    }
    void SetUnit(std::int64_t minutes) { EngineCalendarSettings().CSCalendarUnit = minutes; }

    // 1 April 08:00 to 3 April 17:00.
    const double start_ = DateSerial(2024, 4, 1) + TimeSerial(8, 0, 0);
    const double end_ = DateSerial(2024, 4, 3) + TimeSerial(17, 0, 0);
};

TEST_F(DateToColumnTest, SplitsTheAxisAtEveryUnit) {
    SetUnit(60);
    EXPECT_EQ(DateToColumn(start_), 20);
    EXPECT_EQ(DateToColumn(values::AddMinutes(start_, 59)), 20);
    EXPECT_EQ(DateToColumn(values::AddMinutes(start_, 60)), 21);
    // Fractions that sum to a hair below the hour still count as the full hour.
    EXPECT_EQ(DateToColumn(start_ + 1.0 / 24.0 - 1e-10), 21);
    // Nights count: 2 April 08:00 is 24 hours on.
    EXPECT_EQ(DateToColumn(start_ + 1.0), 44);
}

TEST_F(DateToColumnTest, ClampsTimesOutsideTheProject) {
    SetUnit(60);
    EXPECT_EQ(DateToColumn(values::AddMinutes(start_, -1)), 20);
    EXPECT_EQ(DateToColumn(0.0), 20);
    EXPECT_EQ(DateToColumn(end_), 20 + 3420 / 60);
    EXPECT_EQ(DateToColumn(end_ + 30.0), 20 + 3420 / 60);
    EXPECT_EQ(DateToColumn(std::nan("")), 20 + 3420 / 60);  // not after the end: clamped to it
}

TEST_F(DateToColumnTest, DaysAndNegativeUnitsAndAZeroUnit) {
    SetUnit(1440);
    EXPECT_EQ(DateToColumn(end_), 22);  // 3420 minutes are two whole days
    SetUnit(-60);
    EXPECT_EQ(DateToColumn(values::AddMinutes(start_, 150)), 18);  // truncated toward zero
    SetUnit(0);
    EXPECT_EQ(DateToColumn(end_), 20);
}

TEST_F(DateToColumnTest, AProjectEndingBeforeItsStartMapsToTheStart) {
    SetUnit(60);
    EngineSettings().projectEnd = start_ - 1.0;
    EXPECT_EQ(DateToColumn(start_ + 0.5), 20);
}

}  // namespace
