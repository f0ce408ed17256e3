#include <gtest/gtest.h>

#include "com/com.h"
#include "variant_testing.h"

namespace {

TEST(Variant, CopyTakesAReferenceAndClearGivesItBack) {
    CountingObject object;
    ScopedVariant original, copy;
    original.value.vt = VT_DISPATCH;
    original.value.pdispVal = &object;
    object.AddRef();
    ASSERT_EQ(VariantCopy(&copy.value, &original.value), S_OK);
    EXPECT_EQ(object.references, 3u);
    EXPECT_EQ(copy.value.pdispVal, &object);
    EXPECT_EQ(VariantClear(&copy.value), S_OK);
    EXPECT_EQ(copy.value.vt, VT_EMPTY);
    EXPECT_EQ(object.references, 2u);
    // Copying over a variant releases what it held first.
    ASSERT_EQ(VariantCopy(&copy.value, &original.value), S_OK);
    ASSERT_EQ(VariantCopy(&copy.value, &original.value), S_OK);
    EXPECT_EQ(object.references, 3u);
    VariantClear(&copy.value);
    VariantClear(&original.value);
    EXPECT_EQ(object.references, 1u);
}

TEST(Variant, CopyOfAStringIsDeepAndANullStringCopiesAsEmpty) {
    ScopedVariant original, copy;
    SetText(original, "Depand");
    ASSERT_EQ(VariantCopy(&copy.value, &original.value), S_OK);
    EXPECT_NE(copy.value.bstrVal, original.value.bstrVal);
    EXPECT_EQ(Describe(copy.value), "Depand");
    SysFreeString(original.value.bstrVal);
    original.value.bstrVal = nullptr;
    ASSERT_EQ(VariantCopy(&copy.value, &original.value), S_OK);
    ASSERT_NE(copy.value.bstrVal, nullptr);
    EXPECT_EQ(SysStringLen(copy.value.bstrVal), 0u);
}

TEST(Variant, ClearLeavesWhatAReferenceVariantPointsTo) {
    CountingObject object;
    IDispatch* pointer = &object;
    VARIANT reference;
    reference.vt = VT_DISPATCH | VT_BYREF;
    reference.byref = &pointer;
    EXPECT_EQ(VariantClear(&reference), S_OK);
    EXPECT_EQ(reference.vt, VT_EMPTY);
    EXPECT_EQ(object.references, 1u);
}

TEST(Variant, ClearRefusesAnUnknownType) {
    VARIANT bad;
    bad.vt = 15;
    EXPECT_EQ(VariantClear(&bad), DISP_E_BADVARTYPE);
    EXPECT_EQ(bad.vt, 15);
}

}  // namespace
