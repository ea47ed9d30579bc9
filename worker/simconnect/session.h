// session.h - what the worker and the simulator have agreed on: variables to report, key events to send, whether a
// flight is running. Sets everything up on each new connection and reads everything anew with each flight and aircraft.
#pragma once
#include <deque>
#include <set>
#include <span>
#include "worker/simconnect/connection.h"

namespace simconnect {

inline constexpr std::uint64_t kFreshStartMs = 1'000;  // between two of them, however many are called for
inline constexpr std::uint64_t kPingMs = 10'000;  // between two questions, whose answers say that it is there and reads
inline constexpr std::uint64_t kUnreadMs = 10'000;  // without an answer: one that speaks all the same does not read
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
    bool isSettled() const { return connection_.isSettled(); }

    // Whether a flight is running; nothing until the simulator has said so.
    std::optional<bool> isSimRunning() const { return simRunning_; }

    // As far as the simulator has said; what it is told meanwhile it may leave undone until the pause is over.
    bool isPaused() const { return isPaused_; }

    // Rises when what was learnt about the aircraft no longer holds: another aircraft, flight or connection.
    std::uint32_t aircraft() const { return aircraft_; }

    const Reading& reading(std::size_t variable) const { return readings_[variable]; }
    // Nothing is awaited any longer.
    bool isAllRead() const;
    // When the readings were last requested, and last confirmed by any data; nothing before the first data.
    std::uint64_t requestedMs() const { return requestedMs_; }
    std::optional<std::uint64_t> dataMs() const { return dataMs_; }

    bool isKeyEventKnown(std::size_t event) const { return keyEventKnown_[event]; }
    // False while it is not open, or for a key event that the simulator does not know. Asks a question behind it.
    bool sendKeyEvent(std::size_t event, std::uint32_t data, std::uint64_t nowMs);

    // The number of the latest question, and whether one has been answered: then the simulator has read all that it was
    // sent before. True of any if it has never answered one on this connection.
    std::uint32_t question() const { return question_; }
    bool isAnswered(std::uint32_t question) const { return answered_ == 0 || question <= answered_; }

    // Lines for the log since the last call.
    std::vector<std::string> takeNotes() { return std::exchange(notes_, {}); }

  private:
    // Calls for reading everything anew, at the end of the pass.
    struct FreshStart {
        bool isDue = false;
        std::uint32_t loaded = 0;              // aircraft since the last line about one
        std::string file;                      // the last of them
        std::optional<std::uint64_t> startMs;  // of the latest fresh start on this connection
        std::optional<std::uint64_t> noteMs;   // of the latest line
    };
    enum class Sent : std::uint8_t { kVariable, kKeyEventMap, kRequest, kKeyEvent, kSystemEvent, kSystemState };
    struct SentPacket {
        std::uint32_t sendId;
        Sent kind;
        std::size_t index;  // of the variable, key event, system event
    };

    void setUp(std::uint64_t nowMs);
    void subscribe(std::uint32_t systemEvent);
    void forgetReadings();
    void requestAll(std::uint64_t nowMs);
    void stopRequests();
    void requestHeartbeat(Period period);
    void requestVariable(std::size_t variable, bool running);
    void ask(std::uint64_t nowMs);
    void askWhetherSimRuns(std::uint64_t nowMs);
    void onAnswer(const StatePacket& answer, std::uint64_t nowMs);
    void watchAnswers(std::uint64_t nowMs);
    Stamp stampFor(Sent kind, std::size_t index);
    std::uint32_t requestBase() const;

    void handle(const Received& packet, std::uint64_t nowMs);
    void onException(const ExceptionPacket& exception);
    void onMissingVariable(std::size_t variable);
    void onEvent(const EventPacket& event);
    void onData(const DataPacket& data, std::uint64_t nowMs);
    void setSimRunning(bool running);
    void startAfresh(std::uint64_t nowMs);
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
    bool isPaused_ = false;
    FreshStart freshStart_;
    bool requesting_ = false;
    std::uint32_t generation_ = 0;  // of requests: answers to older ones are no longer ours
    std::size_t heartbeat_ = 0;     // the variable that is sent every few frames, changed or not
    std::uint64_t requestedMs_ = 0;
    std::optional<std::uint64_t> dataMs_;
    std::uint32_t question_ = 0;                 // the latest of this connection; they count from 1
    std::uint32_t simQuestion_ = 0;              // the latest whose answer counts
    std::uint32_t answered_ = 0;                 // the latest that has been answered
    std::uint64_t askedMs_ = 0;                  // when the latest was asked
    std::optional<std::uint64_t> unansweredMs_;  // since when a question waits, or since the last answer if one does
    bool isDeaf_ = false;                        // has been noted
    std::uint32_t aircraft_ = 0;
    std::set<std::string> noted_;  // on this connection
    std::vector<std::string> notes_;
};

}  // namespace simconnect
