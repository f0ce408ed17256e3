// Numbers in text, read and written the way the automation runtime does for the invariant locale.
#pragma once

#ifndef _WIN32

#include <cstdint>
#include <string>
#include <string_view>

#include "com/com.h"

// An integer as sign and magnitude, wide enough for every integer variant type.
struct WholeNumber {
    bool negative = false;
    std::uint64_t magnitude = 0;
};

// A number as written in text: value = digits x 10^exponent, or, for "&H"/"&O" texts, the
// digits in base 16 or 8 (radixBits 4 or 3).
struct ParsedNumber {
    std::string digits;  // '0'-'9' and, in base 16, 'A'-'F'; no leading zeros except a lone "0"
    int exponent = 0;
    int radixBits = 0;
    bool negative = false;
};

// Reads the whole text as a number: blanks around it, a sign before or after it or parentheses
// around it, "," thousands separators after the first digit, a "." decimal point, an exponent, or
// "&H"/"&O" radix numbers (whose sign the runtime ignores). Anything else gives
// DISP_E_TYPEMISMATCH.
HRESULT ParseNumber(std::u16string_view text, ParsedNumber& number);

// The nearest double; DISP_E_OVERFLOW beyond its range. A radix number must fit 32 bits signed.
HRESULT NumberToDouble(const ParsedNumber& number, double& value);

// The number rounded half to even; DISP_E_OVERFLOW when it does not fit 64 bits.
HRESULT NumberToWhole(const ParsedNumber& number, WholeNumber& value);

// A double as the runtime writes it: up to `significantDigits` digits, exponent form ("1E+20",
// "1E-05") when the exponent is below -4 or not below the digit count, never "-0".
std::u16string FormatReal(double value, int significantDigits);
std::u16string FormatWhole(WholeNumber value);

#endif  // _WIN32
