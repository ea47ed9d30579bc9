// radio_tables.h - what a COM radio is called in X-Plane: the values that are read and written, and the commands.
#pragma once
#include <array>
#include "worker/radio_types.h"
#include "worker/xplane/session.h"

namespace xplane {

// A turn of a knob is to be seen at once; a switch may take a moment. The time between two answers is part of the time
// that the pilot waits, and each answer costs the worker a pass.
inline constexpr int kKnobRate = 30;   // times a second
inline constexpr int kSwitchRate = 5;  // the same

// In the order of the rows of each radio.
enum ComRow : std::size_t { kComActive, kComStandby, kComVolume, kComPower };
inline constexpr std::size_t kComRows = 4;

enum SimRow : std::size_t { kPaused, kAvionics };
inline constexpr std::size_t kSimRows = 2;

// The frequencies are whole kHz, as the channel's name has it, in spite of "hz" in theirs: 118005.
// clang-format off
inline constexpr std::array<DataRef, kSimRows + kRadioCount * kComRows> kDataRefs = {{
    {"sim/time/paused",                                          kSwitchRate, ValueKind::kSwitch},
    {"sim/cockpit2/switches/avionics_power_on",                  kSwitchRate, ValueKind::kSwitch},
    {"sim/cockpit2/radios/actuators/com1_frequency_hz_833",         kKnobRate,   ValueKind::kChannel},
    {"sim/cockpit2/radios/actuators/com1_standby_frequency_hz_833", kKnobRate,   ValueKind::kChannel},
    {"sim/cockpit2/radios/actuators/audio_volume_com1",             kKnobRate,   ValueKind::kVolume},
    {"sim/cockpit2/radios/actuators/com1_power",                    kSwitchRate, ValueKind::kSwitch},
    {"sim/cockpit2/radios/actuators/com2_frequency_hz_833",         kKnobRate,   ValueKind::kChannel},
    {"sim/cockpit2/radios/actuators/com2_standby_frequency_hz_833", kKnobRate,   ValueKind::kChannel},
    {"sim/cockpit2/radios/actuators/audio_volume_com2",             kKnobRate,   ValueKind::kVolume},
    {"sim/cockpit2/radios/actuators/com2_power",                    kSwitchRate, ValueKind::kSwitch},
}};

// Spelled so by X-Plane.
inline constexpr std::array<const char*, kRadioCount> kSwapCommands = {
    "sim/radios/com1_standy_flip",
    "sim/radios/com2_standy_flip",
};
// clang-format on

constexpr std::size_t rowOf(std::size_t radio, ComRow row) {
    return kSimRows + radio * kComRows + row;
}

}  // namespace xplane
