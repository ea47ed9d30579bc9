// sim_state.h - the latest picture of the simulator: what the worker reported, and the two status lines.
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include "base/mutex.h"

enum RadioSlot : std::int32_t {
    kSlotActive = 0,
    kSlotStandby = 1,
    kSlotVolume = 2,
    kSlotSwap = 3,
};
inline constexpr int kSlotCount = 4;
inline constexpr int kRadioCount = 2;

// One COM radio as last reported. A value: copy it freely.
struct RadioReading {
    std::int32_t active = 0;                  // kHz, 0 unknown
    std::int32_t standby = 0;                 // kHz, 0 unknown
    std::int32_t spacing = -1;                // channel grid: 0 25 kHz, 1 8.33 kHz, anything else none
    float volume = -1.0f;                     // 0..1, -1 unknown
    std::array<bool, kSlotCount> writable{};  // whether the simulator accepts writes: active, standby, volume, swap
};

struct SimState {
    std::array<RadioReading, kRadioCount> radios;  // [0] COM1, [1] COM2
    bool connected = false;                        // the last read gave fresh, valid telemetry
    bool commandPending = false;                   // the worker holds a command it has not answered
    std::int32_t rangeMin = 0;                     // kHz, lowest tunable frequency
    std::int32_t rangeMax = 0;                     // kHz, highest, inclusive
    std::string ackId;                             // the last command the worker handled
    std::string statusText = "DISCONNECTED";       // bridge status line of the panel
    bool ackOk = false;                            // whether that command succeeded
    std::uint64_t readTick = 0;                    // ms, when the file was parsed
    std::string channelStatus;                     // channel-following status line
};

// The state lock guards the one snapshot; every access is a copy or an assignment under it, nothing is called while it
// is held. [poll] fills it; [poll] and [ui] set status lines; [any] copies.
struct SharedSimState {
    Mutex mutex;
    SimState state GUARDED_BY(mutex);
};

SimState copySimState(SharedSimState& shared);
void setStatusText(SharedSimState& shared, std::string_view text);
void setChannelStatus(SharedSimState& shared, std::string_view text);

// [poll] The bridge is gone: frequencies and volumes unknown, "DISCONNECTED". Spacing and writability keep their last
// values until the next read.
void setDisconnected(SharedSimState& shared);

// The radio numbered com, 1 or 2; null for any other number.
const RadioReading* radioOf(const SimState& state, std::int32_t com);
