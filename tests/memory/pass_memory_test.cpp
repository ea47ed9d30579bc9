// pass_memory_test.cpp - memory runs out somewhere in a pass of the plugin's poll loop, or of the worker's: that pass
// is lost and nothing else.
#include "audio/volume_policy.h"
#include "exchange/support_files.h"
#include "settings/settings_text.h"
#include "tests/memory/plentiful_fakes.h"
#include "tests/unit/bridge/rig.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/simulated_aircraft.h"
#include "worker/worker_loop.h"

namespace {

struct Bridge : PollRigOn<PlentifulFiles> {
    Bridge() {
        setSettingsFolders(settings, kFolder, "");
        change([](Settings& live) { live.python = "C:\\Program Files\\Python 3\\pythonw.exe"; });
        functions = plentifulHost(functions);
        tails.tailPath = "C:/Data/radio_tail.wav";
        telemetry.set("status", "\"a status that is longer than a short string\"");
    }
    void tryOnePass() {
        tryPass(radios, [this] { pollOnce(memory, context); });
    }
    // The worker answers whatever command.json asks for.
    void answerCommand() {
        const std::string text = files.text(pathOf(kCommandFile));
        if (!text.empty()) telemetry.set("ack_id", text.substr(6, text.find('"', 7) - 6 + 1));
    }
    void expectNothingBroken() const {
        EXPECT_EQ(host.problems(), std::vector<std::string>{});
        EXPECT_EQ(host.leaks(), std::vector<std::string>{});
    }
    void expectConnected() {
        EXPECT_TRUE(copySimState(sim).connected);
        EXPECT_EQ(copySimState(sim).radios[0].active, 122800);
    }
    // From the scarce pass on there is memory again.
    void goOnFor(std::uint64_t ms) {
        clock.advance(kPollPeriodMs);
        deliver();
        for (std::uint64_t gone = 0; gone < ms; gone += kPollPeriodMs) {
            answerCommand();
            pass();
        }
    }
};

// A volume turned to 95: the aircraft's goes to full, the rest is the plugin's own boost.
constexpr float kTurned = 95.0f;

struct BridgeWithCommand : Bridge {
    BridgeWithCommand() {
        passFor(100);
        EXPECT_TRUE(enqueue(radios, 1, kSlotVolume, 1.0, kTurned, clock.tickMs()));
    }
    void expectCarriedOut() {
        EXPECT_NE(files.text(pathOf(kCommandFile)).find("\"target\":1,"), std::string::npos);
        EXPECT_TRUE(commandsOf(commands).empty());
        EXPECT_EQ(copySettings(settings).receive_volume, boostPercentOf(kTurned));
        savePendingSettings(settings);
        EXPECT_EQ(readSettingsText(files.text(pathOf(kSettingsFile))).receive_volume, boostPercentOf(kTurned));
    }
};

}  // namespace

TEST(ScarceMemoryInAPass, TheFrequencyIsFollowedNevertheless) {
    struct Following : Bridge {
        Following() { passFor(kStableMs); }  // the next pass asks for the move
    };
    forEveryAllocation<Following>(
        [](Following& bridge) { bridge.tryOnePass(); },
        [](Following& bridge, bool wasRefused) {
            const std::string line = bridge.statusText();
            EXPECT_TRUE(line == "CONNECTED" || line == "Tuned" || (wasRefused && line.starts_with("DISCONNECTED")))
                << line;
            bridge.goOnFor(5000);
            EXPECT_EQ(bridge.host.ownChannel(1), 11u);
            bridge.expectConnected();
            bridge.expectNothingBroken();
        });
}

TEST(ScarceMemoryInAPass, ACommandIsWrittenAndCarriedOutNevertheless) {
    struct Writing : BridgeWithCommand {
        Writing() { passFor(kCoalesceMs); }  // the next pass writes
    };
    forEveryAllocation<Writing>([](Writing& bridge) { bridge.tryOnePass(); },
                                [](Writing& bridge, bool) {
                                    bridge.goOnFor(2000);
                                    bridge.expectCarriedOut();
                                    bridge.expectConnected();
                                    bridge.expectNothingBroken();
                                });
}

TEST(ScarceMemoryInAPass, AnAnswerFromTheSimulatorIsNotLost) {
    struct Answered : BridgeWithCommand {
        Answered() {
            passFor(kCoalesceMs + kPollPeriodMs);
            answerCommand();
            files.put(pathOf(kTelemetryFile), telemetry.writtenAt(clock.unixSeconds()).text());
        }
    };
    forEveryAllocation<Answered>([](Answered& bridge) { bridge.tryOnePass(); },
                                 [](Answered& bridge, bool) {
                                     bridge.goOnFor(200);
                                     bridge.expectCarriedOut();
                                     bridge.expectNothingBroken();
                                 });
}

