// xplane_life_test.cpp - the worker with X-Planes that come, go, crash, pause, stutter and are many, on networks that
// lose things. What the telemetry says must be right three seconds after the cause.
#include "tests/unit/xplane/xplane_flight.h"

namespace {

constexpr std::uint64_t kRightMs = 3000;
constexpr std::uint64_t kLostMs = 3100;  // a silence is a loss after three seconds, and the next pass says so

}  // namespace

TEST_F(XplaneFlight, AsksNothingWhileNobodyIsThereAndFindsXplaneWhenItComes) {
    startWorker();
    fly(10'000);
    EXPECT_EQ(network.sent, 0);
    EXPECT_EQ(telemetry().status, "waiting for the simulator");
    network.add("stock_12", {kOwnComputer, 49'000}, clock.tickMs());
    EXPECT_TRUE(flyUntil([&] { return showsActive(122'800); }, kRightMs)) << telemetry().status;
}

TEST_F(XplaneFlight, StopsItsRequestsWhenItEnds) {
    beginAndRead("stock_12");
    EXPECT_GT(requests(), 0u);
    loop.reset();
    link.reset();
    EXPECT_EQ(requests(), 0u);
}

TEST_F(XplaneFlight, ReportsTheEndOfXplaneAndComesBackWithIt) {
    for (const char* line : {"quit 6", "crash 6", "drop 6"}) {
        beginAndRead("stock_12");
        fly(500);
        mayLagMs = 4000;
        act(line);
        EXPECT_TRUE(flyUntil([&] { return !telemetry().ok; }, kLostMs)) << line;
        EXPECT_EQ(telemetry().radios[0].active, 0) << line;
        EXPECT_EQ(telemetry().status, "simulator link lost") << line;
        act("tune COM1 active 118.005");
        fly(6000 - kLostMs);
        EXPECT_TRUE(flyUntil([&] { return showsActive(118'005); }, kRightMs)) << line << ": " << telemetry().status;
        EXPECT_TRUE(command(1, "swap", "0").ackOk) << line;
    }
}

TEST_F(XplaneFlight, SurvivesAQuickRestartOfAnotherVersion) {
    beginAndRead("comes_back_newer");
    mayLagMs = 4000;
    EXPECT_FALSE(command(1, "standby", "119000").ackOk);
    EXPECT_TRUE(flyUntil([&] { return heard("away for") == 1 && requests() > 0; }, 2000 + kRightMs));
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, kRightMs));
    EXPECT_TRUE(flyUntil([&] { return telemetry().status.find("X-Plane 12.2.1") != std::string::npos; }, kRightMs))
        << telemetry().status;
}

TEST_F(XplaneFlight, SaysWhereTheSwitchIsWhenNothingIsAnswered) {
    begin("network_off");
    EXPECT_TRUE(flyUntil([&] { return telemetry().status == "X-Plane silent: menu, or Settings, Network"; }, kLostMs))
        << telemetry().status;
    fly(20'000);
    EXPECT_FALSE(telemetry().ok);
    act("network on");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, kRightMs)) << telemetry().status;
    mayLagMs = 4000;
    act("network off");
    EXPECT_TRUE(flyUntil([&] { return !telemetry().ok; }, kLostMs));
    EXPECT_EQ(telemetry().status, "X-Plane silent: menu, or Settings, Network");
    EXPECT_EQ(telemetry().radios[0].active, 0);
}

TEST_F(XplaneFlight, ShowsNoRadiosInTheMenu) {
    begin("in_menu");
    EXPECT_FALSE(flyUntil([&] { return telemetry().ok; }, 1900));
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, kRightMs));
    mayLagMs = 4000;
    act("sim menu");
    EXPECT_TRUE(flyUntil([&] { return !telemetry().ok; }, kLostMs));
    EXPECT_EQ(telemetry().status, "X-Plane silent: menu, or Settings, Network");
    fly(20'000);
    act("sim running");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, kRightMs)) << telemetry().status;
}

TEST_F(XplaneFlight, StaysOkInAPauseAndBlamesNoAircraftForWhatItPutsOff) {
    beginAndRead("freezes_in_pause");
    act("pause on");
    EXPECT_TRUE(flyUntil([&] { return telemetry().status == "paused, X-Plane 12.2.0"; }, 500)) << telemetry().status;
    for (const char* khz : {"119000", "119100", "119200"}) {
        const auto answer = command(1, "standby", khz);
        EXPECT_FALSE(answer.ackOk);
        EXPECT_TRUE(answer.ok);
        EXPECT_EQ(answer.ackMessage, "COM1 STBY unchanged; simulator paused");
        EXPECT_TRUE(answer.radios[0].writable[1]);
    }
    act("pause off");
    EXPECT_TRUE(flyUntil([&] { return telemetry().radios[0].standby == 119'200; }, 1000));
    EXPECT_TRUE(command(1, "standby", "119300").ackOk);
}

TEST_F(XplaneFlight, HoldsTheLinkThroughAStutter) {
    mayLagMs = 3000;
    begin("stutters");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 2000));
    EXPECT_FALSE(flyUntil([&] { return !telemetry().ok; }, 6000));
    EXPECT_EQ(logFile.count("link up"), 1) << logFile.text;
    act("stutter 2.5");
    EXPECT_TRUE(command(1, "standby", "119000").ackOk);
    EXPECT_EQ(telemetry().radios[0].standby, 119'000);
}

TEST_F(XplaneFlight, IsRightThreeSecondsAfterEachTurnOnABadNetwork) {
    mayLagMs = kRightMs;
    begin("bad_network");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 2 * kRightMs)) << telemetry().status;
    for (int i = 0; i < 50; i++) {
        const auto khz = 118'000 + 25 * i;
        act(("tune COM1 active " + formatFixed(khz / 1000.0, 3)).c_str());
        EXPECT_TRUE(flyUntil([&] { return showsActive(khz); }, kRightMs)) << khz;
        fly(470);  // at another moment of X-Plane's rhythm each time
        EXPECT_TRUE(telemetry().ok) << telemetry().status;
    }
}

TEST_F(XplaneFlight, LosesNoWriteAndSwapsOnceOnABadNetwork) {
    mayLagMs = kRightMs;
    begin("bad_network");
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 2 * kRightMs)) << telemetry().status;
    int done = 0;
    for (int i = 0; i < 50; i++) {
        done += command(1, "standby", std::to_string(119'000 + 25 * i).c_str()).ackOk;
        fly(170);
    }
    EXPECT_EQ(done, 50);
    act("double 0");
    int swapped = 0;
    for (int i = 0; i < 30; i++) {
        const auto before = cockpit().radios[0];
        const bool isDone = command(1, "swap", "0").ackOk;
        fly(1500);  // a late one would show
        swapped += isDone;
        EXPECT_EQ(cockpit().radios[0].activeKhz, isDone ? before.standbyKhz : before.activeKhz) << i;
    }
    EXPECT_GE(swapped, 28);
}

TEST_F(XplaneFlight, PrefersTheMasterOnThisComputer) {
    network.add("stock_11", {kOtherComputer, 49'000}, clock.tickMs());
    network.add("instructor", {kOwnComputer, 49'001}, clock.tickMs());
    network.add("stock_12", {kOwnComputer, 49'000}, clock.tickMs());
    act("tune COM1 active 118.005", 2);
    startWorker();
    EXPECT_TRUE(flyUntil([&] { return showsActive(118'005); }, kRightMs)) << telemetry().status;
    EXPECT_FALSE(flyUntil([&] { return !showsActive(118'005); }, 5000));
    EXPECT_EQ(heard("asks", 0), 0);
    EXPECT_EQ(heard("asks", 1), 0);
}

TEST_F(XplaneFlight, TakesTheOneElsewhereWhenThereIsNoOtherAndGoesOverWhenItEnds) {
    network.add("stock_11", {kOtherComputer, 49'000}, clock.tickMs());
    startWorker();
    EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, kRightMs)) << telemetry().status;
    EXPECT_NE(telemetry().status.find("X-Plane 11.55"), std::string::npos) << telemetry().status;
    network.add("stock_12", {kOwnComputer, 49'000}, clock.tickMs());
    mayLagMs = 5000;
    act("quit 60");
    EXPECT_TRUE(
        flyUntil([&] { return telemetry().status.find("X-Plane 12.2.0") != std::string::npos; }, kLostMs + kRightMs))
        << telemetry().status;
    EXPECT_TRUE(command(1, "swap", "0").ackOk);
    EXPECT_EQ(heard(" command ", 1), 1);
}
