#include "audio/talk_tracker.h"
#include <utility>

namespace {

void updateLampsLocked(TalkTracker& tracker, std::uint64_t nowMs) REQUIRES(tracker.mutex) {
    const std::uint16_t ownId = tracker.ownClientId;
    const bool own = tracker.talking.count(ownId) != 0;
    tracker.ownTransmit = own;
    tracker.othersReceiving = tracker.talking.size() > (own ? 1U : 0U);
    tracker.lastTalkEventTick = nowMs;
}

void queueTailLocked(TalkTracker& tracker, const TalkEntry& entry, Tail tail, std::uint64_t nowMs)
    REQUIRES(tracker.mutex) {
    // Compared by addition: the other thread's tick may be older than the start.
    const bool longEnough = entry.talking && nowMs >= entry.start + kShortestTransmissionMs;
    if (longEnough && tracker.tails.size() < kMaxQueuedTails) tracker.tails.push_back(tail);
}

}  // namespace

void talkChanged(TalkTracker& tracker, std::uint64_t schid, std::uint16_t clientId, bool talking, std::uint64_t nowMs) {
    MutexLock lock(tracker.mutex);
    if (tracker.speakers.size() > kMaxTrackedSpeakers) {
        tracker.speakers.clear();
        tracker.talking.clear();
    }
    TalkEntry& entry = tracker.speakers[speakerKey(schid, clientId)];
    if (talking) {
        if (!entry.talking) entry.start = nowMs;
        tracker.talking.insert(clientId);
        entry.talking = true;
        return updateLampsLocked(tracker, nowMs);
    }
    // The tail last: without memory for it the lamp goes out nevertheless.
    const TalkEntry ended = std::exchange(entry, {});
    tracker.talking.erase(clientId);
    updateLampsLocked(tracker, nowMs);
    queueTailLocked(tracker, ended, {schid, clientId}, nowMs);
}

void forgetClient(TalkTracker& tracker, std::uint64_t schid, std::uint16_t clientId, std::uint64_t nowMs) {
    MutexLock lock(tracker.mutex);
    tracker.speakers.erase(speakerKey(schid, clientId));
    tracker.talking.erase(clientId);
    updateLampsLocked(tracker, nowMs);
}

void resetTalk(TalkTracker& tracker, std::uint64_t nowMs) {
    MutexLock lock(tracker.mutex);
    tracker.speakers.clear();
    tracker.talking.clear();
    updateLampsLocked(tracker, nowMs);
}

void forgetAllTalk(TalkTracker& tracker, std::uint64_t nowMs) {
    tracker.ownClientId = 0;
    resetTalk(tracker, nowMs);
    takeTails(tracker);
}

std::deque<Tail> takeTails(TalkTracker& tracker) {
    std::deque<Tail> tails;
    MutexLock lock(tracker.mutex);
    std::swap(tails, tracker.tails);
    return tails;
}
