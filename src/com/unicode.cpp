// Code page conversion. Only UTF-8 exists here, so the ANSI code page is UTF-8 as well. The length
// conventions are those of Windows: a length of -1 means NUL-ended with the NUL converted and
// counted, an output size of 0 asks for the size needed, and an output that is too small fails
// with 0. Malformed input becomes U+FFFD.
#ifndef _WIN32

#include <cstring>
#include <string_view>

#include "com/com.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsSupportedCodePage(UINT codePage) {
    return codePage == CP_ACP || codePage == CP_UTF8;
}

bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// Reads one code point from the front of `text` and removes the bytes it used.
char32_t TakeCodePoint(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    int trailing = 0;
    char32_t value = 0;
    // The allowed range of the first continuation byte rules out overlong forms, surrogates and
    // values beyond U+10FFFF.
    unsigned char low = 0x80, high = 0xBF;
    if (lead < 0x80) {
        text.remove_prefix(1);
        return lead;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
        trailing = 1;
        value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        trailing = 2;
        value = lead & 0x0F;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        trailing = 3;
        value = lead & 0x07;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else {
        text.remove_prefix(1);
        return kReplacement;
    }
    std::size_t used = 1;
    for (int i = 0; i < trailing; ++i, ++used) {
        if (used >= text.size()) {
            text.remove_prefix(used);
            return kReplacement;
        }
        const auto byte = static_cast<unsigned char>(text[used]);
        if (!IsContinuation(byte)) {
            text.remove_prefix(used);
            return kReplacement;
        }
        // A continuation byte outside the lead byte's range is taken along into the one
        // replacement, as Windows does.
        if (i == 0 && (byte < low || byte > high)) {
            text.remove_prefix(used + 1);
            return kReplacement;
        }
        value = (value << 6) | (byte & 0x3F);
    }
    text.remove_prefix(used);
    return value;
}

// Reads one code point from the front of `text`; a lone surrogate reads as U+FFFD.
char32_t TakeCodePoint(std::u16string_view& text) {
    const char16_t first = text[0];
    text.remove_prefix(1);
    if (first < 0xD800 || first > 0xDFFF) return first;
    if (first <= 0xDBFF && !text.empty() && text[0] >= 0xDC00 && text[0] <= 0xDFFF) {
        const char16_t second = text[0];
        text.remove_prefix(1);
        return 0x10000 + ((static_cast<char32_t>(first) - 0xD800) << 10) + (second - 0xDC00);
    }
    return kReplacement;
}

int EncodeUtf16(char32_t codePoint, char16_t* out) {
    if (codePoint < 0x10000) {
        out[0] = static_cast<char16_t>(codePoint);
        return 1;
    }
    codePoint -= 0x10000;
    out[0] = static_cast<char16_t>(0xD800 + (codePoint >> 10));
    out[1] = static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
    return 2;
}

int EncodeUtf8(char32_t codePoint, char* out) {
    auto put = [out](int index, char32_t bits) { out[index] = static_cast<char>(bits); };
    if (codePoint < 0x80) {
        put(0, codePoint);
        return 1;
    }
    if (codePoint < 0x800) {
        put(0, 0xC0 | (codePoint >> 6));
        put(1, 0x80 | (codePoint & 0x3F));
        return 2;
    }
    if (codePoint < 0x10000) {
        put(0, 0xE0 | (codePoint >> 12));
        put(1, 0x80 | ((codePoint >> 6) & 0x3F));
        put(2, 0x80 | (codePoint & 0x3F));
        return 3;
    }
    put(0, 0xF0 | (codePoint >> 18));
    put(1, 0x80 | ((codePoint >> 12) & 0x3F));
    put(2, 0x80 | ((codePoint >> 6) & 0x3F));
    put(3, 0x80 | (codePoint & 0x3F));
    return 4;
}

// Converts every code point of `input` with `encode`, writing to `output` unless its capacity is
// 0 (then only counting). Returns the units produced, or 0 when the output is too small.
template <typename Input, typename Unit, typename Encode>
int Transcode(Input input, Unit* output, int capacity, Encode encode) {
    int produced = 0;
    Unit units[4];
    while (!input.empty()) {
        // ASCII, most of what a workbook's texts hold, maps one unit to one.
        if (const auto unit = input.front(); static_cast<char32_t>(unit) < 0x80) {
            if (capacity > 0) {
                if (produced == capacity) return 0;
                output[produced] = static_cast<Unit>(unit);
            }
            ++produced;
            input.remove_prefix(1);
            continue;
        }
        const int count = encode(TakeCodePoint(input), units);
        if (capacity > 0) {
            if (produced + count > capacity) return 0;
            std::memcpy(output + produced, units, count * sizeof(Unit));
        }
        produced += count;
    }
    return produced;
}

template <typename Char>
std::basic_string_view<Char> InputView(const Char* text, int length) {
    if (length >= 0) return {text, static_cast<std::size_t>(length)};
    return {text, std::char_traits<Char>::length(text) + 1};  // the NUL is converted too
}

}  // namespace

int MultiByteToWideChar(UINT codePage, DWORD, LPCSTR text, int length, LPWSTR wide,
                        int wideLength) {
    if (!IsSupportedCodePage(codePage) || text == nullptr || length == 0 || length < -1 ||
        wideLength < 0 || (wideLength > 0 && wide == nullptr))
        return 0;
    return Transcode(InputView(text, length), wide, wideLength, EncodeUtf16);
}

int WideCharToMultiByte(UINT codePage, DWORD, LPCWSTR wide, int wideLength, LPSTR text, int length,
                        LPCSTR, LPBOOL usedDefault) {
    if (!IsSupportedCodePage(codePage) || wide == nullptr || wideLength == 0 || wideLength < -1 ||
        length < 0 || (length > 0 && text == nullptr))
        return 0;
    // UTF-8 represents every code point, so the default character is never needed.
    if (usedDefault != nullptr) *usedDefault = FALSE;
    return Transcode(InputView(wide, wideLength), text, length, EncodeUtf8);
}

#endif  // _WIN32
