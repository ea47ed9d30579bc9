// panel_test.cpp - the mouse on the radio panel: what each key, knob and digit does.
#include "tests/client/panel_test.h"
#include <cmath>
#include <cstdlib>

using Panel = PanelTest;

TEST_F(Panel, KeysOfEveryThemeChangeTheirSetting) {
    const struct {
        std::int32_t key;
        const char* saved;
    } rows[] = {
        {kCom2Key, "radio=COM2"}, {kCom1Key, "radio=COM1"}, {kStandbyKey, "target=1"}, {kActiveKey, "target=0"},
        {kAutoKey, "enabled=0"},  {kAutoKey, "enabled=1"},  {kPinKey, "pin=1"},        {kPinKey, "pin=0"},
    };
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        ASSERT_TRUE(show(theme)) << themeName(theme);
        for (const auto& row : rows) EXPECT_TRUE(clickSaves(row.key, row.saved)) << themeName(theme);
        session.stop();
    }
}

TEST_F(Panel, MinimizeKeyHidesThePanelAndTheMenuBringsItBack) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        ASSERT_TRUE(show(theme)) << themeName(theme);
        EXPECT_TRUE(clickSaves(kMinimizeKey, "panel_visible=0")) << themeName(theme);
        EXPECT_TRUE(session.waitUntil([&] { return !isShown(); })) << themeName(theme);
        session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
        EXPECT_TRUE(session.waitUntil([&] { return isShown(); })) << themeName(theme);
        session.stop();
    }
}

TEST_F(Panel, SwapKeyOfEveryThemeSwapsTheSelectedRadio) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        ASSERT_TRUE(show(theme, "radio=COM2\r\n")) << themeName(theme);
        panel().click(kSwapKey);
        EXPECT_EQ(nextTuning(2), "swap 0") << themeName(theme);
        answer();
        session.stop();
    }
}

TEST_F(Panel, WheelOverTheGeneralDigitsTunesThemWithoutASwap) {
    const struct {
        std::int32_t digits;
        int delta;
        const char* command;
    } rows[] = {
        {kActiveMhzDigits, 120, "active 120000"},
        {kActiveChannelDigits, -240, "active 119985"},
        {kStandbyMhzDigits, -120, "standby 120500"},
        {kStandbyChannelDigits, 360, "standby 121515"},
    };
    ASSERT_TRUE(show(kGeneralTheme));
    for (const auto& row : rows) {
        panel().wheel(row.digits, row.delta);
        EXPECT_EQ(nextTuning(), row.command);
        answer();  // but the radio does not change: each row starts from the same frequencies
    }
    EXPECT_TRUE(nothingHappened());
}

TEST_F(Panel, WheelOverTheKnobsTunesStandby) {
    for (const std::int32_t theme : {kBoeingTheme, kAirbusTheme}) {
        ASSERT_TRUE(show(theme));
        panel().wheel(kLargeKnob, 240);
        EXPECT_EQ(nextTuning(), "standby 123500") << themeName(theme);
        answer();
        panel().wheel(kSmallKnob, -120);
        EXPECT_EQ(nextTuning(), "standby 121490") << themeName(theme);
        answer();
        session.stop();
    }
}

TEST_F(Panel, WheelOverADisplayOfBoeingOrAirbusDoesNothing) {
    for (const std::int32_t theme : {kBoeingTheme, kAirbusTheme}) {
        ASSERT_TRUE(show(theme));
        panel().wheel(kFrequencyDisplay, 120);
        EXPECT_TRUE(nothingHappened()) << themeName(theme);
        session.stop();
    }
}

TEST_F(Panel, WheelOverKeysBackgroundAndPointDoesNothing) {
    ASSERT_TRUE(show(kGeneralTheme));
    for (const std::int32_t element : {kSwapKey, kCom2Key, kBackground, kFrequencyDisplay}) {
        panel().wheel(element, 120);
    }
    EXPECT_TRUE(nothingHappened());
}

