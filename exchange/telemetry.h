// telemetry.h - "telemetry.json": what the worker reports of the simulator, read into SimState.
// The file is flat and its writer known, so each key is looked up by text search; nothing in it can fail as a whole.
#pragma once
#include <string>
#include <string_view>
#include "base/clock.h"
#include "base/data_files.h"
#include "bridge/sim_state.h"
#include "settings/settings_store.h"

inline constexpr const char* kTelemetryFile = "telemetry.json";
inline constexpr double kTelemetryProtocol = 2.0;
inline constexpr double kTelemetryMaxAgeSeconds = 3.0;  // exclusive

// The keys of the file with their defaults for absent ones.
struct Telemetry {
    double updated = 0.0;   // seconds since 1970-01-01 UTC
    bool ok = false;        // the worker's own health flag
    double protocol = 0.0;  // kTelemetryProtocol, or the file is of another version
    std::int32_t rangeMin = 0;
    std::int32_t rangeMax = 0;
    std::array<RadioReading, kRadioCount> radios;
    std::string ackId;
    bool ackOk = false;
    bool commandPending = false;
    std::string status;
    std::string ackMessage;
};

// [any] Reads any bytes in one pass over the text.
Telemetry parseTelemetry(std::string_view text);

// True if the worker is healthy, speaks our protocol and wrote within the last three seconds, not in the future.
bool isFresh(const Telemetry& telemetry, double nowUnixSeconds);

// [poll] Stores a reading: radios unknown but for their spacing unless it is fresh, and the status line it gives.
void publishTelemetry(const Telemetry& telemetry, bool fresh, std::uint64_t readTickMs, SharedSimState& sim);

// What the followed radio and slot show.
struct SelectedRadio {
    std::int32_t frequencyKHz = 0;  // 0 unknown
    float volume = -1.0f;           // 0..1, -1 unknown
};

// [poll] Reads the file of dataFolder into sim. True if it is fresh; false without touching sim if it cannot be
// opened or is empty. statusValue is the worker's free status text.
bool readTelemetry(DataFiles& files, const std::string& dataFolder, const Clock& clock, SettingsStore& settings,
                   SharedSimState& sim, SelectedRadio& selected, std::string& statusValue);
