#ifndef _WIN32

#include "com/number_text.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace {

// Exponents beyond this make every double overflow or vanish, so larger ones need not be exact.
constexpr int kExponentLimit = 100000;

bool IsBlank(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r');
}
bool IsDecimalDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

// The value of `c` as a digit in base 2^radixBits, or -1.
int RadixDigit(char16_t c, int radixBits) {
    int value = -1;
    if (IsDecimalDigit(c)) value = c - u'0';
    if (c >= u'a' && c <= u'f') value = c - u'a' + 10;
    if (c >= u'A' && c <= u'F') value = c - u'A' + 10;
    return value < (1 << radixBits) ? value : -1;
}

char DigitChar(int value) {
    return static_cast<char>(value < 10 ? '0' + value : 'A' + value - 10);
}

// Appends a decimal digit to `magnitude`; false on overflow.
bool AppendDecimalDigit(std::uint64_t& magnitude, unsigned digit) {
    constexpr auto kMax = std::numeric_limits<std::uint64_t>::max();
    if (magnitude > (kMax - digit) / 10) return false;
    magnitude = magnitude * 10 + digit;
    return true;
}

class NumberReader {
  public:
    explicit NumberReader(std::u16string_view text) : text_(text) {}

    HRESULT Read(ParsedNumber& number) {
        ReadLeadingSymbols();
        ReadRadixPrefix();
        const bool mantissaRead = number_.radixBits ? ReadRadixDigits() : ReadDecimalMantissa();
        if (!mantissaRead) return DISP_E_TYPEMISMATCH;
        ReadTrailingSymbols();
        if (at_ != text_.size() || (parenthesised_ && !closed_)) return DISP_E_TYPEMISMATCH;
        if (number_.digits.empty()) {
            number_.digits = "0";
            number_.exponent = 0;
        }
        // The runtime ignores the sign of a radix number.
        number_.negative =
            !number_.radixBits && (leadingMinus_ || trailingMinus_ || parenthesised_);
        number = std::move(number_);
        return S_OK;
    }

  private:
    char16_t Peek() const { return at_ < text_.size() ? text_[at_] : u'\0'; }

    // Blanks, one "+", one "-" and one "(" in any order.
    void ReadLeadingSymbols() {
        for (;; ++at_) {
            const char16_t c = Peek();
            if (IsBlank(c)) continue;
            if (c == u'+' && !leadingPlus_) {
                leadingPlus_ = true;
            } else if (c == u'-' && !leadingMinus_) {
                leadingMinus_ = true;
            } else if (c == u'(' && !parenthesised_) {
                parenthesised_ = true;
            } else {
                return;
            }
        }
    }

    void ReadRadixPrefix() {
        if (Peek() != u'&' || at_ + 1 >= text_.size()) return;
        const char16_t marker = text_[at_ + 1];
        if (marker == u'H' || marker == u'h') number_.radixBits = 4;
        if (marker == u'O' || marker == u'o') number_.radixBits = 3;
        if (number_.radixBits) at_ += 2;
    }

    bool ReadRadixDigits() {
        bool any = false;
        for (int digit; (digit = RadixDigit(Peek(), number_.radixBits)) >= 0; ++at_) {
            any = true;
            if (digit != 0 || !number_.digits.empty()) number_.digits += DigitChar(digit);
        }
        return any;
    }

    // Digits with "," after the first of them and at most one ".", and an exponent. Digits after
    // the exponent still extend the mantissa, as the runtime reads them.
    bool ReadDecimalMantissa() {
        bool anyDigit = false, decimalPoint = false, exponent = false;
        while (true) {
            const char16_t c = Peek();
            if (IsDecimalDigit(c)) {
                anyDigit = true;
                // Leading zeros are not significant, but behind the point they scale the rest.
                if (c != u'0' || !number_.digits.empty()) number_.digits += static_cast<char>(c);
                if (decimalPoint) --number_.exponent;
                ++at_;
            } else if (c == u',' && anyDigit) {
                ++at_;
            } else if (c == u'.' && !decimalPoint && !exponent) {
                decimalPoint = true;
                ++at_;
            } else if ((c == u'e' || c == u'E') && anyDigit && !exponent) {
                if (!ReadExponent()) return false;
                exponent = true;
            } else {
                return anyDigit;
            }
        }
    }

    // "e" or "E", an optional sign and at least one digit.
    bool ReadExponent() {
        ++at_;
        bool negative = false;
        if (Peek() == u'+' || Peek() == u'-') negative = text_[at_++] == u'-';
        if (!IsDecimalDigit(Peek())) return false;
        int exponent = 0;
        for (; IsDecimalDigit(Peek()); ++at_)
            exponent = std::min(exponent * 10 + (Peek() - u'0'), kExponentLimit);
        number_.exponent += negative ? -exponent : exponent;
        return true;
    }

