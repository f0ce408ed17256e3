#include "calendar/bstr.h"

#include <gtest/gtest.h>

namespace {

TEST(Bstr, HexKeysLengthAndEquality) {
    Bstr holder;
    EXPECT_EQ(BstrToHex(holder), "");
    BstrSet(holder, OLESTR("Ab\u65E5"));
    EXPECT_EQ(BstrToHex(holder), "41006200E565");  // low byte of each character first

    BstrSet(holder, WideStringView(OLESTR("ab\0cd"), 5));
    Bstr plain;
    BstrSet(plain, OLESTR("ab"));
    EXPECT_EQ(BstrLength(holder), 2);  // up to the first NUL
    EXPECT_TRUE(BstrEquals(holder, plain));
    BstrSet(plain, OLESTR("AB"));
    EXPECT_FALSE(BstrEquals(holder, plain));
}

// The sanitizers catch a double free or a leak here: only the owner frees, exactly once.
TEST(Bstr, OnlyTheOwnerFreesItsString) {
    Bstr owner;
    *BstrOut(owner) = SysAllocString(OLESTR("host text"));
    {
        Bstr borrower;
        BstrAssign(borrower, owner);
        EXPECT_EQ(BstrGet(borrower), BstrGet(owner));
    }
    Bstr attached;
    BstrAttach(attached, BstrGet(owner));
    BstrFree(attached);
    EXPECT_EQ(BstrText(owner), "host text");
    *BstrOut(owner) = SysAllocString(OLESTR("second"));  // frees the first
    BstrFree(owner);
    BstrFree(owner);
    EXPECT_EQ(BstrLength(owner), 0);
}

}  // namespace
