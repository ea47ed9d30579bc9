#include "panel/panel_volume.h"
#include <gtest/gtest.h>
#include <limits>
#include "tests/unit/fakes.h"

class PanelVolume : public testing::Test {
  protected:
    PanelVolume() {
        setStatusText(radios.status, "CONNECTED");
        MutexLock lock(sim.mutex);
        sim.state.connected = true;
        for (auto& radio : sim.state.radios) radio.writable.fill(true);
    }
    void follow(bool on) {
        updateSettings(settings, [&](Settings& live) { live.follow_volume = on; });
    }
    void turn(std::int32_t com, float percent) { set_panel_volume(radios, settings, com, percent, 1000); }
    std::size_t queued() {
        MutexLock lock(queue.mutex);
        return queue.commands.size();
    }
    void setWritable(std::size_t radio, bool writable) {
        MutexLock lock(sim.mutex);
        sim.state.radios[radio].writable[kSlotVolume] = writable;
    }
    void setReading(std::size_t radio, float volume) {
        MutexLock lock(sim.mutex);
        sim.state.radios[radio].volume = volume;
    }
    void setReceiveVolume(float percent) {
        updateSettings(settings, [&](Settings& live) { live.receive_volume = percent; });
    }
    float shown(std::int32_t radio) {
        return panel_volume(copyCommands(queue), copySimState(sim), copySettings(settings), radio);
    }
    std::string status() { return copyStatus(radios.status).statusText; }

    MemoryFiles files;
    SettingsStore settings{files};
    SimRadios radios;
    SharedSimState& sim = radios.sim;
    CommandQueue& queue = radios.commands;
};

TEST_F(PanelVolume, ChangesTheReceiveVolumeWhenTheRadioIsNotFollowed) {
    follow(false);
    const struct {
        float turned, stored;
    } rows[] = {{0, 0}, {37.5f, 37.5f}, {80, 80}, {100, 100}, {100.5f, 100}, {1000, 100}, {-1, 0}};
    for (const auto& row : rows) {
        turn(2, row.turned);
        EXPECT_EQ(copySettings(settings).receive_volume, row.stored) << row.turned;
    }
    EXPECT_EQ(queued(), 0u);
    EXPECT_EQ(status(), "CONNECTED");
}

TEST_F(PanelVolume, IsSavedAPauseAfterTheLastTurn) {
    follow(false);
    const int before = files.replaces;
    turn(2, 50);
    turn(2, 49);
    saveWhenDue(settings, 1000 + kVolumeSaveMs - 1);
    EXPECT_EQ(files.replaces, before);
    saveWhenDue(settings, 1000 + kVolumeSaveMs);
    EXPECT_EQ(files.replaces, before + 1);
    EXPECT_NE(files.text("settings.ini").find("receive_volume=49\r\n"), std::string::npos);
}

TEST_F(PanelVolume, AsksTheSimulatorForUnityAt80AndForNoMoreAbove) {
    const struct {
        float turned;
        double simulator;
        float panel;
    } rows[] = {{0, 0, 0}, {40, 0.5, 40}, {80, 1, 80}, {90, 1, 90}, {100, 1, 100}, {250, 1, 100}, {-9, 0, 0}};
    for (const auto& row : rows) {
        turn(1, row.turned);  // the waiting write takes the new value
        const auto command = pendingCommand(copyCommands(queue), 1, kSlotVolume);
        ASSERT_TRUE(command);
        EXPECT_EQ(command->value, row.simulator) << row.turned;
        EXPECT_EQ(command->localVolume, row.panel) << row.turned;
    }
    EXPECT_EQ(queued(), 1u);
    EXPECT_EQ(copySettings(settings).receive_volume, 80.0f);  // only after the simulator has answered
}

TEST_F(PanelVolume, AsksTheRadioWhoseKnobIsTurned) {
    turn(2, 20);
    EXPECT_FALSE(pendingCommand(copyCommands(queue), 1, kSlotVolume));
    ASSERT_TRUE(pendingCommand(copyCommands(queue), 2, kSlotVolume));
    EXPECT_EQ(pendingCommand(copyCommands(queue), 2, kSlotVolume)->value, 0.25);
}

