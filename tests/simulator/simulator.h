// simulator.h - the stand-in simulator: an aircraft, a flight script, and any number of clients, at 30 frames a second.
// It takes bytes and the time and gives bytes back; whoever runs it owns the pipe or the sockets.
// One thread. Times are milliseconds of any clock that does not step back.
#pragma once
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include "tests/simulator/rough_line.h"
#include "tests/simulator/script.h"
#include "tests/simulator/session.h"

namespace standin {

inline constexpr double kFramesPerSecond = 30.0;

struct Output {
    int client = 0;
    std::string bytes;    // to be written in one call
    bool isLast = false;  // then the connection is closed
};

struct Report {
    std::uint64_t atMs = 0;
    std::string text;  // one line: "client 1 event COM_STBY_RADIO_SET_HZ 121800000"
};

class Simulator : private SimulatorDesk {
  public:
    Simulator(const Personality& personality, std::uint64_t nowMs);

    // Clients. A connection that an Output has closed is already forgotten.
    int connect(std::uint64_t nowMs);  // its number, from 1
    void receive(int client, std::string_view bytes, std::uint64_t nowMs);
    void disconnect(int client, std::uint64_t nowMs);

    // Flies all frames up to nowMs.
    void advance(std::uint64_t nowMs);
    std::uint64_t nextFrameMs() const;

    // A script's seconds count from nowMs.
    void play(std::vector<TimedAction> script, std::uint64_t nowMs);
    // False with the reason in error if a name does not exist.
    bool act(const Action& action, std::uint64_t nowMs, std::string& error);

    std::vector<Output> takeOutput();
    std::vector<Report> takeReports();
    bool isReachable() const { return nowMs_ >= reachableMs_; }  // else nobody listens
    bool isOver() const { return isOver_; }
    const Aircraft& aircraft() const override { return isFlightRunning_ ? aircraft_ : menu_; }

  private:
    struct Client {
        std::unique_ptr<Session> session;
        RoughLine line{0};
        std::string unread;
    };
    struct Timeline {
        std::vector<TimedAction> steps;
        std::size_t next = 0;
        std::uint64_t startMs = 0;
    };
    struct PendingWrite {
        const KeyEvent* event;
        std::uint32_t data;
        std::uint64_t dueMs;
    };

    void onOpened(const std::string& clientName, std::uint32_t version) override;
    void onKeyEvent(const KeyEvent& event, std::uint32_t data) override;
    void report(const std::string& text) override;
    bool isFlightRunning() const override { return isFlightRunning_; }
    bool isPaused() const override { return isPaused_; }
    bool isReading() const { return nowMs_ >= stutterEndMs_ && nowMs_ >= deafEndMs_; }
    bool isFrozen() const { return isPaused_ && personality_->freezesInPause; }

    void flyFrame();
    void playTimelines();
    void readOn();
    void reportLoaded();
    void applyWrites();
    void press(const KeyEvent& event, std::uint32_t data);
    void setFlightRunning(bool running);
    void load(const Aircraft& aircraft);
    void leave(ActionKind how, std::uint64_t awayMs);
    void flush(bool isFrameEnd);
    std::vector<std::string> chunksOf(Client& client, bool isFrameEnd);
    void remark(const std::string& text);

    const Personality* personality_;
    std::uint64_t nowMs_;
    std::uint64_t startMs_;
    std::uint64_t frame_ = 0;  // flown so far
    Aircraft aircraft_;
    Aircraft menu_ = menuAircraft();
    bool isFlightRunning_ = true;
    bool isPaused_ = false;
    bool isOver_ = false;
    bool wasOpened_ = false;
    bool isLeaving_ = false;  // as soon as the present packet is done
    std::uint32_t writeDelayMs_;
    std::uint64_t reachableMs_ = 0;
    std::uint64_t stutterEndMs_ = 0;
    std::uint64_t deafEndMs_ = 0;
    std::uint64_t floodEndMs_ = 0;
    std::uint32_t noiseState_ = 20'260'101;
    std::deque<Timeline> timelines_;
    std::vector<PendingWrite> pending_;
    std::map<int, Client> clients_;
    int lastClient_ = 0;
    int speaking_ = 0;  // the client whose packet is being handled
    std::vector<Output> output_;
    std::vector<Report> reports_;
};

}  // namespace standin
