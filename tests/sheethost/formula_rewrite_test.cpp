#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "sheethost/formula.h"

namespace sheethost {
namespace {

// Row maps as the row operations build them.
std::function<int(int)> InsertRows(int at, int count) {
    return [=](int row) { return row >= at ? row + count : row; };
}

std::function<int(int)> DeleteRows(int first, int last) {
    return [=](int row) {
        if (row < first) return row;
        return row > last ? row - (last - first + 1) : 0;
    };
}

// Cutting row `from` and inserting it above row `to` (to < from).
std::function<int(int)> MoveRowUp(int from, int to) {
    return [=](int row) {
        if (row == from) return to;
        return (row >= to && row < from) ? row + 1 : row;
    };
}

std::string OnSheet1(const std::string& formula, const std::function<int(int)>& map) {
    return RewriteRowReferences(formula, "Sheet1", "Sheet1", map);
}

TEST(RewriteRowsTest, InsertedRowsMoveRelativeAndAbsoluteAlike) {
    const auto insert = InsertRows(5, 2);
    EXPECT_EQ(OnSheet1("=A4+A5+$B$6+B$7+$C8", insert), "=A4+A7+$B$8+B$9+$C10");
    EXPECT_EQ(OnSheet1("=SUM(A3:A6)", insert), "=SUM(A3:A8)");  // grows around the insert
    EXPECT_EQ(OnSheet1("=SUM(A5:B6)", insert), "=SUM(A7:B8)");
    EXPECT_EQ(OnSheet1("=SUM(A1:A4)", insert), "=SUM(A1:A4)");  // ends just above
    EXPECT_EQ(OnSheet1("=SUM(5:7)+SUM($4:$5)", insert), "=SUM(7:9)+SUM($4:$7)");
    EXPECT_EQ(OnSheet1("=SUM(C:D)", insert), "=SUM(C:D)");
    EXPECT_EQ(OnSheet1("=A1048575", insert), "=#REF!");  // pushed off the sheet
}

TEST(RewriteRowsTest, DeletedRowsBecomeRefErrorsAndBlocksShrink) {
    const auto remove = DeleteRows(5, 6);
    EXPECT_EQ(OnSheet1("=A4+A5*A7", remove), "=A4+#REF!*A5");
    EXPECT_EQ(OnSheet1("=SUM(A4:A7)", remove), "=SUM(A4:A5)");
    EXPECT_EQ(OnSheet1("=SUM(A5:A8)", remove), "=SUM(A5:A6)");
    EXPECT_EQ(OnSheet1("=SUM(A2:A6)", remove), "=SUM(A2:A4)");
    EXPECT_EQ(OnSheet1("=SUM($A$5:$A$6)+1", remove), "=SUM(#REF!)+1");
    EXPECT_EQ(OnSheet1("=SUM(5:6)", remove), "=SUM(#REF!)");
}

TEST(RewriteRowsTest, MovedRowCarriesItsReferences) {
    // A task moved from row 15 to row 13: the summary's child list follows both rows.
    const auto move = MoveRowUp(15, 13);
    EXPECT_EQ(OnSheet1("=IF(MIN(P13,P15)=0,\"\",MIN(P13,P15))", move),
              "=IF(MIN(P14,P13)=0,\"\",MIN(P14,P13))");
    EXPECT_EQ(OnSheet1("=IF(N(F12)=0,\"\",SUM(N(J15)*N(F15))/F12)", move),
              "=IF(N(F12)=0,\"\",SUM(N(J13)*N(F13))/F12)");
    EXPECT_EQ(OnSheet1("=SUM(A13:B14)+SUM(A15:C15)", move), "=SUM(A14:B15)+SUM(A13:C13)");
    // Both ends follow their rows; one moved above the other turns the block around, and it is
    // written top first with each end keeping its own anchoring.
    EXPECT_EQ(OnSheet1("=SUM(A14:$A$15)", move), "=SUM($A$13:A15)");
}

TEST(RewriteRowsTest, OnlyReferencesToTheMovedSheetChange) {
    const auto insert = InsertRows(1, 1);
    // On the moved sheet: unqualified and self-qualified references move, others stay.
    EXPECT_EQ(RewriteRowReferences("=A1+Sheet1!A1+Sheet2!A1", "Sheet1", "Sheet1", insert),
              "=A2+Sheet1!A2+Sheet2!A1");
    // On another sheet: only references naming the moved sheet move, in any case of its name.
    EXPECT_EQ(RewriteRowReferences("=A1+SHEET1!A1:B2+'My Sheet'!A1", "Sheet2", "Sheet1", insert),
              "=A1+SHEET1!A2:B3+'My Sheet'!A1");
    EXPECT_EQ(RewriteRowReferences("='My Sheet'!$A$1", "Sheet2", "my sheet", insert),
              "='My Sheet'!$A$2");
    EXPECT_EQ(RewriteRowReferences("=Sheet1!A1", "Sheet2", "Sheet1", DeleteRows(1, 1)),
              "=Sheet1!#REF!");
}

TEST(RewriteRowsTest, TextNamesAndNonFormulasAreLeftAlone) {
    const auto insert = InsertRows(1, 3);
    EXPECT_EQ(OnSheet1("=\"A1\"&A1&\"say \"\"B2\"\"\"", insert), "=\"A1\"&A4&\"say \"\"B2\"\"\"");
    EXPECT_EQ(OnSheet1("=SUM(MyName)+LOG10(A1)+Sheet1!WSRow", insert),
              "=SUM(MyName)+LOG10(A4)+Sheet1!WSRow");
    EXPECT_EQ(OnSheet1("= A1 + ( B2 ) ", insert), "= A4 + ( B5 ) ");
    EXPECT_EQ(OnSheet1("A1+B2", insert), "A1+B2");
    EXPECT_EQ(OnSheet1("=\"A1", insert), "=\"A1");  // untokenizable: unchanged
}

TEST(OffsetReferencesTest, PastedFormulasFollowTheirNewPlace) {
    EXPECT_EQ(OffsetReferences("=D5-C5", 10, 0), "=D15-C15");
    EXPECT_EQ(OffsetReferences("=$C$3+C$3+$C3+C3", 2, 1), "=$C$3+D$3+$C5+D5");
    EXPECT_EQ(OffsetReferences("=IF(ISERROR(D3/C3),\"\",D3/C3)", 1, 0),
              "=IF(ISERROR(D4/C4),\"\",D4/C4)");
    EXPECT_EQ(OffsetReferences("=SUM(C3:C9)+SUM(5:6)+SUM(C:C)", 1, 1),
              "=SUM(D4:D10)+SUM(6:7)+SUM(D:D)");
    EXPECT_EQ(OffsetReferences("=Sheet2!A2+\"A2\"", 1, 0), "=Sheet2!A3+\"A2\"");
    EXPECT_EQ(OffsetReferences("=A2+$A$1", -2, 0), "=#REF!+$A$1");
    EXPECT_EQ(OffsetReferences("=XFD1", 0, 1), "=#REF!");
    EXPECT_EQ(OffsetReferences("=A1:B2", -1, 0), "=#REF!");
}

TEST(ColumnLettersTest, ConvertBothWays) {
    EXPECT_EQ(ColumnNumber("A"), 1);
    EXPECT_EQ(ColumnNumber("z"), 26);
    EXPECT_EQ(ColumnNumber("AA"), 27);
    EXPECT_EQ(ColumnNumber("XFD"), kMaxColumn);
    EXPECT_EQ(ColumnNumber("XFE"), 0);
    EXPECT_EQ(ColumnNumber("A1"), 0);
    EXPECT_EQ(ColumnNumber(""), 0);
    EXPECT_EQ(ColumnLetters(0), "");
    EXPECT_EQ(ColumnLetters(kMaxColumn + 1), "");
    for (int column : {1, 26, 27, 52, 53, 702, 703, 16384}) {
        EXPECT_EQ(ColumnNumber(ColumnLetters(column)), column) << column;
    }
}

}  // namespace
}  // namespace sheethost
