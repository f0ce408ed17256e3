// How values change type inside a formula: the coercions of arithmetic, text joining and logical
// tests, and the ordering comparisons use.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "sheethost/value.h"

namespace sheethost::formula {

// A coerced value, or the error that stopped the coercion.
template <typename T>
struct Checked {
    Checked(T result) : value(std::move(result)) {}
    Checked(T fallback, std::optional<ErrorValue> failure)
        : value(std::move(fallback)), error(failure) {}

    T value;
    std::optional<ErrorValue> error;
};

// Blank is 0, booleans 1 and 0, text that reads as a number its number, other text #VALUE!.
Checked<double> ToNumber(const Value& value);
// Blank is "", numbers their display text, booleans "TRUE" and "FALSE".
Checked<std::string> ToText(const Value& value);
// Blank is FALSE, numbers are TRUE unless 0, text "TRUE"/"FALSE" in any case, other text #VALUE!.
Checked<bool> ToBoolean(const Value& value);

// The order of two values: negative, 0 or positive. Numbers come before texts, texts before
// booleans; a blank takes the other side's type (0, "" or FALSE); texts compare without regard to
// case; numbers equal to 15 significant digits are equal. Errors propagate, the left one first.
Checked<int> Compare(const Value& left, const Value& right);

// The error a value holds, if it is one.
inline std::optional<ErrorValue> ErrorOf(const Value& value) {
    if (const auto* error = std::get_if<ErrorValue>(&value)) return *error;
    return std::nullopt;
}

// A number as a formula result: infinities and NaN become #NUM!.
Value NumberResult(double number);

}  // namespace sheethost::formula
