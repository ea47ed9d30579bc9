// follow_frequency.h - moves the user into the channel that carries the tuned frequency and waits for the host to
// confirm it. The poll loop decides when to try; each stage is a channel status line in SimState.
#pragma once
#include <atomic>
#include <string>
#include <string_view>
#include "base/clock.h"
#include "base/host_functions.h"
#include "bridge/sim_state.h"

inline constexpr std::uint64_t kMoveTimeoutMs = 5000;

// The one outstanding move. All fields but moveError belong to [poll] alone.
struct MoveTracker {
    std::uint64_t pendingSchid = 0;          // server connection of the move
    std::uint64_t pendingChannel = 0;        // 0: no move outstanding
    std::uint64_t pendingSince = 0;          // tick ms of the request
    std::atomic<std::int32_t> moveError{0};  // [host] stores what the server answered, [poll] takes it; 0 none
    // Made anew at init, before [poll] starts; read by [poll] and [host]. Empty: errors cannot be told to be ours.
    std::string moveReturnCode;
};

// [poll] One look at the host: finds the first channel that carries frequencyKHz and asks to be moved there unless a
// move is outstanding. True only when the user already is in it. Quiet when the host cannot be asked.
bool followFrequency(MoveTracker& tracker, const HostFunctions& host, SharedSimState& sim, const Clock& clock,
                     std::uint64_t schid, std::int32_t frequencyKHz);

// [host] A server error event. True if returnCode (may be null) is the one of our moves: the host then shows nothing.
bool onServerError(MoveTracker& tracker, const char* returnCode, std::int32_t error);
