// worker_trouble_test.cpp - the worker with simulators that go away, stand still, stutter, stop reading or say too
// much.
#include "tests/unit/simulator/worker_flight.h"

TEST_F(WorkerFlight, SurvivesASimulatorThatQuitsOrCrashesInTheMiddleOfAWrite) {
    for (const char* personality : {"quits_mid_write", "crashes"}) {
        beginAndRead(personality);
        const auto answer = command(1, "standby", "119000");
        EXPECT_FALSE(answer.ackOk) << personality;
        EXPECT_FALSE(answer.ok) << personality;
        EXPECT_EQ(answer.radios[0].active, 0) << personality;
        EXPECT_LT(clock.tickMs() - startedMs, 500u) << personality;
        act("tune COM1 active 118.005");
        EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 8000)) << personality;
        EXPECT_EQ(telemetry().radios[0].active, 118005) << personality;
    }
}

TEST_F(WorkerFlight, IsNeverOkWithASilentOrNoisySimulatorAndFindsTheNextOne) {
    for (const char* personality : {"silent", "garbage"}) {
        begin(personality);
        EXPECT_FALSE(flyUntil([&] { return telemetry().ok; }, 30'000)) << personality;
        EXPECT_FALSE(telemetry().status.empty()) << personality;
        act("personality stock");
        EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 25'000)) << personality;
    }
}

TEST_F(WorkerFlight, StaysOkAndInTouchInAPause) {
    for (const char* personality : {"stock", "freezes_in_pause"}) {
        beginAndRead(personality);
        act("pause on");
        EXPECT_FALSE(flyUntil([&] { return !telemetry().ok; }, 10'000)) << personality;
    }
}

TEST_F(WorkerFlight, WritesInAPauseThatTheSimulatorObeys) {
    beginAndRead("stock");
    act("pause on");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
}

// Only the periodic rereading shows it.
TEST_F(WorkerFlight, ShowsWithinFiveSecondsWhatChangesInAPauseWithoutAWord) {
    constexpr std::uint64_t kRereadMs = 5100;
    mayLagMs = kRereadMs;
    beginAndRead("freezes_in_pause");
    act("pause on");
    for (const std::int32_t khz : {118000, 118025, 118050}) {
        act(("tune COM2 active " + formatFixed(khz / 1000.0, 3)).c_str());  // COM1's is the heartbeat
        EXPECT_TRUE(flyUntil([&] { return telemetry().radios[1].active == khz; }, kRereadMs)) << khz;
        EXPECT_TRUE(telemetry().ok);
        fly(170);  // at a different moment of the five seconds each time
    }
}

TEST_F(WorkerFlight, CallsNothingDoneThatTheSimulatorPutsOffUntilThePauseIsOver) {
    beginAndRead("freezes_in_pause");
    act("pause on");
    const auto answer = command(1, "standby", "119000");
    EXPECT_TRUE(answer.ok);
    EXPECT_FALSE(answer.ackOk);
    EXPECT_EQ(answer.radios[0].standby, 121500);
    EXPECT_GE(clock.tickMs() - startedMs, kReadbackLimitMs);
    EXPECT_EQ(heard("COM_STBY_RADIO_SET_HZ 119000000"), 1);
    act("pause off");
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[0].standby == 119000; }, 200));
    EXPECT_TRUE(command(1, "standby", "119100").ackOk);  // a late write is not an ignored one
}

// Both kinds of simulator: one says which kind of pause it is, the other only that it is one.
TEST_F(WorkerFlight, BlamesNoAircraftForWhatAPausePutsOff) {
    for (const char* personality : {"freezes_in_pause", "knows_one_pause"}) {
        beginAndRead(personality);
        act("pause on");
        for (const char* khz : {"119000", "119100", "119200"}) {
            const auto answer = command(1, "standby", khz);
            EXPECT_FALSE(answer.ackOk) << personality;
            EXPECT_EQ(answer.ackMessage, "COM1 STBY unchanged; simulator paused");
            EXPECT_TRUE(answer.radios[0].writable[1]) << personality;
        }
        act("pause off");
        EXPECT_TRUE(flyUntil([&] { return telemetry().radios[0].standby == 119200; }, 500)) << personality;
        EXPECT_TRUE(command(1, "standby", "119300").ackOk) << personality;
        act("ignore COM1 standby");  // and no pause is an excuse for what comes after it
        command(1, "standby", "119400");
        command(1, "standby", "119400");
        fly(100);
        EXPECT_FALSE(telemetry().radios[0].writable[1]) << personality;
    }
}

TEST_F(WorkerFlight, SurvivesAStutterWithEverythingThatWasUnderWay) {
    mayLagMs = 3000;
    begin("stutters");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 2000));
    EXPECT_FALSE(flyUntil([&] { return !telemetry().ok; }, 6000));
    EXPECT_EQ(logFile.count("link up"), 1) << logFile.text;
    for (const std::uint64_t beforeMs : {0, 300, 900}) {  // the write is on its way when the stutter begins
        act("readback 1000");
        const auto id = "2-" + std::to_string(beforeMs);
        const auto khz = std::to_string(119'000 + beforeMs);
        files.put("data\\command.json", commandText(id, 1, "standby", khz, clock.unixSeconds()));
        fly(60 + beforeMs);
        act("stutter 2.5");
        EXPECT_TRUE(flyUntil([&] { return telemetry().ackId == id; }, 4400 - beforeMs));
        EXPECT_TRUE(telemetry().ackOk) << beforeMs << ": " << telemetry().ackMessage;
        EXPECT_TRUE(telemetry().ok);
        fly(500);
    }
}

