// rooms_test.cpp - every thread of the plugin at once on the same data: the poll loop, the panel, the host's events,
// the audio hooks and the worker. The thread sanitizer watches; also, no file or host call may be made under our locks.
#include <gtest/gtest.h>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <thread>
#include "exchange/command_text.h"
#include "plugin/host_events.h"
#include "settings/settings_text.h"
#include "tests/unit/bridge/rig.h"

namespace {

constexpr int kTurns = 250;                           // for each thread; enough for each to be interrupted anywhere
constexpr auto kDeadline = std::chrono::seconds(20);  // a busy machine under a sanitizer

// Takes each of our locks once from another thread, while the caller is inside a file or host call. A lock held by the
// caller would keep that thread waiting past the deadline.
class LockProbe {
  public:
    LockProbe(SettingsStore& settings, SimRadios& radios, TalkTracker& talk)
        : settings_(settings), radios_(radios), talk_(talk) {}

    // The settings-file mutex may be held while its own file is saved.
    void check(const std::string& place, bool savesSettings) {
        count_++;
        if (isHeld_) return;  // one is enough, and each would take until the deadline
        auto taken = std::make_shared<std::promise<void>>();
        auto done = taken->get_future();
        std::thread other([this, taken, savesSettings] {
            copySettings(settings_);
            copySimState(radios_.sim);
            copyStatus(radios_.status);
            isBusy(radios_.commands, 0);
            { MutexLock lock(talk_.mutex); }
            if (!savesSettings) {
                MutexLock lock(settings_.fileMutex);
            }
            taken->set_value();
        });
        if (done.wait_for(kDeadline) == std::future_status::ready) {
            other.join();
            return;
        }
        isHeld_ = true;
        MutexLock lock(mutex_);  // the thread goes on once the caller lets go; finish() waits for it
        held_.push_back(place);
        stuck_.push_back(std::move(other));
    }
    // Where a lock was held; call it after all other threads have ended.
    std::vector<std::string> finish() {
        MutexLock lock(mutex_);
        for (auto& thread : stuck_) thread.join();
        stuck_.clear();
        return held_;
    }
    std::size_t count() const { return count_; }

  private:
    SettingsStore& settings_;
    SimRadios& radios_;
    TalkTracker& talk_;
    std::atomic<std::size_t> count_{0};
    std::atomic<bool> isHeld_{false};
    Mutex mutex_;
    std::vector<std::string> held_ GUARDED_BY(mutex_);
    std::vector<std::thread> stuck_ GUARDED_BY(mutex_);
};

// Calls back before each file is touched.
class WatchedFiles : public MemoryFiles {
  public:
    std::function<void(const std::string&)> onTouch;  // set before the threads start

  protected:
    FileResult readOnce(const std::string& path, std::size_t maxBytes, std::string& bytes) override {
        if (onTouch) onTouch(path);
        return MemoryFiles::readOnce(path, maxBytes, bytes);
    }
    FileResult moveOnce(const std::string& from, const std::string& to, bool isReplacing) override {
        if (onTouch) onTouch(to);
        return MemoryFiles::moveOnce(from, to, isReplacing);
    }
};

bool isSettingsFile(const std::string& path) {
    return path.ends_with("settings.ini");
}

// The worker's side: fields of one reading that must stay together all come from one number.
std::string readingOf(std::int32_t turn, double unixSeconds, const std::string& ackId) {
    TelemetryFile file;
    const std::int32_t khz = 118000 + turn % 2 * 1000;
    file.writtenAt(unixSeconds).set("ack_id", '"' + ackId + '"').set("ack_ok", turn % 7 == 0 ? "false" : "true");
    for (const char* key : {"com1_active", "com1_standby", "com2_active", "com2_standby"})
        file.set(key, std::to_string(khz));
    return file.set("range_min", std::to_string(khz)).text();
}

bool fitsTogether(const SimState& state) {
    if (!state.connected) return state.radios[0].active == 0 && state.radios[1].standby == 0;
    for (const auto& radio : state.radios)
        if (radio.active != state.rangeMin || radio.standby != state.rangeMin) return false;
    return true;
}

class RoomsTest : public testing::Test {
  public:
    RoomsTest() {
        host.addServer(1, 5, 10);
        host.addServer(2, 6, 20);
        host.addChannel(1, {10, "Lobby"});
        host.addChannel(1, {11, "APP 118.000"});
        host.addChannel(2, {20, "Lobby"});
        host.addChannel(2, {21, "119,000"});
        for (std::uint16_t client = 30; client < 40; client++) host.addClient(1, client, 10);
        host.setMoveRule({MoveAnswer::kRefuseLater, 30, kHostErrorNoPermission, true});
        files.onTouch = [this](const std::string& path) { probe.check(path, isSettingsFile(path)); };
        host.setBeforeCall([this](const HostCall& call) { probe.check(call.function, false); });
        setSettingsFolders(settings, kFolder, "");
        moves.moveReturnCode = "rc";
        functions = resolveHostFunctions(host.table());
    }

