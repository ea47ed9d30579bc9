#include "tests/soak/stopwatch_win.h"
#include <windows.h>
#include <algorithm>

std::uint64_t nowNs() {
    static const std::int64_t perSecond = [] {
        LARGE_INTEGER frequency;
        QueryPerformanceFrequency(&frequency);
        return frequency.QuadPart;
    }();
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    const std::int64_t seconds = now.QuadPart / perSecond, rest = now.QuadPart % perSecond;
    return static_cast<std::uint64_t>(seconds * 1'000'000'000 + rest * 1'000'000'000 / perSecond);
}

void waitUntil(std::uint64_t timeNs) {
    for (std::uint64_t now = nowNs(); now < timeNs; now = nowNs())
        Sleep(static_cast<DWORD>(std::max<std::uint64_t>((timeNs - now) / 1'000'000, 1)));
}
