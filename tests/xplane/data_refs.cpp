#include "tests/xplane/data_refs.h"
#include <algorithm>
#include <cmath>
#include <iterator>

namespace xstandin {

namespace {

float readActive(const Cockpit& cockpit, std::size_t radio) {
    return static_cast<float>(cockpit.radios[radio].activeKhz);
}

float readStandby(const Cockpit& cockpit, std::size_t radio) {
    return static_cast<float>(cockpit.radios[radio].standbyKhz);
}

float readVolume(const Cockpit& cockpit, std::size_t radio) {
    return cockpit.radios[radio].volume;
}

float readPower(const Cockpit& cockpit, std::size_t radio) {
    return cockpit.radios[radio].isPowered ? 1.0f : 0.0f;
}

float readTransmitting(const Cockpit& cockpit, std::size_t) {
    return static_cast<float>(cockpit.transmitting);
}

float readAvionics(const Cockpit& cockpit, std::size_t) {
    return cockpit.hasAvionics ? 1.0f : 0.0f;
}

float readPaused(const Cockpit& cockpit, std::size_t) {
    return cockpit.isPaused ? 1.0f : 0.0f;
}

void writeActive(Cockpit& cockpit, const Habits& habits, std::size_t radio, float value) {
    tune(cockpit, habits, radio, kActive, value);
}

void writeStandby(Cockpit& cockpit, const Habits& habits, std::size_t radio, float value) {
    tune(cockpit, habits, radio, kStandby, value);
}

// A switch takes whole numbers: 0.5 is off.
bool isOn(float value) {
    return std::abs(value) >= 1.0f;
}

void writePower(Cockpit& cockpit, const Habits&, std::size_t radio, float value) {
    cockpit.radios[radio].isPowered = isOn(value);
}

void writeAvionics(Cockpit& cockpit, const Habits&, std::size_t, float value) {
    cockpit.hasAvionics = isOn(value);
}

void writeTransmitting(Cockpit& cockpit, const Habits&, std::size_t, float value) {
    for (const auto selection : {kTransmitsCom1, kTransmitsCom1 + 1}) {
        if (value == static_cast<float>(selection)) cockpit.transmitting = selection;
    }
}

// clang-format off
constexpr DataRef kDataRefs[] = {
    {"sim/cockpit2/radios/actuators/com1_frequency_hz_833",         0, readActive,       writeActive},
    {"sim/cockpit2/radios/actuators/com2_frequency_hz_833",         1, readActive,       writeActive},
    {"sim/cockpit2/radios/actuators/com1_standby_frequency_hz_833", 0, readStandby,      writeStandby},
    {"sim/cockpit2/radios/actuators/com2_standby_frequency_hz_833", 1, readStandby,      writeStandby},
    {"sim/cockpit2/radios/actuators/audio_volume_com1",             0, readVolume,       setVolume},
    {"sim/cockpit2/radios/actuators/audio_volume_com2",             1, readVolume,       setVolume},
    {"sim/cockpit2/radios/actuators/com1_power",                    0, readPower,        writePower},
    {"sim/cockpit2/radios/actuators/com2_power",                    1, readPower,        writePower},
    {"sim/cockpit2/radios/actuators/audio_com_selection",           0, readTransmitting, writeTransmitting},
    {"sim/cockpit2/switches/avionics_power_on",                     0, readAvionics,     writeAvionics},
    {"sim/time/paused",                                             0, readPaused,       nullptr},
};

constexpr Command kCommands[] = {
    {"sim/radios/com1_standy_flip", 0, swap},
    {"sim/radios/com2_standy_flip", 1, swap},
};
// clang-format on

template <class Row, std::size_t N>
const Row* findRow(const Row (&rows)[N], std::string_view name) {
    const auto* row = std::find_if(rows, rows + N, [&](const Row& one) { return one.name == name; });
    return row == rows + N ? nullptr : row;
}

}  // namespace

const DataRef* findDataRef(std::string_view name) {
    return findRow(kDataRefs, name);
}

const Command* findCommand(std::string_view name) {
    return findRow(kCommands, name);
}

}  // namespace xstandin
