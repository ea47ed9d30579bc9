// restarts_win.cpp - kills and restarts simulator, worker, plugin and voice client, one by one and all together in
// several orders. After each, a frequency tuned in the cockpit must move the pilot to another channel, and at the end
// the panel's swap must reach the aircraft. Prints a timeline; exits with 1 if anything did not recover.
//   restarts OUT_FOLDER [ORDERS] [--simconnect | --xplane] [--aside]   ORDERS: how many of the 24; 6
//   restarts --loads [LOADS [SEED]]           the plugin in this process, again and again; 1000 (loads_win.h)
//   restarts --shutdowns [MOMENTS [SEED]]     at any moment, each within a second; 500 (shutdowns_win.h)
//   restarts --untimed-shutdowns [MOMENTS [SEED]]   the same without a limit
//   restarts --client                         the voice client, as a process of its own
// --aside keeps X-Plane and its beacon to free ports and tells the worker of them: for a machine on which other workers
// are tested.
#include <windows.h>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include "base/clock_win.h"
#include "base/number_text.h"
#include "exchange/telemetry_text.h"
#include "tests/client/circuit/flight_plan.h"
#include "tests/client/circuit/loads_win.h"
#include "tests/client/circuit/shutdowns_win.h"
#include "tests/client/circuit/voice_client_win.h"
#include "tests/client/new_client_win.h"
#include "tests/client/test_machine_win.h"
#include "tests/simulator/program_win.h"
#include "tests/xplane/sockets.h"

namespace {

constexpr std::uint64_t kGoneMs = 8'000;       // three seconds of silence are a loss
constexpr std::uint64_t kRecoveryMs = 15'000;  // the worker looks every 5 s at most, the plugin waits up to 2 s to move
// The plugin looks again after 2 s and then counts a move as confirmed; disturbed before that, it would wait for 5 s.
constexpr std::uint64_t kConfirmedMs = 2300;

enum Part : int { kSimulator, kWorker, kPlugin, kClient };
constexpr std::array<const char*, 4> kPartNames = {"simulator", "worker", "plugin", "voice client"};

struct Tuning {
    const char* megahertz;
    std::uint64_t channel;
};
constexpr Tuning kTunings[] = {{"127.850", kAtisChannel},
                               {"121.600", kDeliveryChannel},
                               {"121.900", kGroundChannel},
                               {"118.275", kApproachChannel}};

bool isImage(std::uint32_t processId, const wchar_t* name) {
    const HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId);
    if (!process) return false;
    wchar_t path[MAX_PATH + 1] = {};
    DWORD length = MAX_PATH;
    QueryFullProcessImageNameW(process, 0, path, &length);
    CloseHandle(process);
    return std::wstring_view(path, length).ends_with(name);
}

class Restarts {
  public:
    Restarts(const std::filesystem::path& out, const FlightSimulator& kind)
        : appData_(std::filesystem::absolute(out) / "appdata"),
          environment_(L"APPDATA", appData_.wstring()),
          kind_(kind),
          arguments_(kind.arguments) {
        std::filesystem::create_directories(dataFolder());
    }

    // X-Plane and its beacon get ports of their own and keep them.
    void stepAside() {
        const auto own = xstandin::makeSockets(), beacon = xstandin::makeSockets();
        const std::string at = "127.0.0.1:";
        const auto ownPort = at + std::to_string(own->open({xstandin::kLoopback, 0}));
        const auto beaconPort = at + std::to_string(beacon->open({xstandin::kLoopback, 0}));
        const auto options = "--listen " + ownPort + " --beacon " + beaconPort;
        arguments_ = std::wstring(options.begin(), options.end());
        writeFile(dataFolder() / "worker.ini", "beacon=" + beaconPort + '\n');
    }

