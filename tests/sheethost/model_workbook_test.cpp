// The workbook and application level: adding sheets and chart sheets, the active sheet and its
// zoom, and the worksheet function the dictionary lookup uses.
#include <gtest/gtest.h>

#include <cmath>

#include "support/host_calls.h"

namespace {

using hosttest::Get;
using hosttest::Number;
using hosttest::Object;
using hosttest::Put;
using hosttest::Text;

class WorkbookTest : public hosttest::HostTest {
  protected:
    WorkbookTest() {
        Load(R"json({"sheets":[
          {"name":"WBS","codeName":"wsWBS"},
          {"name":"Dictionary","codeName":"wsDictionary",
           "cells":{"B2":"EVMRPT","C2":"EVM report *","B3":"WLRPT","B4":12,"B5":"evmrpt2"}}]})json");
    }
};

TEST_F(WorkbookTest, AddedSheetsAreNamedActivatedAndFoundAgain) {
    Object added = Get(workbook.get(), OLESTR(".Sheets.Add"));
    ASSERT_TRUE(added);
    EXPECT_EQ(Text(added.get(), OLESTR(".Name")), "Sheet1");
    ASSERT_EQ(Put(added.get(), OLESTR(".Name=%s"), "EVM_1"), S_OK);
    EXPECT_EQ(Text(application.get(), OLESTR(".ActiveSheet.Name")), "EVM_1");
    EXPECT_EQ(Text(workbook.get(), OLESTR(".Sheets(%s).Index"), "evm_1"), "1");  // before WBS
    EXPECT_EQ(Number(workbook.get(), OLESTR(".Worksheets.Count")), 3);
    // A new sheet is active, so its cells can be selected.
    EXPECT_EQ(hosttest::Call(added.get(), OLESTR(".Cells.Select")), S_OK);
    // Names must be unique and valid.
    EXPECT_TRUE(FAILED(Put(added.get(), OLESTR(".Name=%s"), "wbs")));
    EXPECT_TRUE(FAILED(Put(added.get(), OLESTR(".Name=%s"), "a/b")));
    Object second = Get(workbook.get(), OLESTR(".Worksheets.Add"));
    EXPECT_EQ(Text(second.get(), OLESTR(".Name")), "Sheet2");
}

TEST_F(WorkbookTest, ChartsAddMakesAChartSheetTheSheetsCollectionShows) {
    Object chart = Get(workbook.get(), OLESTR(".Charts.Add"));
    ASSERT_TRUE(chart);
    EXPECT_EQ(book->chartSheets.size(), 1u);
    EXPECT_EQ(book->chartSheets.front().name, "Chart1");
    EXPECT_EQ(Number(workbook.get(), OLESTR(".Sheets.Count")), 3);
    EXPECT_EQ(Number(workbook.get(), OLESTR(".Worksheets.Count")), 2);
    EXPECT_EQ(Number(workbook.get(), OLESTR(".Charts.Count")), 1);
}

TEST_F(WorkbookTest, ZoomBelongsToTheActiveSheet) {
    ASSERT_EQ(Put(workbook.get(), OLESTR(".Application.ActiveWindow.Zoom = %d"), 85), S_OK);
    EXPECT_EQ(Model("WBS").zoom, 85);
    hosttest::Call(Sheet("Dictionary").get(), OLESTR(".Activate"));
    EXPECT_EQ(Number(application.get(), OLESTR(".ActiveWindow.Zoom")), 100);
    EXPECT_TRUE(FAILED(Put(application.get(), OLESTR(".ActiveWindow.Zoom=%d"), 5)));
}

TEST_F(WorkbookTest, StatusBarShowsAMacroTextUntilFalseGivesItBack) {
    EXPECT_EQ(hosttest::TypeOf(application.get(), OLESTR(".StatusBar")), VT_BOOL);
    ASSERT_EQ(Put(workbook.get(), OLESTR(".Application.StatusBar=%s"), "1.2 Design"), S_OK);
    EXPECT_EQ(Text(application.get(), OLESTR(".StatusBar")), "1.2 Design");
    EXPECT_NE(sheethost::DumpWorkbookJson(*book).find("\"statusBar\": \"1.2 Design\""),
              std::string::npos);
    // The dump loads back with the same text.
    const auto again = sheethost::LoadWorkbookJson(sheethost::DumpWorkbookJson(*book));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->statusBar, "1.2 Design");
    ASSERT_EQ(Put(application.get(), OLESTR(".StatusBar=%b"), FALSE), S_OK);
    EXPECT_FALSE(book->statusBar.has_value());
    EXPECT_EQ(sheethost::DumpWorkbookJson(*book).find("statusBar"), std::string::npos);
}

TEST_F(WorkbookTest, EndingTheCopyModeEmptiesTheClipboard) {
    ASSERT_EQ(hosttest::Call(Sheet("WBS").get(), OLESTR(".Range(%s).Copy"), "B2:C2"), S_OK);
    EXPECT_EQ(Text(application.get(), OLESTR(".CutCopyMode")), "True");
    ASSERT_EQ(Put(application.get(), OLESTR(".CutCopyMode=%b"), FALSE), S_OK);
    EXPECT_FALSE(book->clipboard.has_value());
    // With the clipboard empty a row is inserted as an empty row again.
    EXPECT_EQ(hosttest::Call(Sheet("WBS").get(), OLESTR(".Rows(%d).EntireRow.Insert"), 3), S_OK);
    EXPECT_TRUE(FAILED(Put(application.get(), OLESTR(".CutCopyMode=%b"), TRUE)));
}

TEST_F(WorkbookTest, MatchFindsTheKeyInAColumn) {
    Object functions = Get(workbook.get(), OLESTR(".Application.WorksheetFunction"));
    Object column = Get(Sheet("Dictionary").get(), OLESTR(".Range(%s)"), "B:B");
    const auto match = [&](const char* key) {
        return Number(functions.get(), OLESTR(".Match(%s,%o,%d)"), key, column.get(), 0);
    };
    EXPECT_EQ(match("EVMRPT"), 2);
    EXPECT_EQ(match("wlrpt"), 3);  // without regard to case
    EXPECT_EQ(match("EVMRPT2"), 5);
    // A key given as text does not match a number, and a missing key is refused.
    EXPECT_TRUE(std::isnan(match("12")));
    EXPECT_TRUE(std::isnan(match("NOKEY")));
    EXPECT_EQ(hosttest::LastDescription(),
              "Unable to get the Match property of the WorksheetFunction class");
    EXPECT_EQ(Number(functions.get(), OLESTR(".Match(%d,%o,%d)"), 12, column.get(), 0), 4);
}

}  // namespace
