// xplane_rig.h - the link over datagrams by hand, and a flight with both radios.
#pragma once
#include <gtest/gtest.h>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>
#include "exchange/frequency_grid.h"
#include "tests/unit/worker/worker_fakes.h"
#include "tests/unit/worker/xplane/fake_xplane.h"
#include "worker/command_handler.h"
#include "worker/xplane/xplane_link.h"

struct XPlaneRadios : testing::Test {
    FakeDatagrams* datagrams = new FakeDatagrams;  // the link owns it
    FakeXPlane sim{*datagrams};
    std::unique_ptr<SimLink> link = std::make_unique<xplane::XPlaneLink>(std::unique_ptr<xplane::Datagrams>(datagrams));
    ManualClock clock;
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    CommandHandler handler{*link, log};
    std::uint64_t nowMs = 50'000;
    std::vector<std::string> notes;
    bool hasBeacon = true;  // while it flies
    bool answers = true;    // the same
    int commands = 0;

    XPlaneRadios() {
        sim.cockpit = {
            {"sim/time/paused", 0.0f},
            {"sim/cockpit2/switches/avionics_power_on", 1.0f},
            {"sim/cockpit2/radios/actuators/com1_frequency_hz_833", 122800.0f},
            {"sim/cockpit2/radios/actuators/com1_standby_frequency_hz_833", 121500.0f},
            {"sim/cockpit2/radios/actuators/audio_volume_com1", 0.8f},
            {"sim/cockpit2/radios/actuators/com1_power", 1.0f},
            {"sim/cockpit2/radios/actuators/com2_frequency_hz_833", 118000.0f},
            {"sim/cockpit2/radios/actuators/com2_standby_frequency_hz_833", 119105.0f},
            {"sim/cockpit2/radios/actuators/audio_volume_com2", 1.0f},
            {"sim/cockpit2/radios/actuators/com2_power", 1.0f},
        };
    }

    // "com1_power" for the whole name.
    float& cockpit(const std::string& ending) {
        for (auto& [name, value] : sim.cockpit) {
            if (name.ends_with(ending)) return value;
        }
        ADD_FAILURE() << ending;
        return sim.cockpit.begin()->second;
    }
    void forget(const std::string& ending) {
        std::erase_if(sim.cockpit, [&](const auto& entry) { return entry.first.ends_with(ending); });
    }
    void pass(std::uint64_t ms = 20) {
        nowMs += ms;
        link->poll(nowMs);
        handler.pass(nowMs);
        for (auto& line : link->takeNotes()) notes.push_back(std::move(line));
    }
    // So long a flight, in which X-Plane answers 30 times a second and is heard once a second.
    void cruise(std::uint64_t ms) {
        for (std::uint64_t passed = 0; passed < ms; passed += 33) {
            if (hasBeacon && nowMs / 1000 != (nowMs + 33) / 1000) sim.sayBeacon();
            if (answers) sim.answer();
            pass(33);
        }
    }
    // Silence: neither beacon nor answers, but a pass every 100 ms.
    void silence(std::uint64_t ms) {
        for (std::uint64_t passed = 0; passed < ms; passed += 100) pass(100);
    }
    void fly() {
        pass();
        sim.sayBeacon();
        pass();
        sim.answer();
        pass();
        sim.answer();
        pass();
        ASSERT_TRUE(shown().ok) << shown().status;
    }
    void set(const std::string& ending, float value) {
        cockpit(ending) = value;
        sim.answer();
        pass();
    }
    CommandAck command(std::size_t radio, RadioSlot slot, double value) {
        handler.accept({"1-" + std::to_string(++commands), {radio, slot, value}, 0.0}, nowMs);
        return handler.ack();
    }
    // The same, but nothing of it is to be seen.
    CommandAck ignoredCommand(std::size_t radio, RadioSlot slot, double value) {
        command(radio, slot, value);
        cruise(kReadbackLimitMs + 40);
        return handler.ack();
    }
    std::string status() const { return (shown().ok ? "ok: " : "no: ") + shown().status; }
    const SimSnapshot& shown() const { return link->snapshot(); }
    std::vector<std::string> writes() {
        sim.listen();
        return sim.writes;
    }
};