    void begin() {
        for (const int part : {kClient, kSimulator}) start(part);
        expectWorks("started");
    }
    void restart(int part) {
        kill(part);
        check(waitFor([&] { return isGone(part); }, kGoneMs),
              std::string(kPartNames[static_cast<std::size_t>(part)]) + " gone");
        start(part);
        expectWorks(std::string(kPartNames[static_cast<std::size_t>(part)]) + " killed and started again");
    }
    void restartAll(const std::array<int, 4>& order) {
        std::string title = "all killed and started again: ";
        for (const int part : order) title += std::string(kPartNames[static_cast<std::size_t>(part)]) + ", ";
        for (const int part : order) kill(part);
        for (const int part : order) start(part);
        expectWorks(title.substr(0, title.size() - 2));
    }
    // The opposite way: from the panel to the aircraft.
    void expectSwap() {
        const Tuning next = nextTuning();
        simulator_.say(std::string("tune COM1 standby ") + next.megahertz);
        waitFor([&] { return telemetryShows(&RadioReading::standby, next); }, kRecoveryMs);
        client_.say("swap");
        check(waitFor([&] { return hasHeard(kind_.swapReport); }, 2000), "the panel's swap reaches the aircraft");
        check(waitFor([&] { return channelIn(client_.lines()) == next.channel; }, kRecoveryMs), "and is followed");
    }
    int end() {
        client_.kill();
        killWorkers();
        std::printf("\n%s: %d of %d checks passed\n", failures_ == 0 ? "Restarts survived" : "Restarts FAILED",
                    checks_ - failures_, checks_);
        return failures_ == 0 ? 0 : 1;
    }

  private:
    std::filesystem::path dataFolder() const { return appData_ / "Corvalis"; }

    void kill(int part) {
        if (part == kSimulator) simulator_.kill();
        if (part == kWorker) killWorkers();
        if (part == kPlugin) client_.say("unload");
        if (part == kClient) client_.kill();
    }
    // As seen from outside: without simulator or worker there is no fresh telemetry.
    bool isGone(int part) const {
        if (part == kClient) return !client_.isRunning();
        if (part == kPlugin) return !client_.lines().empty() && client_.lines().back() == "unloaded";
        return !isFresh(parseTelemetry(readFile(dataFolder() / kTelemetryFile)), SystemClock().unixSeconds());
    }
    // A started client brings the plugin; a worker started by hand ends itself if there is one already.
    void start(int part) {
        if (part == kSimulator) simulator_.start(standin::besideUs(kind_.program, arguments_));
        if (part == kWorker) startWorker();
        if (part == kPlugin) client_.say("load");
        if (part == kClient) client_.start(standin::besideUs(programName(L"restarts.exe"), L"--client"));
    }
    void startWorker() {
        worker_.start(standin::besideUs(
            L"hopline_worker.exe",
            L"--data-dir \"" + dataFolder().wstring() + L"\" --watch-pid " + std::to_wstring(GetCurrentProcessId())));
    }
    // The plugin's workers and ours: each has left its process number in the log.
    void killWorkers() {
        const std::string log = readFile(dataFolder() / "hopline_worker.log");
        constexpr std::string_view kStarted = "started, process ";
        for (auto at = log.find(kStarted); at != std::string::npos; at = log.find(kStarted, at + 1)) {
            const auto id = static_cast<std::uint32_t>(std::strtoul(log.c_str() + at + kStarted.size(), nullptr, 10));
            if (isImage(id, L"hopline_worker.exe")) killProcess(id);
        }
    }

    Tuning nextTuning() { return kTunings[tunings_++ % std::size(kTunings)]; }

