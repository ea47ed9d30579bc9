// flight_rig.h - plugin and worker on the same files and the same clock, with the built-in aircraft.
#pragma once
#include "tests/unit/bridge/rig.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/simulated_aircraft.h"
#include "worker/worker_loop.h"

struct Flight : PollRig {
    Flight() {
        setSettingsFolders(settings, kFolder, "");
        workerAlive = false;  // this one is real
    }
    // Two passes of the worker for each of the plugin's.
    void runFor(std::uint64_t ms) {
        for (std::uint64_t gone = 0; gone < ms; gone += kPollPeriodMs) {
            for (int i = 0; i < 2; i++) {
                clock.advance(kPassMs);
                if (isWorkerRunning) loop.pass(clock.tickMs(), clock.unixSeconds());
            }
            clock.advance(kPollPeriodMs - 2 * kPassMs);
            deliver();
            tryPass(radios, [this] { pollOnce(memory, context); });
        }
    }
    // Milliseconds until the condition holds, at most `mostMs`; -1 if it never did.
    template <class Condition>
    int msUntil(const Condition& holds, int mostMs) {
        for (int ms = 0; ms <= mostMs; ms += static_cast<int>(kPollPeriodMs)) {
            if (holds()) return ms;
            runFor(kPollPeriodMs);
        }
        return -1;
    }
    bool isConnected() { return copySimState(sim).connected; }
    std::int32_t active() { return copySimState(sim).radios[0].active; }
    // As the panel's swap key.
    bool swap() { return enqueue(radios, 1, kSlotSwap, 0.0, -1.0f, clock.tickMs()); }
    std::uint64_t ownChannel() const { return host.ownChannel(1); }

    bool isWorkerRunning = true;
    MemoryFolder folder{files};
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    SimulatedAircraft aircraft{parseFlightScript(""), clock.tickMs()};
    WorkerLoop loop{kFolder, files, folder, aircraft, log};
};

inline constexpr std::uint64_t kTowerOf122800 = 11;
inline constexpr std::uint64_t kGuardOf121500 = 12;
