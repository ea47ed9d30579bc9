// host_crowd_win.h - the host's threads that live on from load to load: two that play voices and one that tells events,
// as they come from servers, simulator and users. [host] Used from the main thread.
#pragma once
#include <array>
#include <atomic>
#include <cstdint>
#include <thread>
#include "tests/client/plugin_library_win.h"

class HostCrowd {
  public:
    HostCrowd();
    ~HostCrowd();
    HostCrowd(const HostCrowd&) = delete;
    HostCrowd& operator=(const HostCrowd&) = delete;

    // From now on they call the plugin, each every few milliseconds.
    void work(const PluginExports& plugin);
    // Returns when none is in a call, or will begin one.
    void rest();
    std::uint64_t calls() const { return calls_; }

  private:
    struct Member {
        std::atomic<bool> isCalling{false};  // the thread stores, the owner loads
        std::thread thread;
    };
    template <class Call>
    void live(Member& member, const Call& call);
    void playVoices(const PluginExports& plugin, std::uint16_t speaker);
    void tellEvents(const PluginExports& plugin);

    PluginExports plugin_;                             // written only while nobody works
    std::atomic<const PluginExports*> work_{nullptr};  // the owner stores, the threads load
    std::atomic<bool> isLiving_{true};                 // same
    std::atomic<std::uint64_t> calls_{0};              // the threads add
    std::uint16_t turn_ = 0;                           // of the one that tells events
    std::array<Member, 3> members_;
};
