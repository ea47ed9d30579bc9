// command_answer_test.cpp - what becomes of a written command: acknowledged, refused, unanswered, or the bridge lost.
#include "tests/unit/bridge/queue_rig.h"

class CommandAnswer : public QueueTest {
  protected:
    void writeNow(std::int32_t com, std::int32_t slot, double value, float localVolume = -1.0f) {
        add(com, slot, value, localVolume);
        processAfter(300);
    }
    float receiveVolume() { return copySettings(settings).receive_volume; }
    // What a new start would read from the file.
    float savedReceiveVolume() {
        SettingsStore next(files);
        setSettingsFolders(next, kFolder, "");
        loadSettings(next);
        return copySettings(next).receive_volume;
    }
};

TEST_F(CommandAnswer, AcknowledgedAsDoneTheCommandIsGone) {
    writeNow(1, kSlotActive, 121500.0);
    process();
    EXPECT_EQ(size(), 1U);
    acknowledge(true);
    process();
    EXPECT_EQ(size(), 0U);
    EXPECT_EQ(writes(), 1);
}

TEST_F(CommandAnswer, AnotherCommandsAcknowledgementChangesNothing) {
    writeNow(1, kSlotActive, 121500.0);
    for (const char* id : {"", "4242-1", "4242-", "4242-10003000", "4243-1000300"}) {
        SimState state = connectedState();
        state.ackId = id;
        state.ackOk = true;
        setState(sim, state);
        process();
        EXPECT_EQ(size(), 1U) << id;
    }
}

TEST_F(CommandAnswer, AnAcknowledgementSetsNoStatusOfItsOwn) {
    for (const bool ok : {true, false}) {
        writeNow(1, kSlotActive, 121500.0);
        acknowledge(ok);
        setStatusText(radios.status, "what the worker said");
        process();
        EXPECT_EQ(size(), 0U);
        EXPECT_EQ(status(), "what the worker said");
    }
}

TEST_F(CommandAnswer, AfterAVolumeOnlyTheBoostAboveUnityStaysLocal) {
    const struct {
        float local, kept;
    } rows[] = {{100.0f, 100.0f}, {80.5f, 80.5f}, {80.0f, 80.0f}, {79.0f, 80.0f}, {0.0f, 80.0f}};
    setSettingsFolders(settings, kFolder, "");
    for (const auto& row : rows) {
        updateSettings(settings, [](Settings& live) { live.receive_volume = 33.0f; });
        writeNow(1, kSlotVolume, 0.5, row.local);
        EXPECT_EQ(receiveVolume(), 33.0f);
        acknowledge(true);
        process();
        EXPECT_EQ(size(), 0U);
        EXPECT_EQ(receiveVolume(), row.kept) << row.local;
        EXPECT_EQ(savedReceiveVolume(), row.kept) << row.local;
    }
}

TEST_F(CommandAnswer, TheOtherSettingsStayAsTheyAreWhenTheVolumeIsTaken) {
    updateSettings(settings, [](Settings& live) { live.theme = 2; });
    writeNow(2, kSlotVolume, 1.0, 90.0f);
    updateSettings(settings, [](Settings& live) { live.radio = 2; });  // while the simulator is at work
    acknowledge(true);
    process();
    Settings wanted;
    wanted.theme = 2;
    wanted.radio = 2;
    wanted.receive_volume = 90.0f;
    EXPECT_EQ(copySettings(settings), wanted);
}

TEST_F(CommandAnswer, OnlyAVolumeWithALocalOneChangesTheReceiveVolume) {
    updateSettings(settings, [](Settings& live) { live.receive_volume = 33.0f; });
    const struct {
        std::int32_t slot;
        float local;
        bool ok;
    } rows[] = {
        {kSlotVolume, -1.0f, true}, {kSlotActive, 90.0f, true}, {kSlotSwap, 90.0f, true}, {kSlotVolume, 90.0f, false}};
    for (const auto& row : rows) {
        writeNow(1, row.slot, 0.5, row.local);
        acknowledge(row.ok);
        const int before = writes();
        process();
        EXPECT_EQ(size(), 0U);
        EXPECT_EQ(receiveVolume(), 33.0f) << row.slot;
        EXPECT_EQ(writes(), before) << row.slot;  // nothing to save
    }
}

TEST_F(CommandAnswer, ARefusalTakesEveryCommandOfThatSlotAway) {
    for (int i = 0; i < 3; i++) add(1, kSlotSwap, 0.0);
    add(2, kSlotSwap, 0.0);
    add(1, kSlotActive, 121500.0);
    process();
    acknowledge(false);
    process();
    const auto left = commandsOf(queue);
    ASSERT_EQ(left.size(), 2U);
    EXPECT_EQ(left[0].com, 2);
    EXPECT_EQ(left[1].slot, kSlotActive);
}

TEST_F(CommandAnswer, ARefusedFrequencyTakesTheNewerTurnWithIt) {
    writeNow(1, kSlotStandby, 121500.0);
    add(1, kSlotStandby, 121600.0);
    acknowledge(false);
    processAfter(300);
    EXPECT_EQ(size(), 0U);
    processAfter(50);
    EXPECT_EQ(writes(), 1);
}

TEST_F(CommandAnswer, IsAwaited4500MsAndNoLonger) {
    writeNow(1, kSlotActive, 121500.0);
    add(2, kSlotSwap, 0.0);
    processAfter(4500);
    EXPECT_EQ(size(), 2U);
    EXPECT_EQ(status(), "Writing; awaiting simulator readback");
    processAfter(1);
    EXPECT_EQ(size(), 0U);
    EXPECT_EQ(status(), "Write timed out; showing simulator readback");
    EXPECT_EQ(writes(), 1);
}

TEST_F(CommandAnswer, ALateAnswerStillCountsBeforeTheTimeIsFound) {
    writeNow(1, kSlotActive, 121500.0);
    acknowledge(true);
    processAfter(9000);
    EXPECT_EQ(size(), 0U);
    EXPECT_EQ(status(), "Writing; awaiting simulator readback");
}

TEST_F(CommandAnswer, ALostBridgeEmptiesTheQueueAndWritesNothing) {
    add(1, kSlotActive, 121500.0);
    add(2, kSlotSwap, 0.0);
    connect(false);
    setStatusText(radios.status, "DISCONNECTED");
    processAfter(300);
    EXPECT_EQ(size(), 0U);
    EXPECT_EQ(writes(), 0);
    EXPECT_EQ(status(), "DISCONNECTED");
    connect(true);
    processAfter(300);
    EXPECT_EQ(writes(), 0);
}

TEST_F(CommandAnswer, AnEmptyQueueTouchesNothing) {
    processAfter(5000);
    EXPECT_EQ(writes(), 0);
    EXPECT_EQ(status(), "CONNECTED");
}
