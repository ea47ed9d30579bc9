// worker_flight_test.cpp - the worker in the stand-in simulators and aircraft that behave.
#include "tests/unit/simulator/worker_flight.h"

TEST_F(WorkerFlight, InStockReadsWritesAndFollowsTheCockpit) {
    beginAndRead("stock");
    const auto first = telemetry();
    EXPECT_EQ(first.radios[0].active, 122800);
    EXPECT_EQ(first.radios[0].standby, 121500);
    EXPECT_EQ(first.radios[0].spacing, 1);
    EXPECT_EQ(first.radios[1].spacing, 0);
    EXPECT_EQ(first.radios[1].volume, 1.0f);
    EXPECT_EQ(first.radios[0].writable, allWritable(true));
    EXPECT_EQ(first.rangeMax, 136990);
    EXPECT_TRUE(command(1, "standby", "128855").ackOk);
    EXPECT_TRUE(command(1, "swap", "0").ackOk);
    EXPECT_EQ(telemetry().radios[0].active, 128855);
    EXPECT_TRUE(command(2, "active", "136975").ackOk);
    EXPECT_TRUE(command(2, "volume", "0.4").ackOk);
    EXPECT_FALSE(command(2, "active", "118005").ackOk);  // COM2 keeps to 25 kHz
    EXPECT_EQ(heard("COM_STBY_RADIO_SET_HZ 128855000"), 1);
    EXPECT_EQ(heard("COM1_RADIO_SWAP 0"), 1);
    EXPECT_EQ(heard("COM2_RADIO_SET_HZ"), 1);
    EXPECT_EQ(heard("COM2_VOLUME_SET 40"), 1);
    act("tune COM1 active 118.005");
    fly(60);
    EXPECT_EQ(telemetry().radios[0].active, 118005);
}

TEST_F(WorkerFlight, IsNotRefusedAnything) {
    beginAndRead("stock_2024");
    for (const auto& report : simulator->takeReports())
        EXPECT_EQ(report.text.find("refused"), std::string::npos) << report.text;
}

TEST_F(WorkerFlight, ReportsSwapsThatAreIgnoredAndStopsOfferingThem) {
    beginAndRead("ignores_swaps");
    EXPECT_FALSE(command(1, "swap", "0").ackOk);
    EXPECT_FALSE(command(1, "swap", "0").ackOk);
    fly(200);
    EXPECT_FALSE(telemetry().radios[0].writable[3]);
    EXPECT_TRUE(telemetry().radios[0].writable[1]);
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_EQ(heard("COM1_RADIO_SWAP"), 2);
    EXPECT_FALSE(command(1, "swap", "0").ackOk);
    EXPECT_EQ(heard("COM1_RADIO_SWAP"), 2);  // not even tried
    act("aircraft twin");
    fly(500);
    EXPECT_TRUE(telemetry().radios[0].writable[3]);
}

TEST_F(WorkerFlight, DoesNotCallASnappedFrequencyDone) {
    beginAndRead("snaps_frequencies");
    const auto answer = command(1, "active", "118105");
    EXPECT_FALSE(answer.ackOk);
    EXPECT_EQ(answer.radios[0].active, 118100);
    EXPECT_TRUE(command(1, "active", "118125").ackOk);
}

TEST_F(WorkerFlight, TunesARadioOffItsGridByWholeMegahertz) {
    beginAndRead("stock");
    act("tune COM2 standby 118.010");  // COM2 keeps to 25 kHz, its cockpit does not
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[1].standby == 118010; }, 200));
    EXPECT_TRUE(command(2, "standby", "119010").ackOk) << telemetry().ackMessage;
    EXPECT_EQ(telemetry().radios[1].standby, 119010);
    EXPECT_FALSE(command(2, "standby", "119015").ackOk);
    beginAndRead("snaps_frequencies");
    act("tune COM2 standby 118.010");
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[1].standby == 118010; }, 200));
    EXPECT_FALSE(command(2, "standby", "119010").ackOk);  // the aircraft has decided
    EXPECT_EQ(telemetry().radios[1].standby, 119000);
}

TEST_F(WorkerFlight, OffersNothingOnAnUnpoweredRadio) {
    beginAndRead("unpowered_radio");
    EXPECT_EQ(telemetry().radios[0].writable, allWritable(true));
    EXPECT_EQ(telemetry().radios[1].writable, allWritable(false));
    EXPECT_NE(telemetry().status.find("COM2 unpowered"), std::string::npos) << telemetry().status;
    EXPECT_FALSE(command(2, "active", "118100").ackOk);
    act("power COM2 on");
    fly(200);
    EXPECT_TRUE(command(2, "active", "118100").ackOk);
}

TEST_F(WorkerFlight, WaitsForALateAnswer) {
    beginAndRead("answers_late");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_GE(clock.tickMs() - startedMs, 900u);
    EXPECT_LT(clock.tickMs() - startedMs, 1100u);
}

TEST_F(WorkerFlight, UnderstandsRoughPackets) {
    mayTear = true;
    beginAndRead("rough_packets");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_TRUE(command(1, "swap", "0").ackOk);
    fly(5000);
    EXPECT_TRUE(telemetry().ok);
    EXPECT_EQ(telemetry().radios[0].active, 119000);
    EXPECT_EQ(logFile.count("connected to"), 1);
}

TEST_F(WorkerFlight, FindsAVersionThatTheSimulatorTakes) {
    beginAndRead("refuses_version_5");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_TRUE(logFile.has("protocol 6")) << logFile.text;
}

TEST_F(WorkerFlight, ShowsNoRadiosWhileTheMenuIsUp) {
    begin("in_menu");
    EXPECT_FALSE(flyUntil([&] { return telemetry().ok; }, 1900));
    EXPECT_EQ(telemetry().status, "simulator in menu");
    EXPECT_EQ(telemetry().radios[0].active, 0);
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 1000));
    EXPECT_EQ(telemetry().radios[0].active, 122800);
    act("sim menu");
    fly(100);
    EXPECT_FALSE(telemetry().ok);
}

TEST_F(WorkerFlight, ReadsTheRadiosOfAnotherAircraft) {
    beginAndRead("aircraft_change");
    EXPECT_EQ(telemetry().radios[1].active, 121500);
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok && telemetry().radios[0].active == 123500; }, 4000));
    const auto shown = telemetry();
    EXPECT_EQ(shown.radios[0].spacing, 0);
    EXPECT_EQ(shown.radios[1].active, 0);
    EXPECT_EQ(shown.radios[1].writable, allWritable(false));
    EXPECT_EQ(shown.rangeMax, 136975);
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_FALSE(command(2, "standby", "119000").ackOk);
}

TEST_F(WorkerFlight, DoesNotSwitchARadioOffByItsVolume) {
    beginAndRead("volume_power_knob");
    command(1, "volume", "0");
    fly(200);
    EXPECT_TRUE(simulator->aircraft().radios[0].isPowered);
    EXPECT_LE(simulator->aircraft().radios[0].volumePercent, 1.0);
    EXPECT_EQ(telemetry().radios[0].writable, allWritable(true));
}

TEST_F(WorkerFlight, OffersWhatWasIgnoredAgainInTheNextFlight) {
    beginAndRead("ignores_swaps");
    command(1, "swap", "0");
    command(1, "swap", "0");
    fly(100);
    ASSERT_FALSE(telemetry().radios[0].writable[3]);
    act("sim menu");
    fly(2000);
    act("sim running");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 2000));
    EXPECT_TRUE(telemetry().radios[0].writable[3]);
}
