#include "values/values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace values {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view SkipBlanks(std::string_view text) {
    std::size_t start = 0;
    while (start < text.size() && IsBlank(text[start])) ++start;
    return text.substr(start);
}

// The value of a digit in `radix`, or -1 when the character is not one.
int DigitValue(char c, int radix) {
    int value = -1;
    if (IsDigit(c)) {
        value = c - '0';
    } else if (c >= 'a' && c <= 'z') {
        value = c - 'a' + 10;
    } else if (c >= 'A' && c <= 'Z') {
        value = c - 'A' + 10;
    }
    return value < radix ? value : -1;
}

// Digits are accumulated unsigned so that an oversized number wraps instead of overflowing, as
// the runtime's 64-bit conversion does; "&HFFFFFFFFFFFFFFFF" is -1.
std::uint64_t ReadDigits(std::string_view digits, int radix) {
    std::uint64_t value = 0;
    for (char c : digits) {
        const int digit = DigitValue(c, radix);
        if (digit < 0) break;
        value = value * static_cast<std::uint64_t>(radix) + static_cast<std::uint64_t>(digit);
    }
    return value;
}

std::int64_t FloorDiv(std::int64_t value, std::int64_t divisor) {
    const std::int64_t quotient = value / divisor;
    return (value % divisor != 0 && (value < 0) != (divisor < 0)) ? quotient - 1 : quotient;
}

// Day numbers are counted internally from 0000-03-01, with March as the first month so that the
// leap day falls last in the year; the serial's day 0, 1899-12-30, is this many days later.
constexpr std::int64_t kSerialEpoch = 693899;

// Days from 1899-12-30 to a proleptic Gregorian date; months outside 1..12 roll into the
// neighbouring years and days outside the month into the neighbouring months.
std::int64_t DayNumber(std::int64_t year, std::int64_t month, std::int64_t day) {
    year += FloorDiv(month - 1, 12);
    month -= 12 * FloorDiv(month - 1, 12);
    const std::int64_t y = month <= 2 ? year - 1 : year;
    const std::int64_t era = FloorDiv(y, 400);
    const std::int64_t yearOfEra = y - era * 400;
    const std::int64_t shiftedMonth = month > 2 ? month - 3 : month + 9;
    const std::int64_t dayOfYear = (153 * shiftedMonth + 2) / 5;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - kSerialEpoch + day - 1;
}

void SetCalendarDate(std::int64_t dayNumber, DateTime& parts) {
    const std::int64_t z = dayNumber + kSerialEpoch;
    const std::int64_t era = FloorDiv(z, 146097);
    const std::int64_t dayOfEra = z - era * 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;
    const std::int64_t month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    parts.year = static_cast<int>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0));
    parts.month = static_cast<int>(month);
    parts.day = static_cast<int>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
}

// A point in time as seconds on a continuous axis (0 = 1899-12-30 00:00), rounded to the nearest
// second. The serial's whole part names the day and its fraction counts forward from that day's
// midnight whatever the sign, so the axis is not the serial times 86400 for negative serials.
std::int64_t SecondsOf(double serial) {
    // Cells can hold any double; far beyond the host's year 9999 nothing is a date, and keeping
    // within this bound keeps the conversions to integers defined.
    constexpr double kFarthestDay = 1e9;
    if (!(std::fabs(serial) <= kFarthestDay))
        serial = std::isnan(serial) ? 0.0 : std::copysign(kFarthestDay, serial);
    const double wholeDays = std::trunc(serial);
    const std::int64_t seconds = std::llround(std::fabs(serial - wholeDays) * kSecondsPerDay);
    return static_cast<std::int64_t>(wholeDays) * kSecondsPerDay + seconds;
}

double SerialOfSeconds(std::int64_t seconds) {
    const std::int64_t days = FloorDiv(seconds, kSecondsPerDay);
    const std::int64_t timeOfDay = seconds - days * kSecondsPerDay;
    const double fraction = static_cast<double>(timeOfDay) / kSecondsPerDay;
    return days < 0 ? static_cast<double>(days) - fraction : static_cast<double>(days) + fraction;
}

std::int64_t SecondsOf(const DateTime& parts) {
    return DayNumber(parts.year, parts.month, parts.day) * kSecondsPerDay + parts.hour * 3600LL +
           parts.minute * 60LL + parts.second;
}