    // Blanks, a "+" or "-" unless one came before the number, and the closing ")".
    void ReadTrailingSymbols() {
        for (;; ++at_) {
            const char16_t c = Peek();
            if (IsBlank(c)) continue;
            if (c == u'+' && !leadingPlus_ && !trailingPlus_) {
                trailingPlus_ = true;
            } else if (c == u'-' && !leadingMinus_ && !trailingMinus_) {
                trailingMinus_ = true;
            } else if (c == u')' && parenthesised_ && !closed_) {
                closed_ = true;
            } else {
                return;
            }
        }
    }

    std::u16string_view text_;
    std::size_t at_ = 0;
    ParsedNumber number_;
    bool leadingPlus_ = false, leadingMinus_ = false, parenthesised_ = false;
    bool trailingPlus_ = false, trailingMinus_ = false, closed_ = false;
};

HRESULT RadixToWhole(const ParsedNumber& number, WholeNumber& value) {
    constexpr auto kMax = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t magnitude = 0;
    for (const char digit : number.digits) {
        const unsigned digitValue = RadixDigit(static_cast<char16_t>(digit), number.radixBits);
        // The runtime's overflow test, which refuses the largest few values of 64 bits as well.
        if (magnitude > (kMax >> number.radixBits) - digitValue) return DISP_E_OVERFLOW;
        magnitude = (magnitude << number.radixBits) + digitValue;
    }
    value = {false, magnitude};
    return S_OK;
}

}  // namespace

HRESULT ParseNumber(std::u16string_view text, ParsedNumber& number) {
    return NumberReader(text).Read(number);
}

HRESULT NumberToDouble(const ParsedNumber& number, double& value) {
    if (number.radixBits) {
        // As a real, a radix number is a 32-bit signed one; the runtime reads the values just
        // below 2^64 as their negation.
        WholeNumber whole;
        if (const HRESULT hr = RadixToWhole(number, whole); FAILED(hr)) return hr;
        const std::uint64_t negated = 0 - whole.magnitude;
        if (whole.magnitude <= std::numeric_limits<std::int32_t>::max())
            value = static_cast<double>(whole.magnitude);
        else if (static_cast<std::int64_t>(negated) >= std::numeric_limits<std::int32_t>::min())
            value = static_cast<double>(static_cast<std::int64_t>(negated));
        else
            return DISP_E_OVERFLOW;
        return S_OK;
    }
    const std::string text = number.digits + 'e' + std::to_string(number.exponent);
    double magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude);
    if (error == std::errc::result_out_of_range) {
        // Too large overflows; too small is zero.
        const long long magnitudeOrder =
            static_cast<long long>(number.digits.size()) + number.exponent;
        if (magnitudeOrder > 0) return DISP_E_OVERFLOW;
        magnitude = 0;
    }
    value = number.negative ? -magnitude : magnitude;
    return S_OK;
}

HRESULT NumberToWhole(const ParsedNumber& number, WholeNumber& value) {
    if (number.radixBits) return RadixToWhole(number, value);
    const std::string& digits = number.digits;
    const long long wholeDigits = static_cast<long long>(digits.size()) + number.exponent;
    if (wholeDigits > std::numeric_limits<std::uint64_t>::digits10 + 1) return DISP_E_OVERFLOW;
    WholeNumber result{number.negative, 0};
    for (long long i = 0; i < wholeDigits; ++i) {
        const unsigned digit = i < static_cast<long long>(digits.size()) ? digits[i] - '0' : 0;
        if (!AppendDecimalDigit(result.magnitude, digit)) return DISP_E_OVERFLOW;
    }
    // Round half to even on the digits that were cut off; a number below 0.1 is cut off whole
    // with a leading zero that rounds it down.
    if (wholeDigits >= 0 && wholeDigits < static_cast<long long>(digits.size())) {
        const char firstCut = digits[wholeDigits];
        const bool restNonZero =
            digits.find_first_not_of('0', wholeDigits + 1) != std::string::npos;
        const bool odd = result.magnitude % 2 != 0;
        if (firstCut > '5' || (firstCut == '5' && (restNonZero || odd))) {
            if (result.magnitude == std::numeric_limits<std::uint64_t>::max())
                return DISP_E_OVERFLOW;
            ++result.magnitude;
        }
    }
    value = result;
    return S_OK;
}

std::u16string FormatReal(double value, int significantDigits) {
    if (value == 0) return u"0";
    char buffer[64];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value,
                                            std::chars_format::general, significantDigits);
    std::u16string text(buffer, end);
    std::replace(text.begin(), text.end(), u'e', u'E');
    return text;
}

std::u16string FormatWhole(WholeNumber value) {
    const std::string digits = std::to_string(value.magnitude);
    std::u16string text = value.negative && value.magnitude != 0 ? u"-" : u"";
    text.append(digits.begin(), digits.end());
    return text;
}

#endif  // _WIN32
