// Conversions between date serials, SYSTEMTIME and FILETIME, in the proleptic Gregorian calendar.
#ifndef _WIN32

#include <chrono>
#include <cmath>

#include "com/date_text.h"

namespace {

using namespace std::chrono;

constexpr sys_days kSerialEpoch = sys_days{1899y / December / 30};
constexpr sys_days kFileTimeEpoch = sys_days{1601y / January / 1};
constexpr std::uint64_t kTicksPerSecond = 10'000'000;  // FILETIME counts 100 ns
constexpr std::uint64_t kTicksPerDay = kTicksPerSecond * 86'400;

void SetCalendarDay(sys_days day, SYSTEMTIME& time) {
    const year_month_day date{day};
    time.wYear = static_cast<WORD>(static_cast<int>(date.year()));
    time.wMonth = static_cast<WORD>(static_cast<unsigned>(date.month()));
    time.wDay = static_cast<WORD>(static_cast<unsigned>(date.day()));
    time.wDayOfWeek = static_cast<WORD>(weekday{day}.c_encoding());
}

}  // namespace

bool IsDateSerialInRange(double serial) {
    return serial > kMinDateSerial - 1 && serial < kMaxDateSerial + 1;
}

INT VariantTimeToSystemTime(DOUBLE variantTime, LPSYSTEMTIME systemTime) {
    if (!IsDateSerialInRange(variantTime)) return FALSE;
    const double whole = std::trunc(variantTime);
    // The small bias keeps times such as 0.1 days, stored a hair below their value, on their
    // second once the fraction is cut into hours, minutes and seconds.
    double fraction = std::fabs(variantTime - whole) + 1e-11;
    if (fraction >= 1.0) fraction -= 1e-11;
    double rest = fraction * 24;
    int hour = static_cast<int>(rest);
    rest = (rest - hour) * 60;
    int minute = static_cast<int>(rest);
    rest = (rest - minute) * 60;
    int second = static_cast<int>(rest);
    sys_days day = kSerialEpoch + days{static_cast<int>(whole)};
    // Round to the nearest second, carrying into the following day.
    if (rest - second > 0.5 && ++second == 60) {
        second = 0;
        if (++minute == 60) {
            minute = 0;
            if (++hour == 24) {
                hour = 0;
                day += days{1};
            }
        }
    }
    SetCalendarDay(day, *systemTime);
    systemTime->wHour = static_cast<WORD>(hour);
    systemTime->wMinute = static_cast<WORD>(minute);
    systemTime->wSecond = static_cast<WORD>(second);
    systemTime->wMilliseconds = 0;
    return TRUE;
}

INT SystemTimeToVariantTime(LPSYSTEMTIME systemTime, DOUBLE* variantTime) {
    const SYSTEMTIME& time = *systemTime;
    if (time.wMonth > 12 || time.wDay > 31 || time.wYear > 9999) return FALSE;
    // Two-digit years fall in 1930 to 2029. Fields past their end roll over into the next unit
    // (31 April is 1 May, 24:00 the next day); milliseconds are ignored.
    int year = time.wYear < 30    ? time.wYear + 2000
               : time.wYear < 100 ? time.wYear + 1900
                                  : time.wYear;
    int month = time.wMonth;
    if (month == 0) {
        month = 12;
        --year;
    }
    const long timeSeconds = time.wHour * 3600L + time.wMinute * 60L + time.wSecond;
    const long secondsOfDay = timeSeconds % 86'400;
    const sys_days day =
        sys_days{std::chrono::year{year} / month / 1} + days{time.wDay - 1L + timeSeconds / 86'400};
    const double serial =
        DateSerial((day - kSerialEpoch).count(), static_cast<int>(secondsOfDay / 3600),
                   static_cast<int>(secondsOfDay / 60 % 60), static_cast<int>(secondsOfDay % 60));
    if (!IsDateSerialInRange(serial)) return FALSE;
    *variantTime = serial;
    return TRUE;
}

BOOL FileTimeToSystemTime(const FILETIME* fileTime, LPSYSTEMTIME systemTime) {
    const std::uint64_t ticks =
        (static_cast<std::uint64_t>(fileTime->dwHighDateTime) << 32) | fileTime->dwLowDateTime;
    if (ticks > static_cast<std::uint64_t>(INT64_MAX)) return FALSE;
    const std::uint64_t ticksOfDay = ticks % kTicksPerDay;
    SetCalendarDay(kFileTimeEpoch + days{static_cast<long>(ticks / kTicksPerDay)}, *systemTime);
    const std::uint64_t secondsOfDay = ticksOfDay / kTicksPerSecond;
    systemTime->wHour = static_cast<WORD>(secondsOfDay / 3600);
    systemTime->wMinute = static_cast<WORD>(secondsOfDay / 60 % 60);
    systemTime->wSecond = static_cast<WORD>(secondsOfDay % 60);
    systemTime->wMilliseconds = static_cast<WORD>(ticksOfDay % kTicksPerSecond / 10'000);
    return TRUE;
}

BOOL SystemTimeToFileTime(const SYSTEMTIME* systemTime, FILETIME* fileTime) {
    const SYSTEMTIME& time = *systemTime;
    const year_month_day date{std::chrono::year{time.wYear}, month{time.wMonth}, day{time.wDay}};
    if (time.wYear < 1601 || time.wYear > 30827 || !date.ok() || time.wHour > 23 ||
        time.wMinute > 59 || time.wSecond > 59 || time.wMilliseconds > 999)
        return FALSE;
    const auto dayNumber = static_cast<std::uint64_t>((sys_days{date} - kFileTimeEpoch).count());
    const std::uint64_t seconds = time.wHour * 3600u + time.wMinute * 60u + time.wSecond;
    const std::uint64_t ticks =
        dayNumber * kTicksPerDay + seconds * kTicksPerSecond + time.wMilliseconds * 10'000u;
    fileTime->dwLowDateTime = static_cast<DWORD>(ticks);
    fileTime->dwHighDateTime = static_cast<DWORD>(ticks >> 32);
    return TRUE;
}

#endif  // _WIN32
