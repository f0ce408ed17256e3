#include "calendar/bstr.h"

#include <cstdio>

namespace {

WideStringView ViewOf(const Bstr& holder) {
    return WideStringView(holder.text ? holder.text : OLESTR(""),
                          static_cast<std::size_t>(BstrLength(holder)));
}

}  // namespace

Bstr::~Bstr() {
    BstrFree(*this);
}

void BstrInit(Bstr& holder) {
    holder.text = nullptr;
    holder.owned = 0;
}

void BstrAttach(Bstr& holder, BSTR text) {
    holder.text = text;
    holder.owned = 0;
}

void BstrFree(Bstr& holder) {
    if (holder.owned != 0 && holder.text != nullptr) SysFreeString(holder.text);
    holder.text = nullptr;
}

void BstrAssign(Bstr& holder, const Bstr& other) {
    holder.text = other.text;
    holder.owned = 0;
}

BSTR* BstrOut(Bstr& holder) {
    BstrFree(holder);
    holder.owned = 1;
    return &holder.text;
}

void BstrSet(Bstr& holder, WideStringView text) {
    *BstrOut(holder) = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
}

BSTR BstrGet(const Bstr& holder) {
    return holder.text;
}

std::int64_t BstrLength(const Bstr& holder) {
    if (holder.text == nullptr) return 0;
    std::int64_t length = 0;
    while (holder.text[length] != 0) ++length;
    return length;
}

bool BstrEquals(const Bstr& holder, const Bstr& other) {
    return ViewOf(holder) == ViewOf(other);
}

std::string BstrText(const Bstr& holder) {
    return Narrow(ViewOf(holder));
}

std::string BstrToHex(const Bstr& holder) {
    std::string hex;
    for (const OLECHAR c : ViewOf(holder)) {
        const auto code = static_cast<unsigned>(c);
        char digits[5];
        std::snprintf(digits, sizeof digits, "%02X%02X", code & 0xFFu, (code >> 8) & 0xFFu);
        hex += digits;
    }
    return hex;
}
