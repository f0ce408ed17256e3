// The results of formula cells are kept between readings: each test reads a result, changes
// something it was computed from, and reads it again. A kept result that outlived its sources would
// answer the first reading twice.
#include <gtest/gtest.h>

#include <string>

#include "support/host_calls.h"

namespace {

using hosttest::Number;
using hosttest::Object;
using hosttest::Put;
using hosttest::Text;

class FormulaResultsTest : public hosttest::HostTest {
  protected:
    FormulaResultsTest() {
        // A summary over two tasks, and a sheet that reads the summary of another.
        Load(R"json({"sheets":[
          {"name":"WBS","cells":{"O5":{"formula":"=IF(SUM(O6,O7)=0,\"\",SUM(O6,O7))"},
                                 "O6":30,"O7":60,"P5":{"formula":"=O5*2"}}},
          {"name":"Report","cells":{"B2":{"formula":"=WBS!O5+1"},"B3":{"formula":"=B2*10"},
                                    "B4":{"formula":"=IFERROR(Later!A1+1,-1)"}}}]})json");
        wbs = Sheet("WBS");
        report = Sheet("Report");
    }

    double Value(const Object& sheet, const char* cell) {
        return Number(sheet.get(), OLESTR(".Range(%s).Value"), cell);
    }

    static bool IsError(const Object& sheet, const char* cell) {
        return hosttest::TypeOf(sheet.get(), OLESTR(".Range(%s).Value"), cell) == VT_ERROR;
    }

    Object wbs;
    Object report;
};

TEST_F(FormulaResultsTest, AResultFollowsTheCellsOfItsOwnSheet) {
    EXPECT_EQ(Value(wbs, "P5"), 180);
    EXPECT_EQ(Value(wbs, "O5"), 90);
    ASSERT_EQ(Put(wbs.get(), OLESTR(".Range(%s).Value=%d"), "O7", 10), S_OK);
    EXPECT_EQ(Value(wbs, "O5"), 40);
    EXPECT_EQ(Value(wbs, "P5"), 80);
    // Emptying the children empties the summary, and the formula reading it sees the text.
    ASSERT_EQ(hosttest::Call(wbs.get(), OLESTR(".Range(%s).ClearContents"), "O6:O7"), S_OK);
    EXPECT_EQ(Text(wbs.get(), OLESTR(".Range(%s).Value"), "O5"), "");
    EXPECT_TRUE(IsError(wbs, "P5"));
}

TEST_F(FormulaResultsTest, AResultFollowsTheOtherSheetsItReads) {
    // B3 is read after B2 was kept: it takes B2's result, and must still follow the task sheet.
    EXPECT_EQ(Value(report, "B2"), 91);
    EXPECT_EQ(Value(report, "B3"), 910);
    ASSERT_EQ(Put(wbs.get(), OLESTR(".Range(%s).Value=%d"), "O6", 0), S_OK);
    EXPECT_EQ(Value(report, "B3"), 610);
    EXPECT_EQ(Value(report, "B2"), 61);
    // A change on the report itself is seen as well.
    ASSERT_EQ(Put(report.get(), OLESTR(".Range(%s).Formula=%s"), "B2", "=5"), S_OK);
    EXPECT_EQ(Value(report, "B3"), 50);
}

TEST_F(FormulaResultsTest, ASheetAddedOrRenamedIsFoundByTheFormulasThatNameIt) {
    EXPECT_EQ(Value(report, "B4"), -1);  // no sheet named Later yet
    Object added = hosttest::Get(workbook.get(), OLESTR(".Sheets.Add"));
    ASSERT_TRUE(added);
    ASSERT_EQ(Put(added.get(), OLESTR(".Range(%s).Value=%d"), "A1", 7), S_OK);
    ASSERT_EQ(Put(added.get(), OLESTR(".Name=%s"), "Later"), S_OK);
    EXPECT_EQ(Value(report, "B4"), 8);
    ASSERT_EQ(Put(added.get(), OLESTR(".Name=%s"), "Renamed"), S_OK);
    EXPECT_EQ(Value(report, "B4"), -1);
}

TEST_F(FormulaResultsTest, CyclesAndOverlongChainsKeepNoPartialResult) {
    // Read from either end, a cycle is an error; broken, both cells compute.
    ASSERT_EQ(Put(wbs.get(), OLESTR(".Range(%s).Formula=%s"), "A1", "=B1+1"), S_OK);
    ASSERT_EQ(Put(wbs.get(), OLESTR(".Range(%s).Formula=%s"), "B1", "=A1+1"), S_OK);
    EXPECT_TRUE(IsError(wbs, "B1"));
    EXPECT_TRUE(IsError(wbs, "A1"));
    ASSERT_EQ(Put(wbs.get(), OLESTR(".Range(%s).Value=%d"), "A1", 5), S_OK);
    EXPECT_EQ(Value(wbs, "B1"), 6);

    // A chain too long to follow at once is cut (#NUM!), and nothing read on the way is kept as
    // a result: read again from its end, it is cut again.
    for (int row = 2; row <= 700; ++row) {
        const std::string formula = "=C" + std::to_string(row - 1) + "+1";
        ASSERT_EQ(Put(wbs.get(), OLESTR(".Cells(%d,%d).Formula=%s"), row, 3, formula.c_str()),
                  S_OK);
    }
    ASSERT_EQ(Put(wbs.get(), OLESTR(".Range(%s).Value=%d"), "C1", 1), S_OK);
    EXPECT_TRUE(IsError(wbs, "C700"));
    EXPECT_TRUE(IsError(wbs, "C700"));
    // Read link by link from the top, each result is kept and the next needs one step.
    EXPECT_EQ(Value(wbs, "C400"), 400);
    EXPECT_EQ(Value(wbs, "C700"), 700);
}

}  // namespace
