#include "bridge/poll_loop.h"
#include "audio/volume_policy.h"
#include "base/log_line.h"
#include "bridge/move_status.h"
#include "bridge/telemetry_file.h"
#include "exchange/support_files.h"

namespace {

// What one pass has found out so far.
struct Pass {
    std::uint64_t nowMs = 0;
    std::uint64_t schid = 0;
    Settings settings;
    SelectedRadio selected;
    bool telemetryOk = false;
    DisconnectReason reason;
    bool queueBusy = false;
};

void logEndOnce(const WorkerLife& worker, PollMemory& memory, const HostFunctions& host) {
    if (worker.state != WorkerLife::State::kEnded || memory.endLogged) return;
    logToHost(host, workerEndLine(worker.code));
    memory.endLogged = true;
}

void readSimulator(Pass& pass, PollMemory& memory, PollContext& context) {
    const auto reading = readTelemetry(context.files, context.dataFolder, context.clock);
    const WorkerLife worker = context.lookAtWorker();
    logEndOnce(worker, memory, context.host);
    pass.reason = reasonOf(worker, reading);
    if (reading) {
        pass.selected = selectRadio(copySettings(context.settings), *reading);
        pass.telemetryOk = reading->fresh;
        publishTelemetry(*reading, pass.reason, context.radios.sim, context.radios.status);
    } else {
        setDisconnected(pass.reason, context.radios.sim, context.radios.status);
    }
}

// For the report for support, which cannot ask us.
void writeLinkState(const Pass& pass, PollMemory& memory, PollContext& context) {
    const std::string state = pass.telemetryOk ? std::string(kConnectedText) : wholeDisconnectedText(pass.reason);
    if (state == memory.linkState || !isDue(memory.linkStateDueMs, pass.nowMs)) return;
    const bool isWritten{context.files.replace(joinPath(context.dataFolder, kLinkStateFile), state + "\r\n")};
    if (isWritten) memory.linkState = state;
    memory.linkStateDueMs = pass.nowMs + (isWritten ? kLinkStateGapMs : kLinkStateRetryMs);
}

void sendCommands(Pass& pass, PollContext& context) {
    const CommandWriter writer{.files = context.files,
                               .clock = context.clock,
                               .processId = context.processId,
                               .dataFolder = context.dataFolder};
    processCommands(context.radios, context.settings, writer);
    pass.queueBusy = isBusy(context.radios.commands, pass.nowMs);
}

bool startsAfresh(const Pass& pass, const PollMemory& memory) {
    return pass.schid != memory.lastSchid || pass.selected.frequencyKHz != memory.lastFrequency ||
           !pass.settings.enabled || !pass.telemetryOk || pass.queueBusy;
}

bool mayFollow(const Pass& pass, const PollMemory& memory) {
    const bool wanted = pass.settings.master && pass.settings.enabled;
    const bool known = pass.telemetryOk && pass.schid != 0 && pass.selected.frequencyKHz >= 1;
    return wanted && known && !pass.queueBusy && pass.nowMs - memory.stableSince >= kStableMs &&
           pass.nowMs - memory.lastFollowAttempt >= kFollowSpacingMs;
}

// A move belongs to its server, and what the channel line says to a following that is on.
void forgetWhatIsOver(const Pass& pass, PollMemory& memory, PollContext& context) {
    if (context.moves.pendingSchid != pass.schid) context.moves.pendingChannel = 0;
    const bool isFollowing = pass.schid != 0 && pass.settings.master && pass.settings.enabled;
    if (memory.wasFollowing && !isFollowing) setChannelStatus(context.radios.status, "");
    memory.wasFollowing = isFollowing;
}

void followWhenStill(const Pass& pass, PollMemory& memory, PollContext& context) {
    if (startsAfresh(pass, memory)) {
        memory.lastFrequency = pass.selected.frequencyKHz;
        memory.lastSchid = pass.schid;
        memory.stableSince = pass.nowMs;
        memory.lastFollowAttempt = 0;
    }
    if (!mayFollow(pass, memory)) return;
    const MoveReport report =
        followFrequency(context.moves, context.host, context.clock, pass.schid, pass.selected.frequencyKHz);
    if (const auto text = channelStatusOf(report)) setChannelStatus(context.radios.status, *text);
    memory.lastFollowAttempt = pass.nowMs;
}

// Of a user who is no longer on that server, or there under another id, nobody will say that the transmission has
// ended. No tail: it was not released.
void forgetOwnTalk(PollMemory& memory, PollContext& context) {
    if (memory.ownSchid != 0) forgetClient(context.talk, memory.ownSchid, memory.ownClientId, context.clock.tickMs());
    memory.ownSchid = 0;
}

void trackOwnTalk(const Pass& pass, PollMemory& memory, PollContext& context) {
    if (memory.ownSchid != pass.schid) forgetOwnTalk(memory, context);
    const HostFunctions& host = context.host;
    if (pass.schid == 0 || !host.getClientID || !host.getClientSelfVariableAsInt) return;
    std::uint16_t ownId = 0;
    if (host.getClientID(pass.schid, &ownId) != 0) return;
    if (memory.ownClientId != ownId) forgetOwnTalk(memory, context);
    context.talk.ownClientId = ownId;
    int flag = 0;
    if (host.getClientSelfVariableAsInt(pass.schid, kClientFlagTalking, &flag) != 0) return;
    talkChanged(context.talk, pass.schid, ownId, flag == 1, context.clock.tickMs());
    memory.ownSchid = pass.schid;
    memory.ownClientId = ownId;
}

void readCaptureMode(const Pass& pass, PollMemory& memory, PollContext& context) {
    if (pass.nowMs - memory.lastCaptureRead <= kCaptureReadMs) return;
    std::string text;
    context.files.readBeginning(joinPath(context.dataFolder, kCaptureModeFile), kMaxCaptureModeBytes, text);
    context.voice.CaptureMode = captureModeOf(text);
    context.voice.MarkEdited = asksForMark(text);
    memory.lastCaptureRead = pass.nowMs;
}

}  // namespace

void pollOnce(PollMemory& memory, PollContext& context) {
    Pass pass;
    pass.nowMs = context.clock.tickMs();
    pass.settings = copySettings(context.settings);
    pass.schid = context.currentServer;
    readSimulator(pass, memory, context);
    sendCommands(pass, context);
    forgetWhatIsOver(pass, memory, context);
    followWhenStill(pass, memory, context);
    context.voice.ReceiveGain = receiveGainOf(copySettings(context.settings), pass.selected.volume);
    trackOwnTalk(pass, memory, context);
    drainTails(context.talk, context.tails);
    saveWhenDue(context.settings, pass.nowMs);
    readCaptureMode(pass, memory, context);
    writeLinkState(pass, memory, context);
}

void losePass(SimRadios& radios) noexcept {
    try {
        setDisconnected({DisconnectCause::kOutOfMemory, 0, {}}, radios.sim, radios.status);
    } catch (...) {
        // No memory for a reason. The word alone fits into any string without some.
        setStatusText(radios.status, kDisconnectedText);
    }
}

void finishPolling(VoiceLevels& voice) {
    voice.ReceiveGain = 1.0f;
}
