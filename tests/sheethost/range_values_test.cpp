// Cell contents through Value and Formula: typed values, text put as if typed, formulas
// evaluated when read, and clearing.
#include <gtest/gtest.h>

#include "support/host_calls.h"

namespace {

using hosttest::Get;
using hosttest::Number;
using hosttest::Object;
using hosttest::Put;
using hosttest::Text;
using hosttest::TypeOf;

class RangeValuesTest : public hosttest::HostTest {
  protected:
    RangeValuesTest() {
        Load(R"json({"sheets":[{"name":"WBS","cells":{
                   "A1":{"value":3,"numberFormat":"yyyy/mm/dd"},
                   "H6":{"date":"2024-04-01"},
                   "H7":5, "H8":"text", "H9":true},
                   "columns":{"T":{"style":{"numberFormat":"@"}}}}]})json");
        sheet = Sheet("WBS");
    }

    HRESULT Type(const char* address, const char* text) {
        return Put(sheet.get(), OLESTR(".Range(%s).Value=%s"), address, text);
    }
    std::string Read(const char* address) {
        return Text(sheet.get(), OLESTR(".Range(%s).Value"), address);
    }
    VARTYPE TypeAt(const char* address) {
        return TypeOf(sheet.get(), OLESTR(".Range(%s).Value"), address);
    }
    std::string FormulaAt(const char* address) {
        return Text(sheet.get(), OLESTR(".Range(%s).Formula"), address);
    }

    Object sheet;
};

TEST_F(RangeValuesTest, TextPutIntoValueIsReadAsIfTyped) {
    Type("B1", "90");
    Type("B2", "0.375");
    Type("B3", "100");
    Type("B4", "'2024/03");
    Type("B5", "Design");
    Type("B6", "TRUE");
    Type("B7", " 12 ");
    EXPECT_EQ(TypeAt("B1"), VT_R8);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Value"), "B2"), 0.375);
    EXPECT_EQ(Read("B3"), "100");
    EXPECT_EQ(TypeAt("B4"), VT_BSTR);
    EXPECT_EQ(Read("B4"), "2024/03");
    EXPECT_EQ(TypeAt("B5"), VT_BSTR);
    EXPECT_EQ(TypeAt("B6"), VT_BOOL);
    EXPECT_EQ(Read("B6"), "True");
    EXPECT_EQ(TypeAt("B7"), VT_R8);

    Type("B3", "");
    EXPECT_EQ(TypeAt("B3"), VT_EMPTY);
    EXPECT_EQ(Read("B3"), "");
}

TEST_F(RangeValuesTest, ACellFormattedAsTextKeepsWhatIsTypedAsText) {
    for (const char* typed : {"1.10", "007", "TRUE", "2024/03/01", "=T1", "#N/A"}) {
        SCOPED_TRACE(typed);
        Type("T5", typed);
        EXPECT_EQ(TypeAt("T5"), VT_BSTR);
        EXPECT_EQ(Read("T5"), typed);
    }
    Type("T5", "'1.10");
    EXPECT_EQ(Read("T5"), "1.10") << "the apostrophe still only marks text";
    Type("T5", "");
    EXPECT_EQ(TypeAt("T5"), VT_EMPTY);
    Type("U5", "1.10");
    EXPECT_EQ(TypeAt("U5"), VT_R8) << "beside the text column, typing still reads numbers";
}

TEST_F(RangeValuesTest, DatesReadAsDatesOnlyInADateFormat) {
    EXPECT_EQ(TypeAt("A1"), VT_DATE);
    EXPECT_EQ(TypeOf(sheet.get(), OLESTR(".Range(%s).Value2"), "A1"), VT_R8);
    EXPECT_EQ(TypeAt("H6"), VT_DATE);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Value"), "H6"), 45383);
    Type("C1", "2024/04/01 08:00");
    EXPECT_EQ(TypeAt("C1"), VT_DATE);
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).NumberFormat"), "C1"), "yyyy/m/d h:mm");
    // A typed percentage is a number with a percent format.
    Type("C2", "50%");
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Value"), "C2"), 0.5);
    EXPECT_EQ(TypeAt("C2"), VT_R8);
}

TEST_F(RangeValuesTest, FormulasAreEvaluatedWhenRead) {
    ASSERT_EQ(Put(sheet.get(), OLESTR(".Range(%s).Formula=%s"), "H5", "=MIN(H6:H9)"), S_OK);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Value"), "H5"), 5);
    EXPECT_EQ(FormulaAt("H5"), "=MIN(H6:H9)");
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).HasFormula"), "H5"), "True");
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).HasFormula"), "H7"), "False");
    EXPECT_EQ(TypeOf(sheet.get(), OLESTR(".Range(%s).HasFormula"), "H5:H7"), VT_NULL);

    // A value written through Value starting with "=" is a formula too; errors read as errors.
    Type("J1", "=IF(H7>4,\"late\",\"\")");
    EXPECT_EQ(Read("J1"), "late");
    Type("J2", "=1/0");
    EXPECT_EQ(TypeAt("J2"), VT_ERROR);
    // A formula that refers to itself reads as an error, never loops.
    Type("J3", "=J4+1");
    Type("J4", "=J3+1");
    EXPECT_EQ(TypeAt("J3"), VT_ERROR);
    // A malformed formula is refused and leaves the cell as it was.
    EXPECT_TRUE(FAILED(Type("H7", "=MIN(")));
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Value"), "H7"), 5);
}

