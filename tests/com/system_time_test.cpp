#include <gtest/gtest.h>

#include "com/com.h"

namespace {

struct Fields {
    int year, month, day, dayOfWeek, hour, minute, second, milliseconds;
    bool operator==(const Fields&) const = default;
};

Fields FieldsOf(const SYSTEMTIME& time) {
    return {time.wYear, time.wMonth,  time.wDay,    time.wDayOfWeek,
            time.wHour, time.wMinute, time.wSecond, time.wMilliseconds};
}

SYSTEMTIME MakeTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                    int milliseconds = 0) {
    SYSTEMTIME time{};
    time.wYear = static_cast<WORD>(year);
    time.wMonth = static_cast<WORD>(month);
    time.wDay = static_cast<WORD>(day);
    time.wHour = static_cast<WORD>(hour);
    time.wMinute = static_cast<WORD>(minute);
    time.wSecond = static_cast<WORD>(second);
    time.wMilliseconds = static_cast<WORD>(milliseconds);
    return time;
}

TEST(VariantTime, SplitsASerialIntoCalendarFields) {
    SYSTEMTIME time;
    ASSERT_TRUE(VariantTimeToSystemTime(45000.5, &time));
    EXPECT_EQ(FieldsOf(time), (Fields{2023, 3, 15, 3, 12, 0, 0, 0}));
    // The fraction of a negative serial is still the time of that day.
    ASSERT_TRUE(VariantTimeToSystemTime(-1.25, &time));
    EXPECT_EQ(FieldsOf(time), (Fields{1899, 12, 29, 5, 6, 0, 0, 0}));
    ASSERT_TRUE(VariantTimeToSystemTime(1.0 / 3, &time));
    EXPECT_EQ(FieldsOf(time), (Fields{1899, 12, 30, 6, 8, 0, 0, 0}));
    ASSERT_TRUE(VariantTimeToSystemTime(-657434.0, &time));
    EXPECT_EQ(FieldsOf(time), (Fields{100, 1, 1, 5, 0, 0, 0, 0}));
    EXPECT_FALSE(VariantTimeToSystemTime(2958466.0, &time));
    EXPECT_FALSE(VariantTimeToSystemTime(-657435.0, &time));
}

TEST(VariantTime, RoundsToTheSecondAcrossMidnight) {
    SYSTEMTIME time;
    ASSERT_TRUE(VariantTimeToSystemTime(45000.999999, &time));
    EXPECT_EQ(time.wDay, 16);
    EXPECT_EQ(time.wHour, 0);
    ASSERT_TRUE(VariantTimeToSystemTime(0.1, &time));  // stored a hair below 02:24
    EXPECT_EQ(time.wMinute, 24);
    EXPECT_EQ(time.wSecond, 0);
}

TEST(VariantTime, BuildsASerialFromCalendarFields) {
    double serial = 0;
    SYSTEMTIME time = MakeTime(2023, 3, 15, 12, 0, 0, 500);  // milliseconds are ignored
    ASSERT_TRUE(SystemTimeToVariantTime(&time, &serial));
    EXPECT_DOUBLE_EQ(serial, 45000.5);
    time = MakeTime(1899, 12, 29, 6);
    ASSERT_TRUE(SystemTimeToVariantTime(&time, &serial));
    EXPECT_DOUBLE_EQ(serial, -1.25);
    time = MakeTime(2023, 2, 30);  // rolls over into March
    ASSERT_TRUE(SystemTimeToVariantTime(&time, &serial));
    EXPECT_DOUBLE_EQ(serial, 44986.0 + 1);
    time = MakeTime(29, 1, 1);  // two-digit years: 1930 to 2029
    ASSERT_TRUE(SystemTimeToVariantTime(&time, &serial));
    EXPECT_DOUBLE_EQ(serial, 47119.0);
    time = MakeTime(2023, 13, 1);
    EXPECT_FALSE(SystemTimeToVariantTime(&time, &serial));
}

TEST(FileTime, CountsHundredNanosecondsFrom1601) {
    SYSTEMTIME time = MakeTime(1601, 1, 1);
    FILETIME fileTime;
    ASSERT_TRUE(SystemTimeToFileTime(&time, &fileTime));
    EXPECT_EQ(fileTime.dwLowDateTime, 0u);
    EXPECT_EQ(fileTime.dwHighDateTime, 0u);
    time = MakeTime(2023, 3, 15, 12, 30, 15, 250);
    ASSERT_TRUE(SystemTimeToFileTime(&time, &fileTime));
    SYSTEMTIME back;
    ASSERT_TRUE(FileTimeToSystemTime(&fileTime, &back));
    EXPECT_EQ(FieldsOf(back), (Fields{2023, 3, 15, 3, 12, 30, 15, 250}));
    time = MakeTime(2023, 13, 1);
    EXPECT_FALSE(SystemTimeToFileTime(&time, &fileTime));
    const FILETIME negative{0, 0x80000000u};
    EXPECT_FALSE(FileTimeToSystemTime(&negative, &back));
}

#ifndef _WIN32
// Wine's file time conversion checks only the month, so the rest is checked natively.
TEST(FileTime, RefusesTimesThatDoNotExist) {
    FILETIME fileTime;
    for (const SYSTEMTIME& time : {MakeTime(2023, 2, 29), MakeTime(1600, 12, 31),
                                   MakeTime(2023, 1, 1, 24), MakeTime(2023, 1, 1, 0, 0, 0, 1000)})
        EXPECT_FALSE(SystemTimeToFileTime(&time, &fileTime)) << time.wYear;
}
#endif

}  // namespace
