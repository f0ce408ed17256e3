// Date serials in text, written and read the way the automation runtime does for the invariant
// locale ("MM/dd/yyyy HH:mm:ss"). A date serial counts days from 30 December 1899; its fraction is
// the time of day, also for negative serials (-1.25 is 29 December 1899, 06:00).
#pragma once

#ifndef _WIN32

#include <string>
#include <string_view>

#include "com/com.h"

// The serials of 1 January 100 and 31 December 9999, the first and last day a date can hold.
inline constexpr double kMinDateSerial = -657434;
inline constexpr double kMaxDateSerial = 2958465;

// Whether a serial falls on a day between those two.
bool IsDateSerialInRange(double serial);

// The serial of a day (counted from the epoch) and a time of day.
double DateSerial(long dayNumber, int hour, int minute, int second);

// "MM/dd/yyyy HH:mm:ss"; only the time on day 0, only the date when there is no time of day.
// E_INVALIDARG outside the date range.
HRESULT FormatDate(double serial, std::u16string& text);

// Reads a date, a time or both; DISP_E_TYPEMISMATCH when the text is not one.
HRESULT ParseDate(std::u16string_view text, double& serial);

#endif  // _WIN32