DateTime PartsOfSeconds(std::int64_t seconds) {
    const std::int64_t days = FloorDiv(seconds, kSecondsPerDay);
    const std::int64_t timeOfDay = seconds - days * kSecondsPerDay;
    DateTime parts;
    SetCalendarDate(days, parts);
    parts.hour = static_cast<int>(timeOfDay / 3600);
    parts.minute = static_cast<int>(timeOfDay / 60 % 60);
    parts.second = static_cast<int>(timeOfDay % 60);
    return parts;
}

void AppendPadded(std::string& out, int value, int width) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%0*d", width, value);
    out += buffer;
}

// A run of digits for the date parser; empty when the text does not start with a digit.
std::string_view TakeNumber(std::string_view& text, std::size_t maxDigits) {
    std::size_t length = 0;
    while (length < text.size() && length < maxDigits && IsDigit(text[length])) ++length;
    const std::string_view digits = text.substr(0, length);
    text.remove_prefix(length);
    return digits;
}

bool TakeChar(std::string_view& text, char expected) {
    if (text.empty() || text.front() != expected) return false;
    text.remove_prefix(1);
    return true;
}

int NumberOf(std::string_view digits) {
    return static_cast<int>(ReadDigits(digits, 10));
}

bool IsValidDate(int year, int month, int day) {
    if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1) return false;
    DateTime check;
    SetCalendarDate(DayNumber(year, month, day), check);
    return check.month == month;
}

// "h:mm" or "h:mm:ss" with hours 0..23; fills the seconds of the day.
bool ParseTime(std::string_view text, std::int64_t& secondsOfDay) {
    const std::string_view hours = TakeNumber(text, 2);
    if (hours.empty() || !TakeChar(text, ':')) return false;
    const std::string_view minutes = TakeNumber(text, 2);
    if (minutes.size() != 2) return false;
    int seconds = 0;
    if (TakeChar(text, ':')) {
        const std::string_view secondDigits = TakeNumber(text, 2);
        if (secondDigits.size() != 2) return false;
        seconds = NumberOf(secondDigits);
    }
    if (!text.empty() || NumberOf(hours) > 23 || NumberOf(minutes) > 59 || seconds > 59) {
        return false;
    }
    secondsOfDay = NumberOf(hours) * 3600LL + NumberOf(minutes) * 60LL + seconds;
    return true;
}

// "yyyy/m/d" or "yyyy-m-d" (one separator throughout); fills the day number.
bool ParseDate(std::string_view text, std::int64_t& dayNumber) {
    const std::string_view year = TakeNumber(text, 4);
    if (year.size() != 4 || text.empty() || (text.front() != '/' && text.front() != '-')) {
        return false;
    }
    const char separator = text.front();
    text.remove_prefix(1);
    const std::string_view month = TakeNumber(text, 2);
    if (month.empty() || !TakeChar(text, separator)) return false;
    const std::string_view day = TakeNumber(text, 2);
    if (day.empty() || !text.empty()) return false;
    if (!IsValidDate(NumberOf(year), NumberOf(month), NumberOf(day))) return false;
    dayNumber = DayNumber(NumberOf(year), NumberOf(month), NumberOf(day));
    return true;
}

std::string_view Trim(std::string_view text) {
    text = SkipBlanks(text);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace

std::int64_t TextToInteger(std::string_view text) {
    text = SkipBlanks(text);
    if (!text.empty() && text.front() == '&') {
        text.remove_prefix(1);
        int radix = 8;
        if (!text.empty()) {
            switch (text.front()) {
                case 'H':
                case 'h':
                    radix = 16;
                    text.remove_prefix(1);
                    break;
                case 'B':
                case 'b':
                    radix = 2;
                    text.remove_prefix(1);
                    break;
                case 'O':
                case 'o':
                    text.remove_prefix(1);
                    break;
                default:  // "&17": the character after "&" is already an octal digit
                    break;
            }
        }
        return static_cast<std::int64_t>(ReadDigits(text, radix));
    }
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    const std::uint64_t magnitude = ReadDigits(text, 10);
    return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
}

double Val(std::string_view text) {
    text = SkipBlanks(text);
    // The leading number is copied into a canonical form ("-12.5e3") that from_chars reads the
    // same in every locale; whatever follows it is ignored.
    std::string number;
    std::size_t i = 0;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        if (text[i] == '-') number += '-';
        ++i;
    }
    bool anyDigit = false;
    for (; i < text.size() && IsDigit(text[i]); ++i, anyDigit = true) number += text[i];
    if (i < text.size() && text[i] == '.') {
        number += '.';
        for (++i; i < text.size() && IsDigit(text[i]); ++i, anyDigit = true) number += text[i];
    }
    if (!anyDigit) return 0.0;
    // "D" marks an exponent as "E" does; a mark without digits is not part of the number.
    if (i + 1 < text.size() &&
        (text[i] == 'e' || text[i] == 'E' || text[i] == 'd' || text[i] == 'D')) {
        std::size_t j = i + 1;
        std::string exponent = "e";
        if (text[j] == '-' || text[j] == '+') exponent += text[j++];
        const std::size_t digitsStart = j;
        while (j < text.size() && IsDigit(text[j])) exponent += text[j++];
        if (j > digitsStart) number += exponent;
    }
    double value = 0.0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        // from_chars leaves the value alone when it overflows or underflows.
        const bool tiny = number.find("e-") != std::string::npos;
        value = tiny ? 0.0 : HUGE_VAL;
        if (number.front() == '-') value = -value;
    }
    return value;
}

