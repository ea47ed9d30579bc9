#include "bridge/command_queue.h"
#include <algorithm>
#include <utility>
#include "audio/volume_policy.h"
#include "base/number_text.h"
#include "exchange/command_text.h"
#include "exchange/frequency_grid.h"

namespace {

bool isFor(const Command& command, std::int32_t com, std::int32_t slot) {
    return command.com == com && command.slot == slot;
}

bool isSlotWritable(const SimState& state, std::int32_t com, std::int32_t slot) {
    const RadioReading* radio = radioOf(state, com);
    if (!state.connected || !radio || slot < 0 || slot >= kSlotCount) return false;
    return radio->writable[static_cast<std::size_t>(slot)];
}

// Which waiting commands a new one for the same slot may replace.
enum class Merge {
    kWithAny,
    kBehindSwaps,  // none from before a swap of that radio: what was tuned then is the other frequency afterwards
};

// Puts the new value into a waiting command for the same slot; false if there is none.
bool mergeLocked(CommandQueue& queue, const Command& command, Merge merge) REQUIRES(queue.mutex) {
    if (command.slot == kSlotSwap) return false;
    for (auto waiting = queue.commands.rbegin(); waiting != queue.commands.rend(); ++waiting) {
        if (merge == Merge::kBehindSwaps && isFor(*waiting, command.com, kSlotSwap)) return false;
        if (!isFor(*waiting, command.com, command.slot) || waiting->writtenAt != 0) continue;
        waiting->value = command.value;
        waiting->localVolume = command.localVolume;
        waiting->notBefore = command.notBefore;
        return true;
    }
    return false;
}

bool add(CommandQueue& queue, const Command& command, Merge merge, std::uint64_t nowMs) {
    MutexLock lock(queue.mutex);
    if (!mergeLocked(queue, command, merge)) {
        if (queue.commands.size() >= kMaxCommands) return false;
        queue.commands.push_back(command);
    }
    queue.lastEnqueueTick = nowMs;
    return true;
}

// What one pass is to do about the oldest command, decided under the lock and done after its release.
struct NextStep {
    enum Kind { kNothing, kWrite, kSucceeded, kTimedOut } kind = kNothing;
    Command command;
};

// The step to write it. Without memory the command waits as before.
NextStep beginWriteLocked(Command& command, const CommandWriter& writer, std::uint64_t nowMs) {
    NextStep step{NextStep::kWrite, command};
    step.command.id = std::to_string(writer.processId) + '-' + std::to_string(nowMs);
    step.command.writtenAt = nowMs;
    command.id = step.command.id;
    // Marked at once: from here on a newer turn of the knob queues a command of its own.
    command.writtenAt = nowMs;
    return step;
}

NextStep takeAcknowledgedLocked(CommandQueue& queue, bool ackOk) REQUIRES(queue.mutex) {
    const Command& command = queue.commands.front();
    if (ackOk) return {NextStep::kSucceeded, command};
    // The slot refused: its other queued commands are dropped too.
    std::erase_if(queue.commands,
                  [com = command.com, slot = command.slot](const Command& c) { return isFor(c, com, slot); });
    return {};
}

NextStep nextStep(CommandQueue& queue, const SimState& state, const CommandWriter& writer, std::uint64_t nowMs) {
    MutexLock lock(queue.mutex);
    if (!state.connected) queue.commands.clear();
    if (queue.commands.empty()) return {};
    Command& oldest = queue.commands.front();
    if (oldest.writtenAt == 0) {
        if (!isDue(oldest.notBefore, nowMs)) return {};
        return beginWriteLocked(oldest, writer, nowMs);
    }
    if (state.ackId == oldest.id) return takeAcknowledgedLocked(queue, state.ackOk);
    if (nowMs - oldest.writtenAt <= kAckTimeoutMs) return {};
    queue.commands.clear();
    return {NextStep::kTimedOut, {}};
}

void dropCommand(CommandQueue& queue, const std::string& id) {
    MutexLock lock(queue.mutex);
    std::erase_if(queue.commands, [&](const Command& c) { return c.id == id; });
}

// It never reached the file: as if its time had only come now.
void takeBack(CommandQueue& queue, const std::string& id) {
    MutexLock lock(queue.mutex);
    for (Command& command : queue.commands)
        if (command.id == id) command.writtenAt = 0;
}

// As the worker reads it.
CommandRequest requestOf(const Command& command, double createdUnixSeconds) {
    const RadioWrite write{static_cast<std::size_t>(command.com - 1), static_cast<RadioSlot>(command.slot),
                           command.value};
    return {command.id, write, createdUnixSeconds};
}

bool replaceCommandFile(CommandQueue& queue, const CommandWriter& writer, const Command& command) {
    try {
        const auto text = writeCommandText(requestOf(command, writer.clock.unixSeconds()));
        return static_cast<bool>(writer.files.replace(joinPath(writer.dataFolder, kCommandFile), text));
    } catch (...) {  // mostly no memory: the next pass tries again
        takeBack(queue, command.id);
        throw;
    }
}

void writeCommand(CommandQueue& queue, StatusLines& status, const CommandWriter& writer, const Command& command) {
    if (replaceCommandFile(queue, writer, command)) {
        setStatusText(status, "Writing; awaiting simulator readback");
        return;
    }
    dropCommand(queue, command.id);
    setStatusText(status, "Cannot write simulator command");
}

// The simulator now applies any attenuation; only a boost above unity is left to us.
void keepBoost(SettingsStore& settings, const Command& command) {
    if (command.slot != kSlotVolume || !(command.localVolume >= 0.0f)) return;
    updateSettings(settings, [&](Settings& live) { live.receive_volume = boostPercentOf(command.localVolume); });
}

// What the radio has once this command is carried out, too.
void applyCommand(FoldedFrequencies& folded, const Command& command) {
    if (command.slot == kSlotActive) folded.active = {truncateToInt32(command.value), true};
    if (command.slot == kSlotStandby) folded.standby = {truncateToInt32(command.value), true};
    if (command.slot == kSlotSwap) {
        std::swap(folded.active, folded.standby);
        folded.active.isPending = folded.standby.isPending = true;
    }
}

bool queueCommand(SimRadios& radios, Command command, Merge merge, std::uint64_t nowMs) {
    if (!isSlotWritable(copySimState(radios.sim), command.com, command.slot)) {
        setStatusText(radios.status, command.slot == kSlotVolume ? "Volume controlled by simulator"
                                                                 : "Write unavailable / DISCONNECTED");
        return false;
    }
    command.notBefore = command.slot == kSlotSwap ? nowMs : nowMs + kCoalesceMs;
    if (add(radios.commands, command, merge, nowMs)) return true;
    setStatusText(radios.status, "Command queue busy");
    return false;
}

}  // namespace

