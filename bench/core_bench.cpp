// core_bench.cpp - what the core costs on this machine, each beside a peer or a baseline of the same run.
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>
#include "audio/tones.h"
#include "base/number_text.h"
#include "settings/settings_text.h"
#include "tests/unit/bridge/rig.h"

namespace {

constexpr std::size_t kFileBytes = 2048;  // the worker's file plus what a talkative worker would add
constexpr std::size_t kChannels = 2000;
constexpr double kNow = 1790000000.0;  // ManualClock's wall clock

const char* const kNumberKeys[] = {"updated",     "protocol",     "range_min",    "range_max",
                                   "com1_active", "com1_standby", "com1_spacing", "com1_volume",
                                   "com2_active", "com2_standby", "com2_spacing", "com2_volume"};
const char* const kFlagKeys[] = {"ok",
                                 "com1_active_writable",
                                 "com1_standby_writable",
                                 "com1_volume_writable",
                                 "com1_swap_writable",
                                 "com2_active_writable",
                                 "com2_standby_writable",
                                 "com2_volume_writable",
                                 "com2_swap_writable",
                                 "ack_ok",
                                 "command_pending"};
const char* const kTextKeys[] = {"ack_id", "status", "ack_message"};

// A file of kFileBytes: every key that is read, the rest filled with keys that are not.
std::string telemetryText() {
    std::string text = R"({"updated": )" + formatFixed(kNow, 3) + R"(, "ok": true, "protocol": 2, )";
    text += R"("range_min": 118000, "range_max": 136990, )";
    for (const std::string com : {"com1_", "com2_"}) {
        text += '"' + com + R"(active": 122800, ")" + com + R"(standby": 121500, ")" + com + R"(spacing": 0, )";
        text += '"' + com + R"(volume": 0.75, )";
        for (const char* slot : {"active", "standby", "volume", "swap"})
            text += '"' + com + slot + R"(_writable": true, )";
    }
    text += R"("ack_id": "4242-900", "ack_ok": true, "command_pending": false, "status": "flying")";
    for (int i = 0; text.size() + 60 < kFileBytes; i++)
        text += R"(, "extra_)" + std::to_string(100 + i) + R"(": 1234.5)";
    text += R"(, "ack_message": ")";
    return text + std::string(kFileBytes - text.size() - 2, 'm') + "\"}";
}

// Table functions without bookkeeping: the cheapest host possible, so that only our own code is measured.
namespace bare {
std::vector<std::string> gNames;

unsigned freeMemory(void* memory) {
    std::free(memory);
    return 0;
}
unsigned clientId(std::uint64_t, std::uint16_t* id) {
    *id = 5;
    return 0;
}
unsigned channelOfClient(std::uint64_t, std::uint16_t, std::uint64_t* channel) {
    *channel = 1;
    return 0;
}
unsigned channelName(std::uint64_t, std::uint64_t channel, std::size_t, char** text) {
    const std::string& name = gNames[channel - 1];
    *text = static_cast<char*>(std::malloc(name.size() + 1));
    std::memcpy(*text, name.c_str(), name.size() + 1);
    return 0;
}
unsigned channelList(std::uint64_t, std::uint64_t** list) {
    *list = static_cast<std::uint64_t*>(std::malloc((gNames.size() + 1) * sizeof(std::uint64_t)));
    for (std::size_t i = 0; i < gNames.size(); i++) (*list)[i] = i + 1;
    (*list)[gNames.size()] = 0;
    return 0;
}

HostFunctions host() {
    gNames.clear();
    for (std::size_t i = 0; i < kChannels; i++) gNames.push_back("Sector " + std::to_string(i) + " 118.005 / 127.250");
    HostFunctions functions;
    functions.freeMemory = freeMemory;
    functions.getClientID = clientId;
    functions.getChannelOfClient = channelOfClient;
    functions.getChannelVariableAsString = channelName;
    functions.getChannelList = channelList;
    return functions;
}
}  // namespace bare

// --- telemetry ---

