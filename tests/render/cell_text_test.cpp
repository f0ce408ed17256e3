// The texts cells show, through their number formats.
#include "render/cell_text.h"

#include <gtest/gtest.h>

#include <string>

#include "values/values.h"

namespace {

using render::ShownText;
using sheethost::Value;

// Friday 5 April 2024, 08:05:09.
const double kMoment = values::DateSerial(2024, 4, 5) + values::TimeSerial(8, 5, 9);

TEST(ShownText, DatesAndTimesTellMinutesFromMonthsByTheirNeighbours) {
    EXPECT_EQ(ShownText(kMoment, "yyyy/mm/dd"), "2024/04/05");
    EXPECT_EQ(ShownText(kMoment, "hh:mm"), "08:05");
    EXPECT_EQ(ShownText(kMoment, "h:mm:ss"), "8:05:09");
    EXPECT_EQ(ShownText(kMoment, "m/d/yy h:mm"), "4/5/24 8:05");
    EXPECT_EQ(ShownText(kMoment, "mm:ss"), "05:09");  // minutes before seconds
    EXPECT_EQ(ShownText(kMoment, "ddd d mmm yyyy"), "Fri 5 Apr 2024");
    EXPECT_EQ(ShownText(kMoment, "dddd, mmmm d"), "Friday, April 5");
    EXPECT_EQ(ShownText(kMoment + 0.5, "h:mm AM/PM"), "8:05 PM");
    EXPECT_EQ(ShownText(kMoment, "yyyy\"年\"m\"月\""), "2024年4月");
}

TEST(ShownText, NumberPatternsRoundGroupAndTakeTheirSection) {
    EXPECT_EQ(ShownText(2.345, "0.00"), "2.35");
    EXPECT_EQ(ShownText(1234567.0, "#,##0"), "1,234,567");
    EXPECT_EQ(ShownText(0.355, "0%"), "36%");
    EXPECT_EQ(ShownText(-3.0, "0;(0)"), "(3)");
    EXPECT_EQ(ShownText(-3.0, "0.0"), "-3.0");
    EXPECT_EQ(ShownText(0.0, "0;-0;\"none\""), "none");
    EXPECT_EQ(ShownText(90.0, "0\" min\""), "90 min");
    EXPECT_EQ(ShownText(12.0, "[Red]0"), "12");
}

TEST(ShownText, GeneralFitsTheRoomOfItsColumn) {
    EXPECT_EQ(ShownText(35.5555555556, "General"), "35.55555556");
    EXPECT_EQ(ShownText(35.5555555556, "General", 4), "35.6");
    EXPECT_EQ(ShownText(100.0, "General", 4), "100");
    EXPECT_EQ(ShownText(1.0, "@"), "1");
}

TEST(ShownText, TextsBooleansErrorsAndBlanksShowAsThemselves) {
    EXPECT_EQ(ShownText(Value(std::string("2024/04/05")), "0.00"), "2024/04/05");
    EXPECT_EQ(ShownText(Value(true), "General"), "TRUE");
    EXPECT_EQ(ShownText(Value(sheethost::ErrorValue::kDiv0), "0.00"), "#DIV/0!");
    EXPECT_EQ(ShownText(Value(sheethost::Blank{}), "yyyy/mm/dd"), "");
}

}  // namespace
