// talk_tracker.h - who is talking: the TX and RX lamps, and a squelch tail for each transmission that ends.
// The tail lock guards the three tables; it is held for a look-up and a short scan, never across a host call.
#pragma once
#include <atomic>
#include <cstdint>
#include <deque>
#include <unordered_map>
#include <unordered_set>
#include "base/mutex.h"

inline constexpr std::uint64_t kShortestTransmissionMs = 120;  // shorter ones have no tail
inline constexpr std::size_t kMaxTrackedSpeakers = 1024;
inline constexpr std::size_t kMaxQueuedTails = 16;

using SpeakerKey = std::uint64_t;
// One speaker on one server.
inline SpeakerKey speakerKey(std::uint64_t schid, std::uint16_t clientId) {
    return (schid << 16U) ^ clientId;
}

struct TalkEntry {
    bool talking = false;
    std::uint64_t start = 0;  // tick ms of the first talk event of this transmission
};

struct Tail {
    std::uint64_t schid = 0;
    std::uint16_t clientId = 0;
};

struct TalkTracker {
    Mutex mutex;  // the tail lock: [host] talk events, [poll] own talk state and drain
    std::unordered_map<SpeakerKey, TalkEntry> speakers GUARDED_BY(mutex);
    std::unordered_set<std::uint16_t> talking GUARDED_BY(mutex);  // by client alone, whatever the server
    std::deque<Tail> tails GUARDED_BY(mutex);                     // at most kMaxQueuedTails

    std::atomic<std::uint16_t> ownClientId{0};  // [poll] stores, [any] loads
    // The lamps: [host] and [poll] store, [ui] loads.
    std::atomic<bool> ownTransmit{false};
    std::atomic<bool> othersReceiving{false};
    std::atomic<std::uint64_t> lastTalkEventTick{0};  // ms
};

// [host][poll] A speaker began or stopped talking, or is still talking.
void talkChanged(TalkTracker& tracker, std::uint64_t schid, std::uint16_t clientId, bool talking, std::uint64_t nowMs);

// [host] A client has left the server: it is forgotten, and the lamps are as if it had never talked. No tail.
void forgetClient(TalkTracker& tracker, std::uint64_t schid, std::uint16_t clientId, std::uint64_t nowMs);

// [host] The server connection is gone: nobody talks, the lamps are dark.
void resetTalk(TalkTracker& tracker, std::uint64_t nowMs);

// [host] The plugin starts or ends: as resetTalk, and no tail of before is played any more.
void forgetAllTalk(TalkTracker& tracker, std::uint64_t nowMs);

// [poll] The queued tails in arrival order; the queue is empty afterwards.
std::deque<Tail> takeTails(TalkTracker& tracker);