TEST_F(Panel, TwoHalfNotchesOverOneElementMakeAStep) {
    ASSERT_TRUE(show(kBoeingTheme));
    panel().wheel(kSmallKnob, 60);
    panel().wheel(kSmallKnob, 60);
    EXPECT_EQ(nextTuning(), "standby 121505");
}

TEST_F(Panel, AHalfNotchIsLostWhenTheWheelGoesElsewhere) {
    ASSERT_TRUE(show(kBoeingTheme));
    for (int i = 0; i < 3; i++) {
        panel().wheel(kSmallKnob, 60);
        panel().wheel(kLargeKnob, 60);
    }
    EXPECT_TRUE(nothingHappened());
}

TEST_F(Panel, AWheelTurnOverTheVolumeKnobIsAPercentANotch) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        ASSERT_TRUE(show(theme, "follow_volume=0\r\n"));
        panel().wheel(kVolumeKnob, 120);
        EXPECT_TRUE(becomesSaved("receive_volume=81")) << themeName(theme);
        panel().wheel(kVolumeKnob, -360);
        EXPECT_TRUE(becomesSaved("receive_volume=78")) << themeName(theme);
        session.stop();
    }
}

TEST_F(Panel, AVolumeTurnedJustBeforeTheEndIsSaved) {
    ASSERT_TRUE(show(kBoeingTheme, "follow_volume=0\r\nreceive_volume=50\r\n"));
    panel().wheel(kVolumeKnob, 120);
    session.stop();
    EXPECT_TRUE(isSaved("receive_volume=51"));
}

TEST_F(Panel, AFollowedVolumeIsWrittenToTheSimulator) {
    ASSERT_TRUE(show(kAirbusTheme, "follow_volume=1\r\n"));
    panel().wheel(kVolumeKnob, -120);
    EXPECT_EQ(nextTuning(), "volume 0.9875");  // 79 of 80
}

TEST_F(Panel, DraggingTheVolumeKnobIsAPercentForThreePixelsAtFullScale) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        ASSERT_TRUE(show(theme, "follow_volume=0\r\nreceive_volume=50\r\n"));
        panel().drag(kVolumeKnob, 2, 6);
        const double expected = 50.0 + 12.0 / (panel().scale() * 3.0);
        const auto volume = [&] {
            const std::string text = session.settings();
            return std::atof(text.substr(text.find("receive_volume=") + 15).c_str());
        };
        EXPECT_TRUE(session.waitUntil([&] { return std::abs(volume() - expected) < 0.02; }))
            << themeName(theme) << ": " << volume() << " instead of " << expected;
        session.stop();
    }
}

TEST_F(Panel, DraggingAKnobIsAStepForEachMoveOfTwoPixelsOrMore) {
    const struct {
        std::int32_t theme, knob;
        int pixels, moves;
        const char* command;
    } rows[] = {
        {kBoeingTheme, kLargeKnob, 2, 3, "standby 124500"},
        {kBoeingTheme, kLargeKnob, -9, 2, "standby 119500"},
        {kAirbusTheme, kSmallKnob, 3, 2, "standby 121510"},
        {kAirbusTheme, kSmallKnob, -2, 1, "standby 121490"},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(show(row.theme));
        panel().drag(row.knob, row.pixels, row.moves);
        EXPECT_EQ(nextTuning(), row.command);
        answer();
        session.stop();
    }
}

TEST_F(Panel, DraggingAKnobByOnePixelPerMoveNeverTunes) {
    for (const std::int32_t knob : {kLargeKnob, kSmallKnob}) {
        ASSERT_TRUE(show(kBoeingTheme));
        panel().drag(knob, 1, 30);
        panel().drag(knob, -1, 30);
        EXPECT_TRUE(nothingHappened()) << knob;
        session.stop();
    }
}

TEST_F(Panel, APressMovedOffAndReleasedElsewhereDoesNothing) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        ASSERT_TRUE(show(theme));
        for (const std::int32_t elsewhere : {kBackground, kCom2Key, kPinKey}) {
            panel().press(panel().pointOn(kSwapKey));
            panel().move(panel().pointOn(elsewhere));
            panel().release(panel().pointOn(elsewhere));
        }
        EXPECT_TRUE(nothingHappened()) << themeName(theme);
        session.stop();
    }
}

