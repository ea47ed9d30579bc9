// personality_test.cpp - how each personality differs from the stock simulator.
#include "tests/unit/simulator/simulator_test.h"

using namespace standin;

using PersonalityTest = SimulatorTest;

TEST_F(PersonalityTest, IgnoringSwapsStillTakesFrequencies) {
    begin("ignores_swaps");
    write("COM1_RADIO_SWAP", 0);
    write("COM_STBY_RADIO_SET_HZ", 119'000'000);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 122'800'000.0);
    EXPECT_EQ(read("COM STANDBY FREQUENCY:1", "Hz"), 119'000'000.0);
}

TEST_F(PersonalityTest, SnappingFrequenciesTakesTheNearest25) {
    begin("snaps_frequencies");
    write("COM_RADIO_SET_HZ", 118'105'000);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 118'100'000.0);
    EXPECT_EQ(read("COM SPACING MODE:1", "Enum"), 1.0);
}

TEST_F(PersonalityTest, UnpoweredRadioTakesNothing) {
    begin("unpowered_radio");
    write("COM2_RADIO_SET_HZ", 118'100'000);
    EXPECT_EQ(read("COM STATUS:2", "Enum"), 2.0);
    EXPECT_EQ(read("COM AVAILABLE:2", "Bool"), 1.0);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:2", "Hz"), 121'500'000.0);
    EXPECT_EQ(read("COM STATUS:1", "Enum"), 0.0);
}

TEST_F(PersonalityTest, AnsweringLateShowsAWriteAfter900Ms) {
    begin("answers_late");
    write("COM_RADIO_SET_HZ", 118'100'000);
    visitor->fly(800);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 122'800'000.0);
    visitor->fly(70);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 118'100'000.0);
}

TEST_F(PersonalityTest, QuittingMidWriteSaysSoAndIsGoneForTwoSeconds) {
    begin("quits_mid_write");
    write("COM_RADIO_SET_HZ", 118'100'000);
    EXPECT_EQ(visitor->count(kQuitId), 1u);
    EXPECT_TRUE(visitor->isClosed);
    EXPECT_FALSE(simulator->isReachable());
    visitor->fly(1900);
    EXPECT_FALSE(simulator->isReachable());
    visitor->fly(150);
    EXPECT_TRUE(simulator->isReachable());
    EXPECT_EQ(simulator->aircraft().radios[0].activeHz, 122'800'000u);
}

TEST_F(PersonalityTest, CrashingCutsThePacketAndSaysNothing) {
    begin("crashes");
    write("COM_RADIO_SET_HZ", 118'100'000);
    EXPECT_TRUE(visitor->isClosed);
    EXPECT_EQ(visitor->count(kQuitId), 0u);
    ASSERT_FALSE(visitor->chunks.empty());
    EXPECT_EQ(visitor->chunks.back().size(), 30u);
    EXPECT_GT(u32At(visitor->chunks.back(), 0), 30u);
}

TEST_F(PersonalityTest, RoughPacketsAreCutJoinedAndStrangeButAllThere) {
    begin("rough_packets");
    visitor->define(1, "SIMULATION TIME", "Seconds");
    visitor->request({1, 1, 0, kVisualFrame, 0, 0, 0, 0});
    visitor->fly(2100);
    const auto data = visitor->packets(kDataId);
    ASSERT_GE(data.size(), 59u);  // the last one may still be on its way
    for (std::size_t i = 1; i < data.size(); i++) EXPECT_NEAR(data[i].f64(40) - data[i - 1].f64(40), 1.0 / 30, 1e-9);
    EXPECT_EQ(visitor->count(kOpenId), 1u);
    std::size_t longest = 0, cut = 0, joined = 0;
    for (const auto& chunk : visitor->chunks) {
        longest = std::max(longest, chunk.size());
        if (chunk.size() < 4) cut++;
        if (chunk.size() >= 4 && chunk.size() > u32At(chunk, 0) && u32At(chunk, 0) >= 12) joined++;
    }
    EXPECT_GT(cut, 0u);
    EXPECT_GT(joined, 0u);
    EXPECT_EQ(visitor->count(77), 1u);
    EXPECT_EQ(visitor->packets(77).at(0).packet.size(), 200'012u);
}

TEST_F(PersonalityTest, FreezingInPauseSendsNoChangesAndTakesEventsWhenThePauseIsOver) {
    begin("freezes_in_pause");
    visitor->define(1, "COM ACTIVE FREQUENCY:1", "Hz");
    visitor->request({1, 1, 0, kVisualFrame, kChangedFlag, 0, 0, 0});
    visitor->fly(100);
    EXPECT_EQ(visitor->count(kDataId), 1u);
    act("pause on");
    act("tune COM1 active 118.005");  // by hand, which always works
    write("COM_STBY_RADIO_SET_HZ", 119'000'000);
    visitor->fly(2000);
    EXPECT_EQ(visitor->count(kDataId), 1u);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 118'005'000.0);  // told when asked
    EXPECT_EQ(read("COM STANDBY FREQUENCY:1", "Hz"), 121'500'000.0);
    visitor->forget();
    act("pause off");
    visitor->fly(100);
    ASSERT_EQ(visitor->count(kDataId), 1u);
    EXPECT_EQ(visitor->packets(kDataId)[0].f64(40), 118'005'000.0);
    EXPECT_EQ(read("COM STANDBY FREQUENCY:1", "Hz"), 119'000'000.0);
}

