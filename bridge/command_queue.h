// command_queue.h - the radio writes on their way to the simulator, oldest first, one written at a time.
// The queue lock guards the list; it is held for a scan or an assignment. The state lock is never taken inside it, and
// files, settings and status lines are touched only after it is released.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>
#include "base/clock.h"
#include "base/data_files.h"
#include "base/mutex.h"
#include "bridge/sim_state.h"
#include "bridge/status_lines.h"
#include "settings/settings_store.h"

inline constexpr std::size_t kMaxCommands = 32;
inline constexpr std::uint64_t kCoalesceMs = 300;         // quick turns of a knob become one write
inline constexpr std::uint64_t kQuietAfterWriteMs = 350;  // channel following waits this long after the last turn
inline constexpr std::uint64_t kAckTimeoutMs = 4500;

// One write that the panel asked for.
struct Command {
    std::int32_t com = 1;         // 1 COM1, 2 COM2
    std::int32_t slot = 0;        // RadioSlot
    double value = 0.0;           // kHz, or volume 0..1, or 0 for a swap
    float localVolume = -1.0f;    // volume commands: the panel's volume in percent, 80 is unity; -1 otherwise
    std::string id;               // given when written: "<host process id>-<tick ms>"
    std::uint64_t notBefore = 0;  // tick ms, earliest time to write it
    std::uint64_t writtenAt = 0;  // tick ms, 0 until written
};
// Oldest first. The panel copies them at each tick: an empty one allocates nothing.
using Commands = std::vector<Command>;

struct CommandQueue {
    Mutex mutex;
    Commands commands GUARDED_BY(mutex);  // at most kMaxCommands
    std::uint64_t lastEnqueueTick GUARDED_BY(mutex) = 0;
};

// Everything the plugin knows of the simulator's radios and asks of them. Each part has its own lock.
struct SimRadios {
    SharedSimState sim;
    CommandQueue commands;
    StatusLines status;
};

// [host] With no thread of ours running: no connection, nothing queued and both lines as at first. What the worker has
// acknowledged stays known: its file of before may still be there, and that is no news.
void forgetRadios(SimRadios& radios);

// [ui] Queues a write, or gives a queued one of the same radio and slot its new value (swaps never merge).
// Returns false and sets a status text when there is no connection, the slot is not writable or the queue is full.
bool enqueue(SimRadios& radios, std::int32_t com, std::int32_t slot, double value, float localVolume,
             std::uint64_t nowMs);

// [ui] A turn of a frequency knob: steps on from what the radio will have there (foldFrequencies) and queues the result
// as enqueue does, except that a command from before a swap keeps its value. A step that leads to no channel sets a
// status text.
void stepFrequency(SimRadios& radios, std::int32_t com, std::int32_t slot, bool wholeMegahertz, std::int32_t steps,
                   std::uint64_t nowMs);

// [any] True while a write is queued or the last turn is younger than kQuietAfterWriteMs.
bool isBusy(CommandQueue& queue, std::uint64_t nowMs);

// [any] What is queued and what is on its way to the simulator.
Commands copyCommands(CommandQueue& queue);

// One of a radio's two frequencies once all writes on their way are carried out.
struct FoldedFrequency {
    std::int32_t frequencyKHz = 0;  // 0 unknown
    bool isPending = false;         // a write has changed or moved it
};
struct FoldedFrequencies {
    FoldedFrequency active;
    FoldedFrequency standby;
};
// Those of the radio com (1, 2), whose reading is the first argument: what the panel shows, and what a knob starts
// from. A command that ackId, the simulator's latest answer, belongs to is part of the reading already.
FoldedFrequencies foldFrequencies(const RadioReading& reading, const Commands& commands, std::int32_t com,
                                  const std::string& ackId);

// The last command of this radio and slot, if any.
std::optional<Command> pendingCommand(const Commands& commands, std::int32_t com, std::int32_t slot);

// [poll] One pass: writes the oldest command when its time has come, takes its acknowledgement, or gives up on it.
struct CommandWriter {
    DataFiles& files;
    const Clock& clock;
    std::uint32_t processId = 0;  // of the host, first half of every command id
    std::string dataFolder;
};
void processCommands(SimRadios& radios, SettingsStore& settings, const CommandWriter& writer);
