#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "com/com.h"
#include "com/text.h"

namespace {

std::vector<unsigned> Units(const WideString& text) {
    return {text.begin(), text.end()};
}

TEST(Unicode, RoundTripsNonAsciiAndSurrogatePairs) {
    const char* utf8 = "Gannt \xC3\xA9t\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80";  // é, €, 😀
    const WideString wide = Widen(utf8);
    EXPECT_EQ(wide.size(), 14u);
    EXPECT_EQ(wide[12], 0xD83D);
    EXPECT_EQ(wide[13], 0xDE00);
    EXPECT_EQ(Narrow(wide), utf8);
    EXPECT_EQ(Widen(""), WideString());
    EXPECT_EQ(Narrow(WideString()), "");
}

TEST(Unicode, MalformedInputBecomesReplacementCharacters) {
    EXPECT_EQ(Units(Widen("a\xFF"
                          "b")),
              (std::vector<unsigned>{'a', 0xFFFD, 'b'}));
    EXPECT_EQ(Units(Widen("a\xE2\x82z")), (std::vector<unsigned>{'a', 0xFFFD, 'z'}));
    EXPECT_EQ(Units(Widen("\xC0\xAF")), (std::vector<unsigned>{0xFFFD, 0xFFFD}));
    const OLECHAR loneSurrogate[] = {'a', 0xD800, 'b'};
    EXPECT_EQ(Narrow(WideStringView(loneSurrogate, 3)),
              "a\xEF\xBF\xBD"
              "b");
}

TEST(Unicode, LengthsFollowTheWindowsConventions) {
    WCHAR wide[8];
    // -1: the terminator is converted and counted; an output size of 0 asks for the size.
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "ab\xC3\xA9", -1, nullptr, 0), 4);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "ab\xC3\xA9", 4, nullptr, 0), 3);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "ab\xC3\xA9", -1, wide, 8), 4);
    EXPECT_EQ(wide[2], 0xE9);
    EXPECT_EQ(wide[3], 0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", -1, wide, 3), 0);  // no room for the NUL
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", 0, wide, 8), 0);
    char narrow[8];
    const WCHAR text[] = {'a', 0xE9, 0};
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr), 4);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow, 8, nullptr, nullptr), 4);
    EXPECT_STREQ(narrow, "a\xC3\xA9");
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, text, 2, narrow, 2, nullptr, nullptr), 0);
}

}  // namespace
