#include "tests/unit/panel/panel_rig.h"

class PanelClick : public PanelTest {
  protected:
    // Everything that a click may change, to see that nothing else changed.
    void expectUntouched(const Settings& before) {
        EXPECT_EQ(now(), before);
        EXPECT_TRUE(queued().empty());
        EXPECT_EQ(actions.settingsOpened, 0);
        EXPECT_EQ(actions.textToggled, 0);
    }
};

TEST_F(PanelClick, SwapQueuesASwapOfTheSelectedRadio) {
    click(kSwapKey);
    EXPECT_EQ(only().com, 1);
    EXPECT_EQ(only().slot, kSlotSwap);
    EXPECT_EQ(only().value, 0.0);
    EXPECT_EQ(only().localVolume, -1.0f);
    EXPECT_EQ(only().notBefore, clock.tickMs());
    forgetCommands();
    change([](Settings& live) { live.radio = 2; });
    click(kSwapKey);
    EXPECT_EQ(only().com, 2);
}

TEST_F(PanelClick, ComKeysSelectTheRadioAndSaveIt) {
    click(kCom2Key);
    EXPECT_EQ(now().radio, 2);
    EXPECT_NE(files.text("settings.ini").find("radio=COM2\r\n"), std::string::npos);
    click(kCom2Key);
    EXPECT_EQ(now().radio, 2);
    click(kCom1Key);
    EXPECT_EQ(now().radio, 1);
}

TEST_F(PanelClick, TargetKeysSelectTheSlotThatIsFollowed) {
    click(kStandbyKey);
    EXPECT_EQ(now().target, 1);
    click(kActiveKey);
    EXPECT_EQ(now().target, 0);
}

TEST_F(PanelClick, AutoAndAlwaysOnTopTurnOverWithEveryClick) {
    for (const bool on : {false, true, false}) {
        click(kAutoKey);
        EXPECT_EQ(now().enabled, on);
    }
    for (const bool on : {true, false, true}) {
        click(kPinKey);
        EXPECT_EQ(now().pin, on);
    }
}

TEST_F(PanelClick, SettingsOpensTheDialogAndChangesNothing) {
    const Settings before = now();
    click(kSettingsKey);
    EXPECT_EQ(actions.settingsOpened, 1);
    EXPECT_EQ(now(), before);
}

TEST_F(PanelClick, MinimizeHidesThePanel) {
    click(kMinimizeKey);
    EXPECT_FALSE(now().panel_visible);
    EXPECT_NE(files.text("settings.ini").find("panel_visible=0\r\n"), std::string::npos);
}

TEST_F(PanelClick, TextKeysToggleTheMessageWindow) {
    click(kTextKey);
    EXPECT_EQ(actions.textToggled, 1);
    for (const std::int32_t theme : {kBoeingTheme, kAirbusTheme}) {
        useTheme(theme);
        change([](Settings& live) { live.bind_A = 7; });  // has no effect on the key
        click(kCustomKeyA);
    }
    EXPECT_EQ(actions.textToggled, 3);
    EXPECT_FALSE(now().pin);
    EXPECT_TRUE(queued().empty());
}

TEST_F(PanelClick, CustomKeysDoWhatIsBoundToEach) {
    useTheme(kAirbusTheme);
    const struct {
        std::int32_t key;
        std::int32_t Settings::*binding;
    } keys[] = {{kCustomKeyB, &Settings::bind_B},
                {kCustomKeyC, &Settings::bind_C},
                {kCustomKeyD, &Settings::bind_D},
                {kCustomKeyE, &Settings::bind_E}};
    for (const auto& key : keys) {
        SCOPED_TRACE(key.key);
        const auto bind = [&](std::int32_t code) {
            change([&](Settings& live) {
                live.bind_A = live.bind_B = live.bind_C = live.bind_D = live.bind_E = 0;
                live.*key.binding = code;
            });
        };
        const auto clickBound = [&](std::int32_t code) {
            bind(code);
            click(key.key);
        };
        clickBound(1);
        EXPECT_EQ(only().slot, kSlotSwap);
        forgetCommands();
        clickBound(2);
        EXPECT_FALSE(now().enabled);
        clickBound(2);
        EXPECT_TRUE(now().enabled);
        clickBound(4);
        EXPECT_EQ(now().radio, 2);
        clickBound(3);
        EXPECT_EQ(now().radio, 1);
        clickBound(6);
        EXPECT_EQ(now().target, 1);
        clickBound(5);
        EXPECT_EQ(now().target, 0);
        clickBound(7);
        EXPECT_TRUE(now().pin);
        clickBound(7);
        EXPECT_FALSE(now().pin);
        for (const std::int32_t nothing : {0, 8, -1, 14, 15, 11, 12}) {
            SCOPED_TRACE(nothing);
            bind(nothing);
            const Settings before = now();
            click(key.key);
            expectUntouched(before);
        }
    }
}

