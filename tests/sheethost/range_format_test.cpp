// Cell formats: borders (shared between neighbours), interior, font, conditional formats,
// alignments and number formats, and mixed formats over blocks.
#include <gtest/gtest.h>

#include "support/host_calls.h"

namespace {

using hosttest::Number;
using hosttest::Object;
using hosttest::Put;
using hosttest::Text;

class RangeFormatTest : public hosttest::HostTest {
  protected:
    RangeFormatTest() {
        Load(R"json({"sheets":[{"name":"Report"}]})json");
        sheet = Sheet("Report");
    }

    double BorderOf(const char* address, int index, const char* property = "LineStyle") {
        const std::string path = std::string(".Range(%s).Borders(%d).") + property;
        return Number(sheet.get(), Widen(path).c_str(), address, index);
    }

    void SetEdge(const char* address, int index, double weight) {
        Object range = hosttest::Get(sheet.get(), OLESTR(".Range(%s)"), address);
        Put(range.get(), OLESTR("Borders(%d).LineStyle=%e"), index, 1.0);
        Put(range.get(), OLESTR("Borders(%d).Weight=%e"), index, weight);
        Put(range.get(), OLESTR("Borders(%d).ColorIndex=%e"), index, -4105.0);
    }

    // The report's box: no diagonals, medium outer edges, thin inside lines.
    void DrawBox(const char* address) {
        Object range = hosttest::Get(sheet.get(), OLESTR(".Range(%s)"), address);
        Put(range.get(), OLESTR("Borders(%d).LineStyle=%e"), 5, -4142.0);
        Put(range.get(), OLESTR("Borders(%d).LineStyle=%e"), 6, -4142.0);
        for (int edge : {7, 8, 9, 10}) SetEdge(address, edge, -4138);
        for (int inside : {11, 12}) SetEdge(address, inside, 2);
    }

    Object sheet;
};

TEST_F(RangeFormatTest, BoxEdgesAndInsideLinesLandOnTheRightCells) {
    DrawBox("B2:D4");
    EXPECT_EQ(BorderOf("B2:B4", 7), 1);
    EXPECT_EQ(BorderOf("B2:B4", 7, "Weight"), -4138);
    EXPECT_EQ(BorderOf("C3", 7, "Weight"), 2);  // an inside line
    EXPECT_EQ(BorderOf("D3", 10), 1);
    EXPECT_EQ(BorderOf("B2", 5), -4142);
    EXPECT_EQ(BorderOf("B2:D4", 12, "Weight"), 2);
    EXPECT_EQ(BorderOf("B2", 10, "ColorIndex"), -4105);
    // An edge is shared with the neighbouring cell, which reads it as its own.
    EXPECT_EQ(BorderOf("E3", 7), 1);
    EXPECT_EQ(BorderOf("C5", 8, "Weight"), -4138);
    EXPECT_EQ(BorderOf("F3", 7), -4142);
    // The settings loop stops at the first cell without a right edge.
    EXPECT_EQ(BorderOf("D5", 10), -4142);
    // Over cells whose edges differ, a property reads as Null.
    EXPECT_EQ(
        hosttest::TypeOf(sheet.get(), OLESTR(".Range(%s).Borders(%d).LineStyle"), "D4:D5", 10),
        VT_NULL);
    EXPECT_TRUE(FAILED(Put(sheet.get(), OLESTR(".Range(%s).Borders(%d).Weight=%d"), "B2", 10, 3)));
    EXPECT_TRUE(
        FAILED(Put(sheet.get(), OLESTR(".Range(%s).Borders(%d).LineStyle=%d"), "B2", 13, 1)));
}

TEST_F(RangeFormatTest, InteriorColourIndexColourAndPatternAgree) {
    Put(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex=%d"), "B2:N2", 35);
    Put(sheet.get(), OLESTR(".Range(%s).Interior.Pattern=%d"), "B2:N2", 1);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.Color"), "C2"), 0xCCFFCC);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.Pattern"), "C2"), 1);
    // A colour given as RGB reads back with the nearest palette index (15 is grey C0C0C0).
    Put(sheet.get(), OLESTR(".Range(%s).Interior.Color=%d"), "A5", 0xC1C1C1);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "A5"), 15);
    Put(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex=%d"), "A5", -4142);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.Pattern"), "A5"), -4142);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.Color"), "A5"), 0xFFFFFF);
    EXPECT_TRUE(FAILED(Put(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex=%d"), "A5", 57)));
    EXPECT_EQ(hosttest::TypeOf(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "A2:B2"),
              VT_NULL);
}

TEST_F(RangeFormatTest, FontAndAlignments) {
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Cells(%u,%u).Font.Name"), 5u, 2u), "Calibri");
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Cells(%u,%u).Font.Size"), 5u, 2u), "11");
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Cells(%u,%u).Font.ColorIndex"), 5u, 2u), 1);
    Put(sheet.get(), OLESTR(".Range(%s).Font.Name=%s"), "B5", "Meiryo UI");
    Put(sheet.get(), OLESTR(".Range(%s).Font.Size=%e"), "B5", 9.5);
    Put(sheet.get(), OLESTR(".Range(%s).Font.Bold=%b"), "B5", 1);
    Put(sheet.get(), OLESTR(".Range(%s).Font.ColorIndex=%d"), "B5", 3);
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).Font.Name"), "B5"), "Meiryo UI");
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Font.Size"), "B5"), 9.5);
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).Font.Bold"), "B5"), "True");
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Font.Color"), "B5"), 0x0000FF);
    EXPECT_TRUE(FAILED(Put(sheet.get(), OLESTR(".Range(%s).Font.Size=%d"), "B5", 0)));

    Put(sheet.get(), OLESTR(".Range(%s).HorizontalAlignment=%d"), "B2:I2", -4108);
    Put(sheet.get(), OLESTR(".Range(%s).VerticalAlignment=%d"), "B2:I2", -4108);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).HorizontalAlignment"), "I2"), -4108);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).HorizontalAlignment"), "J2"), 1);
    Put(sheet.get(), OLESTR(".Range(%s).NumberFormatLocal=%s"), "C3:I9", "0.00_ ");
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).NumberFormat"), "I9"), "0.00_ ");
}

