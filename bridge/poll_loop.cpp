#include "bridge/poll_loop.h"
#include "audio/capture_mode.h"
#include "audio/receive_gain.h"

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

void readSimulator(Pass& pass, PollRooms& rooms) {
    std::string workerStatus;
    pass.telemetryOk = readTelemetry(rooms.files, rooms.dataFolder, rooms.clock, rooms.settings, rooms.sim,
                                     pass.selected, workerStatus);
    if (!pass.telemetryOk) setDisconnected(rooms.sim);
}

void sendCommands(Pass& pass, PollRooms& rooms) {
    const CommandWriter writer{rooms.files, rooms.clock, rooms.processId, rooms.dataFolder};
    processCommands(rooms.commands, rooms.sim, rooms.settings, writer);
    pass.queueBusy = isBusy(rooms.commands, pass.nowMs);
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

void followWhenStill(const Pass& pass, PollMemory& memory, PollRooms& rooms) {
    if (startsAfresh(pass, memory)) {
        memory.lastFrequency = pass.selected.frequencyKHz;
        memory.lastSchid = pass.schid;
        memory.stableSince = pass.nowMs;
        memory.lastFollowAttempt = 0;
    }
    if (!mayFollow(pass, memory)) return;
    followFrequency(rooms.moves, rooms.host, rooms.sim, rooms.clock, pass.schid, pass.selected.frequencyKHz);
    memory.lastFollowAttempt = pass.nowMs;
}

void trackOwnTalk(const Pass& pass, PollRooms& rooms) {
    const HostFunctions& host = rooms.host;
    if (pass.schid == 0 || !host.getClientID || !host.getClientSelfVariableAsInt) return;
    std::uint16_t ownId = 0;
    if (host.getClientID(pass.schid, &ownId) != 0) return;
    rooms.talk.ownClientId = ownId;
    int flag = 0;
    if (host.getClientSelfVariableAsInt(pass.schid, kClientFlagTalking, &flag) != 0) return;
    talkChanged(rooms.talk, pass.schid, ownId, flag == 1, rooms.clock.tickMs());
}

void readCaptureMode(const Pass& pass, PollMemory& memory, PollRooms& rooms) {
    if (pass.nowMs - memory.lastCaptureRead <= kCaptureReadMs) return;
    std::string text;
    rooms.files.read(joinPath(rooms.dataFolder, kCaptureModeFile), text);
    rooms.outputs.CaptureMode = captureModeOf(text);
    memory.lastCaptureRead = pass.nowMs;
}

}  // namespace

void pollOnce(PollMemory& memory, PollRooms& rooms) {
    Pass pass;
    pass.nowMs = rooms.clock.tickMs();
    pass.settings = copySettings(rooms.settings);
    pass.schid = rooms.currentServer;
    readSimulator(pass, rooms);
    sendCommands(pass, rooms);
    followWhenStill(pass, memory, rooms);
    rooms.outputs.ReceiveGain = receiveGainOf(copySettings(rooms.settings), pass.selected.volume);
    trackOwnTalk(pass, rooms);
    drainTails(rooms.talk, rooms.tails);
    readCaptureMode(pass, memory, rooms);
}

void finishPolling(BridgeOutputs& outputs) {
    outputs.ReceiveGain = 1.0f;
}