TEST(ScarceMemoryInAPass, WhatIsDueIsSavedPlayedAndReadNevertheless) {
    struct Due : Bridge {
        Due() {
            passFor(1000);
            changeSettings(
                settings, [](Settings& live) { live.python = "C:\\Program Files\\Python\\python.exe"; },
                clock.tickMs());
            files.put(pathOf(kCaptureModeFile), "2\r\nmark\r\n");
            talkChanged(talk, 1, 30, true, clock.tickMs() - kShortestTransmissionMs);
            talkChanged(talk, 1, 30, false, clock.tickMs());
            files.put(pathOf(kTelemetryFile), telemetry.writtenAt(clock.unixSeconds()).text());
        }
    };
    forEveryAllocation<Due>([](Due& bridge) { bridge.tryOnePass(); },
                            [](Due& bridge, bool wasRefused) {
                                bridge.goOnFor(2000);
                                EXPECT_EQ(readSettingsText(bridge.files.text(pathOf(kSettingsFile))).python,
                                          "C:\\Program Files\\Python\\python.exe");
                                EXPECT_EQ(bridge.voice.CaptureMode, 2);
                                EXPECT_FALSE(bridge.talk.othersReceiving);
                                if (!wasRefused) {
                                    EXPECT_EQ(bridge.host.playedSounds().size(), 1u);
                                }
                                EXPECT_EQ(bridge.files.text(pathOf(kLinkStateFile)), "CONNECTED\r\n");
                                bridge.expectNothingBroken();
                            });
}

TEST(ScarceMemoryInATalkEvent, TheLampIsRightWithTheNextEvent) {
    struct Talking {
        Talking() { talkChanged(talk, 1, 30, true, 1000); }
        TalkTracker talk;
    };
    forEveryAllocation<Talking>(
        [](Talking& world) {
            try {
                talkChanged(world.talk, 1, 31, true, 2000);
            } catch (const std::bad_alloc&) {
            }
        },
        [](Talking& world, bool) {
            talkChanged(world.talk, 1, 30, false, 2100);
            talkChanged(world.talk, 1, 31, true, 2150);  // as the host says it again
            EXPECT_TRUE(world.talk.othersReceiving);
            talkChanged(world.talk, 1, 31, false, 2200);
            EXPECT_FALSE(world.talk.othersReceiving);
        });
}

namespace {

class PlentifulFolder : public MemoryFolder {
  public:
    using MemoryFolder::MemoryFolder;
    FileStamp stamp(const std::string& path) override {
        const PlentyOfMemory plenty;
        return MemoryFolder::stamp(path);
    }
};

class PlentifulLogFile : public MemoryLogFile {
  public:
    bool append(std::string_view line) override {
        const PlentyOfMemory plenty;
        return MemoryLogFile::append(line);
    }
};

// A worker that is about to find a command.
struct Worker {
    Worker() {
        for (int i = 0; i < 20; i++) pass();
        files.put("C:\\d\\command.json", commandText("4242-1000000-x", 1, "standby", "118005", clock.unixSeconds()));
    }
    void pass() {
        clock.advance(kPassMs);
        loop.pass(clock.tickMs(), clock.unixSeconds());
    }
    void tryOnePass() {
        try {
            pass();
        } catch (const std::bad_alloc&) {
        }
    }

    ManualClock clock;
    PlentifulFiles files;
    PlentifulFolder folder{files};
    PlentifulLogFile logFile;
    WorkerLog log{logFile, clock};
    SimulatedAircraft aircraft{parseFlightScript(""), clock.tickMs()};
    WorkerLoop loop{"C:\\d", files, folder, aircraft, log};
};

}  // namespace

TEST(ScarceMemoryInTheWorker, APassIsLostAndTheNextOnesReportAndObey) {
    forEveryAllocation<Worker>(
        [](Worker& worker) { worker.tryOnePass(); },
        [](Worker& worker, bool) {
            for (int i = 0; i < 100; i++) worker.pass();
            worker.files.put("C:\\d\\command.json",
                             commandText("4242-1000001-x", 2, "standby", "118025", worker.clock.unixSeconds()));
            for (int i = 0; i < 100; i++) worker.pass();
            const Telemetry read = parseTelemetry(worker.files.text("C:\\d\\telemetry.json"));
            EXPECT_TRUE(isFresh(read, worker.clock.unixSeconds()));
            EXPECT_EQ(read.ackId, "4242-1000001-x");
            // A write that found no memory under way may count as refused: the aircraft is asked only once.
            const bool isAnswered = worker.logFile.has("command 4242-1000000-x (COM1 STBY 118.005) failed");
            EXPECT_TRUE(read.radios[0].standby == 118005 || isAnswered);
            EXPECT_EQ(read.radios[1].standby, 118025);
        });
}
