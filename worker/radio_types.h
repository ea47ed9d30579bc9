// radio_types.h - what the worker knows of the simulator's two COM radios, whichever link it comes from.
// Radio index 0 is COM1, 1 is COM2. Values: copy them freely. Nothing here locks or throws.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include "bridge/sim_state.h"

// In the order of RadioSlot; these words stand in command.json and in flight scripts.
inline constexpr std::array<std::string_view, kSlotCount> kSlotNames = {"active", "standby", "volume", "swap"};

inline constexpr std::int32_t kBandMinKHz = 118000;
inline constexpr std::int32_t kBandMaxKHz = 136990;    // with 8.33 kHz channel names
inline constexpr std::int32_t kBandMax25KHz = 136975;  // when every radio keeps to the 25 kHz grid

struct ComRadio {
    std::int32_t activeKHz = 0;               // 118000..136990; 0 = unknown
    std::int32_t standbyKHz = 0;              // same
    std::int32_t spacing = -1;                // kSpacing25, kSpacing833; -1 = unknown
    double volume = -1.0;                     // 0..1; -1 = unknown
    std::array<bool, kSlotCount> writable{};  // by RadioSlot
    bool operator==(const ComRadio&) const = default;
};

// The simulator as the link last saw it. The default is the safe state: no link, nothing known, nothing writable.
struct SimSnapshot {
    bool ok = false;     // the link is up and the values below are its own
    std::string status;  // one plain-English line, for the telemetry and the log
    std::int32_t rangeMinKHz = kBandMinKHz;
    std::int32_t rangeMaxKHz = kBandMaxKHz;  // inclusive
    std::array<ComRadio, kRadioCount> radios{};
    bool operator==(const SimSnapshot&) const = default;
};

struct RadioWrite {
    std::size_t radio = 0;  // 0, 1
    RadioSlot slot = kSlotActive;
    double value = 0.0;  // kHz; volume 0..1; ignored for a swap
};

// "COM1", "COM2".
std::string radioName(std::size_t radio);

// "COM1 standby".
std::string slotTitle(std::size_t radio, RadioSlot slot);

// "121.500": MHz with three decimals. Beyond any radio's band (more than 9999 MHz) the bare number.
std::string mhzText(double khz);

// "60 %", rounded to whole percent.
std::string percentText(double volume);

// The slot of that name; false leaves slot as it was.
bool parseSlot(std::string_view name, RadioSlot& slot);

// True if khz is a whole channel of that radio: inside the snapshot's range and on the radio's grid.
bool isChannelOf(const SimSnapshot& sim, std::size_t radio, double khz);
