// Rows and columns: geometry in points, hiding, heights and widths, fitting, and rows cut and
// inserted, inserted or deleted with contents, formats, formulas, names and shapes following.
#include <gtest/gtest.h>

#include "support/host_calls.h"

namespace {

using hosttest::Get;
using hosttest::Number;
using hosttest::Object;
using hosttest::Put;
using hosttest::Text;

class RowsTest : public hosttest::HostTest {
  protected:
    RowsTest() {
        Load(R"json({
          "names": {"Total": "=WBS!$C$9"},
          "sheets": [{
            "name": "WBS", "codeName": "wsWBS",
            "columns": {"A": {"width": 2}, "C": {"hidden": true}},
            "rows": {"2": {"height": 30}, "6": {"hidden": true}},
            "cells": {"B5": "Design", "C5": 10, "B6": "Build", "C6": 20, "B7": "Test", "C7": 30,
                      "B8": {"value": "End", "interior": {"colorIndex": 6, "pattern": 1}},
                      "C9": {"formula": "=SUM(C5:C7)"}, "D5": {"formula": "=C7*2"}}
          }, {"name": "Report", "cells": {"A1": {"formula": "=WBS!C7"}}}]})json");
        sheet = Sheet("WBS");
    }

    std::string ValueAt(const char* address) {
        return Text(sheet.get(), OLESTR(".Range(%s).Value"), address);
    }
    std::string FormulaAt(const char* address) {
        return Text(sheet.get(), OLESTR(".Range(%s).Formula"), address);
    }

    Object sheet;
};

TEST_F(RowsTest, GeometryComesFromWidthsAndHeights) {
    // Column A is 2 characters (19 pixels), B the standard 8.43 (64 pixels), C hidden.
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Left"), "B1"), 14.25);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Width"), "B1"), 48);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Width"), "C1"), 0);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Left"), "D1"), 62.25);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Top"), "A3"), 45);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Height"), "A5:A7"), 30);  // 6 is hidden
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Top"), "A7"), 90);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Cells(%u,%u).Top"), 1u, 1u), 0);
}

TEST_F(RowsTest, HiddenHeightsAndWidthsReadAndWrite) {
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Rows(%d).EntireRow.Hidden"), 6), "True");
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Rows(%d).EntireRow.Hidden"), 5), "False");
    ASSERT_EQ(Put(sheet.get(), OLESTR(".Rows(%d).EntireRow.Hidden=%b"), 6, 0), S_OK);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Top"), "A7"), 105);
    Put(sheet.get(), OLESTR(".Columns(%d).EntireColumn.Hidden=%b"), 3, 0);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Width"), "C1"), 48);
    // Hidden belongs to whole rows and columns only.
    EXPECT_TRUE(FAILED(Put(sheet.get(), OLESTR(".Range(%s).Hidden=%b"), "B2", 1)));

    Put(sheet.get(), OLESTR(".Columns(%d).ColumnWidth = %d"), 1, 1);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Columns(%d).ColumnWidth"), 1), 1);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Left"), "B1"), 9);
    Put(sheet.get(), OLESTR(".Columns(%d).ColumnWidth=%e"), 4, 10.5);  // kept in whole pixels
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Columns(%d).ColumnWidth"), 4), 10.57);
    Put(sheet.get(), OLESTR(".Rows(%d).RowHeight=%d"), 3, 0);
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Rows(%d).Hidden"), 3), "True");
    // Tops read before a change follow it.
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Top"), "A7"), 90);
    EXPECT_EQ(hosttest::TypeOf(sheet.get(), OLESTR(".Rows(%s).RowHeight"), "1:2"), VT_NULL);
    EXPECT_TRUE(FAILED(Put(sheet.get(), OLESTR(".Rows(%d).RowHeight=%d"), 3, 410)));
    // The hidden row gone, the rows below it move up a whole row.
    hosttest::Call(sheet.get(), OLESTR(".Rows(%d).Delete"), 3);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Top"), "A7"), 105);
}

TEST_F(RowsTest, AutoFitSizesColumnsToTheirText) {
    Put(sheet.get(), OLESTR(".Range(%s).Value=%s"), "F1", "A rather long caption");
    Put(sheet.get(), OLESTR(".Columns(%d).ColumnWidth=%d"), 7, 30);
    hosttest::Call(sheet.get(), OLESTR(".Cells.EntireColumn.AutoFit"));
    const double fitted = Number(sheet.get(), OLESTR(".Columns(%d).ColumnWidth"), 6);
    EXPECT_GT(fitted, 20);
    EXPECT_LT(fitted, 26);
    // An empty column goes back to the standard width; a hidden one stays hidden.
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Columns(%d).ColumnWidth"), 7), 8.43);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Columns(%d).ColumnWidth"), 3), 0);
    EXPECT_TRUE(FAILED(hosttest::Call(sheet.get(), OLESTR(".Range(%s).AutoFit"), "B2")));
}

TEST_F(RowsTest, CutRowsInsertedAboveCarryEverythingWithThem) {
    // The task move: cut 7:8, insert them before row 5.
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Cut"), "7:8"), S_OK);
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Insert(%d)"), "5:5", -4121), S_OK);
    EXPECT_EQ(ValueAt("B5"), "Test");
    EXPECT_EQ(ValueAt("B6"), "End");
    EXPECT_EQ(ValueAt("B7"), "Design");
    EXPECT_EQ(ValueAt("B8"), "Build");
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "B6"), 6);
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Rows(%d).Hidden"), 8), "True");  // Build's row
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Rows(%d).Hidden"), 6), "False");
    // Formulas follow the cells they refer to, here and on other sheets and in names.
    EXPECT_EQ(FormulaAt("D7"), "=C5*2");
    EXPECT_EQ(ValueAt("D7"), "60");
    EXPECT_EQ(FormulaAt("C9"), "=SUM(C5:C7)");
    EXPECT_EQ(ValueAt("C9"), "40");
    EXPECT_EQ(Text(workbook.get(), OLESTR(".Worksheets(%s).Range(%s).Formula"), "Report", "A1"),
              "=WBS!C5");
    EXPECT_EQ(book->names.front().refersTo, "=WBS!$C$9");
}