    void runPolling(const std::atomic<bool>& stop) {
        PollMemory memory;
        PollContext context = pollContextOf(*this);
        while (!stop) {
            pollOnce(memory, context);
            clock.advance(kPollPeriodMs);
            passes++;
        }
        finishPolling(voice);
    }
    void runWorker(int turn) {
        const std::string command = files.text(pathOf(kCommandFile));
        const auto id = command.empty() ? "" : command.substr(7, command.find('"', 7) - 7);
        if (turn % 20 == 19) return files.remove(pathOf(kTelemetryFile));
        files.put(pathOf(kTelemetryFile), readingOf(turn / 10, clock.unixSeconds(), id));
    }
    void runPanel(int turn) {
        const std::uint64_t nowMs = clock.tickMs();
        stepFrequency(radios, 1 + turn % 2, turn % 2, turn % 5 == 0, turn % 3 - 1, nowMs);
        enqueue(radios, 1, kSlotVolume, 0.5, static_cast<float>(turn % 100), nowMs);
        if (turn % 4 == 0) enqueue(radios, 2, kSlotSwap, 0.0, -1.0f, nowMs);
        updateSettings(settings, [&](Settings& live) {
            live.panel_x++;
            live.enabled = turn % 10 != 0;
            live.radio = 1 + turn % 2;
        });
        changeSettings(
            settings, [&](Settings& live) { live.text_scale = 12.0f + static_cast<float>(turn % 10); },
            clock.tickMs() + 100);
        if (!fitsTogether(copySimState(sim))) torn++;
        pendingCommand(copyCommands(commands), 1, kSlotActive);
        if (commandsOf(commands).size() > kMaxCommands) tooMany++;
        if (const Settings copy = copySettings(settings); copy.receive_volume < 0.0f) torn++;
    }
    void runHost(int turn) {
        const std::uint64_t nowMs = clock.tickMs();
        const auto client = static_cast<std::uint16_t>(30 + turn % 10);
        talkChanged(talk, 1, client, turn / 10 % 2 == 0, nowMs);
        if (turn % 13 == 0) clientMoved(talk, 1, client, 0, nowMs);
        if (turn % 17 == 0) host.setOwnTalkingFlag(1, turn % 2 == 0);
        if (turn % 40 == 0) serverConnectionChanged(server, talk, 1 + static_cast<std::uint64_t>(turn / 40 % 2), nowMs);
        if (turn % 90 == 89) connectStatusChanged(server, talk, functions, server, kStatusDisconnected, nowMs);
        for (const HostEvent& event : host.advance(nowMs))
            if (event.kind == HostEventKind::kServerError)
                onServerError(moves, event.returnCode ? event.returnCode->c_str() : nullptr,
                              static_cast<std::int32_t>(event.error));
        onServerError(moves, "someone else's", 1);
        updateSettings(settings, [&](Settings& live) {
            live.panel_y++;
            live.distort_self = turn % 2 == 0;
            live.transmit_gain = static_cast<float>(turn % 19);
        });
        applySettings(settings);
    }
    // Atomics only, as in the hooks; true if their values make sense.
    bool readsSensibly(std::uint32_t& lastGeneration) const {
        const std::uint32_t generation = settings.DspGeneration;
        const bool grows = generation >= lastGeneration;
        lastGeneration = generation;
        const float transmit = settings.TransmitGain;
        const float receive = voice.ReceiveGain;
        const std::int32_t capture = voice.CaptureMode;
        const std::uint16_t own = talk.ownClientId;
        static_cast<void>(talk.ownTransmit.load());
        static_cast<void>(talk.othersReceiving.load());
        static_cast<void>(talk.lastTalkEventTick.load());
        return grows && settings.AudioFlags < 32 && transmit >= 1.0f && transmit < 8.0f && receive >= 0.0f &&
               receive < 2.0f && capture >= 0 && capture <= 2 && (own == 0 || own == 5 || own == 6);
    }
    void runAudio(const std::atomic<bool>& stop) {
        std::uint32_t generation = 0;
        while (!stop) {
            if (!readsSensibly(generation)) nonsense++;
            std::this_thread::yield();
        }
    }
    void runEveryone() {
        std::atomic<bool> stop{false};
        std::thread poll([&] { runPolling(stop); });
        std::vector<std::thread> audio;
        for (int i = 0; i < 2; i++) audio.emplace_back([&] { runAudio(stop); });
        std::vector<std::thread> busy;
        busy.emplace_back([&] { repeat([&](int turn) { runWorker(turn); }); });
        busy.emplace_back([&] { repeat([&](int turn) { runPanel(turn); }); });
        busy.emplace_back([&] { repeat([&](int turn) { runHost(turn); }); });
        for (auto& thread : busy) thread.join();
        EXPECT_TRUE(settle());
        stop = true;
        poll.join();
        for (auto& thread : audio) thread.join();
    }
    // Afterwards the poll loop goes on alone until it has written, moved and played; false if it never does.
    bool settle() {
        server = 1;
        updateSettings(settings, [](Settings& live) { live.enabled = true; });
        const auto deadline = std::chrono::steady_clock::now() + kDeadline;
        while (std::chrono::steady_clock::now() < deadline) {
            runWorker(0);
            const bool hasWritten = files.has(pathOf(kCommandFile));
            if (!hasWritten) enqueue(radios, 2, kSlotSwap, 0.0, -1.0f, clock.tickMs());
            talkChanged(talk, 1, 30, passes / 10 % 2 == 0, clock.tickMs());
            if (hasWritten && !host.callsOf("requestClientMove").empty() && !host.playedSounds().empty()) return true;
            std::this_thread::yield();
        }
        return false;
    }
    // Each thread waits for the poll loop's passes, so that all of them last equally long.
    void repeat(const std::function<void(int)>& body) {
        for (int turn = 0; turn < kTurns; turn++) {
            body(turn);
            while (passes < turn) std::this_thread::yield();
        }
    }

