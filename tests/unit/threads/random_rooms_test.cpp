// random_rooms_test.cpp - all that threads share, worked on by all of them in random order, while the plugin starts and
// ends: the poll loop, the panel, the message window, dialogs, the host's events, the voice hooks, the worker, and a
// stranger who damages files. Under the thread sanitizer; random_schedules.sh runs it for minutes on end.
#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include "audio/voice_hooks.h"
#include "messages/message_intake.h"
#include "messages/message_page.h"
#include "panel/panel_picture.h"
#include "plugin/host_events.h"
#include "plugin/thread_slot.h"
#include "settings/dialog/dialog_model.h"
#include "settings/dialog/dialog_slot.h"
#include "settings/settings_text.h"
#include "tests/unit/audio/voice_blocks.h"
#include "tests/unit/bridge/rig.h"
#include "tests/unit/settings/settings_ranges.h"
#include "tests/unit/threads/random_schedule.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/simulated_aircraft.h"
#include "worker/worker_loop.h"

namespace {

constexpr std::uint32_t kUsualTurns = 150;  // of each thread
constexpr std::uint16_t kEnglishSystem = 0x0409;
constexpr const char* kScript = "1 tune COM1 active 121.500\n2 swap COM2\n3 volume COM1 30\n4 drop 1\n6 repeat\n";

class PanelHands final : public PanelActions {
  public:
    void openSettings() override { Schedule::meet(); }
    void toggleTextWindow() override { Schedule::meet(); }
};

class WindowHands final : public NewestMessageOpener {
  public:
    void openNewest() override { Schedule::meet(); }
};

// Without a simulator nothing is known of any radio.
bool isWhole(const SimState& state) {
    return state.connected || std::all_of(state.radios.begin(), state.radios.end(), [](const RadioReading& radio) {
               return radio.active == 0 && radio.standby == 0 && radio.volume == -1.0f;
           });
}

class RandomRooms : public testing::Test {
  public:
    RandomRooms() {
        for (const std::uint64_t schid : {1U, 2U}) {
            host.addServer(schid, static_cast<std::uint16_t>(4 + schid), 10);
            host.addChannel(schid, {10, "Lobby"});
            host.addChannel(schid, {11, "TWR 122.800"});
            host.addChannel(schid, {12, "Guard 121,500"});
            for (std::uint16_t client = 30; client < 36; client++) host.addClient(schid, client, 10);
        }
        host.setMoveRule({MoveAnswer::kRefuseLater, 30, kHostErrorNoPermission, true});
        host.setBeforeCall([](const HostCall&) { Schedule::meet(); });
        setSettingsFolders(settings, kFolder, "");
        moves.moveReturnCode = "rc";
        functions = resolveHostFunctions(host.table());
    }

    void note(bool holds, const char* promise) {
        if (holds) return;
        const std::lock_guard lock(brokenMutex);
        broken.emplace_back(promise);
    }
    std::uint64_t nowMs() const { return clock.tickMs(); }

    // --- [poll] ---
    void runPolling() {
        Schedule::begin(seed, 100);
        PollMemory memory;
        PollContext context = pollContextOf(*this);
        while (!stopPolling) {
            tryPass(radios, [&] { pollOnce(memory, context); });
            clock.advance(kPollPeriodMs);
            std::this_thread::yield();
        }
        finishPolling(voice);
    }

