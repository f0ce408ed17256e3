#include "render/cell_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <vector>

#include "sheethost/formula.h"
#include "sheethost/model.h"
#include "values/values.h"

namespace render {
namespace {

constexpr std::array<const char*, 12> kMonths = {"January",   "February", "March",    "April",
                                                 "May",       "June",     "July",     "August",
                                                 "September", "October",  "November", "December"};
constexpr std::array<const char*, 7> kDays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                              "Thursday", "Friday", "Saturday"};

// The sections of a format, split at semicolons outside quotes.
std::vector<std::string_view> Sections(std::string_view format) {
    std::vector<std::string_view> sections;
    bool quoted = false;
    std::size_t start = 0;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] == '"') quoted = !quoted;
        if (format[i] == '\\') ++i;
        if (!quoted && format[i] == ';') {
            sections.push_back(format.substr(start, i - start));
            start = i + 1;
        }
    }
    sections.push_back(format.substr(start));
    return sections;
}

std::string General(double number, std::size_t width) {
    std::string text = sheethost::DisplayText(number);
    width = std::clamp<std::size_t>(width, 1, 11);
    for (int digits = 10; text.size() > width && digits > 1; --digits) {
        char buffer[40];
        std::snprintf(buffer, sizeof buffer, "%.*G", digits, number);
        text = buffer;
    }
    return text;
}

std::string TwoDigits(int value) {
    return (value < 10 ? "0" : "") + std::to_string(value);
}

// The run of one letter starting at `at`, case-insensitive.
std::size_t RunLength(std::string_view format, std::size_t at) {
    const char letter = static_cast<char>(std::tolower(static_cast<unsigned char>(format[at])));
    std::size_t end = at;
    while (end < format.size() && std::tolower(static_cast<unsigned char>(format[end])) == letter) {
        ++end;
    }
    return end - at;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
    if (text.size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(text[i])) != prefix[i]) return false;
    }
    return true;
}

// "m" means minutes right after an hour or right before seconds.
bool MeansMinutes(std::string_view format, std::size_t at, std::size_t length, char previous) {
    if (previous == 'h') return true;
    std::size_t next = at + length;
    while (next < format.size() && !std::isalpha(static_cast<unsigned char>(format[next]))) ++next;
    return next < format.size() && std::tolower(static_cast<unsigned char>(format[next])) == 's';
}

std::string DateText(double serial, std::string_view format) {
    const values::DateTime t = values::SerialToDateTime(serial);
    const bool twelveHours = format.find("AM/PM") != std::string_view::npos ||
                             format.find("am/pm") != std::string_view::npos;
    const int weekday = static_cast<int>(
        ((static_cast<long long>(std::floor(serial)) - 1) % 7 + 7) % 7);  // serial 1 was a Sunday
    std::string out;
    char previous = 0;  // the last date or time letter seen
    for (std::size_t at = 0; at < format.size();) {
        const char c = format[at];
        const char lower = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (c == '"') {
            const std::size_t end = format.find('"', at + 1);
            out += format.substr(at + 1, end == std::string_view::npos ? end : end - at - 1);
            at = end == std::string_view::npos ? format.size() : end + 1;
            continue;
        }
        if (c == '\\' && at + 1 < format.size()) {
            out += format[at + 1];
            at += 2;
            continue;
        }
        if (c == '[') {  // a colour or locale tag
            const std::size_t end = format.find(']', at);
            at = end == std::string_view::npos ? format.size() : end + 1;
            continue;
        }
        if (StartsWithNoCase(format.substr(at), "am/pm")) {
            out += t.hour < 12 ? "AM" : "PM";
            at += 5;
            continue;
        }
        const std::size_t length = RunLength(format, at);
        switch (lower) {
            case 'y':
                out += length <= 2 ? TwoDigits(t.year % 100) : std::to_string(t.year);
                break;
            case 'm':
                if (length <= 2 && MeansMinutes(format, at, length, previous)) {
                    out += length == 2 ? TwoDigits(t.minute) : std::to_string(t.minute);
                } else if (length <= 2) {
                    out += length == 2 ? TwoDigits(t.month) : std::to_string(t.month);
                } else {
                    const std::string name = kMonths[static_cast<std::size_t>(t.month - 1)];
                    out += length == 3 ? name.substr(0, 3) : name;
                }
                break;
            case 'd':
                if (length <= 2) {
                    out += length == 2 ? TwoDigits(t.day) : std::to_string(t.day);
                } else {
                    const std::string name = kDays[static_cast<std::size_t>(weekday)];
                    out += length == 3 ? name.substr(0, 3) : name;
                }
                break;
            case 'h': {
                const int hour = twelveHours ? (t.hour + 11) % 12 + 1 : t.hour;
                out += length >= 2 ? TwoDigits(hour) : std::to_string(hour);
                break;
            }
            case 's':
                out += length >= 2 ? TwoDigits(t.second) : std::to_string(t.second);
                break;
            default:
                out += format.substr(at, length);
                break;
        }
        if (lower == 'y' || lower == 'm' || lower == 'd' || lower == 'h' || lower == 's') {
            previous = lower;
        }
        at += length;
    }
    return out;
}

