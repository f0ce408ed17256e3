// Descriptions made to hurt: each is refused with its place named, or loads in bounded time and
// memory; a dump is always valid JSON.
#include <gtest/gtest.h>

#include <string>

#include "sheethost/sheethost.h"

namespace {

std::string Refused(const std::string& text) {
    std::string error;
    EXPECT_EQ(sheethost::LoadWorkbookJson(text, &error), nullptr) << text.substr(0, 200);
    return error;
}

std::string OneSheet(const std::string& properties) {
    return R"({"sheets":[{"name":"A")" + properties + "}]}";
}

TEST(JsonLimits, DeepNestingIsRefusedBeforeItCanExhaustTheStack) {
    const std::string arrays(5000, '[');
    EXPECT_EQ(Refused(OneSheet(R"(,"cells":{"A1":)" + arrays + std::string(5000, ']') + "}")),
              "workbook: nested deeper than 64 levels");
    std::string objects;
    for (int k = 0; k < 5000; ++k) objects += R"({"a":)";
    EXPECT_EQ(
        Refused(OneSheet(R"(,"cells":{"A1":)" + objects + "1" + std::string(5000, '}') + "}")),
        "workbook: nested deeper than 64 levels");
}

TEST(JsonLimits, TypeFaultsNameTheirPlace) {
    EXPECT_EQ(Refused(OneSheet(R"(,"cells":{"B5":{"value":1,"formula":5}})")),
              "sheets[0].cells.B5: type must be string, but is number");
    EXPECT_EQ(Refused(OneSheet(R"(,"rows":{"5":{"height":"tall"}})")),
              "sheets[0].rows.5.height: type must be number, but is string");
    EXPECT_EQ(Refused(OneSheet(R"(,"names":{"Start":7})")),
              "sheets[0].names.Start: type must be string, but is number");
    EXPECT_EQ(Refused(R"({"sheets":[{"name":3}]})"),
              "sheets[0].name: type must be string, but is number");
    EXPECT_EQ(Refused(OneSheet(R"(,"formats":[{"range":false}])")),
              "sheets[0].formats[0].range: type must be string, but is boolean");
}

TEST(JsonLimits, NumbersAndTextsBeyondTheSpreadsheetsLimitsAreRefused) {
    for (const char* zoom : {"1e308", "-5", "9", "401", "100.5"}) {
        EXPECT_EQ(Refused(OneSheet(std::string(R"(,"zoom":)") + zoom)),
                  "sheets[0].zoom: a zoom is a whole number from 10 to 400")
            << zoom;
    }
    EXPECT_NE(sheethost::LoadWorkbookJson(OneSheet(R"(,"zoom":400)")), nullptr);

    const std::string longName(32, 'N');
    EXPECT_EQ(Refused(R"({"sheets":[{"name":")" + longName + R"("}]})").substr(0, 16),
              "sheets[0].name: ");
    // 31 characters of two bytes each are still 31 characters.
    std::string accented;
    for (int k = 0; k < 31; ++k) accented += "é";
    EXPECT_NE(sheethost::LoadWorkbookJson(R"({"sheets":[{"name":")" + accented + R"("}]})"),
              nullptr);

    EXPECT_EQ(Refused(OneSheet(R"(,"cells":{"C4":")" + std::string(32768, 'x') + R"("})")),
              "sheets[0].cells.C4: a cell holds at most 32,767 characters");
    EXPECT_NE(sheethost::LoadWorkbookJson(
                  OneSheet(R"(,"cells":{"C4":")" + std::string(32767, 'x') + R"("})")),
              nullptr);
}

TEST(JsonLimits, FormatsOverTheWholeSheetAreWorkedOutOnceAndRowRangesAreBounded) {
    std::string formats;
    for (int k = 0; k < 20; ++k) {
        formats += std::string(k ? "," : "") + R"({"range":"A:XFD","font":{"bold":)" +
                   (k % 2 ? "true" : "false") + "}}";
    }
    const auto book = sheethost::LoadWorkbookJson(OneSheet(R"(,"formats":[)" + formats + "]"));
    ASSERT_NE(book, nullptr);
    EXPECT_TRUE((*book->sheets[0]->columns.at(16384).style)->font.bold);

    EXPECT_EQ(Refused(OneSheet(R"(,"rows":{"1:1048576":{"height":20}})")),
              "sheets[0].rows.1:1048576: give rows their height, visibility or format at most "
              "65,536 at a time");
    const auto rows = sheethost::LoadWorkbookJson(OneSheet(R"(,"rows":{"1:65536":{"height":20}})"));
    ASSERT_NE(rows, nullptr);
    EXPECT_EQ(rows->sheets[0]->rows.size(), 65536u);
}

TEST(JsonLimits, ADumpOfTextThatIsNoUtf8IsStillJson) {
    auto book = sheethost::NewWorkbook();
    sheethost::CellAt(*book->sheets[0], 1, 1).value = std::string("Fr\xFFom");
    const std::string dump = sheethost::DumpWorkbookJson(*book);
    EXPECT_NE(dump.find("Fr\xEF\xBF\xBDom"), std::string::npos);
    EXPECT_NE(sheethost::LoadWorkbookJson(dump), nullptr);
}

}  // namespace
