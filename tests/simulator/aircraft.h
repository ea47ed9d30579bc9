// aircraft.h - the aircraft that the stand-in simulates: its COM radios, and how they take what is written to them.
// Values: copy them freely. Nothing here locks or reads a clock.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace standin {

inline constexpr std::size_t kRadios = 3;

enum Slot : std::uint8_t { kActive, kStandby, kVolume, kSwap };
inline constexpr std::array<std::string_view, 4> kSlotWords = {"active", "standby", "volume", "swap"};

struct Radio {
    std::uint32_t activeHz = 122'800'000;   // a channel's name in Hz; as written, whether on the grid or not
    std::uint32_t standbyHz = 121'500'000;  // same
    bool is833 = true;                      // 8.33 kHz spacing, else 25 kHz
    double volumePercent = 100.0;           // 0..100
    bool isFitted = true;                   // this aircraft has the radio
    bool isPowered = true;
    bool isReceiving = true;
    std::array<bool, 4> obeys{true, true, true, true};  // by Slot: what is written there takes effect

    // -1 invalid, 0 OK, 1 does not exist, 2 no electricity, 3 failed.
    std::int32_t status() const { return !isFitted ? 1 : isPowered ? 0 : 2; }
    bool operator==(const Radio&) const = default;
};

struct Aircraft {
    std::string title;
    std::string file;  // the name in AircraftLoaded
    std::array<Radio, kRadios> radios{};
    std::size_t transmitting = 0;  // radio index
};

// How this maker's radios differ from the standard ones.
struct Habits {
    bool ignoresSwaps = false;
    bool snapsTo25 = false;      // whatever spacing the radio reports
    bool zeroCutsPower = false;  // one knob for volume and power
};

// "twin": COM1 8.33 kHz, COM2 25 kHz, no COM3. "glider": COM1 only, 25 kHz. False for another name.
bool makeAircraft(std::string_view name, Aircraft& aircraft);

// What a simulator shows in its menu: two radios that belong to no flight.
Aircraft menuAircraft();

// What the cockpit or a client does to a radio. False if it has no effect: the radio is off or not fitted, does not
// obey, or the frequency is outside 118..136.990 MHz.
bool tune(Aircraft& aircraft, const Habits& habits, std::size_t radio, Slot slot, std::uint32_t hz);
bool swap(Aircraft& aircraft, const Habits& habits, std::size_t radio);
bool setVolume(Aircraft& aircraft, const Habits& habits, std::size_t radio, double percent);

}  // namespace standin
