// busy_server.h - the host's side of a busy evening, on a thread of its own: three server tabs with channels and
// people, who talk, send five text messages a second, come and go; tabs that are switched, connections that break and
// come back; moves that are confirmed, refused or never answered. The calls into the plugin are timed.
#pragma once
#include <array>
#include <atomic>
#include <cstdint>
#include <thread>
#include "tests/client/host_model.h"
#include "tests/client/plugin_library_win.h"
#include "tests/soak/dice.h"
#include "tests/soak/pass_watch.h"
#include "tests/soak/shared_times.h"

class BusyServer {
  public:
    // Lays out the servers, all connected, the first in front.
    BusyServer(HostModel& host, const PluginLibrary& plugin, PassWatch& passes, std::uint64_t seed);
    ~BusyServer() { stop(); }
    BusyServer(const BusyServer&) = delete;
    BusyServer& operator=(const BusyServer&) = delete;

    void open();                             // the evening begins; the plugin has been started
    void stop();                             // no event is delivered any more
    SharedTimes& calls() { return calls_; }  // [any] how long the plugin took for each event
    // [any] What has happened so far.
    std::uint64_t texts() const { return texts_; }
    std::uint64_t talks() const { return talks_; }
    std::uint64_t tabSwitches() const { return tabSwitches_; }
    std::uint64_t reconnects() const { return reconnects_; }  // after as many broken connections

  private:
    struct Tab {
        bool isConnected = true;
        std::uint64_t reconnectMs = 0;
    };

    // [host thread] All of these.
    void run();
    void layOut(std::uint64_t schid);
    void deliverEvents();
    void talk();
    void sendText();
    void happen();
    void switchTab();
    void disconnect();
    void reconnectThoseDue();
    void changeChannels();
    void changeRule();
    template <class Call>
    void timed(Call call);
    bool isFrontConnected() const { return tabs_[front_].isConnected; }
    std::uint64_t channelAtRandom();

    HostModel& host_;
    const PluginLibrary& plugin_;
    PassWatch& passes_;
    Dice dice_;
    std::array<Tab, 3> tabs_;
    std::size_t front_ = 0;
    std::uint64_t nextTextMs_ = 0;
    std::uint64_t nextTalkMs_ = 0;
    std::uint64_t nextDeedMs_ = 0;
    std::atomic<bool> isOpen_{false};  // the owner stores, the thread loads
    SharedTimes calls_;
    std::atomic<std::uint64_t> texts_{0}, talks_{0}, tabSwitches_{0}, reconnects_{0};  // the thread stores
    std::thread thread_;
};
