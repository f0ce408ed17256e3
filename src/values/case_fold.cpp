#include "values/case_fold.h"

#include <algorithm>
#include <array>

namespace values {
namespace {

// Runs where capital and small letters alternate, beginning with a capital.
struct AlternatingRun {
    char32_t first;
    char32_t last;
};

constexpr std::array<AlternatingRun, 22> kAlternating{{
    {0x0100, 0x012F}, {0x0132, 0x0137}, {0x0139, 0x0148}, {0x014A, 0x0177}, {0x0179, 0x017E},
    {0x01CD, 0x01DC}, {0x01DE, 0x01EF}, {0x01F8, 0x021F}, {0x0222, 0x0233}, {0x0246, 0x024F},
    {0x0370, 0x0373}, {0x03D8, 0x03EF}, {0x0460, 0x0481}, {0x048A, 0x04BF}, {0x04C1, 0x04CE},
    {0x04D0, 0x052F}, {0x1E00, 0x1E95}, {0x1EA0, 0x1EFF}, {0x2C80, 0x2CE3}, {0xA640, 0xA66D},
    {0xA680, 0xA69B}, {0xA722, 0xA72F},
}};

// Runs of capitals whose small letters stand a fixed distance away.
struct ShiftedRun {
    char32_t first;
    char32_t last;
    char32_t offset;
};

constexpr std::array<ShiftedRun, 12> kShifted{{
    {U'A', U'Z', 32},
    {0x00C0, 0x00D6, 32},
    {0x00D8, 0x00DE, 32},
    {0x0388, 0x038A, 37},
    {0x038E, 0x038F, 63},
    {0x0391, 0x03A1, 32},
    {0x03A3, 0x03AB, 32},
    {0x03FD, 0x03FF, static_cast<char32_t>(-130)},
    {0x0400, 0x040F, 80},
    {0x0410, 0x042F, 32},
    {0x0531, 0x0556, 48},
    {0xFF21, 0xFF3A, 32},
}};

// Letters that follow no run, sorted by code.
constexpr std::array<std::pair<char32_t, char32_t>, 68> kSingles{{
    {0x00B5, 0x03BC}, {0x0178, 0x00FF}, {0x017F, 0x0073}, {0x0181, 0x0253}, {0x0182, 0x0183},
    {0x0184, 0x0185}, {0x0186, 0x0254}, {0x0187, 0x0188}, {0x0189, 0x0256}, {0x018A, 0x0257},
    {0x018B, 0x018C}, {0x018E, 0x01DD}, {0x018F, 0x0259}, {0x0190, 0x025B}, {0x0191, 0x0192},
    {0x0193, 0x0260}, {0x0194, 0x0263}, {0x0196, 0x0269}, {0x0197, 0x0268}, {0x0198, 0x0199},
    {0x019C, 0x026F}, {0x019D, 0x0272}, {0x019F, 0x0275}, {0x01A0, 0x01A1}, {0x01A2, 0x01A3},
    {0x01A4, 0x01A5}, {0x01A6, 0x0280}, {0x01A7, 0x01A8}, {0x01A9, 0x0283}, {0x01AC, 0x01AD},
    {0x01AE, 0x0288}, {0x01AF, 0x01B0}, {0x01B1, 0x028A}, {0x01B2, 0x028B}, {0x01B3, 0x01B4},
    {0x01B5, 0x01B6}, {0x01B7, 0x0292}, {0x01B8, 0x01B9}, {0x01BC, 0x01BD}, {0x01C4, 0x01C6},
    {0x01C5, 0x01C6}, {0x01C7, 0x01C9}, {0x01C8, 0x01C9}, {0x01CA, 0x01CC}, {0x01CB, 0x01CC},
    {0x01F1, 0x01F3}, {0x01F2, 0x01F3}, {0x01F4, 0x01F5}, {0x01F6, 0x0195}, {0x01F7, 0x01BF},
    {0x0220, 0x019E}, {0x023A, 0x2C65}, {0x023B, 0x023C}, {0x023D, 0x019A}, {0x023E, 0x2C66},
    {0x0241, 0x0242}, {0x0243, 0x0180}, {0x0244, 0x0289}, {0x0245, 0x028C}, {0x0345, 0x03B9},
    {0x0376, 0x0377}, {0x037F, 0x03F3}, {0x0386, 0x03AC}, {0x038C, 0x03CC}, {0x03C2, 0x03C3},
    {0x03CF, 0x03D7}, {0x04C0, 0x04CF}, {0x1E9E, 0x00DF},
}};

// Greek letter variants that fold onto the plain letter.
constexpr std::array<std::pair<char32_t, char32_t>, 13> kGreekVariants{{
    {0x03D0, 0x03B2},
    {0x03D1, 0x03B8},
    {0x03D5, 0x03C6},
    {0x03D6, 0x03C0},
    {0x03F0, 0x03BA},
    {0x03F1, 0x03C1},
    {0x03F4, 0x03B8},
    {0x03F5, 0x03B5},
    {0x03F7, 0x03F8},
    {0x03F9, 0x03F2},
    {0x03FA, 0x03FB},
    {0x1E9B, 0x1E61},
    {0x2126, 0x03C9},
}};

char32_t FindIn(const auto& table, char32_t code) {
    const auto found =
        std::lower_bound(table.begin(), table.end(), code,
                         [](const auto& entry, char32_t c) { return entry.first < c; });
    return found != table.end() && found->first == code ? found->second : 0;
}

// The next code point of `text` from `at`, which it moves past; a byte that does not begin a
// well-formed sequence is taken alone, as a code no valid sequence gives.
char32_t NextCode(std::string_view text, std::size_t& at) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char lead = byte(at);
    std::size_t length = lead < 0x80           ? 1
                         : (lead >> 5) == 0x6  ? 2
                         : (lead >> 4) == 0xE  ? 3
                         : (lead >> 3) == 0x1E ? 4
                                               : 0;
    char32_t code = length == 1   ? lead
                    : length == 2 ? lead & 0x1F
                    : length == 3 ? lead & 0x0F
                                  : lead & 0x07;
    if (length == 0 || at + length > text.size()) {
        ++at;
        return 0x110000 + lead;
    }
    for (std::size_t k = 1; k < length; ++k) {
        if ((byte(at + k) & 0xC0) != 0x80) {
            ++at;
            return 0x110000 + lead;
        }
        code = (code << 6) | (byte(at + k) & 0x3F);
    }
    at += length;
    return code;
}

}  // namespace

char32_t FoldCase(char32_t code) {
    for (const ShiftedRun& run : kShifted) {
        if (code >= run.first && code <= run.last) return code + run.offset;
    }
    for (const AlternatingRun& run : kAlternating) {
        if (code >= run.first && code <= run.last) {
            return (code - run.first) % 2 == 0 ? code + 1 : code;
        }
    }
    if (const char32_t single = FindIn(kSingles, code)) return single;
    if (const char32_t variant = FindIn(kGreekVariants, code)) return variant;
    return code;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    std::size_t atA = 0;
    std::size_t atB = 0;
    while (atA < a.size() && atB < b.size()) {
        if (FoldCase(NextCode(a, atA)) != FoldCase(NextCode(b, atB))) return false;
    }
    return atA == a.size() && atB == b.size();
}

std::u32string FoldedText(std::string_view text) {
    std::u32string folded;
    for (std::size_t at = 0; at < text.size();) folded.push_back(FoldCase(NextCode(text, at)));
    return folded;
}

}  // namespace values
