// simulated_aircraft.h - the built-in aircraft: two COM radios that a flight script plays and that take writes as a
// simulator does, visible only after a read-back delay. Time comes in as an argument; nothing here reads a clock.
#pragma once
#include "worker/flight_script.h"
#include "worker/sim_link.h"

inline constexpr std::uint64_t kDefaultReadbackMs = 120;

class SimulatedAircraft : public SimLink {
  public:
    // Standing at its defaults: COM1 122.800 / 121.500 on 8.33 kHz, COM2 121.500 / 118.000 on 25 kHz, both powered and
    // at full volume. The script's seconds count from startMs.
    SimulatedAircraft(FlightScript script, std::uint64_t startMs);

    void poll(std::uint64_t nowMs) override;
    const SimSnapshot& snapshot() const override { return snapshot_; }
    bool write(const RadioWrite& write, std::uint64_t nowMs) override;

  private:
    struct Radio {
        RadioReading values;  // writable: what the aircraft says while the radio has power
        bool powered = true;
        std::array<bool, kSlotCount> obeys{true, true, true, true};
    };
    struct PendingWrite {
        RadioWrite write;
        std::uint64_t dueMs = 0;
    };

    void playScript(std::uint64_t nowMs);
    void play(const ScriptStep& step, std::uint64_t nowMs);
    void tune(const ScriptStep& step);
    void setSpacing(Radio& radio, std::int32_t spacing);
    void applyDueWrites(std::uint64_t nowMs);
    void apply(const RadioWrite& write);
    SimSnapshot describe() const;
    std::string statusText() const;

    FlightScript script_;
    std::uint64_t startMs_;
    std::size_t nextStep_ = 0;
    bool firstRound_ = true;  // remarks about a repeated line are made once
    std::array<Radio, kRadioCount> radios_;
    std::vector<PendingWrite> pending_;  // in the order written
    std::uint64_t readbackMs_ = kDefaultReadbackMs;
    std::uint64_t linkBackMs_ = 0;  // the link is down before this tick
    bool linkUp_ = true;
    SimSnapshot snapshot_;
};
