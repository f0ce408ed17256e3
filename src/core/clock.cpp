#include "core/clock.h"

#include <ctime>

#include "com/com.h"
#include "values/values.h"

namespace {

// 0 when "now" is the clock.
double pinnedNow = 0.0;

values::DateTime LocalDateTime() {
#ifdef _WIN32
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
#else
    const std::time_t seconds = std::time(nullptr);
    std::tm local{};
    localtime_r(&seconds, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
            local.tm_hour,        local.tm_min,     local.tm_sec};
#endif
}

}  // namespace

double NowSerial() {
    if (pinnedNow > 0.0) {
        return pinnedNow;
    }
    return values::DateTimeToSerial(LocalDateTime());
}

void PinNow(double serial) {
    pinnedNow = serial > 0.0 ? serial : 0.0;
}
