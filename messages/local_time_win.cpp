#include "messages/local_time_win.h"
#include <cstdint>

namespace {

TimeOfDay convert(double unixSeconds, const TIME_ZONE_INFORMATION* zone) {
    constexpr std::int64_t kUnixEpoch = 116444736000000000LL;  // 1970 in 100 ns since 1601
    const auto ticks = static_cast<std::uint64_t>(kUnixEpoch + static_cast<std::int64_t>(unixSeconds * 10000000.0));
    const FILETIME time = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32U)};
    SYSTEMTIME universal = {}, local = {};
    FileTimeToSystemTime(&time, &universal);
    SystemTimeToTzSpecificLocalTime(zone, &universal, &local);
    return {local.wHour, local.wMinute, local.wSecond};
}

}  // namespace

TimeOfDay localTimeOf(double unixSeconds) {
    return convert(unixSeconds, nullptr);
}

TimeOfDay localTimeIn(const TIME_ZONE_INFORMATION& zone, double unixSeconds) {
    return convert(unixSeconds, &zone);
}
