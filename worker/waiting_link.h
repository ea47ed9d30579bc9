// waiting_link.h - the link while no simulator can be reached: down, and saying so. Everything else stays alive.
#pragma once
#include "worker/sim_link.h"

class WaitingLink : public SimLink {
  public:
    WaitingLink() { snapshot_.status = "waiting for the simulator"; }
    void poll(std::uint64_t) override {}
    const SimSnapshot& snapshot() const override { return snapshot_; }
    bool write(const RadioWrite&, std::uint64_t) override { return false; }

  private:
    SimSnapshot snapshot_;
};
