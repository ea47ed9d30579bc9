#include "tests/client/circuit/flight_watch_win.h"
#include <cstdio>
#include <utility>
#include "base/clock_win.h"
#include "base/number_text.h"
#include "tests/client/circuit/flight_plan.h"
#include "tests/client/test_machine_win.h"

FlightWatch::FlightWatch(HostModel& host, const PluginLibrary& plugin, std::filesystem::path dataFolder,
                         std::uint64_t startMs)
    : host_(host), plugin_(plugin), telemetryFile_(std::move(dataFolder) / kTelemetryFile), startMs_(startMs) {}

bool FlightWatch::until(const std::function<bool()>& condition, std::uint64_t deadlineMs) {
    return waitFor(
        [&] {
            pump();
            return condition();
        },
        deadlineMs);
}

void FlightWatch::watchFor(std::uint64_t ms) {
    until([] { return false; }, ms);
}

void FlightWatch::say(const std::string& text) {
    const double seconds = static_cast<double>(systemTickMs() - startMs_) / 1000.0;
    std::printf("%7s s  %s\n", formatFixed(seconds, 2).c_str(), text.c_str());
    std::fflush(stdout);
}

void FlightWatch::check(bool ok, const std::string& text) {
    checks_++;
    if (!ok) failures_++;
    say((ok ? "  ok      " : "  FAILED  ") + text);
}

std::vector<HostCall> FlightWatch::requestsSince(std::uint64_t tickMs) const {
    auto calls = host_.callsOf("requestClientMove");
    std::erase_if(calls, [&](const HostCall& call) { return call.atMs < tickMs; });
    return calls;
}

void FlightWatch::pump() {
    deliverEvents();
    readTelemetryFile();
    printCalls();
}

void FlightWatch::deliverEvents() {
    for (const HostEvent& event : host_.advance(systemTickMs())) {
        if (event.kind == HostEventKind::kClientMove && event.clientId == kPilotClient)
            say("host        moved to \"" + channelTitle(event.newChannelId) + '"');
        if (event.kind == HostEventKind::kServerError && event.error != 0)
            say("host        refused with error " + std::to_string(event.error));
        plugin_.deliver(event);
    }
}

void FlightWatch::readTelemetryFile() {
    const std::string text = readFile(telemetryFile_);
    if (text.empty()) return;
    const Telemetry before = std::exchange(telemetry_, parseTelemetry(text));
    noteRadio(before);
    if (telemetry_.ok != before.ok || telemetry_.status != before.status)
        say("simulator   " +
            (telemetry_.status.empty() ? std::string(telemetry_.ok ? "ok" : "lost") : telemetry_.status));
    if (telemetry_.commandPending && !before.commandPending) say("worker      writing to the aircraft");
    if (telemetry_.ackId != before.ackId)
        say("worker      " + std::string(telemetry_.ackOk ? "acknowledged: " : "refused: ") + telemetry_.ackMessage);
}

void FlightWatch::noteRadio(const Telemetry& before) {
    const RadioReading& now = telemetry_.radios[0];
    if (now.active != before.radios[0].active) {
        // The file's own time stamp, on the tick's scale: the plugin cannot have seen it earlier.
        const double ageSeconds = SystemClock().unixSeconds() - telemetry_.updated;
        tunedAtMs_ = systemTickMs() - static_cast<std::uint64_t>(ageSeconds > 0 ? ageSeconds * 1000.0 : 0.0);
        if (now.active != 0) say("aircraft    COM1 active " + megahertzText(now.active));
    }
    if (now.standby != before.radios[0].standby && now.standby != 0)
        say("aircraft    COM1 standby " + megahertzText(now.standby));
}

void FlightWatch::printCalls() {
    const auto calls = host_.calls();
    for (; printedCalls_ < calls.size(); printedCalls_++) {
        const HostCall& call = calls[printedCalls_];
        if (call.function == "requestClientMove") say("plugin      asks for \"" + channelTitle(call.channelId) + '"');
        if (call.function == "playWaveFile") say("plugin      plays " + call.text.substr(call.text.rfind('\\') + 1));
        if (call.function == "logMessage") say("plugin log  " + call.text);
    }
}

std::string megahertzText(std::int32_t frequencyKHz) {
    return formatFixed(static_cast<double>(frequencyKHz) / 1000.0, 3);
}
