#include <cmath>
#include "panel/panel_volume.h"
#include "settings/settings_text.h"
#include "tests/unit/panel/panel_rig.h"

class PanelDrag : public PanelTest {
  protected:
    PanelDrag() { useTheme(kBoeingTheme); }
};

TEST_F(PanelDrag, ThreePixelsOfTheVolumeKnobAreOnePercentAtScaleOne) {
    press(kVolumeKnob);  // COM1's 0.75: 60 percent
    dragUp(3);
    EXPECT_FLOAT_EQ(model.drag_volume, 61.0f);
    EXPECT_FLOAT_EQ(only().localVolume, 61.0f);
    EXPECT_NEAR(only().value, 61.0 / 80.0, 1e-6);
    dragUp(-9);
    EXPECT_FLOAT_EQ(only().localVolume, 58.0f);
    dragUp(1);  // slow drags add up
    dragUp(1);
    EXPECT_NEAR(only().localVolume, 58.6667f, 1e-3f);
}

TEST_F(PanelDrag, AVolumeDragTakesTheSameShareOfTheKnobAtEveryScale) {
    for (const float scale : {0.5f, 2.0f, 4.0f}) {
        forgetCommands();
        model.panel_scale_factor = scale;
        press(kVolumeKnob);
        dragUp(12);
        EXPECT_FLOAT_EQ(only().localVolume, 60.0f + 12.0f / (scale * 3.0f)) << scale;
        release(kNowhere);
    }
}

TEST_F(PanelDrag, AVolumeDragStopsAtBothEndsAndTurnsBackAtOnce) {
    press(kVolumeKnob);
    dragUp(3000);
    EXPECT_EQ(model.drag_volume, 100.0f);
    EXPECT_EQ(only().localVolume, 100.0f);
    EXPECT_EQ(only().value, 1.0);
    dragUp(-3);
    EXPECT_FLOAT_EQ(only().localVolume, 99.0f);
    dragUp(-3000);
    EXPECT_EQ(only().localVolume, 0.0f);
    dragUp(3);
    EXPECT_FLOAT_EQ(only().localVolume, 1.0f);
}

TEST_F(PanelDrag, AVolumeDragChangesTheReceiveVolumeWhenTheRadioIsNotFollowed) {
    change([](Settings& live) {
        live.follow_volume = false;
        live.receive_volume = 30;
    });
    press(kVolumeKnob);
    dragUp(15);
    EXPECT_FLOAT_EQ(now().receive_volume, 35.0f);
    EXPECT_TRUE(queued().empty());
}

TEST_F(PanelDrag, AVolumeIsSavedOnceWhenTheDragEndsHoweverItEnds) {
    change([](Settings& live) {
        live.follow_volume = false;
        live.receive_volume = 30;
    });
    const std::function<void()> ends[] = {
        [&] { release(kNowhere); }, [&] { release(middleOf(kVolumeKnob)); }, [&] { cancelPress(model, context); },
        [&] {
            press(PixelPoint{0, 0});
        },  // the release was lost
    };
    for (const auto& end : ends) {
        const int before = files.replaces;
        press(kVolumeKnob);
        for (int i = 0; i < 20; i++) {
            dragUp(3);
            clock.advance(400);
            saveWhenDue(settings, clock.tickMs());  // what the poll thread does
        }
        EXPECT_EQ(files.replaces, before);
        end();
        EXPECT_EQ(files.replaces, before + 1);
        EXPECT_EQ(files.text("settings.ini"), writeSettingsText(now()));
        cancelPress(model, context);
        EXPECT_EQ(files.replaces, before + 1);
    }
}

TEST_F(PanelDrag, APressOfTheVolumeKnobAloneSavesNothing) {
    change([](Settings& live) { live.follow_volume = false; });
    const int before = files.replaces;
    press(kVolumeKnob);
    release(middleOf(kVolumeKnob));
    EXPECT_EQ(files.replaces, before);
}

TEST_F(PanelDrag, AVolumeTheSimulatorControlsSaysSo) {
    changeState([](SimState& state) { state.radios[0].writable[kSlotVolume] = false; });
    press(kVolumeKnob);
    EXPECT_EQ(status(), "CONNECTED");
    dragUp(3);
    EXPECT_EQ(status(), "Volume controlled by simulator");
    EXPECT_TRUE(queued().empty());
}

