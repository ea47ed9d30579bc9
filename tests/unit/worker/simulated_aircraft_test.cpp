#include "worker/simulated_aircraft.h"
#include <gtest/gtest.h>
#include "exchange/frequency_grid.h"

namespace {

constexpr std::uint64_t kStart = 5000;

SimulatedAircraft flying(const std::string& script = {}) {
    return {parseFlightScript(script), kStart};
}

const RadioReading& com(const SimulatedAircraft& aircraft, std::size_t number) {
    return aircraft.snapshot().radios[number - 1];
}

}  // namespace

TEST(SimulatedAircraft, StandsAtItsDefaultsWithoutAScript) {
    auto aircraft = flying();
    aircraft.poll(kStart);
    const auto& sim = aircraft.snapshot();
    EXPECT_TRUE(sim.ok);
    EXPECT_EQ(sim.status, "built-in aircraft");
    EXPECT_EQ(sim.rangeMinKHz, 118000);
    EXPECT_EQ(sim.rangeMaxKHz, 136990);
    const std::array<bool, kSlotCount> all = {true, true, true, true};
    EXPECT_EQ(sim.radios[0], (RadioReading{122800, 121500, kSpacing833, 1.0, all}));
    EXPECT_EQ(sim.radios[1], (RadioReading{121500, 118000, kSpacing25, 1.0, all}));
}

TEST(SimulatedAircraft, PlaysEachActionAtItsTime) {
    auto aircraft = flying("1 tune COM1 standby 118.005\n2 swap COM1\n2 volume COM2 60\n");
    aircraft.poll(kStart + 999);
    EXPECT_EQ(com(aircraft, 1).standby, 121500);
    aircraft.poll(kStart + 1000);
    EXPECT_EQ(com(aircraft, 1).standby, 118005);
    EXPECT_EQ(com(aircraft, 1).active, 122800);
    aircraft.poll(kStart + 2000);
    EXPECT_EQ(com(aircraft, 1).active, 118005);
    EXPECT_EQ(com(aircraft, 1).standby, 122800);
    EXPECT_FLOAT_EQ(com(aircraft, 2).volume, 0.6f);
}

