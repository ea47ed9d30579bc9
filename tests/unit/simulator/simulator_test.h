// simulator_test.h - a test with a stand-in simulator and one client of it, already opened.
#pragma once
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>
#include "tests/unit/simulator/visitor.h"

// The answers' ids on the wire.
inline constexpr std::uint32_t kExceptionId = 1, kOpenId = 2, kQuitId = 3, kEventId = 4, kFileId = 6, kDataId = 8,
                               kStateId = 15;

class SimulatorTest : public ::testing::Test {
  protected:
    void begin(const char* personality, std::uint32_t version = 5) {
        ASSERT_NE(standin::findPersonality(personality), nullptr);
        simulator = std::make_unique<standin::Simulator>(*standin::findPersonality(personality), nowMs);
        visitor = std::make_unique<Visitor>(*simulator, nowMs);
        visitor->open(version);
    }
    void act(const char* line) {
        standin::Action action;
        std::string error;
        ASSERT_TRUE(standin::parseAction(line, action, error) && simulator->act(action, nowMs, error))
            << line << ": " << error;
    }
    // Two frames of flight, then the value as a number; -1000 without an answer.
    double read(const char* variable, const char* units) {
        const auto id = nextId_++;
        visitor->define(id, variable, units);
        visitor->request({id, id, 0, standin::kOnce, 0, 0, 0, 0});
        visitor->forget();
        visitor->fly(70);
        const auto answers = visitor->packets(kDataId);
        return answers.size() == 1 && answers[0].u32(12) == id ? answers[0].f64(40) : -1000.0;
    }
    void write(const char* event, std::uint32_t data) {
        const auto id = nextId_++;
        visitor->mapEvent(id, event);
        visitor->transmit(id, data);
    }

    std::uint64_t nowMs = 50'000;
    std::unique_ptr<standin::Simulator> simulator;
    std::unique_ptr<Visitor> visitor;

  private:
    std::uint32_t nextId_ = 1000;
};
