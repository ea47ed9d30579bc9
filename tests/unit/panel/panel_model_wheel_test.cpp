#include "panel/panel_volume.h"
#include "tests/unit/panel/panel_rig.h"

class PanelWheel : public PanelTest {};

TEST_F(PanelWheel, ANotchOverTheVolumeKnobIsOnePercent) {
    wheel(kVolumeKnob, 120);  // from COM1's 60 percent
    EXPECT_FLOAT_EQ(only().localVolume, 61.0f);
    wheel(kVolumeKnob, 360);
    EXPECT_FLOAT_EQ(only().localVolume, 64.0f);
    wheel(kVolumeKnob, -1200);
    EXPECT_FLOAT_EQ(only().localVolume, 54.0f);
    EXPECT_EQ(model.large_knob_angle, 0.0f);
    EXPECT_EQ(model.small_knob_angle, 0.0f);
}

TEST_F(PanelWheel, QuickNotchesAddUpAboveUnity) {
    changeState([](SimState& state) { state.radios[0].volume = 1.0f; });
    for (int i = 1; i <= 5; i++) {
        wheel(kVolumeKnob, 120);
        EXPECT_FLOAT_EQ(only().localVolume, 80.0f + static_cast<float>(i));
        EXPECT_EQ(only().value, 1.0);
    }
}

TEST_F(PanelWheel, TheVolumeStopsAtBothEnds) {
    wheel(kVolumeKnob, 120 * 500);
    EXPECT_EQ(only().localVolume, 100.0f);
    wheel(kVolumeKnob, -120 * 500);
    EXPECT_EQ(only().localVolume, 0.0f);
}

TEST_F(PanelWheel, TheVolumeIsTheReceiveVolumeWhenTheRadioIsNotFollowed) {
    change([](Settings& live) { live.follow_volume = false; });
    wheel(kVolumeKnob, -240);
    EXPECT_FLOAT_EQ(now().receive_volume, 78.0f);
    EXPECT_TRUE(queued().empty());
}

TEST_F(PanelWheel, GeneralsDigitsTuneTheirFieldOfTheirFrequency) {
    const struct {
        std::int32_t element;
        std::int32_t delta;
        std::int32_t slot;
        double kHz;  // ACTIVE from 122.800, STANDBY from 121.500
        float angle;
    } rows[] = {
        {kActiveMhzDigits, 120, kSlotActive, 123800, 12},
        {kActiveMhzDigits, -240, kSlotActive, 120800, 336},
        {kActiveChannelDigits, 120, kSlotActive, 122825, 12},
        {kActiveChannelDigits, -120, kSlotActive, 122775, 348},
        {kStandbyMhzDigits, 360, kSlotStandby, 124500, 36},
        {kStandbyMhzDigits, -120, kSlotStandby, 120500, 348},
        {kStandbyChannelDigits, 240, kSlotStandby, 121550, 24},
        {kStandbyChannelDigits, -120, kSlotStandby, 121475, 348},
    };
    for (const auto& row : rows) {
        forgetCommands();
        model = {};
        wheel(row.element, row.delta);
        EXPECT_EQ(only().com, 1);
        EXPECT_EQ(only().slot, row.slot) << row.element;
        EXPECT_EQ(only().value, row.kHz) << row.element << ' ' << row.delta;
        EXPECT_EQ(model.large_knob_angle, row.angle) << row.element << ' ' << row.delta;
        EXPECT_EQ(model.small_knob_angle, 0.0f);
    }
}

TEST_F(PanelWheel, TheKnobPairTunesStandby) {
    for (const std::int32_t theme : {kBoeingTheme, kAirbusTheme}) {
        useTheme(theme);
        model = {};
        forgetCommands();
        wheel(kSmallKnob, 240);
        EXPECT_EQ(only().slot, kSlotStandby);
        EXPECT_EQ(only().value, 121550.0);
        EXPECT_EQ(model.small_knob_angle, 28.0f);
        EXPECT_EQ(model.large_knob_angle, 0.0f);
        wheel(kLargeKnob, -120);
        EXPECT_EQ(only().value, 120550.0);
        EXPECT_EQ(model.large_knob_angle, 348.0f);
        EXPECT_EQ(model.small_knob_angle, 28.0f);
    }
}

