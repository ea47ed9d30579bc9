#include "bridge/poll_loop.h"
#include "audio/volume_policy.h"
#include "bridge/move_status.h"
#include "bridge/telemetry_file.h"

namespace {

// What one pass has found out so far.
struct Pass {
    std::uint64_t nowMs = 0;
    std::uint64_t schid = 0;
    Settings settings;
    SelectedRadio selected;
    bool telemetryOk = false;
    bool queueBusy = false;
};

void readSimulator(Pass& pass, PollContext& context) {
    if (const auto reading = readTelemetry(context.files, context.dataFolder, context.clock)) {
        pass.selected = selectRadio(copySettings(context.settings), *reading);
        pass.telemetryOk = reading->fresh;
        publishTelemetry(*reading, context.radios.sim, context.radios.status);
    }
    if (!pass.telemetryOk) setDisconnected(context.radios.sim, context.radios.status);
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

void trackOwnTalk(const Pass& pass, PollContext& context) {
    const HostFunctions& host = context.host;
    if (pass.schid == 0 || !host.getClientID || !host.getClientSelfVariableAsInt) return;
    std::uint16_t ownId = 0;
    if (host.getClientID(pass.schid, &ownId) != 0) return;
    context.talk.ownClientId = ownId;
    int flag = 0;
    if (host.getClientSelfVariableAsInt(pass.schid, kClientFlagTalking, &flag) != 0) return;
    talkChanged(context.talk, pass.schid, ownId, flag == 1, context.clock.tickMs());
}

void readCaptureMode(const Pass& pass, PollMemory& memory, PollContext& context) {
    if (pass.nowMs - memory.lastCaptureRead <= kCaptureReadMs) return;
    std::string text;
    context.files.read(joinPath(context.dataFolder, kCaptureModeFile), text);
    context.voice.CaptureMode = captureModeOf(text);
    memory.lastCaptureRead = pass.nowMs;
}

}  // namespace

void pollOnce(PollMemory& memory, PollContext& context) {
    Pass pass;
    pass.nowMs = context.clock.tickMs();
    pass.settings = copySettings(context.settings);
    pass.schid = context.currentServer;
    readSimulator(pass, context);
    sendCommands(pass, context);
    forgetWhatIsOver(pass, memory, context);
    followWhenStill(pass, memory, context);
    context.voice.ReceiveGain = receiveGainOf(copySettings(context.settings), pass.selected.volume);
    trackOwnTalk(pass, context);
    drainTails(context.talk, context.tails);
    saveWhenDue(context.settings, pass.nowMs);
    readCaptureMode(pass, memory, context);
}

void finishPolling(VoiceLevels& voice) {
    voice.ReceiveGain = 1.0f;
}
