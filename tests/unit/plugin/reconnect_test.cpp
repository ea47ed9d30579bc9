// reconnect_test.cpp - servers that come and go while the poll loop runs: following, lamps and tails are right soon
// afterwards, and nothing of before is left over. The host's events reach the plugin as in plugin/exports_win.cpp.
#include <gtest/gtest.h>
#include <functional>
#include <utility>
#include "exchange/command_text.h"
#include "plugin/host_events.h"
#include "tests/unit/bridge/rig.h"

namespace {

constexpr std::uint64_t kSoonMs = 4000;
constexpr std::uint64_t kTalkMs = 500;
constexpr std::uint16_t kOther = 9;

class Reconnect : public testing::Test {
  protected:
    Reconnect() {
        rig.host.setBeforeCall([this](const HostCall& call) {
            if (duringCall_ && call.function == duringCallOf_) std::exchange(duringCall_, nullptr)();
        });
        rig.host.addClient(1, kOther, 10);
    }
    void connectStatus(std::uint64_t schid, int status) {
        connectStatusChanged(rig.server, rig.talk, rig.functions, schid, status, rig.clock.tickMs());
    }
    // The server is gone; its tab stays in front.
    void drop() {
        rig.host.removeServer(1);
        rig.host.setCurrentServer(1);
        connectStatus(1, kStatusDisconnected);
    }
    // It is back in the same tab, under another own id.
    void comeBack() {
        rig.host.addServer(1, kNewOwnId, 10);
        rig.host.addChannel(1, {10, "Lobby"});
        rig.host.addChannel(1, {11, "TWR 122.800"});
        for (const int status : {1, 2, 3, 4}) connectStatus(1, status);
    }
    void addSecondServer() {
        rig.host.addServer(2, 6, 20);
        rig.host.addChannel(2, {20, "Lobby"});
        rig.host.addChannel(2, {21, "122.800"});
        rig.host.addClient(2, kOther, 20);
    }
    void bothTalk() {
        rig.host.setOwnTalkingFlag(1, true);
        rig.host.setTalking(1, kOther, true);
        rig.passFor(kTalkMs);
        ASSERT_TRUE(rig.talk.ownTransmit && rig.talk.othersReceiving);
    }
    void expectDark() {
        EXPECT_FALSE(rig.talk.ownTransmit);
        EXPECT_FALSE(rig.talk.othersReceiving);
    }
    // Runs work in the midst of the next pass that calls this host function.
    void during(const char* function, std::function<void()> work) {
        duringCallOf_ = function;
        duringCall_ = std::move(work);
    }
    std::size_t requests() const { return rig.host.callsOf("requestClientMove").size(); }

    static constexpr std::uint16_t kNewOwnId = 12;
    PollRig rig;

  private:
    std::string duringCallOf_;
    std::function<void()> duringCall_;
};

}  // namespace

TEST_F(Reconnect, ADroppedConnectionLeavesNothingOnThePanelAndAsksTheHostNothing) {
    rig.host.setMoveRule({MoveAnswer::kSilence});
    bothTalk();
    ASSERT_NE(rig.moves.pendingChannel, 0U);
    ASSERT_NE(rig.channelStatus(), "");
    drop();
    rig.pass();
    expectDark();
    EXPECT_EQ(rig.channelStatus(), "");
    EXPECT_EQ(rig.moves.pendingChannel, 0U);
    rig.host.forgetCalls();
    rig.passFor(kSoonMs);
    EXPECT_TRUE(rig.host.calls().empty());
    EXPECT_TRUE(rig.host.problems().empty());
}

TEST_F(Reconnect, AfterItsReturnInTheSameTabAllIsAsBefore) {
    bothTalk();
    drop();
    rig.passFor(1000);
    rig.host.forgetCalls();
    comeBack();
    rig.passFor(kSoonMs);
    ASSERT_EQ(requests(), 1U);
    EXPECT_EQ(rig.host.callsOf("requestClientMove")[0].clientId, kNewOwnId);
    EXPECT_EQ(rig.channelStatus(), "TS3 channel confirmed");
    expectDark();
    rig.host.setOwnTalkingFlag(1, true);
    rig.passFor(kTalkMs);
    EXPECT_TRUE(rig.talk.ownTransmit);
    EXPECT_FALSE(rig.talk.othersReceiving);
    EXPECT_TRUE(rig.host.playedSounds().empty());  // nobody has stopped talking since
    rig.host.setOwnTalkingFlag(1, false);
    rig.passFor(kTalkMs);
    EXPECT_EQ(rig.host.playedSounds().size(), 1U);
    expectDark();
}

TEST_F(Reconnect, ATransmissionThatADropOvertakesInTheMidstOfAPassLeavesNoLampLit) {
    rig.host.setOwnTalkingFlag(1, true);
    during("getClientSelfVariableAsInt", [this] { connectStatus(1, kStatusDisconnected); });
    rig.pass();
    rig.pass();
    expectDark();
}

TEST_F(Reconnect, ADropAndAReturnInTheMidstOfAPassLeaveNoLampLit) {
    rig.host.setOwnTalkingFlag(1, true);
    during("getClientSelfVariableAsInt", [this] {
        connectStatus(1, kStatusDisconnected);
        rig.host.addServer(1, kNewOwnId, 10);
        rig.host.setOwnTalkingFlag(1, true);
        connectStatus(1, kStatusEstablished);
    });
    rig.pass();
    rig.pass();
    EXPECT_TRUE(rig.talk.ownTransmit);
    EXPECT_FALSE(rig.talk.othersReceiving);
    rig.host.setOwnTalkingFlag(1, false);
    rig.pass();
    expectDark();
}

