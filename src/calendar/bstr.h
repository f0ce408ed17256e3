// A holder of one host wide string (BSTR). Strings the host hands out are owned by the holder
// that received them (BstrOut) and freed exactly once; strings attached or assigned from elsewhere
// are only borrowed. Task records keep their name, type and resource cells in these holders, and
// resources are keyed by the hexadecimal bytes of their key text.
#pragma once

#include <cstdint>
#include <string>

#include "com/com.h"
#include "com/text.h"

struct Bstr {
    Bstr() = default;  // BstrInit
    ~Bstr();           // BstrFree
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;

    BSTR text = nullptr;
    std::int64_t owned = 0;
};

// Empty and borrowed (the string, if it was owned, is not freed: call BstrFree first).
void BstrInit(Bstr& holder);
// Borrows `text`.
void BstrAttach(Bstr& holder, BSTR text);
// Frees the string when owned; the holder is empty afterwards.
void BstrFree(Bstr& holder);
// Borrows the other holder's string.
void BstrAssign(Bstr& holder, const Bstr& other);
// Frees the current string and hands out the slot for a string from the host, which the holder
// then owns.
BSTR* BstrOut(Bstr& holder);
// Frees the current string and takes an owned copy of `text`.
void BstrSet(Bstr& holder, WideStringView text);
BSTR BstrGet(const Bstr& holder);
// Characters up to the first NUL.
std::int64_t BstrLength(const Bstr& holder);
// Exact character comparison over BstrLength characters; two empty holders are equal.
bool BstrEquals(const Bstr& holder, const Bstr& other);
// The text in UTF-8, up to the first NUL.
std::string BstrText(const Bstr& holder);
// Every byte of the string in memory order as two upper-case hexadecimal digits, low byte of each
// character first: "A" gives "4100". Keys of this form compare exactly whatever the characters.
std::string BstrToHex(const Bstr& holder);