TEST_F(PanelDrag, AMoveAcrossDoesNotTurnTheVolumeButIsNoClickEither) {
    press(kVolumeKnob);
    move({mouse.x + 20, mouse.y});
    EXPECT_TRUE(queued().empty());
    EXPECT_TRUE(model.drag_moved);
}

TEST_F(PanelDrag, TheKnobsTuneTheStandbyFrequencyOneStepAMove) {
    const struct {
        std::int32_t knob;
        std::int32_t pixels;
        double kHz;  // from 121.500, 25 kHz channels
    } rows[] = {{kSmallKnob, 2, 121525},   {kSmallKnob, 40, 121525}, {kSmallKnob, -2, 121475},
                {kSmallKnob, -40, 121475}, {kLargeKnob, 2, 122500},  {kLargeKnob, 100, 122500},
                {kLargeKnob, -2, 120500},  {kLargeKnob, -77, 120500}};
    for (const auto& row : rows) {
        forgetCommands();
        press(row.knob);
        dragUp(row.pixels);
        EXPECT_EQ(only().com, 1);
        EXPECT_EQ(only().slot, kSlotStandby);
        EXPECT_EQ(only().value, row.kHz) << row.knob << ' ' << row.pixels;
        release(kNowhere);
    }
}

TEST_F(PanelDrag, FurtherMovesGoOnFromWhatIsOnItsWay) {
    press(kSmallKnob);
    for (int i = 0; i < 3; i++) dragUp(5);
    EXPECT_EQ(only().value, 121575.0);
    dragUp(-5);
    EXPECT_EQ(only().value, 121550.0);
}

TEST_F(PanelDrag, OnePixelAMessageNeverTunes) {
    for (const std::int32_t knob : {kSmallKnob, kLargeKnob}) {
        press(knob);
        for (int i = 0; i < 50; i++) dragUp(1);
        for (int i = 0; i < 50; i++) dragUp(-1);
        dragUp(0);
        EXPECT_TRUE(queued().empty());
        EXPECT_EQ(model.small_knob_angle, 0.0f);
        EXPECT_EQ(model.large_knob_angle, 0.0f);
        EXPECT_TRUE(model.drag_moved);
        release(kNowhere);
    }
}

TEST_F(PanelDrag, KnobsTurnInTheDirectionOfTheStepWithinOneTurn) {
    press(kLargeKnob);
    dragUp(2);
    EXPECT_EQ(model.large_knob_angle, 12.0f);
    dragUp(-2);
    dragUp(-2);
    EXPECT_EQ(model.large_knob_angle, 348.0f);
    dragUp(3);
    EXPECT_EQ(model.large_knob_angle, 0.0f);
    EXPECT_EQ(model.small_knob_angle, 0.0f);
    release(kNowhere);
    press(kSmallKnob);
    dragUp(9);
    EXPECT_EQ(model.small_knob_angle, 14.0f);
    for (int i = 0; i < 26; i++) dragUp(2);
    EXPECT_EQ(model.small_knob_angle, 27 * 14.0f - 360.0f);
    EXPECT_EQ(model.large_knob_angle, 0.0f);
}

TEST_F(PanelDrag, AStepThatHasNoChannelTurnsTheKnobAndSaysSo) {
    changeState([](SimState& state) { state.radios[0].spacing = 2; });
    press(kSmallKnob);
    dragUp(2);
    EXPECT_TRUE(queued().empty());
    EXPECT_EQ(status(), "Radio spacing unavailable or frequency limit");
    EXPECT_EQ(model.small_knob_angle, 14.0f);
}

TEST_F(PanelDrag, StaysWithTheRadioOfThePress) {
    press(kSmallKnob);
    change([](Settings& live) { live.radio = 2; });
    dragUp(2);
    EXPECT_EQ(only().com, 1);
    forgetCommands();
    release(kNowhere);
    press(kVolumeKnob);
    change([](Settings& live) { live.radio = 1; });
    dragUp(3);
    EXPECT_EQ(only().com, 2);
}

TEST_F(PanelDrag, GoesOnOutsideTheKnob) {
    press(kSmallKnob);
    move({mouse.x + 5000, mouse.y - 300});
    EXPECT_EQ(only().value, 121525.0);
    EXPECT_EQ(model.hover_element, kBackground);
    EXPECT_EQ(model.drag_element, kSmallKnob);
}