// A digit pattern such as "#,##0.00%" with literal text around it.
std::string NumberPatternText(double number, std::string_view section) {
    std::string prefix;
    std::string suffix;
    std::string_view pattern;
    bool inPattern = false;
    bool percent = false;
    std::size_t patternStart = 0;
    std::size_t patternEnd = 0;
    for (std::size_t at = 0; at < section.size(); ++at) {
        const char c = section[at];
        std::string literal;
        if (c == '"') {
            const std::size_t end = section.find('"', at + 1);
            literal = section.substr(at + 1, end == std::string_view::npos ? end : end - at - 1);
            at = end == std::string_view::npos ? section.size() : end;
        } else if (c == '\\' && at + 1 < section.size()) {
            literal = section.substr(++at, 1);
        } else if (c == '[') {
            const std::size_t end = section.find(']', at);
            at = end == std::string_view::npos ? section.size() : end;
            continue;
        } else if (c == '_' || c == '*') {  // padding the width of the next character
            ++at;
            continue;
        } else if (c == '0' || c == '#' || c == '?' || ((c == '.' || c == ',') && inPattern)) {
            if (!inPattern) patternStart = at;
            inPattern = true;
            patternEnd = at + 1;
            continue;
        } else {
            if (c == '%') percent = true;
            literal = std::string(1, c);
        }
        (patternEnd == 0 ? prefix : suffix) += literal;
    }
    pattern = section.substr(patternStart, patternEnd - patternStart);
    if (percent) number *= 100;
    const std::size_t point = pattern.find('.');
    const int decimals =
        point == std::string_view::npos ? 0 : static_cast<int>(pattern.size() - point - 1);
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, std::fabs(number));
    std::string digits = buffer;
    if (pattern.find(',') != std::string_view::npos) {
        const std::size_t dot = digits.find('.');
        for (auto at = static_cast<long>(dot == std::string::npos ? digits.size() : dot) - 3;
             at > 0; at -= 3) {
            digits.insert(static_cast<std::size_t>(at), ",");
        }
    }
    // A pattern of "#" alone shows nothing for zero.
    if (pattern.find('0') == std::string_view::npos && std::fabs(number) < 0.5 && decimals == 0) {
        digits.clear();
    }
    return prefix + (number < 0 && !digits.empty() ? "-" : "") + digits + suffix;
}

}  // namespace

std::string ShownText(const sheethost::Value& value, std::string_view numberFormat,
                      std::size_t generalWidth) {
    const auto* number = std::get_if<double>(&value);
    if (number == nullptr) return sheethost::DisplayText(value);
    const std::vector<std::string_view> sections = Sections(numberFormat);
    if (sections.front().empty() || StartsWithNoCase(sections.front(), "general")) {
        return General(*number, generalWidth);
    }
    if (sheethost::IsDateFormat(numberFormat)) return DateText(*number, sections.front());
    if (*number < 0 && sections.size() > 1) return NumberPatternText(-*number, sections[1]);
    if (*number == 0 && sections.size() > 2) return NumberPatternText(0, sections[2]);
    if (sections.front() == "@") return General(*number, generalWidth);
    return NumberPatternText(*number, sections.front());
}

}  // namespace render
