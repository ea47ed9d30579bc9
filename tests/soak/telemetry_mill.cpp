#include "tests/soak/telemetry_mill.h"
#include <algorithm>
#include <functional>
#include <utility>
#include "base/clock_win.h"
#include "exchange/command_text.h"
#include "exchange/telemetry_text.h"
#include "tests/client/test_machine_win.h"
#include "tests/soak/hostile_telemetry.h"
#include "tests/soak/soak_world.h"
#include "tests/soak/stopwatch_win.h"

namespace {

constexpr std::uint64_t kPeriodNs = 20'000'000;
constexpr std::size_t kHostileEvery = 8;          // writes, on average, while at work
constexpr std::size_t kHostileEveryAtRest = 150;  // periods: three seconds
constexpr std::size_t kTurnEvery = 75;            // writes from one frequency to the next
constexpr std::size_t kCommandEvery = 5;          // writes from one look for a command to the next
constexpr std::size_t kListenEvery = 25;          // periods at rest
constexpr std::size_t kWrongTimeEvery = 100;
constexpr std::size_t kGoneEvery = 400;

}  // namespace

TelemetryMill::TelemetryMill(std::filesystem::path dataFolder, std::uint64_t seed)
    : telemetryFile_(dataFolder / kTelemetryFile), commandFile_(dataFolder / kCommandFile), dice_(seed) {
    thread_ = std::thread([this] { run(); });
}

void TelemetryMill::stop() {
    isOver_ = true;
    if (thread_.joinable()) thread_.join();
}

void TelemetryMill::run() {
    for (std::uint64_t dueNs = nowNs(); !isOver_; dueNs = std::max(dueNs + kPeriodNs, nowNs())) {
        waitUntil(dueNs);
        if (isAtWork_) {
            fly();
            if (dice_.isOneIn(kCommandEvery)) answerCommand();
            dice_.isOneIn(kHostileEvery) ? writeHostile() : write();
        } else {
            if (dice_.isOneIn(kListenEvery)) listen();
            if (dice_.isOneIn(kHostileEveryAtRest)) writeHostile();
        }
    }
}

void TelemetryMill::fly() {
    for (FakeRadio& radio : flown_.radios) {
        if (dice_.isOneIn(kTurnEvery)) radio.activeKhz = frequencyKHz(dice_.below(kFrequencies));
        if (dice_.isOneIn(kTurnEvery)) radio.standbyKhz = frequencyKHz(dice_.below(kFrequencies));
        if (dice_.isOneIn(kTurnEvery)) radio.volume = static_cast<double>(dice_.below(101)) / 100.0;
        if (dice_.isOneIn(10 * kTurnEvery)) radio.spacing = 1 - radio.spacing;
        if (dice_.isOneIn(10 * kTurnEvery)) radio.writable = !radio.writable;
    }
    if (dice_.isOneIn(flown_.ok ? 500 : 25)) flown_.ok = !flown_.ok;
}

void TelemetryMill::answerCommand() {
    const auto command = parseCommandText(readFile(commandFile_));
    if (!command || command->id == flown_.ackId) return;
    flown_.ackId = command->id;
    flown_.ackOk = !dice_.isOneIn(5);
    flown_.ackMessage = flown_.ackOk ? "done" : "not accepted by this aircraft";
}

double TelemetryMill::timeToWrite() {
    const double now = SystemClock().unixSeconds();
    return dice_.isOneIn(kWrongTimeEvery) ? now + dice_.between(-10'000, 10'000) : now;
}

// Moved over the old one, as the worker does.
void TelemetryMill::write() {
    const std::string text = telemetryText(flown_, timeToWrite());
    ownHash_ = std::hash<std::string>()(text);
    replaceFile(telemetryFile_, text);
    writes_++;
}

void TelemetryMill::writeHostile() {
    const std::string text = harmedTelemetry(dice_.below(kHostileKinds), telemetryText(flown_, timeToWrite()), dice_);
    ownHash_ = std::hash<std::string>()(text);
    std::error_code ignored;
    if (dice_.isOneIn(kGoneEvery / kHostileEvery))
        std::filesystem::remove(telemetryFile_, ignored);
    else if (dice_.isOneIn(2))
        writeFile(telemetryFile_, text);  // in place: a reader may see any part of it
    else
        replaceFile(telemetryFile_, text);
    hostileWrites_++;
}

void TelemetryMill::listen() {
    const std::string text = readFile(telemetryFile_);
    if (std::hash<std::string>()(text) != ownHash_ && isFresh(parseTelemetry(text), SystemClock().unixSeconds()))
        heard_++;
}
