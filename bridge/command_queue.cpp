#include "bridge/command_queue.h"
#include <algorithm>
#include "exchange/frequency_grid.h"

namespace {

constexpr float kUnityVolumePercent = 80.0f;

bool isFor(const Command& command, std::int32_t com, std::int32_t slot) {
    return command.com == com && command.slot == slot;
}

bool isSlotWritable(const SimState& state, std::int32_t com, std::int32_t slot) {
    const RadioReading* radio = radioOf(state, com);
    if (!state.connected || !radio || slot < 0 || slot >= kSlotCount) return false;
    return radio->writable[static_cast<std::size_t>(slot)];
}

// Takes the new value into a waiting command of the same slot; false if there is none.
bool mergeLocked(CommandQueue& queue, const Command& command) REQUIRES(queue.mutex) {
    if (command.slot == kSlotSwap) return false;
    for (auto& waiting : queue.commands) {
        if (!isFor(waiting, command.com, command.slot) || waiting.writtenAt != 0) continue;
        waiting.value = command.value;
        waiting.localVolume = command.localVolume;
        waiting.notBefore = command.notBefore;
        return true;
    }
    return false;
}

bool add(CommandQueue& queue, const Command& command, std::uint64_t nowMs) {
    MutexLock lock(queue.mutex);
    if (!mergeLocked(queue, command)) {
        if (queue.commands.size() >= kMaxCommands) return false;
        queue.commands.push_back(command);
    }
    queue.lastEnqueueTick = nowMs;
    return true;
}

// What one pass has to do with the oldest command, decided under the lock and done after it.
struct NextStep {
    enum Kind { Nothing, Write, Succeeded, TimedOut } kind = Nothing;
    Command command;
};

void assignIdLocked(Command& command, const CommandWriter& writer, std::uint64_t nowMs) {
    command.id = std::to_string(writer.processId) + '-' + std::to_string(nowMs);
    // Marked at once: from here on a newer turn of the knob queues a command of its own.
    command.writtenAt = nowMs;
}

NextStep takeAcknowledgedLocked(CommandQueue& queue, bool ackOk) REQUIRES(queue.mutex) {
    const Command command = queue.commands.front();
    if (ackOk) {
        queue.commands.pop_front();
        return {NextStep::Succeeded, command};
    }
    // A refused slot stays refused: nothing else is sent there.
    std::erase_if(queue.commands, [&](const Command& c) { return isFor(c, command.com, command.slot); });
    return {};
}

NextStep nextStep(CommandQueue& queue, const SimState& state, const CommandWriter& writer, std::uint64_t nowMs) {
    MutexLock lock(queue.mutex);
    if (!state.connected) queue.commands.clear();
    if (queue.commands.empty()) return {};
    Command& oldest = queue.commands.front();
    if (oldest.writtenAt == 0) {
        if (nowMs < oldest.notBefore) return {};
        assignIdLocked(oldest, writer, nowMs);
        return {NextStep::Write, oldest};
    }
    if (state.ackId == oldest.id) return takeAcknowledgedLocked(queue, state.ackOk);
    if (nowMs - oldest.writtenAt <= kAckTimeoutMs) return {};
    queue.commands.clear();
    return {NextStep::TimedOut, {}};
}

void dropCommand(CommandQueue& queue, const std::string& id) {
    MutexLock lock(queue.mutex);
    std::erase_if(queue.commands, [&](const Command& c) { return c.id == id; });
}

void writeCommand(CommandQueue& queue, SharedSimState& sim, const CommandWriter& writer, const Command& command) {
    const auto text = writeCommandText(command, writer.clock.unixSeconds());
    if (writer.files.replace(joinPath(writer.dataFolder, kCommandFile), text)) {
        setStatusText(sim, "Writing; awaiting simulator readback");
        return;
    }
    dropCommand(queue, command.id);
    setStatusText(sim, "Cannot write simulator command");
}

// The simulator now carries any attenuation; only a boost above unity stays ours.
void keepBoost(SettingsStore& settings, const Command& command) {
    if (command.slot != kSlotVolume || !(command.localVolume >= 0.0f)) return;
    const float volume = std::max(command.localVolume, kUnityVolumePercent);
    updateSettings(settings, [&](Settings& live) { live.receive_volume = volume; });
}

std::int32_t startFrequency(CommandQueue& queue, const RadioReading& radio, std::int32_t com, std::int32_t slot) {
    if (const auto pending = pendingCommand(queue, com, slot)) return static_cast<std::int32_t>(pending->value);
    return slot == kSlotActive ? radio.active : radio.standby;
}

}  // namespace

bool enqueue(CommandQueue& queue, SharedSimState& sim, std::int32_t com, std::int32_t slot, double value,
             float localVolume, std::uint64_t nowMs) {
    const SimState state = copySimState(sim);
    if (!isSlotWritable(state, com, slot)) {
        setStatusText(sim, slot == kSlotVolume ? "Volume controlled by simulator" : "Write unavailable / DISCONNECTED");
        return false;
    }
    Command command;
    command.com = com;
    command.slot = slot;
    command.value = value;
    command.localVolume = localVolume;
    command.notBefore = slot == kSlotSwap ? nowMs : nowMs + kCoalesceMs;
    if (add(queue, command, nowMs)) return true;
    setStatusText(sim, "Command queue busy");
    return false;
}

void stepFrequency(CommandQueue& queue, SharedSimState& sim, std::int32_t com, std::int32_t slot, bool wholeMegahertz,
                   std::int32_t steps, std::uint64_t nowMs) {
    const SimState state = copySimState(sim);
    std::int32_t next = 0;
    if (const RadioReading* radio = radioOf(state, com)) {
        const auto start = startFrequency(queue, *radio, com, slot);
        const FrequencyRange range{state.rangeMin, state.rangeMax};
        next = wholeMegahertz ? stepMegahertz(start, radio->spacing, range, steps)
                              : stepChannel(start, radio->spacing, range, steps);
    }
    if (next == 0)
        setStatusText(sim, "Radio spacing unavailable or frequency limit");
    else
        enqueue(queue, sim, com, slot, next, -1.0f, nowMs);
}

bool isBusy(CommandQueue& queue, std::uint64_t nowMs) {
    MutexLock lock(queue.mutex);
    // Compared by addition: a turn may be younger than the pass's own nowMs.
    return !queue.commands.empty() || nowMs < queue.lastEnqueueTick + kQuietAfterWriteMs;
}

std::optional<Command> pendingCommand(CommandQueue& queue, std::int32_t com, std::int32_t slot) {
    MutexLock lock(queue.mutex);
    const auto last = std::find_if(queue.commands.rbegin(), queue.commands.rend(),
                                   [&](const Command& c) { return isFor(c, com, slot); });
    if (last == queue.commands.rend()) return std::nullopt;
    return *last;
}

void processCommands(CommandQueue& queue, SharedSimState& sim, SettingsStore& settings, const CommandWriter& writer) {
    const std::uint64_t nowMs = writer.clock.tickMs();
    const NextStep step = nextStep(queue, copySimState(sim), writer, nowMs);
    switch (step.kind) {
        case NextStep::Nothing:
            break;
        case NextStep::Write:
            writeCommand(queue, sim, writer, step.command);
            break;
        case NextStep::Succeeded:
            keepBoost(settings, step.command);
            break;
        case NextStep::TimedOut:
            setStatusText(sim, "Write timed out; showing simulator readback");
            break;
    }
}
