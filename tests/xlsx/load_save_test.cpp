#include <gtest/gtest.h>

#include "package_files.h"
#include "sample_workbook.h"
#include "sheethost/model.h"
#include "xlsx/xlsx.h"

namespace xlsx::testing {
namespace {

using sheethost::Blank;
using sheethost::ErrorValue;
using sheethost::Value;
namespace xl = sheethost::xl;

class SampleTest : public ::testing::Test {
  protected:
    void SetUp() override { WriteZip(folder / "plan.xlsm", SampleWorkbook()); }
    std::shared_ptr<sheethost::Workbook> Load() { return LoadXlsx(folder / "plan.xlsm"); }

    TempFolder folder;
};

const sheethost::Cell& At(const sheethost::Sheet& sheet, int row, int column) {
    static const sheethost::Cell kNone;
    const sheethost::Cell* cell = sheethost::FindCell(sheet, row, column);
    return cell != nullptr ? *cell : kNone;
}

TEST_F(SampleTest, LoadsSheetsValuesAndFormulas) {
    const auto book = Load();
    ASSERT_EQ(book->sheets.size(), 2u);
    EXPECT_EQ(book->name, "plan.xlsm");
    EXPECT_EQ(book->activeSheet, 1u);
    const sheethost::Sheet& wbs = *book->sheets[0];
    EXPECT_EQ(wbs.name, "WBS");
    EXPECT_EQ(wbs.codeName, "wsWBS");
    EXPECT_EQ(book->sheets[1]->codeName, "wsSettings");

    EXPECT_EQ(At(wbs, 1, 1).value, Value(std::string("Task")));
    EXPECT_EQ(At(wbs, 1, 2).value, Value(std::string("Rich text")));
    EXPECT_EQ(At(wbs, 1, 3).value, Value(std::string("inline")));
    EXPECT_EQ(At(wbs, 2, 1).value, Value(1.5));
    EXPECT_EQ(At(wbs, 2, 2).value, Value(true));
    EXPECT_EQ(At(wbs, 2, 3).value, Value(ErrorValue::kNA));
    // Shared formulas move their relative parts with the cell; cached results are not values.
    EXPECT_EQ(At(wbs, 3, 1).formula, "=A2*2+$A$2");
    EXPECT_EQ(At(wbs, 4, 1).formula, "=A3*2+$A$2");
    EXPECT_EQ(At(wbs, 5, 1).formula, "=A4*2+$A$2");
    EXPECT_EQ(At(wbs, 5, 1).value, Value(Blank{}));
    EXPECT_EQ(At(wbs, 3, 3).formula, "=\"x\"&B1");
}

TEST_F(SampleTest, LoadsFormatsGeometryAndNames) {
    const auto book = Load();
    const sheethost::Sheet& wbs = *book->sheets[0];
    EXPECT_EQ(At(wbs, 2, 4).style->numberFormat, "m/d/yyyy");
    EXPECT_TRUE(sheethost::IsDateFormat(At(wbs, 2, 4).style->numberFormat));
    EXPECT_TRUE(At(wbs, 1, 4).quotePrefix);

    const sheethost::Style& rich = At(wbs, 3, 2).style;
    EXPECT_EQ(rich.numberFormat, "yyyy/mm/dd");
    EXPECT_EQ(rich.font.name, "Arial");
    EXPECT_EQ(rich.font.size, 14);
    EXPECT_TRUE(rich.font.bold);
    EXPECT_FALSE(rich.font.italic);
    EXPECT_EQ(rich.font.colorIndex, 3);
    EXPECT_EQ(rich.interior.pattern, xl::kPatternSolid);
    EXPECT_EQ(rich.interior.color, 0x00FFFF);  // yellow as red + green * 256
    EXPECT_EQ(rich.interior.colorIndex, 6);
    EXPECT_EQ(rich.horizontalAlignment, xl::kHAlignCenter);
    EXPECT_EQ(rich.verticalAlignment, xl::kVAlignTop);
    EXPECT_TRUE(rich.wrapText);
    const auto& left = rich.borders[xl::kEdgeLeft - xl::kDiagonalDown];
    const auto& bottom = rich.borders[xl::kEdgeBottom - xl::kDiagonalDown];
    EXPECT_EQ(left, (sheethost::Border{xl::kContinuous, xl::kThin, xl::kAutomatic}));
    EXPECT_EQ(bottom, (sheethost::Border{xl::kContinuous, xl::kMedium, 5}));
    EXPECT_EQ(At(wbs, 1, 1).style, sheethost::Style{});

    EXPECT_DOUBLE_EQ(*wbs.columns.at(2).width, 20.0);
    EXPECT_TRUE(wbs.columns.at(5).hidden);
    EXPECT_NEAR(*wbs.columns.at(5).width, sheethost::kStandardColumnWidth, 1e-9);
    EXPECT_EQ((*wbs.columns.at(6).style)->interior.colorIndex, 6);
    // A cell formatted like its column has no entry of its own; one formatted unlike it has.
    EXPECT_EQ(sheethost::FindCell(wbs, 5, 6), nullptr);
    EXPECT_NE(sheethost::FindCell(wbs, 5, 7), nullptr);
    EXPECT_EQ(wbs.rows.at(1).height, 30);
    EXPECT_TRUE(wbs.rows.at(2).hidden);
    EXPECT_EQ((*wbs.rows.at(7).style)->interior.colorIndex, 6);

    ASSERT_EQ(book->names.size(), 1u);
    EXPECT_EQ(book->names[0], (sheethost::DefinedName{"Start", "=Settings!$B$1"}));
    ASSERT_EQ(wbs.names.size(), 1u);
    EXPECT_EQ(wbs.names[0].refersTo, "=WBS!$A$1:$D$9");
}

TEST_F(SampleTest, RoundTripKeepsTheModelAndEverythingItDoesNotModel) {
    auto book = Load();
    sheethost::Sheet& wbs = *book->sheets[0];
    sheethost::CellAt(wbs, 6, 1).formula = "=SUM(A2:A5)";
    sheethost::Cell& note = sheethost::CellAt(wbs, 6, 2);
    note.value = std::string("new <text> & more");
    note.style.Edit().font.bold = true;
    note.style.Edit().interior = {4, 0x00FF00, xl::kPatternSolid};
    note.style.Edit().numberFormat = "0.000";
    wbs.rows[6].hidden = true;
    wbs.rows.Edit().erase(2);  // shown again
    auto added = std::make_shared<sheethost::Sheet>();
    added->name = "Report";
    added->codeName = "wsReport";
    sheethost::CellAt(*added, 2, 2).value = 42.0;
    added->names.push_back({"Total", "=Report!$B$2"});
    book->sheets.push_back(added);
    book->activeSheet = 0;

    SaveXlsx(*book, folder / "plan.xlsm", folder / "saved.xlsm");
    const auto again = LoadXlsx(folder / "saved.xlsm");
    ASSERT_EQ(again->sheets.size(), 3u);
    for (std::size_t index = 0; index < 3; ++index) {
        const auto& before = *book->sheets[index];
        const auto& after = *again->sheets[index];
        EXPECT_EQ(after.name, before.name);
        EXPECT_EQ(after.codeName, before.codeName);
        EXPECT_EQ(after.cells, before.cells) << before.name;
        EXPECT_EQ(after.rows, before.rows) << before.name;
        EXPECT_EQ(after.columns, before.columns) << before.name;
        EXPECT_EQ(after.names, before.names) << before.name;
    }
    EXPECT_EQ(again->names, book->names);
    EXPECT_EQ(again->activeSheet, 0u);

    const auto source = folder / "plan.xlsm";
    const auto saved = folder / "saved.xlsm";
    for (const char* kept : {"xl/vbaProject.bin", "customUI/customUI14.xml",
                             "xl/printerSettings/printerSettings1.bin", "xl/sharedStrings.xml"}) {
        EXPECT_EQ(ReadPart(saved, kept), ReadPart(source, kept)) << kept;
    }
    EXPECT_EQ(ReadPart(saved, "xl/vbaProject.bin"), kMacroBytes);
    EXPECT_EQ(ReadPart(saved, "xl/calcChain.xml"), "");
    const std::string types = ReadPart(saved, "[Content_Types].xml");
    EXPECT_NE(types.find("macroEnabled.main+xml"), std::string::npos);
    EXPECT_EQ(types.find("calcChain"), std::string::npos);

    const std::string sheet = ReadPart(saved, "xl/worksheets/sheet1.xml");
    for (const char* kept :
         {"<tabColor", "zoomScale=\"85\"", "<dataValidations", "<pageMargins", "<sheetFormatPr"}) {
        EXPECT_NE(sheet.find(kept), std::string::npos) << kept;
    }
    EXPECT_EQ(sheet.find("<v>4.5</v>"), std::string::npos) << "stale cached formula result";
    EXPECT_EQ(ReadPart(saved, "xl/worksheets/sheet2.xml").find("tabSelected"), std::string::npos);
    const std::string workbook = ReadPart(saved, "xl/workbook.xml");
    EXPECT_NE(workbook.find("fullCalcOnLoad=\"1\""), std::string::npos);
    EXPECT_NE(workbook.find("comment=\"kept\""), std::string::npos);
    EXPECT_NE(workbook.find("hidden=\"1\""), std::string::npos);
}

TEST_F(SampleTest, RenamedSheetKeepsItsPartAndDeletedSheetLeaves) {
    auto book = Load();
    book->sheets[0]->name = "Tasks";
    book->sheets.erase(book->sheets.begin() + 1);
    book->names.clear();
    book->activeSheet = 0;
    SaveXlsx(*book, folder / "plan.xlsm", folder / "saved.xlsm");
    const auto saved = folder / "saved.xlsm";
    EXPECT_NE(ReadPart(saved, "xl/worksheets/sheet1.xml").find("<dataValidations"),
              std::string::npos);
    EXPECT_EQ(ReadPart(saved, "xl/worksheets/sheet2.xml"), "");
    EXPECT_EQ(ReadPart(saved, "[Content_Types].xml").find("sheet2.xml"), std::string::npos);
    const auto again = LoadXlsx(saved);
    ASSERT_EQ(again->sheets.size(), 1u);
    EXPECT_EQ(again->sheets[0]->name, "Tasks");
    EXPECT_EQ(again->sheets[0]->cells, book->sheets[0]->cells);
}

TEST(SaveNew, WorkbookWithoutSourceBecomesAPackage) {
    TempFolder folder;
    sheethost::Workbook book;
    auto sheet = std::make_shared<sheethost::Sheet>();
    sheet->name = "Sheet1";
    sheethost::CellAt(*sheet, 1, 1).value = std::string("x");
    sheethost::CellAt(*sheet, 2, 1).formula = "=LEN(A1)";
    sheet->columns[1].width = 30;
    book.sheets.push_back(sheet);
    SaveXlsx(book, {}, folder / "new.xlsx");
    const auto again = LoadXlsx(folder / "new.xlsx");
    ASSERT_EQ(again->sheets.size(), 1u);
    EXPECT_EQ(again->sheets[0]->cells, sheet->cells);
    EXPECT_EQ(again->sheets[0]->columns, sheet->columns);
}

}  // namespace
}  // namespace xlsx::testing
