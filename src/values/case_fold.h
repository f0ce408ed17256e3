// Comparing texts without regard to letter case, for every script the workbook's users write
// task names in, not only A to Z.
#pragma once

#include <string>
#include <string_view>

namespace values {

// The simple case folding of one code point (the lower-case form for the letters that have one):
// Latin with its supplements and extensions, Greek, Cyrillic, Armenian and the full-width Latin
// letters; any other code point is its own fold.
char32_t FoldCase(char32_t code);

// Two UTF-8 texts equal once every code point is folded; a byte that does not begin a valid
// sequence compares as itself.
bool EqualIgnoringCase(std::string_view a, std::string_view b);

// The folded code points of a UTF-8 text, equal for two texts exactly when EqualIgnoringCase holds:
// a key for looking texts up without regard to case.
std::u32string FoldedText(std::string_view text);

}  // namespace values