TEST_F(Panel, APressMovedOffAndBackIsAClick) {
    ASSERT_TRUE(show(kAirbusTheme));
    panel().press(panel().pointOn(kCom2Key));
    panel().move(panel().pointOn(kSwapKey));
    panel().move(panel().pointOn(kCom2Key));
    panel().release(panel().pointOn(kCom2Key));
    EXPECT_TRUE(becomesSaved("radio=COM2"));
}

TEST_F(Panel, AReleaseWithoutAPressDoesNothing) {
    ASSERT_TRUE(show(kAirbusTheme));
    for (const std::int32_t key : {kSwapKey, kCom2Key, kAutoKey}) panel().release(panel().pointOn(key));
    EXPECT_TRUE(nothingHappened());
}

TEST_F(Panel, APressThatTheSystemTakesAwayDoesNothing) {
    ASSERT_TRUE(show(kBoeingTheme));
    for (const UINT message : {WM_CANCELMODE, WM_KILLFOCUS, WM_CAPTURECHANGED}) {
        panel().press(panel().pointOn(kSwapKey));
        panel().post(message);
        panel().release(panel().pointOn(kSwapKey));
    }
    EXPECT_TRUE(nothingHappened());
}

TEST_F(Panel, KnobsDigitsAndTheUnassignedKeyHaveNoClick) {
    ASSERT_TRUE(show(kBoeingTheme));
    for (const std::int32_t element : {kVolumeKnob, kSmallKnob, kLargeKnob, kUnassignedKey, kFrequencyDisplay}) {
        panel().click(element);
    }
    EXPECT_TRUE(nothingHappened());
    session.stop();
    ASSERT_TRUE(show(kGeneralTheme));
    for (std::int32_t element = kActiveMhzDigits; element <= kFrequencyDisplay; element++) panel().click(element);
    EXPECT_TRUE(nothingHappened());
}

TEST_F(Panel, CustomKeysActAsBound) {
    // Two runs, so that every code is once on a key; the letter after bind_ is its key.
    ASSERT_TRUE(show(kAirbusTheme, "bind_B=2\r\nbind_C=3\r\nbind_D=4\r\nbind_E=7\r\nradio=COM2\r\n"));
    EXPECT_TRUE(clickSaves(kCustomKeyB, "enabled=0"));
    EXPECT_TRUE(clickSaves(kCustomKeyC, "radio=COM1"));
    EXPECT_TRUE(clickSaves(kCustomKeyD, "radio=COM2"));
    EXPECT_TRUE(clickSaves(kCustomKeyE, "pin=1"));
    session.stop();
    ASSERT_TRUE(show(kAirbusTheme, "bind_B=6\r\nbind_C=5\r\nbind_D=0\r\nbind_E=1\r\n"));
    EXPECT_TRUE(clickSaves(kCustomKeyB, "target=1"));
    EXPECT_TRUE(clickSaves(kCustomKeyC, "target=0"));
    panel().click(kCustomKeyD);
    panel().click(kCustomKeyE);
    EXPECT_EQ(nextTuning(), "swap 0");
    session.stop();
    ASSERT_TRUE(show(kBoeingTheme, "bind_B=4\r\nbind_C=1\r\n"));
    EXPECT_TRUE(clickSaves(kCustomKeyB, "radio=COM2"));
}

TEST_F(Panel, ADragBelongsToTheRadioOfItsPress) {
    ASSERT_TRUE(show(kBoeingTheme));
    const POINT ring = panel().pointOn(kLargeKnob);
    sendAt(WM_LBUTTONDOWN, ring);
    // The other radio is selected meanwhile; a second init reads the settings anew.
    ASSERT_TRUE(session.writeSettings("theme=1\r\nradio=COM2\r\n"));
    ASSERT_TRUE(session.start());
    panel().move({ring.x, ring.y - 4});
    panel().release({ring.x, ring.y - 4});
    EXPECT_EQ(nextTuning(1), "standby 122500");
}
