#include "tests/xplane/personality.h"
#include <algorithm>
#include <iterator>

namespace xstandin {

namespace {

// After crashing it is back after two seconds.
constexpr Personality kPersonalities[] = {
    {.name = "stock_12"},
    {.name = "stock_11", .version = 115'501, .beaconMinor = 1},
    {.name = "stock_10", .version = 105'103, .beaconMinor = 1, .fifthByte = 'O'},
    {.name = "plane_maker", .program = 2},
    {.name = "external_visual", .role = 2},
    {.name = "instructor", .role = 3},
    {.name = "ignores_standby", .habits = {.ignoresStandby = true}},
    {.name = "ignores_swaps", .habits = {.ignoresSwaps = true}},
    {.name = "own_panel", .onWrite = OnWrite::kIsRedrawn},
    {.name = "snaps_frequencies", .habits = {.snapsTo25 = true}},
    {.name = "volume_power_knob", .habits = {.zeroCutsPower = true}},
    {.name = "unpowered_radio", .script = "0 power COM2 off"},
    {.name = "avionics_off", .script = "0 avionics off\n2 avionics on"},
    {.name = "network_off", .takesConnections = false},
    {.name = "lacks_com2", .lacks = "com2"},
    {.name = "lacks_com2_says_zero", .lacks = "com2", .answersZero = true},
    {.name = "answers_late", .writeDelayMs = 900},
    {.name = "crashes", .onWrite = OnWrite::kCrashes},
    {.name = "comes_back_newer", .versionAfter = 122'100, .onWrite = OnWrite::kCrashes},
    {.name = "freezes_in_pause", .freezesInPause = true},
    {.name = "in_menu", .script = "0 sim menu\n2 sim running"},
    {.name = "stutters", .script = "2 stutter 2.5"},
    {.name = "bad_network", .roughness = {.lost = 10, .doubled = 10, .late = 10}},
    {.name = "odd_datagrams", .isOdd = true},
    {.name = "slow_frames", .framesPerSecond = 15},
};

}  // namespace

const Personality* findPersonality(std::string_view name) {
    const auto* row = std::find_if(std::begin(kPersonalities), std::end(kPersonalities),
                                   [&](const Personality& personality) { return personality.name == name; });
    return row == std::end(kPersonalities) ? nullptr : row;
}

const Personality* personalitiesBegin() {
    return std::begin(kPersonalities);
}

const Personality* personalitiesEnd() {
    return std::end(kPersonalities);
}

}  // namespace xstandin
