#include "worker/simulated_aircraft.h"
#include <algorithm>
#include <utility>
#include "exchange/frequency_grid.h"
#include "worker/pilot_texts.h"

namespace {

constexpr std::array<bool, kSlotCount> kAllSlots = {true, true, true, true};
constexpr std::size_t kMaxPendingWrites = 64;  // the worker sends one at a time; a flood is refused, not stored

}  // namespace

SimulatedAircraft::SimulatedAircraft(FlightScript script, std::uint64_t startMs)
    : script_(std::move(script)), startMs_(startMs) {
    radios_[0].values = {122800, 121500, kSpacing833, 1.0, kAllSlots};
    radios_[1].values = {121500, 118000, kSpacing25, 1.0, kAllSlots};
    snapshot_ = describe();
}

void SimulatedAircraft::poll(std::uint64_t nowMs) {
    if (!linkUp_ && nowMs >= linkBackMs_) linkUp_ = true;
    applyDueWrites(nowMs);
    playScript(nowMs);
    snapshot_ = describe();
}

// At most one repeat per poll: after the machine has slept long, the script continues from now instead of catching up.
void SimulatedAircraft::playScript(std::uint64_t nowMs) {
    while (nextStep_ < script_.steps.size() && nowMs >= startMs_ + script_.steps[nextStep_].atMs) {
        const auto& step = script_.steps[nextStep_++];
        if (step.action == ScriptAction::kRepeat) {
            startMs_ = nowMs;
            nextStep_ = 0;
            firstRound_ = false;
            return;
        }
        play(step, nowMs);
    }
}

void SimulatedAircraft::play(const ScriptStep& step, std::uint64_t nowMs) {
    auto& radio = radios_[step.radio];
    const bool on = step.value != 0.0;
    switch (step.action) {
        case ScriptAction::kTune:
            return tune(step);
        case ScriptAction::kSwap:
            return std::swap(radio.values.active, radio.values.standby);
        case ScriptAction::kVolume:
            radio.values.volume = static_cast<float>(step.value);
            return;
        case ScriptAction::kPower:
            radio.powered = on;
            return;
        case ScriptAction::kSpacing:
            return setSpacing(radio, static_cast<std::int32_t>(step.value));
        case ScriptAction::kWritable:
            radio.values.writable[step.slot] = on;
            return;
        case ScriptAction::kObey:
            radio.obeys[step.slot] = on;
            return;
        case ScriptAction::kReadback:
            readbackMs_ = static_cast<std::uint64_t>(step.value);
            return;
        case ScriptAction::kDrop:
            linkUp_ = false;
            linkBackMs_ = nowMs + static_cast<std::uint64_t>(step.value);
            pending_.clear();
            return;
        case ScriptAction::kEnd:
        case ScriptAction::kRepeat:
            return;
    }
}

void SimulatedAircraft::tune(const ScriptStep& step) {
    auto& values = radios_[step.radio].values;
    const auto khz = static_cast<std::int32_t>(step.value);
    if (isOnGrid(khz, values.spacing)) {
        (step.slot == kSlotActive ? values.active : values.standby) = khz;
    } else if (firstRound_) {
        notes_.push_back("script line " + std::to_string(step.line) + " skipped: " + mhzText(khz) +
                         " is not a channel of " + radioName(step.radio) + " at its spacing");
    }
}

// A radio turned to the 25 kHz grid falls back to the 25 kHz channel at or below.
void SimulatedAircraft::setSpacing(Radio& radio, std::int32_t spacing) {
    radio.values.spacing = spacing;
    if (spacing != kSpacing25) return;
    radio.values.active -= radio.values.active % 25;
    radio.values.standby -= radio.values.standby % 25;
}

bool SimulatedAircraft::write(const RadioWrite& write, std::uint64_t nowMs) {
    if (!linkUp_ || !snapshot_.radios[write.radio].writable[write.slot] || pending_.size() >= kMaxPendingWrites)
        return false;
    if (!isValueFor(snapshot_, write)) return false;
    if (radios_[write.radio].obeys[write.slot]) pending_.push_back({write, nowMs + readbackMs_});
    return true;
}

void SimulatedAircraft::applyDueWrites(std::uint64_t nowMs) {
    for (const auto& pending : pending_) {
        if (nowMs >= pending.dueMs) apply(pending.write);
    }
    std::erase_if(pending_, [&](const PendingWrite& pending) { return nowMs >= pending.dueMs; });
}

// The radio's present state decides: without power, or off its present grid, the write is dropped.
void SimulatedAircraft::apply(const RadioWrite& write) {
    auto& radio = radios_[write.radio];
    if (!radio.powered) return;
    switch (write.slot) {
        case kSlotVolume:
            radio.values.volume = static_cast<float>(write.value);
            return;
        case kSlotSwap:
            return std::swap(radio.values.active, radio.values.standby);
        case kSlotActive:
        case kSlotStandby: {
            const auto khz = static_cast<std::int32_t>(write.value);
            if (!isOnGrid(khz, radio.values.spacing)) return;
            (write.slot == kSlotActive ? radio.values.active : radio.values.standby) = khz;
        }
    }
}

SimSnapshot SimulatedAircraft::describe() const {
    SimSnapshot sim;
    sim.ok = linkUp_;
    sim.status = statusText();
    if (!linkUp_) return sim;
    const bool all25 = std::all_of(radios_.begin(), radios_.end(),
                                   [](const Radio& radio) { return radio.values.spacing == kSpacing25; });
    sim.rangeMaxKHz = all25 ? kBandMax25KHz : kBandMaxKHz;
    for (std::size_t i = 0; i < kRadioCount; i++) {
        sim.radios[i] = radios_[i].values;
        if (!radios_[i].powered) sim.radios[i].writable = {};
    }
    return sim;
}

std::string SimulatedAircraft::statusText() const {
    if (!linkUp_) return pilot::kLinkLost;
    const auto fault = [](const Radio& radio) { return radio.powered ? std::string_view() : pilot::kUnpowered; };
    const auto faults = pilot::radioFaultsText(fault(radios_[0]), fault(radios_[1]));
    return faults.empty() ? pilot::kBuiltInAircraft : faults;
}
