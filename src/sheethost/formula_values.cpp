#include "sheethost/formula_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "sheethost/formula.h"
#include "values/values.h"

namespace sheethost {

const char* ErrorText(ErrorValue error) {
    switch (error) {
        case ErrorValue::kNull:
            return "#NULL!";
        case ErrorValue::kDiv0:
            return "#DIV/0!";
        case ErrorValue::kValue:
            return "#VALUE!";
        case ErrorValue::kRef:
            return "#REF!";
        case ErrorValue::kName:
            return "#NAME?";
        case ErrorValue::kNum:
            return "#NUM!";
        case ErrorValue::kNA:
            return "#N/A";
    }
    return "#VALUE!";
}

namespace {

std::string_view TrimBlanks(std::string_view text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// "1,234.5e3" without its separators, or empty when the text is not a plain decimal number.
// Separators must group the integer digits by three, as the spreadsheet writes them.
std::optional<std::string> PlainDecimal(std::string_view text) {
    std::string digits;
    std::size_t i = 0;
    std::size_t groupLength = 0;
    bool grouped = false;
    for (; i < text.size() && (IsDigit(text[i]) || text[i] == ','); ++i) {
        if (text[i] == ',') {
            if (groupLength == 0 || (grouped && groupLength != 3) || (!grouped && groupLength > 3))
                return std::nullopt;
            grouped = true;
            groupLength = 0;
        } else {
            digits += text[i];
            ++groupLength;
        }
    }
    if (grouped && groupLength != 3) return std::nullopt;
    const bool hasIntegerDigits = !digits.empty();
    bool hasFractionDigits = false;
    if (i < text.size() && text[i] == '.') {
        digits += text[i++];
        for (; i < text.size() && IsDigit(text[i]); ++i) {
            digits += text[i];
            hasFractionDigits = true;
        }
    }
    if (!hasIntegerDigits && !hasFractionDigits) return std::nullopt;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        digits += text[i++];
        if (i < text.size() && (text[i] == '+' || text[i] == '-')) digits += text[i++];
        if (i == text.size()) return std::nullopt;
        for (; i < text.size() && IsDigit(text[i]); ++i) digits += text[i];
    }
    if (i != text.size()) return std::nullopt;
    if (!hasIntegerDigits) digits.insert(digits.begin(), '0');
    return digits;
}

// The mantissa digits (without trailing zeros) and decimal exponent of a number rounded to 15
// significant digits: 1234.5 gives "12345" and 3.
void SignificantDigits(double magnitude, std::string& digits, int& exponent) {
    std::array<char, 32> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%.14e", magnitude);
    const std::string_view text(buffer.data());
    const std::size_t e = text.find('e');
    digits = std::string(1, text[0]) + std::string(text.substr(2, e - 2));
    while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
    exponent = std::atoi(buffer.data() + e + 1);
}

std::string NumberDisplayText(double number) {
    if (number == 0) return "0";
    std::string digits;
    int exponent = 0;
    SignificantDigits(std::fabs(number), digits, exponent);
    std::string text = number < 0 ? "-" : "";
    // Numbers past fifteen integer digits, or so small that fifteen digits would not reach their
    // first significant one, are written in scientific form ("1E+20", "1.5E-12").
    if (exponent >= 15 || exponent < -9) {
        text += digits[0];
        if (digits.size() > 1) text += "." + digits.substr(1);
        std::array<char, 16> power{};  // room for any int, as the compiler checks
        std::snprintf(power.data(), power.size(), "E%c%02d", exponent < 0 ? '-' : '+',
                      std::abs(exponent));
        return text + power.data();
    }
    if (exponent < 0) return text + "0." + std::string(-exponent - 1, '0') + digits;
    const std::size_t integerDigits = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() <= integerDigits)
        return text + digits + std::string(integerDigits - digits.size(), '0');
    return text + digits.substr(0, integerDigits) + "." + digits.substr(integerDigits);
}

int CompareTextIgnoringCase(std::string_view a, std::string_view b) {
    const auto lower = [](char c) {
        return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c - 'A' + 'a')
                                      : static_cast<unsigned char>(c);
    };
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (lower(a[i]) != lower(b[i])) return lower(a[i]) < lower(b[i]) ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

int CompareNumbers(double a, double b) {
    if (a == b) return 0;
    // The spreadsheet compares at its display precision, so 0.1+0.2 equals 0.3.
    const double scale = std::max(std::fabs(a), std::fabs(b));
    if (std::fabs(a - b) <= scale * 1e-15) return 0;
    return a < b ? -1 : 1;
}

// The rank of a type in comparisons: numbers, then texts, then booleans.
int TypeRank(const Value& value) {
    if (std::holds_alternative<std::string>(value)) return 1;
    if (std::holds_alternative<bool>(value)) return 2;
    return 0;
}

// What a blank stands for when compared with `other`.
Value BlankLike(const Value& other) {
    if (std::holds_alternative<std::string>(other)) return std::string();
    if (std::holds_alternative<bool>(other)) return false;
    return 0.0;
}

}  // namespace

