// radios_rig.h - the link over a transport by hand, and a flight with both radios, as a stock aircraft reports it.
#pragma once
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>
#include "exchange/frequency_grid.h"
#include "tests/unit/worker/simconnect/fake_simulator.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/command_handler.h"
#include "worker/simconnect/simconnect_link.h"

using simconnect::SimConnectLink;

// A flight with both radios, as a stock aircraft reports it.
struct SimConnectRadios : testing::Test {
    FakeTransport* transport = new FakeTransport;  // the link owns it
    FakeSimulator simulator{*transport};
    SimConnectLink link{std::unique_ptr<simconnect::Transport>(transport)};
    ManualClock clock;
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    CommandHandler handler{link, log};
    std::uint64_t nowMs = 50'000;
    std::vector<std::string> notes;
    std::map<std::string, double> cockpit = {
        {"COM ACTIVE FREQUENCY:1", 122.8},
        {"COM STANDBY FREQUENCY:1", 121.5},
        {"COM SPACING MODE:1", 1},
        {"COM VOLUME:1", 80},
        {"COM AVAILABLE:1", 1},
        {"COM STATUS:1", 0},
        {"COM ACTIVE FREQUENCY:2", 118.0},
        {"COM STANDBY FREQUENCY:2", 119.1},
        {"COM SPACING MODE:2", 0},
        {"COM VOLUME:2", 100},
        {"COM AVAILABLE:2", 1},
        {"COM STATUS:2", 0},
    };

    void pass(std::uint64_t ms = 20) {
        nowMs += ms;
        link.poll(nowMs);
        handler.pass(nowMs);
        for (auto& line : link.takeNotes()) notes.push_back(std::move(line));
    }
    void openAndRun() {
        pass();
        simulator.open();
        pass();
        simulator.simState(1);
        pass();
    }
    // All present values, as a rereading reports them, and the answer to what was asked.
    void tellAll() {
        if (answersQuestions) simulator.answerQuestion();
        for (const auto& [name, value] : cockpit) simulator.tell(name, value);
        pass();
    }
    void fly() {
        openAndRun();
        tellAll();
        ASSERT_TRUE(sim().ok) << sim().status;
    }
    void set(const std::string& name, double value) {
        cockpit[name] = value;
        simulator.tell(name, value);
        pass();
    }
    // Seconds of flight in which nothing changes.
    void cruise(std::uint64_t ms) {
        for (std::uint64_t passed = 0; passed < ms; passed += 500) {
            pass(500 - 20);
            tellAll();
        }
    }
    CommandAck command(std::size_t radio, RadioSlot slot, double value) {
        handler.accept({"1-" + std::to_string(++commands), {radio, slot, value}, 0.0}, nowMs);
        return handler.ack();
    }
    // The same, but the aircraft does not react.
    CommandAck ignoredCommand(std::size_t radio, RadioSlot slot, double value) {
        command(radio, slot, value);
        cruise(kReadbackLimitMs);
        return handler.ack();
    }
    const SimSnapshot& sim() const { return link.snapshot(); }
    bool answersQuestions = true;
    int commands = 0;
};
