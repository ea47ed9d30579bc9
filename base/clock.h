// clock.h - the two times the core works with; it never asks the system itself: glue and tests pass in a Clock.
#pragma once
#include <cstdint>

// Nothing of ours is put off for longer.
inline constexpr std::uint64_t kFarthestDueMs = 60'000;

// True once the tick dueMs has come. One that lies further ahead than anything is ever put off was set before the tick
// stepped back: the system promises that this never happens, and nothing waits for hours if it does.
constexpr bool isDue(std::uint64_t dueMs, std::uint64_t nowMs) {
    return nowMs >= dueMs || dueMs - nowMs > kFarthestDueMs;
}

class Clock {
  public:
    virtual ~Clock() = default;
    // [any] Milliseconds since system start; never steps back.
    virtual std::uint64_t tickMs() const = 0;
    // [any] Seconds since 1970-01-01 UTC with fractions; the user may set it back at any moment.
    virtual double unixSeconds() const = 0;
};
