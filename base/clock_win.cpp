#include "base/clock_win.h"
#include <windows.h>

std::uint64_t SystemClock::tickMs() const {
    return GetTickCount64();
}

double unixSecondsOfFileTime(std::uint64_t hundredNs) {
    constexpr std::uint64_t kUnixEpoch = 116444736000000000ULL;  // 1970 in units of 100 ns since 1601
    return static_cast<double>(static_cast<std::int64_t>(hundredNs - kUnixEpoch)) / 10000000.0;
}

double SystemClock::unixSeconds() const {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const auto ticks = (static_cast<std::uint64_t>(now.dwHighDateTime) << 32U) | now.dwLowDateTime;
    return unixSecondsOfFileTime(ticks);
}
