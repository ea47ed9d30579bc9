// simulator_shift.h - the stand-in simulator behind the pipe for a while, at first as it is out of the box and then of
// a personality at random, with somebody at its controls who tunes, swaps, pauses, breaks the connection and worse.
// [host] One owner.
#pragma once
#include <cstdint>
#include <string>
#include "tests/simulator/program_win.h"
#include "tests/soak/dice.h"

class SimulatorShift {
  public:
    explicit SimulatorShift(std::uint64_t seed) : dice_(seed) {}

    bool begin();  // another simulator; false if it does not start
    void end();    // as if it had crashed
    void act();    // something at the controls, if a while has passed; called again and again
    bool isOn() const { return isOn_; }
    std::uint64_t actions() const { return actions_; }
    const std::string& personality() const { return personality_; }

  private:
    std::string actionAtRandom();

    Dice dice_;
    standin::Program program_;
    std::string personality_;
    bool isOn_ = false;
    std::uint64_t nextMs_ = 0;
    std::uint64_t actions_ = 0;
};