    // --- [ui]: the panel and the message window ---
    void runWindows() {
        Schedule::begin(seed, 101);
        PanelModel panel;
        MessagePage page;
        const PageTools tools{[](const PageTextStyle& style, std::u16string_view text) {
                                  Schedule::meet();
                                  return style.size * static_cast<float>(text.size()) / 2.0f;
                              },
                              [](double) { return TimeOfDay{}; }, clock};
        while (!stopUi) {
            operatePanel(panel);
            showPanel(panel);
            if (Schedule::oneIn(3)) page.change_page(messages, static_cast<std::int32_t>(Schedule::below(3)) - 1);
            if (Schedule::oneIn(40)) page.clear(messages);
            const auto shown = page.layOut(messages, page.look(messages, 15.0f, languageIndex, 96), tools);
            note(page.items(shown).size() < 64, "a page has few parts");
            std::this_thread::yield();
        }
    }
    void operatePanel(PanelModel& panel) {
        const PanelContext context{settings, radios, panelHands};
        const PixelPoint at{static_cast<std::int32_t>(Schedule::below(900)),
                            static_cast<std::int32_t>(Schedule::below(300))};
        switch (Schedule::below(6)) {
            case 0:
                pressPanel(panel, context, at, nowMs());
                break;
            case 1:
                releasePanel(panel, context, at, nowMs());
                break;
            case 2:
                wheelPanel(panel, context, at, Schedule::oneIn(2) ? 120 : -120, nowMs());
                break;
            case 3:
                clickElement(context, static_cast<std::int32_t>(Schedule::below(19)), nowMs());
                break;
            case 4:
                stepFrequency(radios, 1, kSlotActive, Schedule::oneIn(2), 1, nowMs());
                break;
            default:
                movePanel(panel, context, at, nowMs());
        }
        if (Schedule::oneIn(8)) enqueue(radios, 2, kSlotSwap, 0.0, -1.0f, nowMs());
    }
    void showPanel(const PanelModel& panel) {
        const PanelInputs inputs{copySettings(settings),
                                 copySimState(radios.sim),
                                 copyCommands(radios.commands),
                                 copyStatus(radios.status),
                                 talk.ownTransmit,
                                 talk.othersReceiving,
                                 messages.unread,
                                 nowMs()};
        const auto picture = makePicture(inputs, panel, placePanel(inputs.settings, {0, 0, 1920, 1080}, 96));
        note(isWhole(inputs.sim), "the radios are those of one reading");
        note(picture.volumePercent >= 0.0f && picture.volumePercent <= 100.0f, "the knob stays on its scale");
        note(inputs.commands.size() <= kMaxCommands, "the queue is short");
        note(fieldOutOfRange(inputs.settings).empty(), "a copy of the settings is whole");
    }

    // --- [host]: its events, and the menu ---
    void takeEvents() {
        const auto client = static_cast<std::uint16_t>(30 + Schedule::below(6));
        const std::uint64_t schid = 1 + Schedule::below(2);
        switch (Schedule::below(12)) {
            case 0:
                serverConnectionChanged(server, talk, Schedule::below(3), nowMs());
                break;
            case 1:
                connectStatusChanged(server, talk, functions, schid, static_cast<int>(Schedule::below(5)), nowMs());
                break;
            case 2:
                clientMoved(talk, schid, client, Schedule::below(2), nowMs());
                break;
            case 3:
                onServerError(moves, Schedule::oneIn(2) ? "rc" : nullptr,
                              static_cast<std::int32_t>(Schedule::below(3)));
                break;
            case 4:
                host.setOwnTalkingFlag(schid, Schedule::oneIn(2));
                break;
            case 5:
                updateSettings(settings, [](Settings& live) { live.distort_others = !live.distort_others; });
                break;
            case 6:
                languageIndex = static_cast<std::int32_t>(Schedule::below(9));
                break;
            case 7:
                for (const HostEvent& event : host.advance(nowMs()))
                    if (event.kind == HostEventKind::kServerError)
                        onServerError(moves, event.returnCode ? event.returnCode->c_str() : nullptr, 1);
                break;
            case 8:
            case 9:
                takeTextMessage({"Tower", "CLRD to EDDF via ELKUR, squawk 1234", kChannelMessage, client}, messages,
                                clock, {functions, settings, schid, alertPath, windowHands});
                break;
            default:
                talkChanged(talk, schid, client, Schedule::oneIn(2), nowMs());
        }
    }