    ManualClock clock;
    WatchedFiles files;
    HostModel host{clock};
    HostFunctions functions;
    std::atomic<std::uint64_t> server{1};
    SettingsStore settings{files};
    SimRadios radios;
    SharedSimState& sim = radios.sim;
    CommandQueue& commands = radios.commands;
    MoveTracker moves;
    TalkTracker talk;
    TailPlayer tails{functions, settings, clock, "C:/Data/radio_tail.wav", {}};
    VoiceLevels voice;
    LockProbe probe{settings, radios, talk};
    std::atomic<int> passes{0};
    std::atomic<int> torn{0};
    std::atomic<int> tooMany{0};
    std::atomic<int> nonsense{0};
};

}  // namespace

TEST_F(RoomsTest, AllThreadsTogetherTearNothingAndCallNobodyUnderALock) {
    runEveryone();
    EXPECT_EQ(probe.finish(), std::vector<std::string>{});
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(tooMany, 0);
    EXPECT_EQ(nonsense, 0);
    EXPECT_EQ(voice.ReceiveGain, 1.0f);

    // Each call was checked, and no rule of the host was broken.
    EXPECT_GE(passes, kTurns - 1);
    EXPECT_GT(probe.count(), static_cast<std::size_t>(kTurns));
    EXPECT_EQ(host.problems(), std::vector<std::string>{});
    EXPECT_EQ(host.leaks(), std::vector<std::string>{});
}

TEST_F(RoomsTest, NoChangeOfTheSettingsIsLostAndTheFileEndsWithTheNewest) {
    runEveryone();
    const Settings live = copySettings(settings);
    EXPECT_EQ(live.panel_x, Settings{}.panel_x + kTurns);
    EXPECT_EQ(live.panel_y, Settings{}.panel_y + kTurns);
    SettingsStore next(files);
    setSettingsFolders(next, kFolder, "");
    loadSettings(next);
    EXPECT_EQ(copySettings(next), live);
    EXPECT_EQ(settings.AudioFlags, audioFlagsOf(live));
    EXPECT_EQ(settings.TransmitGain, transmitGainOf(live));
}

TEST(SettingsOrder, TheFileIsWrittenInTheOrderOfTheChanges) {
    // Panel coordinates only grow, so an older record written late has a smaller sum than the one before it.
    class OrderedFiles : public MemoryFiles {
      public:
        std::atomic<int> late{0};

      protected:
        FileResult writeOnce(const std::string& path, std::string_view bytes, bool isFlushed) override {
            for (int i = 0; i < 20; i++) std::this_thread::yield();  // a slow disk
            const Settings written = readSettingsText(bytes);
            const std::int32_t sum = written.panel_x + written.panel_y;
            if (newest_.exchange(sum) >= sum) late++;
            return MemoryFiles::writeOnce(path, bytes, isFlushed);
        }

      private:
        std::atomic<std::int32_t> newest_{0};
    };
    OrderedFiles files;
    SettingsStore settings(files);
    std::thread first([&] {
        for (int i = 0; i < kTurns; i++) updateSettings(settings, [](Settings& live) { live.panel_x++; });
    });
    for (int i = 0; i < kTurns; i++) updateSettings(settings, [](Settings& live) { live.panel_y++; });
    first.join();
    EXPECT_EQ(files.late, 0);
    EXPECT_EQ(files.replaces, 2 * kTurns);
}

// A host event reads its time, is delayed, and arrives after the poll loop has noted a later start.
TEST(TalkTimes, AnEventOlderThanTheStartOfTheTransmissionGivesNoTail) {
    TalkTracker talk;
    talkChanged(talk, 1, 5, true, 1001);
    talkChanged(talk, 1, 5, false, 1000);
    EXPECT_TRUE(takeTails(talk).empty());
}
