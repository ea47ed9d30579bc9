#include "tests/client/client_session_win.h"

// The host's side of a move: the request, the answers to it, and whose they are. The poll loop's tests check to the
// millisecond when the next look or request comes (tests/unit/bridge/poll_moves_test.cpp).

class Moves : public PluginTest {
  protected:
    // Starts with the radio on 122.800, the channel answering by the rule, and waits for the first request.
    void requestMove(const MoveRule& rule) {
        host.setMoveRule(kTower122800, rule);
        session.telemetry.radios[0].activeKhz = 122800;
        session.publish();
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    }
    std::vector<HostCall> requests() const { return host.callsOf("requestClientMove"); }
    // Tunes to another frequency and waits until the plugin has looked it up.
    void tuneAndWaitForTheLook(std::int32_t khz) {
        const std::size_t looks = host.callsOf("getChannelList").size();
        session.tune(1, khz);
        ASSERT_TRUE(session.waitForCalls("getChannelList", looks + 1));
        ASSERT_TRUE(session.waitPasses(1));
    }
    int answerTo(const char* returnCode, unsigned error = 768) const {
        return session.plugin.exports().onServerErrorEvent(kSchid, "message", error, returnCode, "extra");
    }
};

TEST_F(Moves, TheReportOfAConfirmedOneIsClaimed) {
    MoveRule rule;
    rule.delayMs = 100;
    requestMove(rule);
    ASSERT_TRUE(session.waitUntil([&] { return !session.eventAnswers.empty(); }));
    EXPECT_EQ(session.eventAnswers, std::vector<int>{1});
    EXPECT_EQ(host.ownChannel(kSchid), kTower122800);
    EXPECT_EQ(requests().size(), 1u);
}

TEST_F(Moves, OneRefusedByAnEventIsClaimedAndFreesTheWayForTheNext) {
    MoveRule rule;
    rule.answer = MoveAnswer::kRefuseLater;
    requestMove(rule);
    ASSERT_TRUE(session.waitUntil([&] { return !session.eventAnswers.empty(); }));
    EXPECT_EQ(session.eventAnswers[0], 1);
    tuneAndWaitForTheLook(121500);  // this look finds the refusal, the next one asks
    if (requests().size() == 1) tuneAndWaitForTheLook(118005);
    ASSERT_EQ(requests().size(), 2u);
    EXPECT_NE(requests()[1].channelId, kTower122800);
}

TEST_F(Moves, OnlyErrorsWithThePluginsReturnCodeAreClaimed) {
    ASSERT_TRUE(session.start());
    EXPECT_EQ(answerTo("rc-corvalis-test-id-1"), 1);
    EXPECT_EQ(answerTo("rc-corvalis-test-id-1", 0), 1);
    EXPECT_EQ(answerTo("rc-corvalis-test-id-2"), 0);
    EXPECT_EQ(answerTo("rc-corvalis-test-id-"), 0);
    EXPECT_EQ(answerTo("rc-corvalis-test-id-11"), 0);
    EXPECT_EQ(answerTo("RC-corvalis-test-id-1"), 0);
    EXPECT_EQ(answerTo(""), 0);
    EXPECT_EQ(answerTo(nullptr), 0);
    EXPECT_EQ(session.plugin.exports().onServerErrorEvent(kSchid, nullptr, 1, "rc-corvalis-test-id-1", nullptr), 1);
}

TEST_F(Moves, CarryAReturnCodeMadeAnewAtEachStart) {
    requestMove(MoveRule());
    ASSERT_TRUE(session.waitUntil([&] { return host.ownChannel(kSchid) == kTower122800; }));
    session.stop();
    EXPECT_EQ(requests()[0].returnCode, "rc-corvalis-test-id-1");
    host.moveByHand(kSchid, kOwnClient, kLobby);
    session.pump();
    session.plugin.exports().registerPluginID(kPluginId);  // shutdown has freed it
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 2));
    EXPECT_EQ(requests()[1].returnCode, "rc-corvalis-test-id-2");
    EXPECT_EQ(answerTo("rc-corvalis-test-id-1"), 0);
    EXPECT_EQ(answerTo("rc-corvalis-test-id-2"), 1);
}

TEST_F(Moves, CarryNoReturnCodeWithoutAPluginId) {
    ASSERT_TRUE(session.load());
    session.plugin.unload();
    ASSERT_TRUE(session.plugin.load(session.dll) && session.plugin.introduce(host)) << session.plugin.error();
    session.plugin.exports().registerPluginID(nullptr);
    requestMove(MoveRule());
    EXPECT_TRUE(host.callsOf("createReturnCode").empty());
    EXPECT_EQ(requests()[0].returnCode, std::nullopt);
    EXPECT_EQ(answerTo(""), 0);
    EXPECT_EQ(answerTo(nullptr), 0);
}

TEST_F(Moves, CarryTheReturnCodeOfTheIdRegisteredLast) {
    ASSERT_TRUE(session.load());
    session.plugin.exports().registerPluginID("the second one");
    requestMove(MoveRule());
    EXPECT_EQ(requests()[0].returnCode, "rc-the second one-1");
    EXPECT_EQ(answerTo("rc-the second one-1"), 1);
}

TEST_F(Moves, SurviveAReturnCodeThatFillsTheWholeBuffer) {
    const std::string longCode(400, 'r');
    host.setReturnCodeText(longCode);
    requestMove(MoveRule());
    ASSERT_TRUE(requests()[0].returnCode.has_value());
    const std::string code = *requests()[0].returnCode;
    EXPECT_LE(code.size(), 256u);
    EXPECT_GE(code.size(), 255u);
    EXPECT_EQ(code, longCode.substr(0, code.size()));
}

TEST_F(Moves, OfOthersAreNoConcernOfOurs) {
    host.addChannel(kSchid, {400, "Elsewhere"});
    ASSERT_TRUE(session.start());
    host.moveByHand(kSchid, kOtherClient, 400);
    host.moveByHand(kSchid, kOtherClient, 0);
    ASSERT_TRUE(session.waitPasses(2));
    EXPECT_TRUE(requests().empty());
}
