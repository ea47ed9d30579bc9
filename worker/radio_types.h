// radio_types.h - what the worker knows of the simulator's two COM radios, whichever link it comes from.
// Radio index 0 is COM1, 1 is COM2. Values: copy them freely. Nothing here locks or throws.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include "exchange/com_radio.h"

inline constexpr std::int32_t kBandMinKHz = 118000;
inline constexpr std::int32_t kBandMaxKHz = 136990;    // with 8.33 kHz channel names
inline constexpr std::int32_t kBandMax25KHz = 136975;  // when every radio keeps to the 25 kHz grid

// The simulator as the link last saw it. The default is the safe state: no link, nothing known, nothing writable.
struct SimSnapshot {
    bool ok = false;     // the link is up and the values below are its own
    std::string status;  // one line in plain English, for the telemetry and the log
    std::int32_t rangeMinKHz = kBandMinKHz;
    std::int32_t rangeMaxKHz = kBandMaxKHz;  // inclusive
    std::array<RadioReading, kRadioCount> radios{};
    bool operator==(const SimSnapshot&) const = default;
};

// "COM1", "COM2".
std::string radioName(std::size_t radio);

// "COM1 STBY", as the panel's keys have it, or "COM1 volume".
std::string slotTitle(std::size_t radio, RadioSlot slot);

// "121.500": MHz with three decimals. Beyond any radio's band (more than 9999 MHz) the bare number.
std::string mhzText(double khz);

// "60 %", rounded to whole percent.
std::string percentText(double volume);

// True if khz is a whole channel of that radio: inside the snapshot's range and on the radio's grid.
bool isChannelOf(const SimSnapshot& sim, std::size_t radio, double khz);

// True if writing khz to that slot (active or standby) is worth a try: a channel of the radio, or inside the range and
// whole megahertz away from where the slot stands. A cockpit may leave it off the radio's grid; what becomes of whole
// megahertz from there is for the aircraft to decide.
bool isTunable(const SimSnapshot& sim, std::size_t radio, RadioSlot slot, double khz);

// True if the slot can take the value of the write: a volume within 0..1, a frequency that is tunable; a swap has none.
bool isValueFor(const SimSnapshot& sim, const RadioWrite& write);