TEST_F(RangeValuesTest, FormulaOfAConstantIsItsTypedText) {
    EXPECT_EQ(FormulaAt("H7"), "5");
    EXPECT_EQ(FormulaAt("H8"), "text");
    EXPECT_EQ(FormulaAt("Z99"), "");
    // Freezing a row the way the engine does: read the value, drop the formula, put the value.
    Put(sheet.get(), OLESTR(".Range(%s).Formula=%s"), "K1", "=H7*2");
    const std::string shown = Read("K1");
    Put(sheet.get(), OLESTR(".Range(%s).Formula=%s"), "K1", "");
    Type("K1", shown.c_str());
    EXPECT_EQ(FormulaAt("K1"), "10");
    EXPECT_EQ(TypeAt("K1"), VT_R8);
}

TEST_F(RangeValuesTest, BlocksTakeOneValueAndFillFormulas) {
    ASSERT_EQ(Put(sheet.get(), OLESTR(".Range(%s).Value=%d"), "D1:E2", 7), S_OK);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Value"), "E2"), 7);
    ASSERT_EQ(Put(sheet.get(), OLESTR(".Range(%s).Formula=%s"), "F1:F2", "=D1+E$1"), S_OK);
    EXPECT_EQ(FormulaAt("F2"), "=D2+E$1");
    // ClearContents keeps formats; Clear drops both.
    Put(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex=%d"), "D1", 6);
    hosttest::Call(sheet.get(), OLESTR(".Range(%s).ClearContents"), "D1:E1");
    EXPECT_EQ(TypeAt("D1"), VT_EMPTY);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "D1"), 6);
    hosttest::Call(sheet.get(), OLESTR(".Cells.Clear"));
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "D1"), -4142);
    EXPECT_TRUE(Model("WBS").cells.empty());
}

TEST_F(RangeValuesTest, AValueForTheWholeSheetIsRefusedBeforeAnyCellIsFilled) {
    // A path cut short (".Cells(1," from a mistyped format) reaches the whole sheet; filling its
    // seventeen billion cells one by one exhausted the memory.
    EXPECT_NE(Put(sheet.get(), OLESTR(".Cells.Value=%d"), 7), S_OK);
    EXPECT_NE(Put(sheet.get(), OLESTR(".Range(%s).Formula=%s"), "A:Z", "=1"), S_OK);
    EXPECT_EQ(Read("H8"), "text");
    EXPECT_EQ(TypeAt("Z1"), VT_EMPTY);
    // Nor is a whole sheet's values read as one array.
    EXPECT_EQ(TypeOf(sheet.get(), OLESTR(".Cells.Value")), VARTYPE(0xFFFF));  // refused
    // Clearing the whole sheet stays possible: it fills nothing.
    EXPECT_EQ(Put(sheet.get(), OLESTR(".Cells.Value=%s"), ""), S_OK);
    EXPECT_EQ(TypeAt("H8"), VT_EMPTY);
}

TEST_F(RangeValuesTest, CopiedCellsPasteAsValuesOrWithTheirFormulasMoved) {
    Put(sheet.get(), OLESTR(".Range(%s).Formula=%s"), "H10", "=H7+1");
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Range(%s).Copy"), "H7:H10"), S_OK);
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Range(%s).PasteSpecial(%d)"), "M1", -4163),
              S_OK);
    EXPECT_EQ(FormulaAt("M4"), "6");
    // The engine's report copy: select the corner, then paste on the sheet.
    hosttest::Call(sheet.get(), OLESTR(".Cells(%d,%d).Select"), 20, 2);
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Paste")), S_OK);
    EXPECT_EQ(FormulaAt("B23"), "=B20+1");
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Value"), "B23"), 6);
    // Editing a cell ends copy mode: nothing is left to paste.
    Type("A2", "x");
    EXPECT_TRUE(
        FAILED(hosttest::Call(sheet.get(), OLESTR(".Range(%s).PasteSpecial(%d)"), "M1", -4163)));
}

TEST_F(RangeValuesTest, CopyToADestinationOrOnlyItsFormats) {
    Put(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex=%d"), "H7", 4);
    Object target = Get(sheet.get(), OLESTR(".Range(%s)"), "P1");
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Range(%s).Copy(%o)"), "H7:H8", target.get()),
              S_OK);
    EXPECT_EQ(Read("P2"), "text");
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "P1"), 4);
    // Copying to a destination leaves nothing on the clipboard.
    EXPECT_TRUE(FAILED(hosttest::Call(sheet.get(), OLESTR(".Paste"))));

    hosttest::Call(sheet.get(), OLESTR(".Range(%s).Copy"), "H7");
    ASSERT_EQ(hosttest::Call(sheet.get(), OLESTR(".Range(%s).PasteSpecial(%d)"), "Q5", -4122),
              S_OK);
    EXPECT_EQ(TypeAt("Q5"), VT_EMPTY);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Interior.ColorIndex"), "Q5"), 4);
    // After a cut only an insert may take the cells.
    hosttest::Call(sheet.get(), OLESTR(".Range(%s).Cut"), "H7");
    EXPECT_TRUE(
        FAILED(hosttest::Call(sheet.get(), OLESTR(".Range(%s).PasteSpecial(%d)"), "Q6", -4163)));
    EXPECT_EQ(hosttest::LastDescription(), "PasteSpecial method of Range class failed");
}

}  // namespace
