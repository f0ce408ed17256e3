// Blocks of cells through one Value call: read as an array of rows by columns, written from one,
// and the program's screen updating that commands switch off around their work.
#include <gtest/gtest.h>

#include <memory>

#include "com/variant_testing.h"
#include "support/host_calls.h"

namespace {

using hosttest::Number;
using hosttest::Put;
using hosttest::Text;
using hosttest::TypeOf;

// The element (row, column) of a block as the host's texts read it, with its type.
std::string ElementText(SAFEARRAY* array, LONG row, LONG column, VARTYPE* type = nullptr) {
    ScopedVariant element;
    LONG at[2] = {row, column};
    if (FAILED(SafeArrayGetElement(array, at, &element.value))) return "(no element)";
    if (type != nullptr) *type = element.value.vt;
    ScopedVariant text;
    if (FAILED(VariantChangeTypeEx(&text.value, &element.value, LOCALE_INVARIANT, VARIANT_ALPHABOOL,
                                   VT_BSTR))) {
        return "(no text)";
    }
    return NarrowBstr(text.value.bstrVal);
}

// rows x columns of VARIANT from 1, filled row by row from `texts`.
void TextBlock(ScopedVariant& block, ULONG rows, ULONG columns,
               std::initializer_list<const char*> texts) {
    SAFEARRAYBOUND bounds[2] = {{rows, 1}, {columns, 1}};
    block.value.vt = VT_ARRAY | VT_VARIANT;
    block.value.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
    LONG k = 0;
    for (const char* text : texts) {
        ScopedVariant element;
        const WideString wide = Widen(text);
        element.value.vt = VT_BSTR;
        element.value.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
        LONG at[2] = {1 + k / static_cast<LONG>(columns), 1 + k % static_cast<LONG>(columns)};
        EXPECT_EQ(SafeArrayPutElement(block.value.parray, at, &element.value), S_OK);
        ++k;
    }
}

class RangeBlocksTest : public hosttest::HostTest {
  protected:
    RangeBlocksTest() {
        Load(R"json({"sheets":[{"name":"WBS","cells":{
                   "H6":{"date":"2024-04-01"}, "H7":5, "H8":"text", "H9":true,
                   "I7":{"formula":"=H7*2"}, "I8":{"formula":"=1/0"}}}]})json");
        sheet = Sheet("WBS");
    }

    // The Value (or Value2) of a range, as it came.
    void Read(const char* address, ScopedVariant& out, const char* member = "Value") {
        const std::string path = std::string(".Range(%s).") + member;
        ASSERT_EQ(automation::GetValue(OLESTR("%v"), &out.value, sheet.get(), Widen(path).c_str(),
                                       address),
                  S_OK);
    }
    HRESULT Write(const char* address, ScopedVariant& block) {
        return Put(sheet.get(), OLESTR(".Range(%s).Value=%v"), address, &block.value);
    }
    std::string At(const char* address) {
        return Text(sheet.get(), OLESTR(".Range(%s).Value"), address);
    }

    hosttest::Object sheet;
};

TEST_F(RangeBlocksTest, ABlockReadsAsRowsByColumnsFromOneWithEachCellsOwnValue) {
    ScopedVariant block;
    Read("H6:I9", block);
    ASSERT_EQ(block.value.vt, VT_ARRAY | VT_VARIANT);
    SAFEARRAY* array = block.value.parray;
    ASSERT_EQ(SafeArrayGetDim(array), 2u);
    LONG low = 0, rows = 0, columns = 0;
    SafeArrayGetLBound(array, 2, &low);
    SafeArrayGetUBound(array, 1, &rows);
    SafeArrayGetUBound(array, 2, &columns);
    EXPECT_EQ(low, 1);
    EXPECT_EQ(rows, 4);
    EXPECT_EQ(columns, 2);

    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(ElementText(array, 1, 1, &type), "04/01/2024");
    EXPECT_EQ(type, VT_DATE);
    EXPECT_EQ(ElementText(array, 2, 1), "5");
    EXPECT_EQ(ElementText(array, 3, 1), "text");
    EXPECT_EQ(ElementText(array, 4, 1, &type), "True");
    EXPECT_EQ(type, VT_BOOL);
    EXPECT_EQ(ElementText(array, 1, 2, &type), "");
    EXPECT_EQ(type, VT_EMPTY);
    EXPECT_EQ(ElementText(array, 2, 2), "10");  // formulas answer their values
    EXPECT_EQ(ElementText(array, 3, 2, &type), "(no text)");
    EXPECT_EQ(type, VT_ERROR);

    // Value2 never answers dates; a single cell answers its value, not an array.
    ScopedVariant plain;
    Read("H6:H7", plain, "Value2");
    VARTYPE plainType = VT_EMPTY;
    EXPECT_EQ(ElementText(plain.value.parray, 1, 1, &plainType), "45383");
    EXPECT_EQ(plainType, VT_R8);
    EXPECT_EQ(TypeOf(sheet.get(), OLESTR(".Range(%s).Value"), "H7:H7"), VT_R8);
    // Of several areas, the first answers.
    ScopedVariant areas;
    Read("H7:H8,H9", areas);
    SafeArrayGetUBound(areas.value.parray, 1, &rows);
    EXPECT_EQ(rows, 2);
}

