// The zoom, selection and active cell of a sheet's window, with frozen panes that keep a selection
// each.
#include <gtest/gtest.h>

#include "package_files.h"
#include "sample_workbook.h"
#include "sheethost/model.h"
#include "sheethost/sheethost.h"
#include "xlsx/xlsx.h"

namespace xlsx::testing {
namespace {

using sheethost::Area;

TEST(SheetView, TheActivePanesSelectionIsReadAndWrittenAndTheOtherPanesStay) {
    TempFolder folder;
    Parts parts = SampleWorkbook();
    for (auto& [name, bytes] : parts) {
        if (name != "xl/worksheets/sheet1.xml") continue;
        const std::string view =
            R"(<sheetView tabSelected="1" zoomScale="85" workbookViewId="0"/>)";
        bytes.replace(
            bytes.find(view), view.size(),
            R"(<sheetView zoomScale="85" workbookViewId="0"><pane xSplit="2" ySplit="3" )"
            R"(topLeftCell="C4" activePane="bottomRight" state="frozen"/>)"
            R"(<selection pane="topRight" activeCell="C1" sqref="C1"/>)"
            R"(<selection pane="bottomRight" activeCell="D5" sqref="D5:E6 G8"/></sheetView>)");
    }
    WriteZip(folder / "plan.xlsm", parts);
    const auto book = LoadXlsx(folder / "plan.xlsm");
    sheethost::Sheet& sheet = *book->sheets[0];
    EXPECT_EQ(sheet.zoom, 85);
    EXPECT_EQ(sheet.activeCell, (sheethost::CellRef{5, 4}));
    EXPECT_EQ(sheet.selection, (std::vector<Area>{{5, 4, 6, 5}, {8, 7, 8, 7}}));

    sheet.zoom = 100;
    sheet.selection = {{10, 2, 10, 2}, {12, 4, 13, 1000}};
    sheet.activeCell = {13, 4};
    SaveXlsx(*book, folder / "plan.xlsm", folder / "saved.xlsm");
    const std::string xml = ReadPart(folder / "saved.xlsm", "xl/worksheets/sheet1.xml");
    EXPECT_NE(xml.find(R"(<selection pane="topRight" activeCell="C1" sqref="C1"/>)"),
              std::string::npos);
    EXPECT_NE(xml.find(R"(state="frozen")"), std::string::npos);
    EXPECT_NE(xml.find(R"(sqref="B10 D12:ALL13")"), std::string::npos) << xml;
    EXPECT_NE(xml.find(R"(activeCellId="1")"), std::string::npos);
    EXPECT_EQ(xml.find("zoomScale="), std::string::npos);

    const auto again = LoadXlsx(folder / "saved.xlsm");
    EXPECT_EQ(again->sheets[0]->zoom, 100);
    EXPECT_EQ(again->sheets[0]->activeCell, sheet.activeCell);
    EXPECT_EQ(again->sheets[0]->selection, sheet.selection);
    EXPECT_EQ(again->sheets[0]->frozenAt, (sheethost::CellRef{4, 3}));
}

TEST(SheetView, FrozenPanesAndThePageSetupGoToTheFileAndBack) {
    TempFolder folder;
    auto book = sheethost::NewWorkbook();
    sheethost::Sheet& sheet = *book->sheets[0];
    sheet.frozenAt = {5, 23};
    sheet.selection = {{5, 3, 5, 3}};
    sheet.activeCell = {5, 3};
    sheet.pageSetup = {true, 0, 1};
    SaveXlsx(*book, {}, folder / "plan.xlsx");
    const std::string xml = ReadPart(folder / "plan.xlsx", "xl/worksheets/sheet1.xml");
    EXPECT_NE(xml.find(R"(<pane xSplit="22" ySplit="4" topLeftCell="W5" activePane="bottomRight" )"
                       R"(state="frozen"/><selection pane="bottomRight" activeCell="C5")"),
              std::string::npos)
        << xml;
    EXPECT_NE(xml.find(R"(<pageSetUpPr fitToPage="1"/>)"), std::string::npos) << xml;
    EXPECT_NE(xml.find(R"(<pageSetup orientation="landscape" fitToWidth="0" fitToHeight="1"/>)"),
              std::string::npos)
        << xml;

    auto again = LoadXlsx(folder / "plan.xlsx");
    EXPECT_EQ(again->sheets[0]->frozenAt, sheet.frozenAt);
    EXPECT_EQ(again->sheets[0]->pageSetup, sheet.pageSetup);
    EXPECT_EQ(again->sheets[0]->selection, sheet.selection);

    // Rows only, then nothing frozen and printed as it comes: the pane and the fit go.
    again->sheets[0]->frozenAt = {2, 1};
    again->sheets[0]->pageSetup = {};
    SaveXlsx(*again, folder / "plan.xlsx", folder / "rows.xlsx");
    const std::string rows = ReadPart(folder / "rows.xlsx", "xl/worksheets/sheet1.xml");
    EXPECT_NE(rows.find(R"(<pane ySplit="1" topLeftCell="A2" activePane="bottomLeft" )"),
              std::string::npos)
        << rows;
    EXPECT_EQ(rows.find("fitToHeight"), std::string::npos) << rows;
    EXPECT_EQ(rows.find("landscape"), std::string::npos) << rows;
    auto rowsBook = LoadXlsx(folder / "rows.xlsx");
    EXPECT_EQ(rowsBook->sheets[0]->pageSetup, sheethost::PageSetup{});
    rowsBook->sheets[0]->frozenAt = {};
    SaveXlsx(*rowsBook, folder / "rows.xlsx", folder / "none.xlsx");
    EXPECT_EQ(ReadPart(folder / "none.xlsx", "xl/worksheets/sheet1.xml").find("<pane"),
              std::string::npos);
}

}  // namespace
}  // namespace xlsx::testing