std::optional<double> TextToNumber(std::string_view text) {
    text = TrimBlanks(text);
    if (text.empty()) return std::nullopt;
    std::string_view body = text;
    const bool negative = body.front() == '-';
    if (negative || body.front() == '+') body = TrimBlanks(body.substr(1));
    const bool percent = !body.empty() && body.back() == '%';
    if (percent) body = TrimBlanks(body.substr(0, body.size() - 1));
    if (const auto digits = PlainDecimal(body)) {
        double number = 0;
        const auto [end, error] =
            std::from_chars(digits->data(), digits->data() + digits->size(), number);
        if (error != std::errc{} || !std::isfinite(number)) return std::nullopt;
        if (percent) number /= 100;
        return negative ? -number : number;
    }
    // Dates and times carry no sign or percent.
    if (body.size() == text.size()) return values::ParseDateText(text);
    return std::nullopt;
}

std::string DisplayText(const Value& value) {
    if (const auto* number = std::get_if<double>(&value)) return NumberDisplayText(*number);
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* boolean = std::get_if<bool>(&value)) return *boolean ? "TRUE" : "FALSE";
    if (const auto* error = std::get_if<ErrorValue>(&value)) return ErrorText(*error);
    return {};
}

namespace formula {

Checked<double> ToNumber(const Value& value) {
    if (const auto* number = std::get_if<double>(&value)) return {*number};
    if (const auto* boolean = std::get_if<bool>(&value)) return {*boolean ? 1.0 : 0.0};
    if (const auto* text = std::get_if<std::string>(&value)) {
        if (const auto number = TextToNumber(*text)) return {*number};
        return {0, ErrorValue::kValue};
    }
    if (const auto error = ErrorOf(value)) return {0, error};
    return {0};
}

Checked<std::string> ToText(const Value& value) {
    if (const auto error = ErrorOf(value)) return {{}, error};
    return {DisplayText(value)};
}

Checked<bool> ToBoolean(const Value& value) {
    if (const auto* boolean = std::get_if<bool>(&value)) return {*boolean};
    if (const auto* number = std::get_if<double>(&value)) return {*number != 0};
    if (const auto* text = std::get_if<std::string>(&value)) {
        if (CompareTextIgnoringCase(*text, "TRUE") == 0) return {true};
        if (CompareTextIgnoringCase(*text, "FALSE") == 0) return {false};
        return {false, ErrorValue::kValue};
    }
    if (const auto error = ErrorOf(value)) return {false, error};
    return {false};
}

Checked<int> Compare(const Value& left, const Value& right) {
    if (const auto error = ErrorOf(left)) return {0, error};
    if (const auto error = ErrorOf(right)) return {0, error};
    const bool leftBlank = std::holds_alternative<Blank>(left);
    const bool rightBlank = std::holds_alternative<Blank>(right);
    if (leftBlank && rightBlank) return {0};
    if (leftBlank) return Compare(BlankLike(right), right);
    if (rightBlank) return Compare(left, BlankLike(left));
    const int leftRank = TypeRank(left);
    const int rightRank = TypeRank(right);
    if (leftRank != rightRank) return {leftRank < rightRank ? -1 : 1};
    if (leftRank == 0) return {CompareNumbers(std::get<double>(left), std::get<double>(right))};
    if (leftRank == 1) {
        return {CompareTextIgnoringCase(std::get<std::string>(left), std::get<std::string>(right))};
    }
    return {static_cast<int>(std::get<bool>(left)) - static_cast<int>(std::get<bool>(right))};
}

Value NumberResult(double number) {
    if (!std::isfinite(number)) return ErrorValue::kNum;
    return number;
}

}  // namespace formula
}  // namespace sheethost
