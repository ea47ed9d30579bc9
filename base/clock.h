// clock.h - the two times the core works with; it never asks the system itself: glue and tests pass in a Clock.
#pragma once
#include <cstdint>

class Clock {
  public:
    virtual ~Clock() = default;
    // [any] Milliseconds since system start; never steps back.
    virtual std::uint64_t tickMs() const = 0;
    // [any] Seconds since 1970-01-01 UTC with fractions; the user may set it back at any moment.
    virtual double unixSeconds() const = 0;
};
