// sim_state.h - the latest picture of the simulator: what the worker reported.
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include "base/mutex.h"
#include "bridge/disconnect_reason.h"
#include "bridge/status_lines.h"
#include "bridge/telemetry_file.h"
#include "exchange/com_radio.h"

struct SimState {
    std::array<RadioReading, kRadioCount> radios;  // [0] COM1, [1] COM2
    bool connected = false;                        // the last read gave fresh, valid telemetry
    bool commandPending = false;                   // the worker holds a command it has not answered
    std::int32_t rangeMin = 0;                     // kHz, lowest tunable frequency
    std::int32_t rangeMax = 0;                     // kHz, highest, inclusive
    std::string ackId;                             // the last command the worker handled
    bool ackOk = false;                            // whether that command succeeded
    std::uint64_t readTick = 0;                    // ms, when the file was parsed
    DisconnectReason reason;                       // why it is not connected
};

// The state lock guards the one snapshot; every access is a copy or an assignment under it, nothing is called while it
// is held. [poll] fills it; [any] copies.
struct SharedSimState {
    Mutex mutex;
    SimState state GUARDED_BY(mutex);
};

SimState copySimState(SharedSimState& shared);

// [poll] Stores a reading and says in the status line what it means to the pilot. If it is not fresh, the radios become
// unknown except for their spacing, and the line says the reason behind "DISCONNECTED".
void publishTelemetry(const TelemetryReading& reading, const DisconnectReason& reason, SharedSimState& sim,
                      StatusLines& status);

// [poll] The bridge is gone: frequencies and volumes unknown, "DISCONNECTED" with the reason. Spacing and writability
// keep their last values until the next read.
void setDisconnected(const DisconnectReason& reason, SharedSimState& sim, StatusLines& status);

// The radio numbered com, 1 or 2; null for any other number.
const RadioReading* radioOf(const SimState& state, std::int32_t com);
