// tail_player.h - plays the squelch tails that are due, through the host and at most one every 350 ms.
#pragma once
#include <string>
#include "audio/talk_tracker.h"
#include "base/clock.h"
#include "base/host_functions.h"
#include "settings/settings_store.h"

inline constexpr std::uint32_t kTailSpacingMs = 350;
inline constexpr std::uint32_t kTailLogSpacingMs = 1000;

// [poll] alone. Times are the low 32 bits of the tick, which wrap.
struct TailThrottle {
    std::uint32_t lastPlay = 0;
    std::uint32_t lastPlayedLog = 0;
    std::uint32_t lastThrottledLog = 0;
    std::uint32_t suppressed = 0;  // tails dropped since the last log line about them
};

struct TailPlayer {
    const HostFunctions& host;
    SettingsStore& settings;
    const Clock& clock;
    std::string tailPath;  // UTF-8, as the host wants it; empty: no tail is played
    TailThrottle throttle;
};

// [poll] Plays every queued tail in arrival order; the host is called with no lock held.
void drainTails(TalkTracker& tracker, TailPlayer& player);

// [poll] One tail, as settings and throttle allow.
void playTail(TailPlayer& player, std::uint64_t schid, std::uint16_t clientId);
