// poll_loop.h - what the bridge does every 50 ms: read the simulator, send commands, follow the frequency, set the
// receive gain, watch the user's own talk state, play tails, save what is due. One pass is one call; the thread around
// it is plugin glue.
#pragma once
#include <atomic>
#include <functional>
#include <string>
#include "audio/tail_player.h"
#include "audio/talk_tracker.h"
#include "audio/voice_levels.h"
#include "bridge/command_queue.h"
#include "bridge/disconnect_reason.h"
#include "bridge/sim_state.h"
#include "bridge/status_lines.h"
#include "channels/follow_frequency.h"

inline constexpr std::uint32_t kPollPeriodMs = 50;
inline constexpr std::uint64_t kStableMs = 350;          // a frequency is followed once it has been stable this long
inline constexpr std::uint64_t kFollowSpacingMs = 2000;  // between two looks at a move
inline constexpr std::uint64_t kCaptureReadMs = 1000;
inline constexpr std::uint64_t kLinkStateGapMs = 1000;    // link_state.txt is written no more often
inline constexpr std::uint64_t kLinkStateRetryMs = 5000;  // and tried again after a failure: a reader will have gone

// What the loop keeps from pass to pass. [poll] alone.
struct PollMemory {
    std::uint64_t lastSchid = 0;
    std::int32_t lastFrequency = 0;       // kHz
    std::uint64_t stableSince = 0;        // tick ms
    std::uint64_t lastFollowAttempt = 0;  // tick ms, 0 none
    std::uint64_t lastCaptureRead = 0;    // tick ms
    bool wasFollowing = true;             // connected, with master and AUTO on; at first: a line of before is cleared
    std::uint64_t ownSchid = 0;           // the server and the id under which the own talk was last reported; 0 none
    std::uint16_t ownClientId = 0;
    bool endLogged = false;            // the worker's end is in the host's log
    std::string linkState;             // last written to link_state.txt
    std::uint64_t linkStateDueMs = 0;  // tick ms before which it is left alone
};

// What a pass works with. All of it outlives the poll thread.
struct PollContext {
    const HostFunctions& host;
    DataFiles& files;
    const Clock& clock;
    std::string dataFolder;
    std::uint32_t processId = 0;                      // of the host
    const std::atomic<std::uint64_t>& currentServer;  // 0 not connected
    SettingsStore& settings;
    SimRadios& radios;
    MoveTracker& moves;
    TalkTracker& talk;
    TailPlayer& tails;
    VoiceLevels& voice;
    std::function<WorkerLife()> lookAtWorker;  // asked once a pass
};

// [poll] One pass. No lock is held across it, nor across a file or host call in it, except the settings-file mutex
// during a save.
void pollOnce(PollMemory& memory, PollContext& context);

// [poll] The pass is lost: the bridge counts as gone until the next one.
void losePass(SimRadios& radios) noexcept;

// [poll] Runs a pass, with whatever it needs first. What it throws (mostly out of memory) ends here: the pass is lost.
template <class Body>
void tryPass(SimRadios& radios, const Body& body) noexcept {
    try {
        body();
    } catch (...) {
        losePass(radios);
    }
}

// [poll] After the last pass: puts the receive gain back to 1.
void finishPolling(VoiceLevels& voice);
