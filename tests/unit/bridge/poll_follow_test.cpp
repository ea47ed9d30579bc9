// poll_follow_test.cpp - when the poll loop follows a frequency, driven pass by pass, 50 ms apart.
#include <gtest/gtest.h>
#include <functional>
#include "exchange/command_text.h"
#include "tests/unit/bridge/rig.h"

namespace {

using Times = std::vector<std::uint64_t>;

class PollFollow : public testing::Test {
  protected:
    void tune(const std::string& khz) { rig.telemetry.set("com1_active", khz); }
    Times looksIn(std::uint64_t ms) {
        rig.host.forgetCalls();
        rig.passFor(ms);
        return rig.looks();
    }
    std::uint64_t now() const { return rig.clock.tickMs() - PollRig::kStartMs; }

    PollRig rig;
};

}  // namespace

TEST_F(PollFollow, LooksOnceTheFrequencyHasStoodStill350Ms) {
    rig.host.setMoveRule({MoveAnswer::kSilence});
    EXPECT_EQ(looksIn(2000), (Times{350}));
}

TEST_F(PollFollow, AnUnconfirmedMoveIsLookedAtEvery2000Ms) {
    rig.host.setMoveRule({MoveAnswer::kSilence});
    EXPECT_EQ(looksIn(8700), (Times{350, 2350, 4350, 6350, 8350}));
    EXPECT_EQ(rig.host.callsOf("requestClientMove").size(), 2U);  // asked again after 5000 ms without an answer
}

TEST_F(PollFollow, TheMoveGoesFromRequestToConfirmation) {
    rig.passFor(400);
    EXPECT_EQ(rig.channelStatus(), "TS3 move requested; awaiting confirmation");
    const auto requests = rig.host.callsOf("requestClientMove");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].schid, 1U);
    EXPECT_EQ(requests[0].clientId, 5);
    EXPECT_EQ(requests[0].channelId, 11U);
    EXPECT_EQ(requests[0].returnCode, "rc");
    rig.passFor(2000);
    EXPECT_EQ(rig.channelStatus(), "TS3 channel confirmed");
    EXPECT_EQ(rig.host.ownChannel(1), 11U);
    EXPECT_TRUE(rig.host.problems().empty());
    EXPECT_TRUE(rig.host.leaks().empty());
}

TEST_F(PollFollow, AChangeStartsTheWaitingAnewAndItsRepetitionDoesNot) {
    rig.host.setMoveRule({MoveAnswer::kSilence});
    rig.passFor(200);
    tune("121500");
    const auto changedAt = now();
    EXPECT_EQ(looksIn(1000), (Times{changedAt + 350}));
}

TEST_F(PollFollow, AFrequencyThatNeverStandsStillIsNeverFollowed) {
    for (int turn = 0; turn < 20; turn++) {
        tune(turn % 2 == 0 ? "121500" : "122800");
        rig.passFor(300);
    }
    EXPECT_EQ(rig.looks(), Times{});
}

TEST_F(PollFollow, AChangeWithinTheTwoSecondsIsFollowedAfter350Ms) {
    rig.host.setMoveRule({MoveAnswer::kSilence});
    rig.passFor(600);
    tune("121500");
    const auto changedAt = now();
    EXPECT_EQ(looksIn(600), (Times{changedAt + 350}));
}

TEST_F(PollFollow, AnotherServerTabStartsTheWaitingAnew) {
    rig.host.addServer(2, 6, 20);
    rig.host.addChannel(2, {20, "Lobby"});
    rig.host.addChannel(2, {21, "122.800"});
    rig.passFor(1000);
    rig.server = 2;
    const auto turnedAt = now();
    EXPECT_EQ(looksIn(1000), (Times{turnedAt + 350}));
    const auto requests = rig.host.callsOf("requestClientMove");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].schid, 2U);
    EXPECT_EQ(requests[0].channelId, 21U);
}

TEST_F(PollFollow, NothingIsFollowedWithoutAServer) {
    rig.server = 0;
    EXPECT_EQ(looksIn(3000), Times{});
    rig.server = 1;
    const auto connectedAt = now();
    EXPECT_EQ(looksIn(1000), (Times{connectedAt + 350}));
}