TEST_F(PanelWheel, TunesTheSelectedRadio) {
    change([](Settings& live) { live.radio = 2; });
    wheel(kStandbyMhzDigits, 120);
    EXPECT_EQ(only().com, 2);
    EXPECT_EQ(only().value, 128250.0);
}

TEST_F(PanelWheel, WrapsInsideTheMegahertzAndStopsAtTheRange) {
    changeState([](SimState& state) {
        state.radios[0].standby = 118990;
        state.radios[0].spacing = 1;
        state.radios[0].active = 136500;
    });
    wheel(kStandbyChannelDigits, 120);
    EXPECT_EQ(only().value, 118000.0);
    wheel(kStandbyChannelDigits, -120);
    EXPECT_EQ(only().value, 118990.0);
    forgetCommands();
    wheel(kActiveMhzDigits, 120);
    EXPECT_TRUE(queued().empty());
    EXPECT_EQ(status(), "Radio spacing unavailable or frequency limit");
}

TEST_F(PanelWheel, TwoHalfNotchesOverOneElementAreAStep) {
    wheel(kStandbyMhzDigits, 60);
    EXPECT_TRUE(queued().empty());
    EXPECT_EQ(model.large_knob_angle, 0.0f);
    wheel(kStandbyMhzDigits, 60);
    EXPECT_EQ(only().value, 122500.0);
    EXPECT_EQ(model.wheel_remainder, 0);
    wheel(kStandbyMhzDigits, -60);
    wheel(kStandbyMhzDigits, -60);
    EXPECT_EQ(only().value, 121500.0);
}

TEST_F(PanelWheel, AHalfNotchOverAnotherElementIsDiscarded) {
    wheel(kStandbyMhzDigits, 60);
    wheel(kStandbyChannelDigits, 60);
    EXPECT_TRUE(queued().empty());
    wheel(kStandbyMhzDigits, 60);  // and the one before it too
    EXPECT_TRUE(queued().empty());
    wheel(kStandbyMhzDigits, 60);
    EXPECT_EQ(queued().size(), 1U);
}

TEST_F(PanelWheel, AHalfNotchForTheOtherRadioIsDiscarded) {
    wheel(kStandbyMhzDigits, 60);
    change([](Settings& live) { live.radio = 2; });
    wheel(kStandbyMhzDigits, 60);
    EXPECT_TRUE(queued().empty());
    wheel(kStandbyMhzDigits, 60);
    EXPECT_EQ(only().com, 2);
}

TEST_F(PanelWheel, ATurnOverAnElementThatTakesNoneIsNoTurn) {
    wheel(kStandbyMhzDigits, 60);
    wheel(kSwapKey, 60);
    EXPECT_EQ(model.wheel_remainder, 60);
    wheel(kStandbyMhzDigits, 60);
    EXPECT_EQ(queued().size(), 1U);
}

TEST_F(PanelWheel, ATurnedVolumeIsSavedAPauseAfterTheLastNotch) {
    change([](Settings& live) { live.follow_volume = false; });
    const int before = files.replaces;
    for (int i = 0; i < 10; i++) {
        wheel(kVolumeKnob, -120);
        clock.advance(kVolumeSaveMs - 1);
        saveWhenDue(settings, clock.tickMs());
    }
    EXPECT_EQ(now().receive_volume, 70.0f);
    EXPECT_EQ(files.replaces, before);
    clock.advance(1);
    saveWhenDue(settings, clock.tickMs());
    EXPECT_EQ(files.replaces, before + 1);
    EXPECT_NE(files.text("settings.ini").find("receive_volume=70\r\n"), std::string::npos);
}