TEST_F(PanelVolume, TellsThatTheSimulatorControlsItWhenItsVolumeIsNotWritable) {
    setWritable(0, false);
    turn(1, 50);
    EXPECT_EQ(status(), "Volume controlled by simulator");
    EXPECT_EQ(queued(), 0u);
    EXPECT_EQ(copySettings(settings).receive_volume, 80.0f);
    turn(2, 50);
    EXPECT_EQ(queued(), 1u);
}

TEST_F(PanelVolume, NeedsNoWritableRadioWhenItIsNotFollowed) {
    setWritable(0, false);
    follow(false);
    turn(1, 50);
    EXPECT_EQ(copySettings(settings).receive_volume, 50.0f);
    EXPECT_EQ(status(), "CONNECTED");
}

TEST_F(PanelVolume, ShowsTheReceiveVolumeWhenTheRadioIsNotFollowed) {
    follow(false);
    setReading(0, 0.5f);
    for (const float percent : {0.0f, 33.0f, 80.0f, 100.0f}) {
        setReceiveVolume(percent);
        EXPECT_EQ(shown(1), percent);
        EXPECT_EQ(shown(2), percent);
    }
    enqueue(radios, 1, kSlotVolume, 0.25, 20.0f, 1000);  // queued before following was switched off
    EXPECT_EQ(shown(1), 100.0f);
}

TEST_F(PanelVolume, ShowsTheAircraftsVolumeWithUnityAt80) {
    const struct { float simulator, panel; } rows[] = {{0, 0}, {0.25f, 20}, {0.5f, 40}, {1, 80}, {-1, 0}, {-0.5f, 0}};
    for (const auto& row : rows) {
        setReading(1, row.simulator);
        EXPECT_FLOAT_EQ(shown(2), row.panel) << row.simulator;
    }
    setReading(0, 0.75f);
    EXPECT_FLOAT_EQ(shown(1), 60.0f);
}

TEST_F(PanelVolume, ShowsABoostOfTheReceiveVolumeWhateverTheAircraftSays) {
    setReading(0, 0.5f);
    setReceiveVolume(80.5f);
    EXPECT_EQ(shown(1), 80.5f);
    EXPECT_EQ(shown(2), 80.5f);
}

TEST_F(PanelVolume, AddsQuickTurnsUpFromABoostToo) {
    setReading(0, 1.0f);
    setReceiveVolume(90.0f);
    for (const float percent : {91.0f, 92.0f, 93.0f}) {
        turn(1, shown(1) + 1.0f);
        EXPECT_EQ(shown(1), percent);
    }
    EXPECT_EQ(shown(2), 90.0f);
}

TEST_F(PanelVolume, ShowsAQueuedWriteBeforeTheReading) {
    setReading(0, 0.5f);
    setReading(1, 0.5f);
    turn(1, 90);
    EXPECT_EQ(shown(1), 90.0f);
    EXPECT_EQ(shown(2), 40.0f);
    turn(1, 0);
    EXPECT_EQ(shown(1), 0.0f);
    enqueue(radios, 1, kSlotVolume, 0.75, -1.0f, 1000);  // no panel value of its own
    EXPECT_FLOAT_EQ(shown(1), 60.0f);
}

TEST_F(PanelVolume, StaysWithin0And100WhateverComesIn) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const struct { float simulator, panel; } rows[] = {{2, 100}, {kInfinity, 100}, {-kInfinity, 0}, {kNan, 0}};
    for (const auto& row : rows) {
        setReading(0, row.simulator);
        EXPECT_EQ(shown(1), row.panel) << row.simulator;
    }
    for (const std::int32_t radio : {0, 3, -1}) EXPECT_EQ(shown(radio), 0.0f);
    follow(false);
    setReceiveVolume(kNan);
    EXPECT_EQ(shown(1), 0.0f);
    for (const float turned : {kNan, -kInfinity}) {
        turn(1, turned);
        EXPECT_EQ(copySettings(settings).receive_volume, 0.0f);
    }
    turn(1, kInfinity);
    EXPECT_EQ(copySettings(settings).receive_volume, 100.0f);
}
