#include "worker/worker_loop.h"
#include <algorithm>
#include <utility>
#include "exchange/command_text.h"
#include "exchange/telemetry_text.h"

namespace {

constexpr std::uint64_t kMaxTelemetryBytes = 65'536;  // ours takes about a thousand

std::string handledBefore(const std::string& path, DataFiles& files, WorkerFolder& folder) {
    const auto stamp = folder.stamp(path);
    std::string text;
    if (!stamp.exists || stamp.bytes > kMaxTelemetryBytes || !files.read(path, text)) return {};
    return lastAckId(text);
}

}  // namespace

WorkerLoop::WorkerLoop(const std::string& dataDir, DataFiles& files, WorkerFolder& folder, SimLink& link,
                       WorkerLog& log)
    : folderLook_(folder, dataDir),
      link_(link),
      log_(log),
      inbox_(joinPath(dataDir, kCommandFile), files, folder, log),
      handler_(link, log),
      writer_(joinPath(dataDir, kTelemetryFile), files, log) {
    inbox_.markHandled(handledBefore(joinPath(dataDir, kTelemetryFile), files, folder));
}

PassResult WorkerLoop::pass(std::uint64_t nowMs, double unixSeconds, PassCause cause) {
    isLookDue_ = isLookDue_ || cause == PassCause::kAnything;
    PassResult result;
    result.folderGone = folderLook_.isGone(nowMs);
    if (result.folderGone) return result;
    link_.poll(nowMs);
    logLink(nowMs);
    handler_.pass(nowMs);
    if (isLookDue_ && !handler_.isPending()) {
        auto command = inbox_.next(nowMs, unixSeconds);
        isLookDue_ = !inbox_.isQuiet();
        if (command) handler_.accept(std::move(*command), nowMs);
    }
    const Telemetry telemetry = telemetryOf(link_.snapshot(), handler_.isPending(), handler_.ack());
    writer_.pass(telemetry, nowMs, unixSeconds);
    const auto dueMs = std::max<std::uint64_t>(writer_.msUntilDue(telemetry, nowMs), 1);
    result.waitMs = std::min(dueMs, kPassMs);
    const bool isBusy = handler_.isPending() || folderLook_.isInDoubt();
    result.quietMs = std::min(dueMs, isBusy ? kPassMs : std::max(kPassMs, link_.restMs()));
    return result;
}

void WorkerLoop::logLink(std::uint64_t nowMs) {
    for (const auto& note : link_.takeNotes()) log_.line(note);
    const auto& sim = link_.snapshot();
    const LinkState state{sim.ok, sim.status};
    if (seenLink_ != state) {
        seenLink_ = state;
        linkSinceMs_ = nowMs;
    }
    const bool lasts = nowMs - linkSinceMs_ >= kLastingLinkMs;
    if (lasts) hastyLinkLines_ = 0;
    if (loggedLink_ == state || hastyLinkLines_ >= kHastyLinkLines) return;
    if (!lasts) hastyLinkLines_++;
    loggedLink_ = state;
    log_.line(std::string(state.ok ? "link up: " : "link down: ") + state.status);
}
