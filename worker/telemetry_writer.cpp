#include "worker/telemetry_writer.h"

std::uint64_t TelemetryWriter::msUntilDue(const TelemetryRecord& record, std::uint64_t nowMs) const {
    if (!tried_) return 0;
    const auto gap = succeeded_ && record == written_ ? kMaxWriteGapMs : kMinWriteGapMs;
    const auto since = nowMs - triedMs_;
    return since >= gap ? 0 : gap - since;
}

void TelemetryWriter::pass(const TelemetryRecord& record, std::uint64_t nowMs, double unixSeconds) {
    if (msUntilDue(record, nowMs) > 0) return;
    const bool failedBefore = tried_ && !succeeded_;
    succeeded_ = files_.replace(path_, telemetryText(record, unixSeconds));
    tried_ = true;
    triedMs_ = nowMs;
    if (succeeded_) written_ = record;
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
