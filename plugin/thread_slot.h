// thread_slot.h - one of the plugin's own threads, or none; and what is said and done when the system gives none.
#pragma once
#include <atomic>
#include <cerrno>
#include <system_error>
#include <thread>
#include "base/host_functions.h"

// A joinable thread or none. Unlike std::thread it may be destroyed while running: if a process ends without shutdown,
// its threads are already gone when our globals are destroyed.
class ThreadSlot {
  public:
    ThreadSlot() = default;
    ~ThreadSlot() {
        if (thread_.joinable()) thread_.detach();
    }
    ThreadSlot(const ThreadSlot&) = delete;
    ThreadSlot& operator=(const ThreadSlot&) = delete;

    bool isRunning() const { return thread_.joinable(); }
    // Only while not running. 0, or why there is no thread: the system's code, ENOMEM when memory has run out, also at
    // a second try.
    template <class Body>
    int start(const Body& body) noexcept {
        const int error = tryStart(body);
        return error == ENOMEM ? tryStart(body) : error;
    }
    void join() {
        if (thread_.joinable()) thread_.join();
    }

  private:
    template <class Body>
    int tryStart(const Body& body) noexcept {
        try {
            thread_ = std::thread(body);
            return 0;
        } catch (const std::system_error& error) {
            return error.code().value();
        } catch (...) {
            return ENOMEM;
        }
    }

    std::thread thread_;
};

// Starts the thread with its stop flag cleared. Without a thread the flag is as it was; the result is that of start.
template <class Body>
int startWithStopFlag(ThreadSlot& slot, std::atomic<bool>& stop, const Body& body) noexcept {
    const bool before = stop.exchange(false);
    const int error = slot.start(body);
    if (error != 0) stop = before;
    return error;
}

// [any] One line in the host's log. Needs no memory: that may be what was missing.
void logMissingThread(const HostFunctions& host, const char* name, int error) noexcept;