void parseOurs(benchmark::State& state) {
    const std::string text = telemetryText();
    for (auto _ : state) benchmark::DoNotOptimize(parseTelemetry(text));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(parseOurs)->Name("telemetry 2 KB/ours");

void parsePeer(benchmark::State& state) {
    const std::string text = telemetryText();
    for (auto _ : state) {
        const auto json = nlohmann::json::parse(text);
        double sum = 0.0;
        std::size_t letters = 0;
        for (const char* key : kNumberKeys) sum += json.value(key, 0.0);
        for (const char* key : kFlagKeys) sum += json.value(key, false) ? 1.0 : 0.0;
        for (const char* key : kTextKeys) letters += json.value(key, std::string()).size();
        benchmark::DoNotOptimize(sum);
        benchmark::DoNotOptimize(letters);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(parsePeer)->Name("telemetry 2 KB/peer nlohmann::json");

// --- a pass of the poll loop ---

struct PassRig {
    PassRig() {
        host.addServer(1, 5, 11);
        host.addChannel(1, {11, "TWR 122.800"});
        functions = resolveHostFunctions(host.table());
        files.put(joinPath(kFolder, kTelemetryFile), telemetryText());
    }
    ManualClock clock;  // stands still, as does the telemetry
    MemoryFiles files;
    HostModel host{clock};
    HostFunctions functions;
    std::atomic<std::uint64_t> server{1};
    SettingsStore settings{files};
    SimRadios radios;
    MoveTracker moves;
    TalkTracker talk;
    TailPlayer tails{functions, settings, clock, "C:/Data/radio_tail.wav", {}};
    VoiceLevels voice;
    PollMemory memory;
    PollContext context = pollContextOf(*this);
};

void passUnchanged(benchmark::State& state) {
    PassRig pass;
    int since = 0;
    for (auto _ : state) {
        pollOnce(pass.memory, pass.context);
        if (++since < 1000) continue;
        state.PauseTiming();
        pass.host.forgetCalls();  // the model's records would grow forever
        since = 0;
        state.ResumeTiming();
    }
    if (!copySimState(pass.radios.sim).connected) state.SkipWithError("the telemetry was not read");
}
BENCHMARK(passUnchanged)->Name("poll pass/unchanged telemetry");

void passBaseline(benchmark::State& state) {
    PassRig pass;
    const std::string path = joinPath(kFolder, kTelemetryFile);
    std::string text;
    for (auto _ : state) {
        pass.files.read(path, text);
        benchmark::DoNotOptimize(parseTelemetry(text));
    }
}
BENCHMARK(passBaseline)->Name("poll pass/baseline: read and parse alone");

// --- the channel list ---

void followChannels(benchmark::State& state) {
    const HostFunctions host = bare::host();
    MoveTracker tracker;
    const ManualClock clock;
    MoveReport report;
    for (auto _ : state) benchmark::DoNotOptimize(report = followFrequency(tracker, host, clock, 1, 122800));
    if (report.stage != MoveStage::kNoChannel) state.SkipWithError("not walked to the end");
}
BENCHMARK(followChannels)->Name("follow 2000 channels/ours")->Unit(benchmark::kMicrosecond);

void walkChannels(benchmark::State& state) {
    const HostFunctions host = bare::host();
    for (auto _ : state) {
        std::uint64_t* list = nullptr;
        host.getChannelList(1, &list);
        for (const std::uint64_t* channel = list; *channel != 0; channel++) {
            char* name = nullptr;
            host.getChannelVariableAsString(1, *channel, kChannelName, &name);
            benchmark::DoNotOptimize(name);
            host.freeMemory(name);
        }
        host.freeMemory(list);
    }
}
BENCHMARK(walkChannels)->Name("follow 2000 channels/baseline: the walk alone")->Unit(benchmark::kMicrosecond);

// --- settings and sounds ---

void settingsWrite(benchmark::State& state) {
    const Settings settings;
    for (auto _ : state) benchmark::DoNotOptimize(writeSettingsText(settings));
}
BENCHMARK(settingsWrite)->Name("settings/write");

void settingsRead(benchmark::State& state) {
    const std::string text = writeSettingsText(Settings{});
    for (auto _ : state) benchmark::DoNotOptimize(readSettingsText(text));
}
BENCHMARK(settingsRead)->Name("settings/read");

void settingsCopy(benchmark::State& state) {
    const std::string text = writeSettingsText(Settings{});
    for (auto _ : state) {
        std::string copy = text;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(settingsCopy)->Name("settings/baseline: copying the text alone");

void tailSound(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(wavFileOf(synthesizeTail()));
}
BENCHMARK(tailSound)->Name("sounds/tail, 0.3 s")->Unit(benchmark::kMicrosecond);

void alertSound(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(wavFileOf(synthesizeAlert()));
}
BENCHMARK(alertSound)->Name("sounds/alert, 0.5 s")->Unit(benchmark::kMicrosecond);

// The alert's sines and exponentials computed with the C library, and nothing else.
void libmSound(benchmark::State& state) {
    for (auto _ : state) {
        double sum = 0.0;
        for (int n = 0; n < kAlertSamples; n++) {
            const double t = static_cast<double>(n) / kToneRateHz;
            sum += (0.35 * std::sin(13150.7 * t) + std::sin(6575.35 * t)) * std::exp(-t / 0.075);
        }
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(libmSound)->Name("sounds/peer: libm's sine and exp")->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
