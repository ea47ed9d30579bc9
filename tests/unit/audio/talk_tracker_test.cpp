#include "audio/talk_tracker.h"
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

constexpr std::uint64_t kServer = 1;
constexpr std::uint64_t kOtherServer = 2;
constexpr std::uint16_t kOwn = 10;

}  // namespace

class TalkTrackerTest : public testing::Test {
  protected:
    TalkTrackerTest() { talk.ownClientId = kOwn; }

    void press(std::uint16_t client, std::uint64_t at, std::uint64_t server = kServer) {
        talkChanged(talk, server, client, true, at);
    }
    void release(std::uint16_t client, std::uint64_t at, std::uint64_t server = kServer) {
        talkChanged(talk, server, client, false, at);
    }
    // The clients whose tails wait, in order; the queue is empty afterwards.
    std::vector<std::uint16_t> tails() {
        std::vector<std::uint16_t> clients;
        for (const Tail& tail : takeTails(talk)) clients.push_back(tail.clientId);
        return clients;
    }
    std::size_t trackedSpeakers() {
        MutexLock lock(talk.mutex);
        return talk.speakers.size();
    }
    void expectLamps(bool own, bool others) {
        EXPECT_EQ(talk.ownTransmit, own);
        EXPECT_EQ(talk.othersReceiving, others);
    }

    TalkTracker talk;
};

TEST_F(TalkTrackerTest, NobodyTalksAtFirst) {
    expectLamps(false, false);
    EXPECT_TRUE(tails().empty());
    EXPECT_EQ(TalkTracker{}.ownClientId, 0);
}

TEST_F(TalkTrackerTest, AnEndedTransmissionOf120MsHasATailOneOf119MsHasNot) {
    press(1, 1000);
    release(1, 1119);
    EXPECT_TRUE(tails().empty());
    press(1, 2000);
    release(1, 2120);
    EXPECT_EQ(tails(), std::vector<std::uint16_t>{1});
    EXPECT_TRUE(tails().empty());  // taken once
}

TEST_F(TalkTrackerTest, ARepeatedTalkEventKeepsTheStartOfTheTransmission) {
    press(1, 1000);
    press(1, 1100);
    release(1, 1150);
    EXPECT_EQ(tails(), std::vector<std::uint16_t>{1});
}

TEST_F(TalkTrackerTest, ANewTransmissionStartsItsOwnTime) {
    press(1, 1000);
    release(1, 1010);
    press(1, 5000);
    release(1, 5119);
    EXPECT_TRUE(tails().empty());
}

TEST_F(TalkTrackerTest, AReleaseWithoutATransmissionHasNoTail) {
    release(1, 100000);
    press(2, 100000);
    release(2, 100500);
    release(2, 101000);
    EXPECT_EQ(tails(), std::vector<std::uint16_t>{2});
}

TEST_F(TalkTrackerTest, ATailNamesTheServerAndTheClient) {
    press(7, 0, 0x123456789AULL);
    release(7, 500, 0x123456789AULL);
    const auto queued = takeTails(talk);
    ASSERT_EQ(queued.size(), 1u);
    EXPECT_EQ(queued[0].schid, 0x123456789AULL);
    EXPECT_EQ(queued[0].clientId, 7);
}

TEST_F(TalkTrackerTest, TheSeventeenthReleaseBetweenTwoDrainsIsDropped) {
    std::vector<std::uint16_t> firstSixteen;
    for (std::uint16_t client = 101; client <= 117; client++) {
        press(client, 1000);
        release(client, 2000);
        if (client <= 116) firstSixteen.push_back(client);
    }
    EXPECT_EQ(tails(), firstSixteen);
    expectLamps(false, false);  // the dropped one has stopped talking nevertheless
    press(117, 3000);
    release(117, 4000);
    EXPECT_EQ(tails(), std::vector<std::uint16_t>{117});
}

TEST_F(TalkTrackerTest, TheLampsTellOwnFromOthers) {
    press(kOwn, 1);
    expectLamps(true, false);
    press(20, 2);
    expectLamps(true, true);
    press(21, 3);
    release(kOwn, 4);
    expectLamps(false, true);
    release(20, 5);
    expectLamps(false, true);
    release(21, 6);
    expectLamps(false, false);
}

