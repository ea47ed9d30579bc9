// withheld_time_win.h - how much time the machine has withheld from this process: what threads that only wait for each
// other lost because neither they nor those who serve them were run. A busy machine makes everything slower; this says
// by how much, so that a time limit can be judged beside other work.
// Two threads hand a turn back and forth through the system, with 5 ms of sleep in between. A beat that takes longer
// than kGrainMs was held up, and what is beyond the 5 ms counts as withheld. On an idle machine that is nothing.
#pragma once
#include <atomic>
#include <cstdint>
#include <thread>

class WithheldTime {
  public:
    WithheldTime();
    ~WithheldTime();
    WithheldTime(const WithheldTime&) = delete;
    WithheldTime& operator=(const WithheldTime&) = delete;

    // [any] Milliseconds since this object began, with those of the beat that is under way.
    double ms() const;

  private:
    static constexpr double kBeatMs = 5.0;
    static constexpr double kGrainMs = 20.0;  // the coarsest sleep of the systems we know is 16 ms

    void beat();
    void answer();

    void* asked_;  // events; each thread waits for one
    void* answered_;
    std::atomic<bool> isLiving_{true};         // the owner stores
    std::atomic<std::int64_t> withheldUs_{0};  // of whole beats; the first thread stores
    std::atomic<std::int64_t> begunUs_;        // of the present beat; same
    std::thread first_;
    std::thread second_;
};

// Since some start, from the system's finest clock.
std::int64_t fineUs();
