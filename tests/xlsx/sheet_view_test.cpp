// The zoom, selection and active cell of a sheet's window, with frozen panes that keep a selection
// each.
#include <gtest/gtest.h>

#include "package_files.h"
#include "sample_workbook.h"
#include "sheethost/model.h"
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
}

}  // namespace
}  // namespace xlsx::testing
