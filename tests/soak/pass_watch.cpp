#include "tests/soak/pass_watch.h"
#include <utility>

void PassWatch::setOn(bool isOn) {
    MutexLock lock(mutex_);
    isOn_ = isOn;
    if (!isOn) lastNs_ = 0;
}

void PassWatch::onPass(std::uint32_t threadId, std::uint64_t nowNs) {
    threadId_ = threadId;
    MutexLock lock(mutex_);
    const std::uint64_t last = std::exchange(lastNs_, isOn_ ? nowNs : 0);
    const std::uint64_t round = std::exchange(lastRound_, gaps_.begin());
    if (isOn_ && last != 0) gaps_.add(round, nowNs - last);
}