TEST_F(RangeFormatTest, ConditionalFormatsAreAddedColouredAndDeleted) {
    Object range = hosttest::Get(sheet.get(), OLESTR(".Range(%s)"), "C3:C9");
    ASSERT_EQ(hosttest::Call(range.get(), OLESTR(".FormatConditions.Delete")), S_OK);
    ASSERT_EQ(hosttest::Call(range.get(), OLESTR(".FormatConditions.Add(%d,%d,%s)"), 1, 6, "0.0"),
              S_OK);
    ASSERT_EQ(Put(range.get(), OLESTR(".FormatConditions(%d).font.ColorIndex=%d"), 1, 3), S_OK);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).FormatConditions.Count"), "C9"), 1);
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).FormatConditions(%d).Formula1"), "C5", 1),
              "=0.0");
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).FormatConditions(%d).Operator"), "C5", 1), 6);
    EXPECT_EQ(
        Number(sheet.get(), OLESTR(".Range(%s).FormatConditions(%d).Font.ColorIndex"), "C4", 1), 3);
    EXPECT_TRUE(FAILED(Put(range.get(), OLESTR(".FormatConditions(%d).font.ColorIndex=%d"), 2, 3)));
    // Between needs two formulas; an unknown type is refused.
    EXPECT_TRUE(
        FAILED(hosttest::Call(range.get(), OLESTR(".FormatConditions.Add(%d,%d,%s)"), 1, 1, "0")));
    EXPECT_TRUE(
        FAILED(hosttest::Call(range.get(), OLESTR(".FormatConditions.Add(%d,%d,%s)"), 9, 6, "0")));
    hosttest::Call(range.get(), OLESTR(".FormatConditions.Delete"));
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).FormatConditions.Count"), "C9"), 0);
}

TEST_F(RangeFormatTest, WholeColumnFormatsReachEveryCellWithoutStoringThem) {
    Put(sheet.get(), OLESTR(".Range(%s).Value=%d"), "E7", 1);
    Put(sheet.get(), OLESTR(".Columns(%d).Interior.ColorIndex=%d"), 5, 6);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "E900000"), 6);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "E7"), 6);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Columns(%d).Interior.ColorIndex"), 5), 6);
    EXPECT_EQ(Model("Report").cells.size(), 1u);
    // A row format crossing the column wins there, but the column keeps its colour below it.
    Put(sheet.get(), OLESTR(".Rows(%d).Font.Bold=%b"), 3, 1);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "E3"), 6);
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).Font.Bold"), "E3"), "True");
    Put(sheet.get(), OLESTR(".Columns(%d).Interior.ColorIndex=%d"), 5, 8);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "E3"), 8);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "F3"), -4142);
}

TEST_F(RangeFormatTest, AFormatThatWouldGiveTensOfMillionsOfCellsAnEntryIsRefusedWhole) {
    Put(sheet.get(), OLESTR(".Range(%s).Value=%d"), "B2", 1);
    // Every column formatted, then inside lines over whole rows: each row would cross 16,384
    // formatted columns.
    Put(sheet.get(), OLESTR(".Cells.Interior.ColorIndex=%d"), 6);
    EXPECT_EQ(Put(sheet.get(), OLESTR(".Cells.Borders.LineStyle=%d"), 1), E_OUTOFMEMORY);
    // A block of the whole sheet but its last row, which is no whole column.
    EXPECT_EQ(Put(sheet.get(), OLESTR(".Range(%s).Font.Bold=%b"), "A1:XFD1048575", 1),
              E_OUTOFMEMORY);
    // Nothing of either changed; a smaller block still takes its format.
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Borders(%d).LineStyle"), "B2", 12), -4142);
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).Font.Bold"), "C9"), "False");
    EXPECT_EQ(Model("Report").cells.size(), 1u);
    Put(sheet.get(), OLESTR(".Range(%s).Font.Bold=%b"), "A1:J1000", 1);
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).Font.Bold"), "C9"), "True");
}

}  // namespace