TEST_F(TalkTrackerTest, EveryEventIsStampedWithItsTime) {
    press(1, 5'000'000'000ULL);
    EXPECT_EQ(talk.lastTalkEventTick, 5'000'000'000ULL);
    release(1, 5'000'000'001ULL);
    EXPECT_EQ(talk.lastTalkEventTick, 5'000'000'001ULL);
    release(1, 5'000'000'002ULL);
    EXPECT_EQ(talk.lastTalkEventTick, 5'000'000'002ULL);
    forgetClient(talk, kServer, 1, 5'000'000'003ULL);
    EXPECT_EQ(talk.lastTalkEventTick, 5'000'000'003ULL);
    resetTalk(talk, 5'000'000'004ULL);
    EXPECT_EQ(talk.lastTalkEventTick, 5'000'000'004ULL);
}

TEST_F(TalkTrackerTest, TheSameClientOnTwoServersHasTwoTransmissionsButOneLamp) {
    press(5, 1000, kServer);
    press(5, 1200, kOtherServer);
    release(5, 1250, kOtherServer);  // 50 ms there
    EXPECT_TRUE(tails().empty());
    expectLamps(false, false);  // the talking set only knows client ids
    release(5, 1251, kServer);  // 251 ms here
    const auto queued = takeTails(talk);
    ASSERT_EQ(queued.size(), 1u);
    EXPECT_EQ(queued[0].schid, kServer);
}

TEST_F(TalkTrackerTest, TheSpeakersKeyPutsTheServerAboveTheSixteenBitsOfTheClient) {
    EXPECT_EQ(speakerKey(0, 0xFFFF), 0xFFFFu);
    EXPECT_EQ(speakerKey(1, 5), 0x10005u);
    EXPECT_EQ(speakerKey(0xABCD, 0x1234), 0xABCD1234u);
    EXPECT_EQ(speakerKey(0xFFFF'0000'0000'0001ULL, 2), 0x10002u);  // the top sixteen bits are dropped
}

TEST_F(TalkTrackerTest, AFullTableIsFlushedAtTheNextEventAfter1024Speakers) {
    for (std::uint16_t client = 1000; client < 1000 + 1024; client++) press(client, 1);
    press(1000, 2);
    EXPECT_EQ(trackedSpeakers(), 1024u);  // full, but not over
    press(3000, 3);
    EXPECT_EQ(trackedSpeakers(), 1025u);
    expectLamps(false, true);
    release(3001, 1000);
    EXPECT_EQ(trackedSpeakers(), 1u);
    expectLamps(false, false);
    release(1000, 1000);  // its start is forgotten
    EXPECT_TRUE(tails().empty());
}

TEST_F(TalkTrackerTest, QueuedTailsSurviveTheFlush) {
    press(1, 0);
    release(1, 500);
    for (std::uint16_t client = 1000; client < 1000 + 1100; client++) press(client, 600);
    EXPECT_EQ(tails(), std::vector<std::uint16_t>{1});
}

TEST_F(TalkTrackerTest, AClientThatLeftIsForgottenWithoutATailAndItsLampGoesDark) {
    press(20, 1000);
    press(kOwn, 1000);
    forgetClient(talk, kServer, 20, 2000);
    expectLamps(true, false);
    EXPECT_EQ(trackedSpeakers(), 1u);
    EXPECT_TRUE(tails().empty());
    release(20, 3000);
    EXPECT_TRUE(tails().empty());
}

TEST_F(TalkTrackerTest, ForgettingAClientNobodyKnowsLeavesTheOthers) {
    press(20, 1000);
    forgetClient(talk, kServer, 99, 1100);
    expectLamps(false, true);
    release(20, 1200);
    EXPECT_EQ(tails(), std::vector<std::uint16_t>{20});
}

TEST_F(TalkTrackerTest, AResetForgetsEverySpeakerAndDarkensBothLamps) {
    press(kOwn, 1000);
    press(20, 1000, kOtherServer);
    resetTalk(talk, 2000);
    expectLamps(false, false);
    EXPECT_EQ(trackedSpeakers(), 0u);
    release(20, 3000, kOtherServer);
    EXPECT_TRUE(tails().empty());
}

TEST_F(TalkTrackerTest, TheLampsFollowTheOwnClientIdOfTheMoment) {
    press(20, 1000);
    talk.ownClientId = 20;
    press(20, 1010);
    expectLamps(true, false);
}

TEST_F(TalkTrackerTest, ThreadsMayReportAndDrainAtOnce) {
    std::atomic<int> drained{0};
    std::vector<std::thread> threads;
    for (std::uint16_t client : {std::uint16_t{1}, std::uint16_t{2}, kOwn})
        threads.emplace_back([this, client] {
            for (std::uint64_t i = 0; i < 300; i++) {
                press(client, i * 1000);
                release(client, i * 1000 + 500);
            }
        });
    threads.emplace_back([&] {
        for (int i = 0; i < 300; i++) drained += static_cast<int>(takeTails(talk).size());
    });
    for (auto& thread : threads) thread.join();
    drained += static_cast<int>(takeTails(talk).size());
    EXPECT_GT(drained, 0);
    EXPECT_LE(drained, 900);
    expectLamps(false, false);
}

TEST(TalkTracker, ForgetsLampsSpeakersAndQueuedTailsWithThePlugin) {
    TalkTracker tracker;
    tracker.ownClientId = 1;
    talkChanged(tracker, 5, 1, true, 1000);
    talkChanged(tracker, 5, 2, true, 1000);
    talkChanged(tracker, 5, 3, true, 1000);
    talkChanged(tracker, 5, 3, false, 2000);  // its tail waits
    forgetAllTalk(tracker, 3000);
    EXPECT_FALSE(tracker.ownTransmit);
    EXPECT_FALSE(tracker.othersReceiving);
    EXPECT_EQ(tracker.ownClientId, 0);  // until the server gives another
    EXPECT_TRUE(takeTails(tracker).empty());
    talkChanged(tracker, 5, 2, false, 4000);  // begun before: nothing to end
    EXPECT_TRUE(takeTails(tracker).empty());
}