double Fix(double value) {
    return std::trunc(value);
}

std::string NumberText(double value) {
    if (value == 0.0) return "0";  // also for -0
    // A division the figures leave undefined (a task of no duration) has no decimal text; the
    // spreadsheet shows a number it cannot hold as this error, and takes it back typed as one.
    if (!std::isfinite(value)) return "#NUM!";
    char buffer[64];
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 16);
    return std::string(buffer, result.ptr);
}

DateTime SerialToDateTime(double serial) {
    return PartsOfSeconds(SecondsOf(serial));
}

double DateTimeToSerial(const DateTime& parts) {
    return SerialOfSeconds(SecondsOf(parts));
}

double DateSerial(int year, int month, int day) {
    return static_cast<double>(DayNumber(year, month, day));
}

double TimeSerial(int hour, int minute, int second) {
    return (hour * 3600.0 + minute * 60.0 + second) / kSecondsPerDay;
}

std::int64_t MinutesBetween(double from, double to) {
    // Minute boundaries crossed: the seconds are dropped from both times before subtracting.
    return FloorDiv(SecondsOf(to), 60) - FloorDiv(SecondsOf(from), 60);
}

double AddMinutes(double serial, std::int64_t minutes) {
    // Far beyond any date; the bound keeps the sum within 64 bits.
    constexpr std::int64_t kMostMinutes = 1'000'000'000'000'000;
    minutes = std::clamp(minutes, -kMostMinutes, kMostMinutes);
    return SerialOfSeconds(SecondsOf(serial) + minutes * 60);
}

std::string FormatDate(double serial, std::string_view format) {
    const DateTime parts = SerialToDateTime(serial);
    std::string out;
    bool afterHours = false;  // "mm" right after "hh" means minutes
    for (std::size_t i = 0; i < format.size();) {
        const std::string_view rest = format.substr(i);
        if (rest.starts_with("yyyy")) {
            AppendPadded(out, parts.year, 4);
            i += 4;
            afterHours = false;
        } else if (rest.starts_with("mm")) {
            AppendPadded(out, afterHours ? parts.minute : parts.month, 2);
            i += 2;
            afterHours = false;
        } else if (rest.starts_with("dd")) {
            AppendPadded(out, parts.day, 2);
            i += 2;
            afterHours = false;
        } else if (rest.starts_with("hh")) {
            AppendPadded(out, parts.hour, 2);
            i += 2;
            afterHours = true;
        } else if (rest.starts_with("nn")) {
            AppendPadded(out, parts.minute, 2);
            i += 2;
            afterHours = false;
        } else if (rest.starts_with("ss")) {
            AppendPadded(out, parts.second, 2);
            i += 2;
            afterHours = false;
        } else {
            out += format[i++];
        }
    }
    return out;
}

std::optional<double> ParseDateText(std::string_view text) {
    text = Trim(text);
    std::int64_t dayNumber = 0;
    std::int64_t secondsOfDay = 0;
    const std::size_t space = text.find(' ');
    if (space != std::string_view::npos) {
        if (!ParseDate(text.substr(0, space), dayNumber) ||
            !ParseTime(Trim(text.substr(space)), secondsOfDay)) {
            return std::nullopt;
        }
    } else if (!ParseDate(text, dayNumber) && !ParseTime(text, secondsOfDay)) {
        return std::nullopt;
    }
    return SerialOfSeconds(dayNumber * kSecondsPerDay + secondsOfDay);
}

}  // namespace values
