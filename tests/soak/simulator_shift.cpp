#include "tests/soak/simulator_shift.h"
#include <algorithm>
#include "base/number_text.h"
#include "tests/client/test_machine_win.h"
#include "tests/simulator/personality.h"
#include "tests/soak/soak_world.h"

namespace {

constexpr const char* kUsual = "stock";
constexpr int kLongestPauseMs = 1200;
constexpr std::size_t kTroubleEvery = 12;  // actions

constexpr const char* kHabits[] = {
    "swap COM1",         "swap COM2",          "power COM2 off",   "power COM2 on",  "spacing COM1 25",
    "spacing COM1 8.33", "ignore COM2 volume", "obey COM2 volume", "readback 300",   "readback 20",
    "aircraft twin",     "aircraft glider",    "volume COM1 0",    "volume COM1 80", "event COM1_RADIO_SWAP 0",
};
constexpr const char* kTroubles[] = {
    "drop 1", "crash 1", "quit 1", "sim menu", "pause on", "stutter 1.5", "stutter 4", "deaf 2", "flood 1",
};

}  // namespace

bool SimulatorShift::begin() {
    const auto count = static_cast<std::size_t>(standin::personalitiesEnd() - standin::personalitiesBegin());
    const bool isFirst = personality_.empty();
    personality_ = isFirst ? kUsual : standin::personalitiesBegin()[dice_.below(count)].name;
    const std::wstring name(personality_.begin(), personality_.end());
    isOn_ = program_.start(standin::besideUs(L"stand_in_simulator.exe", L"--pipe --personality " + name));
    nextMs_ = 0;
    return isOn_;
}

void SimulatorShift::end() {
    program_.kill();
    isOn_ = false;
}

std::string SimulatorShift::actionAtRandom() {
    if (dice_.isOneIn(kTroubleEvery)) return dice_.oneOf(kTroubles);
    if (dice_.isOneIn(3)) return dice_.oneOf(kHabits);
    const std::string megahertz = formatFixed(frequencyKHz(dice_.below(kFrequencies)) / 1000.0, 3);
    return std::string("tune COM") + (dice_.isOneIn(3) ? "2" : "1") + (dice_.isOneIn(3) ? " standby " : " active ") +
           megahertz;
}

void SimulatorShift::act() {
    const std::uint64_t nowMs = systemTickMs();
    if (!isOn_ || nowMs < nextMs_) return;
    nextMs_ = nowMs + static_cast<std::uint64_t>(dice_.between(50, kLongestPauseMs));
    program_.say(actionAtRandom());
    actions_++;
    if (!dice_.isOneIn(4)) return;
    for (const char* back : {"sim running", "pause off"}) program_.say(back);
}
