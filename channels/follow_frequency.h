// follow_frequency.h - moves the user into the channel that carries the tuned frequency and waits for the host to
// confirm it. The poll loop decides when to try and puts each stage into words.
#pragma once
#include <atomic>
#include <string>
#include "base/clock.h"
#include "base/host_functions.h"

inline constexpr std::uint64_t kMoveTimeoutMs = 5000;

// The one outstanding move. The first three fields belong to [poll] alone.
struct MoveTracker {
    std::uint64_t pendingSchid = 0;          // server connection of the move
    std::uint64_t pendingChannel = 0;        // 0: no move outstanding
    std::uint64_t pendingSince = 0;          // tick ms of the request
    std::atomic<std::int32_t> moveError{0};  // [host] stores what the server answered, [poll] takes it; 0 none
    // Made anew at init, before [poll] starts; read by [poll] and [host]. Empty: our errors cannot be recognised.
    std::string moveReturnCode;
};

// How far the move into the channel has got.
enum class MoveStage {
    kUnknown,       // the host cannot be asked: nothing to say
    kNoChannel,     // no channel carries the frequency
    kConfirmed,     // the user is in the channel
    kRequested,     // the host has been asked just now
    kNotRequested,  // the host could not be asked, or did not take the request
    kPending,       // asked earlier, neither confirmed nor refused
    kRefused,       // the server's error ends the move
    kNotConfirmed,  // no answer within kMoveTimeoutMs ends the move
};
struct MoveReport {
    MoveStage stage = MoveStage::kUnknown;
    std::int32_t error = 0;  // of the server, with kRefused

    bool operator==(const MoveReport&) const = default;
};

// [poll] One look at the host: finds the first channel that carries frequencyKHz and asks to be moved there unless a
// move is outstanding.
MoveReport followFrequency(MoveTracker& tracker, const HostFunctions& host, const Clock& clock, std::uint64_t schid,
                           std::int32_t frequencyKHz);

// [host] A server error event. True if returnCode (may be null) belongs to our moves: the host then shows nothing.
bool onServerError(MoveTracker& tracker, const char* returnCode, std::int32_t error);
