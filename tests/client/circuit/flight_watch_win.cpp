#include "tests/client/circuit/flight_watch_win.h"
#include <cstdio>
#include <string_view>
#include <utility>
#include "base/clock_win.h"
#include "base/number_text.h"
#include "tests/client/circuit/flight_plan.h"
#include "tests/client/test_machine_win.h"

namespace {

constexpr std::uint64_t kBetweenLooksMs = 30;  // at the lamps: a tick of the panel

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

}  // namespace

FlightWatch::FlightWatch(HostModel& host, const PluginLibrary& plugin, const FlightPlaces& places,
                         std::uint64_t startMs)
    : host_(host),
      plugin_(plugin),
      telemetryFile_(places.dataFolder / kTelemetryFile),
      startMs_(startMs),
      record_(places.recordFile),
      lampWatch_(places.theme) {}

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

std::uint64_t FlightWatch::elapsedMs() const {
    return systemTickMs() - startMs_;
}

void FlightWatch::print(std::uint64_t atMs, const std::string& text) const {
    std::printf("%7s s  %s\n", formatFixed(static_cast<double>(atMs) / 1000.0, 2).c_str(), text.c_str());
    std::fflush(stdout);
}

void FlightWatch::note(FlightEvent event, const std::string& what, const std::string& value, const std::string& text) {
    const std::uint64_t atMs = elapsedMs();
    record_.add(atMs, event, what, value);
    if (!text.empty()) print(atMs, text);
}

void FlightWatch::check(bool ok, const std::string& text) {
    checks_++;
    if (!ok) failures_++;
    note(FlightEvent::kCheck, ok ? "ok" : "failed", text, (ok ? "  ok      " : "  FAILED  ") + text);
}

void FlightWatch::deliverText(const std::string& sender, const std::string& text) {
    note(FlightEvent::kMessage, sender, text, "message     from " + sender + ": " + text);
    HostTextMessage message;
    message.fromName = sender;
    message.message = text;
    plugin_.deliver(message);
}

std::vector<HostCall> FlightWatch::requestsSince(std::uint64_t tickMs) const {
    auto calls = host_.callsOf("requestClientMove");
    std::erase_if(calls, [&](const HostCall& call) { return call.atMs < tickMs; });
    return calls;
}

void FlightWatch::pump() {
    deliverEvents();
    readTelemetryFile();
    noteCalls();
    noteLamps();
}

void FlightWatch::deliverEvents() {
    const auto events = host_.advance(systemTickMs());
    noteCalls();  // requests come before their answers
    for (const HostEvent& event : events) {
        noteEvent(event);
        plugin_.deliver(event);
    }
}

void FlightWatch::noteEvent(const HostEvent& event) {
    const std::string who = event.clientId == kPilotClient ? "pilot" : "controller";
    if (event.kind == HostEventKind::kClientMove && event.clientId == kPilotClient) {
        const std::string title = channelTitle(event.newChannelId);
        note(FlightEvent::kChannel, "", title, "host        moved to " + quoted(title));
    }
    if (event.kind == HostEventKind::kServerError && event.error != 0) {
        const std::string error = "error " + std::to_string(event.error);
        note(FlightEvent::kRefusal, "server", error, "host        refused with " + error);
    }
    if (event.kind == HostEventKind::kTalkStatus) {
        const bool isTalking = event.talkStatus == 1;
        std::string line = who;
        line.resize(12, ' ');
        note(FlightEvent::kTalk, who, isTalking ? "on" : "off", line + (isTalking ? "talks" : "is silent"));
    }
}

void FlightWatch::readTelemetryFile() {
    const std::string text = readFile(telemetryFile_);
    if (text.empty()) return;
    const Telemetry before = std::exchange(telemetry_, parseTelemetry(text));
    for (std::size_t radio = 0; radio < kRadioCount; radio++) noteRadio(radio, before);
    if (telemetry_.ok != before.ok || telemetry_.status != before.status) {
        const std::string plain = telemetry_.ok ? "ok" : "lost";
        const std::string& status = telemetry_.status.empty() ? plain : telemetry_.status;
        note(FlightEvent::kLink, telemetry_.ok ? "up" : "down", status, "simulator   " + status);
    }
    if (telemetry_.commandPending && !before.commandPending) say("worker      writing to the aircraft");
    if (telemetry_.ackId == before.ackId) return;
    note(telemetry_.ackOk ? FlightEvent::kAnswer : FlightEvent::kRefusal, "aircraft", telemetry_.ackMessage,
         "worker      " + std::string(telemetry_.ackOk ? "acknowledged: " : "refused: ") + telemetry_.ackMessage);
}

void FlightWatch::noteRadio(std::size_t radio, const Telemetry& before) {
    const RadioReading& now = telemetry_.radios[radio];
    const RadioReading& then = before.radios[radio];
    const std::string name = "COM" + std::to_string(radio + 1);
    if (now.active != then.active) {
        // The file's own time stamp as a tick: the plugin cannot have seen the frequency earlier.
        const double ageSeconds = SystemClock().unixSeconds() - telemetry_.updated;
        const std::uint64_t seenMs =
            systemTickMs() - static_cast<std::uint64_t>(ageSeconds > 0 ? ageSeconds * 1000.0 : 0.0);
        if (radio == 0) tunedAtMs_ = seenMs;
        note(FlightEvent::kActive, name, std::to_string(now.active),
             now.active != 0 ? "aircraft    " + name + " active " + megahertzText(now.active) : "");
    }
    if (now.standby != then.standby)
        note(FlightEvent::kStandby, name, std::to_string(now.standby),
             now.standby != 0 ? "aircraft    " + name + " standby " + megahertzText(now.standby) : "");
}

void FlightWatch::noteCalls() {
    const auto calls = host_.calls();
    for (; notedCalls_ < calls.size(); notedCalls_++) {
        const HostCall& call = calls[notedCalls_];
        if (call.function == "requestClientMove") {
            const std::string title = channelTitle(call.channelId);
            note(FlightEvent::kRequest, "", title, "plugin      asks for " + quoted(title));
        }
        if (call.function == "playWaveFile") {
            const std::string file = call.text.substr(call.text.rfind('\\') + 1);
            note(FlightEvent::kSound, "", file, "plugin      plays " + file);
        }
        if (call.function == "logMessage") say("plugin log  " + call.text);
    }
}

void FlightWatch::noteLamps() {
    if (systemTickMs() - lookedAtMs_ < kBetweenLooksMs) return;
    lookedAtMs_ = systemTickMs();
    const auto& lamps = lampWatch_.look();
    for (std::size_t i = 0; i < lamps.size(); i++) {
        if (lamps[i].isLit == std::exchange(lit_[i], lamps[i].isLit)) continue;
        // TEXT flashes: a line each time would hide the rest.
        const bool isSteady = std::string_view(lamps[i].name) != "TEXT";
        note(FlightEvent::kLamp, lamps[i].name, lamps[i].isLit ? "on" : "off",
             isSteady ? std::string("panel       ") + lamps[i].name + (lamps[i].isLit ? " lit" : " dark") : "");
    }
}

std::string megahertzText(std::int32_t frequencyKHz) {
    return formatFixed(static_cast<double>(frequencyKHz) / 1000.0, 3);
}
