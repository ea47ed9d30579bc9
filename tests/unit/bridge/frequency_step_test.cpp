// frequency_step_test.cpp - a turn of a frequency knob on its way into the queue.
#include "tests/unit/bridge/queue_rig.h"

namespace {

constexpr const char* kNoStep = "Radio spacing unavailable or frequency limit";

}  // namespace

class FrequencyStep : public QueueTest {
  protected:
    void tune(std::int32_t active, std::int32_t spacing, std::int32_t rangeMax = 136990) {
        SimState state = connectedState();
        state.radios[0].active = active;
        state.radios[0].spacing = spacing;
        state.rangeMax = rangeMax;
        setState(sim, state);
    }
    // The pending value of COM1 ACTIVE; 0 = none.
    double queued() {
        const auto pending = pendingCommand(copyCommands(queue), 1, kSlotActive);
        return pending ? pending->value : 0.0;
    }
    void swap() { add(1, kSlotSwap, 0.0); }
    // The last command and what it is for.
    void expectLast(std::int32_t slot, double value) {
        const auto commands = commandsOf(queue);
        ASSERT_FALSE(commands.empty());
        EXPECT_EQ(commands.back().slot, slot);
        EXPECT_EQ(commands.back().value, value);
    }
    void expectRefused() {
        EXPECT_EQ(size(), 0U);
        EXPECT_EQ(status(), kNoStep);
    }
};

TEST_F(FrequencyStep, WrapsInsideTheMegahertzAt25) {
    tune(121975, 0);
    step(1, kSlotActive, false, 1);
    EXPECT_EQ(queued(), 121000.0);
    EXPECT_EQ(only().localVolume, -1.0f);
    EXPECT_EQ(only().notBefore, clock.tickMs() + 300);
}

TEST_F(FrequencyStep, SkipsTheNamesThatAreNoChannelAt833) {
    tune(118015, 1);
    step(1, kSlotActive, false, 1);
    EXPECT_EQ(queued(), 118025.0);
}

TEST_F(FrequencyStep, FailsWithEverySpacingThatHasNoGrid) {
    for (const std::int32_t spacing : {2, -1, 3})
        for (const bool whole : {false, true}) {
            tune(122800, spacing);
            step(1, kSlotActive, whole, 1);
            expectRefused();
        }
}

TEST_F(FrequencyStep, FailsPastTheRange) {
    tune(136500, 0, 136975);
    step(1, kSlotActive, true, 1);
    expectRefused();
}

TEST_F(FrequencyStep, FailsFromAnUnknownFrequency) {
    for (const bool whole : {false, true}) {
        tune(0, 0);
        step(1, kSlotActive, whole, 1);
        expectRefused();
    }
}

TEST_F(FrequencyStep, FailsForARadioThatDoesNotExist) {
    step(3, kSlotActive, false, 1);
    expectRefused();
}

TEST_F(FrequencyStep, TakesTheSlotThatIsTurned) {
    step(1, kSlotStandby, true, 1);
    step(2, kSlotStandby, false, 1);
    const auto commands = commandsOf(queue);
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].value, 122500.0);
    EXPECT_EQ(commands[1].value, 127255.0);
}

TEST_F(FrequencyStep, GoesOnFromTheValueAlreadyOnItsWay) {
    step(1, kSlotActive, true, 1);
    step(1, kSlotActive, false, -1);
    step(1, kSlotActive, false, -1);
    EXPECT_EQ(only().value, 123750.0);
}

TEST_F(FrequencyStep, GoesOnFromTheNewestOfTwoOnTheirWay) {
    step(1, kSlotActive, false, 1);
    processAfter(300);  // 122825 is in the simulator's hands
    step(1, kSlotActive, false, 1);
    step(1, kSlotActive, false, 1);
    const auto commands = commandsOf(queue);
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].value, 122825.0);
    EXPECT_EQ(commands[1].value, 122875.0);
}

// COM1 has 122800 ACTIVE and 121500 STANDBY.
TEST_F(FrequencyStep, StartsFromTheNumbersThatAPendingSwapWillLeave) {
    swap();
    step(1, kSlotStandby, true, 1);
    expectLast(kSlotStandby, 123800.0);
    step(1, kSlotActive, true, -1);
    expectLast(kSlotActive, 120500.0);
    step(2, kSlotStandby, false, 1);  // a radio that is not swapped
    expectLast(kSlotStandby, 127255.0);
}

TEST_F(FrequencyStep, StartsFromTheSwappedNumbersAlsoWhileTheSwapIsInTheSimulatorsHands) {
    swap();
    process();
    step(1, kSlotStandby, true, 1);
    expectLast(kSlotStandby, 123800.0);
}

TEST_F(FrequencyStep, TwoPendingSwapsLeaveTheNumbersWhereTheyWere) {
    swap();
    swap();
    step(1, kSlotStandby, true, 1);
    expectLast(kSlotStandby, 122500.0);
}

TEST_F(FrequencyStep, AnAnsweredSwapIsInTheReadingAlready) {
    swap();
    process();
    {
        MutexLock lock(sim.mutex);
        std::swap(sim.state.radios[0].active, sim.state.radios[0].standby);
    }
    acknowledge(true);
    step(1, kSlotStandby, true, 1);  // before the pass that drops the command
    expectLast(kSlotStandby, 123800.0);
}

TEST_F(FrequencyStep, WhatWasTunedBeforeASwapGoesWithIt) {
    step(1, kSlotStandby, true, 2);  // 123500
    swap();
    step(1, kSlotActive, true, 1);
    expectLast(kSlotActive, 124500.0);
}

TEST_F(FrequencyStep, WhatWasTunedBeforeASwapKeepsItsValue) {
    step(1, kSlotStandby, true, 2);
    step(2, kSlotStandby, true, 1);
    swap();
    step(1, kSlotStandby, true, 1);
    step(1, kSlotStandby, true, 1);  // of the same side of the swap
    step(2, kSlotStandby, true, 1);  // of a radio that is not swapped
    const auto commands = commandsOf(queue);
    ASSERT_EQ(commands.size(), 4U);
    EXPECT_EQ(commands[0].value, 123500.0);
    EXPECT_EQ(commands[1].value, 129250.0);
    EXPECT_EQ(commands[2].slot, kSlotSwap);
    EXPECT_EQ(commands[3].value, 124800.0);
}

TEST_F(FrequencyStep, AStepTheSimulatorDoesNotAcceptSaysSo) {
    SimState state = connectedState();
    state.radios[0].writable[kSlotActive] = false;
    setState(sim, state);
    step(1, kSlotActive, false, 1);
    EXPECT_EQ(size(), 0U);
    EXPECT_EQ(status(), "Write unavailable / DISCONNECTED");
}
