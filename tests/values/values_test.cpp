#include "values/values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "values/case_fold.h"

namespace values {
namespace {

TEST(TextToInteger, PrefixesBlanksSignsAndTheFirstOtherCharacter) {
    const std::pair<const char*, std::int64_t> cases[] = {
        {"&H10", 16},   {"&hff", 255}, {"&O17", 15}, {"&17", 15},
        {"&B101", 5},   {"&b1012", 5}, {"&", 0},     {"&9", 0},
        {"  12.9", 12}, {"\t 5", 5},   {"-7x", -7},  {"+8", 8},
        {"", 0},        {"abc", 0},    {"- 3", 0},   {"&HFFFFFFFFFFFFFFFF", -1},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(TextToInteger(text), expected) << text;
}

TEST(Val, ReadsTheLeadingNumber) {
    const std::pair<const char*, double> cases[] = {
        {"12.5kg", 12.5}, {"  -3e2", -300}, {".5", 0.5},    {"-.25", -0.25},
        {"1.5D3", 1500},  {"2e-x", 2},      {"1.2.3", 1.2}, {"", 0},
        {"abc", 0},       {"-", 0},         {".", 0},       {"1e-999", 0},
    };
    for (const auto& [text, expected] : cases) EXPECT_DOUBLE_EQ(Val(text), expected) << text;
    EXPECT_TRUE(std::isinf(Val("1e999")));
}

TEST(NumberText, ShortestTextOfSixteenDigitsAndFixTruncates) {
    EXPECT_EQ(NumberText(0.1 + 0.2), "0.3");
    EXPECT_EQ(NumberText(1e15), "1000000000000000");
    EXPECT_EQ(NumberText(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(NumberText(-0.5), "-0.5");
    EXPECT_EQ(NumberText(100), "100");
    EXPECT_EQ(NumberText(-0.0), "0");
    EXPECT_EQ(NumberText(std::nan("")), "#NUM!");
    EXPECT_EQ(NumberText(-std::numeric_limits<double>::infinity()), "#NUM!");
    EXPECT_EQ(Fix(-2.7), -2.0);
    EXPECT_EQ(Fix(2.7), 2.0);
}

TEST(DateSerial, CountsDaysFromTheEndOf1899AndRollsOver) {
    EXPECT_EQ(DateSerial(1899, 12, 30), 0.0);
    EXPECT_EQ(DateSerial(1900, 3, 1), 61.0);  // no 29 February 1900 in this count
    EXPECT_EQ(DateSerial(2024, 4, 1), 45383.0);
    EXPECT_EQ(DateSerial(1899, 12, 29), -1.0);
    EXPECT_EQ(DateSerial(2024, 13, 1), DateSerial(2025, 1, 1));
    EXPECT_EQ(DateSerial(2024, 3, 0), DateSerial(2024, 2, 29));
}

TEST(SerialToDateTime, RoundsToTheSecondAndReadsNegativeFractionsForward) {
    const DateTime eight = SerialToDateTime(45383.0 + 8.0 / 24.0 - 1e-9);
    EXPECT_EQ(eight.hour * 3600 + eight.minute * 60 + eight.second, 8 * 3600);
    EXPECT_EQ(SerialToDateTime(45384.0 - 1e-7).day, 2);  // rounds into the next day
    const DateTime before = SerialToDateTime(-1.25);
    EXPECT_EQ(before.day, 29);
    EXPECT_EQ(before.hour, 6);
    EXPECT_EQ(SerialToDateTime(-0.5).day, 30);
    EXPECT_EQ(DateTimeToSerial({1899, 12, 28, 18, 0, 0}), -2.75);
    EXPECT_EQ(SerialToDateTime(std::nan("")).year, 1899);
    EXPECT_GT(SerialToDateTime(1e300).year, 9999);
}

TEST(MinutesBetween, IgnoresTheRoundingErrorOfAddedFractions) {
    double eight = 45383.0;
    for (int i = 0; i < 8 * 60; ++i) eight += 1.0 / 1440.0;
    EXPECT_NE(eight, 45383.0 + 8.0 / 24.0);  // the sum really is off
    EXPECT_EQ(MinutesBetween(eight, 45383.0 + 9.0 / 24.0), 60);
    EXPECT_EQ(MinutesBetween(45383 + TimeSerial(8, 0, 0), 45385 + TimeSerial(17, 0, 0)), 3420);
    EXPECT_EQ(MinutesBetween(TimeSerial(8, 0, 59), TimeSerial(8, 1, 0)), 1);
    EXPECT_EQ(MinutesBetween(-1.0 - 23.0 / 24.0, 1.0 / 24.0), 120);  // across the serial's zero
}

TEST(AddMinutes, AddsWholeMinutesAcrossDaysAndZero) {
    EXPECT_EQ(AddMinutes(45383 + TimeSerial(17, 0, 0), 15 * 60 + 30), 45384 + TimeSerial(8, 30, 0));
    EXPECT_EQ(AddMinutes(0.0, -6 * 60), -1.75);
    EXPECT_EQ(AddMinutes(-1.25, 18 * 60), 0.0);
    EXPECT_GT(AddMinutes(0.0, INT64_MAX), 1e8);  // absurd counts stay defined, never wrap
}

TEST(FormatDate, WritesTheFixedFormats) {
    const double when = DateSerial(2024, 3, 5) + TimeSerial(8, 7, 6);
    EXPECT_EQ(FormatDate(when, "yyyy/mm/dd"), "2024/03/05");
    EXPECT_EQ(FormatDate(when, "yyyy/mm"), "2024/03");
    EXPECT_EQ(FormatDate(when, "yyyymmdd"), "20240305");
    EXPECT_EQ(FormatDate(when, "yyyy/mm/dd hh:mm"), "2024/03/05 08:07");
    EXPECT_EQ(FormatDate(-1.25, "yyyy/mm/dd hh:mm"), "1899/12/29 06:00");
    EXPECT_EQ(FormatDate(DateSerial(2024, 12, 31) + 86399.6 / 86400.0, "yyyymmdd"), "20250101");
}

TEST(ParseDateText, AcceptsTypedDatesAndTimesOnly) {
    EXPECT_EQ(ParseDateText("2024-03-01"), DateSerial(2024, 3, 1));
    EXPECT_EQ(ParseDateText(" 2024/3/1 8:30 "), DateSerial(2024, 3, 1) + TimeSerial(8, 30, 0));
    EXPECT_EQ(ParseDateText("2024/03/01 08:30:15"), DateSerial(2024, 3, 1) + TimeSerial(8, 30, 15));
    EXPECT_EQ(ParseDateText("8:30"), TimeSerial(8, 30, 0));
    for (const char* text :
         {"", "12.5", "2024/13/01", "2023/02/29", "2024/03-01", "24:00", "8:5", "2024/03/01 8"}) {
        EXPECT_EQ(ParseDateText(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace values

TEST(CaseFold, FoldsTheLettersOfEveryCoveredScript) {
    EXPECT_EQ(values::FoldCase(U'Q'), U'q');
    EXPECT_EQ(values::FoldCase(U'Ñ'), U'ñ');
    EXPECT_EQ(values::FoldCase(U'×'), U'×');  // the multiplication sign among the capitals
    EXPECT_EQ(values::FoldCase(U'Ÿ'), U'ÿ');
    EXPECT_EQ(values::FoldCase(U'Ł'), U'ł');  // an odd capital in Latin Extended-A
    EXPECT_EQ(values::FoldCase(U'Ŋ'), U'ŋ');  // an even one after the switch
    EXPECT_EQ(values::FoldCase(U'ſ'), U's');
    EXPECT_EQ(values::FoldCase(U'Ǆ'), U'ǆ');
    EXPECT_EQ(values::FoldCase(U'Ə'), U'ə');
    EXPECT_EQ(values::FoldCase(U'Ω'), U'ω');
    EXPECT_EQ(values::FoldCase(U'ς'), U'σ');
    EXPECT_EQ(values::FoldCase(U'Ά'), U'ά');
    EXPECT_EQ(values::FoldCase(U'Ё'), U'ё');
    EXPECT_EQ(values::FoldCase(U'Я'), U'я');
    EXPECT_EQ(values::FoldCase(U'Ҕ'), U'ҕ');
    EXPECT_EQ(values::FoldCase(U'Ա'), U'ա');
    EXPECT_EQ(values::FoldCase(U'Ạ'), U'ạ');
    EXPECT_EQ(values::FoldCase(U'ı'), U'ı');  // the dotless i has no capital of its own to meet
    EXPECT_EQ(values::FoldCase(U'一'), U'一');
}

TEST(CaseFold, ComparesWholeUtf8TextsAndKeepsBrokenBytesApart) {
    EXPECT_TRUE(values::EqualIgnoringCase("Ñandú-1", "ñANDÚ-1"));
    EXPECT_TRUE(values::EqualIgnoringCase("", ""));
    EXPECT_FALSE(values::EqualIgnoringCase("Ñ", "N"));
    EXPECT_FALSE(values::EqualIgnoringCase("ab", "abc"));
    // A lone continuation byte or a cut-off sequence equals only the same bytes.
    EXPECT_TRUE(values::EqualIgnoringCase("a\x80", "A\x80"));
    EXPECT_FALSE(values::EqualIgnoringCase("\xC3", "\xC3\xB1"));
    EXPECT_FALSE(values::EqualIgnoringCase("\xC3", "\xC4"));
}

// Folded texts serve as look-up keys, so they must agree with the comparison on every pair.
TEST(CaseFold, FoldedTextsAreEqualExactlyWhenTheTextsCompareEqual) {
    const char* texts[] = {"Ñandú-1", "ñANDÚ-1", "",         "Ñ",    "N", "ab", "abc", "a\x80",
                           "A\x80",   "\xC3",    "\xC3\xB1", "\xC4", "ς", "Σ",  "ſ",   "S"};
    for (const char* a : texts) {
        for (const char* b : texts) {
            EXPECT_EQ(values::FoldedText(a) == values::FoldedText(b),
                      values::EqualIgnoringCase(a, b))
                << a << " / " << b;
        }
    }
}
