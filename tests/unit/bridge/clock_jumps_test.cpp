// clock_jumps_test.cpp - the clock is moved in flight: the wall clock by an hour back or forward, as a user or a time
// server does; the tick by an hour forward, as after a sleep of the machine, and back, which no system does.
#include <gtest/gtest.h>
#include "tests/unit/bridge/flight_rig.h"

namespace {

constexpr double kHour = 3600.0;
constexpr std::uint64_t kHourMs = 3'600'000;

// What is under way when it happens.
struct Moment {
    const char* name;
    void (*begin)(Flight& flight);
};

constexpr Moment kMoments[] = {
    {"at rest", [](Flight& flight) { flight.runFor(3000); }},
    {"before the first look", [](Flight& flight) { flight.runFor(200); }},
    {"a move is outstanding",
     [](Flight& flight) {
         flight.host.setMoveRule({MoveAnswer::kSilence});
         flight.runFor(600);
         flight.host.setMoveRule({});
     }},
    {"a command waits",
     [](Flight& flight) {
         flight.runFor(3000);
         stepFrequency(flight.radios, 2, kSlotStandby, true, 1, flight.clock.tickMs());
         flight.runFor(100);
     }},
    {"a command is written",
     [](Flight& flight) {
         flight.runFor(3000);
         flight.isWorkerRunning = false;
         flight.swap();
         flight.runFor(50);
         flight.isWorkerRunning = true;
     }},
    {"somebody talks",
     [](Flight& flight) {
         flight.runFor(3000);
         talkChanged(flight.talk, 1, 30, true, flight.clock.tickMs());
     }},
    {"a change waits for its save",
     [](Flight& flight) {
         flight.runFor(3000);
         changeSettings(
             flight.settings, [](Settings& live) { live.receive_volume = 55; }, flight.clock.tickMs() + 300);
     }},
};

void jumpWall(Flight& flight, double seconds) {
    flight.clock.seconds = flight.clock.seconds.load() + seconds;
}

// Half a second for the worker's next report, 350 ms of standing still, a move and its answer; 5 s where one is given
// up.
void expectAllIsWell(Flight& flight) {
    const int connectedMs = flight.msUntil([&] { return flight.isConnected(); }, 2000);
    EXPECT_GE(connectedMs, 0);
    EXPECT_LE(connectedMs, 600);
    flight.runFor(12'000);
    EXPECT_TRUE(flight.isConnected());
    const bool isSwapped = flight.active() == 121500;
    EXPECT_EQ(flight.ownChannel(), isSwapped ? kGuardOf121500 : kTowerOf122800);
    EXPECT_TRUE(commandsOf(flight.commands).empty());
    ASSERT_TRUE(flight.swap());
    const int swappedMs = flight.msUntil([&] { return flight.active() == (isSwapped ? 122800 : 121500); }, 3000);
    EXPECT_GE(swappedMs, 0);
    EXPECT_GE(
        flight.msUntil([&] { return flight.ownChannel() == (isSwapped ? kTowerOf122800 : kGuardOf121500); }, 5000), 0);
    const std::uint64_t nowMs = flight.clock.tickMs();
    talkChanged(flight.talk, 1, 30, true, nowMs);
    talkChanged(flight.talk, 1, 30, false, nowMs + kShortestTransmissionMs);
    EXPECT_FALSE(flight.talk.othersReceiving);
    flight.runFor(1000);
    EXPECT_FALSE(flight.settings.isUnsaved);
    EXPECT_EQ(flight.host.problems(), std::vector<std::string>{});
}

}  // namespace

TEST(ClockJump, OfTheWallClockIsOverWithTheWorkersNextReport) {
    for (const Moment& moment : kMoments) {
        for (const double seconds : {kHour, -kHour}) {
            SCOPED_TRACE(std::string(moment.name) + (seconds > 0 ? ", forward" : ", back"));
            Flight flight;
            moment.begin(flight);
            jumpWall(flight, seconds);
            expectAllIsWell(flight);
        }
    }
}

TEST(ClockJump, OfTheTickIsOverWithTheWorkersNextReport) {
    for (const Moment& moment : kMoments) {
        SCOPED_TRACE(moment.name);
        Flight flight;
        moment.begin(flight);
        flight.clock.tick += kHourMs;
        expectAllIsWell(flight);
    }
}

// The system promises that it never does; nothing of ours waits for an hour all the same.
TEST(ClockJump, OfTheTickBackIsLivedThroughToo) {
    for (const Moment& moment : kMoments) {
        SCOPED_TRACE(moment.name);
        Flight flight;
        flight.clock.tick += 2 * kHourMs;
        moment.begin(flight);
        flight.clock.tick -= kHourMs;
        expectAllIsWell(flight);
    }
}

TEST(ClockJump, OfBothIsASleepOfTheMachine) {
    for (const Moment& moment : kMoments) {
        SCOPED_TRACE(moment.name);
        Flight flight;
        moment.begin(flight);
        flight.clock.advance(kHourMs);
        expectAllIsWell(flight);
    }
}
