// com_tables.h - what a COM radio is called in the simulator: its variables and its key events, one row each.
#pragma once
#include <array>
#include "worker/radio_types.h"
#include "worker/simconnect/session.h"

namespace simconnect {

// In the order of the rows of each radio.
enum ComVariable : std::size_t { kComActive, kComStandby, kComSpacing, kComVolume, kComAvailable, kComStatus };
inline constexpr std::size_t kComVariables = 6;

// COM STATUS as the simulator numbers it; -1 is an invalid radio.
inline constexpr double kStatusOk = 0.0;
inline constexpr double kStatusNone = 1.0;
inline constexpr double kStatusNoPower = 2.0;
inline constexpr double kStatusFailed = 3.0;

// No BCD16 units, which keep two decimals of a megahertz: the simulator's own 8.33 kHz frequencies have three.
inline constexpr std::array<Variable, kRadioCount* kComVariables> kVariables = {{
    {"COM ACTIVE FREQUENCY:1", "MHz", DataType::kFloat64},
    {"COM STANDBY FREQUENCY:1", "MHz", DataType::kFloat64},
    {"COM SPACING MODE:1", "Enum", DataType::kInt32},  // 0 25 kHz, 1 8.33 kHz
    {"COM VOLUME:1", "Percent", DataType::kFloat64},   // 0..100
    {"COM AVAILABLE:1", "Bool", DataType::kInt32},
    {"COM STATUS:1", "Enum", DataType::kInt32},
    {"COM ACTIVE FREQUENCY:2", "MHz", DataType::kFloat64},
    {"COM STANDBY FREQUENCY:2", "MHz", DataType::kFloat64},
    {"COM SPACING MODE:2", "Enum", DataType::kInt32},
    {"COM VOLUME:2", "Percent", DataType::kFloat64},
    {"COM AVAILABLE:2", "Bool", DataType::kInt32},
    {"COM STATUS:2", "Enum", DataType::kInt32},
}};

// By radio, then by RadioSlot. Frequencies in Hz, volume in whole percent, nothing for a swap. COM1 has no number in
// its frequency events, but has one in the others.
inline constexpr std::size_t kKeyEventCount = std::size_t{kRadioCount} * kSlotCount;
inline constexpr std::array<const char*, kKeyEventCount> kKeyEvents = {{
    "COM_RADIO_SET_HZ",
    "COM_STBY_RADIO_SET_HZ",
    "COM1_VOLUME_SET",
    "COM1_RADIO_SWAP",
    "COM2_RADIO_SET_HZ",
    "COM2_STBY_RADIO_SET_HZ",
    "COM2_VOLUME_SET",
    "COM2_RADIO_SWAP",
}};

constexpr std::size_t variableOf(std::size_t radio, ComVariable variable) {
    return radio * kComVariables + variable;
}

constexpr std::size_t keyEventOf(std::size_t radio, RadioSlot slot) {
    return radio * kSlotCount + static_cast<std::size_t>(slot);
}

}  // namespace simconnect
