// The value rules of the spreadsheet host's runtime, in one place: how text becomes a number, how
// date serials break down into calendar parts, minute arithmetic, and the fixed date formats.
// The engine, the in-memory host and the file loader all use these, so a value reads the same
// wherever it is read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace values {

// The runtime's string-to-integer rule: leading blanks skipped; "&H"/"&h" hexadecimal, "&B"/"&b"
// binary, "&O"/"&o" (or "&" followed by anything else, which then counts as a digit) octal;
// otherwise an optional sign and the decimal digits up to the first other character ("12.9" gives
// 12). No leading digits gives 0.
std::int64_t TextToInteger(std::string_view text);

// VAL: the number at the start of a text (blanks skipped, sign, digits, one decimal point, an
// exponent); 0 when there is none.
double Val(std::string_view text);

// FIX: the whole part, truncated toward zero.
double Fix(double value);

// The decimal text of a double with up to 16 significant digits, no exponent for ordinary
// magnitudes, no trailing zeros and no trailing point ("3", "0.375", "-12.5"); "#NUM!" for an
// infinity or an undefined result.
std::string NumberText(double value);

// Date serials: whole part = days since 30 December 1899, fraction = time of day. A negative
// serial's fraction still counts forward from midnight of its whole day (-1.25 is 29 December
// 1899, 06:00), as the host treats it.
struct DateTime {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Broken down to the nearest second.
DateTime SerialToDateTime(double serial);
double DateTimeToSerial(const DateTime& parts);
double DateSerial(int year, int month, int day);
double TimeSerial(int hour, int minute, int second);

// Whole minutes from one time to another (the date-difference of interval "n"): both serials are
// first broken down to the nearest second, so 08:00 to 09:00 is 60 whatever the rounding error of
// the fractions.
std::int64_t MinutesBetween(double from, double to);
// The date-add of interval "n": whole minutes added, the result rounded to the second.
double AddMinutes(double serial, std::int64_t minutes);

// Formats "yyyy/mm/dd", "yyyy/mm", "yyyymmdd", "yyyy/mm/dd hh:mm" and "hh:mm".
std::string FormatDate(double serial, std::string_view format);

// A date or time as a user types it: "2024/03/01", "2024-03-01", "2024/3/1 8:30",
// "2024/03/01 08:30:15", "8:30". Empty when the text is not one.
std::optional<double> ParseDateText(std::string_view text);

}  // namespace values
