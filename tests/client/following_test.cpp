#include "tests/client/client_session_win.h"

namespace {

constexpr std::uint64_t kStandStillMs = 350;
constexpr std::uint64_t kPromptMs = 1500;  // 350 ms, a pass or two, and a busy machine

}  // namespace

class Following : public PluginTest {
  protected:
    // Starts with a frequency that no channel carries, and waits until it has been looked up.
    void fly() {
        session.telemetry.radios[0].activeKhz = 119000;
        session.publish();
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
        ASSERT_TRUE(host.callsOf("requestClientMove").empty());
    }
    std::vector<HostCall> requests() const { return host.callsOf("requestClientMove"); }
    // Waits for the next request and tells its channel; 0 = none came.
    std::uint64_t nextRequestedChannel() {
        const std::size_t before = requests().size();
        if (!session.waitForCalls("requestClientMove", before + 1)) return 0;
        return requests()[before].channelId;
    }
};

TEST_F(Following, RequestsTheMoveOnceTheFrequencyStoodStillFor350Ms) {
    fly();
    const std::uint64_t tunedAt = session.tune(1, 122800);
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    const HostCall request = requests()[0];
    EXPECT_EQ(request.schid, kSchid);
    EXPECT_EQ(request.clientId, kOwnClient);
    EXPECT_EQ(request.channelId, kTower122800);
    EXPECT_EQ(request.channelText, "");  // password
    EXPECT_EQ(request.returnCode, "rc-corvalis-test-id-1");
    EXPECT_GE(request.atMs - tunedAt, kStandStillMs);
    EXPECT_LT(request.atMs - tunedAt, kPromptMs);
}

TEST_F(Following, WaitsAnewWhenTheFrequencyChangesAgain) {
    fly();
    session.tune(1, 122800);
    ASSERT_TRUE(session.waitPasses(2));
    const std::uint64_t tunedAt = session.tune(1, 121500);
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    EXPECT_EQ(requests()[0].channelId, kGround121500);
    EXPECT_GE(requests()[0].atMs - tunedAt, kStandStillMs);
    EXPECT_LT(requests()[0].atMs - tunedAt, kPromptMs);
}

TEST_F(Following, ReadsEveryTokenOfANameWithPointOrComma) {
    const struct {
        std::int32_t khz;
        std::uint64_t channel;
    } rows[] = {{122800, kTower122800}, {121500, kGround121500}, {118005, kApproach118005}, {127250, kApproach118005}};
    for (const auto& row : rows) {
        session.tune(1, row.khz);
        ASSERT_TRUE(session.start());
        EXPECT_EQ(nextRequestedChannel(), row.channel) << row.khz;
        session.stop();
        session.plugin.unload();  // a fresh copy for the next
        host.moveByHand(kSchid, kOwnClient, kLobby);
        host.advance(session.clock.tickMs() + 1000);
    }
}

TEST_F(Following, GoesOnToTheNextFrequencyPromptlyAfterAConfirmedMove) {
    fly();
    session.tune(1, 122800);
    ASSERT_TRUE(session.waitForArrival(kTower122800));
    const std::uint64_t tunedAt = session.tune(1, 121500);
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 2));
    EXPECT_EQ(requests()[1].channelId, kGround121500);
    EXPECT_GE(requests()[1].atMs - tunedAt, kStandStillMs);
    EXPECT_LT(requests()[1].atMs - tunedAt, kPromptMs);
}

TEST_F(Following, TakesNoNearMiss) {
    const char* const names[] = {"1133.700", "133.7001", "133.70", "133.7", "133 700", "133:700", "13.3700",
                                 "133.70a",  "",         "700",    "133.",  "x133.7",  "133.705", "1133,7001"};
    std::uint64_t id = 200;
    for (const char* name : names) host.addChannel(kSchid, {id++, name});
    fly();
    const std::size_t looks = host.callsOf("getChannelList").size();
    session.tune(1, 133700);
    ASSERT_TRUE(session.waitForCalls("getChannelList", looks + 2));
    EXPECT_TRUE(requests().empty());
}

TEST_F(Following, FindsTheFrequencyBehindNearMissesInTheSameName) {
    host.addChannel(kSchid, {200, "1133.700"});
    host.addChannel(kSchid, {201, "133.7 133.7000 133.700"});
    fly();
    session.tune(1, 133700);
    EXPECT_EQ(nextRequestedChannel(), 201u);
}

TEST_F(Following, TakesTheEarlierOfTwoMatchingChannelsEveryTime) {
    host.addChannel(kSchid, {5, "second 122.800"});  // a smaller id, later in the list
    fly();
    session.tune(1, 122800);
    EXPECT_EQ(nextRequestedChannel(), kTower122800);
    ASSERT_TRUE(session.waitForArrival(kTower122800));
    host.moveByHand(kSchid, kOwnClient, 5);
    EXPECT_EQ(nextRequestedChannel(), kTower122800);
}

TEST_F(Following, AsksForNothingWhenAlreadyThere) {
    host.addChannel(kSchid, {150, "here 119.000"});
    host.addClient(kSchid, kOwnClient, 150);
    fly();
    ASSERT_TRUE(session.waitForCalls("getChannelList", 2));
    EXPECT_TRUE(requests().empty());
}