TEST_F(PanelClick, KnobsDigitsDisplayBackgroundAndTheUnassignedKeyDoNothing) {
    const struct {
        std::int32_t theme;
        std::vector<std::int32_t> elements;
    } rows[] = {
        {kGeneralTheme,
         {kVolumeKnob, kActiveMhzDigits, kActiveChannelDigits, kStandbyMhzDigits, kStandbyChannelDigits,
          kFrequencyDisplay}},
        {kBoeingTheme, {kVolumeKnob, kSmallKnob, kLargeKnob, kUnassignedKey, kFrequencyDisplay}},
        {kAirbusTheme, {kVolumeKnob, kSmallKnob, kLargeKnob, kFrequencyDisplay}},
    };
    for (const auto& row : rows) {
        useTheme(row.theme);
        const Settings before = now();
        for (const std::int32_t element : row.elements) {
            EXPECT_EQ(press(element), PressResult::kCapture);
            EXPECT_EQ(model.drag_element, element) << row.theme;
            release(middleOf(element));
            EXPECT_EQ(model.drag_element, kBackground);
            expectUntouched(before);
        }
    }
}

TEST_F(PanelClick, ElementsWithoutAnActionDoNothingEvenWhenAskedForDirectly) {
    const Settings before = now();
    for (const std::int32_t element : {0, 7, 8, 9, 13, 19, 20, 21, 22, 23, 25, -1, 1000, -2147483647})
        clickElement(context, element, clock.tickMs());
    expectUntouched(before);
}

TEST_F(PanelClick, BindingCodesStandForTheirElements) {
    const std::int32_t elements[] = {0, 1, 6, 2, 3, 4, 5, 10};
    for (std::int32_t code = 0; code < 8; code++) EXPECT_EQ(boundElement(code), elements[code]) << code;
    for (const std::int32_t code : {-1, 8, 100, -2147483647}) EXPECT_EQ(boundElement(code), kBackground) << code;
}

TEST_F(PanelClick, BindingsBelongToTheKeysBToE) {
    Settings record;
    record.bind_A = 1;
    record.bind_B = 2;
    record.bind_C = 3;
    record.bind_D = 4;
    record.bind_E = 5;
    const std::int32_t codes[] = {2, 3, 4, 5};
    for (std::int32_t i = 0; i < 4; i++) EXPECT_EQ(bindingOf(record, kCustomKeyB + i), codes[i]);
    for (const std::int32_t element : {0, 1, 13, 14, 19, 24, -1}) EXPECT_EQ(bindingOf(record, element), 0) << element;
}

TEST_F(PanelClick, ActsOnReleaseNotOnPress) {
    press(kCom2Key);
    EXPECT_EQ(now().radio, 1);
    release(middleOf(kCom2Key));
    EXPECT_EQ(now().radio, 2);
}

TEST_F(PanelClick, APressThatIsReleasedElsewherePerformsNothing) {
    const Settings before = now();
    press(kCom2Key);
    move(middleOf(kAutoKey));
    release(middleOf(kAutoKey));
    expectUntouched(before);
    press(kCom2Key);
    release(kNowhere);
    expectUntouched(before);
}

TEST_F(PanelClick, APressThatWandersOffAndComesBackIsAClick) {
    press(kCom2Key);
    move(kNowhere);
    move(middleOf(kCom2Key));
    release(middleOf(kCom2Key));
    EXPECT_EQ(now().radio, 2);
}

TEST_F(PanelClick, AReleaseWithoutAPressPerformsNothing) {
    const Settings before = now();
    release(middleOf(kCom2Key));
    expectUntouched(before);
    press(kCom2Key);
    cancelPress(model, context);  // another window took the capture
    release(middleOf(kCom2Key));
    expectUntouched(before);
    press(kCom2Key);
    release(middleOf(kCom2Key));
    release(middleOf(kPinKey));  // one press does not click twice
    EXPECT_FALSE(now().pin);
}

TEST_F(PanelClick, AKnobThatWasMovedDoesNotSpoilTheNextClick) {
    press(kVolumeKnob);
    dragUp(30);
    release(middleOf(kVolumeKnob));
    click(kCom2Key);
    EXPECT_EQ(now().radio, 2);
}

