#include "tests/simulator/personality.h"
#include <algorithm>
#include <iterator>

namespace standin {

namespace {

// After quitting or crashing, the simulator is back after two seconds.
constexpr Personality kPersonalities[] = {
    {.name = "stock"},
    {.name = "stock_2024", .edition = &kEdition2024},
    {.name = "ignores_swaps", .habits = {.ignoresSwaps = true}},
    {.name = "snaps_frequencies", .habits = {.snapsTo25 = true}},
    {.name = "unpowered_radio", .script = "0 power COM2 off"},
    {.name = "answers_late", .writeDelayMs = 900},
    {.name = "quits_mid_write", .onWrite = OnWrite::kQuits},
    {.name = "crashes", .onWrite = OnWrite::kCrashes},
    {.name = "rough_packets", .isRough = true},
    {.name = "refuses_version_5", .edition = &kEdition2024, .oldestProtocol = 6},
    {.name = "freezes_in_pause", .freezesInPause = true},
    {.name = "knows_one_pause", .freezesInPause = true, .lacksPauseKinds = true},
    {.name = "stutters", .script = "2 stutter 2.5"},
    {.name = "stops_reading", .script = "2 deaf 20"},
    {.name = "floods_aircraft", .script = "2 flood 3"},
    {.name = "silent", .isSilent = true},
    {.name = "garbage", .talksGarbage = true},
    {.name = "in_menu", .script = "0 sim menu\n2 sim running"},
    {.name = "aircraft_change", .script = "2 aircraft glider"},
    {.name = "volume_power_knob", .habits = {.zeroCutsPower = true}},
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

}  // namespace standin
