#include "worker/command_handler.h"
#include <cassert>
#include <cmath>
#include <string_view>
#include <utility>

namespace {

std::string successMessage(const RadioWrite& write, const RadioReading& radio) {
    auto title = slotTitle(write.radio, write.slot);
    switch (write.slot) {
        case kSlotActive:
            return title + ' ' + mhzText(radio.active);
        case kSlotStandby:
            return title + ' ' + mhzText(radio.standby);
        case kSlotVolume:
            return title + ' ' + percentText(radio.volume);
        case kSlotSwap:
            return radioName(write.radio) + " swapped to " + mhzText(radio.active);
    }
    return title;
}

// "COM1 STBY refused"
std::string outcomeOf(const RadioWrite& write, std::string_view outcome) {
    return slotTitle(write.radio, write.slot) + ' ' + std::string(outcome);
}

// "COM1 STBY 121.500"
std::string describeWrite(const RadioWrite& write) {
    auto title = slotTitle(write.radio, write.slot);
    if (write.slot == kSlotSwap) return title;
    return title + ' ' + (write.slot == kSlotVolume ? percentText(write.value) : mhzText(write.value));
}

}  // namespace

void CommandHandler::accept(CommandRequest command, std::uint64_t nowMs) {
    assert(!isPending());
    before_ = link_.snapshot().radios[command.write.radio];
    acceptedMs_ = countedMs_ = nowMs;
    waitedMs_ = 0;
    command_ = std::move(command);
    auto reason = objection(command_->write);
    if (reason.empty()) {
        command_->write = link_.adjusted(command_->write);
        if (!link_.write(command_->write, nowMs)) reason = outcomeOf(command_->write, pilot::kRefused);
    }
    if (!reason.empty()) acknowledge(false, std::move(reason), nowMs);
}

void CommandHandler::pass(std::uint64_t nowMs) {
    if (!command_) return;
    const auto& write = command_->write;
    const auto& sim = link_.snapshot();
    const auto& radio = sim.radios[write.radio];
    if (!sim.ok) return acknowledge(false, outcomeOf(write, pilot::kNoLink), nowMs);
    if (isVisible(radio)) {
        link_.noteReadback(write, true);
        return acknowledge(true, successMessage(write, radio), nowMs);
    }
    countWait(nowMs);
    if (waitedMs_ < kReadbackLimitMs && nowMs - acceptedMs_ < kReadbackLastMs) return;
    acknowledge(false, outcomeOf(write, link_.noteReadback(write, false)), nowMs);
}

// From one word of the simulator to the next: one that stutters ignores nobody, nor does one that we were ourselves
// kept from listening to.
void CommandHandler::countWait(std::uint64_t nowMs) {
    const auto heardMs = nowMs - link_.unheardMs(nowMs);
    if (heardMs <= countedMs_) return;
    const auto gapMs = heardMs - std::exchange(countedMs_, heardMs);
    if (gapMs < kStutterMs) waitedMs_ += gapMs;
}

// Why the write is not even tried; empty if there is no objection.
std::string CommandHandler::objection(const RadioWrite& write) const {
    const auto& sim = link_.snapshot();
    if (!sim.ok) return outcomeOf(write, pilot::kNoLink);
    const bool isVolume = write.slot == kSlotVolume;
    if (isVolume && !(write.value >= 0.0 && write.value <= 1.0)) return describeWrite(write) + ' ' + pilot::kOutOfRange;
    const bool isFrequency = write.slot == kSlotActive || write.slot == kSlotStandby;
    if (isFrequency && !isTunable(sim, write.radio, write.slot, write.value)) {
        return describeWrite(write) + ' ' + pilot::kNoChannel;
    }
    const bool writable = sim.radios[write.radio].writable[write.slot];
    return writable ? std::string() : outcomeOf(write, pilot::kRefused);
}

bool CommandHandler::isVisible(const RadioReading& radio) const {
    const double value = command_->write.value;
    switch (command_->write.slot) {
        case kSlotActive:
            return radio.active == value;
        case kSlotStandby:
            return radio.standby == value;
        case kSlotVolume:
            return std::abs(radio.volume - value) <= kVolumeTolerance;
        case kSlotSwap:
            return radio.active == before_.standby && radio.standby == before_.active;
    }
    return false;
}

void CommandHandler::acknowledge(bool ok, std::string message, std::uint64_t nowMs) {
    log_.line("command " + command_->id + " (" + describeWrite(command_->write) + ") " + (ok ? "done" : "failed") +
              " after " + std::to_string(nowMs - acceptedMs_) + " ms: " + message);
    ack_ = {command_->id, ok, std::move(message)};
    command_.reset();
}
