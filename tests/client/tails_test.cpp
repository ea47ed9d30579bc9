#include <algorithm>
#include "tests/client/client_session_win.h"

class Tails : public PluginTest {
  protected:
    void start(const std::string& settings = "") {
        ASSERT_TRUE(settings.empty() || session.writeSettings(settings));
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitPasses(1));
    }
    // Someone else transmits for at least ms.
    void letTalk(std::uint16_t clientId, std::uint64_t ms) {
        host.setTalking(kSchid, clientId, true);
        session.pump();
        ASSERT_TRUE(session.waitTicks(ms));
        host.setTalking(kSchid, clientId, false);
        session.pump();
    }
    void transmit(std::uint64_t ms) {
        host.setOwnTalkingFlag(kSchid, true);
        ASSERT_TRUE(session.waitTicks(ms));
        host.setOwnTalkingFlag(kSchid, false);
    }
    std::size_t played() const { return host.playedSounds().size(); }
    std::vector<std::string> linesWith(const std::string& part) const {
        std::vector<std::string> lines = host.logLines();
        std::erase_if(lines, [&](const std::string& line) { return line.find(part) == std::string::npos; });
        return lines;
    }
};

TEST_F(Tails, OneFollowsTheUsersOwnTransmission) {
    start();
    transmit(300);
    ASSERT_TRUE(session.waitForCalls("playWaveFile", 1, 2000));
    const HostCall call = host.callsOf("playWaveFile")[0];
    EXPECT_EQ(call.schid, kSchid);
    EXPECT_EQ(call.text, toUtf8((session.dataFolder / "radio_tail.wav").wstring()));
    EXPECT_EQ(linesWith("tail played"), std::vector<std::string>{"Corvalis tail played (own=1)"});
    ASSERT_TRUE(session.waitPasses(10));
    EXPECT_EQ(played(), 1u);
}

TEST_F(Tails, OneFollowsTheTransmissionOfAnother) {
    start();
    letTalk(kOtherClient, 200);
    ASSERT_TRUE(session.waitForCalls("playWaveFile", 1, 2000));
    EXPECT_EQ(linesWith("tail played"), std::vector<std::string>{"Corvalis tail played (own=0)"});
}

TEST_F(Tails, NoneFollowsAClickOfTheKey) {
    start();
    host.setTalking(kSchid, kOtherClient, true);
    host.setTalking(kSchid, kOtherClient, false);
    session.pump();
    ASSERT_TRUE(session.waitPasses(4));
    EXPECT_EQ(played(), 0u);
}

TEST_F(Tails, NoneFollowsTalkingWhileDisabled) {
    start();
    session.plugin.exports().onTalkStatusChangeEvent(kSchid, 2, 0, kOtherClient);
    ASSERT_TRUE(session.waitTicks(200));
    session.plugin.exports().onTalkStatusChangeEvent(kSchid, 0, 0, kOtherClient);
    ASSERT_TRUE(session.waitPasses(4));
    EXPECT_EQ(played(), 0u);
}

TEST_F(Tails, DisabledEndsATransmissionLikeSilence) {
    start();
    session.plugin.exports().onTalkStatusChangeEvent(kSchid, 1, 0, kOtherClient);
    ASSERT_TRUE(session.waitTicks(200));
    session.plugin.exports().onTalkStatusChangeEvent(kSchid, 2, 0, kOtherClient);
    EXPECT_TRUE(session.waitForCalls("playWaveFile", 1, 2000));
}

TEST_F(Tails, OfTwoSpeakersStoppingTogetherOnlyTheFirstIsHeard) {
    host.addClient(kSchid, 10, kLobby);
    start();
    host.setTalking(kSchid, 10, true);
    host.setTalking(kSchid, kOtherClient, true);
    session.pump();
    ASSERT_TRUE(session.waitTicks(200));
    host.setTalking(kSchid, 10, false);
    host.setTalking(kSchid, kOtherClient, false);
    session.pump();
    ASSERT_TRUE(session.waitForLog("tail throttled", 2000));
    EXPECT_EQ(linesWith("tail throttled"),
              std::vector<std::string>{"Corvalis tail throttled: 1 calls suppressed in 1s"});
    EXPECT_EQ(played(), 1u);
}

