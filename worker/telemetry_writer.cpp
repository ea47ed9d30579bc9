#include "worker/telemetry_writer.h"
#include "worker/pilot_texts.h"

Telemetry telemetryOf(const SimSnapshot& sim, bool commandPending, const CommandAck& ack) {
    Telemetry telemetry;
    telemetry.ok = sim.ok;
    telemetry.rangeMin = sim.rangeMinKHz;
    telemetry.rangeMax = sim.rangeMaxKHz;
    telemetry.radios = sim.radios;
    telemetry.ackId = ack.id;
    telemetry.ackOk = ack.ok;
    telemetry.commandPending = commandPending;
    telemetry.status = pilot::pilotLine(sim.status);
    telemetry.ackMessage = pilot::pilotLine(ack.message);
    return telemetry;
}

std::uint64_t TelemetryWriter::msUntilDue(const Telemetry& telemetry, std::uint64_t nowMs) const {
    if (!tried_) return 0;
    const auto gap = succeeded_ && telemetry == written_ ? kMaxWriteGapMs : kMinWriteGapMs;
    const auto since = nowMs - triedMs_;
    return since >= gap ? 0 : gap - since;
}

void TelemetryWriter::pass(const Telemetry& telemetry, std::uint64_t nowMs, double unixSeconds) {
    if (msUntilDue(telemetry, nowMs) > 0) return;
    const bool failedBefore = tried_ && !succeeded_;
    succeeded_ = static_cast<bool>(files_.replace(path_, writeTelemetryText(telemetry, unixSeconds)));
    tried_ = true;
    triedMs_ = nowMs;
    if (succeeded_) written_ = telemetry;
    logOutcome(failedBefore, nowMs);
}

void TelemetryWriter::logOutcome(bool failedBefore, std::uint64_t nowMs) {
    if (succeeded_) {
        if (failureLogged_) log_.line("telemetry.json is written again");
        failureLogged_ = false;
        return;
    }
    if (!failedBefore) failingSinceMs_ = nowMs;
    if (failureLogged_ || nowMs - failingSinceMs_ < kLastingFailureMs) return;
    log_.line("telemetry.json cannot be written");
    failureLogged_ = true;
}
