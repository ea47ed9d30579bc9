// poll_moves_test.cpp - when a move is requested again: the poll loop with a host that confirms, refuses or is silent.
#include <gtest/gtest.h>
#include "tests/unit/bridge/rig.h"

namespace {

using Times = std::vector<std::uint64_t>;

class PollMoves : public testing::Test {
  protected:
    void answerWith(MoveAnswer answer, std::uint32_t delayMs = 30) {
        rig.host.setMoveRule({answer, delayMs, kHostErrorNoPermission, true});
    }
    void tune(const std::string& khz) { rig.telemetry.set("com1_active", khz); }
    // When moves were requested: ms after the test began.
    Times requestTimes() const {
        Times times;
        for (const HostCall& call : requests()) times.push_back(call.atMs - PollRig::kStartMs);
        return times;
    }
    std::vector<HostCall> requests() const { return rig.host.callsOf("requestClientMove"); }

    PollRig rig;
};

}  // namespace

TEST_F(PollMoves, AConfirmedOneIsAskedForOnce) {
    rig.passFor(9000);
    EXPECT_EQ(requestTimes(), (Times{350}));
    EXPECT_EQ(rig.host.ownChannel(1), 11U);
    EXPECT_EQ(rig.channelStatus(), "TS3 channel confirmed");
}

TEST_F(PollMoves, OneRefusedAtOnceIsAskedForAgainAtEveryLook) {
    answerWith(MoveAnswer::kRefuseAtOnce);
    rig.passFor(5000);
    EXPECT_EQ(requestTimes(), (Times{350, 2350, 4350}));
}

TEST_F(PollMoves, OneRefusedByAReportIsAskedForAgainAtTheSecondLook) {
    answerWith(MoveAnswer::kRefuseLater);
    rig.passFor(5000);
    EXPECT_EQ(requestTimes(), (Times{350, 4350}));  // the look at 2350 found the report
}

TEST_F(PollMoves, OneWithoutAnAnswerIsAskedForAgainAtTheFirstLookAfterItWasGivenUp) {
    answerWith(MoveAnswer::kSilence);
    rig.passFor(9000);
    EXPECT_EQ(requestTimes(), (Times{350, 8350}));  // the look at 6350 is the first after 5000 ms
}

TEST_F(PollMoves, ToAnotherFrequencyWaitsForTheEndOfTheOutstandingOne) {
    answerWith(MoveAnswer::kRefuseLater, 600);
    rig.passFor(400);
    tune("121500");
    rig.passFor(5000);
    // Looks at 750, before the report at 950; at 2750, where it finds the report; and at 4750.
    ASSERT_EQ(requestTimes(), (Times{350, 4750}));
    EXPECT_EQ(requests()[1].channelId, 12U);
}

TEST_F(PollMoves, ToTheNextFrequencyIsAskedFor350MsAfterTheLastOneWasSeenConfirmed) {
    rig.passFor(2400);
    tune("121500");
    rig.passFor(1000);
    ASSERT_EQ(requestTimes(), (Times{350, 2750}));
    EXPECT_EQ(requests()[1].channelId, 12U);
}

TEST_F(PollMoves, OfAUserWhoLeftByHandIsAskedForAtTheNextLook) {
    rig.passFor(2400);
    rig.host.moveByHand(1, 5, 10);
    rig.passFor(2000);
    ASSERT_EQ(requestTimes(), (Times{350, 4350}));
    EXPECT_EQ(requests()[1].channelId, 11U);
}
