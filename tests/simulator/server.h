// server.h - a stand-in simulator that runs: its connections and its frames, on a thread of its own in real time.
#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>
#include "base/mutex.h"
#include "tests/simulator/connections.h"
#include "tests/simulator/simulator.h"

namespace standin {

inline constexpr const char* kSimulatorPipe = "Microsoft Flight Simulator\\SimConnect";

class Server {
  public:
    // Called on the server's thread for each report, with no lock held.
    using Listener = std::function<void(const Report&)>;

    explicit Server(const Personality& personality, Listener listener = {});
    ~Server();  // closes all connections without a word

    // Before start(). As in Connections.
    std::uint16_t listenTcp(std::uint16_t port, Loopback loopback = Loopback::kIPv4) {
        return connections_->listenTcp(port, loopback);
    }
    bool listenPipe(const std::string& name) { return connections_->listenPipe(name); }
    void start();
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
    void takeIn(const std::vector<ConnectionEvent>& events) REQUIRES(mutex_);

    const std::unique_ptr<Connections> connections_;  // once started, for its thread only, except wake
    const Listener listener_;
    mutable Mutex mutex_;  // held for one round of the server, never while it waits or writes
    Simulator simulator_ GUARDED_BY(mutex_);
    std::vector<std::string> reports_ GUARDED_BY(mutex_);
    std::map<int, int> clients_;       // connection to client; server's thread
    std::map<int, int> connectionOf_;  // and back
    std::atomic<bool> stops_{false};
    std::atomic<bool> isOver_{false};
    std::thread thread_;
};

}  // namespace standin
