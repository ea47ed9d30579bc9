// simulator.h - a stand-in X-Plane: takes datagrams, answers them, announces itself; with a cockpit that scripts and
// pilots work. Knows no sockets and no clock: both come in as arguments. One thread at a time.
#pragma once
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>
#include "tests/xplane/datagrams.h"
#include "tests/xplane/oddities.h"
#include "tests/xplane/personality.h"
#include "tests/xplane/requests.h"
#include "tests/xplane/rough_network.h"
#include "tests/xplane/script.h"

namespace xstandin {

inline constexpr std::uint64_t kBeaconEveryMs = 1000;
inline constexpr std::uint64_t kRedrawMs = 100;  // after a write, until an aircraft's own panel has its way again

struct Report {
    std::uint64_t atMs;
    std::string text;
};

class Simulator {
  public:
    // port and computer are what its beacon says.
    Simulator(const Personality& personality, std::uint16_t port, const std::string& computer, std::uint64_t nowMs);

    // A datagram has arrived. What it asks for begins with the next frame.
    void receive(const Endpoint& from, std::string_view bytes, std::uint64_t nowMs);

    // Flies all frames up to nowMs.
    void advance(std::uint64_t nowMs);
    std::uint64_t nextFrameMs() const;

    // A script's seconds count from nowMs.
    void play(std::vector<TimedAction> script, std::uint64_t nowMs);
    // False with the reason in error if a name does not exist.
    bool act(const Action& action, std::uint64_t nowMs, std::string& error);

    std::vector<Datagram> takeOutput();
    std::vector<Report> takeReports();
    bool isReachable() const { return nowMs_ >= reachableMs_; }  // else nobody has its port
    bool isOver() const { return isOver_; }
    const Cockpit& cockpit() const { return cockpit_; }
    std::size_t requestsOf(const Endpoint& client) const { return requests_.count(client); }

  private:
    struct Timeline {
        std::vector<TimedAction> steps;
        std::size_t next = 0;
        std::uint64_t startMs = 0;
    };
    struct PendingWrite {
        Request request;
        std::uint64_t dueMs;
    };
    struct Redraw {
        std::array<Radio, kRadios> radios;
        std::uint64_t dueMs;
    };

    bool isReading() const { return nowMs_ >= stutterEndMs_; }
    bool isDropping() const { return nowMs_ < dropEndMs_; }
    bool isFrozen() const { return cockpit_.isPaused && personality_->freezesInPause; }
    bool exists(std::string_view name) const;

    void takeIn(std::vector<Datagram> arrived);
    void handle(const Endpoint& from, std::string_view bytes);
    void ask(const Endpoint& from, const Request& request);
    void beginScript();
    void flyFrame();
    void playTimelines();
    void applyWrites();
    void apply(const Request& request);
    void sendBeacon();
    void sendReadings();
    std::vector<Reading> readingsOf(const std::vector<Requests::Due>& due) const;
    void send(Way way, const Endpoint& to, std::string bytes);
    void actOnRadio(const Action& action);
    void leave(ActionKind how, std::uint64_t awayMs);
    void become(const Personality& personality);
    void remark(const std::string& text);

    const Personality* personality_;
    Beacon beacon_;
    std::uint64_t nowMs_;
    std::uint64_t startMs_;
    std::uint64_t frame_ = 0;  // flown so far
    Cockpit cockpit_;
    Habits habits_;
    std::map<std::string, float, std::less<>> shown_;  // values that are said to be something else
    bool isFlightRunning_ = true;
    bool isAnnounced_ = true;
    bool takesConnections_ = true;
    bool wasAsked_ = false;
    bool isOver_ = false;
    std::uint32_t writeDelayMs_ = 0;
    std::uint64_t reachableMs_ = 0;
    std::uint64_t stutterEndMs_ = 0;
    std::uint64_t dropEndMs_ = 0;
    std::uint64_t oddEndMs_ = 0;
    std::uint64_t beaconMs_;  // of the next one
    Oddity oddity_ = Oddity::kNan;
    Roughness roughness_;
    RoughNetwork in_{1};
    RoughNetwork out_{2};
    Requests requests_;
    std::deque<Timeline> timelines_;
    std::deque<PendingWrite> pending_;
    std::deque<Redraw> redraws_;
    std::vector<Datagram> unread_;
    std::vector<Datagram> output_;
    std::vector<Report> reports_;
};

}  // namespace xstandin