TEST_F(PanelClick, TheBackgroundAsksForAMoveOfTheWindowAndHoldsNothing) {
    const Settings before = now();
    EXPECT_EQ(press(PixelPoint{0, 0}), PressResult::kMoveWindow);
    EXPECT_EQ(model.drag_element, kBackground);
    EXPECT_EQ(model.hover_element, kBackground);
    release({0, 0});
    expectUntouched(before);
    EXPECT_EQ(press(PixelPoint{-5, -5}), PressResult::kMoveWindow);
    EXPECT_EQ(press(PixelPoint{100000, 10}), PressResult::kMoveWindow);
}

TEST_F(PanelClick, APressRemembersWhereAndOnWhat) {
    change([](Settings& live) { live.radio = 2; });
    const PixelPoint at = middleOf(kVolumeKnob);
    EXPECT_EQ(press(at), PressResult::kCapture);
    EXPECT_EQ(model.drag_element, kVolumeKnob);
    EXPECT_EQ(model.hover_element, kVolumeKnob);
    EXPECT_EQ(model.press_x, at.x);
    EXPECT_EQ(model.last_drag_y, at.y);
    EXPECT_EQ(model.drag_radio, 2);
    EXPECT_FLOAT_EQ(model.drag_volume, 40.0f);  // COM2's 0.5
    EXPECT_FALSE(model.drag_moved);
}

TEST_F(PanelClick, WorksAtEveryScaleAndTheme) {
    for (const float scale : {0.25f, 0.458f, 1.0f, 1.83f, 4.0f})
        for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
            model.panel_scale_factor = scale;
            useTheme(theme);
            click(kCom2Key);
            EXPECT_EQ(now().radio, 2) << theme << ' ' << scale;
            click(kCom1Key);
            EXPECT_EQ(now().radio, 1) << theme << ' ' << scale;
        }
}

TEST_F(PanelClick, HoveringTellsWhatLiesUnderTheMouse) {
    EXPECT_EQ(hoverPanel(model, context, middleOf(kSwapKey)), kSwapKey);
    EXPECT_EQ(model.hover_element, kSwapKey);
    move(middleOf(kActiveMhzDigits));
    EXPECT_EQ(model.hover_element, kActiveMhzDigits);
    model.mouse_tracking = true;
    leavePanel(model);
    EXPECT_EQ(model.hover_element, kBackground);
    EXPECT_FALSE(model.mouse_tracking);
    useTheme(kBoeingTheme);
    EXPECT_EQ(hoverPanel(model, context, middleOf(kUnassignedKey)), kUnassignedKey);
    EXPECT_EQ(hoverPanel(model, context, kNowhere), kBackground);
}

TEST_F(PanelClick, AnUnknownRadioOrThemeWorksOnCom1AndGeneral) {
    change([](Settings& live) {
        live.radio = 77;
        live.theme = -4;
    });
    click(kSwapKey);
    EXPECT_EQ(only().com, 1);
    EXPECT_EQ(selectedRadio(now()), 1);
}

TEST_F(PanelClick, ThePressedKeySinksInAndComesBackUp) {
    EXPECT_EQ(model.press_level, 0.0f);
    press(kCom2Key);
    tickPanel(model);
    EXPECT_FLOAT_EQ(model.press_level, 0.48f);
    tickPanel(model);
    EXPECT_FLOAT_EQ(model.press_level, 0.7296f);
    for (int i = 0; i < 30; i++) tickPanel(model);
    EXPECT_EQ(model.press_level, 1.0f);
    release(middleOf(kCom2Key));
    EXPECT_EQ(model.pressed_element, kCom2Key);
    tickPanel(model);
    EXPECT_FLOAT_EQ(model.press_level, 0.52f);
    EXPECT_EQ(model.pressed_element, kCom2Key);
    for (int i = 0; i < 30; i++) tickPanel(model);
    EXPECT_EQ(model.press_level, 0.0f);
    EXPECT_EQ(model.pressed_element, kBackground);
}

TEST_F(PanelClick, ThePressedKeyArrivesWithinADozenTicks) {
    press(kCom2Key);
    int down = 0;
    for (; model.press_level != 1.0f && down < 100; down++) tickPanel(model);
    EXPECT_GT(down, 5);  // eased, not thrown
    EXPECT_LE(down, 12);
    cancelPress(model, context);
    int up = 0;
    for (; model.press_level != 0.0f && up < 100; up++) tickPanel(model);
    EXPECT_EQ(up, down);
}
