// simconnect_writes_test.cpp - what the link sends, what it makes of the read-back, and what it learns of an aircraft.
#include <cmath>
#include "tests/unit/worker/simconnect/radios_rig.h"

TEST_F(SimConnectRadios, WritesInHertzAndPercentByTheRightNames) {
    fly();
    set("COM SPACING MODE:2", 1);
    const struct {
        std::size_t radio;
        RadioSlot slot;
        double value;
        const char* event;
    } rows[] = {
        {0, kSlotActive, 118005, "COM_RADIO_SET_HZ 118005000"},
        {0, kSlotStandby, 136990, "COM_STBY_RADIO_SET_HZ 136990000"},
        {0, kSlotVolume, 0.64, "COM1_VOLUME_SET 64"},
        {0, kSlotSwap, 0, "COM1_RADIO_SWAP 0"},
        {1, kSlotActive, 128855, "COM2_RADIO_SET_HZ 128855000"},
        {1, kSlotStandby, 121500, "COM2_STBY_RADIO_SET_HZ 121500000"},
        {1, kSlotVolume, 1.0, "COM2_VOLUME_SET 100"},
        {1, kSlotSwap, 0, "COM2_RADIO_SWAP 0"},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(link.write({row.radio, row.slot, row.value}, nowMs)) << row.event;
        EXPECT_EQ(simulator.keyEvents().back(), row.event);
    }
}

TEST_F(SimConnectRadios, SendsNothingThatIsNoChannelOrNoVolume) {
    fly();
    const RadioWrite rows[] = {{0, kSlotActive, 118020}, {0, kSlotStandby, 137000}, {1, kSlotActive, 118005},
                               {0, kSlotVolume, 1.01},   {0, kSlotVolume, -0.01},   {0, kSlotActive, NAN},
                               {0, kSlotVolume, NAN},    {0, kSlotActive, 1e300}};
    for (const auto& row : rows) EXPECT_FALSE(link.write(row, nowMs)) << row.value;
    EXPECT_TRUE(simulator.keyEvents().empty());
}

TEST_F(SimConnectRadios, AcknowledgesWhatTheSimulatorShows) {
    fly();
    command(0, kSlotStandby, 118005);
    pass(400);
    EXPECT_TRUE(handler.isPending());
    EXPECT_EQ(sim().radios[0].standby, 121500);  // not before the simulator reports it
    set("COM STANDBY FREQUENCY:1", 118.00499999999999);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-1", true, "COM1 STBY 118.005"}));
    command(0, kSlotVolume, 0.637);
    set("COM VOLUME:1", 64);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-2", true, "COM1 volume 64 %"}));
    command(0, kSlotSwap, 0);
    simulator.tell("COM ACTIVE FREQUENCY:1", 118.005);
    simulator.tell("COM STANDBY FREQUENCY:1", 122.8);
    pass();
    EXPECT_EQ(handler.ack(), (CommandAck{"1-3", true, "COM1 swapped to 118.005"}));
}

TEST_F(SimConnectRadios, ASlotIsUnwritableAfterTwoIgnoredWritesUntilTheAircraftChanges) {
    fly();
    EXPECT_EQ(ignoredCommand(0, kSlotSwap, 0).message, "COM1 swap refused");
    EXPECT_TRUE(sim().radios[0].writable[kSlotSwap]);
    EXPECT_EQ(ignoredCommand(0, kSlotSwap, 0).message, "COM1 swap refused; not tried again");
    EXPECT_EQ(sim().radios[0].writable, (std::array<bool, 4>{true, true, true, false}));
    EXPECT_TRUE(sim().radios[1].writable[kSlotSwap]);
    EXPECT_EQ(std::count(notes.begin(), notes.end(),
                         "COM1 swap: the aircraft has ignored 2 writes; not writable until "
                         "the aircraft changes"),
              1);
    const auto sent = simulator.keyEvents().size();
    EXPECT_FALSE(command(0, kSlotSwap, 0).ok);
    EXPECT_EQ(simulator.keyEvents().size(), sent);
    simulator.loadAircraft("other.cfg");
    pass();
    EXPECT_EQ(sim().status, "reading the radios");
    tellAll();
    EXPECT_TRUE(sim().radios[0].writable[kSlotSwap]);
}

// Each of them, for as long as it lasts, and for the write that was under way when it began or ended.
TEST_F(SimConnectRadios, AnAircraftHasIgnoredNothingThatTheSimulatorCouldNotCarryOut) {
    fly();
    const auto expectBlameless = [&](const char* message) {
        EXPECT_EQ(handler.ack().message, std::string("COM1 swap ") + message);
        EXPECT_TRUE(sim().radios[0].writable[kSlotSwap]);
    };
    for (int i = 0; i < 3; i++) {
        command(0, kSlotSwap, 0);
        simulator.pauseEvent("Pause_EX1", 1);
        cruise(500);
        simulator.pauseEvent("Pause_EX1", 0);
        cruise(1000);
        expectBlameless("unchanged; simulator paused");
    }
    for (int i = 0; i < 3; i++) {
        command(0, kSlotSwap, 0);
        pass(1200);
        cruise(2000);
        expectBlameless("unchanged; simulator silent");
    }
    answersQuestions = false;
    for (int i = 0; i < 3; i++) {
        ignoredCommand(0, kSlotSwap, 0);
        expectBlameless("unchanged; simulator not reading");
    }
    answersQuestions = true;
    for (int i = 0; i < 2; i++) ignoredCommand(0, kSlotSwap, 0);
    EXPECT_FALSE(sim().radios[0].writable[kSlotSwap]);  // now it has
    simulator.simEvent(0);
    pass(1000);
    simulator.simEvent(1);
    pass();
    tellAll();
    EXPECT_TRUE(sim().radios[0].writable[kSlotSwap]);  // another flight
}

