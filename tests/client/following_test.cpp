#include <windows.h>
#include "panel/panel_requests.h"
#include "tests/client/client_session_win.h"
#include "tests/client/command_reader.h"

namespace {

constexpr std::uint64_t kStandStillMs = 350;
// 350 ms are seven or eight passes; the two seconds between two looks at a move would be forty.
constexpr std::size_t kPromptPasses = 20;

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
    // Waits for the next request and returns its channel; 0 = none came.
    std::uint64_t nextRequestedChannel() {
        const std::size_t before = requests().size();
        if (!session.waitForCalls("requestClientMove", before + 1)) return 0;
        return requests()[before].channelId;
    }
    // The request came only after the frequency had stood still, and then at once. changedAt: just before the plugin
    // could see the change; visibleAt: when it could.
    void expectPrompt(const HostCall& request, std::uint64_t changedAt, std::uint64_t visibleAt) {
        EXPECT_GE(request.atMs - changedAt, kStandStillMs);
        EXPECT_LE(session.passesBetween(visibleAt, request.atMs), kPromptPasses);
    }
    // At least two whole passes, recognised by what they do for the panel: without a server they do not call the host.
    ::testing::AssertionResult waitForPassesWithoutTheHost() {
        const auto panel = [] { return static_cast<HWND>(findOwnWindow(L"CorvalisRadioPanel")); };
        if (!session.waitUntil([&] { return panel() != nullptr; })) return ::testing::AssertionFailure() << "no panel";
        for (int pass = 0; pass < 2; pass++) {
            PostMessageW(panel(), kPanelSwapMessage, 1, 0);
            if (commands_.next() == "") return ::testing::AssertionFailure() << "no command";
            commands_.acknowledge(true);
        }
        return ::testing::AssertionSuccess();
    }

  private:
    CommandReader commands_{session};
};

TEST_F(Following, RequestsTheMoveOnceTheFrequencyStoodStillFor350Ms) {
    fly();
    const std::uint64_t tunedAt = session.tune(1, 122800), visibleAt = session.clock.tickMs();
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    const HostCall request = requests()[0];
    EXPECT_EQ(request.schid, kSchid);
    EXPECT_EQ(request.clientId, kOwnClient);
    EXPECT_EQ(request.channelId, kTower122800);
    EXPECT_EQ(request.channelText, "");  // password
    EXPECT_EQ(request.returnCode, "rc-corvalis-test-id-1");
    expectPrompt(request, tunedAt, visibleAt);
}

TEST_F(Following, WaitsAnewWhenTheFrequencyChangesAgain) {
    fly();
    const std::uint64_t firstTunedAt = session.tune(1, 122800);
    ASSERT_TRUE(session.waitPasses(2));
    const std::uint64_t tunedAt = session.tune(1, 121500), visibleAt = session.clock.tickMs();
    ASSERT_TRUE(session.waitUntil([&] { return !requests().empty() && requests().back().channelId == kGround121500; }));
    if (requests().size() == 1) return expectPrompt(requests()[0], tunedAt, visibleAt);
    // A machine that took so long to tune again that the first frequency had stood still, too.
    ASSERT_EQ(requests().size(), 2u);
    EXPECT_EQ(requests()[0].channelId, kTower122800);
    EXPECT_GE(requests()[0].atMs - firstTunedAt, kStandStillMs);
    EXPECT_GE(requests()[1].atMs - tunedAt, kStandStillMs);
}

// The host announces a current server only when the user changes tabs.
TEST_F(Following, GoesOnAfterAConnectionThatCameBackInTheSameTab) {
    fly();
    session.plugin.exports().onConnectStatusChangeEvent(kSchid, 0, 0);
    ASSERT_TRUE(waitForPassesWithoutTheHost());
    session.tune(1, 122800);
    ASSERT_TRUE(waitForPassesWithoutTheHost());
    for (int status = 1; status <= 4; status++) session.plugin.exports().onConnectStatusChangeEvent(kSchid, status, 0);
    EXPECT_EQ(nextRequestedChannel(), kTower122800);
}

TEST_F(Following, ReadsEveryTokenOfANameWithPointOrComma) {
    const struct {
        std::int32_t khz;
        std::uint64_t channel;
    } rows[] = {{122800, kTower122800}, {121500, kGround121500}, {118005, kApproach118005}, {127250, kApproach118005}};
    MoveRule refused;  // so that the next frequency may be requested at once
    refused.answer = MoveAnswer::kRefuseAtOnce;
    host.setMoveRule(refused);
    fly();
    for (const auto& row : rows) {
        session.tune(1, row.khz);
        EXPECT_EQ(nextRequestedChannel(), row.channel) << row.khz;
    }
}

TEST_F(Following, TakesNoNearMiss) {
    const char* const names[] = {"1133.700", "133.7001", "133.70", "133.7", "133 700", "133:700", "13.3700",
                                 "133.70a",  "",         "700",    "133.",  "x133.7",  "133.705", "1133,7001"};
    std::uint64_t id = 200;
    for (const char* name : names) host.addChannel(kSchid, {id++, name});
    session.tune(1, 133700);
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    ASSERT_TRUE(session.waitPasses(1));  // the look is over
    EXPECT_EQ(host.callsOf("getChannelVariableAsString").size(), 4 + std::size(names));
    EXPECT_TRUE(requests().empty());
}

TEST_F(Following, FindsTheFrequencyBehindNearMissesInTheSameName) {
    host.addChannel(kSchid, {200, "1133.700"});
    host.addChannel(kSchid, {201, "133.7 133.7000 133.700"});
    fly();
    session.tune(1, 133700);
    EXPECT_EQ(nextRequestedChannel(), 201u);
}

TEST_F(Following, TakesTheEarlierOfTwoMatchingChannels) {
    host.addChannel(kSchid, {5, "second 122.800"});  // a smaller id, later in the list
    fly();
    session.tune(1, 122800);
    EXPECT_EQ(nextRequestedChannel(), kTower122800);
}

TEST_F(Following, AsksForNothingWhenAlreadyThere) {
    host.addChannel(kSchid, {150, "here 119.000"});
    host.addClient(kSchid, kOwnClient, 150);
    fly();
    ASSERT_TRUE(session.waitPasses(1));  // the look is over
    EXPECT_TRUE(requests().empty());
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
    const std::uint64_t visibleAt = session.clock.tickMs();
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 2));
    EXPECT_EQ(requests()[1].schid, 2u);
    EXPECT_EQ(requests()[1].clientId, 21u);
    EXPECT_EQ(requests()[1].channelId, 301u);
    expectPrompt(requests()[1], switchedAt, visibleAt);
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
    ASSERT_TRUE(waitForPassesWithoutTheHost());  // a pass that was under way is over
    host.forgetCalls();
    session.tune(1, 122800);
    ASSERT_TRUE(waitForPassesWithoutTheHost());
    EXPECT_TRUE(host.calls().empty());
    session.plugin.exports().currentServerConnectionChanged(kSchid);
    EXPECT_EQ(nextRequestedChannel(), kTower122800);
}

TEST_F(Following, TakesUpTheServerThatAppearsAfterTheStart) {
    host.setCurrentServer(0);
    session.tune(1, 122800);
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(waitForPassesWithoutTheHost());
    EXPECT_TRUE(host.callsOf("getClientID").empty());
    session.plugin.exports().currentServerConnectionChanged(kSchid);
    EXPECT_EQ(nextRequestedChannel(), kTower122800);
}
