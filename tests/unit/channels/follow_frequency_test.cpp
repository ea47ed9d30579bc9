#include "channels/follow_frequency.h"
#include <gtest/gtest.h>
#include <map>
#include <thread>
#include "tests/client/host_model.h"
#include "tests/unit/fakes.h"

namespace {

constexpr std::uint64_t kServer = 7;
constexpr std::uint16_t kOwn = 21;
constexpr std::uint64_t kLobby = 1;
constexpr std::uint64_t kApproach = 2;
constexpr std::uint64_t kTower = 3;
constexpr std::uint64_t kTower2 = 4;

constexpr MoveReport kNoMatch{MoveStage::kNoChannel};
constexpr MoveReport kConfirmed{MoveStage::kConfirmed};
constexpr MoveReport kRequested{MoveStage::kRequested};
constexpr MoveReport kPending{MoveStage::kPending};
constexpr MoveReport kNotConfirmed{MoveStage::kNotConfirmed};
constexpr MoveReport kFailed{MoveStage::kNotRequested};
constexpr MoveReport kUntouched{MoveStage::kUnknown};

}  // namespace

// A user in the lobby of a server with an approach and two tower channels; moves stay unanswered unless a test says so.
class FollowFrequency : public testing::Test {
  protected:
    FollowFrequency() {
        host.addServer(kServer, kOwn, kLobby);
        host.addChannel(kServer, {kLobby, "Lobby 21.500"});
        host.addChannel(kServer, {kApproach, "118,275 Approach"});
        host.addChannel(kServer, {kTower, "TWR 121.500"});
        host.addChannel(kServer, {kTower2, "Emergency 121.500"});
        MoveRule silent;
        silent.answer = MoveAnswer::kSilence;
        host.setMoveRule(silent);
        tracker.moveReturnCode = "rc-1";
    }
    ~FollowFrequency() override {
        EXPECT_EQ(host.problems(), std::vector<std::string>{});
        if (!functions.freeMemory) return;  // without it nothing can be given back
        EXPECT_EQ(host.leaks(), std::vector<std::string>{});
    }

    // True if the user is already there.
    bool follow(std::int32_t khz) {
        report = followFrequency(tracker, functions, clock, kServer, khz);
        return report.stage == MoveStage::kConfirmed;
    }
    MoveReport status() const { return report; }
    std::vector<HostCall> moves() const { return host.callsOf("requestClientMove"); }
    // Lets time pass; what the server then reports arrives as the plugin's error event.
    void wait(std::uint64_t ms) {
        clock.advance(ms);
        for (const HostEvent& event : host.advance(clock.tickMs())) {
            if (event.kind != HostEventKind::kServerError) continue;
            const char* code = event.returnCode ? event.returnCode->c_str() : nullptr;
            onServerError(tracker, code, static_cast<std::int32_t>(event.error));
        }
    }

    ManualClock clock;
    HostModel host{clock};
    HostFunctions functions = resolveHostFunctions(host.table());
    MoveReport report;
    MoveTracker tracker;
};

TEST_F(FollowFrequency, RequestsTheMoveIntoTheFirstMatchingChannelOfTheHostsList) {
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kRequested);
    ASSERT_EQ(moves().size(), 1u);
    EXPECT_EQ(moves()[0].schid, kServer);
    EXPECT_EQ(moves()[0].clientId, kOwn);
    EXPECT_EQ(moves()[0].channelId, kTower);
    EXPECT_EQ(moves()[0].channelText, "");  // no password
    EXPECT_EQ(moves()[0].returnCode, "rc-1");
    EXPECT_EQ(tracker.pendingSchid, kServer);
    EXPECT_EQ(tracker.pendingChannel, kTower);
    EXPECT_EQ(tracker.pendingSince, clock.tickMs());
}

TEST_F(FollowFrequency, AsksTheHostInOrderAndStopsAtTheMatch) {
    follow(118275);
    std::vector<std::string> functionsCalled;
    for (const HostCall& call : host.calls()) functionsCalled.push_back(call.function);
    EXPECT_EQ(functionsCalled,
              (std::vector<std::string>{"getClientID", "getChannelOfClient", "getChannelList",
                                        "getChannelVariableAsString", "freeMemory", "getChannelVariableAsString",
                                        "freeMemory", "freeMemory", "requestClientMove"}));
    const auto names = host.callsOf("getChannelVariableAsString");
    EXPECT_EQ(names[0].channelId, kLobby);
    EXPECT_EQ(names[1].channelId, kApproach);
}

