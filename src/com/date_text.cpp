#ifndef _WIN32

#include "com/date_text.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>
#include <vector>

namespace {

using namespace std::chrono;

constexpr sys_days kSerialEpoch = sys_days{1899y / December / 30};

// Blanks and "," only separate tokens; "/" and "-" separate the parts of a date, ":" and "." those
// of a time, and each must stand between two parts.
enum class TokenKind { Number, Word, DateSeparator, TimeSeparator };

struct Token {
    explicit Token(TokenKind tokenKind) : kind(tokenKind) {}
    TokenKind kind;
    int number = 0;
    int digitCount = 0;
    std::u16string word;  // upper case
};

bool IsLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}
bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}
bool IsBlank(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u',';
}

bool IsPart(const Token& token) {
    return token.kind == TokenKind::Number || token.kind == TokenKind::Word;
}

std::optional<std::vector<Token>> Tokenize(std::u16string_view text) {
    std::vector<Token> tokens;
    std::size_t at = 0;
    while (at < text.size()) {
        const char16_t c = text[at];
        if (IsBlank(c)) {
            ++at;
        } else if (IsDigit(c)) {
            Token token(TokenKind::Number);
            for (; at < text.size() && IsDigit(text[at]); ++at) {
                if (++token.digitCount > 5) return std::nullopt;
                token.number = token.number * 10 + (text[at] - u'0');
            }
            tokens.push_back(token);
        } else if (IsLetter(c)) {
            Token token(TokenKind::Word);
            for (; at < text.size() && IsLetter(text[at]); ++at)
                token.word += text[at] >= u'a' ? static_cast<char16_t>(text[at] - 32) : text[at];
            tokens.push_back(token);
        } else if (c == u'/' || c == u'-' || c == u':' || c == u'.') {
            const bool date = c == u'/' || c == u'-';
            tokens.emplace_back(date ? TokenKind::DateSeparator : TokenKind::TimeSeparator);
            ++at;
        } else {
            return std::nullopt;
        }
    }
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (IsPart(tokens[i])) continue;
        const bool between =
            i > 0 && i + 1 < tokens.size() && IsPart(tokens[i - 1]) && IsPart(tokens[i + 1]);
        if (!between) return std::nullopt;
    }
    return tokens;
}

constexpr std::array<std::u16string_view, 12> kMonthNames = {
    u"JANUARY", u"FEBRUARY", u"MARCH",     u"APRIL",   u"MAY",      u"JUNE",
    u"JULY",    u"AUGUST",   u"SEPTEMBER", u"OCTOBER", u"NOVEMBER", u"DECEMBER"};
constexpr std::array<std::u16string_view, 7> kDayNames = {
    u"SUNDAY", u"MONDAY", u"TUESDAY", u"WEDNESDAY", u"THURSDAY", u"FRIDAY", u"SATURDAY"};

// Whether `word` is `name` in full or its first three letters.
bool NamesWord(std::u16string_view word, std::u16string_view name) {
    return word == name || (word.size() == 3 && name.starts_with(word));
}

std::optional<int> MonthNamed(std::u16string_view word) {
    for (std::size_t i = 0; i < kMonthNames.size(); ++i)
        if (NamesWord(word, kMonthNames[i])) return static_cast<int>(i) + 1;
    return std::nullopt;
}

bool IsDayName(std::u16string_view word) {
    for (const auto name : kDayNames)
        if (NamesWord(word, name)) return true;
    return false;
}

struct TimeOfDay {
    int hour = 0, minute = 0, second = 0;
};

struct DateParts {
    std::vector<Token> numbers;  // the day, month and year numbers in text order
    std::optional<int> namedMonth;
    std::size_t numbersBeforeMonth = 0;
    std::optional<TimeOfDay> time;
};

// Reads "h:m" or "h:m:s" (or with ".") starting at `tokens[i]`, leaving `i` on its last number.
std::optional<TimeOfDay> ReadTime(const std::vector<Token>& tokens, std::size_t& i) {
    std::vector<int> fields{tokens[i].number};
    while (i + 2 < tokens.size() && tokens[i + 1].kind == TokenKind::TimeSeparator) {
        if (tokens[i + 2].kind != TokenKind::Number) return std::nullopt;
        fields.push_back(tokens[i + 2].number);
        i += 2;
    }
    if (fields.size() > 3) return std::nullopt;
    fields.resize(3);
    return TimeOfDay{fields[0], fields[1], fields[2]};
}

// Takes the time ("h:m[:s]", or "h" followed by AM/PM) from the tokens and sorts the rest into
// the parts of the date.
std::optional<DateParts> Classify(const std::vector<Token>& tokens) {
    DateParts parts;
    std::optional<bool> afternoon;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Token& token = tokens[i];
        if (token.kind == TokenKind::Word) {
            if (token.word == u"AM" || token.word == u"PM") {
                if (afternoon || (!parts.time && parts.numbers.empty())) return std::nullopt;
                afternoon = token.word == u"PM";
                if (!parts.time) {  // "5 PM": the hour stands alone
                    parts.time = TimeOfDay{parts.numbers.back().number};
                    parts.numbers.pop_back();
                }
            } else if (const auto month = MonthNamed(token.word); month && !parts.namedMonth) {
                parts.namedMonth = month;
                parts.numbersBeforeMonth = parts.numbers.size();
            } else if (!IsDayName(token.word)) {
                return std::nullopt;
            }
        } else if (token.kind == TokenKind::Number) {
            const bool startsTime =
                i + 1 < tokens.size() && tokens[i + 1].kind == TokenKind::TimeSeparator;
            if (!startsTime) {
                parts.numbers.push_back(token);
                continue;
            }
            if (parts.time) return std::nullopt;
            parts.time = ReadTime(tokens, i);
            if (!parts.time) return std::nullopt;
        }
    }
    if (parts.time) {
        TimeOfDay& time = *parts.time;
        // A 24-hour time keeps its hour; only 12 AM and the afternoon hours up to 11 PM move.
        if (afternoon == true && time.hour < 12) time.hour += 12;
        if (afternoon == false && time.hour == 12) time.hour = 0;
        if (time.hour > 23 || time.minute > 59 || time.second > 59) return std::nullopt;
    }
    return parts;
}

