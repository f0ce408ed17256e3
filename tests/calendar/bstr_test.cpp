#include "calendar/bstr.h"

#include <gtest/gtest.h>

namespace {

TEST(Bstr, HexKeysAreTheBytesLowByteFirst) {
    Bstr holder;
    BstrSet(holder, OLESTR("A"));
    EXPECT_EQ(BstrToHex(holder), "4100");
    BstrSet(holder, OLESTR("Ab\u65E5"));
    EXPECT_EQ(BstrToHex(holder), "41006200E565");
    BstrSet(holder, OLESTR(""));
    EXPECT_EQ(BstrToHex(holder), "");
    Bstr empty;
    EXPECT_EQ(BstrToHex(empty), "");
}

TEST(Bstr, LengthAndEqualityStopAtTheFirstNul) {
    Bstr withNul;
    BstrSet(withNul, WideStringView(OLESTR("ab\0cd"), 5));
    Bstr plain;
    BstrSet(plain, OLESTR("ab"));
    EXPECT_EQ(BstrLength(withNul), 2);
    EXPECT_TRUE(BstrEquals(withNul, plain));
    EXPECT_EQ(BstrText(withNul), "ab");

    Bstr upper;
    BstrSet(upper, OLESTR("AB"));
    EXPECT_FALSE(BstrEquals(plain, upper));
    Bstr none;
    Bstr blank;
    BstrSet(blank, OLESTR(""));
    EXPECT_TRUE(BstrEquals(none, blank));
}

// The sanitizers catch a double free or a leak here: only the owner frees, exactly once.
TEST(Bstr, OnlyTheOwnerFreesItsString) {
    Bstr owner;
    *BstrOut(owner) = SysAllocString(OLESTR("host text"));
    EXPECT_EQ(owner.owned, 1);
    {
        Bstr borrower;
        BstrAssign(borrower, owner);
        EXPECT_EQ(borrower.owned, 0);
        EXPECT_EQ(BstrGet(borrower), BstrGet(owner));
    }
    Bstr attached;
    BstrAttach(attached, BstrGet(owner));
    BstrFree(attached);
    EXPECT_EQ(BstrGet(attached), nullptr);
    EXPECT_EQ(BstrText(owner), "host text");

    // Receiving a second string frees the first.
    *BstrOut(owner) = SysAllocString(OLESTR("second"));
    EXPECT_EQ(BstrText(owner), "second");
    BstrFree(owner);
    BstrFree(owner);
    EXPECT_EQ(BstrLength(owner), 0);
}

}  // namespace