    bool telemetryShows(std::int32_t RadioReading::*frequency, const Tuning& tuning) const {
        const auto telemetry = parseTelemetry(readFile(dataFolder() / kTelemetryFile));
        const auto kHz = static_cast<std::int32_t>(leadingDouble(tuning.megahertz) * 1000.0 + 0.5);
        return isFresh(telemetry, SystemClock().unixSeconds()) && telemetry.radios[0].*frequency == kHz;
    }
    bool hasHeard(std::string_view part) const {
        const auto lines = simulator_.lines();
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& line) { return line.find(part) != std::string::npos; });
    }
    void expectWorks(const std::string& title) {
        const Tuning next = nextTuning();
        const auto startMs = systemTickMs();
        simulator_.say(std::string("tune COM1 active ") + next.megahertz);
        const bool isFollowed = waitFor([&] { return channelIn(client_.lines()) == next.channel; }, kRecoveryMs);
        check(isFollowed, title + "; " + next.megahertz + " followed after " +
                              formatFixed(static_cast<double>(systemTickMs() - startMs) / 1000.0, 1) + " s");
        if (!isFollowed) std::printf("%s\n", readFile(dataFolder() / "hopline_worker.log").c_str());
        waitFor([] { return false; }, kConfirmedMs);
    }
    void check(bool isGood, const std::string& text) {
        checks_++;
        if (!isGood) failures_++;
        const double seconds = static_cast<double>(systemTickMs() - beganMs_) / 1000.0;
        std::printf("%7s s  %s%s\n", formatFixed(seconds, 2).c_str(), isGood ? "ok      " : "FAILED  ", text.c_str());
        std::fflush(stdout);
    }

    const std::filesystem::path appData_;
    const EnvironmentValue environment_;
    const FlightSimulator& kind_;
    std::wstring arguments_;  // of the simulator
    standin::Program simulator_;
    standin::Program worker_;
    standin::Program client_;
    std::uint64_t beganMs_ = systemTickMs();
    std::size_t tunings_ = 0;
    int checks_ = 0;
    int failures_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    if (const auto code = runAsNewClient()) return *code;
    SetConsoleOutputCP(CP_UTF8);
    std::setvbuf(stdout, nullptr, _IONBF, 0);  // what it said before it got stuck or was killed
    const std::string_view mode = argc > 1 ? argv[1] : "";
    const auto count = [&](int usual) { return argc > 2 ? std::atoi(argv[2]) : usual; };
    const std::uint64_t seed = argc > 3 ? std::strtoull(argv[3], nullptr, 10) : systemTickMs();
    if (mode == "--loads") return runLoads(count(1000), seed);
    if (mode == "--shutdowns") return runShutdowns(count(500), seed, true);
    if (mode == "--untimed-shutdowns") return runShutdowns(count(500), seed, false);
    if (mode == "--client") return runVoiceClient();
    if (argc < 2) {
        std::printf(
            "usage: restarts OUT_FOLDER [ORDERS] [--simconnect | --xplane] [--aside] | --loads [LOADS [SEED]] |\n"
            "       --shutdowns [MOMENTS [SEED]]\n");
        return 2;
    }
    int orders = 6;
    const FlightSimulator* kind = &kFlightSimulators[0];
    bool isAside = false;
    for (int i = 2; i < argc; i++) {
        if (std::string_view(argv[i]) == "--aside")
            isAside = true;
        else if (const auto* simulator = findFlightSimulator(argv[i]))
            kind = simulator;
        else
            orders = std::atoi(argv[i]);
    }
    Restarts restarts(argv[1], *kind);
    if (isAside) restarts.stepAside();
    if (isNewClient()) std::printf("in a 3.6 client\n");
    restarts.begin();
    for (const int part : {kSimulator, kWorker, kPlugin, kClient}) restarts.restart(part);
    // Spread evenly over all orders, the first of which begins with the simulator.
    std::array<int, 4> order = {kSimulator, kWorker, kPlugin, kClient};
    int flown = 0;
    for (int i = 0; i < 24; i++, std::next_permutation(order.begin(), order.end())) {
        if (flown >= orders || i < 24 * flown / orders) continue;
        restarts.restartAll(order);
        flown++;
    }
    restarts.expectSwap();
    return restarts.end();
}