TEST_F(Tails, AreHeardAgainAfter350Ms) {
    start();
    letTalk(kOtherClient, 150);
    ASSERT_TRUE(session.waitForCalls("playWaveFile", 1, 2000));
    letTalk(kOtherClient, 400);
    ASSERT_TRUE(session.waitForCalls("playWaveFile", 2, 2000));
    const auto calls = host.callsOf("playWaveFile");
    EXPECT_GE(calls[1].atMs - calls[0].atMs, 350u);
    EXPECT_EQ(linesWith("tail played").size(), calls[1].atMs - calls[0].atMs >= 1000 ? 2u : 1u);
}

TEST_F(Tails, NoneIsHeardWithTheMasterSwitchOff) {
    start("master=0\r\n");
    letTalk(kOtherClient, 200);
    transmit(300);
    ASSERT_TRUE(session.waitPasses(4));
    EXPECT_EQ(played(), 0u);
    EXPECT_TRUE(linesWith("tail").size() == 1u);  // the path in the loading line
}

TEST_F(Tails, OfOnesOwnAreSilentWhenSwitchedOffAndOthersAreHeard) {
    start("tail_self=0\r\n");
    transmit(300);
    ASSERT_TRUE(session.waitPasses(4));
    EXPECT_EQ(played(), 0u);
    letTalk(kOtherClient, 200);
    EXPECT_TRUE(session.waitForCalls("playWaveFile", 1, 2000));
}

TEST_F(Tails, OfOthersAreSilentWhenSwitchedOffAndOnesOwnIsHeard) {
    start("tail_others=0\r\n");
    letTalk(kOtherClient, 200);
    ASSERT_TRUE(session.waitPasses(4));
    EXPECT_EQ(played(), 0u);
    transmit(300);
    EXPECT_TRUE(session.waitForCalls("playWaveFile", 1, 2000));
}

TEST_F(Tails, NoneFollowsAClientWhoLeftTheServerWhileTalking) {
    start();
    host.setTalking(kSchid, kOtherClient, true);
    session.pump();
    ASSERT_TRUE(session.waitTicks(200));
    host.moveByHand(kSchid, kOtherClient, 0);
    session.pump();
    session.plugin.exports().onTalkStatusChangeEvent(kSchid, 0, 0, kOtherClient);  // late
    ASSERT_TRUE(session.waitPasses(4));
    EXPECT_EQ(played(), 0u);
}

TEST_F(Tails, AMoveToAnotherChannelDoesNotForgetATransmission) {
    start();
    host.setTalking(kSchid, kOtherClient, true);
    session.pump();
    ASSERT_TRUE(session.waitTicks(200));
    host.moveByHand(kSchid, kOtherClient, kTower122800);
    host.setTalking(kSchid, kOtherClient, false);
    session.pump();
    EXPECT_TRUE(session.waitForCalls("playWaveFile", 1, 2000));
}

TEST_F(Tails, NoneIsHeardAfterADisconnectForgotTheTransmission) {
    start();
    host.setTalking(kSchid, kOtherClient, true);
    session.pump();
    ASSERT_TRUE(session.waitTicks(200));
    session.plugin.exports().onConnectStatusChangeEvent(kSchid, 0, 0);
    session.plugin.exports().currentServerConnectionChanged(kSchid);
    session.plugin.exports().onTalkStatusChangeEvent(kSchid, 0, 0, kOtherClient);
    ASSERT_TRUE(session.waitPasses(4));
    EXPECT_EQ(played(), 0u);
}

TEST_F(Tails, SixteenOfManyReleasesAreKeptAndOneIsHeard) {
    for (std::uint16_t id = 20; id < 60; id++) host.addClient(kSchid, id, kLobby);
    start();
    for (std::uint16_t id = 20; id < 60; id++) session.plugin.exports().onTalkStatusChangeEvent(kSchid, 1, 0, id);
    ASSERT_TRUE(session.waitTicks(200));
    for (std::uint16_t id = 20; id < 60; id++) session.plugin.exports().onTalkStatusChangeEvent(kSchid, 0, 0, id);
    ASSERT_TRUE(session.waitForCalls("playWaveFile", 1, 2000));
    ASSERT_TRUE(session.waitPasses(4));
    EXPECT_EQ(played(), 1u);
}
