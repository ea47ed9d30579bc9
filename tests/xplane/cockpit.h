// cockpit.h - the aircraft's two COM radios and the switches around them, and how they take what is written to them.
// Values: copy them freely. Nothing here locks or reads a clock.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace xstandin {

inline constexpr std::size_t kRadios = 2;
inline constexpr std::int32_t kLowestKhz = 118'000;
inline constexpr std::int32_t kHighestKhz = 136'990;
inline constexpr std::int32_t kTransmitsCom1 = 6;  // of audio_com_selection; COM2 is 7

enum Slot : std::uint8_t { kActive, kStandby, kVolume, kSwap };
inline constexpr std::string_view kSlotWords[] = {"active", "standby", "volume", "swap"};

struct Radio {
    std::int32_t activeKhz = 122'800;   // a channel's name on the 8.33 kHz grid
    std::int32_t standbyKhz = 121'500;  // same
    float volume = 1.0f;                // 0..1
    bool isPowered = true;
    std::array<bool, 4> obeys{true, true, true, true};  // by Slot: what a client writes there takes effect

    bool operator==(const Radio&) const = default;
};

struct Cockpit {
    std::array<Radio, kRadios> radios{{{}, {.activeKhz = 121'500, .standbyKhz = 118'000}}};
    std::int32_t transmitting = kTransmitsCom1;
    bool hasAvionics = true;  // the switch is on
    bool isPaused = false;
};

// How this aircraft's radios differ from the standard ones.
struct Habits {
    bool ignoresStandby = false;
    bool ignoresSwaps = false;
    bool snapsTo25 = false;
    bool zeroCutsPower = false;  // one knob for volume and power
};

// 118.005 and 118.015 are channels, 118.020 is none.
bool isChannel(std::int32_t khz);
// The channel at kHz or the next below it; 0 outside the band.
std::int32_t channelAt(std::int32_t khz, const Habits& habits);

// A client's write or command. A radio that does not obey, or a value it has no place for, stays as it is.
void tune(Cockpit& cockpit, const Habits& habits, std::size_t radio, Slot slot, float khz);
void setVolume(Cockpit& cockpit, const Habits& habits, std::size_t radio, float volume);
void swap(Cockpit& cockpit, const Habits& habits, std::size_t radio);

}  // namespace xstandin