    // --- [dialog] ---
    void openDialog() {
        if (!slot.enter()) return;
        note(dialogs++ == 0, "there is one dialog at most");
        DialogModel model;
        followLive(model, copySettings(settings));
        for (auto left = Schedule::below(12); left > 0 && !slot.isClosing(); left--) {
            runDialogCommand(model, dialogRows()[Schedule::below(static_cast<std::uint32_t>(dialogRows().size()))].id);
            followLive(model, copySettings(settings));
            if (Schedule::oneIn(4)) commitDialog(model, settings, languageIndex, kEnglishSystem);
            if (Schedule::oneIn(6)) addMessage(messages, "Corvalis", "a sample", kPrivateMessage, 0, nowMs());
            if (Schedule::oneIn(20)) clearMessages(messages);
            note(isWhole(copySimState(radios.sim)), "the live radio is that of one reading");
        }
        dialogs--;
        slot.leave();
    }

    // --- [audio] ---
    void runAudio(const std::atomic<bool>& stop, std::uint32_t thread) {
        Schedule::begin(seed, thread);
        CapturedVoice captured;
        PlaybackVoices playback;
        VoiceBlocks blocks(seed + thread);
        std::uint32_t lastGeneration = 0;
        while (!stop) {
            const auto controls = loadVoiceControls(settings, voice);
            note(controls.dspGeneration >= lastGeneration, "generations only grow");
            note(controls.audioFlags < 32 && controls.receiveGain >= 0.0f && controls.receiveGain < 2.0f &&
                     controls.transmitGain >= 1.0f && controls.transmitGain < 8.0f && controls.captureMode <= 2,
                 "what the hooks are told is sane");
            lastGeneration = controls.dspGeneration;
            auto block = blocks.take(Sound::kSpeech, 128);
            int edited = 0;
            editCapturedVoice(captured, controls, block.data(), 128, 1, &edited);
            editPlaybackVoice(playback, controls, speakerKey(1, static_cast<std::uint16_t>(Schedule::below(20))),
                              block.data(), 128, 1 + static_cast<int>(Schedule::below(2)));
            std::this_thread::yield();
        }
    }

