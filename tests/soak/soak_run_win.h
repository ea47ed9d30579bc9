// soak_run_win.h - one soak from the loading of the plugin to the verdict: the parts that keep it busy, the line every
// few seconds, and what went wrong. [host] One owner, on the main thread; one soak per process.
#pragma once
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>
#include "base/clock_win.h"
#include "tests/client/host_model.h"
#include "tests/client/plugin_library_win.h"
#include "tests/client/test_machine_win.h"
#include "tests/soak/answer_watch_win.h"
#include "tests/soak/audio_crew.h"
#include "tests/soak/busy_server.h"
#include "tests/soak/own_memory_win.h"
#include "tests/soak/pass_watch.h"
#include "tests/soak/pilot_win.h"
#include "tests/soak/planted_leak_win.h"
#include "tests/soak/process_look_win.h"
#include "tests/soak/progress.h"
#include "tests/soak/simulator_shift.h"
#include "tests/soak/soak_line.h"
#include "tests/soak/soak_options.h"
#include "tests/soak/soak_sum.h"
#include "tests/soak/telemetry_mill.h"

void say(const std::string& line);  // to the standard output, at once

// What is wrong besides growth, each said as it happens, and counted.
class Complaints {
  public:
    void add(const std::string& text);
    int count() const { return count_; }

  private:
    int count_ = 0;
};

// What the plugin says in the client's log, in a file instead of in memory. [any]
class ClientLog {
  public:
    explicit ClientLog(const std::filesystem::path& file) : stream_(file, std::ios::binary) {}
    void add(const HostCall& call);

  private:
    Mutex mutex_;  // for one line
    std::ofstream stream_ GUARDED_BY(mutex_);
};

class SoakRun {
  public:
    // progress: told what it does.
    SoakRun(const SoakOptions& options, std::uint64_t seed, const std::filesystem::path& outFolder, Progress& progress);

    // 0 if nothing grew, stalled or broke.
    int run();

  private:
    std::filesystem::path dataFolder() const { return outFolder_ / "appdata" / "Corvalis"; }
    bool start();
    void lookForSystemLeaks();
    void fly();
    void changeWriter();
    void flyUntil(std::uint64_t timeNs);
    void takeFigures(SoakLine& line);
    void takeLine(std::size_t number);
    void complainOf(const SoakLine& line);
    void end();
    std::vector<WorkCount> work() const;
    int verdict();

    const SoakOptions options_;
    const std::filesystem::path outFolder_;
    Progress& progress_;
    const EnvironmentValue appData_;
    ClientLog log_;
    std::ofstream csv_;
    Dice dice_;
    LeakPlanter leak_;
    GrowthRecord record_;
    SoakLine sum_;
    Complaints complaints_;
    std::uint64_t startNs_ = 0;  // of the first line
    std::uint64_t endNs_ = 0;
    std::uint64_t nextLeakNs_ = 0;
    std::uint64_t shutdownMs_ = 0;
    PassWatch passes_;
    SystemClock clock_;
    HostModel host_{clock_};
    PluginLibrary plugin_;
    std::optional<OwnMemory> ownMemory_;
    // In the order of their beginning; each ends before those above it.
    std::optional<BusyServer> server_;
    std::optional<ProcessLook> look_;
    std::optional<Pilot> pilot_;
    std::optional<AnswerWatch> answers_;
    std::optional<TelemetryMill> mill_;
    std::optional<SimulatorShift> shift_;
    std::optional<AudioCrew> crew_;
};
