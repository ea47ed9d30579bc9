// planted_leak_win.h - a leak on purpose, to see the verdict find it. [host] One owner.
#pragma once
#include <atomic>
#include <thread>
#include <vector>
#include "tests/soak/soak_options.h"

class LeakPlanter {
  public:
    explicit LeakPlanter(PlantedLeak kind) : kind_(kind) {}
    ~LeakPlanter();  // ends the threads; the rest goes with the process
    LeakPlanter(const LeakPlanter&) = delete;
    LeakPlanter& operator=(const LeakPlanter&) = delete;

    void grow();  // by one handle, object, window or thread, or by 100 kB

  private:
    const PlantedLeak kind_;
    std::atomic<bool> isOver_{false};
    std::vector<std::thread> threads_;
};
