#include "bridge/command_queue.h"
#include "tests/unit/bridge/queue_rig.h"

class CommandQueueTest : public QueueTest {};

TEST_F(CommandQueueTest, ThreeQuickChangesOfOneSlotBecomeOneWriteOfTheLast) {
    EXPECT_TRUE(add(1, kSlotStandby, 121500.0));
    clock.advance(100);
    EXPECT_TRUE(add(1, kSlotStandby, 121525.0));
    clock.advance(100);
    EXPECT_TRUE(add(1, kSlotStandby, 121550.0));
    EXPECT_EQ(only().value, 121550.0);
    EXPECT_EQ(only().notBefore, clock.tickMs() + 300);
    processAfter(299);
    EXPECT_EQ(writes(), 0);
    processAfter(1);
    EXPECT_EQ(writes(), 1);
    EXPECT_NE(written().find("121550"), std::string::npos);
}

TEST_F(CommandQueueTest, AMergedVolumeTakesTheNewLocalVolumeToo) {
    add(1, kSlotVolume, 0.5, 40.0f);
    add(1, kSlotVolume, 1.0, 95.0f);
    EXPECT_EQ(only().value, 1.0);
    EXPECT_EQ(only().localVolume, 95.0f);
}

TEST_F(CommandQueueTest, AMergedCommandKeepsItsPlaceInTheQueue) {
    add(1, kSlotStandby, 121500.0);
    add(2, kSlotStandby, 127250.0);
    add(1, kSlotStandby, 121600.0);
    const auto commands = commandsOf(queue);
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].com, 1);
    EXPECT_EQ(commands[0].value, 121600.0);
    EXPECT_EQ(commands[1].com, 2);
}

TEST_F(CommandQueueTest, OtherRadiosAndSlotsDoNotMerge) {
    add(1, kSlotActive, 121500.0);
    add(1, kSlotStandby, 121500.0);
    add(2, kSlotActive, 121500.0);
    add(1, kSlotVolume, 0.5, 40.0f);
    EXPECT_EQ(size(), 4U);
}

TEST_F(CommandQueueTest, TwoSwapsInARowAreTwoCommandsWithoutDelay) {
    EXPECT_TRUE(add(1, kSlotSwap, 0.0));
    EXPECT_TRUE(add(1, kSlotSwap, 0.0));
    EXPECT_EQ(size(), 2U);
    EXPECT_EQ(commandsOf(queue)[1].notBefore, clock.tickMs());
    process();
    EXPECT_EQ(writes(), 1);
}

TEST_F(CommandQueueTest, OnlyTheOldestCommandIsInTheSimulatorsHands) {
    add(1, kSlotSwap, 0.0);
    add(2, kSlotSwap, 0.0);
    process();
    processAfter(1000);
    EXPECT_EQ(writes(), 1);
    acknowledge(true);
    process();  // takes the acknowledgement
    EXPECT_EQ(writes(), 1);
    EXPECT_EQ(size(), 1U);
    processAfter(50);  // writes the next
    EXPECT_EQ(writes(), 2);
    EXPECT_NE(written().find(R"("com":2)"), std::string::npos);
}

TEST_F(CommandQueueTest, ATurnAfterTheWritingIsACommandOfItsOwn) {
    add(1, kSlotStandby, 121500.0);
    processAfter(300);
    EXPECT_TRUE(add(1, kSlotStandby, 121600.0));
    const auto commands = commandsOf(queue);
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].value, 121500.0);
    EXPECT_EQ(commands[1].value, 121600.0);
    EXPECT_EQ(commands[1].writtenAt, 0U);
}

TEST_F(CommandQueueTest, ATurnWhileTheFileIsBeingWrittenChangesNothingHalfWay) {
    add(1, kSlotStandby, 121500.0);
    files.whileWriting = [&] { EXPECT_TRUE(add(1, kSlotStandby, 121600.0)); };
    processAfter(300);
    EXPECT_NE(written().find(R"("target":121500,)"), std::string::npos) << written();
    const auto commands = commandsOf(queue);
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].value, 121500.0);
    EXPECT_EQ(commands[1].value, 121600.0);
}

TEST_F(CommandQueueTest, AFileThatCannotBeWrittenDropsOnlyItsOwnCommand) {
    add(1, kSlotStandby, 121500.0);
    add(2, kSlotStandby, 127250.0);
    files.readOnly = true;
    files.whileWriting = [&] { EXPECT_TRUE(add(1, kSlotStandby, 121600.0)); };
    processAfter(300);
    EXPECT_EQ(status(), "Cannot write simulator command");
    auto commands = commandsOf(queue);
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].com, 2);
    EXPECT_EQ(commands[1].value, 121600.0);
    files.readOnly = false;
    process();
    EXPECT_EQ(status(), "Writing; awaiting simulator readback");
    EXPECT_NE(written().find(R"("com":2)"), std::string::npos);
}

