// flight_watch_win.h - watches the demonstration from outside: what the worker writes, what the plugin asks of the
// host, what the host answers, which lamps light up on the panel; prints and records each as it happens and keeps it
// for the checks.
// [host] Main thread only, like the host's callbacks.
#pragma once
#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>
#include "exchange/telemetry_text.h"
#include "tests/client/circuit/flight_record.h"
#include "tests/client/circuit/lamp_watch_win.h"
#include "tests/client/host_model.h"
#include "tests/client/plugin_library_win.h"

// Where the worker writes, what the panel looks like, where the record goes.
struct FlightPlaces {
    std::filesystem::path dataFolder;
    std::filesystem::path recordFile;
    std::int32_t theme = kBoeingTheme;
};

class FlightWatch {
  public:
    FlightWatch(HostModel& host, const PluginLibrary& plugin, const FlightPlaces& places, std::uint64_t startMs);

    // Delivers the host's events, reads the telemetry and prints what is new, until condition holds. False if it does
    // not within deadlineMs.
    bool until(const std::function<bool()>& condition, std::uint64_t deadlineMs);
    void watchFor(std::uint64_t ms);

    // A line of the timeline without a record, one with it, and one that counts: a failed check makes the flight fail.
    void say(const std::string& text) { print(elapsedMs(), text); }
    void note(FlightEvent event, const std::string& what, const std::string& value, const std::string& text = "");
    void check(bool ok, const std::string& text);
    int failures() const { return failures_; }
    int checks() const { return checks_; }

    // A text message reaches the pilot.
    void deliverText(const std::string& sender, const std::string& text);

    const Telemetry& telemetry() const { return telemetry_; }
    // When the worker first reported the present COM1 active frequency: tick ms, no later than the plugin saw it.
    std::uint64_t tunedAtMs() const { return tunedAtMs_; }
    // Move requests since the given tick.
    std::vector<HostCall> requestsSince(std::uint64_t tickMs) const;

  private:
    std::uint64_t elapsedMs() const;
    void print(std::uint64_t atMs, const std::string& text) const;
    void pump();
    void deliverEvents();
    void noteEvent(const HostEvent& event);
    void readTelemetryFile();
    void noteRadio(std::size_t radio, const Telemetry& before);
    void noteCalls();
    void noteLamps();

    HostModel& host_;
    const PluginLibrary& plugin_;
    const std::filesystem::path telemetryFile_;
    const std::uint64_t startMs_;
    FlightRecord record_;
    LampWatch lampWatch_;
    std::array<bool, 3> lit_{};  // the lamps, as last noted
    std::uint64_t lookedAtMs_ = 0;
    Telemetry telemetry_;
    std::uint64_t tunedAtMs_ = 0;
    std::size_t notedCalls_ = 0;
    int failures_ = 0;
    int checks_ = 0;
};

// 122800 as "122.800".
std::string megahertzText(std::int32_t frequencyKHz);
