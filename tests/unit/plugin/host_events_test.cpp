#include "plugin/host_events.h"
#include <gtest/gtest.h>

class HostEvents : public testing::Test {
  protected:
    // Own client 10 and another speak on server 5, for long enough to have a tail.
    HostEvents() {
        talk.ownClientId = 10;
        talkChanged(talk, 5, 10, true, 1000);
        talkChanged(talk, 5, 20, true, 1000);
    }
    std::size_t trackedSpeakers() {
        MutexLock lock(talk.mutex);
        return talk.speakers.size();
    }
    std::size_t talkingClients() {
        MutexLock lock(talk.mutex);
        return talk.talking.size();
    }
    void expectReset(std::uint64_t at) {
        EXPECT_EQ(trackedSpeakers(), 0u);
        EXPECT_EQ(talkingClients(), 0u);
        EXPECT_FALSE(talk.ownTransmit);
        EXPECT_FALSE(talk.othersReceiving);
        EXPECT_EQ(talk.lastTalkEventTick, at);
        EXPECT_TRUE(takeTails(talk).empty());
    }
    void expectUntouched() {
        EXPECT_EQ(trackedSpeakers(), 2u);
        EXPECT_EQ(talkingClients(), 2u);
        EXPECT_TRUE(talk.ownTransmit);
        EXPECT_TRUE(talk.othersReceiving);
        EXPECT_EQ(talk.lastTalkEventTick, 1000u);
    }

    HostFunctions host;
    TalkTracker talk;
    std::atomic<std::uint64_t> current{5};
};

TEST_F(HostEvents, AnotherServerInFrontBecomesTheCurrentOneAndKeepsTheTalk) {
    serverConnectionChanged(current, talk, 6, 2000);
    EXPECT_EQ(current, 6u);
    expectUntouched();
}

TEST_F(HostEvents, NoServerInFrontClearsTheCurrentOneAndTheTalk) {
    serverConnectionChanged(current, talk, 0, 2000);
    EXPECT_EQ(current, 0u);
    expectReset(2000);
}

TEST_F(HostEvents, ADisconnectOfTheCurrentServerClearsItAndTheTalk) {
    connectStatusChanged(current, talk, host, 5, 0, 2000);
    EXPECT_EQ(current, 0u);
    expectReset(2000);
}

TEST_F(HostEvents, ADisconnectOfAnotherServerKeepsTheCurrentOneButClearsTheTalk) {
    connectStatusChanged(current, talk, host, 6, 0, 2000);
    EXPECT_EQ(current, 5u);
    expectReset(2000);
}

TEST_F(HostEvents, AnyOtherConnectStatusChangesNothing) {
    for (const int status : {1, 2, 3, 4, -1, 100}) connectStatusChanged(current, talk, host, 5, status, 2000);
    EXPECT_EQ(current, 5u);
    expectUntouched();
}

TEST_F(HostEvents, AConnectionThatComesBackInTheSameTabIsCurrentAgain) {
    static std::uint64_t inFront = 0;
    host.getCurrentServerConnectionHandlerID = [] { return inFront; };
    connectStatusChanged(current, talk, host, 5, 0, 2000);
    inFront = 5;
    for (const int status : {1, 2, 3}) {
        connectStatusChanged(current, talk, host, 5, status, 2100);
        EXPECT_EQ(current, 0u) << status;
    }
    connectStatusChanged(current, talk, host, 5, 4, 2200);
    EXPECT_EQ(current, 5u);
    inFront = 6;
    connectStatusChanged(current, talk, host, 6, 4, 2300);  // a second server behind it
    EXPECT_EQ(current, 5u);
}

TEST_F(HostEvents, WithoutAServerInFrontOrAHostToAskNoneIsCurrent) {
    connectStatusChanged(current, talk, host, 5, 0, 2000);
    connectStatusChanged(current, talk, host, 5, 4, 2100);
    EXPECT_EQ(current, 0u);
    host.getCurrentServerConnectionHandlerID = [] { return std::uint64_t{0}; };
    connectStatusChanged(current, talk, host, 5, 4, 2200);
    EXPECT_EQ(current, 0u);
}

TEST_F(HostEvents, AClientThatLeavesTheServerIsTakenOutOfBothTables) {
    clientMoved(talk, 5, 20, 0, 2000);
    EXPECT_EQ(trackedSpeakers(), 1u);
    EXPECT_EQ(talkingClients(), 1u);
    EXPECT_TRUE(talk.ownTransmit);
    EXPECT_FALSE(talk.othersReceiving);
    clientMoved(talk, 5, 10, 0, 2100);
    expectReset(2100);
}

TEST_F(HostEvents, AClientThatChangesItsChannelGoesOnTalking) {
    clientMoved(talk, 5, 20, 77, 2000);
    expectUntouched();
}
