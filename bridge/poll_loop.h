// poll_loop.h - what the bridge does every 50 ms: read the simulator, send commands, follow the frequency, set the
// receive gain, watch the own talk state, play tails. One pass is one call; the thread around it is plugin glue.
#pragma once
#include <atomic>
#include "audio/tail_player.h"
#include "audio/talk_tracker.h"
#include "bridge/command_queue.h"
#include "bridge/sim_state.h"
#include "channels/follow_frequency.h"
#include "exchange/telemetry.h"

inline constexpr std::uint32_t kPollPeriodMs = 50;
inline constexpr std::uint64_t kStableMs = 350;          // a frequency is followed once it has stood still so long
inline constexpr std::uint64_t kFollowSpacingMs = 2000;  // between two looks at a move
inline constexpr std::uint64_t kCaptureReadMs = 1000;

// What the loop publishes for the audio hooks and the panel: [poll] stores, [any] loads.
struct BridgeOutputs {
    std::atomic<float> ReceiveGain{1.0f};      // linear
    std::atomic<std::int32_t> CaptureMode{1};  // CaptureModes
};

// What the loop keeps from pass to pass. [poll] alone.
struct PollMemory {
    std::uint64_t lastSchid = 0;
    std::int32_t lastFrequency = 0;       // kHz
    std::uint64_t stableSince = 0;        // tick ms
    std::uint64_t lastFollowAttempt = 0;  // tick ms, 0 none
    std::uint64_t lastCaptureRead = 0;    // tick ms
};

// The rooms a pass works with. All outlive the poll thread.
struct PollRooms {
    const HostFunctions& host;
    DataFiles& files;
    const Clock& clock;
    std::string dataFolder;
    std::uint32_t processId = 0;                      // of the host
    const std::atomic<std::uint64_t>& currentServer;  // 0 not connected
    SettingsStore& settings;
    SharedSimState& sim;
    CommandQueue& commands;
    MoveTracker& moves;
    TalkTracker& talk;
    TailPlayer& tails;
    BridgeOutputs& outputs;
};

// [poll] One pass. No lock is held across it, nor across any file or host call in it.
void pollOnce(PollMemory& memory, PollRooms& rooms);

// [poll] After the last pass: received voices are left as they are.
void finishPolling(BridgeOutputs& outputs);
