// xplane_flight_test.cpp - the worker with each kind of X-Plane and of aircraft.
#include "tests/unit/xplane/xplane_flight.h"

TEST_F(XplaneFlight, ReadsTheRadiosOfEachVersionAndNamesIt) {
    const struct {
        const char* personality;
        const char* name;
    } rows[] = {{"stock_12", "X-Plane 12.2.0"}, {"stock_11", "X-Plane 11.55"}, {"stock_10", "X-Plane 10.51"}};
    for (const auto& row : rows) {
        beginAndRead(row.personality);
        const auto shown = telemetry();
        EXPECT_NE(shown.status.find(row.name), std::string::npos) << shown.status;
        EXPECT_TRUE(logFile.has(row.name)) << logFile.text;
        EXPECT_EQ(shown.radios[0].active, 122'800);
        EXPECT_EQ(shown.radios[0].standby, 121'500);
        EXPECT_EQ(shown.radios[1].active, 121'500);
        EXPECT_EQ(shown.radios[1].standby, 118'000);
        EXPECT_EQ(shown.radios[1].volume, 1.0f);
        EXPECT_EQ(shown.radios[1].writable, allWritable(true));
        EXPECT_EQ(shown.rangeMax, 136'990);
    }
}

TEST_F(XplaneFlight, TakesNoHelperOfXplaneForXplane) {
    for (const char* personality : {"plane_maker", "external_visual", "instructor"}) {
        begin(personality);
        EXPECT_FALSE(flyUntil([&] { return telemetry().ok; }, 6000)) << personality;
        EXPECT_EQ(telemetry().status, "waiting for the simulator");
        EXPECT_EQ(network.sent, 0) << personality;
    }
}

TEST_F(XplaneFlight, WritesEverySlotOfEachRadio) {
    beginAndRead("stock_12");
    for (const int com : {1, 2}) {
        EXPECT_TRUE(command(com, "active", "136990").ackOk) << com;
        EXPECT_TRUE(command(com, "standby", "118005").ackOk) << com;
        EXPECT_EQ(command(com, "volume", "0.4").radios[static_cast<std::size_t>(com - 1)].volume, 0.4f) << com;
        const auto answer = command(com, "swap", "0");
        EXPECT_TRUE(answer.ackOk) << com;
        EXPECT_EQ(answer.radios[static_cast<std::size_t>(com - 1)].active, 118'005) << com;
    }
    EXPECT_EQ(heard(" write "), 6);
    EXPECT_EQ(heard(" command "), 2);
    EXPECT_EQ(heard("strange"), 0);
    EXPECT_EQ(heard("what there is not"), 0);
    EXPECT_EQ(cockpit().radios[1].activeKhz, 118'005);
    EXPECT_EQ(cockpit().radios[1].standbyKhz, 136'990);
    EXPECT_EQ(cockpit().radios[1].volume, 0.4f);
}

TEST_F(XplaneFlight, ShowsWhatThePilotTurnsInTheCockpit) {
    beginAndRead("stock_12");
    for (const char* megahertz : {"118.005", "136.990", "121.500"}) {
        act((std::string("tune COM1 active ") + megahertz).c_str());
        const auto khz = cockpit().radios[0].activeKhz;
        EXPECT_TRUE(flyUntil([&] { return showsActive(khz); }, 60)) << megahertz;
    }
    act("volume COM2 35");
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[1].volume == 0.35f; }, 60));
}

TEST_F(XplaneFlight, OffersNoMoreWhatTheAircraftIgnores) {
    const struct {
        const char* personality;
        const char* ignored;
        const char* target;
        const char* taken;
        std::size_t slot;
    } rows[] = {{"ignores_standby", "standby", "119000", "active", 1}, {"ignores_swaps", "swap", "0", "standby", 3}};
    for (const auto& row : rows) {
        beginAndRead(row.personality);
        for (int i = 0; i < 2; i++) {
            const auto answer = command(1, row.ignored, row.target);
            EXPECT_FALSE(answer.ackOk) << row.personality;
            EXPECT_NE(answer.ackMessage.find("refused"), std::string::npos) << answer.ackMessage;
        }
        fly(100);
        EXPECT_FALSE(telemetry().radios[0].writable[row.slot]) << row.personality;
        EXPECT_TRUE(telemetry().radios[1].writable[row.slot]) << row.personality;
        EXPECT_TRUE(command(1, row.taken, "119100").ackOk) << row.personality;
    }
}

TEST_F(XplaneFlight, ShowsWhatAnAircraftsOwnPanelMakesOfAWrite) {
    beginAndRead("own_panel");
    command(1, "standby", "119000");
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[0].standby == 121'500; }, 3000));
    fly(1000);
    EXPECT_EQ(telemetry().radios[0].standby, 121'500);
    EXPECT_TRUE(telemetry().ok);
}

TEST_F(XplaneFlight, CallsNothingDoneThatTheRadioRounds) {
    beginAndRead("snaps_frequencies");
    const auto answer = command(1, "active", "118105");
    EXPECT_FALSE(answer.ackOk);
    EXPECT_EQ(answer.radios[0].active, 118'100);
    EXPECT_TRUE(answer.radios[0].writable[0]);
}

TEST_F(XplaneFlight, DoesNotSwitchARadioOffByItsVolume) {
    beginAndRead("volume_power_knob");
    command(1, "volume", "0");
    fly(300);
    EXPECT_TRUE(cockpit().radios[0].isPowered);
    EXPECT_LE(cockpit().radios[0].volume, 0.01f);
    EXPECT_EQ(telemetry().radios[0].writable, allWritable(true));
}

TEST_F(XplaneFlight, OffersNoRadioWithoutPower) {
    beginAndRead("unpowered_radio");
    EXPECT_TRUE(flyUntil([&] { return !telemetry().radios[1].writable[0]; }, 1000));
    EXPECT_EQ(telemetry().radios[0].writable, allWritable(true));
    EXPECT_EQ(telemetry().radios[1].writable, allWritable(false));
    EXPECT_NE(telemetry().status.find("COM2 unpowered"), std::string::npos) << telemetry().status;
    const auto answer = command(2, "standby", "119000");
    EXPECT_FALSE(answer.ackOk);
    EXPECT_EQ(heard(" write "), 0);
    act("power COM2 on");
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[1].writable == allWritable(true); }, 3000));
}

TEST_F(XplaneFlight, OffersNothingUntilTheAvionicsAreOn) {
    begin("avionics_off");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 1900));
    EXPECT_EQ(telemetry().radios[0].writable, allWritable(false));
    EXPECT_EQ(telemetry().radios[1].writable, allWritable(false));
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[0].writable == allWritable(true); }, 3000));
}