TEST_F(Reconnect, AnotherTabTakesOverWithoutTheLampsOfTheTransmissionLeftBehind) {
    addSecondServer();
    rig.passFor(1000);
    rig.host.setOwnTalkingFlag(1, true);
    rig.passFor(kTalkMs);
    ASSERT_TRUE(rig.talk.ownTransmit);
    serverConnectionChanged(rig.server, rig.talk, 2, rig.clock.tickMs());
    rig.host.setOwnTalkingFlag(1, false);  // the host says nothing of a server in the background
    rig.host.forgetCalls();
    rig.passFor(kSoonMs);
    expectDark();
    EXPECT_TRUE(rig.host.playedSounds().empty());
    ASSERT_EQ(requests(), 1U);
    EXPECT_EQ(rig.host.callsOf("requestClientMove")[0].schid, 2U);
    EXPECT_EQ(rig.channelStatus(), "TS3 channel confirmed");
}

TEST_F(Reconnect, ASecondServerThatComesAndGoesDisturbsNothingOnTheFirst) {
    addSecondServer();
    rig.passFor(kSoonMs);
    for (const int status : {1, 2, 3, 4}) connectStatus(2, status);
    bothTalk();
    connectStatus(2, kStatusDisconnected);
    rig.passFor(kTalkMs);
    EXPECT_EQ(rig.server, 1U);
    EXPECT_TRUE(rig.talk.ownTransmit);  // still talking, as the host says each pass
    rig.host.setOwnTalkingFlag(1, false);
    rig.host.forgetCalls();
    rig.passFor(kTalkMs);
    expectDark();
    EXPECT_EQ(rig.host.playedSounds().size(), 1U);
    rig.telemetry.set("com1_active", "121500");
    rig.passFor(kSoonMs);
    ASSERT_EQ(requests(), 1U);
    EXPECT_EQ(rig.host.callsOf("requestClientMove")[0].channelId, 12U);
}

TEST_F(Reconnect, OfTwoServersTheOneInFrontIsFollowedWhicheverComesBackFirst) {
    for (const std::uint64_t first : {1U, 2U}) {
        rig.host.removeServer(2);
        addSecondServer();
        rig.host.setCurrentServer(1);
        for (const std::uint64_t schid : {1U, 2U}) connectStatus(schid, kStatusDisconnected);
        rig.passFor(1000);
        rig.host.forgetCalls();
        rig.host.moveByHand(1, 5, 10);
        rig.deliver();
        connectStatus(first, kStatusEstablished);
        connectStatus(3 - first, kStatusEstablished);
        rig.passFor(kSoonMs);
        ASSERT_EQ(requests(), 1U) << first;
        EXPECT_EQ(rig.host.callsOf("requestClientMove")[0].schid, 1U) << first;
    }
}

TEST_F(Reconnect, AClientThatIsKickedWhileTalkingHasNoTailAndItsLampGoesDark) {
    rig.host.setTalking(1, kOther, true);
    rig.passFor(kTalkMs);
    ASSERT_TRUE(rig.talk.othersReceiving);
    clientMoved(rig.talk, 1, kOther, 0, rig.clock.tickMs());
    rig.passFor(kTalkMs);
    expectDark();
    EXPECT_TRUE(rig.host.playedSounds().empty());
}

TEST_F(Reconnect, AUserWhoIsKickedFromTheChannelIsBackInItSoon) {
    rig.passFor(kSoonMs);
    ASSERT_EQ(rig.host.ownChannel(1), 11U);
    rig.host.moveByHand(1, 5, 10);
    rig.deliver();
    rig.passFor(kSoonMs);
    EXPECT_EQ(rig.host.ownChannel(1), 11U);
}

TEST_F(Reconnect, ANewStartShowsNothingAndSendsNothingOfBefore) {
    bothTalk();
    rig.passFor(kSoonMs);
    ASSERT_EQ(rig.channelStatus(), "TS3 channel confirmed");
    ASSERT_TRUE(enqueue(rig.radios, 1, kSlotStandby, 121525.0, -1.0f, rig.clock.tickMs()));
    rig.host.setTalking(1, kOther, false);  // its tail waits
    rig.deliver();
    forgetAllTalk(rig.talk, rig.clock.tickMs());
    forgetRadios(rig.radios);
    expectDark();
    EXPECT_FALSE(copySimState(rig.sim).connected);
    EXPECT_EQ(copySimState(rig.sim).radios[0].active, 0);
    EXPECT_EQ(rig.statusText(), "DISCONNECTED");
    EXPECT_EQ(rig.channelStatus(), "");
    rig.host.forgetCalls();
    rig.memory = {};
    rig.server = 0;
    rig.pass();
    EXPECT_EQ(rig.statusText(), "CONNECTED");  // not the answer of before, which is still in the worker's file
    rig.passFor(kSoonMs);
    EXPECT_FALSE(rig.files.has(pathOf(kCommandFile)));
    EXPECT_TRUE(rig.host.calls().empty());
    expectDark();
}

// As at a second init without a shutdown, when the server has gone unnoticed.
TEST_F(Reconnect, ANewPollThreadClearsTheChannelLineOfTheOneBefore) {
    rig.passFor(kSoonMs);
    ASSERT_NE(rig.channelStatus(), "");
    rig.memory = {};
    rig.server = 0;
    rig.pass();
    EXPECT_EQ(rig.channelStatus(), "");
}
