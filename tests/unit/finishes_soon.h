// finishes_soon.h - proves that a lock is free: a call that needs it returns while its caller waits.
#pragma once
#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <utility>

// One call on a thread of its own. The destructor joins it: a call that waits for a lock ends once the lock is free.
class CallAside {
  public:
    CallAside() = default;
    ~CallAside() {
        if (thread_.joinable()) thread_.join();
    }
    CallAside(const CallAside&) = delete;
    CallAside& operator=(const CallAside&) = delete;

    // False if the call has not returned after five seconds. Once per object.
    bool finishesSoon(std::function<void()> call) {
        std::packaged_task<void()> task(std::move(call));
        auto done = task.get_future();
        thread_ = std::thread(std::move(task));
        return done.wait_for(std::chrono::seconds(5)) == std::future_status::ready;
    }

  private:
    std::thread thread_;
};