TEST_F(PollFollow, SwitchedOffNothingIsFollowedAndSwitchedOnTheWaitingStartsAnew) {
    rig.change([](Settings& live) { live.enabled = false; });
    EXPECT_EQ(looksIn(3000), Times{});
    rig.change([](Settings& live) { live.enabled = true; });
    // The last pass that saw it switched off, 50 ms ago, was the last to restart the wait.
    const auto lastOff = now() - 50;
    EXPECT_EQ(looksIn(1000), (Times{lastOff + 350}));
}

TEST_F(PollFollow, WithMasterOffNothingIsFollowedButTheWaitingGoesOn) {
    rig.change([](Settings& live) { live.master = false; });
    EXPECT_EQ(looksIn(3000), Times{});
    rig.change([](Settings& live) { live.master = true; });
    const auto switchedAt = now();
    EXPECT_EQ(looksIn(1000), (Times{switchedAt}));
}

TEST_F(PollFollow, LostTelemetryStartsTheWaitingAnew) {
    rig.host.setMoveRule({MoveAnswer::kSilence});
    rig.passFor(1000);
    rig.files.remove(pathOf(kTelemetryFile));
    rig.workerAlive = false;
    EXPECT_EQ(looksIn(3000), Times{});
    EXPECT_EQ(rig.statusText(), "DISCONNECTED: waiting for the worker");
    rig.workerAlive = true;
    const auto backAt = now();
    EXPECT_EQ(looksIn(1000), (Times{backAt + 350}));
}

TEST_F(PollFollow, StaleTelemetryIsNotFollowed) {
    rig.passFor(100);
    rig.workerAlive = false;  // the file stays, and grows old
    rig.passFor(2800);
    EXPECT_TRUE(copySimState(rig.sim).connected);
    EXPECT_EQ(rig.looks().size(), 2U);
    EXPECT_EQ(looksIn(5000).size(), 0U);
    EXPECT_FALSE(copySimState(rig.sim).connected);
    EXPECT_EQ(copySimState(rig.sim).radios[0].active, 0);
}

TEST_F(PollFollow, TelemetryThatIsUnhealthyOrOfAnotherProtocolIsNotFollowed) {
    const struct {
        const char* key;
        const char* bad;
        const char* good;
    } rows[] = {{"ok", "false", "true"}, {"protocol", "3", "2"}};
    for (const auto& row : rows) {
        rig.telemetry.set(row.key, row.bad);
        EXPECT_EQ(looksIn(3000), Times{}) << row.key;
        rig.telemetry.set(row.key, row.good);
        const auto goodSince = now();
        EXPECT_EQ(looksIn(1000), (Times{goodSince + 350})) << row.key;
    }
}