TEST_F(FollowFrequency, HasGivenAllMemoryBackBeforeItRequestsTheMove) {
    std::vector<std::string> held = {"not asked"};
    host.setBeforeCall([&](const HostCall& call) {
        if (call.function == "requestClientMove") held = host.leaks();
    });
    follow(121500);
    EXPECT_EQ(held, std::vector<std::string>{});
}

TEST_F(FollowFrequency, ChoosesTheEarlierOfTwoEqualChannelsEveryTime) {
    host.moveByHand(kServer, kOwn, kTower2);
    wait(0);
    for (int i = 0; i < 5; i++) {
        follow(121500);
        wait(kMoveTimeoutMs);
        follow(121500);
    }
    ASSERT_EQ(moves().size(), 5u);
    for (const HostCall& move : moves()) EXPECT_EQ(move.channelId, kTower);
}

TEST_F(FollowFrequency, ConfirmsWithoutARequestWhenTheUserIsAlreadyThere) {
    host.moveByHand(kServer, kOwn, kApproach);
    wait(0);
    EXPECT_TRUE(follow(118275));
    EXPECT_EQ(status(), kConfirmed);
    EXPECT_TRUE(moves().empty());
    EXPECT_EQ(tracker.pendingChannel, 0u);
}

TEST_F(FollowFrequency, SaysSoWhenNoChannelMatches) {
    EXPECT_FALSE(follow(122800));
    EXPECT_EQ(status(), kNoMatch);
    EXPECT_TRUE(moves().empty());
}

TEST_F(FollowFrequency, SaysSoWhenTheServerHasNoChannels) {
    for (const std::uint64_t id : {kLobby, kApproach, kTower, kTower2}) host.removeChannel(kServer, id);
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kNoMatch);
}

TEST_F(FollowFrequency, ConfirmsOnceTheServerHasMovedTheUser) {
    host.setMoveRule(kTower, MoveRule{});  // confirms after 30 ms, and reports success as error 0
    EXPECT_FALSE(follow(121500));
    wait(2000);
    EXPECT_TRUE(follow(121500));
    EXPECT_EQ(status(), kConfirmed);
    EXPECT_EQ(moves().size(), 1u);
    EXPECT_EQ(tracker.pendingChannel, 0u);
}

TEST_F(FollowFrequency, WaitsForAnOutstandingMoveUpToFiveSecondsThenSaysItWasNotConfirmed) {
    follow(121500);
    wait(4999);
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kPending);
    EXPECT_EQ(tracker.pendingChannel, kTower);
    wait(1);
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kNotConfirmed);
    EXPECT_EQ(tracker.pendingChannel, 0u);
    EXPECT_EQ(moves().size(), 1u);
    wait(2000);
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kRequested);
    EXPECT_EQ(moves().size(), 2u);
}

TEST_F(FollowFrequency, RequestsNoSecondMoveWhileOneIsOutstandingEvenForAnotherFrequency) {
    follow(121500);
    wait(2000);
    follow(118275);
    EXPECT_EQ(status(), kPending);
    EXPECT_EQ(moves().size(), 1u);
    wait(3000);
    follow(118275);
    EXPECT_EQ(status(), kNotConfirmed);
    follow(118275);
    EXPECT_EQ(status(), kRequested);
    ASSERT_EQ(moves().size(), 2u);
    EXPECT_EQ(moves()[1].channelId, kApproach);
}

TEST_F(FollowFrequency, LeavesTheOutstandingMoveAloneWhileNoChannelMatches) {
    follow(121500);
    follow(122800);
    EXPECT_EQ(status(), kNoMatch);
    EXPECT_EQ(tracker.pendingChannel, kTower);
}

TEST_F(FollowFrequency, ForgetsTheOutstandingMoveWhenTheUserStandsInTheNewChannel) {
    follow(121500);
    host.moveByHand(kServer, kOwn, kApproach);
    wait(100);
    EXPECT_TRUE(follow(118275));
    EXPECT_EQ(tracker.pendingChannel, 0u);
}

