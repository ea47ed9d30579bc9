// flying_worker.h - the worker's loop on files in memory and a clock set by hand, and the plugin's side of those files:
// what is the same whichever stand-in plays the simulator.
#pragma once
#include <gtest/gtest.h>
#include <array>
#include <memory>
#include <string>
#include <vector>
#include "exchange/telemetry_text.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/worker_loop.h"

inline constexpr std::uint64_t kPassEveryMs = 20;

// A radio's slots, all alike.
inline std::array<bool, kSlotCount> allWritable(bool writable) {
    return {writable, writable, writable, writable};
}

class FlyingWorker : public ::testing::Test {
  protected:
    // Takes what the simulators do up to now, and judges the telemetry.
    virtual void flySimulators() = 0;
    virtual void judge() = 0;

    // Before the link is made and handed to takeOff.
    void clearTelemetry() { files.remove("data\\telemetry.json"); }
    void takeOff(SimLink& link) { loop = std::make_unique<WorkerLoop>("data", files, folder, link, log); }

    template <class Condition>
    bool flyUntil(Condition condition, std::uint64_t ms) {
        for (std::uint64_t flown = 0; flown < ms; flown += kPassEveryMs) {
            if (condition()) return true;
            clock.advance(kPassEveryMs);
            flySimulators();
            loop->pass(clock.tickMs(), clock.unixSeconds());
            judge();
        }
        return condition();
    }
    void fly(std::uint64_t ms) {
        flyUntil([] { return false; }, ms);
    }
    Telemetry telemetry() { return parseTelemetry(files.text("data\\telemetry.json")); }

    // Writes the command like the plugin and flies until it is acknowledged.
    Telemetry command(int com, const char* slot, const char* target) {
        const auto id = "1-" + std::to_string(++commands);
        files.put("data\\command.json", commandText(id, com, slot, target, clock.unixSeconds()));
        startedMs = clock.tickMs();
        EXPECT_TRUE(flyUntil([&] { return telemetry().ackId == id; }, 4500)) << slot;
        return telemetry();
    }

    ManualClock clock;
    MemoryFiles files;
    MemoryFolder folder{files};
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    std::unique_ptr<WorkerLoop> loop;
    std::uint64_t startedMs = 0;    // of the last command
    std::uint64_t mayLagMs = 1000;  // how far the telemetry may lag behind the simulator
    int commands = 0;
};
