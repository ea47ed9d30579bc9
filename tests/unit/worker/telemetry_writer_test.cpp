#include "worker/telemetry_writer.h"
#include <gtest/gtest.h>
#include "exchange/flat_json.h"
#include "tests/unit/worker/worker_fakes.h"

namespace {

const std::string kPath = "C:\\data\\telemetry.json";

struct TelemetryWriting : testing::Test {
    ManualClock clock;
    MemoryFiles files;
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    TelemetryWriter writer{kPath, files, log};
    Telemetry record;

    // True if this pass wrote the file.
    bool passWrites(std::uint64_t afterMs) {
        clock.advance(afterMs);
        const int before = files.replaces;
        writer.pass(record, clock.tickMs(), clock.unixSeconds());
        return files.replaces > before;
    }
    double stamp() {
        const auto text = files.text(kPath);
        return findField(readFlatJson(text).value(), "updated")->number;
    }
};

}  // namespace

TEST_F(TelemetryWriting, WritesAtOnceThenKeepsItsDistance) {
    EXPECT_TRUE(passWrites(0));
    int atMs = 0;
    for (int i = 0; i < 1000; i++) {
        record.radios[0].active = i;
        atMs++;
        if (passWrites(1)) {
            EXPECT_EQ(atMs, static_cast<int>(kMinWriteGapMs));
            atMs = 0;
        }
    }
    EXPECT_EQ(files.replaces, 1 + 1000 / static_cast<int>(kMinWriteGapMs));  // 20 Hz while everything changes
}

TEST_F(TelemetryWriting, WritesAnUnchangedRecordTwiceASecond) {
    EXPECT_TRUE(passWrites(0));
    int sinceMs = 0;
    for (int i = 0; i < 400; i++) {
        sinceMs += 25;
        if (passWrites(25)) {
            EXPECT_GE(sinceMs, 400);
            sinceMs = 0;
        }
        ASSERT_LT(sinceMs, 500);
    }
}

TEST_F(TelemetryWriting, SaysWhenItWantsTheNextPass) {
    EXPECT_EQ(writer.msUntilDue(record, clock.tickMs()), 0u);
    passWrites(0);
    EXPECT_EQ(writer.msUntilDue(record, clock.tickMs()), kMaxWriteGapMs);
    record.commandPending = true;
    EXPECT_EQ(writer.msUntilDue(record, clock.tickMs() + 20), kMinWriteGapMs - 20);
    EXPECT_EQ(writer.msUntilDue(record, clock.tickMs() + 1000), 0u);
}

TEST_F(TelemetryWriting, KeepsItsRhythmWhenTheClockIsSetBack) {
    EXPECT_TRUE(passWrites(0));
    clock.seconds = clock.seconds.load() - 3600.0;
    EXPECT_TRUE(passWrites(kMaxWriteGapMs));
    EXPECT_NEAR(stamp(), clock.unixSeconds(), 0.002);
    record.ok = true;
    EXPECT_TRUE(passWrites(kMinWriteGapMs));
}

TEST_F(TelemetryWriting, TriesAgainAndLogsALastingFailureOnce) {
    files.readOnly = true;
    for (int i = 0; i < 100; i++) passWrites(51);
    EXPECT_EQ(files.replaces, 100);
    EXPECT_EQ(logFile.count("telemetry.json cannot be written"), 1);
    files.readOnly = false;
    EXPECT_TRUE(passWrites(51));
    EXPECT_EQ(logFile.count("telemetry.json is written again"), 1);
}

TEST_F(TelemetryWriting, SaysNothingOfASingleFailure) {
    files.readOnly = true;
    EXPECT_TRUE(passWrites(0));
    files.readOnly = false;
    EXPECT_TRUE(passWrites(51));
    EXPECT_FALSE(passWrites(51));
    EXPECT_EQ(logFile.text, "");
}

TEST(TelemetryOfTheWorker, SaysConnectedBeforeAnyAcknowledgement) {
    SimSnapshot sim;
    sim.ok = true;
    const Telemetry telemetry = telemetryOf(sim, false, CommandAck{});
    EXPECT_EQ(telemetry.ackId, "");
    EXPECT_EQ(telemetry.ackMessage, "CONNECTED");
    EXPECT_FALSE(telemetry.ackOk);
}