TEST(SimulatedAircraft, ShowsAWriteOnlyAfterTheReadbackDelay) {
    auto aircraft = flying("10 readback 300\n");
    aircraft.poll(kStart);
    EXPECT_TRUE(aircraft.write({0, kSlotStandby, 118005}, kStart));
    aircraft.poll(kStart + kDefaultReadbackMs - 1);
    EXPECT_EQ(com(aircraft, 1).standby, 121500);
    aircraft.poll(kStart + kDefaultReadbackMs);
    EXPECT_EQ(com(aircraft, 1).standby, 118005);

    aircraft.poll(kStart + 10'000);
    EXPECT_TRUE(aircraft.write({1, kSlotVolume, 0.25}, kStart + 10'000));
    aircraft.poll(kStart + 10'299);
    EXPECT_DOUBLE_EQ(com(aircraft, 2).volume, 1.0);
    aircraft.poll(kStart + 10'300);
    EXPECT_FLOAT_EQ(com(aircraft, 2).volume, 0.25f);
}

TEST(SimulatedAircraft, WritesEverySlot) {
    auto aircraft = flying();
    aircraft.poll(kStart);
    EXPECT_TRUE(aircraft.write({0, kSlotActive, 118005}, kStart));
    EXPECT_TRUE(aircraft.write({1, kSlotSwap, 0.0}, kStart));
    aircraft.poll(kStart + 200);
    EXPECT_EQ(com(aircraft, 1).active, 118005);
    EXPECT_EQ(com(aircraft, 2).active, 118000);
    EXPECT_EQ(com(aircraft, 2).standby, 121500);
}

TEST(SimulatedAircraft, RefusesWhatItsRadioCannotTake) {
    auto aircraft = flying();
    aircraft.poll(kStart);
    EXPECT_FALSE(aircraft.write({1, kSlotActive, 118005}, kStart));  // COM2 keeps to 25 kHz
    EXPECT_FALSE(aircraft.write({0, kSlotActive, 118020}, kStart));
    EXPECT_FALSE(aircraft.write({0, kSlotActive, 136995}, kStart));
    EXPECT_FALSE(aircraft.write({0, kSlotVolume, 1.01}, kStart));
    EXPECT_FALSE(aircraft.write({0, kSlotVolume, -0.01}, kStart));
}

TEST(SimulatedAircraft, AnUnwritableSlotSaysSoAndTakesNoWrite) {
    auto aircraft = flying("1 unwritable COM1 standby\n2 writable COM1 standby\n");
    aircraft.poll(kStart + 1000);
    EXPECT_EQ(com(aircraft, 1).writable, (std::array<bool, kSlotCount>{true, false, true, true}));
    EXPECT_FALSE(aircraft.write({0, kSlotStandby, 118005}, kStart + 1000));
    aircraft.poll(kStart + 2000);
    EXPECT_TRUE(aircraft.write({0, kSlotStandby, 118005}, kStart + 2000));
}

TEST(SimulatedAircraft, AnIgnoringSlotTakesTheWriteAndNeverShowsIt) {
    auto aircraft = flying("1 ignore COM1 swap\n9 obey COM1 swap\n");
    aircraft.poll(kStart + 1000);
    EXPECT_TRUE(com(aircraft, 1).writable[kSlotSwap]);
    EXPECT_TRUE(aircraft.write({0, kSlotSwap, 0.0}, kStart + 1000));
    aircraft.poll(kStart + 8000);
    EXPECT_EQ(com(aircraft, 1).active, 122800);
    aircraft.poll(kStart + 9000);
    EXPECT_TRUE(aircraft.write({0, kSlotSwap, 0.0}, kStart + 9000));
    aircraft.poll(kStart + 9200);
    EXPECT_EQ(com(aircraft, 1).active, 121500);
}

TEST(SimulatedAircraft, ARadioWithoutPowerShowsItsFrequenciesAndTakesNothing) {
    auto aircraft = flying("1 power COM1 off\n2 power COM2 off\n3 power COM1 on\n4 power COM2 on\n");
    aircraft.poll(kStart);
    EXPECT_TRUE(aircraft.write({0, kSlotStandby, 118005}, kStart + 950));
    aircraft.poll(kStart + 1000);
    EXPECT_EQ(aircraft.snapshot().status, "COM1 unpowered");
    EXPECT_TRUE(aircraft.snapshot().ok);
    EXPECT_EQ(com(aircraft, 1).writable, (std::array<bool, kSlotCount>{}));
    EXPECT_EQ(com(aircraft, 2).writable, (std::array<bool, kSlotCount>{true, true, true, true}));
    EXPECT_EQ(com(aircraft, 1).active, 122800);
    EXPECT_FALSE(aircraft.write({0, kSlotVolume, 0.5}, kStart + 1000));
    aircraft.poll(kStart + 1500);
    EXPECT_EQ(com(aircraft, 1).standby, 121500);  // the pending write was lost with the power
    aircraft.poll(kStart + 2000);
    EXPECT_EQ(aircraft.snapshot().status, "COM1 and COM2 unpowered");
    aircraft.poll(kStart + 3000);
    EXPECT_EQ(aircraft.snapshot().status, "COM2 unpowered");
    aircraft.poll(kStart + 4000);
    EXPECT_EQ(aircraft.snapshot().status, "built-in aircraft");
}

TEST(SimulatedAircraft, ADroppedLinkLosesWritesAndComesBack) {
    auto aircraft = flying("1 drop 3\n");
    aircraft.poll(kStart);
    EXPECT_TRUE(aircraft.write({0, kSlotStandby, 118005}, kStart + 990));
    aircraft.poll(kStart + 1000);
    EXPECT_FALSE(aircraft.snapshot().ok);
    EXPECT_EQ(aircraft.snapshot().status, "simulator link lost");
    EXPECT_EQ(com(aircraft, 1), RadioReading{});
    EXPECT_FALSE(aircraft.write({0, kSlotStandby, 118005}, kStart + 1000));
    aircraft.poll(kStart + 3999);
    EXPECT_FALSE(aircraft.snapshot().ok);
    aircraft.poll(kStart + 4000);
    EXPECT_TRUE(aircraft.snapshot().ok);
    EXPECT_EQ(com(aircraft, 1).standby, 121500);
}

TEST(SimulatedAircraft, ChangingTheGridMovesRangeAndFrequencies) {
    auto aircraft = flying("0 tune COM1 active 118.015\n1 spacing COM1 25\n2 spacing COM2 8.33\n");
    aircraft.poll(kStart);
    EXPECT_TRUE(aircraft.write({0, kSlotStandby, 118005}, kStart + 950));
    aircraft.poll(kStart + 1000);
    EXPECT_EQ(com(aircraft, 1).spacing, kSpacing25);
    EXPECT_EQ(com(aircraft, 1).active, 118000);
    EXPECT_EQ(aircraft.snapshot().rangeMaxKHz, 136975);
    aircraft.poll(kStart + 1500);
    EXPECT_EQ(com(aircraft, 1).standby, 121500);  // no longer a channel when the write arrived
    aircraft.poll(kStart + 2000);
    EXPECT_EQ(aircraft.snapshot().rangeMaxKHz, 136990);
}

TEST(SimulatedAircraft, NotesATuneOffTheGridOnceHoweverOftenItRepeats) {
    auto aircraft =
        flying("# line 2 is off COM2's 25 kHz grid\n0 tune COM2 active 118.005\n0 volume COM2 5\n1 repeat\n");
    for (std::uint64_t ms = 0; ms < 5000; ms += 25) aircraft.poll(kStart + ms);
    const auto notes = aircraft.takeNotes();
    ASSERT_EQ(notes.size(), 1u);
    EXPECT_EQ(notes[0], "script line 2 skipped: 118.005 is not a channel of COM2 at its spacing");
    EXPECT_EQ(com(aircraft, 2).active, 121500);
    EXPECT_FLOAT_EQ(com(aircraft, 2).volume, 0.05f);
    EXPECT_TRUE(aircraft.takeNotes().empty());
}

TEST(SimulatedAircraft, RepeatsButDoesNotCatchUpAfterASleep) {
    auto aircraft = flying("0 swap COM1\n0.1 repeat\n");
    aircraft.poll(kStart);
    EXPECT_EQ(com(aircraft, 1).active, 121500);
    aircraft.poll(kStart + 100);
    aircraft.poll(kStart + 100);
    EXPECT_EQ(com(aircraft, 1).active, 122800);
    const std::uint64_t later = kStart + 36'000'000;  // ten hours: one repeat, then the round begins
    int swaps = 0;
    for (std::uint64_t ms = 0; ms < 100; ms++) {
        const auto before = com(aircraft, 1).active;
        aircraft.poll(later + ms);
        if (com(aircraft, 1).active != before) swaps++;
    }
    EXPECT_EQ(swaps, 1);
}
