// telemetry_writer.h - when telemetry.json is written. The rhythm goes by ticks, the stamp by the wall clock, so that a
// clock set back changes the stamp and nothing else.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include "base/data_files.h"
#include "exchange/telemetry_text.h"
#include "worker/command_handler.h"
#include "worker/worker_log.h"

inline constexpr std::uint64_t kMinWriteGapMs = 51;  // ticks are cut to whole ms: 51 of them are at least 50 ms
inline constexpr std::uint64_t kLastingFailureMs = 1000;
inline constexpr std::uint64_t kMaxWriteGapMs = 450;  // 500 ms at the latest: the rest is for one pass and a slow disk

// What the file says of the simulator and of the last command.
Telemetry telemetryOf(const SimSnapshot& sim, bool commandPending, const CommandAck& ack);

class TelemetryWriter {
  public:
    TelemetryWriter(std::string path, DataFiles& files, WorkerLog& log)
        : path_(std::move(path)), files_(files), log_(log) {}

    // Writes the telemetry if it has changed or the last write was long enough ago. A failed write is tried again 51 ms
    // later. Reader and writer do get in each other's way, so only a lasting failure is logged, and only once.
    void pass(const Telemetry& telemetry, std::uint64_t nowMs, double unixSeconds);

    // How long until the next write is due, from nowMs; 0 = now.
    std::uint64_t msUntilDue(const Telemetry& telemetry, std::uint64_t nowMs) const;

  private:
    void logOutcome(bool failedBefore, std::uint64_t nowMs);

    std::string path_;
    DataFiles& files_;
    WorkerLog& log_;
    Telemetry written_;
    bool tried_ = false;      // false: never yet, due at once
    bool succeeded_ = false;  // the last try
    bool failureLogged_ = false;
    std::uint64_t triedMs_ = 0;
    std::uint64_t failingSinceMs_ = 0;  // tick of the first failure since a success
};
