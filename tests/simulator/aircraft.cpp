#include "tests/simulator/aircraft.h"
#include <algorithm>
#include <utility>

namespace standin {

namespace {

constexpr std::uint32_t kLowestHz = 118'000'000;
constexpr std::uint32_t kHighestHz = 136'990'000;
constexpr std::uint32_t kStep25Hz = 25'000;

Aircraft makeTwin() {
    Aircraft twin;
    twin.title = "Stand-in twin";
    twin.file = "SimObjects\\Airplanes\\StandInTwin\\aircraft.cfg";
    twin.radios[1].activeHz = 121'500'000;
    twin.radios[1].standbyHz = 118'000'000;
    twin.radios[1].is833 = false;
    twin.radios[2].isFitted = false;
    return twin;
}

Aircraft makeGlider() {
    Aircraft glider;
    glider.title = "Stand-in glider";
    glider.file = "SimObjects\\Airplanes\\StandInGlider\\aircraft.cfg";
    glider.radios[0].activeHz = 123'500'000;
    glider.radios[0].standbyHz = 122'475'000;
    glider.radios[0].is833 = false;
    glider.radios[0].volumePercent = 70.0;
    glider.radios[1].isFitted = false;
    glider.radios[2].isFitted = false;
    return glider;
}

bool takes(const Aircraft& aircraft, std::size_t radio, Slot slot) {
    return aircraft.radios[radio].status() == 0 && aircraft.radios[radio].obeys[slot];
}

}  // namespace

bool makeAircraft(std::string_view name, Aircraft& aircraft) {
    if (name != "twin" && name != "glider") return false;
    aircraft = name == "twin" ? makeTwin() : makeGlider();
    return true;
}

Aircraft menuAircraft() {
    Aircraft menu;
    for (auto& radio : menu.radios) radio.activeHz = radio.standbyHz = 124'850'000;
    return menu;
}

bool tune(Aircraft& aircraft, const Habits& habits, std::size_t radio, Slot slot, std::uint32_t hz) {
    if (!takes(aircraft, radio, slot) || hz < kLowestHz || hz > kHighestHz) return false;
    if (habits.snapsTo25) hz = (hz + kStep25Hz / 2) / kStep25Hz * kStep25Hz;
    auto& target = aircraft.radios[radio];
    (slot == kActive ? target.activeHz : target.standbyHz) = hz;
    return true;
}

bool swap(Aircraft& aircraft, const Habits& habits, std::size_t radio) {
    if (!takes(aircraft, radio, kSwap) || habits.ignoresSwaps) return false;
    std::swap(aircraft.radios[radio].activeHz, aircraft.radios[radio].standbyHz);
    return true;
}

bool setVolume(Aircraft& aircraft, const Habits& habits, std::size_t radio, double percent) {
    if (!takes(aircraft, radio, kVolume)) return false;
    aircraft.radios[radio].volumePercent = std::clamp(percent, 0.0, 100.0);
    if (habits.zeroCutsPower && percent <= 0.0) aircraft.radios[radio].isPowered = false;
    return true;
}

}  // namespace standin
