// circuit_win.cpp - the demonstration: the real plugin in the stand-in voice client, its real worker with the built-in
// aircraft, with the stand-in simulator behind the simulator's pipe or with the stand-in X-Plane on its port, flown
// once round the circuit. Prints and records what happens; exits with 1 if anything did not go as it should.
//   circuit OUT_FOLDER [--full] [--simconnect | --xplane]
// OUT_FOLDER holds %APPDATA% of the flight, its record and the logs.
#include <windows.h>
#include <cstdio>
#include <cstring>
#include <fstream>
#include "base/clock_win.h"
#include "base/number_text.h"
#include "panel/panel_requests.h"
#include "tests/client/circuit/flight_plan.h"
#include "tests/client/circuit/flight_watch_win.h"
#include "tests/client/message_driver_win.h"
#include "tests/client/new_client_win.h"
#include "tests/client/panel_driver_win.h"
#include "tests/client/test_machine_win.h"
#include "tests/simulator/program_win.h"

namespace {

struct FlightOptions {
    bool isShort = true;
    const FlightSimulator* simulator = nullptr;  // without one the worker's own aircraft is flown

    const char* loss() const { return simulator ? simulator->loss : kBuiltInLoss; }
};

constexpr std::uint64_t kStillMs = 350;      // a frequency must stand still this long to be followed
constexpr std::uint64_t kClockGrainMs = 16;  // of the tick counter on Windows

struct Flight {
    HostModel& host;
    FlightWatch& watch;
    std::uint64_t legStartMs = 0;
};

bool waitTuned(Flight& f, std::int32_t frequencyKHz) {
    const bool tuned = f.watch.until([&] { return f.watch.telemetry().radios[0].active == frequencyKHz; }, 25'000);
    if (!tuned) f.watch.check(false, "COM1 active never became " + megahertzText(frequencyKHz));
    return tuned;
}

bool isIn(const Flight& f, std::uint64_t channel) {
    return f.host.ownChannel(kCircuitServer) == channel;
}

bool waitRequest(Flight& f, std::uint64_t channel, std::uint64_t sinceMs, std::uint64_t deadlineMs) {
    return f.watch.until(
        [&] {
            const auto requests = f.watch.requestsSince(sinceMs);
            return !requests.empty() && requests.back().channelId == channel;
        },
        deadlineMs);
}

// Tuned, still for 350 ms, requested, confirmed.
void expectFollowed(Flight& f, std::int32_t frequencyKHz, std::uint64_t channel) {
    if (!waitTuned(f, frequencyKHz)) return;
    const std::uint64_t tunedMs = f.watch.tunedAtMs();
    const bool requested = waitRequest(f, channel, tunedMs, 4'000);
    const bool confirmed = requested && f.watch.until([&] { return isIn(f, channel); }, 4'000);
    f.watch.check(confirmed, "followed " + megahertzText(frequencyKHz) + " into \"" + channelTitle(channel) + '"');
    if (!requested) return;
    const auto requests = f.watch.requestsSince(f.legStartMs);
    f.watch.check(requests.size() == 1, "asked once");
    const std::uint64_t waitedMs = requests.back().atMs - tunedMs;
    f.watch.check(waitedMs + kClockGrainMs >= kStillMs,
                  "asked after " + std::to_string(waitedMs) + " ms of standing still");
}

void pilotDoes(Flight& f, const std::string& what) {
    f.watch.note(FlightEvent::kPilot, "", what, "pilot       " + what);
}

// The chime is heard, and the message window opens by itself.
void expectMessage(Flight& f, const std::string& sender, const std::string& text) {
    const auto before = f.host.playedSounds().size();
    f.watch.deliverText(sender, text);
    const auto sounds = f.host.playedSounds();
    f.watch.check(sounds.size() == before + 1 && sounds.back().ends_with("text_alert.wav"), "chime for the message");
    f.watch.check(f.watch.until([] { return isMessageWindowShown(); }, 10'000), "the message window shows it");
}

void flyDelivery(Flight& f) {
    expectFollowed(f, 121600, kDeliveryChannel);
    expectMessage(f, "Delivery", "CLEARED TO EDDF VIA SOBRA, INITIAL CLIMB 5000FT, SQUAWK 4312");
}

void flyApron(Flight& f) {
    if (!waitTuned(f, 121700)) return;
    f.watch.watchFor(600);
    f.watch.check(f.watch.requestsSince(f.legStartMs).empty() && isIn(f, kGroundChannel), "stayed: nothing to ask for");
}

bool talk(Flight& f, std::uint16_t client, std::uint64_t ms) {
    const auto before = f.host.playedSounds().size();
    f.host.setTalking(kCircuitServer, client, true);
    f.watch.watchFor(ms);
    f.host.setTalking(kCircuitServer, client, false);
    return f.watch.until([&] { return f.host.playedSounds().size() > before; }, 300);
}

void flyDeparture(Flight& f) {
    if (!waitTuned(f, 124350)) return;
    if (!waitRequest(f, kDepartureChannel, f.legStartMs, 4'000)) {
        f.watch.check(false, "departure was not asked for");
        return;
    }
    f.watch.watchFor(400);
    f.watch.check(!isIn(f, kDepartureChannel), "refused with a code");
    f.host.setMoveRule(kDepartureChannel, MoveRule{});
    f.watch.check(f.watch.until([&] { return isIn(f, kDepartureChannel); }, 6'000), "asked again and let in");
    const auto requests = f.watch.requestsSince(f.legStartMs);
    f.watch.check(requests.size() == 2 && requests[1].atMs - requests[0].atMs >= 2'000, "no sooner than 2 s later");
}

void flyCompany(Flight& f) {
    if (!waitTuned(f, 131500)) return;
    const bool asked = waitRequest(f, kCompanyChannel, f.legStartMs, 4'000);
    f.watch.check(asked, "asked for the company channel, which never answers");
    f.watch.deliverText("Company", "Gate 42 after landing");  // unread, in addition to the first: the lamp flashes
    if (!asked || !waitTuned(f, 118275)) return;
    const std::uint64_t askedMs = f.watch.requestsSince(f.legStartMs).front().atMs;
    f.watch.check(f.watch.until([&] { return isIn(f, kApproachChannel); }, 8'000), "went on to approach");
    const auto requests = f.watch.requestsSince(f.legStartMs);
    const bool oneAtATime = requests.back().atMs - askedMs >= 5'000;
    f.watch.check(oneAtATime, "not confirmed: given up after 5 s, one move at a time");
}

void post(unsigned message, std::uint64_t wParam, std::int64_t lParam) {
    PostMessageW(findPanel(), message, wParam, lParam);
}

// Posts one turn of the radio and waits for the worker to answer it.
bool answered(Flight& f, unsigned message, std::uint64_t wParam, std::int64_t lParam) {
    const std::string before = f.watch.telemetry().ackId;
    post(message, wParam, lParam);
    return f.watch.until([&] { return f.watch.telemetry().ackId != before; }, 4'000);
}

void flyNobody(Flight& f) {
    if (!waitTuned(f, 133330)) return;
    const auto channel = f.host.ownChannel(kCircuitServer);
    pilotDoes(f, "turns COM2's volume to 40");
    const std::string before = f.watch.telemetry().ackId;
    post(kPanelVolumeMessage, 2, 40);
    f.watch.check(talk(f, kPilotClient, 250), "squelch tail after the own transmission");
    f.watch.watchFor(360);  // tails are at least 350 ms apart
    f.watch.check(talk(f, kControllerClient, 250), "squelch tail after the controller's");
    f.watch.watchFor(360);
    f.watch.check(!talk(f, kControllerClient, 60), "none after a click of the key");
    const bool told = f.watch.until([&] { return f.watch.telemetry().ackId != before; }, 4'000);
    f.watch.check(told && !f.watch.telemetry().ackOk, "the dead volume knob was reported");
    const bool isOnDeparture = f.watch.until([&] { return f.watch.telemetry().radios[1].active == 124350; }, 4'000);
    f.watch.check(isOnDeparture, "COM2 stands on departure's frequency");
    f.watch.watchFor(600);  // while the volume was on its way, no frequency would have been followed
    const bool stayed = f.watch.requestsSince(f.legStartMs).empty() && isIn(f, channel);
    f.watch.check(stayed, "stayed: no channel carries 133.330, and COM2 is not followed");
}

void flyRadio(Flight& f) {
    pilotDoes(f, "turns COM1's small knob four clicks on standby");
    const bool tuned = answered(f, kPanelStepMessage, 1U | 1U << 8U, 4) && f.watch.telemetry().ackOk;
    const auto standby = f.watch.telemetry().radios[0].standby;
    f.watch.check(tuned && standby == 122800,
                  "standby is " + megahertzText(standby) + " as the aircraft reads it back");
    pilotDoes(f, "swaps");
    const bool swapped = answered(f, kPanelSwapMessage, 1, 0) && f.watch.telemetry().ackOk;
    f.watch.check(swapped, "swap acknowledged");
    expectFollowed(f, 122800, kUnicomChannel);  // not 122.8, 1122.800, 122.8005, nor the later of two that match
}

void flyLinkLoss(Flight& f) {
    f.watch.check(f.watch.until([&] { return !f.watch.telemetry().ok; }, 15'000), "the worker reports the loss");
    const bool isBack =
        f.watch.until([&] { return f.watch.telemetry().ok && f.watch.telemetry().radios[0].active; }, 5'000);
    f.watch.check(isBack, "and the return");
    f.watch.check(isIn(f, kApproachChannel), "still in the channel");
}

void flyLeg(Flight& f, LegId id) {
    switch (id) {
        case LegId::kAtis:
            return expectFollowed(f, 127850, kAtisChannel);
        case LegId::kDelivery:
            return flyDelivery(f);
        case LegId::kTaxi:
            return expectFollowed(f, 121900, kGroundChannel);
        case LegId::kApron:
            return flyApron(f);
        case LegId::kTower:
            return expectFollowed(f, 118105, kTowerChannel);
        case LegId::kNobody:
            return flyNobody(f);
        case LegId::kRadio:
            return flyRadio(f);
        case LegId::kDeparture:
            return flyDeparture(f);
        case LegId::kCompany:
            return flyCompany(f);
        case LegId::kLinkLoss:
            return flyLinkLoss(f);
    }
}

void flyLegs(Flight& f, const FlightOptions& options, std::uint64_t workerStartMs) {
    double plannedSeconds = 0.0;
    for (const Leg& leg : circuitLegs(options.isShort, options.loss())) {
        f.watch.note(FlightEvent::kLeg, "", leg.title, std::string("--- ") + leg.title);
        f.legStartMs = systemTickMs();
        flyLeg(f, leg.id);
        plannedSeconds += leg.seconds(options.isShort);
        const auto endMs = workerStartMs + static_cast<std::uint64_t>(plannedSeconds * 1000.0);
        // Stays on the frequency for the rest of the leg, a moment less, so that the next leg begins on time.
        if (systemTickMs() + 50 < endMs) f.watch.watchFor(endMs - systemTickMs() - 50);
    }
}

// The aircraft begins its flight once the worker has found the simulator. False if it never does.
bool takeOff(FlightWatch& watch, standin::Program& simulator, const std::filesystem::path& script) {
    const bool isFound = watch.until([&] { return watch.telemetry().ok; }, 15'000);
    watch.check(isFound, "the worker has found the simulator");
    simulator.say("play " + toCodePage(script.wstring()));
    return isFound;
}

void writeSimulatorLog(const standin::Program& simulator, const std::filesystem::path& file) {
    std::ofstream log(file, std::ios::binary);
    for (const auto& line : simulator.lines()) log << line << '\n';
}

void writeClientLog(const HostModel& host, const std::filesystem::path& file) {
    std::ofstream log(file, std::ios::binary);
    for (const auto& line : host.logLines()) log << line << '\n';
}

int reportEnd(const HostModel& host, FlightWatch& watch) {
    for (const auto& problem : host.problems()) watch.check(false, "rule of the host broken: " + problem);
    for (const auto& leak : host.leaks()) watch.check(false, "not given back to the host: " + leak);
    const int passed = watch.checks() - watch.failures();
    watch.note(FlightEvent::kEnd, std::to_string(passed), std::to_string(watch.checks()));
    std::printf("\n%s: %d of %d checks passed\n", watch.failures() == 0 ? "Circuit flown" : "Circuit FAILED", passed,
                watch.checks());
    return watch.failures() == 0 ? 0 : 1;
}

int fly(const std::filesystem::path& out, const FlightOptions& options) {
    const auto appData = std::filesystem::absolute(out) / "appdata";
    const auto dataFolder = appData / "Corvalis";
    std::filesystem::create_directories(dataFolder);
    const auto script = dataFolder / "circuit.txt";
    writeFile(script, circuitScript(options.isShort, options.loss()));
    writeFile(dataFolder / "settings.ini", "theme=" + std::to_string(kBoeingTheme) + "\r\n");
    standin::Program simulator;
    if (!options.simulator) {
        writeFile(dataFolder / "worker.ini", "link=simulate\nscript=circuit.txt\n");
    } else if (!simulator.start(standin::besideUs(options.simulator->program, options.simulator->arguments))) {
        std::printf("The simulator does not start\n");
        return 1;
    }
    const EnvironmentValue environment(L"APPDATA", appData.wstring());

    const SystemClock clock;
    HostModel host(clock);
    layOutServer(host);
    PluginLibrary plugin;
    if (!plugin.load(productFile("corvalis_win64.dll")) || !plugin.introduce(host)) {
        std::printf("The plugin does not load: %s\n", plugin.error().c_str());
        return 1;
    }
    plugin.exports().registerPluginID("circuit");
    const std::uint64_t startMs = systemTickMs();
    plugin.exports().init();
    FlightWatch watch(host, plugin, {dataFolder, out / "flight.tsv", kBoeingTheme}, startMs);
    watch.note(FlightEvent::kFlight, options.isShort ? "short" : "full",
               options.simulator ? options.simulator->name : "the built-in aircraft");
    watch.note(FlightEvent::kChannel, "", channelTitle(host.ownChannel(kCircuitServer)));
    watch.say("client      plugin started in " + std::to_string(systemTickMs() - startMs) + " ms" +
              (isNewClient() ? " by a 3.6 client" : ""));
    Flight flight{host, watch};
    if (!options.simulator || takeOff(watch, simulator, script)) flyLegs(flight, options, systemTickMs());
    watch.note(FlightEvent::kLeg, "", "Shutting down", "--- Shutting down");
    plugin.exports().shutdown();
    plugin.unload();
    writeClientLog(host, out / "client.log");
    if (options.simulator) writeSimulatorLog(simulator, out / "simulator.log");
    return reportEnd(host, watch);
}

}  // namespace

int main(int argc, char** argv) {
    SetConsoleOutputCP(CP_UTF8);
    if (const auto code = runAsNewClient()) return *code;
    useDevicePixels();
    if (argc < 2) {
        std::printf("usage: circuit OUT_FOLDER [--full] [--simconnect | --xplane]\n");
        return 2;
    }
    FlightOptions options;
    for (int i = 2; i < argc; i++) {
        options.isShort = options.isShort && std::strcmp(argv[i], "--full") != 0;
        if (const auto* simulator = findFlightSimulator(argv[i])) options.simulator = simulator;
    }
    return fly(argv[1], options);
}
