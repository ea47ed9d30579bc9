// random_schedule.h - chance for threads: what each does next, and where it is held up. A seed gives each thread its
// own sequence; how the threads meet is up to the machine, and the delays see to it that they meet everywhere.
#pragma once
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include "tests/unit/fakes.h"

// Of the calling thread. A thread that has not begun one is never held up.
class Schedule {
  public:
    static void begin(std::uint32_t seed, std::uint32_t thread) { state() = seed * 2654435761U + thread * 40503U + 1; }

    // Below limit, all about equally likely.
    static std::uint32_t below(std::uint32_t limit) {
        std::uint32_t& x = state();
        x ^= x << 13U;
        x ^= x >> 17U;
        x ^= x << 5U;
        return (x >> 8U) % limit;
    }
    static bool oneIn(std::uint32_t n) { return below(n) == 0; }

    // Where another thread may well come in between: nothing, a few turns of the processor, or the rest of the slice.
    static void meet() {
        if (state() == 0) return;
        switch (below(8)) {
            case 0:
                std::this_thread::yield();
                break;
            case 1:
                for (auto turns = below(2000); turns > 0; turns--) std::atomic_signal_fence(std::memory_order_seq_cst);
                break;
            case 2:
                for (auto turns = below(20); turns > 0; turns--) std::this_thread::yield();
                break;
            default:
                break;
        }
    }

  private:
    static std::uint32_t& state() {
        thread_local std::uint32_t state = 0;
        return state;
    }
};

// A number from the environment, for runs longer than a test's; otherwise usual.
inline std::uint32_t wantedNumber(const char* name, std::uint32_t usual) {
    const char* const text = std::getenv(name);
    return text ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : usual;
}

class MeetingClock : public ManualClock {
  public:
    std::uint64_t tickMs() const override {
        Schedule::meet();
        return ManualClock::tickMs();
    }
    double unixSeconds() const override {
        Schedule::meet();
        return ManualClock::unixSeconds();
    }
};

class MeetingFiles : public MemoryFiles {
  protected:
    FileResult readOnce(const std::string& path, std::size_t maxBytes, std::string& bytes) override {
        Schedule::meet();
        return MemoryFiles::readOnce(path, maxBytes, bytes);
    }
    FileResult writeOnce(const std::string& path, std::string_view bytes, bool isFlushed) override {
        Schedule::meet();
        return MemoryFiles::writeOnce(path, bytes, isFlushed);
    }
    FileResult moveOnce(const std::string& from, const std::string& to, bool isReplacing) override {
        Schedule::meet();
        return MemoryFiles::moveOnce(from, to, isReplacing);
    }
};
