#include "bridge/disconnect_reason.h"
#include "base/number_text.h"
#include "base/utf8.h"

namespace {

// Small ones are the worker's own or a command's; beyond them Windows names what a program died of: 0xC0000005.
std::string codeText(std::uint32_t code) {
    if (code < 0x10000) return std::to_string(code);
    std::string digits = "0x";
    for (int shift = 28; shift >= 0; shift -= 4)
        digits += "0123456789ABCDEF"[code >> static_cast<unsigned>(shift) & 15U];
    return digits;
}

std::string wordsOf(const DisconnectReason& reason) {
    switch (reason.cause) {
        case DisconnectCause::kNone:
            return {};
        case DisconnectCause::kWorkerMissing:
            return "worker program missing";
        case DisconnectCause::kWorkerNotStarted:
            return "worker not started (error " + codeText(reason.code) + ')';
        case DisconnectCause::kWorkerEnded:
            return "worker not running (code " + codeText(reason.code) + ')';
        case DisconnectCause::kWorkerSilent:
            return "waiting for the worker";
        case DisconnectCause::kOtherProtocol:
            return "worker of another version";
        case DisconnectCause::kWorkerSays:
            return plainText(reason.workerStatus);
        case DisconnectCause::kOutOfMemory:
            return "out of memory";
    }
    return {};
}

std::string lineWith(const std::string& why) {
    return std::string(kDisconnectedText) + (why.empty() ? "" : ": " + why);
}

}  // namespace

DisconnectReason reasonOf(const WorkerLife& worker, const std::optional<TelemetryReading>& reading) {
    if (reading && reading->fresh) return {};
    if (worker.state != WorkerLife::State::kRunning) {
        if (worker.isMissing) return {DisconnectCause::kWorkerMissing, 0, {}};
        const bool isEnded = worker.state == WorkerLife::State::kEnded;
        return {isEnded ? DisconnectCause::kWorkerEnded : DisconnectCause::kWorkerNotStarted, worker.code, {}};
    }
    if (!reading || !reading->timely) return {DisconnectCause::kWorkerSilent, 0, {}};
    if (reading->telemetry.protocol != kTelemetryProtocol) return {DisconnectCause::kOtherProtocol, 0, {}};
    if (reading->telemetry.status.empty()) return {DisconnectCause::kWorkerSilent, 0, {}};
    return {DisconnectCause::kWorkerSays, 0, reading->telemetry.status};
}

std::string reasonText(const DisconnectReason& reason) {
    const std::string text = wordsOf(reason);
    return std::string(cutUtf8(text, kMaxReasonBytes));
}

std::string workerEndLine(std::uint32_t exitCode) {
    return "SimConnect worker ended (exit code " + codeText(exitCode) + ')';
}

std::string disconnectedText(const DisconnectReason& reason) {
    return lineWith(reasonText(reason));
}

std::string wholeDisconnectedText(const DisconnectReason& reason) {
    return lineWith(wordsOf(reason));
}
