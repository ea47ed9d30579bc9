// clock_win.h - the system's two clocks.
#pragma once
#include "base/clock.h"

// [any] A FILETIME's count of 100 ns since 1601, as seconds since 1970.
double unixSecondsOfFileTime(std::uint64_t hundredNs);

// [any] GetTickCount64 and GetSystemTimeAsFileTime, with resolutions of about 16 ms and 1 ms.
class SystemClock : public Clock {
  public:
    std::uint64_t tickMs() const override;
    double unixSeconds() const override;
};
