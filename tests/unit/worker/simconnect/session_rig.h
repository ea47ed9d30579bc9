// session_rig.h - a session with three variables and two key events, and the other end of it by hand.
#pragma once
#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <string>
#include <vector>
#include "tests/unit/worker/simconnect/fake_simulator.h"
#include "worker/simconnect/session.h"

namespace sc = simconnect;

inline constexpr std::array<sc::Variable, 3> kThree = {{{"ALPHA", "MHz", sc::DataType::kFloat64},
                                                        {"BETA", "Enum", sc::DataType::kInt32},
                                                        {"GAMMA", "Percent", sc::DataType::kFloat64}}};
inline constexpr std::array<const char*, 2> kTwo = {"FIRST_SET", "SECOND_SET"};

struct SimConnectSession : testing::Test {
    FakeTransport transport;
    FakeSimulator simulator{transport};
    sc::Session session{transport, {kThree, kTwo}};
    std::uint64_t nowMs = 100'000;
    std::vector<std::string> notes;

    void pass(std::uint64_t ms = 20) {
        nowMs += ms;
        session.poll(nowMs);
        for (auto& line : session.takeNotes()) notes.push_back(std::move(line));
    }
    void open() {
        pass();
        simulator.open();
        pass();
    }
    void fly() {
        open();
        simulator.simState(1);
        pass();
    }
    std::uint32_t protocol() const { return u32At(transport.sent.at(0), 4); }
    bool noted(const std::string& part) const {
        return std::any_of(notes.begin(), notes.end(),
                           [&](const std::string& line) { return line.find(part) != std::string::npos; });
    }
    sc::Reading::State stateOf(std::size_t variable) const { return session.reading(variable).state; }
};
