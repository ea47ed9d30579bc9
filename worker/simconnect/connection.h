// connection.h - opens a connection to the simulator and keeps trying: introduces us, falls back to other versions of
// the introduction, waits longer after each failure. Time comes in as an argument.
#pragma once
#include <optional>
#include <string>
#include <utility>
#include <vector>
#include "worker/simconnect/packet_stream.h"
#include "worker/simconnect/transport.h"

namespace simconnect {

inline constexpr std::uint64_t kOpenLimitMs = 5'000;                             // then the next version is tried
inline constexpr std::array<std::uint64_t, 3> kRetryMs = {1'000, 2'000, 5'000};  // the last one from then on
inline constexpr std::uint64_t kLastingMs = 10'000;  // a connection open this long starts the waits afresh

enum class ConnectionState {
    kWaiting,     // for the next try
    kConnecting,  // until the transport is there
    kOpening,     // introduced, no answer yet
    kOpen,
};

class Connection {
  public:
    Connection(Transport& transport, std::string application)
        : transport_(transport), application_(std::move(application)) {}

    // Moves on and takes in what has arrived; then next() hands it out until nothing is left.
    void poll(std::uint64_t nowMs);
    std::optional<Received> next();

    ConnectionState state() const { return state_; }
    // How often it has been opened; after each opening the simulator must be told everything again.
    std::uint32_t openings() const { return openings_; }
    // When anything was last received on this connection.
    std::uint64_t heardMs() const { return heardMs_; }
    // One line while it is not open.
    std::string status() const;
    // Open, or has found out why not: trying again is not expected to change its status soon.
    bool isSettled() const;

    // The stamp of the next packet, which is then sent. Only while open.
    Stamp stamp();
    void send(const Bytes& packet);

    // Ends a connection that has broken, for a reason that goes into the log, and tries again later.
    void drop(const std::string& reason, std::uint64_t nowMs);
    // The same after the simulator has said goodbye: nothing is wrong.
    void quit(std::uint64_t nowMs);

    // Lines for the log since the last call.
    std::vector<std::string> takeNotes() { return std::exchange(notes_, {}); }

  private:
    const ClientVersion& version() const { return kClientVersions[versionIndex_]; }
    void introduce(std::uint64_t nowMs);
    bool receive(std::uint64_t nowMs);
    void awaitReply(bool ended, std::uint64_t nowMs);
    void onOpened(const OpenPacket& reply, std::uint64_t nowMs);
    // detail goes into the log only.
    void tryNextVersion(const std::string& problem, std::uint64_t nowMs, const std::string& detail = {});
    void end(std::uint64_t nowMs);
    void retryLater(const std::string& problem, std::uint64_t nowMs);
    void note(const std::string& line);

    Transport& transport_;
    std::string application_;
    PacketStream stream_;
    ConnectionState state_ = ConnectionState::kWaiting;
    std::size_t versionIndex_ = 0;  // stays at the version last accepted
    std::size_t versionsTried_ = 0;
    std::size_t failures_ = 0;  // since it was last open for long
    std::uint64_t dueMs_ = 0;   // Waiting: the next try; Opening: the limit; Open: when it was opened
    std::uint32_t sendId_ = 0;
    std::uint32_t openings_ = 0;
    std::uint64_t heardMs_ = 0;
    bool sendFailed_ = false;
    bool isLost_ = false;   // the last connection broke, and none has been made since
    std::string problem_;   // empty: there is just no simulator
    std::string lastNote_;  // a line that repeats is logged once
    std::vector<std::string> notes_;
};

}  // namespace simconnect
