#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>

#include "sheethost/formula.h"

namespace sheethost {
namespace {

TEST(DisplayTextTest, NumbersInShortestFormUpToFifteenDigits) {
    EXPECT_EQ(DisplayText(100.0), "100");
    EXPECT_EQ(DisplayText(0.375), "0.375");
    EXPECT_EQ(DisplayText(-12.5), "-12.5");
    EXPECT_EQ(DisplayText(0.1 + 0.2), "0.3");
    EXPECT_EQ(DisplayText(1.0 / 3), "0.333333333333333");
    EXPECT_EQ(DisplayText(2.0 / 3), "0.666666666666667");
    EXPECT_EQ(DisplayText(45352.25), "45352.25");
    EXPECT_EQ(DisplayText(123456789012345.0), "123456789012345");
    EXPECT_EQ(DisplayText(1e15), "1E+15");
    EXPECT_EQ(DisplayText(1.5e20), "1.5E+20");
    EXPECT_EQ(DisplayText(0.0001), "0.0001");
    EXPECT_EQ(DisplayText(1.25e-12), "1.25E-12");
    EXPECT_EQ(DisplayText(-0.0), "0");
    EXPECT_EQ(DisplayText(99999.99999999999), "100000");
}

TEST(DisplayTextTest, OtherValues) {
    EXPECT_EQ(DisplayText(Blank{}), "");
    EXPECT_EQ(DisplayText(true), "TRUE");
    EXPECT_EQ(DisplayText(false), "FALSE");
    EXPECT_EQ(DisplayText(std::string("2024/03")), "2024/03");
    EXPECT_EQ(DisplayText(ErrorValue::kDiv0), "#DIV/0!");
    EXPECT_STREQ(ErrorText(ErrorValue::kNull), "#NULL!");
    EXPECT_STREQ(ErrorText(ErrorValue::kValue), "#VALUE!");
    EXPECT_STREQ(ErrorText(ErrorValue::kRef), "#REF!");
    EXPECT_STREQ(ErrorText(ErrorValue::kName), "#NAME?");
    EXPECT_STREQ(ErrorText(ErrorValue::kNum), "#NUM!");
    EXPECT_STREQ(ErrorText(ErrorValue::kNA), "#N/A");
}

TEST(TextToNumberTest, ReadsWhatArithmeticAccepts) {
    EXPECT_EQ(TextToNumber("90"), 90.0);
    EXPECT_EQ(TextToNumber("0.375"), 0.375);
    EXPECT_EQ(TextToNumber(" -12 "), -12.0);
    EXPECT_EQ(TextToNumber("+.5"), 0.5);
    EXPECT_EQ(TextToNumber("1,234,567.5"), 1234567.5);
    EXPECT_EQ(TextToNumber("50%"), 0.5);
    EXPECT_EQ(TextToNumber("-1e3"), -1000.0);
    EXPECT_EQ(TextToNumber("2024/03/01"), 45352.0);
    ASSERT_TRUE(TextToNumber("8:30").has_value());
    EXPECT_NEAR(*TextToNumber("8:30"), 8.5 / 24, 1e-12);
}

TEST(TextToNumberTest, RefusesEverythingElse) {
    for (const char* text :
         {"",   "  ",  "abc", "1,23", "12,3456", ",123", "1.2.3", ".",   "-",     "%",
          "1e", "1e+", "inf", "nan",  "0x10",    "TRUE", "1 2",   "--1", "1e999", "-2024/03/01"}) {
        EXPECT_EQ(TextToNumber(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace sheethost