TEST_F(Following, TakesTheUserBackWithinTwoSecondsOfLeavingByHand) {
    fly();
    session.tune(1, 122800);
    ASSERT_EQ(nextRequestedChannel(), kTower122800);
    ASSERT_TRUE(session.waitForArrival(kTower122800));
    host.moveByHand(kSchid, kOwnClient, kLobby);
    const std::uint64_t leftAt = session.clock.tickMs();
    ASSERT_EQ(nextRequestedChannel(), kTower122800);
    EXPECT_LE(requests().back().atMs - leftAt, 2000u + 500u);
}

TEST_F(Following, FollowsTheRadioAndSlotOfTheSettings) {
    ASSERT_TRUE(session.writeSettings("radio=COM2\r\ntarget=1\r\n"));
    session.telemetry.radios[0].activeKhz = 122800;
    session.telemetry.radios[0].standbyKhz = 122800;
    session.telemetry.radios[1].activeKhz = 122800;
    session.telemetry.radios[1].standbyKhz = 121500;
    session.publish();
    ASSERT_TRUE(session.start());
    EXPECT_EQ(nextRequestedChannel(), kGround121500);
}

TEST_F(Following, RestsWhileSwitchedOff) {
    for (const char* line : {"enabled=0\r\n", "master=0\r\n"}) {
        ASSERT_TRUE(session.writeSettings(line));
        session.telemetry.radios[0].activeKhz = 122800;
        session.publish();
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitTicks(800));
        EXPECT_TRUE(host.callsOf("getChannelList").empty()) << line;
        session.stop();
    }
}

TEST_F(Following, RestsWhileTheTelemetryIsUnhealthyOrOfAnotherProtocol) {
    const FakeTelemetry good = session.telemetry;
    FakeTelemetry bad[2] = {good, good};
    bad[0].ok = false;
    bad[1].protocol = 3;
    for (const FakeTelemetry& telemetry : bad) {
        host.forgetCalls();
        session.telemetry = telemetry;
        session.telemetry.radios[0].activeKhz = 122800;
        session.publish();
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitTicks(800));
        EXPECT_TRUE(host.callsOf("getChannelList").empty());
        session.stop();
    }
}

TEST_F(Following, RestsOnceTheTelemetryIsThreeSecondsOldOrFromTheFuture) {
    for (const double offset : {-3.0, 30.0}) {
        host.forgetCalls();
        session.telemetry.radios[0].activeKhz = 122800;
        std::filesystem::create_directories(session.dataFolder);
        const std::string text = telemetryText(session.telemetry, session.clock.unixSeconds() + offset);
        ASSERT_TRUE(replaceFile(session.dataFolder / "telemetry.json", text));
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitTicks(800));
        EXPECT_TRUE(host.callsOf("getChannelList").empty()) << offset;
        session.stop();
    }
}

TEST_F(Following, WaitsAnewAfterTheServerTabChanged) {
    host.addServer(2, 21, 300);
    host.addChannel(2, {300, "Foyer"});
    host.addChannel(2, {301, "other tower 122.800"});
    fly();
    session.tune(1, 122800);
    ASSERT_EQ(nextRequestedChannel(), kTower122800);
    ASSERT_TRUE(session.waitUntil([&] { return host.ownChannel(kSchid) == kTower122800; }));
    const std::uint64_t switchedAt = session.clock.tickMs();
    session.plugin.exports().currentServerConnectionChanged(2);
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 2));
    EXPECT_EQ(requests()[1].schid, 2u);
    EXPECT_EQ(requests()[1].clientId, 21u);
    EXPECT_EQ(requests()[1].channelId, 301u);
    EXPECT_GE(requests()[1].atMs - switchedAt, kStandStillMs);
    EXPECT_LT(requests()[1].atMs - switchedAt, kPromptMs);
}

TEST_F(Following, ADisconnectOfAnotherServerChangesNothing) {
    fly();
    session.plugin.exports().onConnectStatusChangeEvent(99, 0, 0);
    session.tune(1, 122800);
    EXPECT_EQ(nextRequestedChannel(), kTower122800);
}

TEST_F(Following, OtherConnectStatesOfTheServerChangeNothing) {
    fly();
    for (const int status : {1, 2, 3, 4}) session.plugin.exports().onConnectStatusChangeEvent(kSchid, status, 0);
    session.tune(1, 122800);
    EXPECT_EQ(nextRequestedChannel(), kTower122800);
}

TEST_F(Following, LeavesTheServerAloneAfterItsDisconnect) {
    fly();
    session.plugin.exports().onConnectStatusChangeEvent(kSchid, 0, 0);
    const std::size_t calls = host.calls().size();
    session.tune(1, 122800);
    // A pass under way may still finish: id, talk flag, and a look at the channels with their names freed.
    EXPECT_FALSE(session.waitUntil([&] { return host.calls().size() > calls + 14; }, 800));
    EXPECT_TRUE(requests().empty());
    session.plugin.exports().currentServerConnectionChanged(kSchid);
    EXPECT_EQ(nextRequestedChannel(), kTower122800);
}

TEST_F(Following, TakesUpTheServerThatAppearsAfterTheStart) {
    host.setCurrentServer(0);
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.start());
    EXPECT_FALSE(session.waitForCalls("getClientID", 1, 400));
    session.plugin.exports().currentServerConnectionChanged(kSchid);
    EXPECT_EQ(nextRequestedChannel(), kTower122800);
}
