// worker_bench_win.cpp - how quick the real worker is between the simulator and the plugin's files, and what it costs:
// the time from a turn in the cockpit to telemetry.json and from command.json to what the simulator is sent, processor
// time and memory while flying; beside them the worker with its built-in aircraft, and one that waits for a simulator.
// The simulator is the stand-in behind its pipe, or with --xplane the stand-in X-Plane on a port of its own; either has
// 30 frames a second and sends at a frame's end.
//   worker_bench [ROUNDS [SECONDS]] [--xplane]      100, 20; under Wine: wine build/windows/bin/worker_bench.exe
#include <windows.h>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>
// psapi.h needs windows.h before it.
#include <psapi.h>
#include "base/clock_win.h"
#include "base/number_text.h"
#include "exchange/telemetry_text.h"
#include "tests/client/test_machine_win.h"
#include "tests/simulator/program_win.h"
#include "tests/simulator/server.h"
#include "tests/xplane/server.h"

namespace {

constexpr DWORD kGiveUpMs = 2000;

double wallMs() {
    LARGE_INTEGER now, perSecond;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&perSecond);
    return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(perSecond.QuadPart);
}

struct Cost {
    double processorMs = 0.0;  // so far
    double residentMB = 0.0;
};

// The process as Linux sees it, found by its command line; empty on Windows. Asked for another process's processor
// time, Wine answers with the asker's own.
std::filesystem::path linuxProcess(const std::string& commandLinePart) {
    std::error_code error;
    std::filesystem::directory_iterator entry("Z:\\proc", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const auto process = entry->path();
        const bool isNumber = process.filename().string().find_first_not_of("0123456789") == std::string::npos;
        if (isNumber && readFile(process / "cmdline").find(commandLinePart) != std::string::npos) return process;
    }
    return {};
}

Cost linuxCost(const std::filesystem::path& process) {
    Cost cost;
    std::error_code error;
    std::filesystem::directory_iterator task(process / "task", error);
    for (; !error && task != std::filesystem::directory_iterator(); task.increment(error))
        cost.processorMs += leadingDouble(readFile(task->path() / "schedstat")) / 1e6;  // the first number: ns running
    const std::string status = readFile(process / "status");
    const auto resident = status.find("VmRSS:");
    if (resident != std::string::npos) cost.residentMB = leadingDouble(status.substr(resident + 6)) * 1024.0 / 1e6;
    return cost;
}

Cost windowsCost(std::uint32_t processId) {
    const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId);
    if (!process) return {};
    FILETIME created, exited, kernel, user;
    GetProcessTimes(process, &created, &exited, &kernel, &user);
    PROCESS_MEMORY_COUNTERS memory = {};
    GetProcessMemoryInfo(process, &memory, sizeof memory);
    CloseHandle(process);
    const auto ticks = [](const FILETIME& time) {
        return static_cast<double>(static_cast<std::uint64_t>(time.dwHighDateTime) << 32U | time.dwLowDateTime);
    };
    return {(ticks(kernel) + ticks(user)) / 10'000.0, static_cast<double>(memory.WorkingSetSize) / 1e6};
}

class BenchedWorker {
  public:
    bool start(const std::wstring& arguments) {
        return program_.start(
            standin::besideUs(L"hopline_worker.exe", L"--data-dir \"" + folder.path.wstring() + L"\" --watch-pid " +
                                                         std::to_wstring(GetCurrentProcessId()) + arguments));
    }
    Telemetry telemetry() const { return parseTelemetry(readFile(folder.path / kTelemetryFile)); }
    bool waitOk() const {
        return waitFor([&] { return isFresh(telemetry(), SystemClock().unixSeconds()); }, 15'000);
    }
    // Processor time in percent of one core over the time given, and memory at its end.
    void measure(const char* title, int seconds) const {
        const auto process = linuxProcess(folder.path.filename().string());
        const auto cost = [&] { return process.empty() ? windowsCost(program_.processId()) : linuxCost(process); };
        const double before = cost().processorMs;
        const double startMs = wallMs();
        Sleep(static_cast<DWORD>(seconds) * 1000);
        const Cost after = cost();
        const double percent = 100.0 * (after.processorMs - before) / (wallMs() - startMs);
        std::printf("%-24s %s %% of a core (limit 0.5), %s MB resident (limit 15)\n", title,
                    formatFixed(percent, 2).c_str(), formatFixed(after.residentMB, 1).c_str());
        std::fflush(stdout);
    }

    FreshFolder folder{L"corvalis bench"};

  private:
    standin::Program program_;
};

// Spreads the rounds over the frames and the worker's passes.
void waitUnevenly(int round) {
    Sleep(static_cast<DWORD>(40 + round * 17 % 67));
}

void print(const char* title, std::vector<double> ms, int limitMs) {
    std::sort(ms.begin(), ms.end());
    if (ms.empty()) return;
    const auto at = [&](double part) {
        return ms[static_cast<std::size_t>(part * static_cast<double>(ms.size() - 1))];
    };
    std::printf("%-46s median %s ms, 95 %% within %s, longest %s of %d (limit %d)\n", title,
                formatFixed(at(0.5), 1).c_str(), formatFixed(at(0.95), 1).c_str(), formatFixed(ms.back(), 1).c_str(),
                static_cast<int>(ms.size()), limitMs);
    std::fflush(stdout);
}

// When the simulator last took a write, by its own clock in whole milliseconds, and how many it has taken. Its thread
// stores, ours loads.
struct Heard {
    std::atomic<std::uint64_t> lastMs{0};
    std::atomic<int> count{0};

