// queue_rig.h - the command queue with its surroundings, driven by hand: enqueue and process at chosen ticks.
#pragma once
#include <gtest/gtest.h>
#include "exchange/command_text.h"
#include "tests/unit/bridge/rig.h"

// Does something at the moment a file is written, as another thread might.
class InterruptedFiles : public MemoryFiles {
  public:
    std::function<void()> whileWriting;  // once

  protected:
    FileResult writeOnce(const std::string& path, std::string_view bytes, bool isFlushed) override {
        const auto meanwhile = std::exchange(whileWriting, {});
        if (meanwhile) meanwhile();
        return MemoryFiles::writeOnce(path, bytes, isFlushed);
    }
};

class QueueTest : public testing::Test {
  protected:
    QueueTest() {
        setState(sim, connectedState());
        setStatusText(radios.status, "CONNECTED");
    }

    bool add(std::int32_t com, std::int32_t slot, double value, float localVolume = -1.0f) {
        return enqueue(radios, com, slot, value, localVolume, clock.tickMs());
    }
    void step(std::int32_t com, std::int32_t slot, bool wholeMegahertz, std::int32_t steps) {
        stepFrequency(radios, com, slot, wholeMegahertz, steps, clock.tickMs());
    }
    void process() { processCommands(radios, settings, {files, clock, kHostProcess, kFolder}); }
    void processAfter(std::uint64_t ms) {
        clock.advance(ms);
        process();
    }
    // As if the worker had handled the command last written.
    void acknowledge(bool ok) {
        MutexLock lock(sim.mutex);
        sim.state.ackId = lastWrittenId();
        sim.state.ackOk = ok;
    }
    std::string lastWrittenId() {
        const std::string text = written();
        const auto start = text.find(R"("id":")") + 6;
        return text.substr(start, text.find('"', start) - start);
    }
    std::string written() { return files.text(pathOf(kCommandFile)); }
    int writes() const { return files.replaces; }
    void connect(bool connected) {
        MutexLock lock(sim.mutex);
        sim.state.connected = connected;
    }
    std::string status() { return copyStatus(radios.status).statusText; }
    std::size_t size() { return commandsOf(queue).size(); }
    Command only() {
        const auto commands = commandsOf(queue);
        EXPECT_EQ(commands.size(), 1U);
        return commands.empty() ? Command{} : commands.front();
    }

    ManualClock clock;
    InterruptedFiles files;
    SettingsStore settings{files};
    SimRadios radios;
    SharedSimState& sim = radios.sim;
    CommandQueue& queue = radios.commands;
};
