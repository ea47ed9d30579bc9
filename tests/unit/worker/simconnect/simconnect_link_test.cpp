#include "worker/simconnect/simconnect_link.h"
#include <cmath>
#include "tests/unit/worker/simconnect/radios_rig.h"

TEST_F(SimConnectRadios, SaysWhereItStandsOnTheWayToTheRadios) {
    const auto status = [&] { return (sim().ok ? "ok: " : "no: ") + sim().status; };
    EXPECT_EQ(status(), "no: waiting for the simulator");
    pass();
    EXPECT_EQ(status(), "no: connecting to the simulator");
    simulator.open();
    pass();
    EXPECT_EQ(status(), "no: connecting to the simulator");
    simulator.simState(0);
    pass();
    EXPECT_EQ(status(), "no: simulator in menu");
    simulator.simEvent(1);
    pass();
    EXPECT_EQ(status(), "no: reading the radios");
    tellAll();
    EXPECT_EQ(status(), "ok: flying");
    const auto flying = sim().radios;
    pass(2999);
    EXPECT_EQ(status(), "ok: flying");
    EXPECT_EQ(sim().radios, flying);  // a stutter
    EXPECT_FALSE(link.unheardMs(nowMs) < kStutterMs);
    pass(1);
    EXPECT_EQ(status(), "no: the simulator sends no data");
    EXPECT_EQ(sim().radios[0], RadioReading());
    tellAll();
    EXPECT_EQ(status(), "ok: flying");
    simulator.quit();
    pass();
    EXPECT_EQ(status(), "no: waiting for the simulator");
    EXPECT_EQ(sim().radios[0], RadioReading());
}

