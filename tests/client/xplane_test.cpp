// xplane_test.cpp - the real worker program and the stand-in X-Plane, over the network of this computer, each on ports
// of its own.
#include <gtest/gtest.h>
#include <algorithm>
#include "tests/client/worker_at_work_win.h"
#include "tests/xplane/server.h"

namespace {

// One worker with one X-Plane. Without a beacon the worker is told the address.
struct Visit {
    explicit Visit(const char* personality) : server(*xstandin::findPersonality(personality)) {}

    bool beginAtAddress() {
        const auto port = server.start({});
        return port != 0 && worker.start(L" --link xplane --address 127.0.0.1:" + std::to_wstring(port));
    }
    // The worker first; its beacon's port is free, and nobody else's.
    bool listen() {
        beacon = {xstandin::kLoopback, xstandin::makeSockets()->open({xstandin::kLoopback, 0})};
        return worker.start(L" --beacon 127.0.0.1:" + std::to_wstring(beacon.port));
    }
    bool announce() { return server.start({{xstandin::kLoopback, 0}, beacon}) != 0; }

    void act(const char* line) {
        std::string error;
        EXPECT_TRUE(server.act(line, error)) << line << ": " << error;
    }
    bool waitActive(std::int32_t khz) {
        return waitFor([&] { return worker.isOk() && worker.telemetry().radios[0].active == khz; }, kPatienceMs);
    }
    bool waitLost() {
        return waitFor([&] { return !worker.telemetry().ok; }, kPatienceMs);
    }
    bool hasHeard(const char* part) const {
        const auto reports = server.reports();
        return std::any_of(reports.begin(), reports.end(),
                           [&](const std::string& text) { return text.find(part) != std::string::npos; });
    }

    xstandin::Server server;
    xstandin::Endpoint beacon;
    WorkerAtWork worker;
};

}  // namespace

TEST(Xplane, IsReadAndWrittenAtItsAddress) {
    Visit visit("stock_12");
    ASSERT_TRUE(visit.beginAtAddress());
    ASSERT_TRUE(visit.worker.waitOk()) << visit.worker.log();
    visit.act("tune COM1 active 118.005");
    EXPECT_TRUE(visit.waitActive(118'005)) << visit.worker.log();
    EXPECT_TRUE(visit.worker.command(1, "standby", "128855").ackOk);
    EXPECT_EQ(visit.worker.command(1, "swap", "0").radios[0].active, 128'855);
    EXPECT_EQ(visit.worker.command(2, "volume", "0.4").radios[1].volume, 0.4f);
    EXPECT_TRUE(visit.hasHeard("write sim/cockpit2/radios/actuators/com1_standby_frequency_hz_833 128855"));
    EXPECT_TRUE(visit.hasHeard("command sim/radios/com1_standy_flip"));
    EXPECT_TRUE(visit.hasHeard("write sim/cockpit2/radios/actuators/audio_volume_com2 0.4"));
    EXPECT_FALSE(visit.hasHeard("strange")) << visit.worker.log();
    EXPECT_FALSE(visit.hasHeard("what there is not")) << visit.worker.log();
}

// With nothing configured but the beacon's port.
TEST(Xplane, IsFoundByItsBeaconWheneverItComesAndMissedWhenItGoes) {
    Visit visit("stock_12");
    ASSERT_TRUE(visit.listen());
    ASSERT_TRUE(waitFor([&] { return visit.worker.telemetry().status == "waiting for the simulator"; }, kPatienceMs));
    ASSERT_TRUE(visit.announce());
    EXPECT_TRUE(visit.worker.waitOk()) << visit.worker.log();
    EXPECT_NE(visit.worker.telemetry().status.find("X-Plane 12.2.0"), std::string::npos);
    EXPECT_TRUE(visit.worker.command(1, "swap", "0").ackOk);
    visit.act("quit 6");
    EXPECT_TRUE(visit.waitLost()) << visit.worker.log();
    EXPECT_EQ(visit.worker.telemetry().radios[0].active, 0);
    visit.act("tune COM1 active 118.005");
    EXPECT_TRUE(visit.waitActive(118'005)) << visit.worker.log();
    EXPECT_TRUE(visit.worker.command(1, "standby", "119000").ackOk);
}

TEST(Xplane, ThatCrashesInTheMiddleOfAWriteIsFoundAgain) {
    Visit visit("comes_back_newer");
    ASSERT_TRUE(visit.listen());
    ASSERT_TRUE(visit.announce());
    ASSERT_TRUE(visit.worker.waitOk()) << visit.worker.log();
    EXPECT_FALSE(visit.worker.command(1, "standby", "119000").ackOk);
    const auto isNewer = [&] {
        return visit.worker.isOk() && visit.worker.telemetry().status.find("X-Plane 12.2.1") != std::string::npos;
    };
    EXPECT_TRUE(waitFor(isNewer, kPatienceMs)) << visit.worker.log();
}

TEST(Xplane, OnABadNetworkFullOfOddDatagramsIsFollowedAllTheSame) {
    Visit visit("odd_datagrams");
    ASSERT_TRUE(visit.listen());
    ASSERT_TRUE(visit.announce());
    ASSERT_TRUE(visit.worker.waitOk()) << visit.worker.log();
    for (const char* line : {"lose 10", "double 10", "delay 10"}) visit.act(line);
    const std::pair<const char*, std::int32_t> turns[] = {
        {"tune COM1 active 118.005", 118'005}, {"tune COM1 active 136.990", 136'990}, {"swap COM1", 121'500}};
    for (const auto& [line, khz] : turns) {
        visit.act(line);
        EXPECT_TRUE(visit.waitActive(khz)) << line << '\n' << visit.worker.log();
    }
    for (const char* line : {"lose 0", "double 0", "delay 0"}) visit.act(line);
    EXPECT_TRUE(visit.worker.command(1, "standby", "119000").ackOk) << visit.worker.log();
}

TEST(Xplane, WithItsNetworkSwitchOffSaysWhereItIs) {
    Visit visit("network_off");
    ASSERT_TRUE(visit.listen());
    ASSERT_TRUE(visit.announce());
    const auto isTold = [&] { return visit.worker.telemetry().status == "X-Plane silent: menu, or Settings, Network"; };
    EXPECT_TRUE(waitFor(isTold, kPatienceMs)) << visit.worker.log();
    visit.act("network on");
    EXPECT_TRUE(visit.waitActive(122'800)) << visit.worker.log();
}

// A worker that ends by itself: X-Plane would go on sending to nobody.
TEST(Xplane, IsAskedForNothingAnyMoreWhenTheWorkerEnds) {
    Visit visit("stock_12");
    standin::Program watched;
    ASSERT_TRUE(watched.start(standin::besideUs(L"stand_in_xplane.exe", L"--listen 127.0.0.1:0 --no-beacon")));
    const auto port = visit.server.start({});
    ASSERT_NE(port, 0);
    ASSERT_TRUE(visit.worker.startWith(visit.worker.dataDirArgument() + L" --watch-pid " +
                                       std::to_wstring(watched.processId()) + L" --link xplane --address 127.0.0.1:" +
                                       std::to_wstring(port)));
    ASSERT_TRUE(visit.worker.waitOk()) << visit.worker.log();
    EXPECT_FALSE(visit.hasHeard("asks 0 times"));
    watched.endInput();
    EXPECT_EQ(visit.worker.program.waitForEnd(static_cast<std::uint32_t>(kPatienceMs)), 0u) << visit.worker.log();
    EXPECT_TRUE(waitFor([&] { return visit.hasHeard("asks 0 times"); }, kPatienceMs));
}
