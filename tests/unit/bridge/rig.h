// rig.h - what the bridge tests share: a telemetry file put together key by key, and all that one poll pass works on.
#pragma once
#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>
#include "base/number_text.h"
#include "bridge/poll_loop.h"
#include "plugin/host_table.h"
#include "tests/client/host_model.h"
#include "tests/unit/fakes.h"

inline constexpr const char* kFolder = "C:\\Data";
inline constexpr std::uint32_t kHostProcess = 4242;

inline std::string pathOf(const char* name) {
    return joinPath(kFolder, name);
}

// A telemetry file with every key that the plugin reads; set and drop change it key by key.
class TelemetryFile {
  public:
    TelemetryFile& set(const std::string& key, const std::string& json) {
        for (auto& field : fields_)
            if (field.first == key) {
                field.second = json;
                return *this;
            }
        fields_.emplace_back(key, json);
        return *this;
    }
    TelemetryFile& drop(const std::string& key) {
        std::erase_if(fields_, [&](const auto& field) { return field.first == key; });
        return *this;
    }
    // Nine decimals restore the exact value: rounded up, the file would be from the future.
    TelemetryFile& writtenAt(double unixSeconds) { return set("updated", formatFixed(unixSeconds, 9)); }
    TelemetryFile& reverse() {
        std::reverse(fields_.begin(), fields_.end());
        return *this;
    }
    const std::vector<std::pair<std::string, std::string>>& fields() const { return fields_; }
    std::string text(const std::string& colon = ": ", const std::string& comma = ", ") const {
        std::string text = "{";
        for (const auto& [key, json] : fields_) {
            if (text.size() > 1) text += comma;
            text += '"' + key + '"' + colon + json;
        }
        return text + "}";
    }

  private:
    std::vector<std::pair<std::string, std::string>> fields_ = {
        {"updated", "1790000000.000"},
        {"ok", "true"},
        {"protocol", "2"},
        {"range_min", "118000"},
        {"range_max", "136990"},
        {"com1_active", "122800"},
        {"com1_standby", "121500"},
        {"com1_spacing", "0"},
        {"com1_volume", "0.75"},
        {"com1_active_writable", "true"},
        {"com1_standby_writable", "true"},
        {"com1_volume_writable", "true"},
        {"com1_swap_writable", "true"},
        {"com2_active", "118005"},
        {"com2_standby", "127250"},
        {"com2_spacing", "1"},
        {"com2_volume", "0.5"},
        {"com2_active_writable", "true"},
        {"com2_standby_writable", "true"},
        {"com2_volume_writable", "true"},
        {"com2_swap_writable", "true"},
        {"ack_id", "\"4242-900\""},
        {"ack_ok", "true"},
        {"command_pending", "true"},
        {"status", "\"flying\""},
        {"ack_message", "\"Tuned\""},
    };
};

// The simulator's side of the command queue: one connected aircraft whose four slots may all be written.
inline SimState connectedState() {
    SimState state;
    state.connected = true;
    state.rangeMin = 118000;
    state.rangeMax = 136990;
    state.radios[0] = {122800, 121500, 0, 0.75f, {true, true, true, true}};
    state.radios[1] = {118005, 127250, 1, 0.5f, {true, true, true, true}};
    return state;
}

inline void setState(SharedSimState& sim, const SimState& state) {
    MutexLock lock(sim.mutex);
    sim.state = state;
}

inline std::vector<Command> commandsOf(CommandQueue& queue) {
    MutexLock lock(queue.mutex);
    return {queue.commands.begin(), queue.commands.end()};
}

// What a pass works with in a world that has all of it as members; the world outlives it.
template <class World>
PollContext pollContextOf(
    World& world, std::function<WorkerLife()> lookAtWorker = [] { return WorkerLife{}; }) {
    return {.host = world.functions,
            .files = world.files,
            .clock = world.clock,
            .dataFolder = kFolder,
            .processId = kHostProcess,
            .currentServer = world.server,
            .settings = world.settings,
            .radios = world.radios,
            .moves = world.moves,
            .talk = world.talk,
            .tails = world.tails,
            .voice = world.voice,
            .lookAtWorker = std::move(lookAtWorker)};
}

// All that the poll loop works on, beside a voice client: own client 5 in the lobby of server 1.
template <class Files>
struct PollRigOn {
    PollRigOn() {
        host.addServer(1, 5, 10);
        host.addChannel(1, {10, "Lobby"});
        host.addChannel(1, {11, "TWR 122.800"});
        host.addChannel(1, {12, "Guard 121,500"});
        moves.moveReturnCode = "rc";
        functions = resolveHostFunctions(host.table());
    }
    PollRigOn(const PollRigOn&) = delete;
    PollRigOn& operator=(const PollRigOn&) = delete;

    // One pass with telemetry written just now; then 50 ms pass and the host's events arrive.
    void pass() {
        if (workerAlive) files.put(pathOf(kTelemetryFile), telemetry.writtenAt(clock.unixSeconds()).text());
        pollOnce(memory, context);
        clock.advance(kPollPeriodMs);
        deliver();
    }
    void passFor(std::uint64_t ms) {
        for (std::uint64_t gone = 0; gone < ms; gone += kPollPeriodMs) pass();
    }
    void deliver() {
        for (const HostEvent& event : host.advance(clock.tickMs())) {
            if (event.kind == HostEventKind::kServerError)
                onServerError(moves, event.returnCode ? event.returnCode->c_str() : nullptr,
                              static_cast<std::int32_t>(event.error));
            if (event.kind == HostEventKind::kTalkStatus)
                talkChanged(talk, event.schid, event.clientId, event.talkStatus == 1, clock.tickMs());
        }
    }
    void change(const std::function<void(Settings&)>& edit) { updateSettings(settings, edit); }

    // When channel following looked at the host, in ms after the test began.
    std::vector<std::uint64_t> looks() const {
        std::vector<std::uint64_t> times;
        for (const HostCall& call : host.callsOf("getChannelList")) times.push_back(call.atMs - kStartMs);
        return times;
    }
    std::string channelStatus() { return copyStatus(radios.status).channelStatus; }
    std::string statusText() { return copyStatus(radios.status).statusText; }

    static constexpr std::uint64_t kStartMs = 1'000'000;  // ManualClock's first tick
    ManualClock clock;
    Files files;
    HostModel host{clock};
    HostFunctions functions;
    TelemetryFile telemetry;
    bool workerAlive = true;  // the telemetry is rewritten before every pass
    WorkerLife worker;        // what the plugin knows of the process
    std::atomic<std::uint64_t> server{1};
    SettingsStore settings{files};
    SimRadios radios;
    SharedSimState& sim = radios.sim;
    CommandQueue& commands = radios.commands;
    MoveTracker moves;
    TalkTracker talk;
    TailPlayer tails{functions, settings, clock, "C:/Data/radio_tail.wav", {}};
    VoiceLevels voice;
    PollMemory memory;
    PollContext context = pollContextOf(*this, [this] { return worker; });
};
using PollRig = PollRigOn<MemoryFiles>;
