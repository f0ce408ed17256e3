// Automation strings: the characters are preceded by their length in bytes (32 bits) and followed
// by a NUL that the length does not count, so a BSTR can be passed wherever a NUL-ended wide text
// is expected while still carrying embedded NULs.
#ifndef _WIN32

#include <cstdlib>
#include <cstring>
#include <limits>

#include "com/com.h"

namespace {

using ByteCount = std::uint32_t;

// Longest string whose byte count still fits the prefix, with room for the terminator.
constexpr UINT kMaxLength = (std::numeric_limits<ByteCount>::max() / sizeof(OLECHAR)) - 8;

std::byte* Header(BSTR text) {
    return reinterpret_cast<std::byte*>(text) - sizeof(ByteCount);
}

}  // namespace

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
    if (length > kMaxLength) return nullptr;
    const ByteCount byteCount = length * sizeof(OLECHAR);
    // malloc, not calloc: glibc hands calloc no memory from its per-thread cache, and texts pass
    // through here for every cell a command reads or writes.
    auto* block =
        static_cast<std::byte*>(std::malloc(sizeof(ByteCount) + byteCount + sizeof(OLECHAR)));
    if (block == nullptr) return nullptr;
    std::memcpy(block, &byteCount, sizeof byteCount);
    auto* characters = reinterpret_cast<BSTR>(block + sizeof(ByteCount));
    // A null text leaves the characters zeroed, as the runtime does.
    if (text != nullptr && length > 0) {
        std::memcpy(characters, text, byteCount);
    } else {
        std::memset(characters, 0, byteCount);
    }
    characters[length] = 0;
    return characters;
}

BSTR SysAllocString(const OLECHAR* text) {
    if (text == nullptr) return nullptr;
    UINT length = 0;
    while (text[length] != 0) ++length;
    return SysAllocStringLen(text, length);
}

void SysFreeString(BSTR text) {
    if (text != nullptr) std::free(Header(text));
}

UINT SysStringByteLen(BSTR text) {
    if (text == nullptr) return 0;
    ByteCount byteCount;
    std::memcpy(&byteCount, Header(text), sizeof byteCount);
    return byteCount;
}

UINT SysStringLen(BSTR text) {
    return SysStringByteLen(text) / sizeof(OLECHAR);
}

#endif  // _WIN32
