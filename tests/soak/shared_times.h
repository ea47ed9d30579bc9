// shared_times.h - times that one thread takes and another collects, without those during which the collector itself
// was in the way: walking through the heap, it keeps everybody waiting who allocates. Portable. [any]
#pragma once
#include <cstdint>
#include <utility>
#include "base/mutex.h"
#include "tests/soak/block_times.h"

class SharedTimes {
  public:
    // Before what is to be timed; the number belongs to add().
    std::uint64_t begin() const {
        MutexLock lock(mutex_);
        return round_;
    }
    // Counts only if leaveOut() was not called since that begin().
    void add(std::uint64_t round, std::uint64_t nanoseconds) {
        MutexLock lock(mutex_);
        if (round == round_) times_.add(nanoseconds);
    }
    BlockTimes take() {  // since the last look
        MutexLock lock(mutex_);
        return std::exchange(times_, BlockTimes{});
    }
    // Forgets what was added since the last look, and what has begun and is not over.
    void leaveOut() {
        MutexLock lock(mutex_);
        round_++;
        times_ = {};
    }

  private:
    mutable Mutex mutex_;  // for one of these
    std::uint64_t round_ GUARDED_BY(mutex_) = 0;
    BlockTimes times_ GUARDED_BY(mutex_);
};
