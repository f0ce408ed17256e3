// The tree of a formula, built from its tokens with the spreadsheet's operator precedence
// (highest first): negation, percent, "^", "*" and "/", "+" and "-", "&", comparisons. All binary
// operators group from the left, so 2^3^2 is 64 and -2^2 is 4.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sheethost/formula_lexer.h"
#include "sheethost/value.h"

namespace sheethost::formula {

struct FunctionInfo;

enum class BinaryOperator {
    kAdd,
    kSubtract,
    kMultiply,
    kDivide,
    kPower,
    kJoin,
    kEqual,
    kNotEqual,
    kLess,
    kLessEqual,
    kGreater,
    kGreaterEqual,
};

struct Node {
    enum class Kind {
        kConstant,   // a number, text, boolean or error written in the formula
        kReference,  // a cell, block, rows or columns
        kName,       // a defined name, resolved when evaluated
        kMissing,    // an argument left empty, as in IF(A1,,2)
        kNegate,
        kPercent,
        kBinary,
        kFunction,
    };

    Kind kind = Kind::kConstant;
    Value constant;
    Reference reference;  // for kReference; for kName only its sheet is used
    std::string name;     // for kName
    BinaryOperator binary = BinaryOperator::kAdd;
    const FunctionInfo* function = nullptr;  // null for a function the host does not know
    std::vector<std::unique_ptr<Node>> children;
    int height = 1;  // the longest path to a leaf, which bounds the evaluator's recursion
};

struct ParseResult {
    std::unique_ptr<Node> root;  // null when the formula is refused
    // Why it was refused: #NAME? for text that is no formula, #VALUE! for a built-in function
    // called with a wrong number of arguments.
    ErrorValue refusal = ErrorValue::kName;
};

// Parses `formula`, which begins with "=". Nesting deeper than the host accepts is refused.
ParseResult Parse(std::string_view formula);
// The tokens of `formula` (which begins with "="), none when it is no formula at all; and the
// tree of such tokens. Parse(formula) is the two in turn.
std::optional<std::vector<Token>> FormulaTokens(std::string_view formula);
ParseResult Parse(std::vector<Token> tokens);

}  // namespace sheethost::formula