TEST_F(RowsTest, CutRowsInsertedBelowCloseTheGap) {
    hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Cut"), "5:5");
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Insert(%d)"), "8:8", -4121), S_OK);
    EXPECT_EQ(ValueAt("B5"), "Build");
    EXPECT_EQ(ValueAt("B7"), "Design");
    EXPECT_EQ(ValueAt("B8"), "End");
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Rows(%d).Hidden"), 5), "True");
    EXPECT_EQ(FormulaAt("D7"), "=C6*2");
    EXPECT_EQ(ValueAt("D7"), "60");
}

// "21:22" also reads as a time of day; as the argument of Rows it is an address. The moved rows
// are selected again the way the task moves do it.
TEST_F(RowsTest, RowAddressesThatLookLikeTimesMoveAndSelectRows) {
    Put(sheet.get(), OLESTR(".Range(%s).Value=%s"), "B21", "Pack");
    Put(sheet.get(), OLESTR(".Range(%s).Value=%s"), "B22", "Load");
    Put(sheet.get(), OLESTR(".Range(%s).Value=%s"), "B23", "Drive");
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Cut"), "21:22"), S_OK);
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Insert(%d)"), "24:24", -4121), S_OK);
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Select"), "22:23"), S_OK);
    EXPECT_EQ(ValueAt("B21"), "Drive");
    EXPECT_EQ(ValueAt("B22"), "Pack");
    EXPECT_EQ(ValueAt("B23"), "Load");
    EXPECT_EQ(Number(workbook.get(), OLESTR(".Application.Selection.Rows.Count")), 2);
    EXPECT_EQ(Number(workbook.get(), OLESTR(".Application.Selection.Row")), 22);
    EXPECT_EQ(Number(workbook.get(), OLESTR(".Application.Selection.Columns.Count")), 16384);
}

TEST_F(RowsTest, InsertedAndDeletedRowsShiftFormulas) {
    // The event handler's insert: the new row looks like the row above it.
    Object row8 = Get(sheet.get(), OLESTR(".Range(%s)"), "B8");
    ASSERT_EQ(hosttest::Call(row8.get(), OLESTR(".EntireRow.Insert")), S_OK);
    EXPECT_EQ(ValueAt("B9"), "End");
    EXPECT_EQ(ValueAt("B8"), "");
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Height"), "A2:A3"), 45);
    EXPECT_EQ(FormulaAt("C10"), "=SUM(C5:C7)");
    EXPECT_EQ(book->names.front().refersTo, "=WBS!$C$10");

    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Delete"), "7:8"), S_OK);
    EXPECT_EQ(FormulaAt("C8"), "=SUM(C5:C6)");
    EXPECT_EQ(FormulaAt("D5"), "=#REF!*2");
    EXPECT_EQ(hosttest::TypeOf(sheet.get(), OLESTR(".Range(%s).Value"), "D5"), VT_ERROR);
    // Partial rows cannot be inserted or deleted as rows.
    EXPECT_TRUE(FAILED(hosttest::Call(sheet.get(), OLESTR(".Range(%s).Insert(%d)"), "B2", -4121)));
}

TEST_F(RowsTest, CopiedRowsInsertAsCopies) {
    hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Copy"), "5:5");
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Insert(%d)"), "2:2", -4121), S_OK);
    EXPECT_EQ(ValueAt("B2"), "Design");
    EXPECT_EQ(ValueAt("B6"), "Design");
    EXPECT_EQ(FormulaAt("D2"), "=C4*2");  // the copy's relative reference moved with it
    EXPECT_EQ(FormulaAt("D6"), "=C8*2");
}

TEST_F(RowsTest, ShapesThatMoveWithCellsFollowTheirRows) {
    Object shapes = Get(sheet.get(), OLESTR(".Shapes"));
    const double rowTop = Number(sheet.get(), OLESTR(".Range(%s).Top"), "A8");
    Object bar =
        Get(shapes.get(), OLESTR(".AddShape(%e,%e,%e,%e,%e)"), 1.0, 100.0, rowTop + 3, 50.0, 9.0);
    Object floating =
        Get(shapes.get(), OLESTR(".AddShape(%e,%e,%e,%e,%e)"), 1.0, 100.0, rowTop + 3, 50.0, 9.0);
    ASSERT_EQ(Put(bar.get(), OLESTR(".Placement=%d"), 1), S_OK);
    ASSERT_EQ(Put(floating.get(), OLESTR(".Placement=%d"), 3), S_OK);
    hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Cut"), "8:8");
    hosttest::Call(sheet.get(), OLESTR(".Rows(%s).Insert(%d)"), "5:5", -4121);
    EXPECT_EQ(Number(bar.get(), OLESTR(".Top")),
              Number(sheet.get(), OLESTR(".Range(%s).Top"), "A5") + 3);
    EXPECT_EQ(Number(bar.get(), OLESTR(".Height")), 9);
    EXPECT_EQ(Number(floating.get(), OLESTR(".Top")), rowTop + 3);
}

}  // namespace
