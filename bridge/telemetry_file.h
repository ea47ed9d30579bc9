// telemetry_file.h - telemetry.json read from the data folder, and the part of it that the bridge uses.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include "base/clock.h"
#include "base/data_files.h"
#include "exchange/telemetry_text.h"
#include "settings/settings.h"

// No more than this is read of telemetry.json, so that a file of any size costs a pass little. The worker's has about a
// thousand bytes.
inline constexpr std::size_t kMaxTelemetryFileBytes = 4'000'000;

struct TelemetryReading {
    Telemetry telemetry;
    bool timely = false;           // whatever it says, its worker wrote it just now
    bool fresh = false;            // by the clock when it was read
    std::uint64_t readTickMs = 0;  // when the file was parsed
};

// [poll][dialog] Nothing when the file cannot be opened or is empty.
std::optional<TelemetryReading> readTelemetry(DataFiles& files, const std::string& dataFolder, const Clock& clock);

// What the followed radio and slot show.
struct SelectedRadio {
    std::int32_t frequencyKHz = 0;  // 0 unknown
    float volume = -1.0f;           // 0..1, -1 unknown
};

// The radio and slot that the settings follow; unknown when the reading is not fresh.
SelectedRadio selectRadio(const Settings& settings, const TelemetryReading& reading);
