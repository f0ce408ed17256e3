#ifndef _WIN32

#include <cstring>
#include <string_view>

#include "com/com.h"

namespace {

// The well-known interfaces share the OLE suffix C000-000000000046.
constexpr GUID OleInterface(DWORD first) {
    return {first, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
}

int HexValue(OLECHAR c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'a' && c <= u'f') return c - u'a' + 10;
    if (c >= u'A' && c <= u'F') return c - u'A' + 10;
    return -1;
}

// Reads `digits` hex digits from the front of `text`; false when they are not all there.
bool TakeHex(std::u16string_view& text, int digits, unsigned long& value) {
    if (text.size() < static_cast<std::size_t>(digits)) return false;
    value = 0;
    for (int i = 0; i < digits; ++i) {
        const int digit = HexValue(text[i]);
        if (digit < 0) return false;
        value = value * 16 + static_cast<unsigned long>(digit);
    }
    text.remove_prefix(digits);
    return true;
}

bool TakeChar(std::u16string_view& text, char16_t expected) {
    if (text.empty() || text[0] != expected) return false;
    text.remove_prefix(1);
    return true;
}

// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"
bool ParseGuid(std::u16string_view text, GUID& guid) {
    unsigned long part;
    if (!TakeChar(text, u'{') || !TakeHex(text, 8, part)) return false;
    guid.Data1 = static_cast<DWORD>(part);
    if (!TakeChar(text, u'-') || !TakeHex(text, 4, part)) return false;
    guid.Data2 = static_cast<WORD>(part);
    if (!TakeChar(text, u'-') || !TakeHex(text, 4, part)) return false;
    guid.Data3 = static_cast<WORD>(part);
    if (!TakeChar(text, u'-')) return false;
    for (int i = 0; i < 8; ++i) {
        if (i == 2 && !TakeChar(text, u'-')) return false;
        if (!TakeHex(text, 2, part)) return false;
        guid.Data4[i] = static_cast<BYTE>(part);
    }
    return TakeChar(text, u'}') && text.empty();
}

}  // namespace

const IID IID_NULL = {};
const IID IID_IUnknown = OleInterface(0x00000000);
const IID IID_IDispatch = OleInterface(0x00020400);
const IID IID_IEnumVARIANT = OleInterface(0x00020404);

bool operator==(REFGUID a, REFGUID b) {
    return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3 &&
           std::memcmp(a.Data4, b.Data4, sizeof a.Data4) == 0;
}

HRESULT CLSIDFromString(LPCOLESTR text, LPCLSID clsid) {
    if (text == nullptr) {
        *clsid = IID_NULL;
        return S_OK;
    }
    GUID parsed;
    if (ParseGuid(text, parsed)) {
        *clsid = parsed;
        return S_OK;
    }
    // Anything else would be a program identifier, and there is no registry to look it up in.
    return CLSIDFromProgID(text, clsid);
}

#endif  // _WIN32
