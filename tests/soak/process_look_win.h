// process_look_win.h - what the process, the plugin's two threads and the worker's process have used. [host] One owner.
#pragma once
#include <atomic>
#include <cstdint>
#include "tests/soak/soak_line.h"

// A thread whose processor time is asked for again and again.
class ThreadLoad {
  public:
    ThreadLoad() = default;
    ~ThreadLoad() { close(); }
    ThreadLoad(const ThreadLoad&) = delete;
    ThreadLoad& operator=(const ThreadLoad&) = delete;

    // Its processor time since the last call by the time that passed; 0 at the first call and for another thread than
    // before. threadId 0: there is none.
    double take(std::uint32_t threadId);

  private:
    void close();

    void* thread_ = nullptr;
    std::uint32_t threadId_ = 0;
    std::uint64_t usedNs_ = 0;
    std::uint64_t lookedNs_ = 0;
};

class ProcessLook {
  public:
    // The worker's process, once it is there; the figures of that one are in the lines from then on.
    explicit ProcessLook(std::uint32_t workerId);
    ~ProcessLook();
    ProcessLook(const ProcessLook&) = delete;
    ProcessLook& operator=(const ProcessLook&) = delete;

    // The loads since the last call; and of a few looks in a tenth of a second the lowest counts, since what is taken
    // for a moment and given back does not grow.
    void fill(SoakLine& line, std::uint32_t uiThread, std::uint32_t pollThread);
    bool isWorkerRunning() const;
    // Stands still from now on, as a worker that hangs; or goes on.
    bool holdWorker();  // false if the system does not let it
    void releaseWorker();

  private:
    double takeProcessLoad();

    void* worker_ = nullptr;
    bool isHeld_ = false;
    ThreadLoad ui_, poll_;
    std::uint64_t usedNs_ = 0;
    std::uint64_t lookedNs_ = 0;
};