TEST_F(CommandQueueTest, TheWritingIsShown) {
    add(1, kSlotActive, 121500.0);
    EXPECT_EQ(status(), "CONNECTED");
    processAfter(299);
    EXPECT_EQ(status(), "CONNECTED");
    processAfter(1);
    EXPECT_EQ(status(), "Writing; awaiting simulator readback");
}

TEST_F(CommandQueueTest, The33rdCommandIsRefusedWhile32Wait) {
    for (int i = 0; i < 32; i++) EXPECT_TRUE(add(1, kSlotSwap, 0.0)) << i;
    clock.advance(500);
    EXPECT_EQ(status(), "CONNECTED");
    EXPECT_FALSE(add(1, kSlotSwap, 0.0));
    EXPECT_FALSE(add(2, kSlotActive, 121500.0));
    EXPECT_EQ(size(), 32U);
    EXPECT_EQ(status(), "Command queue busy");
    MutexLock lock(queue.mutex);
    EXPECT_EQ(queue.lastEnqueueTick, clock.tickMs() - 500);  // a refused turn is not counted
}

TEST_F(CommandQueueTest, AFullQueueStillTakesANewValueForAWaitingCommand) {
    add(1, kSlotActive, 121500.0);
    for (int i = 1; i < 32; i++) add(1, kSlotSwap, 0.0);
    EXPECT_TRUE(add(1, kSlotActive, 121600.0));
    EXPECT_EQ(size(), 32U);
    EXPECT_EQ(commandsOf(queue)[0].value, 121600.0);
}

TEST_F(CommandQueueTest, ASlotThatMayNotBeWrittenQueuesNothing) {
    for (std::int32_t com = 1; com <= 2; com++)
        for (std::int32_t slot = 0; slot < 4; slot++) {
            SimState state = connectedState();
            state.radios[static_cast<std::size_t>(com - 1)].writable[static_cast<std::size_t>(slot)] = false;
            setState(sim, state);
            EXPECT_FALSE(add(com, slot, 121500.0));
            EXPECT_EQ(status(),
                      slot == kSlotVolume ? "Volume controlled by simulator" : "Write unavailable / DISCONNECTED");
            EXPECT_EQ(size(), 0U);
            setState(sim, connectedState());
        }
}

TEST_F(CommandQueueTest, WithoutABridgeNothingIsQueued) {
    connect(false);
    for (std::int32_t slot = 0; slot < 4; slot++) {
        EXPECT_FALSE(add(1, slot, 121500.0));
        EXPECT_EQ(status(),
                  slot == kSlotVolume ? "Volume controlled by simulator" : "Write unavailable / DISCONNECTED");
    }
    EXPECT_EQ(size(), 0U);
    EXPECT_FALSE(isBusy(queue, clock.tickMs()));
}

TEST_F(CommandQueueTest, RadiosAndSlotsThatDoNotExistAreRefused) {
    for (const std::int32_t com : {0, 3, -1}) EXPECT_FALSE(add(com, kSlotActive, 121500.0));
    for (const std::int32_t slot : {-1, 4, 99}) EXPECT_FALSE(add(1, slot, 121500.0));
    EXPECT_EQ(size(), 0U);
}

TEST_F(CommandQueueTest, IsBusyWhileACommandWaitsAnd350MsAfterTheLastTurn) {
    clock.tick = 5000;
    EXPECT_FALSE(isBusy(queue, clock.tickMs()));
    add(1, kSlotSwap, 0.0);
    EXPECT_TRUE(isBusy(queue, clock.tickMs()));
    EXPECT_TRUE(isBusy(queue, clock.tickMs() + 4000));  // still waiting
    process();
    acknowledge(true);
    process();
    ASSERT_EQ(size(), 0U);
    EXPECT_TRUE(isBusy(queue, clock.tickMs()));
    EXPECT_TRUE(isBusy(queue, clock.tickMs() + 349));
    EXPECT_FALSE(isBusy(queue, clock.tickMs() + 350));
    EXPECT_TRUE(isBusy(queue, clock.tickMs() - 20));  // the turn came after the pass had read its time
}

TEST_F(CommandQueueTest, AMergedTurnStartsTheQuietTimeAnew) {
    add(1, kSlotActive, 121500.0);
    clock.advance(200);
    add(1, kSlotActive, 121525.0);
    MutexLock lock(queue.mutex);
    EXPECT_EQ(queue.lastEnqueueTick, clock.tickMs());
}

TEST_F(CommandQueueTest, TheNewestCommandOfASlotIsThePendingOne) {
    EXPECT_FALSE(pendingCommand(copyCommands(queue), 1, kSlotStandby).has_value());
    add(1, kSlotStandby, 121500.0);
    processAfter(300);
    add(1, kSlotStandby, 121600.0);
    ASSERT_TRUE(pendingCommand(copyCommands(queue), 1, kSlotStandby).has_value());
    EXPECT_EQ(pendingCommand(copyCommands(queue), 1, kSlotStandby)->value, 121600.0);
    EXPECT_FALSE(pendingCommand(copyCommands(queue), 1, kSlotActive).has_value());
    EXPECT_FALSE(pendingCommand(copyCommands(queue), 2, kSlotStandby).has_value());
}