TEST_F(WorkerFlight, CallsTheLinkLostAfterThreeSecondsOfSilence) {
    mayLagMs = 4000;
    beginAndRead("stock");
    fly(500);
    const auto shown = telemetry();
    act("stutter 3.6");
    fly(2800);
    auto held = telemetry();
    EXPECT_TRUE(held.ok);
    EXPECT_EQ(held.radios, shown.radios);  // volumes too
    fly(500);
    EXPECT_FALSE(telemetry().ok);
    EXPECT_EQ(telemetry().status, "the simulator sends no data");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 1000));
}

TEST_F(WorkerFlight, AnswersBeforeThePluginGivesUpHoweverTheSimulatorStutters) {
    mayLagMs = 6000;
    beginAndRead("stock");
    act("ignore COM1 standby");
    files.put("data\\command.json", commandText("2-1", 1, "standby", "119000", clock.unixSeconds()));
    fly(100);
    const auto isAnswered = [&] { return telemetry().ackId == "2-1"; };
    for (int stutter = 0; stutter < 2; stutter++) {
        act("stutter 1.9");
        flyUntil(isAnswered, 2100);
    }
    EXPECT_TRUE(flyUntil(isAnswered, 100));
    EXPECT_EQ(telemetry().ackMessage, "COM1 STBY unchanged; simulator silent");
    act("stutter 0");
    fly(500);
    EXPECT_FALSE(command(1, "standby", "119000").ackOk);
    EXPECT_TRUE(telemetry().radios[0].writable[1]);  // the first one that was ignored
}

TEST_F(WorkerFlight, NamesASimulatorThatDoesNotReadAndBlamesNoAircraft) {
    begin("stops_reading");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 2000));
    fly(2100);
    for (int i = 0; i < 3; i++) {
        const auto answer = command(1, "swap", "0");
        EXPECT_EQ(answer.ackMessage, "COM1 swap unchanged; simulator not reading");
        EXPECT_TRUE(answer.ok);
        EXPECT_TRUE(answer.radios[0].writable[3]);
    }
    fly(10'000);
    EXPECT_EQ(logFile.count("UTC  the simulator does not read what it is told"), 1) << logFile.text;
    EXPECT_EQ(logFile.count("the simulator reads again"), 0);
    fly(10'000);
    EXPECT_EQ(logFile.count("UTC  the simulator does not read what it is told"), 1);
    EXPECT_EQ(logFile.count("the simulator reads again"), 1);
    EXPECT_TRUE(telemetry().ok);
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
}

TEST_F(WorkerFlight, KeepsCalmInAFloodOfAircraft) {
    beginAndRead("floods_aircraft");
    const auto lines = [&] { return static_cast<int>(std::count(logFile.text.begin(), logFile.text.end(), '\n')); };
    fly(2100);
    const int linesBefore = lines();
    const int writesBefore = files.replaces;
    fly(2600);
    EXPECT_LE(lines() - linesBefore, 3) << logFile.text;  // one a second
    EXPECT_GE(logFile.count("aircraft loaded"), 2);
    EXPECT_TRUE(logFile.has("aircraft loaded (the last of 1")) << logFile.text;
    EXPECT_LE(files.replaces - writesBefore, 10);
    EXPECT_FALSE(telemetry().ok);
    EXPECT_EQ(telemetry().status, "reading the radios");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 1500));  // as soon as it is over
    EXPECT_TRUE(command(1, "swap", "0").ackOk);
    EXPECT_EQ(heard("COM1_RADIO_SWAP"), 1);
}

// The radios are read in between, and forgotten again.
TEST_F(WorkerFlight, LogsTheLinkAFewTimesOnlyWhileAircraftComeThreeTimesASecond) {
    beginAndRead("stock");
    fly(3000);
    const int before = logFile.count("  link ");
    for (int i = 0; i < 60; i++) {  // twenty seconds
        act("aircraft twin");
        fly(333);
    }
    EXPECT_GE(logFile.count("  link ") - before, 2) << logFile.text;
    EXPECT_LE(logFile.count("  link ") - before, 12) << logFile.text;
    fly(4000);
    EXPECT_GT(logFile.text.rfind("  link up: "), logFile.text.rfind("  link down: ")) << logFile.text;
}

TEST_F(WorkerFlight, ComesBackAfterEveryLoss) {
    beginAndRead("stock");
    for (const char* loss : {"drop 2", "quit 3", "crash 1", "drop 0"}) {
        act(loss);
        EXPECT_TRUE(flyUntil([&] { return !telemetry().ok; }, 1000)) << loss;
        EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 10'000)) << loss;
        EXPECT_TRUE(command(1, "swap", "0").ackOk) << loss;
    }
}
