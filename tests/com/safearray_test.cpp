// Arrays as a host hands over a block of cells: rows by columns from 1, elements stored with the
// first index varying fastest. On Windows the same tests run against the system's runtime.
#include <gtest/gtest.h>

#include <memory>

#include "com/com.h"
#include "variant_testing.h"

namespace {

struct DestroyArray {
    void operator()(SAFEARRAY* array) const { EXPECT_EQ(SafeArrayDestroy(array), S_OK); }
};
using ArrayRef = std::unique_ptr<SAFEARRAY, DestroyArray>;

// rows x columns of VARIANT, both counted from 1, as a range's Value gives them.
ArrayRef CellBlock(ULONG rows, ULONG columns) {
    SAFEARRAYBOUND bounds[2] = {{rows, 1}, {columns, 1}};
    return ArrayRef(SafeArrayCreate(VT_VARIANT, 2, bounds));
}

void PutText(SAFEARRAY* array, LONG row, LONG column, const char* text) {
    ScopedVariant value;
    SetText(value, text);
    LONG at[2] = {row, column};
    ASSERT_EQ(SafeArrayPutElement(array, at, &value.value), S_OK);
}

std::string GetText(SAFEARRAY* array, LONG row, LONG column) {
    ScopedVariant value;
    LONG at[2] = {row, column};
    const HRESULT hr = SafeArrayGetElement(array, at, &value.value);
    return FAILED(hr) ? DescribeFailure(hr) : Describe(value.value);
}

TEST(SafeArray, BoundsAreGivenFirstDimensionFirstAndElementsLieColumnByColumn) {
    const ArrayRef block = CellBlock(3, 2);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(SafeArrayGetDim(block.get()), 2u);
    EXPECT_EQ(SafeArrayGetElemsize(block.get()), sizeof(VARIANT));
    VARTYPE type = VT_EMPTY;
    ASSERT_EQ(SafeArrayGetVartype(block.get(), &type), S_OK);
    EXPECT_EQ(type, VT_VARIANT);
    LONG low = 0, high = 0;
    ASSERT_EQ(SafeArrayGetLBound(block.get(), 1, &low), S_OK);
    ASSERT_EQ(SafeArrayGetUBound(block.get(), 1, &high), S_OK);
    EXPECT_EQ(low, 1);
    EXPECT_EQ(high, 3);
    ASSERT_EQ(SafeArrayGetUBound(block.get(), 2, &high), S_OK);
    EXPECT_EQ(high, 2);
    EXPECT_EQ(SafeArrayGetUBound(block.get(), 0, &high), DISP_E_BADINDEX);
    EXPECT_EQ(SafeArrayGetLBound(block.get(), 3, &low), DISP_E_BADINDEX);

    PutText(block.get(), 2, 1, "row 2, column 1");
    PutText(block.get(), 1, 2, "row 1, column 2");
    void* data = nullptr;
    ASSERT_EQ(SafeArrayAccessData(block.get(), &data), S_OK);
    const auto* cells = static_cast<const VARIANT*>(data);
    EXPECT_EQ(Describe(cells[1]), "row 2, column 1");
    EXPECT_EQ(Describe(cells[3]), "row 1, column 2");
    EXPECT_EQ(cells[0].vt, VT_EMPTY);  // a new array holds empty values
    ASSERT_EQ(SafeArrayUnaccessData(block.get()), S_OK);
}

TEST(SafeArray, IndicesOutsideTheBoundsAreRefused) {
    SAFEARRAYBOUND bounds[2] = {{2, -1}, {1, 5}};  // rows -1..0, column 5
    const ArrayRef block(SafeArrayCreate(VT_VARIANT, 2, bounds));
    ASSERT_NE(block, nullptr);
    PutText(block.get(), -1, 5, "first");
    EXPECT_EQ(GetText(block.get(), -1, 5), "first");
    EXPECT_EQ(GetText(block.get(), 1, 5), "failed 2147614731");  // DISP_E_BADINDEX
    EXPECT_EQ(GetText(block.get(), 0, 4), "failed 2147614731");
    void* element = nullptr;
    LONG past[2] = {0, 6};
    EXPECT_EQ(SafeArrayPtrOfIndex(block.get(), past, &element), DISP_E_BADINDEX);
}

TEST(SafeArray, ElementsAreCopiedInAndOutAndReleasedWithTheArray) {
    CountingObject object;
    {
        const ArrayRef block = CellBlock(1, 2);
        ScopedVariant held;
        held.value.vt = VT_DISPATCH;
        held.value.pdispVal = &object;
        object.AddRef();
        LONG first[2] = {1, 1};
        ASSERT_EQ(SafeArrayPutElement(block.get(), first, &held.value), S_OK);
        EXPECT_EQ(object.references, 3u);  // ours, the variant's and the array's
        {
            ScopedVariant out;
            ASSERT_EQ(SafeArrayGetElement(block.get(), first, &out.value), S_OK);
            EXPECT_EQ(out.value.pdispVal, &object);
            EXPECT_EQ(object.references, 4u);
        }
        // Putting over an element releases what it held.
        PutText(block.get(), 1, 1, "Gannt");
        EXPECT_EQ(object.references, 2u);
        ASSERT_EQ(SafeArrayPutElement(block.get(), first, &held.value), S_OK);
        EXPECT_EQ(object.references, 3u);
        // The text read out is a copy of its own.
        PutText(block.get(), 1, 2, "early then");
        ScopedVariant a, b;
        LONG second[2] = {1, 2};
        ASSERT_EQ(SafeArrayGetElement(block.get(), second, &a.value), S_OK);
        ASSERT_EQ(SafeArrayGetElement(block.get(), second, &b.value), S_OK);
        EXPECT_NE(a.value.bstrVal, b.value.bstrVal);
        EXPECT_EQ(Describe(b.value), "early then");
    }
    EXPECT_EQ(object.references, 1u);
}

TEST(SafeArray, StringArraysTakeAndGiveTheStringItself) {
    SAFEARRAYBOUND bound{2, 0};
    const ArrayRef texts(SafeArrayCreate(VT_BSTR, 1, &bound));
    ASSERT_NE(texts, nullptr);
    const BSTR word = SysAllocString(OLESTR("Depand"));
    LONG at = 1;
    ASSERT_EQ(SafeArrayPutElement(texts.get(), &at, word), S_OK);
    SysFreeString(word);  // the array keeps a copy
    BSTR out = nullptr;
    ASSERT_EQ(SafeArrayGetElement(texts.get(), &at, &out), S_OK);
    EXPECT_EQ(NarrowBstr(out), "Depand");
    SysFreeString(out);
}

TEST(SafeArray, AVariantHoldingAnArrayCopiesDeeplyAndClearsIt) {
    CountingObject object;
    ScopedVariant original, copy;
    original.value.vt = VT_ARRAY | VT_VARIANT;
    original.value.parray = CellBlock(2, 2).release();
    ScopedVariant held;
    held.value.vt = VT_DISPATCH;
    held.value.pdispVal = &object;
    object.AddRef();
    LONG at[2] = {2, 2};
    ASSERT_EQ(SafeArrayPutElement(original.value.parray, at, &held.value), S_OK);
    PutText(original.value.parray, 1, 1, "1.2.3");

    ASSERT_EQ(VariantCopy(&copy.value, &original.value), S_OK);
    EXPECT_EQ(copy.value.vt, VT_ARRAY | VT_VARIANT);
    EXPECT_NE(copy.value.parray, original.value.parray);
    EXPECT_EQ(GetText(copy.value.parray, 1, 1), "1.2.3");
    EXPECT_EQ(object.references, 4u);
    EXPECT_EQ(VariantClear(&copy.value), S_OK);
    EXPECT_EQ(copy.value.vt, VT_EMPTY);
    EXPECT_EQ(object.references, 3u);

    // An array is no single value, but converts to an array of its own type.
    EXPECT_EQ(Convert(original.value, VT_BSTR), "TYPEMISMATCH");
    EXPECT_EQ(Convert(original.value, VT_R8), "TYPEMISMATCH");
    ScopedVariant same;
    ASSERT_EQ(VariantChangeType(&same.value, &original.value, 0, VT_ARRAY | VT_VARIANT), S_OK);
    EXPECT_EQ(GetText(same.value.parray, 1, 1), "1.2.3");
    VariantClear(&same.value);
    VariantClear(&original.value);
    EXPECT_EQ(object.references, 2u);
}

TEST(SafeArray, ALockedArrayIsNotDestroyed) {
    ArrayRef block = CellBlock(1, 1);
    void* data = nullptr;
    ASSERT_EQ(SafeArrayAccessData(block.get(), &data), S_OK);
    EXPECT_EQ(SafeArrayDestroy(block.get()), DISP_E_ARRAYISLOCKED);
    ASSERT_EQ(SafeArrayUnaccessData(block.get()), S_OK);
    EXPECT_EQ(SafeArrayUnaccessData(block.get()), E_UNEXPECTED);
}

TEST(SafeArray, ArraysOfNothingAreNotMade) {
    SAFEARRAYBOUND bound{1, 0};
    EXPECT_EQ(SafeArrayCreate(VT_EMPTY, 1, &bound), nullptr);
    EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK);
}

}  // namespace
