// session.h - what the worker and one X-Plane have agreed on: the values that it sends again and again. Datagrams get
// lost, and X-Plane forgets what it was asked when it ends, so whatever falls silent is asked for again.
#pragma once
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>
#include "worker/xplane/beacon_watch.h"
#include "worker/xplane/datagrams.h"

namespace xplane {

inline constexpr std::uint64_t kAskAgainMs = 1'000;      // of silence about a value
inline constexpr std::uint64_t kRarelyAskedMs = 10'000;  // about one that there does not seem to be
inline constexpr int kHopefulTries = 5;                  // to get a first answer; after that it is asked for rarely

enum class ValueKind {
    kChannel,  // kHz, the name of an 8.33 kHz channel
    kVolume,   // 0..1
    kSwitch,   // 0 off, anything else on
};

struct DataRef {
    const char* name;
    int timesPerSecond;
    ValueKind kind;
};

class Session {
  public:
    // Both outlive the session.
    Session(Datagrams& datagrams, std::span<const DataRef> refs);
    ~Session() { end(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // From now on with that X-Plane, after the end of any other. isHeard: its beacon has been; otherwise a question now
    // and then must do until it answers.
    void begin(const Simulator& simulator, bool isHeard, std::uint64_t nowMs);
    // Asks for nothing any more.
    void end();
    const std::optional<Simulator>& simulator() const { return simulator_; }
    std::uint64_t begunMs() const { return begunMs_; }

    // Takes in what has arrived and asks for what is missing.
    void poll(std::uint64_t nowMs);

    // A frequency in kHz, a volume 0..1, a switch 0 or 1; nothing until X-Plane has sent one that makes sense, and once
    // it has not sent another for kFreshMs.
    std::optional<double> value(std::size_t ref) const { return readings_[ref].value; }
    // Something has been heard of each of them since it speaks, be it nonsense.
    bool isAllRead() const;

    // When any value was last received; nothing before the first one and after a silence of kFreshMs.
    std::optional<std::uint64_t> dataMs() const { return dataMs_; }
    std::uint64_t speaksSinceMs() const { return speaksSinceMs_; }
    bool hasSpoken() const { return hasSpoken_; }  // since it begun

    // Rises when what was learnt about the aircraft may no longer hold: another X-Plane, or a silence in which it may
    // have loaded another.
    std::uint32_t aircraft() const { return aircraft_; }

    // False if there is no X-Plane or the system does not take the datagram.
    bool send(std::span<const std::uint8_t> datagram);

    // Lines for the log since the last call.
    std::vector<std::string> takeNotes() { return std::exchange(notes_, {}); }

  private:
    struct Reading {
        std::optional<double> value;
        std::uint64_t valueMs = 0;             // when it came
        std::optional<std::uint64_t> askedMs;  // last, in this session
        std::uint64_t heardMs = 0;             // when any value of it came, good or bad
        int tries = 0;                         // of asking since it was heard
        bool isBadNoted = false;               // one that made no sense has been noted
    };

    void receive(std::uint64_t nowMs);
    bool isOurs(const Endpoint& from);
    void onValue(std::int32_t index, float value, std::uint64_t nowMs);
    void forgetOldValues(std::uint64_t nowMs);
    void ask(std::uint64_t nowMs);
    bool isDue(const Reading& reading, std::uint64_t nowMs) const;
    void request(std::size_t ref, std::uint64_t nowMs);
    void noteOnce(const std::string& line);

    Datagrams& datagrams_;
    std::span<const DataRef> refs_;
    std::optional<Simulator> simulator_;
    std::uint64_t begunMs_ = 0;
    std::vector<Reading> readings_;
    std::size_t nextProbe_ = 0;  // the value that one who says nothing is asked for next
    std::optional<std::uint64_t> probedMs_;
    std::uint64_t receivedMs_ = 0;  // when the last datagram was taken
    std::optional<std::uint64_t> dataMs_;
    std::uint64_t speaksSinceMs_ = 0;
    bool hasSpoken_ = false;
    bool answersFromItsPort_ = false;  // since it begun, at least once
    std::uint32_t aircraft_ = 0;
    std::set<std::string> noted_;  // in this session
    std::vector<std::string> notes_;
};

}  // namespace xplane
