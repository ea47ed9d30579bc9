// progress.h - what the soak does just now, and whether it has come to a standstill. Portable.
#pragma once
#include <atomic>
#include <cstdint>

// [any] The soak's main thread stores, whoever watches it loads.
class Progress {
  public:
    void at(const char* deed) {
        deed_ = deed;
        steps_++;
    }
    const char* deed() const { return deed_; }
    std::uint64_t steps() const { return steps_; }

  private:
    std::atomic<const char*> deed_{"the start"};
    std::atomic<std::uint64_t> steps_{0};
};

// Counts looks, not time: a machine that was suspended or hardly got to run has not come to a standstill. One owner.
class StandstillJudge {
  public:
    explicit StandstillJudge(int mostLooks) : mostLooks_(mostLooks) {}
    // True once so many looks in a row have found the same number of steps.
    bool isStuck(std::uint64_t steps) {
        looks_ = steps == steps_ ? looks_ + 1 : 1;
        steps_ = steps;
        return looks_ > mostLooks_;
    }

  private:
    const int mostLooks_;
    int looks_ = 0;
    std::uint64_t steps_ = 0;
};