TEST_F(PanelWheel, TheRestOfATurnIsKeptWithItsSign) {
    const struct {
        std::int32_t delta, rest;
        float percent;
    } rows[] = {{119, 119, 60}, {1, 0, 61},   {130, 10, 62},    {-20, -10, 62}, {-115, -5, 61},
                {-5, -10, 61},  {250, 0, 63}, {-359, -119, 61}, {-2, -1, 60}};
    change([](Settings& live) {
        live.follow_volume = false;
        live.receive_volume = 60;
    });
    for (const auto& row : rows) {
        wheel(kVolumeKnob, row.delta);
        EXPECT_EQ(model.wheel_remainder, row.rest) << row.delta;
        EXPECT_FLOAT_EQ(now().receive_volume, row.percent) << row.delta;
    }
}

TEST_F(PanelWheel, ATurnOverAnythingElseDoesNothing) {
    const struct {
        std::int32_t theme;
        std::vector<std::int32_t> elements;
    } rows[] = {
        {kGeneralTheme, {1, 2, 3, 4, 5, 6, 10, 11, 12, 23, 24}},
        {kBoeingTheme, {1, 2, 3, 4, 5, 6, 10, 11, 12, 13, 14, 15, 23}},
        {kAirbusTheme, {1, 2, 3, 4, 5, 6, 10, 11, 12, 14, 15, 16, 17, 18, 23}},
    };
    for (const auto& row : rows) {
        useTheme(row.theme);
        const Settings before = now();
        for (const std::int32_t element : row.elements) {
            wheel(element, 1200);
            EXPECT_EQ(model.hover_element, element);
        }
        wheelPanel(model, context, kNowhere, -1200, clock.tickMs());
        EXPECT_EQ(now(), before);
        EXPECT_TRUE(queued().empty());
        EXPECT_EQ(status(), "CONNECTED");
        EXPECT_EQ(model.large_knob_angle, 0.0f);
    }
}

TEST_F(PanelWheel, TheDigitsOfBoeingAndAirbusTakeNone) {
    for (const std::int32_t theme : {kBoeingTheme, kAirbusTheme}) {
        useTheme(theme);
        wheel(kStandbyMhzDigits, 120);  // where GENERAL would have digits
        EXPECT_EQ(model.hover_element, kFrequencyDisplay);
        EXPECT_TRUE(queued().empty());
    }
}

TEST_F(PanelWheel, WorksWhileAKnobIsHeld) {
    useTheme(kBoeingTheme);
    press(kSmallKnob);
    wheel(kSmallKnob, 120);
    EXPECT_EQ(only().value, 121525.0);
    dragUp(2);
    EXPECT_EQ(only().value, 121550.0);
}

TEST_F(PanelWheel, SurvivesTheLargestTurns) {
    for (const std::int32_t delta : {kMost, kMost, kLeast, kLeast, kMost}) {
        wheel(kVolumeKnob, delta);
        EXPECT_EQ(only().localVolume, delta > 0 ? 100.0f : 0.0f);
        EXPECT_LT(std::abs(model.wheel_remainder), kWheelNotch);
    }
    forgetCommands();
    for (const std::int32_t delta : {kMost, kMost, kLeast, kLeast}) {
        wheel(kActiveChannelDigits, delta);
        EXPECT_GE(only().value, 122000.0);
        EXPECT_LT(only().value, 123000.0);
        EXPECT_GE(model.large_knob_angle, 0.0f);
        EXPECT_LE(model.large_knob_angle, 360.0f);
    }
    wheel(kActiveMhzDigits, kLeast);
    EXPECT_EQ(status(), "Radio spacing unavailable or frequency limit");
}

TEST_F(PanelWheel, ADisconnectedRadioSaysSo) {
    setDisconnected({}, sim, radios.status);
    wheel(kStandbyMhzDigits, 120);
    EXPECT_TRUE(queued().empty());
    EXPECT_EQ(status(), "Radio spacing unavailable or frequency limit");
    wheel(kVolumeKnob, 120);
    EXPECT_EQ(status(), "Volume controlled by simulator");
    EXPECT_TRUE(queued().empty());
}