TEST_F(PollFollow, TelemetryOfTheFutureIsNotFollowedUntilItsTimeHasCome) {
    rig.workerAlive = false;
    rig.files.put(pathOf(kTelemetryFile), rig.telemetry.writtenAt(rig.clock.unixSeconds() + 9.99).text());
    EXPECT_EQ(looksIn(10'000), Times{});
    EXPECT_EQ(looksIn(1000), (Times{10'350}));
}

TEST_F(PollFollow, AnUnknownFrequencyIsNotFollowed) {
    for (const char* khz : {"0", "-122800", "null"}) {
        tune(khz);
        EXPECT_EQ(looksIn(3000), Times{}) << khz;
    }
    tune("1");
    EXPECT_EQ(looksIn(1000).size(), 1U);
}

TEST_F(PollFollow, TheUsersOwnWriteHoldsTheFollowingUntil350MsAfterIt) {
    rig.host.setMoveRule({MoveAnswer::kSilence});
    rig.passFor(1000);
    ASSERT_TRUE(enqueue(rig.radios, 1, kSlotStandby, 121525.0, -1.0f, rig.clock.tickMs()));
    EXPECT_EQ(looksIn(2000), Times{});  // queued, then written and not answered
    const std::string text = rig.files.text(pathOf(kCommandFile));
    const auto id = text.substr(7, text.find('"', 7) - 7);
    rig.telemetry.set("ack_id", '"' + id + '"').set("ack_ok", "true");
    const auto answeredAt = now();
    // The pass that takes the answer finds the queue empty; the one before it was the last busy one.
    EXPECT_EQ(looksIn(1000), (Times{answeredAt - 50 + 350}));
}

TEST_F(PollFollow, ATurnIsQuietFor350MsEvenWhenItsCommandIsGone) {
    rig.host.setMoveRule({MoveAnswer::kSilence});
    rig.passFor(1000);
    ASSERT_TRUE(enqueue(rig.radios, 1, kSlotSwap, 0.0, -1.0f, rig.clock.tickMs()));
    const auto turnedAt = now();
    {
        MutexLock lock(rig.commands.mutex);
        rig.commands.commands.clear();
    }
    // Busy up to the pass 300 ms after the turn; counted from that pass it must stand still.
    EXPECT_EQ(looksIn(1000), (Times{turnedAt + 300 + 350}));
}

TEST_F(PollFollow, ARefusedMoveIsShownWithItsCodeAndAskedAgainTwoSecondsLater) {
    rig.host.setMoveRule({MoveAnswer::kRefuseLater, 30, 2568, true});
    rig.passFor(2400);
    EXPECT_EQ(rig.channelStatus(), "TS3 channel join failed (2568)");
    EXPECT_EQ(rig.host.callsOf("requestClientMove").size(), 1U);
    rig.passFor(2000);
    EXPECT_EQ(rig.host.callsOf("requestClientMove").size(), 2U);
}

TEST_F(PollFollow, AMoveUnderWayIsForgottenWithItsServer) {
    rig.host.setMoveRule({MoveAnswer::kSilence});
    rig.passFor(1000);
    ASSERT_EQ(rig.moves.pendingChannel, 11U);
    rig.server = 0;
    rig.pass();
    EXPECT_EQ(rig.moves.pendingChannel, 0U);
    rig.server = 1;  // back again: asked for at once when the frequency has stood still, not after the time-out
    rig.passFor(500);
    EXPECT_EQ(rig.host.callsOf("requestClientMove").size(), 2U);
}

TEST_F(PollFollow, TheChannelLineIsClearedWhenFollowingEnds) {
    const std::function<void(bool)> ways[] = {
        [&](bool on) { rig.server = on ? 1 : 0; },
        [&](bool on) { rig.change([=](Settings& live) { live.enabled = on; }); },
        [&](bool on) { rig.change([=](Settings& live) { live.master = on; }); },
    };
    for (const auto& set : ways) {
        rig.passFor(5000);
        ASSERT_EQ(rig.channelStatus(), "TS3 channel confirmed");
        set(false);
        rig.pass();
        EXPECT_EQ(rig.channelStatus(), "");
        set(true);
    }
}

TEST_F(PollFollow, TheFollowedSlotIsTheOneOfTheSettings) {
    rig.change([](Settings& live) { live.target = 1; });
    rig.passFor(400);
    const auto requests = rig.host.callsOf("requestClientMove");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].channelId, 12U);  // 121.500 is the standby frequency
}

TEST_F(PollFollow, AQueuedCommandIsWrittenByThePassesAndDropsWithTheBridge) {
    rig.passFor(100);
    ASSERT_TRUE(enqueue(rig.radios, 1, kSlotStandby, 121525.0, -1.0f, rig.clock.tickMs()));
    rig.passFor(300);
    EXPECT_FALSE(rig.files.has(pathOf(kCommandFile)));
    rig.pass();
    EXPECT_TRUE(rig.files.has(pathOf(kCommandFile)));
    EXPECT_EQ(commandsOf(rig.commands).size(), 1U);
    rig.telemetry.set("ok", "false");
    rig.pass();
    EXPECT_EQ(commandsOf(rig.commands).size(), 0U);
}

TEST_F(PollFollow, ASilentHostChangesNothing) {
    rig.host.failFunction(kGetChannelListPosition, kHostErrorUndefined);
    rig.passFor(3000);
    EXPECT_EQ(rig.channelStatus(), "");
    EXPECT_TRUE(rig.host.callsOf("requestClientMove").empty());
    EXPECT_TRUE(rig.host.leaks().empty());
}