    void take(std::uint64_t atMs) {
        lastMs = atMs;
        ++count;
    }
};

// Either simulator, at work.
class Simulator {
  public:
    virtual ~Simulator() = default;
    // What the worker is told of it; nullopt if it cannot be started.
    virtual std::optional<std::wstring> start() = 0;
    virtual void act(const std::string& line) = 0;
};

class PipeSimulator : public Simulator {
  public:
    explicit PipeSimulator(Heard& heard)
        : server_(*standin::findPersonality("stock"), [&heard](const standin::Report& report) {
              if (report.text.find(" event ") != std::string::npos) heard.take(report.atMs);
          }) {}
    std::optional<std::wstring> start() override {
        if (!server_.listenPipe(standin::kSimulatorPipe)) return std::nullopt;
        server_.start();
        return L"";
    }
    void act(const std::string& line) override {
        std::string error;
        server_.act(line, error);
    }

  private:
    standin::Server server_;
};

class XplaneSimulator : public Simulator {
  public:
    explicit XplaneSimulator(Heard& heard)
        : server_(*xstandin::findPersonality("stock_12"), [&heard](const xstandin::Report& report) {
              if (report.text.find(" write ") != std::string::npos) heard.take(report.atMs);
          }) {}
    std::optional<std::wstring> start() override {
        const auto port = server_.start({});
        if (port == 0) return std::nullopt;
        return L" --link xplane --address 127.0.0.1:" + std::to_wstring(port);
    }
    void act(const std::string& line) override {
        std::string error;
        server_.act(line, error);
    }

  private:
    xstandin::Server server_;
};

void measureTelemetry(Simulator& simulator, const BenchedWorker& worker, int rounds) {
    std::vector<double> delays;
    for (int round = 0; round < rounds; round++) {
        waitUnevenly(round);
        const std::int32_t kHz = 118000 + 25 * (round % 700);
        const double start = wallMs();
        simulator.act("tune COM1 active " + formatFixed(kHz / 1000.0, 3));
        while (worker.telemetry().radios[0].active != kHz && wallMs() - start < kGiveUpMs) Sleep(1);
        delays.push_back(wallMs() - start);
    }
    print("cockpit to telemetry.json, up to a frame in it", delays, 60);
}

void measureCommands(const BenchedWorker& worker, const Heard& heard, int rounds) {
    std::vector<double> delays;
    for (int round = 0; round < rounds; round++) {
        waitUnevenly(round);
        const auto id = "1-" + std::to_string(round);
        const std::string text = "{\"id\":\"" + id + "\",\"com\":1,\"slot\":\"standby\",\"target\":" +
                                 std::to_string(118000 + 25 * (round % 700)) +
                                 ",\"created\":" + formatFixed(SystemClock().unixSeconds(), 3) + "}";
        const int before = heard.count;
        replaceFile(worker.folder.path / "command.json", text);
        const auto writtenMs = standin::Server::nowMs();
        const bool isHeard = waitFor([&] { return heard.count != before; }, kGiveUpMs);
        delays.push_back(isHeard ? static_cast<double>(heard.lastMs - std::min<std::uint64_t>(heard.lastMs, writtenMs))
                                 : kGiveUpMs);
        waitFor([&] { return worker.telemetry().ackId == id; }, kGiveUpMs);
    }
    print("command.json to what the simulator is sent", delays, 25);
}

}  // namespace

int main(int argc, char** argv) {
    const bool isXplane = argc > 1 && std::strcmp(argv[argc - 1], "--xplane") == 0;
    if (isXplane) argc--;
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100;
    const int seconds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 20;
    Heard heard;
    std::unique_ptr<Simulator> simulator;
    if (isXplane)
        simulator = std::make_unique<XplaneSimulator>(heard);
    else
        simulator = std::make_unique<PipeSimulator>(heard);
    BenchedWorker worker;
    const auto arguments = simulator->start();
    if (!arguments || !worker.start(*arguments) || !worker.waitOk()) {
        std::printf("The worker does not find the simulator\n");
        return 1;
    }
    measureTelemetry(*simulator, worker, rounds);
    measureCommands(worker, heard, rounds);
    worker.measure("flying", seconds);
    simulator->act("drop 600");
    worker.measure("waiting for a simulator", seconds);

    BenchedWorker builtIn;
    if (!builtIn.start(L" --simulate") || !builtIn.waitOk()) {
        std::printf("The worker with its built-in aircraft does not start\n%s",
                    readFile(builtIn.folder.path / "hopline_worker.log").c_str());
        return 1;
    }
    builtIn.measure("the built-in aircraft", seconds);
    return 0;
}
