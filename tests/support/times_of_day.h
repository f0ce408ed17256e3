// Times of day as the task sheet holds them: fractions of a day.
#pragma once

namespace testsupport {

inline constexpr double k0800 = 8.0 / 24;
inline constexpr double k0830 = 8.5 / 24;
inline constexpr double k0900 = 9.0 / 24;
inline constexpr double k0930 = 9.5 / 24;
inline constexpr double k1000 = 10.0 / 24;
inline constexpr double k1030 = 10.5 / 24;
inline constexpr double k1100 = 11.0 / 24;
inline constexpr double k1200 = 12.0 / 24;
inline constexpr double k1300 = 13.0 / 24;
inline constexpr double k1400 = 14.0 / 24;
inline constexpr double k1500 = 15.0 / 24;
inline constexpr double k1600 = 16.0 / 24;
inline constexpr double k1700 = 17.0 / 24;

}  // namespace testsupport
