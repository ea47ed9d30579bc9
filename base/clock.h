// clock.h - the two times the core works with. It never asks the system: the glue and the tests each hand one in.
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
