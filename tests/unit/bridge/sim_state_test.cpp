// sim_state_test.cpp - from the file to SimState: freshness, the status line, and what a stale or missing file leaves.
#include "bridge/sim_state.h"
#include <gtest/gtest.h>
#include "tests/unit/bridge/rig.h"

namespace {

struct Reading {
    bool fresh = false;
    SelectedRadio selected;
    std::string status;
};

class SimStateTest : public testing::Test {
  protected:
    Reading readText(const std::string& text) {
        files.put(pathOf(kTelemetryFile), text);
        return read();
    }
    Reading read() {
        const auto read = readTelemetry(files, kFolder, clock);
        if (!read) return {};
        publishTelemetry(*read, reasonOf(WorkerLife{}, read), sim, status);
        return {read->fresh, selectRadio(copySettings(settings), *read), read->telemetry.status};
    }
    SimState state() { return copySimState(sim); }
    std::string statusText() { return copyStatus(status).statusText; }

    ManualClock clock;
    MemoryFiles files;
    SettingsStore settings{files};
    SharedSimState sim;
    StatusLines status;
    TelemetryFile file;
};

void expectUnknown(const RadioReading& radio) {
    EXPECT_EQ(radio.active, 0);
    EXPECT_EQ(radio.standby, 0);
    EXPECT_EQ(radio.volume, -1.0f);
}

// The clock moves on, or is set back, while the file is being read.
class ClockFiles : public MemoryFiles {
  public:
    ClockFiles(ManualClock& clock, std::uint64_t ms) : clock_(clock), ms_(ms) {}

  protected:
    FileResult readOnce(const std::string& path, std::size_t maxBytes, std::string& bytes) override {
        clock_.advance(ms_);
        return MemoryFiles::readOnce(path, maxBytes, bytes);
    }

  private:
    ManualClock& clock_;
    std::uint64_t ms_;
};

}  // namespace

TEST_F(SimStateTest, StartsDisconnectedWithUnknownRadios) {
    EXPECT_EQ(statusText(), "DISCONNECTED");
    EXPECT_FALSE(state().connected);
    for (const auto& radio : state().radios) {
        expectUnknown(radio);
        EXPECT_EQ(radio.spacing, -1);
    }
}

TEST_F(SimStateTest, AFreshFileFillsEveryField) {
    clock.tick = 777;
    EXPECT_TRUE(readText(file.text()).fresh);
    const SimState now = state();
    EXPECT_TRUE(now.connected);
    EXPECT_EQ(now.rangeMin, 118000);
    EXPECT_EQ(now.rangeMax, 136990);
    EXPECT_EQ(now.radios[0].active, 122800);
    EXPECT_EQ(now.radios[0].standby, 121500);
    EXPECT_EQ(now.radios[0].spacing, 0);
    EXPECT_EQ(now.radios[0].volume, 0.75f);
    EXPECT_EQ(now.radios[1].active, 118005);
    EXPECT_EQ(now.radios[1].standby, 127250);
    EXPECT_EQ(now.radios[1].spacing, 1);
    EXPECT_EQ(now.radios[1].volume, 0.5f);
    EXPECT_EQ(now.radios[1].writable, (std::array{true, true, true, true}));
    EXPECT_EQ(now.ackId, "4242-900");
    EXPECT_TRUE(now.ackOk);
    EXPECT_TRUE(now.commandPending);
    EXPECT_EQ(now.readTick, 777U);
}

