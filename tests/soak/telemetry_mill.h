// telemetry_mill.h - a worker's files at their worst, on a thread of its own: while it is at work, telemetry.json fifty
// times a second, every eighth of them torn or not from a worker at all; the plugin's commands are answered. At rest, a
// torn or hostile write every few seconds beside those of the real worker, which are listened to.
#pragma once
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>
#include "tests/client/fake_telemetry.h"
#include "tests/soak/dice.h"

class TelemetryMill {
  public:
    TelemetryMill(std::filesystem::path dataFolder, std::uint64_t seed);
    ~TelemetryMill() { stop(); }
    TelemetryMill(const TelemetryMill&) = delete;
    TelemetryMill& operator=(const TelemetryMill&) = delete;

    // [any]
    void setAtWork(bool isAtWork) { isAtWork_ = isAtWork; }
    std::uint64_t writes() const { return writes_; }
    std::uint64_t hostileWrites() const { return hostileWrites_; }
    std::uint64_t heard() const { return heard_; }  // looks at rest at which the real worker told of a simulator
    void stop();

  private:
    void run();
    void fly();
    void answerCommand();
    void write();
    void writeHostile();
    double timeToWrite();
    void listen();

    const std::filesystem::path telemetryFile_, commandFile_;
    Dice dice_;
    FakeTelemetry flown_;
    std::atomic<bool> isAtWork_{false};
    std::atomic<bool> isOver_{false};
    std::atomic<std::uint64_t> writes_{0};  // the thread stores
    std::atomic<std::uint64_t> hostileWrites_{0};
    std::atomic<std::uint64_t> heard_{0};
    std::size_t ownHash_ = 0;  // of what the mill has written last; the text itself may have a megabyte
    std::thread thread_;       // last: it starts when all the others are in place
};