TEST_F(FollowFrequency, ShowsTheCodeOfARefusedMoveAndRequestsAgainTwoSecondsLater) {
    MoveRule refused;
    refused.answer = MoveAnswer::kRefuseLater;
    refused.error = 2568;
    host.setMoveRule(refused);
    follow(121500);
    wait(2000);
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), (MoveReport{MoveStage::kRefused, 2568}));
    EXPECT_EQ(tracker.pendingChannel, 0u);
    EXPECT_EQ(tracker.moveError, 0);
    EXPECT_EQ(moves().size(), 1u);
    wait(2000);
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kRequested);
    EXPECT_EQ(moves().size(), 2u);
}

TEST_F(FollowFrequency, ShowsTheCodeEvenWhenTheTimeIsUpAsWell) {
    follow(121500);
    wait(60000);
    EXPECT_TRUE(onServerError(tracker, "rc-1", 768));
    follow(121500);
    EXPECT_EQ(status(), (MoveReport{MoveStage::kRefused, 768}));
}

TEST_F(FollowFrequency, TakesAReportedSuccessForNoReport) {
    follow(121500);
    EXPECT_TRUE(onServerError(tracker, "rc-1", 0));
    wait(1000);
    follow(121500);
    EXPECT_EQ(status(), kPending);
    wait(4000);
    follow(121500);
    EXPECT_EQ(status(), kNotConfirmed);
}

TEST_F(FollowFrequency, SaysThatItFailedWhenTheHostRefusesAtOnce) {
    host.failFunction(kRequestClientMovePosition, 2568);
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kFailed);
    EXPECT_EQ(tracker.pendingChannel, 0u);
    host.failFunction(kRequestClientMovePosition, 0);
    follow(121500);
    EXPECT_EQ(status(), kRequested);
}

TEST_F(FollowFrequency, ForgetsAnErrorFromBeforeTheRequest) {
    onServerError(tracker, "rc-1", 777);
    follow(121500);
    EXPECT_EQ(status(), kRequested);
    wait(1000);
    follow(121500);
    EXPECT_EQ(status(), kPending);
}

TEST_F(FollowFrequency, SendsNoReturnCodeWhenThereIsNone) {
    tracker.moveReturnCode.clear();
    follow(121500);
    ASSERT_EQ(moves().size(), 1u);
    EXPECT_EQ(moves()[0].returnCode, std::nullopt);
}

TEST_F(FollowFrequency, RequestsAtOnceOnAnotherServerThanTheOneOfTheOutstandingMove) {
    host.addServer(8, 5, 50);
    host.addChannel(8, {50, "Lobby"});
    host.addChannel(8, {51, "121.500"});
    follow(121500);
    EXPECT_NE(followFrequency(tracker, functions, clock, 8, 121500).stage, MoveStage::kConfirmed);
    ASSERT_EQ(moves().size(), 2u);
    EXPECT_EQ(moves()[1].schid, 8u);
    EXPECT_EQ(moves()[1].clientId, 5u);
    EXPECT_EQ(moves()[1].channelId, 51u);
    EXPECT_EQ(tracker.pendingSchid, 8u);
    EXPECT_EQ(tracker.pendingChannel, 51u);
}

TEST_F(FollowFrequency, DoesNothingWithoutAServer) {
    EXPECT_NE(followFrequency(tracker, functions, clock, 0, 121500).stage, MoveStage::kConfirmed);
    EXPECT_EQ(status(), kUntouched);
    EXPECT_TRUE(host.calls().empty());
}

TEST_F(FollowFrequency, DoesNothingWithoutAFunctionForTheChannelList) {
    host.removeFunction(kGetChannelListPosition);
    functions = resolveHostFunctions(host.table());
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kUntouched);
    EXPECT_TRUE(host.calls().empty());
}

TEST_F(FollowFrequency, KeepsTheStatusWhenTheHostCannotBeAsked) {
    for (const HostPosition position : {kGetClientIdPosition, kGetChannelOfClientPosition, kGetChannelListPosition}) {
        host.failFunction(position, 1);
        EXPECT_FALSE(follow(121500)) << position;
        EXPECT_EQ(status(), kUntouched) << position;
        host.failFunction(position, 0);
    }
    host.setNullChannelList(true);
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kUntouched);
    EXPECT_TRUE(moves().empty());
}

