// session.h - what the worker and the simulator have agreed on: variables to report, key events to send, whether a
// flight is running. Sets everything up on each new connection and reads everything anew with each flight and aircraft.
#pragma once
#include <deque>
#include <set>
#include <span>
#include "worker/simconnect/connection.h"

namespace simconnect {

inline constexpr std::uint64_t kPingMs = 10'000;    // of silence; then we ask for something
inline constexpr std::uint64_t kDeadMs = 120'000;   // of silence: loading a flight takes long, but not this long
inline constexpr std::uint32_t kHeartbeatSkip = 3;  // frames between heartbeats: 0.8 s at 5 frames per second
inline constexpr std::uint32_t kRereadSkip = 4;     // seconds between readings of what has not changed

// A simulation variable. Each has a definition of its own: one that is unknown must not shift the others.
struct Variable {
    const char* name;
    const char* units;
    DataType type;
};

// What a session is about; the tables outlive it.
struct SessionPlan {
    std::span<const Variable> variables;
    std::span<const char* const> keyEvents;
};

struct Reading {
    enum class State : std::uint8_t {
        kAwaited,  // not read since the flight or the aircraft began
        kKnown,
        kMissing,  // the simulator does not know the variable
    };
    State state = State::kAwaited;
    double value = 0.0;  // if known
};

class Session {
  public:
    Session(Transport& transport, SessionPlan plan);

    void poll(std::uint64_t nowMs);

    bool isOpen() const { return connection_.state() == ConnectionState::kOpen; }
    // One line while it is not open.
    std::string status() const { return connection_.status(); }

    // Whether a flight is running; nothing until the simulator has said so.
    std::optional<bool> isSimRunning() const { return simRunning_; }

    // Rises when what was learnt about the aircraft no longer holds: another aircraft, or another connection.
    std::uint32_t aircraft() const { return aircraft_; }

    const Reading& reading(std::size_t variable) const { return readings_[variable]; }
    // Nothing is awaited any longer.
    bool isAllRead() const;
    // When the readings were last requested, and last confirmed by any data; nothing before the first data.
    std::uint64_t requestedMs() const { return requestedMs_; }
    std::optional<std::uint64_t> dataMs() const { return dataMs_; }

    bool isKeyEventKnown(std::size_t event) const { return keyEventKnown_[event]; }
    // False while it is not open, or for a key event that the simulator does not know.
    bool sendKeyEvent(std::size_t event, std::uint32_t data);

    // Lines for the log since the last call.
    std::vector<std::string> takeNotes() { return std::exchange(notes_, {}); }

  private:
    enum class Sent : std::uint8_t { kVariable, kKeyEventMap, kRequest, kKeyEvent, kSystemEvent, kSystemState };
    struct SentPacket {
        std::uint32_t sendId;
        Sent kind;
        std::size_t index;  // of the variable, key event, system event
    };

    void setUp();
    void forgetReadings();
    void requestAll(std::uint64_t nowMs);
    void stopRequests();
    void requestHeartbeat(Period period);
    void requestVariable(std::size_t variable, bool running);
    void askWhetherSimRuns();
    void watchSilence(std::uint64_t nowMs);
    Stamp stampFor(Sent kind, std::size_t index);
    std::uint32_t requestBase() const;

    void handle(const Received& packet, std::uint64_t nowMs);
    void onException(const ExceptionPacket& exception);
    void onMissingVariable(std::size_t variable);
    void onEvent(const EventPacket& event, std::uint64_t nowMs);
    void onData(const DataPacket& data, std::uint64_t nowMs);
    void setSimRunning(bool running, std::uint64_t nowMs);
    void beginAircraft(std::uint64_t nowMs);
    std::string describe(const SentPacket& sent) const;
    void noteOnce(const std::string& line);
    void collectNotes();

    Connection connection_;
    SessionPlan plan_;
    std::uint32_t openings_ = 0;  // the opening of the connection that everything below belongs to
    std::vector<Reading> readings_;
    std::vector<bool> keyEventKnown_;
    std::deque<SentPacket> sent_;  // the latest, for exceptions that refer to them
    std::optional<bool> simRunning_;
    bool requesting_ = false;
    std::uint32_t generation_ = 0;  // of requests: answers to older ones are no longer ours
    std::size_t heartbeat_ = 0;     // the variable that is sent every few frames, changed or not
    std::uint64_t requestedMs_ = 0;
    std::optional<std::uint64_t> dataMs_;
    std::uint64_t pingedMs_ = 0;
    std::uint32_t aircraft_ = 0;
    std::set<std::string> noted_;  // on this connection
    std::vector<std::string> notes_;
};

}  // namespace simconnect