// A year below 100 is taken from 1950 to 2049.
int FullYear(int year) {
    if (year < 50) return 2000 + year;
    if (year < 100) return 1900 + year;
    return year;
}

int CurrentYear() {
    return static_cast<int>(year_month_day{floor<days>(system_clock::now())}.year());
}

std::optional<year_month_day> ValidDate(int y, int m, int d) {
    if (y < 100 || y > 9999 || m < 1 || m > 12 || d < 1) return std::nullopt;
    const year_month_day date{year{y}, month{static_cast<unsigned>(m)},
                              day{static_cast<unsigned>(d)}};
    if (!date.ok()) return std::nullopt;
    return date;
}

bool LooksLikeYear(const Token& token) {
    return token.number > 31 || token.digitCount > 2;
}

// The first of the readings (year, month, day) that is a valid date.
std::optional<year_month_day> FirstValid(std::initializer_list<std::array<int, 3>> readings) {
    for (const auto& [y, m, d] : readings)
        if (auto date = ValidDate(y, m, d)) return date;
    return std::nullopt;
}

// The date named by the numbers and the month name: month first, as the invariant locale writes
// dates, then the other orders where that gives no date.
std::optional<year_month_day> ResolveDate(const DateParts& parts) {
    const std::vector<Token>& n = parts.numbers;
    const int thisYear = CurrentYear();
    if (parts.namedMonth) {
        const int m = *parts.namedMonth;
        if (n.size() == 1)
            return FirstValid({{thisYear, m, n[0].number}, {FullYear(n[0].number), m, 1}});
        if (n.size() != 2) return std::nullopt;
        const bool yearFirst = parts.numbersBeforeMonth > 0 && LooksLikeYear(n[0]);
        if (yearFirst) return ValidDate(FullYear(n[0].number), m, n[1].number);
        return ValidDate(FullYear(n[1].number), m, n[0].number);
    }
    if (n.size() == 2) {
        const int a = n[0].number, b = n[1].number;
        return FirstValid(
            {{thisYear, a, b}, {thisYear, b, a}, {FullYear(b), a, 1}, {FullYear(a), b, 1}});
    }
    if (n.size() == 3) {
        const int a = n[0].number, b = n[1].number, c = n[2].number;
        if (LooksLikeYear(n[0])) return FirstValid({{FullYear(a), b, c}, {FullYear(a), c, b}});
        return FirstValid({{FullYear(c), a, b}, {FullYear(c), b, a}});
    }
    return std::nullopt;
}

}  // namespace

double DateSerial(long dayNumber, int hour, int minute, int second) {
    // For days before the epoch the time of day moves the serial further from zero. The parts
    // are added one by one, as the runtime does, so that the same time gives the same double.
    const double sign = dayNumber < 0 ? -1.0 : 1.0;
    double serial = static_cast<double>(dayNumber);
    serial += hour / 24.0 * sign;
    serial += minute / 1440.0 * sign;
    serial += second / 86400.0 * sign;
    return serial;
}

HRESULT FormatDate(double serial, std::u16string& text) {
    SYSTEMTIME time;
    if (!VariantTimeToSystemTime(serial, &time)) return E_INVALIDARG;
    const double fraction = serial - std::trunc(serial);
    const bool timeOnly = std::trunc(serial) == 0;
    const bool dateOnly = !timeOnly && std::fabs(fraction) < 1e-12;
    char buffer[32];
    int length = 0;
    if (!timeOnly)
        length = std::snprintf(buffer, sizeof buffer, "%02u/%02u/%u", time.wMonth, time.wDay,
                               time.wYear);
    if (!dateOnly)
        length += std::snprintf(buffer + length, sizeof buffer - length, "%s%02u:%02u:%02u",
                                timeOnly ? "" : " ", time.wHour, time.wMinute, time.wSecond);
    text.assign(buffer, buffer + length);
    return S_OK;
}

HRESULT ParseDate(std::u16string_view text, double& serial) {
    const auto tokens = Tokenize(text);
    if (!tokens) return DISP_E_TYPEMISMATCH;
    const auto parts = Classify(*tokens);
    if (!parts) return DISP_E_TYPEMISMATCH;
    long dayNumber = 0;
    if (!parts->numbers.empty() || parts->namedMonth) {
        const auto date = ResolveDate(*parts);
        if (!date) return DISP_E_TYPEMISMATCH;
        dayNumber = (sys_days{*date} - kSerialEpoch).count();
    } else if (!parts->time) {
        return DISP_E_TYPEMISMATCH;
    }
    const TimeOfDay time = parts->time.value_or(TimeOfDay{});
    serial = DateSerial(dayNumber, time.hour, time.minute, time.second);
    return S_OK;
}

#endif  // _WIN32
