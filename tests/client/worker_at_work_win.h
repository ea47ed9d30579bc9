// worker_at_work_win.h - the real worker program with a data folder of its own, and the plugin's side of its files.
// [any thread] One owner.
#pragma once
#include <cstdint>
#include <string>
#include "exchange/telemetry_text.h"
#include "tests/client/test_machine_win.h"
#include "tests/simulator/program_win.h"

// For what takes no time on an idle machine and any time on a busy one.
inline constexpr std::uint64_t kPatienceMs = 30'000;

class WorkerAtWork {
  public:
    // arguments: those after the data folder; the worker ends with us.
    bool start(const std::wstring& arguments);
    // Takes the whole command line after the program's name.
    bool startWith(const std::wstring& arguments);
    std::wstring dataDirArgument() const { return L"--data-dir \"" + folder.path.wstring() + L"\""; }

    Telemetry telemetry() const { return parseTelemetry(readFile(folder.path / kTelemetryFile)); }
    bool isOk() const;
    bool waitOk(std::uint64_t ms = kPatienceMs) const;
    // The telemetry with its acknowledgement; without an id if none comes in time.
    Telemetry command(int com, const char* slot, const char* target);
    std::string log() const { return readFile(folder.path / "hopline_worker.log"); }
    bool hasLogged(const std::string& text) const { return log().find(text) != std::string::npos; }

    FreshFolder folder{L"corvalis simulator"};
    standin::Program program;

  private:
    int commands_ = 0;
};
