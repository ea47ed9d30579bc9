// command_queue.h - the radio writes on their way to the simulator, oldest first, one written at a time.
// The queue lock guards the list; it is held for a scan or an assignment. The state lock is never taken inside it, and
// files, settings and status lines are touched only after it is released.
#pragma once
#include <deque>
#include <optional>
#include "base/clock.h"
#include "base/data_files.h"
#include "base/mutex.h"
#include "bridge/sim_state.h"
#include "exchange/command_file.h"
#include "settings/settings_store.h"

inline constexpr std::size_t kMaxCommands = 32;
inline constexpr std::uint64_t kCoalesceMs = 300;         // quick turns of a knob become one write
inline constexpr std::uint64_t kQuietAfterWriteMs = 350;  // channel following waits so long after the last turn
inline constexpr std::uint64_t kAckTimeoutMs = 4500;

struct CommandQueue {
    Mutex mutex;
    std::deque<Command> commands GUARDED_BY(mutex);  // at most kMaxCommands
    std::uint64_t lastEnqueueTick GUARDED_BY(mutex) = 0;
};

// [ui] Queues a write, or gives a queued one of the same radio and slot its new value (swaps never merge).
// False with a status text when not connected, the slot is not writable or the queue is full.
bool enqueue(CommandQueue& queue, SharedSimState& sim, std::int32_t com, std::int32_t slot, double value,
             float localVolume, std::uint64_t nowMs);

// [ui] A turn of a frequency knob: the next frequency from the last queued one of the slot, else from the simulator's.
// A step that has no channel to go to sets a status text.
void stepFrequency(CommandQueue& queue, SharedSimState& sim, std::int32_t com, std::int32_t slot, bool wholeMegahertz,
                   std::int32_t steps, std::uint64_t nowMs);

// [any] True while a write is queued or the last turn is younger than kQuietAfterWriteMs.
bool isBusy(CommandQueue& queue, std::uint64_t nowMs);

// [ui] The last queued command of this radio and slot, if any: what is on its way to the simulator.
std::optional<Command> pendingCommand(CommandQueue& queue, std::int32_t com, std::int32_t slot);

// [poll] One pass: writes the oldest command when its time has come, takes its acknowledgement, or gives up on it.
struct CommandWriter {
    DataFiles& files;
    const Clock& clock;
    std::uint32_t processId = 0;  // of the host, first half of every command id
    std::string dataFolder;
};
void processCommands(CommandQueue& queue, SharedSimState& sim, SettingsStore& settings, const CommandWriter& writer);
