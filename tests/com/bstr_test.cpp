#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "com/com.h"
#include "com/text.h"

namespace {

std::uint32_t LengthPrefix(BSTR text) {
    std::uint32_t bytes;
    std::memcpy(&bytes, reinterpret_cast<const char*>(text) - sizeof bytes, sizeof bytes);
    return bytes;
}

TEST(Bstr, CarriesItsByteCountBeforeAndANulAfterTheCharacters) {
    BSTR text = SysAllocString(OLESTR("Gannt"));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(LengthPrefix(text), 10u);
    EXPECT_EQ(SysStringLen(text), 5u);
    EXPECT_EQ(SysStringByteLen(text), 10u);
    EXPECT_EQ(text[5], 0);
    EXPECT_EQ(NarrowBstr(text), "Gannt");
    SysFreeString(text);
}

TEST(Bstr, KeepsEmbeddedNulsInItsLength) {
    BSTR text = SysAllocStringLen(OLESTR("a\0b"), 3);
    EXPECT_EQ(SysStringLen(text), 3u);
    EXPECT_EQ(text[1], 0);
    EXPECT_EQ(text[2], 'b');
    EXPECT_EQ(text[3], 0);
    SysFreeString(text);
}

TEST(Bstr, AllocatedWithoutTextHasTheLengthAndATerminator) {
    BSTR text = SysAllocStringLen(nullptr, 4);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(SysStringLen(text), 4u);
    EXPECT_EQ(text[4], 0);
    SysFreeString(text);
}

TEST(Bstr, EmptyIsNotNullButNullHasNoLength) {
    BSTR empty = SysAllocString(OLESTR(""));
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(SysStringLen(empty), 0u);
    SysFreeString(empty);
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    EXPECT_EQ(SysStringByteLen(nullptr), 0u);
    SysFreeString(nullptr);
}

}  // namespace
