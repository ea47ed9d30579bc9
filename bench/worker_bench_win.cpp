// worker_bench_win.cpp - how quick the real worker is between the simulator's pipe and the plugin's files, and what it
// costs: the time from a turn in the cockpit to telemetry.json and from command.json to the simulator's key event,
// processor time and memory while flying; beside them the worker with its built-in aircraft, and one that waits for a
// simulator. The simulator is the stand-in, at 30 frames a second, and sends at a frame's end.
//   worker_bench [ROUNDS [SECONDS]]      100, 20; under Wine: wine build/windows/bin/worker_bench.exe
#include <windows.h>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
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

void measureTelemetry(standin::Server& server, const BenchedWorker& worker, int rounds) {
    std::vector<double> delays;
    for (int round = 0; round < rounds; round++) {
        waitUnevenly(round);
        const std::int32_t kHz = 118000 + 25 * (round % 700);
        std::string error;
        const double start = wallMs();
        server.act("tune COM1 active " + formatFixed(kHz / 1000.0, 3), error);
        while (worker.telemetry().radios[0].active != kHz && wallMs() - start < kGiveUpMs) Sleep(1);
        delays.push_back(wallMs() - start);
    }
    print("cockpit to telemetry.json, up to a frame in it", delays, 60);
}

// The simulator notes its clock in whole milliseconds when a packet arrives; its thread leaves that in heardMs.
void measureCommands(const BenchedWorker& worker, const std::atomic<std::uint64_t>& heardMs,
                     const std::atomic<int>& heard, int rounds) {
    std::vector<double> delays;
    for (int round = 0; round < rounds; round++) {
        waitUnevenly(round);
        const auto id = "1-" + std::to_string(round);
        const std::string text = "{\"id\":\"" + id + "\",\"com\":1,\"slot\":\"standby\",\"target\":" +
                                 std::to_string(118000 + 25 * (round % 700)) +
                                 ",\"created\":" + formatFixed(SystemClock().unixSeconds(), 3) + "}";
        const int before = heard;
        replaceFile(worker.folder.path / "command.json", text);
        const auto writtenMs = standin::Server::nowMs();
        const bool isHeard = waitFor([&] { return heard != before; }, kGiveUpMs);
        delays.push_back(isHeard ? static_cast<double>(heardMs - std::min<std::uint64_t>(heardMs, writtenMs))
                                 : kGiveUpMs);
        waitFor([&] { return worker.telemetry().ackId == id; }, kGiveUpMs);
    }
    print("command.json to the simulator's key event", delays, 25);
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100;
    const int seconds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 20;
    std::atomic<std::uint64_t> heardMs{0};
    std::atomic<int> heard{0};
    standin::Server server(*standin::findPersonality("stock"), [&](const standin::Report& report) {
        if (report.text.find(" event ") == std::string::npos) return;
        heardMs = report.atMs;
        ++heard;
    });
    BenchedWorker worker;
    const bool hasStarted = server.listenPipe(standin::kSimulatorPipe) && worker.start(L"");
    server.start();
    if (!hasStarted || !worker.waitOk()) {
        std::printf("The worker does not find the simulator\n");
        return 1;
    }
    measureTelemetry(server, worker, rounds);
    measureCommands(worker, heardMs, heard, rounds);
    worker.measure("flying", seconds);
    std::string error;
    server.act("drop 600", error);
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
