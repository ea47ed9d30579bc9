// pass_watch.h - the poll thread, seen from the host: which thread it is, and how long from one question about the own
// talk state, which every pass asks while connected, to the next. Portable.
#pragma once
#include <atomic>
#include <cstdint>
#include "base/mutex.h"
#include "tests/soak/shared_times.h"

class PassWatch {
  public:
    // [host] Whether a connected server is in front. No gap reaches across the time that none was: nobody asks then.
    void setOn(bool isOn);
    void onPass(std::uint32_t threadId, std::uint64_t nowNs);  // [poll]
    std::uint32_t threadId() const { return threadId_; }       // [any] 0 before the first pass
    SharedTimes& gaps() { return gaps_; }

  private:
    std::atomic<std::uint32_t> threadId_{0};
    SharedTimes gaps_;
    Mutex mutex_;  // the poll thread once a pass, the host now and then
    bool isOn_ GUARDED_BY(mutex_) = false;
    std::uint64_t lastNs_ GUARDED_BY(mutex_) = 0;     // 0: none since a server came to the front
    std::uint64_t lastRound_ GUARDED_BY(mutex_) = 0;  // of gaps_
};