    // --- the worker, and a stranger in its folder ---
    void runWorker(const std::atomic<bool>& stop) {
        Schedule::begin(seed, 102);
        MemoryFolder folder(files);
        MemoryLogFile logFile;
        WorkerLog log(logFile, clock);
        SimulatedAircraft aircraft(parseFlightScript(kScript), clock.tickMs());
        WorkerLoop loop(kFolder, files, folder, aircraft, log);
        while (!stop) {
            loop.pass(clock.tickMs(), clock.unixSeconds());
            if (logFile.text.size() > 100'000) logFile.text.clear();
            std::this_thread::yield();
        }
    }
    void damage() {
        const char* const names[] = {kTelemetryFile, kCommandFile, kCaptureModeFile};
        const auto path = pathOf(names[Schedule::below(3)]);
        auto text = files.text(path);
        switch (Schedule::below(5)) {
            case 0:
                return files.remove(path);
            case 1:
                return files.put(path, text.substr(0, Schedule::below(static_cast<std::uint32_t>(text.size()) + 1)));
            case 2:
                if (!text.empty()) text[Schedule::below(static_cast<std::uint32_t>(text.size()))] ^= 1;
                return files.put(path, text);
            case 3:
                return files.put(path, "2\nmark\n");
            default:
                files.readOnly = Schedule::oneIn(4);
        }
    }

    // --- [host]: start and end of the plugin, in the order of plugin/lifecycle_win.cpp ---
    void startPlugin() {
        poll.join();
        savePendingSettings(settings, 0);
        setSettingsFolders(settings, kFolder, "");
        loadSettings(settings);
        slot.reopen();
        applySettings(settings);
        note(startWithStopFlag(poll, stopPolling, [this] { runPolling(); }) == 0, "there is a thread");
        if (!ui.isRunning()) note(startWithStopFlag(ui, stopUi, [this] { runWindows(); }) == 0, "there is a thread");
    }
    void stopPolls() {
        stopPolling = true;
        poll.join();
    }
    void stopPlugin() {
        slot.close();
        stopUi = true;
        ui.join();
        stopPolls();
        note(slot.waitUntilFree(20'000), "a dialog goes when the plugin ends");
        note(dialogs == 0, "no dialog outlives the plugin");
        savePendingSettings(settings);
        clearMessages(messages);
        forgetAllTalk(talk, nowMs());
        forgetRadios(radios);
    }
    void liveOnce() {
        if (ui.isRunning() && Schedule::oneIn(3)) {
            stopPolls();  // a second start without an end
            return startPlugin();
        }
        if (ui.isRunning()) stopPlugin();
        startPlugin();
    }

    // The threads that have so many turns, and those that go on until all of these are done.
    void runEveryone(std::uint32_t turns) {
        std::atomic<bool> stop{false};
        std::vector<std::thread> busy, others;
        const auto repeat = [&](std::uint32_t thread, std::uint32_t count, const std::function<void()>& body) {
            busy.emplace_back([this, thread, count, body] {
                Schedule::begin(seed, thread);
                for (std::uint32_t turn = 0; turn < count; turn++) {
                    body();
                    Schedule::meet();
                }
            });
        };
        startPlugin();
        for (const std::uint32_t thread : {1U, 2U}) others.emplace_back([&, thread] { runAudio(stop, thread); });
        others.emplace_back([&] { runWorker(stop); });
        for (const std::uint32_t thread : {3U, 4U}) repeat(thread, turns, [this] { takeEvents(); });
        for (const std::uint32_t thread : {5U, 6U}) repeat(thread, turns / 8, [this] { openDialog(); });
        repeat(7, turns, [this] { damage(); });
        repeat(8, turns / 15, [this] { liveOnce(); });
        for (auto& thread : busy) thread.join();
        files.readOnly = false;
        stopPlugin();
        stop = true;
        for (auto& thread : others) thread.join();
    }

    const std::uint32_t seed = wantedNumber("CORVALIS_SCHEDULE_SEED", 1);
    MeetingClock clock;
    MeetingFiles files;
    HostModel host{clock};
    HostFunctions functions;
    std::atomic<std::uint64_t> server{1};
    std::atomic<std::int32_t> languageIndex{2};
    SettingsStore settings{files, [](std::string_view) { Schedule::meet(); }};
    SimRadios radios;
    MoveTracker moves;
    TalkTracker talk;
    TailPlayer tails{functions, settings, clock, "C:/Data/radio_tail.wav", {}};
    const std::function<std::string()> alertPath = [] { return std::string("C:/Data/text_alert.wav"); };
    MessageStore messages;
    VoiceLevels voice;
    PanelHands panelHands;
    WindowHands windowHands;
    DialogSlot slot;
    std::atomic<int> dialogs{0};
    ThreadSlot poll, ui;
    std::atomic<bool> stopPolling{false}, stopUi{false};
    std::mutex brokenMutex;
    std::vector<std::string> broken;  // promises, under brokenMutex
};

}  // namespace

TEST_F(RandomRooms, KeepTheirPromisesInAnyOrderOfEvents) {
    runEveryone(wantedNumber("CORVALIS_SCHEDULE_TURNS", kUsualTurns));
    EXPECT_EQ(broken, std::vector<std::string>{}) << "CORVALIS_SCHEDULE_SEED=" << seed;
    EXPECT_EQ(voice.ReceiveGain, 1.0f);
    EXPECT_EQ(settings.AudioFlags, audioFlagsOf(copySettings(settings)));
    EXPECT_EQ(readSettingsText(files.text(pathOf(kSettingsFile))),
              readSettingsText(writeSettingsText(copySettings(settings))));
    EXPECT_EQ(host.problems(), std::vector<std::string>{});
    EXPECT_EQ(host.leaks(), std::vector<std::string>{});
}