void forgetRadios(SimRadios& radios) {
    {
        const MutexLock lock(radios.sim.mutex);
        SimState fresh;
        fresh.ackId = std::move(radios.sim.state.ackId);
        radios.sim.state = std::move(fresh);
    }
    {
        const MutexLock lock(radios.commands.mutex);
        radios.commands.commands.clear();
        radios.commands.lastEnqueueTick = 0;
    }
    const MutexLock lock(radios.status.mutex);
    radios.status.texts = {};
}

bool enqueue(SimRadios& radios, std::int32_t com, std::int32_t slot, double value, float localVolume,
             std::uint64_t nowMs) {
    Command command;
    command.com = com;
    command.slot = slot;
    command.value = value;
    command.localVolume = localVolume;
    return queueCommand(radios, command, Merge::kWithAny, nowMs);
}

void stepFrequency(SimRadios& radios, std::int32_t com, std::int32_t slot, bool wholeMegahertz, std::int32_t steps,
                   std::uint64_t nowMs) {
    const SimState state = copySimState(radios.sim);
    std::int32_t next = 0;
    if (const RadioReading* radio = radioOf(state, com)) {
        const auto folded = foldFrequencies(*radio, copyCommands(radios.commands), com, state.ackId);
        const auto start = (slot == kSlotActive ? folded.active : folded.standby).frequencyKHz;
        const FrequencyRange range{state.rangeMin, state.rangeMax};
        next = wholeMegahertz ? stepMegahertz(start, radio->spacing, range, steps)
                              : stepChannel(start, radio->spacing, range, steps);
    }
    if (next == 0) return setStatusText(radios.status, "Radio spacing unavailable or frequency limit");
    Command command;
    command.com = com;
    command.slot = slot;
    command.value = next;
    queueCommand(radios, command, Merge::kBehindSwaps, nowMs);
}

bool isBusy(CommandQueue& queue, std::uint64_t nowMs) {
    MutexLock lock(queue.mutex);
    // Compared by addition: a turn may be younger than the pass's own nowMs.
    return !queue.commands.empty() || !isDue(queue.lastEnqueueTick + kQuietAfterWriteMs, nowMs);
}

Commands copyCommands(CommandQueue& queue) {
    const MutexLock lock(queue.mutex);
    return queue.commands;
}

FoldedFrequencies foldFrequencies(const RadioReading& reading, const Commands& commands, std::int32_t com,
                                  const std::string& ackId) {
    FoldedFrequencies folded = {{reading.active, false}, {reading.standby, false}};
    for (const Command& command : commands) {
        const bool isAnswered = command.writtenAt != 0 && command.id == ackId;
        if (command.com == com && !isAnswered) applyCommand(folded, command);
    }
    return folded;
}

std::optional<Command> pendingCommand(const Commands& commands, std::int32_t com, std::int32_t slot) {
    const auto last =
        std::find_if(commands.rbegin(), commands.rend(), [&](const Command& c) { return isFor(c, com, slot); });
    if (last == commands.rend()) return std::nullopt;
    return *last;
}

void processCommands(SimRadios& radios, SettingsStore& settings, const CommandWriter& writer) {
    const std::uint64_t nowMs = writer.clock.tickMs();
    const NextStep step = nextStep(radios.commands, copySimState(radios.sim), writer, nowMs);
    switch (step.kind) {
        case NextStep::kNothing:
            break;
        case NextStep::kWrite:
            writeCommand(radios.commands, radios.status, writer, step.command);
            break;
        case NextStep::kSucceeded:
            keepBoost(settings, step.command);
            dropCommand(radios.commands, step.command.id);  // last: without memory for the boost it is taken again
            break;
        case NextStep::kTimedOut:
            setStatusText(radios.status, "Write timed out; showing simulator readback");
            break;
    }
}
