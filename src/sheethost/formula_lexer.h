// The tokens of a formula. The parser builds its tree from them and the reference rewriters
// replace the text of reference tokens while copying everything else, text literals included,
// exactly as written.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sheethost/value.h"

namespace sheethost::formula {

// One end of a reference as written: "$B$3", "B3", "5" (a whole row) or "C" (a whole column).
struct ReferenceEnd {
    int row = 0;     // 0 for a whole-column reference
    int column = 0;  // 0 for a whole-row reference
    bool rowAbsolute = false;
    bool columnAbsolute = false;
};

struct Reference {
    std::string sheet;  // unquoted; empty when the reference names no sheet
    ReferenceEnd first;
    ReferenceEnd last;  // equal to `first` for a single cell
    bool isRange = false;
};

enum class TokenKind {
    kNumber,
    kText,
    kBoolean,
    kError,      // "#DIV/0!" and the like, also a sheet-qualified "Sheet1!#REF!"
    kReference,  // a cell, a block, whole rows or whole columns, possibly on another sheet
    kName,       // a defined name, possibly qualified by a sheet
    kFunction,   // a function name; the "(" that follows is a token of its own
    kOperator,   // + - * / ^ & % = <> < <= > >=
    kOpenParen,
    kCloseParen,
    kComma,
};

struct Token {
    TokenKind kind;
    std::string_view source;  // the token's text within the formula
    double number = 0;
    bool boolean = false;
    ErrorValue error = ErrorValue::kValue;
    std::string text;            // the literal's text, or the upper-cased name or operator
    std::string_view sheetPart;  // "Sheet1!" or "'My Sheet'!" as written, empty when none
    Reference reference;         // for kReference; its sheet also qualifies kName
};

// The tokens of `body` (the formula without its leading "="); empty when the text holds
// something a formula cannot, such as an unterminated text literal.
std::optional<std::vector<Token>> Tokenize(std::string_view body);

// The text of a reference end, "$B$3" style, and of a whole reference without its sheet part.
std::string ReferenceEndText(const ReferenceEnd& end);
std::string ReferenceText(const ReferenceEnd& first, const ReferenceEnd& last, bool isRange);

// Sheet names compare without regard to ASCII case, as the spreadsheet compares them.
bool SameSheetName(std::string_view a, std::string_view b);

}  // namespace sheethost::formula