TEST_F(FollowFrequency, KeepsTheStatusWhenTheHostLacksTheQueries) {
    HostFunctions without = functions;
    without.getClientID = nullptr;
    EXPECT_NE(followFrequency(tracker, without, clock, kServer, 121500).stage, MoveStage::kConfirmed);
    without = functions;
    without.getChannelOfClient = nullptr;
    EXPECT_NE(followFrequency(tracker, without, clock, kServer, 121500).stage, MoveStage::kConfirmed);
    EXPECT_EQ(status(), kUntouched);
    EXPECT_TRUE(moves().empty());
}

TEST_F(FollowFrequency, SkipsChannelsWhoseNameCannotBeRead) {
    host.removeChannel(kServer, kTower2);
    host.addChannel(kServer, {8, std::nullopt});
    host.addChannel(kServer, {9, "122.800"});
    follow(122800);
    ASSERT_EQ(moves().size(), 1u);
    EXPECT_EQ(moves()[0].channelId, 9u);
}

TEST_F(FollowFrequency, FindsNoChannelWhenNoNameCanBeRead) {
    host.failFunction(kGetChannelVariableAsStringPosition, 768);
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kNoMatch);
    host.failFunction(kGetChannelVariableAsStringPosition, 0);
    functions.getChannelVariableAsString = nullptr;
    report = kUntouched;
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kNoMatch);
}

TEST_F(FollowFrequency, SurvivesAHostThatLacksMoveOrMemoryFunctions) {
    functions.requestClientMove = nullptr;
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kFailed);
    functions = resolveHostFunctions(host.table());
    functions.freeMemory = nullptr;
    EXPECT_FALSE(follow(121500));
    EXPECT_EQ(status(), kRequested);
}

TEST_F(FollowFrequency, AsksForTheNameOfEachOfTwoThousandChannelsOnce) {
    for (std::uint64_t id = 100; id < 2096; id++) host.addChannel(kServer, {id, "Sector " + std::to_string(id)});
    EXPECT_FALSE(follow(122800));
    EXPECT_EQ(status(), kNoMatch);
    const auto names = host.callsOf("getChannelVariableAsString");
    ASSERT_EQ(names.size(), 2000u);
    std::map<std::uint64_t, int> asked;
    for (const HostCall& call : names) asked[call.channelId]++;
    EXPECT_EQ(asked.size(), 2000u);
    EXPECT_EQ(host.callsOf("freeMemory").size(), 2001u);
    EXPECT_EQ(host.callsOf("getChannelList").size(), 1u);
}

TEST_F(FollowFrequency, ReadsNamesInEveryScript) {
    host.addChannel(kServer, {20, "塔台（122.800）"});
    follow(122800);
    ASSERT_EQ(moves().size(), 1u);
    EXPECT_EQ(moves()[0].channelId, 20u);
}

TEST_F(FollowFrequency, MayMeetErrorsFromTheHostsThreadAtAnyMoment) {
    std::atomic<bool> stop{false};
    std::thread reports([&] {
        while (!stop) onServerError(tracker, "rc-1", 768);
    });
    for (int i = 0; i < 300; i++) {
        follow(121500);
        const MoveReport line = status();
        EXPECT_TRUE(line == kRequested || line == kPending || line == (MoveReport{MoveStage::kRefused, 768}))
            << static_cast<int>(line.stage);
    }
    stop = true;
    reports.join();
}

TEST(OnServerError, ClaimsExactlyItsOwnReturnCode) {
    MoveTracker tracker;
    tracker.moveReturnCode = "rc-12";
    for (const char* other : {"", "rc-1", "rc-123", "rc-13", "RC-12", " rc-12", "rc-12 ", "sc-12"}) {
        EXPECT_FALSE(onServerError(tracker, other, 5)) << other;
        EXPECT_EQ(tracker.moveError, 0) << other;
    }
    EXPECT_FALSE(onServerError(tracker, nullptr, 5));
    EXPECT_EQ(tracker.moveError, 0);
    EXPECT_TRUE(onServerError(tracker, "rc-12", 2568));
    EXPECT_EQ(tracker.moveError, 2568);
    EXPECT_TRUE(onServerError(tracker, "rc-12", 0));
    EXPECT_EQ(tracker.moveError, 0);
}

TEST(OnServerError, ClaimsNothingWithoutAReturnCodeOfItsOwn) {
    MoveTracker tracker;
    EXPECT_FALSE(onServerError(tracker, "", 5));
    EXPECT_FALSE(onServerError(tracker, "rc", 5));
    EXPECT_FALSE(onServerError(tracker, nullptr, 5));
    EXPECT_EQ(tracker.moveError, 0);
}
