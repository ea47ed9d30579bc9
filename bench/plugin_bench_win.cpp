// plugin_bench_win.cpp - what the real DLL costs its host: how long init keeps the host's main thread, and the
// processor time of a poll pass with unchanged telemetry, beside one that finds no file.
//   plugin_bench      (under Wine: wine build/windows/bin/plugin_bench.exe)
#include <windows.h>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>
#include "base/clock_win.h"
#include "base/number_text.h"
#include "bridge/poll_loop.h"
#include "tests/client/fake_telemetry.h"
#include "tests/client/host_model.h"
#include "tests/client/plugin_library_win.h"
#include "tests/client/test_machine_win.h"

namespace {

constexpr int kInitRounds = 15;
constexpr int kRounds = 6;
constexpr DWORD kRoundMs = 2500;  // the telemetry is written once per round and stays fresh for three seconds

double processorMs() {
    FILETIME created, exited, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user);
    const auto ticks = [](const FILETIME& time) {
        return static_cast<double>((static_cast<std::uint64_t>(time.dwHighDateTime) << 32U) | time.dwLowDateTime);
    };
    return (ticks(kernel) + ticks(user)) / 10000.0;
}

double wallMs() {
    LARGE_INTEGER now, perSecond;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&perSecond);
    return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(perSecond.QuadPart);
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void measureInit(const PluginLibrary& plugin) {
    std::vector<double> rounds;
    for (int i = 0; i < kInitRounds; i++) {
        const double before = wallMs();
        plugin.exports().init();
        rounds.push_back(wallMs() - before);
        plugin.exports().shutdown();
    }
    std::printf("ts3plugin_init, worker started      median %s ms, longest %s ms of %d (host waits; limit 150)\n",
                formatFixed(median(rounds), 1).c_str(),
                formatFixed(*std::max_element(rounds.begin(), rounds.end()), 1).c_str(), kInitRounds);
}

// Processor time of this process in milliseconds per poll period, while the plugin's threads are at work. prepare runs
// before each round. Wine counts in steps of 10 ms, so a single round would be too coarse.
template <class Prepare>
double costPerPass(Prepare prepare) {
    double spentMs = 0.0;
    for (int round = 0; round < kRounds; round++) {
        prepare();
        const double before = processorMs();
        Sleep(kRoundMs);
        spentMs += processorMs() - before;
    }
    return spentMs / (static_cast<double>(kRounds) * kRoundMs / kPollPeriodMs);
}

void measurePass(const PluginLibrary& plugin, const std::filesystem::path& dataFolder) {
    plugin.exports().init();
    const double idle = costPerPass([] {});
    const double unchanged = costPerPass([&] {
        replaceFile(dataFolder / "telemetry.json", telemetryText(FakeTelemetry{}, SystemClock().unixSeconds()));
    });
    plugin.exports().shutdown();
    std::printf("poll pass, no telemetry file        %s ms of processor time\n", formatFixed(idle, 3).c_str());
    std::printf("poll pass, unchanged telemetry      %s ms of processor time (limit 0.5)\n",
                formatFixed(unchanged, 3).c_str());
}

}  // namespace

int main() {
    const FreshFolder machine(L"corvalis bench");
    const EnvironmentValue environment(L"APPDATA", machine.path.wstring());
    const SystemClock clock;
    HostModel host(clock);
    host.addServer(1, 7, 100);
    host.setCurrentServer(1);
    PluginLibrary plugin;
    if (!plugin.load(productFile("corvalis_win64.dll"))) {
        std::printf("The plugin does not load: %s\n", plugin.error().c_str());
        return 1;
    }
    plugin.exports().setFunctionPointers(host.table());
    plugin.exports().registerPluginID("bench");
    measureInit(plugin);

    // The passes are measured with the DLL alone in a folder, so that no worker writes in between.
    plugin.unload();
    std::filesystem::copy_file(productFile("corvalis_win64.dll"), machine.path / "corvalis_win64.dll");
    if (!plugin.load(machine.path / "corvalis_win64.dll")) return 1;
    plugin.exports().setFunctionPointers(host.table());
    measurePass(plugin, machine.path / "Corvalis");
    return 0;
}