TEST_F(SimConnectRadios, SayThatTheLinkIsLostUntilThereIsAnother) {
    fly();
    transport->state = simconnect::TransportState::kClosed;  // no word of farewell
    transport->onConnect = simconnect::TransportState::kClosed;
    for (const std::uint64_t ms : {0, 1000, 2000, 60'000}) {
        pass(ms);
        EXPECT_EQ(sim().status, "simulator link lost") << ms;
    }
    transport->onConnect = simconnect::TransportState::kOpen;
    pass(5000);
    EXPECT_EQ(sim().status, "connecting to the simulator");
    fly();
    EXPECT_EQ(sim().status, "flying");
    simulator.quit();
    transport->onConnect = simconnect::TransportState::kClosed;
    pass(5000);
    EXPECT_EQ(sim().status, "waiting for the simulator");
}

TEST_F(SimConnectRadios, ShowsBothRadios) {
    fly();
    const std::array<bool, kSlotCount> all = {true, true, true, true};
    EXPECT_EQ(sim().radios[0], (RadioReading{122800, 121500, kSpacing833, 0.8, all}));
    EXPECT_EQ(sim().radios[1], (RadioReading{118000, 119100, kSpacing25, 1.0, all}));
    EXPECT_EQ(sim().rangeMinKHz, 118000);
    EXPECT_EQ(sim().rangeMaxKHz, 136990);
    set("COM SPACING MODE:1", 0);
    EXPECT_EQ(sim().rangeMaxKHz, 136975);
}

TEST_F(SimConnectRadios, RoundsFrequenciesAndKnowsNoneOutsideTheBand) {
    fly();
    const struct {
        double mhz;
        int khz;
    } rows[] = {{118.00499999, 118005},
                {128.85499999999999, 128855},
                {136.99, 136990},
                {118.0, 118000},
                {136.995, 0},
                {117.995, 0},
                {0.0, 0},
                {-5.0, 0},
                {1e300, 0},
                {NAN, 0},
                {INFINITY, 0}};
    for (const auto& row : rows) {
        set("COM STANDBY FREQUENCY:1", row.mhz);
        EXPECT_EQ(sim().radios[0].standby, row.khz) << row.mhz;
        EXPECT_EQ(sim().radios[0].writable[kSlotStandby], row.khz != 0) << row.mhz;
    }
}

TEST_F(SimConnectRadios, KnowsNoVolumeAndNoSpacingThatCannotBe) {
    fly();
    const struct {
        double percent;
        double volume;
    } rows[] = {{0, 0}, {100, 1}, {100.0000001, 1}, {-1, -1}, {101, -1}, {NAN, -1}};
    for (const auto& row : rows) {
        set("COM VOLUME:1", row.percent);
        EXPECT_EQ(sim().radios[0].volume, row.volume) << row.percent;
        EXPECT_EQ(sim().radios[0].writable[kSlotVolume], row.volume >= 0) << row.percent;
    }
    set("COM SPACING MODE:2", 2);
    EXPECT_EQ(sim().radios[1].spacing, -1);
    EXPECT_FALSE(sim().radios[1].writable[kSlotStandby]);
    EXPECT_TRUE(sim().radios[1].writable[kSlotSwap]);
}

TEST_F(SimConnectRadios, IsWritableWhileFittedAndPowered) {
    fly();
    const struct {
        double available, status;
        bool writable, shown;
        const char* text;
    } rows[] = {
        {1, 0, true, true, "flying"},
        {1, 2, false, true, "COM2 unpowered"},
        {1, 3, false, true, "COM2 failed"},
        {1, -1, false, true, "COM2 not usable"},
        {1, 1, false, false, "COM2 not in this aircraft"},
        {0, 0, false, false, "COM2 not in this aircraft"},
    };
    for (const auto& row : rows) {
        set("COM AVAILABLE:2", row.available);
        set("COM STATUS:2", row.status);
        for (const bool writable : sim().radios[1].writable) EXPECT_EQ(writable, row.writable) << row.text;
        EXPECT_EQ(sim().radios[1].active, row.shown ? 118000 : 0) << row.text;
        EXPECT_EQ(sim().status, row.text);
        EXPECT_TRUE(sim().radios[0].writable[kSlotActive]);
        EXPECT_TRUE(sim().ok);
    }
    set("COM STATUS:1", 2);
    EXPECT_EQ(sim().status, "COM1 unpowered, COM2 not in this aircraft");
    set("COM AVAILABLE:2", 1);
    set("COM STATUS:2", 2);
    EXPECT_EQ(sim().status, "COM1 and COM2 unpowered");
}

TEST_F(SimConnectRadios, AMissingVariableCostsOnlyWhatDependsOnIt) {
    openAndRun();
    for (const char* name : {"COM VOLUME:1", "COM AVAILABLE:1", "COM STATUS:2"}) {
        simulator.exception(7, simulator.sendIdOf(FakeSimulator::kVariable, name));
        cockpit.erase(name);
    }
    tellAll();
    ASSERT_TRUE(sim().ok);
    EXPECT_EQ(sim().radios[0].volume, -1.0);
    EXPECT_EQ(sim().radios[0].writable, (std::array<bool, 4>{true, true, false, true}));
    EXPECT_EQ(sim().radios[1].writable, (std::array<bool, 4>{true, true, true, true}));
}

TEST_F(SimConnectRadios, AMissingKeyEventCostsItsSlot) {
    openAndRun();
    simulator.exception(7, simulator.sendIdOf(FakeSimulator::kMap, "COM2_RADIO_SWAP"));
    tellAll();
    EXPECT_EQ(sim().radios[1].writable, (std::array<bool, 4>{true, true, true, false}));
    EXPECT_FALSE(command(1, kSlotSwap, 0).ok);
    EXPECT_TRUE(simulator.keyEvents().empty());
}

TEST_F(SimConnectRadios, DoesNotWaitForeverForAValueThatNeverComes) {
    openAndRun();
    cockpit.erase("COM STATUS:2");
    tellAll();
    EXPECT_EQ(sim().status, "reading the radios");
    cruise(1500);
    EXPECT_TRUE(sim().ok);
    EXPECT_EQ(sim().status, "COM2 not known");
    EXPECT_FALSE(sim().radios[1].writable[kSlotActive]);
}

TEST_F(SimConnectRadios, KnowsWhereItStandsOnceItSaysSomethingLasting) {
    const auto settled = [&](const char* status) {
        EXPECT_EQ(sim().status, status);
        return link.isSettled();
    };
    EXPECT_FALSE(settled("waiting for the simulator"));
    pass();
    simulator.open();
    pass();
    EXPECT_FALSE(settled("connecting to the simulator"));
    simulator.simState(0);
    pass();
    EXPECT_TRUE(settled("simulator in menu"));
    simulator.simEvent(1);
    pass();
    EXPECT_FALSE(settled("reading the radios"));
    pass(3000);
    EXPECT_TRUE(settled("the simulator sends no data"));
    tellAll();
    EXPECT_TRUE(settled("flying"));
}
