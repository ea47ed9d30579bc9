#include "tests/xplane/cockpit.h"
#include <algorithm>
#include <cmath>
#include <utility>

namespace xstandin {

namespace {

// What is written to a whole number loses its fraction. Out of an int's range: 0.
std::int32_t wholeOf(float value) {
    return std::abs(value) < 1e9f ? static_cast<std::int32_t>(value) : 0;
}

}  // namespace

bool isChannel(std::int32_t khz) {
    // Four names in each 25 kHz, 5 kHz apart: the fifth would be none's.
    return khz >= kLowestKhz && khz <= kHighestKhz && khz % 5 == 0 && khz % 25 != 20;
}

std::int32_t channelAt(std::int32_t khz, const Habits& habits) {
    if (khz < kLowestKhz || khz > kHighestKhz) return 0;
    khz -= khz % (habits.snapsTo25 ? 25 : 5);
    return isChannel(khz) ? khz : khz - 5;
}

void tune(Cockpit& cockpit, const Habits& habits, std::size_t radio, Slot slot, float khz) {
    auto& one = cockpit.radios[radio];
    const auto channel = channelAt(wholeOf(khz), habits);
    if (channel == 0 || !one.obeys[slot] || (slot == kStandby && habits.ignoresStandby)) return;
    (slot == kActive ? one.activeKhz : one.standbyKhz) = channel;
}

void setVolume(Cockpit& cockpit, const Habits& habits, std::size_t radio, float volume) {
    auto& one = cockpit.radios[radio];
    if (!one.obeys[kVolume] || std::isnan(volume)) return;
    one.volume = std::clamp(volume, 0.0f, 1.0f);
    if (habits.zeroCutsPower) one.isPowered = one.volume > 0.0f;
}

void swap(Cockpit& cockpit, const Habits& habits, std::size_t radio) {
    auto& one = cockpit.radios[radio];
    if (one.obeys[kSwap] && !habits.ignoresSwaps) std::swap(one.activeKhz, one.standbyKhz);
}

}  // namespace xstandin
