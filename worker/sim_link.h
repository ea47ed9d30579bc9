// sim_link.h - what the worker talks to: a simulator, or the built-in aircraft. One thread, the worker's only one.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>
#include "worker/radio_types.h"

class SimLink {
  public:
    virtual ~SimLink() = default;

    // Takes in what has arrived and moves time on. Called every pass, about every 25 ms; must not block.
    virtual void poll(std::uint64_t nowMs) = 0;

    // The state as of the last poll.
    virtual const SimSnapshot& snapshot() const = 0;

    // Sends one write on its way; whether it took effect shows only in a later snapshot. False if it cannot be sent.
    virtual bool write(const RadioWrite& write, std::uint64_t nowMs) = 0;

    // What the link wants in the log since the last call, one line each.
    std::vector<std::string> takeNotes() { return std::exchange(notes_, {}); }

  protected:
    std::vector<std::string> notes_;
};