TEST_F(PersonalityTest, KnowingOnePauseRefusesTheOtherName) {
    begin("knows_one_pause");
    const auto refused = visitor->subscribe(1, "Pause_EX1");
    EXPECT_EQ(visitor->exceptionFor(refused), 7u);
    visitor->subscribe(2, "Pause");
    visitor->forget();
    act("pause on");
    visitor->fly(50);
    ASSERT_EQ(visitor->count(kEventId), 1u);
    EXPECT_EQ(visitor->packets(kEventId)[0].u32(16), 2u);
    EXPECT_EQ(visitor->packets(kEventId)[0].u32(20), 1u);
}

TEST_F(PersonalityTest, StutteringSendsAndReadsNothingForTwoAndAHalfSeconds) {
    begin("stutters");
    visitor->define(1, "COM STANDBY FREQUENCY:1", "Hz");
    visitor->request({1, 1, 0, kVisualFrame, 0, 0, 0, 0});
    visitor->fly(2050);
    visitor->forget();
    write("COM_STBY_RADIO_SET_HZ", 119'000'000);
    visitor->fly(2400);
    EXPECT_EQ(visitor->count(kDataId), 0u);
    EXPECT_EQ(simulator->aircraft().radios[0].standbyHz, 121'500'000u);
    visitor->fly(150);
    ASSERT_GE(visitor->count(kDataId), 1u);
    EXPECT_EQ(visitor->packets(kDataId)[0].f64(40), 119'000'000.0);
}

TEST_F(PersonalityTest, StoppingToReadGoesOnSending) {
    begin("stops_reading");
    visitor->define(1, "SIMULATION TIME", "Seconds");
    visitor->request({1, 1, 0, kVisualFrame, 0, 0, 0, 0});
    visitor->fly(2050);
    visitor->forget();
    write("COM_STBY_RADIO_SET_HZ", 119'000'000);
    visitor->send(0x99, "");
    visitor->fly(2000);
    EXPECT_EQ(visitor->count(kDataId), 60u);
    EXPECT_EQ(visitor->count(kExceptionId), 0u);
    EXPECT_EQ(simulator->aircraft().radios[0].standbyHz, 121'500'000u);
    visitor->fly(18'100);
    EXPECT_EQ(visitor->count(kExceptionId), 1u);
    EXPECT_EQ(simulator->aircraft().radios[0].standbyHz, 119'000'000u);
}

TEST_F(PersonalityTest, FloodingReportsAircraftByTheThousandAndEndsRequests) {
    begin("floods_aircraft");
    visitor->subscribe(1, "AircraftLoaded");
    visitor->define(1, "COM ACTIVE FREQUENCY:1", "Hz");
    visitor->fly(2050);
    visitor->request({1, 1, 0, kVisualFrame, 0, 0, 0, 0});
    visitor->forget();
    visitor->fly(1000);
    EXPECT_EQ(visitor->count(kFileId), 1200u);
    EXPECT_EQ(visitor->count(kDataId), 0u);
    visitor->fly(2000);
    visitor->forget();
    visitor->fly(1000);
    EXPECT_EQ(visitor->count(kFileId), 0u);
}

TEST_F(PersonalityTest, SilentAndGarbageNeverOpen) {
    begin("silent");
    visitor->fly(6000);
    EXPECT_TRUE(visitor->chunks.empty());
    begin("garbage");
    visitor->fly(100);
    ASSERT_FALSE(visitor->chunks.empty());
    EXPECT_GT(u32At(visitor->chunks[0], 0), 100'000'000u);
    EXPECT_EQ(visitor->count(kOpenId), 0u);
}

TEST_F(PersonalityTest, InMenuHasNoFlightForTwoSeconds) {
    begin("in_menu");
    visitor->subscribe(1, "Sim");
    EXPECT_EQ(visitor->packets(kEventId).at(0).u32(20), 0u);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 124'850'000.0);
    visitor->forget();
    visitor->fly(2000);
    ASSERT_EQ(visitor->count(kEventId), 1u);
    EXPECT_EQ(visitor->packets(kEventId)[0].u32(20), 1u);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 122'800'000.0);
}

TEST_F(PersonalityTest, AircraftChangeBringsOtherRadiosAndEndsRequests) {
    begin("aircraft_change");
    visitor->define(1, "COM ACTIVE FREQUENCY:1", "Hz");
    visitor->request({1, 1, 0, kSecond, 0, 0, 0, 0});
    visitor->subscribe(1, "AircraftLoaded");
    visitor->fly(2100);
    EXPECT_EQ(visitor->count(kFileId), 1u);
    visitor->forget();
    visitor->fly(3000);
    EXPECT_EQ(visitor->count(kDataId), 0u);
    EXPECT_EQ(read("COM AVAILABLE:2", "Bool"), 0.0);
    EXPECT_EQ(read("COM SPACING MODE:1", "Enum"), 0.0);
    EXPECT_EQ(read("COM ACTIVE FREQUENCY:1", "Hz"), 123'500'000.0);
}

TEST_F(PersonalityTest, VolumePowerKnobAtZeroSwitchesTheRadioOff) {
    begin("volume_power_knob");
    write("COM1_VOLUME_SET", 1);
    EXPECT_EQ(read("COM STATUS:1", "Enum"), 0.0);
    write("COM1_VOLUME_SET", 0);
    EXPECT_EQ(read("COM STATUS:1", "Enum"), 2.0);
}
