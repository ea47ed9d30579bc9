// com_radio.h - the aircraft's two COM radios, as worker and plugin speak of them. Radio 0 is COM1, radio 1 COM2.
// Values: copy them freely. Nothing here locks, allocates or throws.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// The parts of a radio that can be written.
enum RadioSlot : std::int32_t {
    kSlotActive = 0,
    kSlotStandby = 1,
    kSlotVolume = 2,
    kSlotSwap = 3,
};
inline constexpr int kSlotCount = 4;
inline constexpr int kRadioCount = 2;

// In the order of RadioSlot; these words appear in command.json, in telemetry.json's keys and in flight scripts.
inline constexpr std::array<std::string_view, kSlotCount> kSlotNames = {"active", "standby", "volume", "swap"};

// Finds the slot of that name; if there is none, returns false and leaves slot unchanged.
bool parseSlot(std::string_view name, RadioSlot& slot);

// One radio as last reported.
struct RadioReading {
    std::int32_t active = 0;                  // kHz, 0 unknown
    std::int32_t standby = 0;                 // kHz, 0 unknown
    std::int32_t spacing = -1;                // channel grid: kSpacing25, kSpacing833, anything else none
    float volume = -1.0f;                     // 0..1, -1 unknown
    std::array<bool, kSlotCount> writable{};  // whether the simulator accepts writes, by RadioSlot

    bool operator==(const RadioReading&) const = default;
};

// One value for one slot of a radio.
struct RadioWrite {
    std::size_t radio = 0;  // 0, 1
    RadioSlot slot = kSlotActive;
    double value = 0.0;  // kHz, or volume 0..1; 0 for a swap
};
