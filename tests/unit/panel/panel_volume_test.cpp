#include "panel/panel_volume.h"
#include <gtest/gtest.h>
#include "tests/unit/fakes.h"

class PanelVolume : public testing::Test {
  protected:
    PanelVolume() {
        MutexLock lock(sim.mutex);
        sim.state.connected = true;
        sim.state.statusText = "CONNECTED";
        for (auto& radio : sim.state.radios) radio.writable.fill(true);
    }
    void follow(bool on) {
        updateSettings(settings, [&](Settings& live) { live.follow_volume = on; });
    }
    void turn(std::int32_t com, float percent) { setPanelVolume(queue, sim, settings, com, percent, 1000); }
    std::size_t queued() {
        MutexLock lock(queue.mutex);
        return queue.commands.size();
    }
    void setWritable(std::size_t radio, bool writable) {
        MutexLock lock(sim.mutex);
        sim.state.radios[radio].writable[kSlotVolume] = writable;
    }
    std::string status() { return copySimState(sim).statusText; }

    MemoryFiles files;
    SettingsStore settings{files};
    SharedSimState sim;
    CommandQueue queue;
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
    EXPECT_NE(files.text("settings.ini").find("receive_volume=0\r\n"), std::string::npos);  // and saves it
    EXPECT_EQ(status(), "CONNECTED");
}

TEST_F(PanelVolume, AsksTheSimulatorForUnityAt80AndForNoMoreAbove) {
    const struct {
        float turned;
        double simulator;
        float panel;
    } rows[] = {{0, 0, 0}, {40, 0.5, 40}, {80, 1, 80}, {90, 1, 90}, {100, 1, 100}, {250, 1, 100}, {-9, 0, 0}};
    for (const auto& row : rows) {
        turn(1, row.turned);  // the waiting write takes the new value
        const auto command = pendingCommand(queue, 1, kSlotVolume);
        ASSERT_TRUE(command);
        EXPECT_EQ(command->value, row.simulator) << row.turned;
        EXPECT_EQ(command->localVolume, row.panel) << row.turned;
    }
    EXPECT_EQ(queued(), 1u);
    EXPECT_EQ(copySettings(settings).receive_volume, 80.0f);  // only once the simulator has answered
}

TEST_F(PanelVolume, AsksTheRadioWhoseKnobIsTurned) {
    turn(2, 20);
    EXPECT_FALSE(pendingCommand(queue, 1, kSlotVolume));
    ASSERT_TRUE(pendingCommand(queue, 2, kSlotVolume));
    EXPECT_EQ(pendingCommand(queue, 2, kSlotVolume)->value, 0.25);
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
