// The plain rules under the objects: column widths in characters and points, date formats,
// format inheritance, and row operations on the model directly.
#include <gtest/gtest.h>

#include "sheethost/address.h"
#include "sheethost/model.h"
#include "sheethost/rows_edit.h"
#include "sheethost/sheet_edit.h"

namespace {

using sheethost::Area;
using sheethost::CellAt;
using sheethost::Sheet;

TEST(ModelRulesTest, ColumnWidthsCountDigitsOfTheDefaultFont) {
    EXPECT_EQ(sheethost::CharactersToPoints(8.43), 48);  // 64 pixels
    EXPECT_EQ(sheethost::CharactersToPoints(1), 9);      // 12 pixels: padding shrinks below 1
    EXPECT_EQ(sheethost::CharactersToPoints(0.5), 4.5);
    EXPECT_EQ(sheethost::CharactersToPoints(0), 0);
    EXPECT_EQ(sheethost::PointsToCharacters(48), 8.43);
    EXPECT_EQ(sheethost::PointsToCharacters(9), 1);
    for (double width : {2.0, 8.43, 10.57, 20.71, 255.0}) {
        EXPECT_EQ(sheethost::PointsToCharacters(sheethost::CharactersToPoints(width)), width);
    }
}

TEST(ModelRulesTest, DateFormatsAreToldByTheirDateAndTimeParts) {
    for (const char* format : {"yyyy/mm/dd", "m/d", "h:mm", "[h]:mm", "yyyy\"year\"", "d-mmm"}) {
        EXPECT_TRUE(sheethost::IsDateFormat(format)) << format;
    }
    for (const char* format :
         {"General", "0.00_ ", "#,##0", "0%", "\"days\"0", "[Red]0.0", "@", "\\d0", "0.0E+00"}) {
        EXPECT_FALSE(sheethost::IsDateFormat(format)) << format;
    }
}

TEST(ModelRulesTest, CellsInheritRowThenColumnFormatsAndDropEmptyEntries) {
    Sheet sheet;
    sheethost::ChangeStyle(sheet, {Area{1, 3, sheethost::kMaxRow, 3}},
                           [](sheethost::Style& style) { style.numberFormat = "0.00"; });
    EXPECT_EQ(sheethost::EffectiveStyle(sheet, 500, 3)->numberFormat, "0.00");
    EXPECT_TRUE(sheet.cells.empty());
    // A new cell starts from what it inherits; with nothing of its own it is dropped again.
    CellAt(sheet, 4, 3).value = 1.0;
    EXPECT_EQ(sheet.cells.at({4, 3}).style->numberFormat, "0.00");
    sheethost::ClearContents(sheet, {Area{4, 3, 4, 3}});
    EXPECT_TRUE(sheet.cells.empty());
    sheethost::ClearFormats(sheet, {Area{1, 3, sheethost::kMaxRow, 3}});
    EXPECT_TRUE(sheet.columns.empty());
}

TEST(ModelRulesTest, InsertingRowsRefusesToPushContentOffTheSheet) {
    sheethost::Workbook book;
    auto sheet = std::make_shared<Sheet>();
    sheet->name = "S";
    book.sheets.push_back(sheet);
    CellAt(*sheet, sheethost::kMaxRow, 1).value = std::string("last");
    EXPECT_FALSE(sheethost::InsertRows(book, *sheet, 5, 1));
    EXPECT_EQ(sheet->cells.begin()->first.row, sheethost::kMaxRow);
    sheethost::ClearContents(*sheet, {Area{sheethost::kMaxRow, 1, sheethost::kMaxRow, 1}});
    EXPECT_TRUE(sheethost::InsertRows(book, *sheet, 5, 1));
}

TEST(ModelRulesTest, MovingRowsKeepsEveryRowOnce) {
    sheethost::Workbook book;
    auto sheet = std::make_shared<Sheet>();
    sheet->name = "S";
    book.sheets.push_back(sheet);
    for (int row = 1; row <= 8; ++row) CellAt(*sheet, row, 1).value = double(row);
    const auto column = [&] {
        std::vector<double> values;
        for (const auto& [ref, cell] : sheet->cells) values.push_back(std::get<double>(cell.value));
        return values;
    };
    sheethost::MoveRows(book, *sheet, 2, 2, 7);  // 2:3 before 7
    EXPECT_EQ(column(), (std::vector<double>{1, 4, 5, 6, 2, 3, 7, 8}));
    sheethost::MoveRows(book, *sheet, 5, 2, 1);  // and back to the top
    EXPECT_EQ(column(), (std::vector<double>{2, 3, 1, 4, 5, 6, 7, 8}));
    sheethost::MoveRows(book, *sheet, 3, 2, 4);  // inside the block: nothing happens
    EXPECT_EQ(column(), (std::vector<double>{2, 3, 1, 4, 5, 6, 7, 8}));
}

}  // namespace
