#include "tests/client/host_model.h"
#include <gtest/gtest.h>
#include "tests/unit/fakes.h"

class HostModelTest : public ::testing::Test {
  protected:
    HostModelTest() {
        model.addServer(1, 7, 100);
        model.addChannel(1, {100, "Lobby"});
        model.addChannel(1, {101, "TWR 122.800"});
        host = resolveHostFunctions(model.table());
    }

    ManualClock clock;
    HostModel model{clock};
    HostFunctions host;
};

TEST_F(HostModelTest, FillsAll210EntriesAndLeavesRemovedOnesNull) {
    model.removeFunction(kPlayWaveFilePosition);
    const HostFunctionTable table = model.table();
    for (int i = 0; i < kHostFunctionCount; i++)
        EXPECT_EQ(table.entries[i] == nullptr, i == kPlayWaveFilePosition) << i;
}

TEST_F(HostModelTest, FillsATableOf230WhoseFurtherEntriesAreReported) {
    model.removeFunction(kPlayWaveFilePosition);
    const HostFunctionTable table = model.table();
    const NewHostFunctionTable longer = model.newTable();
    for (int i = 0; i < kHostFunctionCount; i++) EXPECT_EQ(longer.entries[i], table.entries[i]) << i;
    for (int i = kHostFunctionCount; i < kNewHostFunctionCount; i++) {
        ASSERT_NE(longer.entries[i], nullptr) << i;
        longer.entries[i]();
        EXPECT_EQ(model.problems().back(), "unexpected call of position " + std::to_string(i));
    }
    EXPECT_EQ(model.problems().size(), 20u);
}

TEST_F(HostModelTest, ReportsCallsOfOtherPositions) {
    model.table().entries[17]();
    ASSERT_EQ(model.problems().size(), 1u);
    EXPECT_EQ(model.problems()[0], "unexpected call of position 17");
}

TEST_F(HostModelTest, KnowsWhatWasNotTakenBackAndWhatWasFreedTwice) {
    std::uint64_t* list = nullptr;
    ASSERT_EQ(host.getChannelList(1, &list), 0u);
    EXPECT_EQ(list[0], 100u);
    EXPECT_EQ(list[1], 101u);
    EXPECT_EQ(list[2], 0u);
    EXPECT_EQ(model.leaks().size(), 1u);
    host.freeMemory(list);
    EXPECT_TRUE(model.leaks().empty());
    EXPECT_TRUE(model.problems().empty());
    host.freeMemory(list);
    EXPECT_EQ(model.problems().size(), 1u);
    int foreign = 0;
    host.freeMemory(&foreign);
    EXPECT_EQ(model.problems().size(), 2u);
}

TEST_F(HostModelTest, KeepsNeitherCallsNorFreedBlocksForARunOfHours) {
    model.keepNothing();
    std::uint64_t* list = nullptr;
    ASSERT_EQ(host.getChannelList(1, &list), 0u);
    EXPECT_TRUE(model.calls().empty());
    EXPECT_EQ(model.leaks().size(), 1u);
    host.freeMemory(list);
    EXPECT_TRUE(model.leaks().empty());
    EXPECT_TRUE(model.problems().empty());
    host.freeMemory(list);  // is not known any more
    EXPECT_EQ(model.problems().size(), 1u);
}

TEST_F(HostModelTest, MovesAClientOnlyWhenTheDelayIsOver) {
    EXPECT_EQ(host.requestClientMove(1, 7, 101, "", "rc"), 0u);
    clock.advance(29);
    EXPECT_TRUE(model.advance(clock.tickMs()).empty());
    EXPECT_EQ(model.ownChannel(1), 100u);
    clock.advance(1);
    const auto events = model.advance(clock.tickMs());
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].kind, HostEventKind::kClientMove);
    EXPECT_EQ(events[0].oldChannelId, 100u);
    EXPECT_EQ(events[0].newChannelId, 101u);
    EXPECT_EQ(events[1].kind, HostEventKind::kServerError);
    EXPECT_EQ(events[1].error, 0u);
    EXPECT_EQ(events[1].returnCode, "rc");
    EXPECT_EQ(model.ownChannel(1), 101u);
}

TEST_F(HostModelTest, RefusesByTheRuleOfTheChannel) {
    MoveRule rule;
    rule.answer = MoveAnswer::kRefuseLater;
    rule.error = 777;
    model.setMoveRule(101, rule);
    EXPECT_EQ(host.requestClientMove(1, 7, 101, "", "rc"), 0u);
    clock.advance(1000);
    const auto events = model.advance(clock.tickMs());
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].error, 777u);
    EXPECT_EQ(model.ownChannel(1), 100u);
    rule.answer = MoveAnswer::kRefuseAtOnce;
    model.setMoveRule(101, rule);
    EXPECT_EQ(host.requestClientMove(1, 7, 101, "", "rc"), 777u);
    rule.answer = MoveAnswer::kSilence;
    model.setMoveRule(101, rule);
    EXPECT_EQ(host.requestClientMove(1, 7, 101, "", "rc"), 0u);
    clock.advance(100'000);
    EXPECT_TRUE(model.advance(clock.tickMs()).empty());
}

TEST_F(HostModelTest, AnswersWithTheErrorThatWasSet) {
    std::uint16_t id = 0;
    EXPECT_EQ(host.getClientID(1, &id), 0u);
    EXPECT_EQ(id, 7u);
    model.failFunction(kGetClientIdPosition, 5);
    EXPECT_EQ(host.getClientID(1, &id), 5u);
    model.failFunction(kGetClientIdPosition, 0);
    EXPECT_EQ(host.getClientID(1, &id), 0u);
    EXPECT_EQ(host.getClientID(2, &id), kHostErrorNotConnected);
}

TEST_F(HostModelTest, NumbersItsReturnCodesAndKeepsToTheBuffer) {
    char code[256] = {};
    host.createReturnCode("id", code, sizeof code);
    EXPECT_STREQ(code, "rc-id-1");
    char tiny[5] = {'x', 'x', 'x', 'x', 'x'};
    host.createReturnCode("id", tiny, 4);
    EXPECT_EQ(std::string(tiny, 5), "rc-ix");
}

TEST_F(HostModelTest, TakesALeavingClientOffTheServer) {
    model.addClient(1, 9, 100);
    model.moveByHand(1, 9, 0);
    const auto events = model.advance(clock.tickMs());
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].oldChannelId, 100u);
    EXPECT_EQ(events[0].newChannelId, 0u);
    EXPECT_EQ(model.channelOf(1, 9), 0u);
}
