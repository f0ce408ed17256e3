#include <gtest/gtest.h>

#include <string>

#include "sheethost/formula.h"
#include "sheethost/formula_fake_context.h"

namespace sheethost {
namespace {

using testing::FakeWorkbook;

Value Text(const char* text) {
    return std::string(text);
}

// The roll-up formulas of a summary task on row 12 over children on rows 13 and 15.
class SummaryFormulaTest : public ::testing::Test {
  protected:
    FakeWorkbook book;
};

TEST_F(SummaryFormulaTest, EarliestStartSkipsBlankAndTextChildren) {
    const char* formula = "=IF(MIN(P13,P15)=0,\"\",MIN(P13,P15))";
    EXPECT_EQ(book.Eval(formula, "P12"), Text(""));  // no child has a date yet
    book.Put("P13", Text("not a date"));
    book.Put("P15", 45352.5);
    EXPECT_EQ(book.Eval(formula, "P12"), Value(45352.5));
    book.Put("P13", 45300.0);
    EXPECT_EQ(book.Eval(formula, "P12"), Value(45300.0));
    book.Put("P15", ErrorValue::kDiv0);
    EXPECT_EQ(book.Eval(formula, "P12"), Value(ErrorValue::kDiv0));
}

TEST_F(SummaryFormulaTest, ActualEndStaysEmptyUntilEveryChildHasOne) {
    const char* formula = "=IF(OR(X13=\"\",X15=\"\"),\"\",MAX(X13,X15))";
    book.Put("X13", 45400.0);
    EXPECT_EQ(book.Eval(formula, "X12"), Text(""));
    book.PutFormula("X15", "=IF(MAX(Y1)=0,\"\",MAX(Y1))");  // a child summary still empty
    EXPECT_EQ(book.Eval(formula, "X12"), Text(""));
    book.Put("Y1", 45410.0);
    EXPECT_EQ(book.Eval(formula, "X12"), Value(45410.0));
}

TEST_F(SummaryFormulaTest, PercentCompleteIsPvWeightedOverChainedSums) {
    book.PutFormula("F12", "=IF(SUM(F13,F15)=0,\"\",SUM(F13,F15))");
    const char* percent = "=IF(N(F12)=0,\"\",SUM(N(J13)*N(F13),N(J15)*N(F15))/F12)";
    EXPECT_EQ(book.Eval(percent, "J12"), Text(""));  // no PV: the sum shows ""
    book.Put("F13", 10.0);
    book.Put("F15", 30.0);
    book.Put("J13", 50.0);
    book.Put("J15", Text("100"));  // N of text is 0, unlike arithmetic
    EXPECT_EQ(book.Eval(percent, "J12"), Value(12.5));
    book.Put("J15", 100.0);
    EXPECT_EQ(book.Eval(percent, "J12"), Value(87.5));
}

TEST_F(SummaryFormulaTest, EmptyChildListIsRefusedOnEntry) {
    EXPECT_FALSE(IsWellFormedFormula("=IF(MIN()=0,\"\",MIN())", 12, 16));
    EXPECT_FALSE(IsWellFormedFormula("=IF(A1)", 12, 16));
    EXPECT_TRUE(IsWellFormedFormula("=IF(MIN(P13)=0,\"\",MIN(P13))", 12, 16));
    EXPECT_TRUE(IsWellFormedFormula("=NOSUCHFUNCTION()", 12, 16));
    EXPECT_EQ(book.Eval("=IF(MIN()=0,\"\",MIN())"), Value(ErrorValue::kValue));
}

TEST(ReportFormulaTest, GuardedDivisionsShowEmptyText) {
    FakeWorkbook book;
    book.Put("C5", 100.0);
    book.Put("E5", 40.0);
    book.Put("F5", 50.0);
    const char* spi = "=IF(ISERROR(E5/D5),\"\",E5/D5)";
    EXPECT_EQ(book.Eval(spi, "I5"), Text(""));  // D5 blank
    book.Put("D5", 0.0);
    EXPECT_EQ(book.Eval(spi, "I5"), Text(""));
    book.Put("D5", 80.0);
    EXPECT_EQ(book.Eval(spi, "I5"), Value(0.5));
    EXPECT_EQ(book.Eval("=E5-D5", "G5"), Value(-40.0));
    // EAC divides by the CPI cell, itself a guarded formula that may show "".
    book.PutFormula("J5", "=IF(ISERROR(E5/F5),\"\",E5/F5)");
    const char* eac = "=IF(ISERROR(F5+(C5-E5)/J5),\"\",F5+(C5-E5)/J5)";
    EXPECT_EQ(book.Eval(eac, "K5"), Value(125.0));
    book.Put("F5", 0.0);
    EXPECT_EQ(book.Eval(eac, "K5"), Text(""));
}

TEST(ReportFormulaTest, ColumnTotalsAndCumulativeRows) {
    FakeWorkbook book;
    book.Put("C3", 1.5);
    book.Put("C4", Text("2"));  // text in a range is skipped
    book.Put("C5", true);
    book.PutFormula("C6", "=IF(ISERROR(1/0),\"\",1)");
    book.Put("C7", 4.0);
    EXPECT_EQ(book.Eval("=SUM(C3:C7)", "C8"), Value(5.5));
    book.PutFormula("C11", "=C3");
    book.PutFormula("C12", "=C7+C11");
    EXPECT_EQ(book.Eval("=C7+C12", "C13"), Value(9.5));
}

TEST(OperatorTest, PrecedenceAndAssociativity) {
    FakeWorkbook book;
    EXPECT_EQ(book.Eval("=1+2*3"), Value(7.0));
    EXPECT_EQ(book.Eval("=(1+2)*3"), Value(9.0));
    EXPECT_EQ(book.Eval("=-2^2"), Value(4.0));  // negation binds tighter than ^
    EXPECT_EQ(book.Eval("=2^3^2"), Value(64.0));
    EXPECT_EQ(book.Eval("=10-4-3"), Value(3.0));
    EXPECT_EQ(book.Eval("=50%*2"), Value(1.0));
    EXPECT_EQ(book.Eval("=2^-1"), Value(0.5));
    EXPECT_EQ(book.Eval("=\"a\"&1+2"), Text("a3"));
    EXPECT_EQ(book.Eval("=1+2=3"), Value(true));
    EXPECT_EQ(book.Eval("=\"x\"&1=\"x1\""), Value(true));
    EXPECT_EQ(book.Eval("= 1 + ( 2 ) "), Value(3.0));
    EXPECT_EQ(book.Eval("=+\"abc\""), Text("abc"));  // unary plus converts nothing
    EXPECT_EQ(book.Eval("=1.5E+3+.5"), Value(1500.5));
}

TEST(OperatorTest, ArithmeticCoercesTextBlanksAndBooleans) {
    FakeWorkbook book;
    EXPECT_EQ(book.Eval("=\"3\"+1"), Value(4.0));
    EXPECT_EQ(book.Eval("=-\"3\""), Value(-3.0));
    EXPECT_EQ(book.Eval("=\" 1,000 \"*2"), Value(2000.0));
    EXPECT_EQ(book.Eval("=\"50%\"*2"), Value(1.0));
    EXPECT_EQ(book.Eval("=\"2024/03/01\"+0"), Value(45352.0));
    EXPECT_EQ(book.Eval("=TRUE+1"), Value(2.0));
    EXPECT_EQ(book.Eval("=B9+1"), Value(1.0));
    EXPECT_EQ(book.Eval("=\"abc\"+1"), Value(ErrorValue::kValue));
    EXPECT_EQ(book.Eval("=\"\"+1"), Value(ErrorValue::kValue));
    EXPECT_EQ(book.Eval("=\"TRUE\"+1"), Value(ErrorValue::kValue));
    EXPECT_EQ(book.Eval("=1/3&\"\""), Text("0.333333333333333"));
    EXPECT_EQ(book.Eval("=TRUE&B9&0.5"), Text("TRUE0.5"));
}

TEST(OperatorTest, ArithmeticErrors) {
    FakeWorkbook book;
    EXPECT_EQ(book.Eval("=1/0"), Value(ErrorValue::kDiv0));
    EXPECT_EQ(book.Eval("=1/B9"), Value(ErrorValue::kDiv0));
    EXPECT_EQ(book.Eval("=0^0"), Value(ErrorValue::kNum));
    EXPECT_EQ(book.Eval("=(-8)^(1/3)"), Value(ErrorValue::kNum));
    EXPECT_EQ(book.Eval("=1E+300*1E+300"), Value(ErrorValue::kNum));
    EXPECT_EQ(book.Eval("=\"x\"+1/0"), Value(ErrorValue::kValue));  // the left error wins
    EXPECT_EQ(book.Eval("=#N/A+1"), Value(ErrorValue::kNA));
    EXPECT_EQ(book.Eval("=-#REF!"), Value(ErrorValue::kRef));
    EXPECT_EQ(book.Eval("=1/0&\"x\""), Value(ErrorValue::kDiv0));
}

TEST(ComparisonTest, TypesOrderNumbersTextsBooleans) {
    FakeWorkbook book;
    EXPECT_EQ(book.Eval("=99999<\"a\""), Value(true));
    EXPECT_EQ(book.Eval("=\"zzz\"<FALSE"), Value(true));
    EXPECT_EQ(book.Eval("=\"3\"=3"), Value(false));  // no conversion in comparisons
    EXPECT_EQ(book.Eval("=\"abc\"=\"ABC\""), Value(true));
    EXPECT_EQ(book.Eval("=\"b\">\"A\""), Value(true));
    EXPECT_EQ(book.Eval("=\"ab\"<\"abc\""), Value(true));
    EXPECT_EQ(book.Eval("=0.1+0.2=0.3"), Value(true));
    EXPECT_EQ(book.Eval("=1<>1.0000001"), Value(true));
    EXPECT_EQ(book.Eval("=2<=1"), Value(false));
    EXPECT_EQ(book.Eval("=A1=#N/A"), Value(ErrorValue::kNA));
}

TEST(ComparisonTest, BlankTakesTheOtherSidesType) {
    FakeWorkbook book;
    EXPECT_EQ(book.Eval("=B9=0"), Value(true));
    EXPECT_EQ(book.Eval("=B9=\"\""), Value(true));
    EXPECT_EQ(book.Eval("=B9=FALSE"), Value(true));
    EXPECT_EQ(book.Eval("=B9=C9"), Value(true));
    EXPECT_EQ(book.Eval("=B9<1"), Value(true));
    EXPECT_EQ(book.Eval("=B9<\"a\""), Value(true));
    book.Put("B9", Text(""));
    EXPECT_EQ(book.Eval("=B9=0"), Value(false));  // an empty text is a text, not a blank
}

TEST(ConditionalTest, OnlyTheBranchTakenIsEvaluated) {
    FakeWorkbook book;
    book.Put("A2", 7.0);
    book.PutFormula("B2", "=1/0");
    EXPECT_EQ(book.Eval("=IF(TRUE,A2,B2)", "C2"), Value(7.0));
    EXPECT_EQ(book.cellReads, 1);
    EXPECT_EQ(book.Eval("=IF(FALSE,B2,A2*2)", "C2"), Value(14.0));
    EXPECT_EQ(book.Eval("=IF(B2,1,2)", "C2"), Value(ErrorValue::kDiv0));
    EXPECT_EQ(book.Eval("=IF(\"abc\",1,2)", "C2"), Value(ErrorValue::kValue));
    EXPECT_EQ(book.Eval("=IF(\"true\",1,2)", "C2"), Value(1.0));
    EXPECT_EQ(book.Eval("=IF(C9,1,2)", "C2"), Value(2.0));  // blank is FALSE
    EXPECT_EQ(book.Eval("=IF(0.5,1,2)", "C2"), Value(1.0));
    EXPECT_EQ(book.Eval("=IF(FALSE,1)", "C2"), Value(false));
    EXPECT_EQ(book.Eval("=IF(TRUE,)", "C2"), Value(0.0));
    EXPECT_EQ(book.Eval("=IF(TRUE,C9)", "C2"), Value(0.0));  // a blank result shows 0
}

TEST(ConditionalTest, ErrorTestsAndLogic) {
    FakeWorkbook book;
    book.Put("A2", ErrorValue::kNA);
    book.Put("A3", Text("yes"));
    book.Put("A4", 0.0);
    EXPECT_EQ(book.Eval("=ISERROR(A2)"), Value(true));
    EXPECT_EQ(book.Eval("=ISERROR(A3)"), Value(false));
    EXPECT_EQ(book.Eval("=ISERROR(1/0)"), Value(true));
    EXPECT_EQ(book.Eval("=IFERROR(1/0,\"none\")"), Text("none"));
    EXPECT_EQ(book.Eval("=IFERROR(5,1/0)"), Value(5.0));
    EXPECT_EQ(book.Eval("=ISBLANK(B9)"), Value(true));
    EXPECT_EQ(book.Eval("=ISBLANK(A4)"), Value(false));
    EXPECT_EQ(book.Eval("=ISBLANK(\"\")"), Value(false));
    EXPECT_EQ(book.Eval("=OR(A3:A4)"), Value(false));               // text skipped, 0 is FALSE
    EXPECT_EQ(book.Eval("=OR(A3,B9)"), Value(ErrorValue::kValue));  // no logical value
    EXPECT_EQ(book.Eval("=OR(\"yes\")"), Value(ErrorValue::kValue));
    EXPECT_EQ(book.Eval("=OR(A2:A4)"), Value(ErrorValue::kNA));
    EXPECT_EQ(book.Eval("=AND(TRUE,1,\"TRUE\")"), Value(true));
    EXPECT_EQ(book.Eval("=AND(TRUE,A4)"), Value(false));
    EXPECT_EQ(book.Eval("=NOT(A4)"), Value(true));
}

TEST(AggregateTest, RangesSkipWhatDirectArgumentsMustConvert) {
    FakeWorkbook book;
    book.Put("A1", 2.0);
    book.Put("A2", Text("5"));
    book.Put("A3", true);
    book.Put("A4", -1.0);
    EXPECT_EQ(book.Eval("=SUM(A1:A5)", "B1"), Value(1.0));
    EXPECT_EQ(book.Eval("=SUM(A1:A5,\"5\",TRUE)", "B1"), Value(7.0));
    EXPECT_EQ(book.Eval("=SUM(A1,\"x\")", "B1"), Value(ErrorValue::kValue));
    EXPECT_EQ(book.Eval("=MIN(A1:A5)", "B1"), Value(-1.0));
    EXPECT_EQ(book.Eval("=MAX(A1:A5)", "B1"), Value(2.0));
    EXPECT_EQ(book.Eval("=MAX(A2:A3)", "B1"), Value(0.0));  // nothing numeric
    EXPECT_EQ(book.Eval("=MIN(,5)", "B1"), Value(0.0));     // an empty argument is 0
    EXPECT_EQ(book.Eval("=AVERAGE(A1:A5)", "B1"), Value(0.5));
    EXPECT_EQ(book.Eval("=AVERAGE(A2:A3)", "B1"), Value(ErrorValue::kDiv0));
    EXPECT_EQ(book.Eval("=COUNT(A1:A5,\"7\",\"x\")", "B1"), Value(3.0));
    EXPECT_EQ(book.Eval("=COUNTA(A1:A5,\"\")", "B1"), Value(5.0));
    book.Put("A5", ErrorValue::kRef);
    EXPECT_EQ(book.Eval("=SUM(A1:A5)", "B1"), Value(ErrorValue::kRef));
    EXPECT_EQ(book.Eval("=COUNT(A1:A5)", "B1"), Value(2.0));
}

TEST(AggregateTest, NumericFunctions) {
    FakeWorkbook book;
    EXPECT_EQ(book.Eval("=ABS(-2.5)"), Value(2.5));
    EXPECT_EQ(book.Eval("=INT(-1.5)"), Value(-2.0));
    EXPECT_EQ(book.Eval("=ROUND(2.675,2)"), Value(2.68));
    EXPECT_EQ(book.Eval("=ROUND(-2.5,0)"), Value(-3.0));
    EXPECT_EQ(book.Eval("=ROUND(1250,-2)"), Value(1300.0));
    EXPECT_EQ(book.Eval("=N(TRUE)+N(\"7\")+N(B9)+N(4)"), Value(5.0));
    EXPECT_EQ(book.Eval("=N(1/0)"), Value(ErrorValue::kDiv0));
    EXPECT_EQ(book.Eval("=ABS(\"x\")"), Value(ErrorValue::kValue));
}

TEST(ReferenceTest, AbsoluteMixedAndOtherSheets) {
    FakeWorkbook book;
    book.Put("B3", 2.0);
    book.Put("Sheet2!B3", 10.0);
    book.Put("My Sheet!C4", 100.0);
    book.Put("It's!A1", 1000.0);
    EXPECT_EQ(book.Eval("=sum($B$3,B$3,$B3,b3)"), Value(8.0));
    EXPECT_EQ(book.Eval("=Sheet2!B3+B3"), Value(12.0));
    EXPECT_EQ(book.Eval("=SUM('My Sheet'!B3:C4)"), Value(100.0));
    EXPECT_EQ(book.Eval("='It''s'!A1"), Value(1000.0));
    // An unqualified reference inside another sheet's formula stays on that sheet.
    book.PutFormula("Sheet2!C3", "=B3*3");
    EXPECT_EQ(book.Eval("=Sheet2!C3"), Value(30.0));
    EXPECT_EQ(book.Eval("=Sheet1!#REF!+1"), Value(ErrorValue::kRef));
}

// A formula copied down or across is parsed once: each copy must still read its own cells, keep
// its absolute parts where they were, and tell itself apart from formulas that only look alike.
TEST(ReferenceTest, CopiedFormulasReadTheirOwnCells) {
    FakeWorkbook book;
    for (int row = 1; row <= 6; ++row) {
        book.Put("A" + std::to_string(row), row * 1.0);
        book.Put("B" + std::to_string(row), row * 10.0);
        book.Put("Sheet2!A" + std::to_string(row), row * 100.0);
    }
    // Down a column, and the same copies in another column and then read again out of order.
    for (const char* column : {"C", "D"}) {
        for (int row = 2; row <= 6; ++row) {
            const std::string above = std::to_string(row - 1);
            const std::string formula = "=A" + above + "+$B$1*A" + std::to_string(row) + "+B$2";
            EXPECT_EQ(book.Eval(formula, column + std::to_string(row)),
                      Value((row - 1) + 10.0 * row + 20.0))
                << formula << " in " << column << row;
        }
    }
    EXPECT_EQ(book.Eval("=A3+$B$1*A4+B$2", "C4"), Value(3 + 40 + 20.0));
    // Across a row: relative columns move, absolute ones stay.
    EXPECT_EQ(book.Eval("=A1+$A2", "C1"), Value(3.0));
    EXPECT_EQ(book.Eval("=B1+$A2", "D1"), Value(12.0));
    // The same text in another cell means the same cells.
    EXPECT_EQ(book.Eval("=A1+$A2", "F9"), Value(3.0));
    // Alike but for the sheet, the text or the kind of reference.
    EXPECT_EQ(book.Eval("=Sheet2!A2+1", "C3"), Value(201.0));
    EXPECT_EQ(book.Eval("=A2+1", "C3"), Value(3.0));
    EXPECT_EQ(book.Eval("=\"A2\"&A3", "C3"), Value(std::string("A23")));
    EXPECT_EQ(book.Eval("=\"A3\"&A4", "C4"), Value(std::string("A34")));
    EXPECT_EQ(book.Eval("=SUM(A:A)", "C3"), Value(21.0));
    EXPECT_EQ(book.Eval("=SUM(B:B)", "D3"), Value(210.0));
    EXPECT_EQ(book.Eval("=SUM(A2:A3)", "C3"), Value(5.0));
    EXPECT_EQ(book.Eval("=SUM(A3:A$4)", "C4"), Value(7.0));
}

TEST(ReferenceTest, WholeRowsAndColumnsVisitOnlyTheUsedPart) {
    FakeWorkbook book;
    book.Put("C2", 1.0);
    book.Put("D5", 2.0);
    book.Put("C9", 4.0);
    book.Put("F5", 8.0);
    EXPECT_EQ(book.Eval("=SUM(C:D)", "A1"), Value(7.0));
    EXPECT_EQ(book.Eval("=SUM($5:5)", "A1"), Value(10.0));
    EXPECT_EQ(book.Eval("=SUM(A1:XFD1048576)", "A1"), Value(15.0));
    EXPECT_LT(book.cellReads, 200);
}

TEST(ReferenceTest, BlockInSingleValuePlaceUsesFormulasRowOrColumn) {
    FakeWorkbook book;
    book.Put("B3", 4.0);
    book.Put("D1", 5.0);
    EXPECT_EQ(book.Eval("=B1:B9*2", "H3"), Value(8.0));
    EXPECT_EQ(book.Eval("=A1:F1+0", "D7"), Value(5.0));
    EXPECT_EQ(book.Eval("=B4:B9", "H3"), Value(ErrorValue::kValue));  // row 3 not in the block
    EXPECT_EQ(book.Eval("=A1:B2", "H3"), Value(ErrorValue::kValue));
}

TEST(ReferenceTest, DefinedNames) {
    FakeWorkbook book;
    book.Put("Settings!C3", 60.0);
    book.Put("B3", 1.0);
    book.Put("H4", 2.0);
    book.Put("I9", 4.0);
    book.Name("CSCalendarUnit", "=Settings!$C$3");
    book.Name("Blocks", "B3:B9,H3:I9");
    book.Name("Lost", "=#REF!");
    EXPECT_EQ(book.Eval("=CSCalendarUnit/60", "A1"), Value(1.0));
    EXPECT_EQ(book.lastNameScope, "Sheet1");
    EXPECT_EQ(book.Eval("=SUM(Blocks)", "A1"), Value(7.0));
    EXPECT_EQ(book.Eval("=Blocks", "A1"), Value(ErrorValue::kValue));  // a union is no value
    EXPECT_EQ(book.Eval("=Settings!Blocks*0", "A1"), Value(ErrorValue::kValue));
    EXPECT_EQ(book.lastNameScope, "Settings");
    EXPECT_EQ(book.Eval("=Lost", "A1"), Value(ErrorValue::kRef));
    EXPECT_EQ(book.Eval("=NoSuchName+1", "A1"), Value(ErrorValue::kName));
    EXPECT_EQ(book.Eval("=LOG10(100)", "A1"), Value(ErrorValue::kName));  // not a cell
}

TEST(RobustnessTest, TextThatIsNoFormulaGivesAnErrorValue) {
    FakeWorkbook book;
    for (const char* bad : {"=",
                            "=1+",
                            "=(1",
                            "=1)",
                            "=\"abc",
                            "=SUM(1",
                            "=A1:",
                            "=1 2",
                            "=A1!",
                            "=#BAD!",
                            "=1;2",
                            "={1,2}",
                            "=SUM(1,,",
                            "abc",
                            "",
                            "=@A1",
                            "='unterminated!A1",
                            "=Sheet1!",
                            "=%",
                            "=SUM((1)"}) {
        EXPECT_EQ(book.Eval(bad), Value(ErrorValue::kName)) << bad;
        EXPECT_FALSE(IsWellFormedFormula(bad, 1, 1)) << bad;
    }
    EXPECT_EQ(book.Eval("=FOO(1)"), Value(ErrorValue::kName));
}

TEST(RobustnessTest, DeepNestingIsRefusedNotOverflowed) {
    FakeWorkbook book;
    const auto nested = [](int depth) {
        return "=" + std::string(depth, '(') + "1" + std::string(depth, ')');
    };
    EXPECT_EQ(book.Eval(nested(50)), Value(1.0));
    EXPECT_EQ(book.Eval(nested(4000)), Value(ErrorValue::kName));
    EXPECT_EQ(book.Eval("=" + std::string(8000, '-') + "1"), Value(ErrorValue::kName));
    std::string sums = "=1";
    for (int i = 0; i < 500; ++i) sums += "+1";
    EXPECT_EQ(book.Eval(sums), Value(501.0));
    for (int i = 0; i < 3500; ++i) sums += "+1";
    EXPECT_EQ(book.Eval(sums), Value(ErrorValue::kName));
    std::string calls = "=";
    for (int i = 0; i < 1600; ++i) calls += "ABS(";
    EXPECT_EQ(book.Eval(calls + "1" + std::string(1600, ')')), Value(ErrorValue::kName));
}

TEST(RobustnessTest, FormulasLongerThanTheSpreadsheetAcceptsAreRefused) {
    FakeWorkbook book;
    const std::string longest = "=\"" + std::string(8189, 'x') + "\"";
    EXPECT_EQ(book.Eval(longest), Value(std::string(8189, 'x')));
    EXPECT_EQ(book.Eval(longest + "&1"), Value(ErrorValue::kName));
    EXPECT_FALSE(IsWellFormedFormula(longest + "&1", 1, 1));
}

TEST(RobustnessTest, LongChainsOfFormulaCellsStopBeforeTheStackRunsOut) {
    FakeWorkbook book;
    book.Put("A1", 1.0);
    for (int row = 2; row <= 600; ++row) {
        book.PutFormula("A" + std::to_string(row), "=A" + std::to_string(row - 1) + "+1");
    }
    EXPECT_EQ(book.Eval("=A400", "B1"), Value(400.0));
    EXPECT_EQ(book.Eval("=A600", "B1"), Value(ErrorValue::kNum));
    EXPECT_EQ(book.Eval("=A2", "B1"), Value(2.0));  // the limit is per chain, not per thread
}

TEST(RobustnessTest, CyclesAndBlankResults) {
    FakeWorkbook book;
    book.PutFormula("A1", "=B1+1");
    book.PutFormula("B1", "=A1+1");
    EXPECT_EQ(book.Eval("=A1", "C1"), Value(ErrorValue::kRef));
    EXPECT_EQ(book.Eval("=ISERROR(B1)", "C1"), Value(true));
    EXPECT_EQ(book.Eval("=Z99", "C1"), Value(0.0));
    EXPECT_EQ(book.Eval("=Z99&\"\"", "C1"), Text(""));
    EXPECT_EQ(book.Eval("=\"\"", "C1"), Text(""));
}

}  // namespace
}  // namespace sheethost