TEST_F(XplaneFlight, FliesWithOneRadioWhereThereIsNoSecond) {
    for (const char* personality : {"lacks_com2", "lacks_com2_says_zero"}) {
        begin(personality);
        EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 3000)) << personality << ": " << telemetry().status;
        const auto shown = telemetry();
        EXPECT_EQ(shown.radios[0].writable, allWritable(true)) << personality;
        EXPECT_EQ(shown.radios[1].active, 0) << personality;
        EXPECT_EQ(shown.radios[1].writable, allWritable(false)) << personality;
        EXPECT_TRUE(command(1, "standby", "119000").ackOk) << personality;
        EXPECT_FALSE(command(2, "standby", "119000").ackOk) << personality;
    }
}

TEST_F(XplaneFlight, WaitsForALateEffect) {
    beginAndRead("answers_late");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_TRUE(command(1, "swap", "0").ackOk);
    fly(3000);
    EXPECT_EQ(telemetry().radios[0].active, 119'000);  // swapped once
}

TEST_F(XplaneFlight, PassesOverWhatMakesNoSenseAndSaysSoOnce) {
    beginAndRead("odd_datagrams");
    fly(3000);
    const auto lines = [&] { return std::count(logFile.text.begin(), logFile.text.end(), '\n'); };
    const auto before = lines();
    fly(10'000);
    EXPECT_EQ(lines(), before) << logFile.text;
    EXPECT_LE(before, 20) << logFile.text;
    EXPECT_TRUE(telemetry().ok);
    EXPECT_TRUE(command(1, "swap", "0").ackOk);
}

TEST_F(XplaneFlight, ShowsNoFrequencyOffTheGridAndNoVolumeOutOfRange) {
    const struct {
        const char* name;
        const char* value;
    } rows[] = {{"com1_frequency_hz_833", "118020"},   {"com1_frequency_hz_833", "117995"},
                {"com1_frequency_hz_833", "nan"},      {"com1_frequency_hz_833", "-inf"},
                {"com1_frequency_hz_833", "118000.5"}, {"audio_volume_com1", "1.5"},
                {"audio_volume_com1", "-0.1"},         {"audio_volume_com1", "nan"}};
    for (const auto& row : rows) {
        mayLagMs = 6000;
        beginAndRead("stock_12");
        act((std::string("show sim/cockpit2/radios/actuators/") + row.name + ' ' + row.value).c_str());
        for (int i = 0; i < 200; i++) {
            fly(20);
            const auto shown = telemetry().radios[0];
            EXPECT_TRUE(shown.active == 122'800 || shown.active == 0) << row.name << ' ' << row.value;
            EXPECT_TRUE(shown.volume == 1.0f || shown.volume == -1.0f) << row.name << ' ' << row.value;
        }
        EXPECT_TRUE(telemetry().ok) << row.name << ' ' << row.value;
    }
}

TEST_F(XplaneFlight, FliesWhenFramesAreSlow) {
    beginAndRead("slow_frames");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_TRUE(command(1, "swap", "0").ackOk);
    EXPECT_EQ(heard(" command "), 1);
}
