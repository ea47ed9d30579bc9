// command_handler.h - carries out one command at a time: judges the value, writes, waits for the read-back, and only
// then acknowledges. A positive acknowledgement means that the simulator has shown the new value.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include "exchange/command_text.h"
#include "worker/sim_link.h"
#include "worker/worker_log.h"

inline constexpr std::uint64_t kReadbackLimitMs = 1500;  // in which the simulator is heard of
inline constexpr std::uint64_t kReadbackLastMs = 4000;   // in all; the plugin gives up after 4500, on all that waits
inline constexpr double kVolumeTolerance = 0.005;        // half a percent: simulators keep volume in coarse steps

// Without an id: none yet. The panel shows the message of an acknowledgement it has not seen, so after one of an
// earlier worker it shows this one's first: a line that says something.
struct CommandAck {
    std::string id;
    bool ok = false;
    std::string message = pilot::kNewWorker;
    bool operator==(const CommandAck&) const = default;
};

class CommandHandler {
  public:
    CommandHandler(SimLink& link, WorkerLog& log) : link_(link), log_(log) {}

    // Between acceptance and acknowledgement.
    bool isPending() const { return command_.has_value(); }
    const CommandAck& ack() const { return ack_; }

    // Only while nothing is pending. A command that cannot be written is acknowledged before this returns.
    void accept(CommandRequest command, std::uint64_t nowMs);

    // Looks for the read-back in the link's latest snapshot.
    void pass(std::uint64_t nowMs);

  private:
    std::string objection(const RadioWrite& write) const;
    bool isVisible(const RadioReading& radio) const;
    void countWait(std::uint64_t nowMs);
    void acknowledge(bool ok, std::string message, std::uint64_t nowMs);

    SimLink& link_;
    WorkerLog& log_;
    std::optional<CommandRequest> command_;
    RadioReading before_;  // the radio when the command was accepted: a swap is judged against it
    std::uint64_t acceptedMs_ = 0;
    std::uint64_t countedMs_ = 0;  // until when it is known what counts as waiting
    std::uint64_t waitedMs_ = 0;   // what does
    CommandAck ack_;
};
