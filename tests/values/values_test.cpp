#include "values/values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

namespace values {
namespace {

TEST(TextToInteger, ReadsPrefixedRadixesAndStopsAtTheFirstOtherCharacter) {
    EXPECT_EQ(TextToInteger("&H10"), 16);
    EXPECT_EQ(TextToInteger("&hff"), 255);
    EXPECT_EQ(TextToInteger("&O17"), 15);
    EXPECT_EQ(TextToInteger("&o17"), 15);
    EXPECT_EQ(TextToInteger("&17"), 15);  // the character after "&" is an octal digit
    EXPECT_EQ(TextToInteger("&B101"), 5);
    EXPECT_EQ(TextToInteger("&b1012"), 5);
    EXPECT_EQ(TextToInteger("&H1G"), 1);
    EXPECT_EQ(TextToInteger("&"), 0);
    EXPECT_EQ(TextToInteger("&9"), 0);
    EXPECT_EQ(TextToInteger("&HFFFFFFFFFFFFFFFF"), -1);
}

TEST(TextToInteger, ReadsDecimalsWithBlanksAndSign) {
    EXPECT_EQ(TextToInteger("12"), 12);
    EXPECT_EQ(TextToInteger("  12.9"), 12);
    EXPECT_EQ(TextToInteger("\t 5"), 5);
    EXPECT_EQ(TextToInteger("-7x"), -7);
    EXPECT_EQ(TextToInteger("+8"), 8);
    EXPECT_EQ(TextToInteger("9223372036854775807"), 9223372036854775807LL);
    EXPECT_EQ(TextToInteger(""), 0);
    EXPECT_EQ(TextToInteger("abc"), 0);
    EXPECT_EQ(TextToInteger("- 3"), 0);
    EXPECT_EQ(TextToInteger(" x 3"), 0);
}

TEST(Val, ReadsTheLeadingNumber) {
    EXPECT_DOUBLE_EQ(Val("12.5kg"), 12.5);
    EXPECT_DOUBLE_EQ(Val("  -3e2"), -300.0);
    EXPECT_DOUBLE_EQ(Val(".5"), 0.5);
    EXPECT_DOUBLE_EQ(Val("-.25"), -0.25);
    EXPECT_DOUBLE_EQ(Val("7."), 7.0);
    EXPECT_DOUBLE_EQ(Val("1.5D3"), 1500.0);
    EXPECT_DOUBLE_EQ(Val("2e"), 2.0);
    EXPECT_DOUBLE_EQ(Val("2e-x"), 2.0);
    EXPECT_DOUBLE_EQ(Val("1.2.3"), 1.2);
    EXPECT_DOUBLE_EQ(Val("480"), 480.0);
    EXPECT_DOUBLE_EQ(Val(""), 0.0);
    EXPECT_DOUBLE_EQ(Val("abc"), 0.0);
    EXPECT_DOUBLE_EQ(Val("-"), 0.0);
    EXPECT_DOUBLE_EQ(Val("."), 0.0);
    EXPECT_TRUE(std::isinf(Val("1e999")));
    EXPECT_DOUBLE_EQ(Val("1e-999"), 0.0);
}

TEST(Fix, TruncatesTowardZero) {
    EXPECT_EQ(Fix(2.7), 2.0);
    EXPECT_EQ(Fix(-2.7), -2.0);
    EXPECT_EQ(Fix(-0.5), 0.0);
    EXPECT_EQ(Fix(45383.375) + 0.375, 45383.375);
}

TEST(NumberText, GivesTheShortestTextOfSixteenDigits) {
    EXPECT_EQ(NumberText(0.1 + 0.2), "0.3");
    EXPECT_EQ(NumberText(1e15), "1000000000000000");
    EXPECT_EQ(NumberText(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(NumberText(-0.5), "-0.5");
    EXPECT_EQ(NumberText(100), "100");
    EXPECT_EQ(NumberText(0.375), "0.375");
    EXPECT_EQ(NumberText(0.0), "0");
    EXPECT_EQ(NumberText(-0.0), "0");
    EXPECT_EQ(NumberText(45383.0), "45383");
    EXPECT_EQ(NumberText(2.0 / 3.0), "0.6666666666666666");
}

TEST(DateSerial, CountsDaysFromTheEndOf1899) {
    EXPECT_EQ(DateSerial(1899, 12, 30), 0.0);
    EXPECT_EQ(DateSerial(1900, 1, 1), 2.0);
    // No 29 February 1900 in this count: 1 March 1900 is day 61.
    EXPECT_EQ(DateSerial(1900, 3, 1), 61.0);
    EXPECT_EQ(DateSerial(2024, 4, 1), 45383.0);
    EXPECT_EQ(DateSerial(2024, 2, 29) + 1, DateSerial(2024, 3, 1));
    EXPECT_EQ(DateSerial(1899, 12, 29), -1.0);
    // Out-of-range months and days roll over.
    EXPECT_EQ(DateSerial(2024, 13, 1), DateSerial(2025, 1, 1));
    EXPECT_EQ(DateSerial(2024, 0, 1), DateSerial(2023, 12, 1));
    EXPECT_EQ(DateSerial(2024, 3, 0), DateSerial(2024, 2, 29));
}

TEST(SerialToDateTime, BreaksDownToTheNearestSecond) {
    const DateTime noon = SerialToDateTime(45383.5);
    EXPECT_EQ(noon.year, 2024);
    EXPECT_EQ(noon.month, 4);
    EXPECT_EQ(noon.day, 1);
    EXPECT_EQ(noon.hour, 12);
    EXPECT_EQ(noon.minute, 0);

    // 08:00 built by adding fractions lands a hair below or above; both give 08:00:00.
    const DateTime eight = SerialToDateTime(45383.0 + 8.0 / 24.0 - 1e-9);
    EXPECT_EQ(eight.hour, 8);
    EXPECT_EQ(eight.minute, 0);
    EXPECT_EQ(eight.second, 0);

    // Just under midnight rounds into the next day.
    const DateTime carried = SerialToDateTime(45384.0 - 1e-7);
    EXPECT_EQ(carried.day, 2);
    EXPECT_EQ(carried.hour, 0);
}

TEST(SerialToDateTime, ReadsNegativeFractionsForwardFromTheDay) {
    const DateTime before = SerialToDateTime(-1.25);
    EXPECT_EQ(before.year, 1899);
    EXPECT_EQ(before.month, 12);
    EXPECT_EQ(before.day, 29);
    EXPECT_EQ(before.hour, 6);

    const DateTime halfDay = SerialToDateTime(-0.5);
    EXPECT_EQ(halfDay.day, 30);
    EXPECT_EQ(halfDay.hour, 12);

    EXPECT_EQ(DateTimeToSerial({1899, 12, 29, 6, 0, 0}), -1.25);
    EXPECT_EQ(DateTimeToSerial({1899, 12, 28, 18, 0, 0}), -2.75);
    EXPECT_EQ(DateTimeToSerial({2024, 4, 1, 6, 0, 0}), 45383.25);
}

TEST(SerialToDateTime, SurvivesValuesThatAreNoDates) {
    EXPECT_EQ(SerialToDateTime(std::nan("")).year, 1899);
    EXPECT_GT(SerialToDateTime(1e300).year, 9999);
    EXPECT_LT(SerialToDateTime(-1e300).year, 100);
}

TEST(MinutesBetween, IgnoresTheRoundingErrorOfAddedFractions) {
    const double day = DateSerial(2024, 4, 1);
    double eight = day;
    for (int i = 0; i < 8 * 60; ++i) eight += 1.0 / 1440.0;
    const double nine = day + 9.0 / 24.0;
    EXPECT_NE(eight, day + 8.0 / 24.0);  // the sum really is off
    EXPECT_EQ(MinutesBetween(eight, nine), 60);
    EXPECT_EQ(MinutesBetween(nine, eight), -60);
}

TEST(MinutesBetween, CountsMinuteBoundariesAcrossDaysAndZero) {
    const double start = DateSerial(2024, 4, 1) + TimeSerial(8, 0, 0);
    const double end = DateSerial(2024, 4, 3) + TimeSerial(17, 0, 0);
    EXPECT_EQ(MinutesBetween(start, end), 3420);
    EXPECT_EQ(MinutesBetween(TimeSerial(8, 0, 59), TimeSerial(8, 1, 0)), 1);
    EXPECT_EQ(MinutesBetween(TimeSerial(8, 0, 0), TimeSerial(8, 0, 59)), 0);
    // Across the serial's zero the axis stays continuous: 29 Dec 23:00 to 30 Dec 01:00.
    EXPECT_EQ(MinutesBetween(-1.0 - 23.0 / 24.0, 1.0 / 24.0), 120);
}

TEST(AddMinutes, AddsWholeMinutesAcrossDays) {
    const double start = DateSerial(2024, 4, 1) + TimeSerial(17, 0, 0);
    const double later = AddMinutes(start, 15 * 60 + 30);
    EXPECT_EQ(later, DateSerial(2024, 4, 2) + TimeSerial(8, 30, 0));
    EXPECT_EQ(AddMinutes(later, -(15 * 60 + 30)), start);
    EXPECT_EQ(AddMinutes(0.0, -6 * 60), -1.75);  // 29 Dec 18:00
    EXPECT_EQ(AddMinutes(-1.25, 18 * 60), 0.0);
    // Absurd counts stay defined: far in the future or past, never wrapped around.
    EXPECT_GT(AddMinutes(0.0, INT64_MAX), 1e8);
    EXPECT_LT(AddMinutes(0.0, INT64_MIN), -1e8);
}

TEST(FormatDate, WritesTheFixedFormats) {
    const double when = DateSerial(2024, 3, 5) + TimeSerial(8, 7, 6);
    EXPECT_EQ(FormatDate(when, "yyyy/mm/dd"), "2024/03/05");
    EXPECT_EQ(FormatDate(when, "yyyy/mm"), "2024/03");
    EXPECT_EQ(FormatDate(when, "yyyymmdd"), "20240305");
    EXPECT_EQ(FormatDate(when, "yyyy/mm/dd hh:mm"), "2024/03/05 08:07");
    EXPECT_EQ(FormatDate(when, "hh:mm"), "08:07");
    EXPECT_EQ(FormatDate(-1.25, "yyyy/mm/dd hh:mm"), "1899/12/29 06:00");
    // 23:59:59.6 rounds to the next day's date.
    EXPECT_EQ(FormatDate(DateSerial(2024, 12, 31) + 86399.6 / 86400.0, "yyyymmdd"), "20250101");
}

TEST(ParseDateText, AcceptsTypedDatesAndTimes) {
    EXPECT_EQ(ParseDateText("2024/03/01"), DateSerial(2024, 3, 1));
    EXPECT_EQ(ParseDateText("2024-03-01"), DateSerial(2024, 3, 1));
    EXPECT_EQ(ParseDateText(" 2024/3/1 8:30 "), DateSerial(2024, 3, 1) + TimeSerial(8, 30, 0));
    EXPECT_EQ(ParseDateText("2024/03/01 08:30:15"), DateSerial(2024, 3, 1) + TimeSerial(8, 30, 15));
    EXPECT_EQ(ParseDateText("8:30"), TimeSerial(8, 30, 0));
    EXPECT_EQ(ParseDateText("2024/02/29"), DateSerial(2024, 2, 29));
}

TEST(ParseDateText, RejectsTextsThatAreNoDate) {
    for (const char* text :
         {"", "abc", "12", "12.5", "2024/13/01", "2023/02/29", "2024/03/01x", "2024/03-01", "24:00",
          "8:60", "8:5", "2024/03/01 25:00", "1:2:3", "2024/03/01 8"}) {
        EXPECT_EQ(ParseDateText(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace values