TEST_F(PanelDrag, KeysAndDigitsAreNotDragged) {
    press(kCom2Key);
    dragUp(200);
    EXPECT_FALSE(model.drag_moved);
    release(kNowhere);
    useTheme(kGeneralTheme);
    press(kActiveMhzDigits);
    dragUp(20);
    EXPECT_TRUE(queued().empty());
}

TEST_F(PanelDrag, EndsWithThePress) {
    press(kSmallKnob);
    cancelPress(model, context);
    dragUp(50);
    EXPECT_TRUE(queued().empty());
    press(kSmallKnob);
    release(middleOf(kSmallKnob));
    dragUp(50);
    EXPECT_TRUE(queued().empty());
    EXPECT_FALSE(model.drag_moved);
    press(kSmallKnob);
    press(PixelPoint{0, 0});  // the previous release was lost
    dragUp(50);
    EXPECT_TRUE(queued().empty());
}

TEST_F(PanelDrag, ExtremePositionsTurnOneStepOrToTheEnd) {
    press(kSmallKnob);
    move({0, kLeast});
    EXPECT_EQ(only().value, 121525.0);
    move({kMost, kMost});  // the whole coordinate range at once
    EXPECT_EQ(only().value, 121500.0);
    release({kLeast, kMost});
    forgetCommands();
    press(kVolumeKnob);
    move({0, kMost});
    EXPECT_EQ(only().localVolume, 0.0f);
    move({0, kLeast});
    EXPECT_EQ(only().localVolume, 100.0f);
}

TEST_F(PanelDrag, AScaleThatIsNoneCountsAsOne) {
    const PixelPoint at = middleOf(kVolumeKnob);
    for (const float scale :
         {0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        forgetCommands();
        model.panel_scale_factor = scale;
        EXPECT_EQ(press(at), PressResult::kCapture) << scale;
        move({at.x, at.y - 30});
        EXPECT_FLOAT_EQ(only().localVolume, 70.0f) << scale;
        release(at);
    }
}

TEST_F(PanelDrag, AVanishingScaleTurnsToTheEnd) {
    press(kVolumeKnob);
    model.panel_scale_factor = std::numeric_limits<float>::denorm_min();
    dragUp(1);
    EXPECT_EQ(only().localVolume, 100.0f);
}

TEST_F(PanelDrag, AHeldKnobKeepsItsTipWhateverPassesBelowTheMouse) {
    for (const std::int32_t knob : {kVolumeKnob, kSmallKnob, kLargeKnob}) {
        press(knob);
        model.mouse_tracking = true;
        move(middleOf(kSwapKey));
        EXPECT_EQ(model.hover_element, kSwapKey);
        EXPECT_EQ(tipElement(model, true), knob);
        move(kNowhere);
        leavePanel(model);  // the mouse is held outside
        EXPECT_EQ(tipElement(model, true), knob);
        release(middleOf(kSwapKey));
        model.mouse_tracking = true;
        EXPECT_EQ(tipElement(model, true), kSwapKey);
        leavePanel(model);
        EXPECT_EQ(tipElement(model, true), kBackground);
    }
}

TEST_F(PanelDrag, AHeldKeyLeavesTheTipToWhatLiesBelowTheMouse) {
    press(kSwapKey);
    model.mouse_tracking = true;
    move(middleOf(kPinKey));
    EXPECT_EQ(tipElement(model, true), kPinKey);
    leavePanel(model);
    EXPECT_EQ(tipElement(model, true), kBackground);
}

TEST_F(PanelDrag, WithoutNoticeOfTheMouseLeavingThereIsNoTip) {
    move(middleOf(kSwapKey));
    EXPECT_EQ(tipElement(model, true), kBackground);
}

TEST_F(PanelDrag, AHiddenPanelHasNoTip) {
    model.mouse_tracking = true;
    move(middleOf(kSwapKey));
    EXPECT_EQ(tipElement(model, true), kSwapKey);
    EXPECT_EQ(tipElement(model, false), kBackground);
    press(kVolumeKnob);
    EXPECT_EQ(tipElement(model, false), kBackground);
}
