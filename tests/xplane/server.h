// server.h - a stand-in X-Plane that runs: its sockets and its frames, on a thread of its own in real time.
#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>
#include "base/mutex.h"
#include "tests/xplane/simulator.h"
#include "tests/xplane/sockets.h"

namespace xstandin {

class Server {
  public:
    // Called on the server's thread for each report, with no lock held.
    using Listener = std::function<void(const Report&)>;

    struct Places {
        Endpoint own{kLoopback, 0};  // that it listens on; port 0 takes a free one
        Endpoint beacon{};           // that its beacon goes to; none with port 0
        std::string computer = "simpc";
    };

    explicit Server(const Personality& personality, Listener listener = {});
    ~Server();  // ends without a word

    // Once. Returns its port; 0 if that cannot be had.
    std::uint16_t start(const Places& places);
    // From then on nobody gets an answer.
    void stop();

    // [any thread] Does one action (script.h) at once. False with the reason in error.
    bool act(std::string_view line, std::string& error);
    // [any thread] Plays a script from now on.
    void play(std::vector<TimedAction> script);
    // [any thread] After the action "exit".
    bool isOver() const { return isOver_; }
    // [any thread] The texts of all reports so far.
    std::vector<std::string> reports() const;

    // [any thread] Milliseconds of the clock that reports are stamped with.
    static std::uint64_t nowMs();

  private:
    void run();

    const std::unique_ptr<Sockets> sockets_;  // once started, for its thread only, except wake
    const Personality& personality_;
    const Listener listener_;
    mutable Mutex mutex_;  // held for one round of the server, never while it waits or sends
    std::unique_ptr<Simulator> simulator_ GUARDED_BY(mutex_);  // none before start
    std::vector<std::string> reports_ GUARDED_BY(mutex_);
    std::atomic<bool> stops_{false};
    std::atomic<bool> isOver_{false};
    std::thread thread_;
};

}  // namespace xstandin