TEST_F(RangeBlocksTest, AnArrayIsWrittenCellByCellAsIfTyped) {
    ScopedVariant block;
    TextBlock(block, 2, 2, {"90", "1.2.3", "=B2*2", ""});
    ASSERT_EQ(Write("B2:C3", block), S_OK);
    EXPECT_EQ(TypeOf(sheet.get(), OLESTR(".Range(%s).Value"), "B2"), VT_R8);
    EXPECT_EQ(At("C2"), "1.2.3");
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).Formula"), "B3"), "=B2*2");
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Value"), "B3"), 180);
    EXPECT_EQ(TypeOf(sheet.get(), OLESTR(".Range(%s).Value"), "C3"), VT_EMPTY);

    // Read back and written again, a block keeps its values.
    ScopedVariant again;
    Read("B2:C3", again);
    ASSERT_EQ(Write("E2:F3", again), S_OK);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Range(%s).Value"), "E3"), 180);
    EXPECT_EQ(At("F2"), "1.2.3");
}

TEST_F(RangeBlocksTest, ASingleRowRepeatsAndCellsPastALargerArrayGetNotAvailable) {
    ScopedVariant row;
    TextBlock(row, 1, 2, {"a", "b"});
    ASSERT_EQ(Write("B5:C6", row), S_OK);
    EXPECT_EQ(At("B6"), "a");
    EXPECT_EQ(At("C6"), "b");

    ScopedVariant square;
    TextBlock(square, 2, 2, {"1", "2", "3", "4"});
    ASSERT_EQ(Write("B8:D10", square), S_OK);
    EXPECT_EQ(At("C9"), "4");
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).Formula"), "D8"), "#N/A");
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).Formula"), "B10"), "#N/A");

    // A one-dimensional array is one row.
    ScopedVariant line;
    SAFEARRAYBOUND bound{3, 0};
    line.value.vt = VT_ARRAY | VT_BSTR;
    line.value.parray = SafeArrayCreate(VT_BSTR, 1, &bound);
    const BSTR word = SysAllocString(OLESTR("Gannt"));
    LONG last = 2;
    SafeArrayPutElement(line.value.parray, &last, word);
    SysFreeString(word);
    ASSERT_EQ(Write("B12:D12", line), S_OK);
    EXPECT_EQ(At("D12"), "Gannt");
    EXPECT_EQ(TypeOf(sheet.get(), OLESTR(".Range(%s).Value"), "B12"), VT_EMPTY);
}

TEST_F(RangeBlocksTest, AnArrayHoldingAnObjectIsRefused) {
    ScopedVariant block;
    TextBlock(block, 1, 2, {"kept", ""});
    ScopedVariant object;
    object.value.vt = VT_DISPATCH;
    object.value.pdispVal = sheet.get();
    sheet->AddRef();
    LONG at[2] = {1, 2};
    ASSERT_EQ(SafeArrayPutElement(block.value.parray, at, &object.value), S_OK);
    EXPECT_EQ(Write("B2:C2", block), DISP_E_EXCEPTION);
}

TEST_F(RangeBlocksTest, HasFormulaOfARowIsTrueFalseOrNullWhenMixed) {
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).HasFormula"), "I7:I8"), "True");
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).HasFormula"), "A7:H7"), "False");
    EXPECT_EQ(TypeOf(sheet.get(), OLESTR(".Range(%s).HasFormula"), "A7:Z7"), VT_NULL);
}

TEST_F(RangeBlocksTest, TheApplicationKeepsItsScreenUpdating) {
    EXPECT_EQ(Text(application.get(), OLESTR(".ScreenUpdating")), "True");
    ASSERT_EQ(Put(application.get(), OLESTR(".ScreenUpdating=%b"), FALSE), S_OK);
    EXPECT_FALSE(book->screenUpdating);
    EXPECT_EQ(Text(workbook.get(), OLESTR(".Application.ScreenUpdating")), "False");
}

}  // namespace