TEST_F(SimConnectRadios, AWriteThatWorksClearsTheOneThatDidNot) {
    fly();
    ignoredCommand(0, kSlotStandby, 118005);
    command(0, kSlotStandby, 118010);
    set("COM STANDBY FREQUENCY:1", 118.01);
    EXPECT_TRUE(handler.ack().ok);
    ignoredCommand(0, kSlotStandby, 118005);
    EXPECT_TRUE(sim().radios[0].writable[kSlotStandby]);
}

TEST_F(SimConnectRadios, AnAircraftThatRoundsIsNotOneThatIgnores) {
    fly();
    for (int i = 0; i < 3; i++) {
        cockpit["COM STANDBY FREQUENCY:1"] = 121.5;
        tellAll();
        command(0, kSlotStandby, 118005);
        cockpit["COM STANDBY FREQUENCY:1"] = 118.0;
        cruise(kReadbackLimitMs);
        EXPECT_EQ(handler.ack().message, "COM1 STBY refused; shows 118.000");
        EXPECT_TRUE(sim().radios[0].writable[kSlotStandby]);
    }
}

TEST_F(SimConnectRadios, ARadioThatLosesItsPowerMeanwhileHasIgnoredNothing) {
    fly();
    for (int i = 0; i < 3; i++) {
        command(0, kSlotStandby, 118005);
        cockpit["COM STATUS:1"] = 2;
        cruise(kReadbackLimitMs);
        EXPECT_EQ(handler.ack().message, "COM1 STBY refused");
        cockpit["COM STATUS:1"] = 0;
        tellAll();
        EXPECT_TRUE(sim().radios[0].writable[kSlotStandby]);
    }
}

TEST_F(SimConnectRadios, QuittingDuringAWriteFailsItAndCountsForNothing) {
    fly();
    command(0, kSlotStandby, 118005);
    simulator.quit();
    pass();
    EXPECT_EQ(handler.ack(), (CommandAck{"1-1", false, "COM1 STBY not written: link down"}));
}

TEST_F(SimConnectRadios, TurnsNoRadioOffByItsVolume) {
    fly();
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 1");
    set("COM VOLUME:1", 1);
    EXPECT_EQ(handler.ack(), (CommandAck{"1-1", true, "COM1 volume 1 %"}));
    EXPECT_EQ(sim().radios[0].volume, 0.01f);
}

TEST_F(SimConnectRadios, SendsVolume0ToARadioThatHasBeenSeenToStayOnAtIt) {
    fly();
    set("COM VOLUME:1", 0);  // in the cockpit
    cruise(1500);
    set("COM VOLUME:1", 50);
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 1");
    set("COM VOLUME:1", 1);
    set("COM VOLUME:1", 0);
    cruise(2500);
    set("COM VOLUME:1", 50);
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 0");
    set("COM VOLUME:1", 0);
    EXPECT_EQ(handler.ack().message, "COM1 volume 0 %");
    command(1, kSlotVolume, 0.0);  // the other radio has not shown that it stays on
    EXPECT_EQ(simulator.keyEvents().back(), "COM2_VOLUME_SET 1");
    set("COM VOLUME:2", 1);
    simulator.loadAircraft("other.cfg");
    pass();
    cockpit["COM VOLUME:1"] = 50;
    tellAll();
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 1");
}

TEST_F(SimConnectRadios, ARadioIsNotSeenToStayOnWhileTheSimulatorStandsStill) {
    fly();
    set("COM VOLUME:1", 0);
    pass(2900);  // a stutter; before it, the power had no time to go
    tellAll();
    simulator.pauseEvent("Pause_EX1", 1);
    cruise(5000);
    simulator.pauseEvent("Pause_EX1", 0);
    set("COM VOLUME:1", 50);
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 1");
}

TEST_F(SimConnectRadios, ARadioThatGoesOffAtVolume0HasNotStayedOn) {
    fly();
    set("COM VOLUME:1", 0);
    set("COM STATUS:1", 2);
    cruise(5000);
    cockpit["COM STATUS:1"] = 0;
    cockpit["COM VOLUME:1"] = 50;
    tellAll();
    command(0, kSlotVolume, 0.0);
    EXPECT_EQ(simulator.keyEvents().back(), "COM1_VOLUME_SET 1");
}