TEST_F(SimStateTest, AgesFromNothingToJustUnderThreeSecondsAreFresh) {
    const struct {
        double age;
        bool fresh;
    } rows[] = {{0.0, true},    {0.001, true}, {1.5, true},     {2.999, true},   {3.0, false},
                {3.001, false}, {60.0, false}, {-0.001, false}, {-3600.0, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(readText(file.writtenAt(clock.unixSeconds() - row.age).text()).fresh, row.fresh) << row.age;
        EXPECT_EQ(state().connected, row.fresh) << row.age;
    }
}

TEST_F(SimStateTest, AnUpdatedTimeThatIsAbsentOrNoNumberIsStale) {
    EXPECT_FALSE(readText(TelemetryFile().drop("updated").text()).fresh);
    for (const char* json : {"nan", "inf", "-inf", "\"1790000000\"", "null"})
        EXPECT_FALSE(readText(TelemetryFile().set("updated", json).text()).fresh) << json;
}

TEST_F(SimStateTest, AClockSetBackMakesTheFileOneOfTheFuture) {
    EXPECT_TRUE(readText(file.text()).fresh);
    clock.seconds = clock.unixSeconds() - 3600.0;
    EXPECT_FALSE(read().fresh);
    EXPECT_EQ(statusText(), "DISCONNECTED: waiting for the worker");
    EXPECT_TRUE(readText(file.writtenAt(clock.unixSeconds()).text()).fresh);
}

TEST_F(SimStateTest, AFileWrittenAtTheMomentOfReadingIsNotOfTheFuture) {
    ClockFiles slow(clock, 20);
    slow.put(pathOf(kTelemetryFile), file.writtenAt(clock.unixSeconds() + 0.015).text());
    const auto reading = readTelemetry(slow, kFolder, clock);
    ASSERT_TRUE(reading);
    EXPECT_TRUE(reading->fresh);
}

TEST_F(SimStateTest, OnlyProtocolTwoCounts) {
    const struct {
        const char* json;
        bool fresh;
    } rows[] = {{"2", true},    {"2.0", true}, {"2e0", true},  {"20e-1", true}, {"3", false},    {"1", false},
                {"2.1", false}, {"-2", false}, {"nan", false}, {"null", false}, {"\"2\"", false}};
    for (const auto& row : rows)
        EXPECT_EQ(readText(file.set("protocol", row.json).text()).fresh, row.fresh) << row.json;
    EXPECT_FALSE(readText(file.drop("protocol").text()).fresh);
}

TEST_F(SimStateTest, OnlyTheLiteralTrueIsHealthy) {
    for (const char* json : {"True", "1", "TRUE", "\"true\"", "false", "null"})
        EXPECT_FALSE(readText(file.set("ok", json).text()).fresh) << json;
    EXPECT_FALSE(readText(file.drop("ok").text()).fresh);
    EXPECT_TRUE(readText(file.set("ok", "true").text()).fresh);
}

TEST_F(SimStateTest, AStaleFileGivesUnknownRadiosButSpacingRangeAndAcknowledgement) {
    readText(file.text());
    file.set("com1_spacing", "1").set("range_max", "136975").set("ack_id", "\"x\"").set("ack_ok", "false");
    file.set("command_pending", "false");
    clock.advance(3000);
    EXPECT_FALSE(readText(file.text()).fresh);
    const SimState now = state();
    EXPECT_FALSE(now.connected);
    EXPECT_EQ(statusText(), "DISCONNECTED: waiting for the worker");
    for (const auto& radio : now.radios) {
        expectUnknown(radio);
        EXPECT_EQ(radio.spacing, 1);
        EXPECT_EQ(radio.writable, (std::array{false, false, false, false}));
    }
    EXPECT_EQ(now.rangeMax, 136975);
    EXPECT_EQ(now.ackId, "x");
    EXPECT_FALSE(now.ackOk);
    EXPECT_FALSE(now.commandPending);
    EXPECT_EQ(now.readTick, clock.tickMs());
}

TEST_F(SimStateTest, AMissingOrEmptyFileLeavesTheStateUntouched) {
    readText(file.text());
    setStatusText(status, "something");
    files.remove(pathOf(kTelemetryFile));
    for (int round = 0; round < 2; round++) {
        clock.advance(50);
        EXPECT_FALSE(read().fresh);
        EXPECT_TRUE(state().connected);
        EXPECT_EQ(statusText(), "something");
        EXPECT_EQ(state().radios[0].active, 122800);
        EXPECT_EQ(state().readTick, clock.tickMs() - 50 * (static_cast<std::uint64_t>(round) + 1));
        files.put(pathOf(kTelemetryFile), "");
    }
}

TEST_F(SimStateTest, ALostBridgeResetsTheRadiosButKeepsSpacingAndWritability) {
    readText(file.text());
    setDisconnected({DisconnectCause::kWorkerSilent, 0, {}}, sim, status);
    EXPECT_FALSE(state().connected);
    EXPECT_EQ(statusText(), "DISCONNECTED: waiting for the worker");
    EXPECT_EQ(state().reason.cause, DisconnectCause::kWorkerSilent);
    expectUnknown(state().radios[0]);
    expectUnknown(state().radios[1]);
    EXPECT_EQ(state().radios[1].spacing, 1);
    EXPECT_EQ(state().radios[0].writable, (std::array{true, true, true, true}));
    EXPECT_EQ(state().ackId, "4242-900");
}

TEST_F(SimStateTest, TheChosenRadioAndSlotGiveFrequencyAndVolume) {
    const struct {
        std::int32_t radio, target, frequency;
        float volume;
    } rows[] = {{1, 0, 122800, 0.75f}, {1, 1, 121500, 0.75f}, {2, 0, 118005, 0.5f}, {2, 1, 127250, 0.5f}};
    for (const auto& row : rows) {
        updateSettings(settings, [&](Settings& live) {
            live.radio = row.radio;
            live.target = row.target;
        });
        const Reading reading = readText(file.text());
        EXPECT_EQ(reading.selected.frequencyKHz, row.frequency);
        EXPECT_EQ(reading.selected.volume, row.volume);
    }
}

TEST_F(SimStateTest, AStaleFileSelectsNothing) {
    clock.advance(10'000);
    const Reading reading = readText(file.text());
    EXPECT_EQ(reading.selected.frequencyKHz, 0);
    EXPECT_EQ(reading.selected.volume, -1.0f);
}

TEST_F(SimStateTest, TheWorkersStatusIsHandedOnAndNotShownWhileConnected) {
    EXPECT_EQ(readText(file.text()).status, "flying");
    EXPECT_NE(statusText(), "flying");
}

TEST_F(SimStateTest, ANewAcknowledgementShowsItsMessage) {
    EXPECT_TRUE(readText(file.set("ack_id", "\"1\"").text()).fresh);
    EXPECT_EQ(statusText(), "Tuned");
    readText(file.set("ack_id", "\"2\"").set("ack_message", "\"Refused\"").text());
    EXPECT_EQ(statusText(), "Refused");
    readText(file.set("ack_id", "\"3\"").set("ack_message", "\"\"").text());
    EXPECT_EQ(statusText(), "");
}

TEST_F(SimStateTest, TheSameAcknowledgementWhileConnectedLeavesTheStatusAlone) {
    readText(file.text());
    EXPECT_EQ(statusText(), "Tuned");
    readText(file.set("ack_message", "\"Another text\"").text());
    EXPECT_EQ(statusText(), "Tuned");
    setStatusText(status, "Writing; awaiting simulator readback");
    readText(file.text());
    EXPECT_EQ(statusText(), "Writing; awaiting simulator readback");
}

TEST_F(SimStateTest, TheFirstFreshFileWithoutAnAcknowledgementShowsConnected) {
    readText(file.set("ack_id", "\"\"").text());
    EXPECT_EQ(statusText(), "CONNECTED");
}

TEST_F(SimStateTest, ComingBackWithTheSameAcknowledgementShowsConnected) {
    readText(file.text());
    clock.advance(5000);
    readText(file.text());
    EXPECT_EQ(statusText(), "DISCONNECTED: waiting for the worker");
    readText(file.writtenAt(clock.unixSeconds()).text());
    EXPECT_EQ(statusText(), "CONNECTED");
}

TEST_F(SimStateTest, AnAcknowledgementSeenInAStaleFileIsNotNewWhenItFreshens) {
    readText(file.set("ok", "false").set("ack_id", "\"77\"").set("status", "\"simulator in menu\"").text());
    EXPECT_EQ(statusText(), "DISCONNECTED: simulator in menu");
    readText(file.set("ok", "true").text());
    EXPECT_EQ(statusText(), "CONNECTED");
}

TEST_F(SimStateTest, TheChannelStatusOutlivesEveryReading) {
    setChannelStatus(status, "TS3 channel confirmed");
    readText(file.text());
    readText(file.set("ok", "false").text());
    setDisconnected({}, sim, status);
    EXPECT_EQ(copyStatus(status).channelStatus, "TS3 channel confirmed");
}

TEST_F(SimStateTest, RadiosAreNumberedFromOne) {
    const SimState now = connectedState();
    EXPECT_EQ(radioOf(now, 1), &now.radios[0]);
    EXPECT_EQ(radioOf(now, 2), &now.radios[1]);
    for (const std::int32_t com : {0, 3, -1}) EXPECT_EQ(radioOf(now, com), nullptr);
}
