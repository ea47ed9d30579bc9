#include "settings/dialog/dialog_interaction.h"
#include <gtest/gtest.h>
#include <set>
#include "settings/language.h"
#include "tests/unit/settings/dialog/dialog_rig.h"

namespace {

struct DialogHand : ::testing::Test, DialogRig {
    PixelRect rect(int id) const {
        const DialogLayout now = layout();
        return findControl(now, id)->rect;
    }
};

}  // namespace

TEST_F(DialogHand, AClickWorksEveryControlOfEveryPage) {
    for (int page = 0; page < kPageCount; page++) {
        const DialogLayout first = layoutDialog(width, height, dpi, page, 0);
        for (const DialogControl& control : first.controls) {
            model = {};
            model.page = page;
            last = DialogAction::kNone;
            const DialogRow& clicked = row(control.id);
            const int lastOption = optionCount(clicked) - 1;
            click(control.id, control.look == ControlLook::kSegments   ? lastOption
                              : control.look == ControlLook::kSelector ? 1
                                                                       : 0);
            switch (clicked.kind) {
                case RowKind::kTab:
                    EXPECT_EQ(model.page, clicked.value);
                    break;
                case RowKind::kLanguage:
                    EXPECT_EQ(model.working.language, languageCode(clicked.value));
                    break;
                case RowKind::kToggle:
                    EXPECT_NE(rowSwitch(clicked, model.working), rowSwitch(clicked, Settings{})) << control.id;
                    break;
                case RowKind::kChoice:
                    EXPECT_EQ(rowNumber(clicked, model.working), lastOption) << control.id;
                    break;
                case RowKind::kOption:
                    EXPECT_EQ(rowNumber(clicked, model.working), clicked.value);
                    break;
                case RowKind::kSelector:
                    EXPECT_EQ(rowNumber(clicked, model.working), control.id == kKeyASelector ? 0 : 1);
                    break;
                case RowKind::kButton:
                    EXPECT_EQ(last != DialogAction::kNone, control.id != kResetPanel) << control.id;
                    break;
                case RowKind::kSlider:
                case RowKind::kLive:
                    break;
            }
        }
    }
}

TEST_F(DialogHand, APressThatEndsElsewhereDoesNothing) {
    const DialogLayout now = layout();
    EXPECT_TRUE(pressMouse(input, model, now, middleOf(rect(kMasterToggle))));
    EXPECT_EQ(input.pressed.id, kMasterToggle);
    EXPECT_EQ(releaseMouse(input, model, now, middleOf(rect(kPanelVisibleToggle))), std::nullopt);
    EXPECT_EQ(input.pressed, DialogHit{});
    EXPECT_EQ(model.working, Settings{});
}

TEST_F(DialogHand, TheTitleBarAndEmptyGroundCaptureNothing) {
    EXPECT_FALSE(pressMouse(input, model, layout(), {400, 20}));
    EXPECT_EQ(input.hover.id, kTitleBarHit);
    EXPECT_FALSE(pressMouse(input, model, layout(), {930, 400}));
    EXPECT_FALSE(pressMouse(input, model, layout(), middleOf(rect(kLiveRow))));
    EXPECT_TRUE(pressMouse(input, model, layout(), middleOf(rect(kWindowButton))));  // though it lies in the title bar
}

TEST_F(DialogHand, HoverFollowsTheMouse) {
    moveMouse(input, model, layout(), middleOf(rect(kSaveAndClose)));
    EXPECT_EQ(input.hover.id, kSaveAndClose);
    leaveMouse(input);
    EXPECT_EQ(input.hover, DialogHit{});
}

TEST_F(DialogHand, ASliderIsDraggedBeyondItsEnds) {
    const DialogLayout now = layout();
    const PixelRect track = trackRect(now, *findControl(now, kOpacitySlider));
    const std::int32_t y = track.top + 1;
    EXPECT_TRUE(pressMouse(input, model, now, {(track.left + track.right) / 2, y}));
    EXPECT_TRUE(input.isDragging);
    EXPECT_EQ(model.working.opacity, 65.0f);
    moveMouse(input, model, now, {track.left - 500, y + 300});
    EXPECT_EQ(model.working.opacity, 30.0f);
    EXPECT_EQ(releaseMouse(input, model, now, {track.right + 500, y}), std::nullopt);
    EXPECT_EQ(model.working.opacity, 100.0f);
    moveMouse(input, model, now, {track.left, y});
    EXPECT_EQ(model.working.opacity, 100.0f);
}

TEST_F(DialogHand, AClickOnASlidersWordsChangesNothing) {
    model.working.opacity = 47.0f;
    const PixelRect slider = rect(kOpacitySlider);
    click({slider.left + 30, slider.top + 10});
    EXPECT_EQ(model.working.opacity, 47.0f);
}

TEST_F(DialogHand, ALostCaptureEndsTheDragAndLeavesTheMouseWhereItIs) {
    const DialogLayout now = layout();
    const PixelRect track = trackRect(now, *findControl(now, kOpacitySlider));
    pressMouse(input, model, now, {track.left, track.top});
    letGo(input);
    EXPECT_EQ(input.pressed, DialogHit{});
    EXPECT_EQ(input.hover.id, kOpacitySlider);
    moveMouse(input, model, now, {track.right, track.top});
    EXPECT_EQ(model.working.opacity, 30.0f);
    EXPECT_FALSE(input.isDragging);
}

TEST_F(DialogHand, TheWheelStepsSlidersAndSelectors) {
    model.page = 1;
    wheel(kReceiveVolumeSlider, 120);
    EXPECT_EQ(model.working.receive_volume, 81.0f);
    wheel(kReceiveVolumeSlider, -360);
    EXPECT_EQ(model.working.receive_volume, 78.0f);
    wheel(kReceiveVolumeSlider, 60);
    EXPECT_EQ(model.working.receive_volume, 78.0f);
    wheel(kReceiveVolumeSlider, 60);
    EXPECT_EQ(model.working.receive_volume, 79.0f);
    wheel(kReceiveVolumeSlider, 60);
    wheel(kReceiveVolumeSlider, -60);  // other direction: the half notch is forgotten
    EXPECT_EQ(model.working.receive_volume, 79.0f);
    model.page = 2;
    wheel(kKeyBSelector, -240);
    EXPECT_EQ(model.working.bind_B, 2);
    wheel(kKeyBSelector, 1200);
    EXPECT_EQ(model.working.bind_B, 0);
}

TEST_F(DialogHand, TheWheelOnAPageThatScrollsStepsOnlyWhatHasTheFocus) {
    height = 450;
    model.page = 1;
    ASSERT_GT(layout().scrollRange, 0);
    wheel(kReceiveVolumeSlider, -120);
    EXPECT_EQ(model.working.receive_volume, 80.0f);
    EXPECT_EQ(input.scroll, 48);
    focus(kTransmitGainSlider);
    wheel(kReceiveVolumeSlider, 120);  // another one has the focus
    EXPECT_EQ(model.working.receive_volume, 80.0f);
    EXPECT_EQ(model.working.transmit_gain, 0.0f);
    EXPECT_EQ(input.scroll, 0);
    focus(kReceiveVolumeSlider);
    input.isFocusShown = false;  // as after a click on it
    wheel(kReceiveVolumeSlider, -120);
    EXPECT_EQ(model.working.receive_volume, 79.0f);
    EXPECT_EQ(input.scroll, 0);
    model.page = 2;
    wheel(kKeyBSelector, -120);
    EXPECT_EQ(model.working.bind_B, 0);
    EXPECT_EQ(input.scroll, 48);
    focus(kKeyBSelector);
    wheel(kKeyBSelector, -120);
    EXPECT_EQ(model.working.bind_B, 1);
    EXPECT_EQ(input.scroll, 48);
}

TEST_F(DialogHand, TheWheelScrollsALowWindow) {
    height = 450;
    wheel(kMasterToggle, -120);
    EXPECT_EQ(input.scroll, 48);
    wheel(kMasterToggle, 1200);
    EXPECT_EQ(input.scroll, 0);
    wheel(kMasterToggle, -12000);
    EXPECT_EQ(input.scroll, layout().scrollRange);
}

TEST_F(DialogHand, TheScrollBarIsDragged) {
    height = 450;
    const DialogLayout now = layout();
    const std::int32_t x = (now.scrollBar.left + now.scrollBar.right) / 2;
    EXPECT_TRUE(pressMouse(input, model, now, {x, now.scrollThumb.top + 3}));
    EXPECT_EQ(input.scroll, 0);
    moveMouse(input, model, now, {x, 5000});
    EXPECT_EQ(input.scroll, now.scrollRange);
    EXPECT_EQ(releaseMouse(input, model, now, {x, -5000}), std::nullopt);
    EXPECT_EQ(input.scroll, 0);
}

TEST_F(DialogHand, TabReachesEveryControlAndComesAround) {
    for (int page = 0; page < kPageCount; page++) {
        model.page = page;
        std::set<int> expected, forward, backward;
        for (const DialogControl& control : layout().controls) {
            if (control.id != kLiveRow && control.id != kKeyASelector) expected.insert(control.id);
        }
        input.focus = kNothingHit;
        for (std::size_t i = 0; i < expected.size(); i++) {
            press(DialogKey::kTab);
            forward.insert(input.focus);
            EXPECT_TRUE(input.isFocusShown);
        }
        EXPECT_EQ(forward, expected);
        const int before = input.focus;
        for (std::size_t i = 0; i < expected.size(); i++) {
            press(DialogKey::kBackTab);
            backward.insert(input.focus);
        }
        EXPECT_EQ(backward, expected);
        EXPECT_EQ(input.focus, before);
    }
}

TEST_F(DialogHand, TabScrollsTheFocusIntoView) {
    height = 450;
    for (int i = 0; i < 60; i++) {
        press(DialogKey::kTab);
        const DialogLayout now = layout();
        const DialogControl& focused = *findControl(now, input.focus);
        if (!focused.isOnPage) continue;
        EXPECT_EQ(intersectRects(focused.rect, now.pageView), focused.rect) << focused.id;
    }
}

TEST_F(DialogHand, SpaceAndEnterWorkTheFocusedControl) {
    focus(kMasterToggle);
    press(DialogKey::kSpace);
    EXPECT_FALSE(model.working.master);
    press(DialogKey::kEnter);
    EXPECT_TRUE(model.working.master);
    focus(kApply);
    press(DialogKey::kEnter);
    EXPECT_EQ(last, DialogAction::kApply);
    focus(kThemeChoice);
    press(DialogKey::kSpace);
    EXPECT_EQ(model.working.theme, 1);
    focus(languageControl(kGerman));
    press(DialogKey::kSpace);
    EXPECT_EQ(model.working.language, "de");
}

TEST_F(DialogHand, WithoutARingToBeSeenEnterSavesAndSpaceDoesNothing) {
    height = 450;
    const auto pressBoth = [&](const char* when) {
        const DialogInput before = input;
        const Settings settings = model.working;
        last = DialogAction::kNone;
        press(DialogKey::kSpace);
        EXPECT_EQ(last, DialogAction::kNone) << when;
        press(DialogKey::kEnter);
        EXPECT_EQ(last, DialogAction::kSaveAndClose) << when;
        EXPECT_EQ(model.working, settings) << when;
        EXPECT_EQ(input, before) << when;  // and no ring appears
    };
    pressBoth("just opened");
    click(kMasterToggle);
    ASSERT_EQ(input.focus, kMasterToggle);
    pressBoth("clicked");
    click(kCancel);
    pressBoth("a button clicked");
    focus(kNothingHit);
    pressBoth("nothing in focus");
    focus(kNoiseReductionToggle);
    pressBoth("on another page");
    focus(kFirstLanguage);
    input.scroll = layout().scrollRange;
    pressBoth("scrolled away");
}

TEST_F(DialogHand, AKeyHeldDownPressesOnlyOnce) {
    focus(kMasterToggle);
    press(DialogKey::kSpace);
    for (int i = 0; i < 3; i++) repeat(DialogKey::kSpace);
    EXPECT_FALSE(model.working.master);
    for (int i = 0; i < 3; i++) repeat(DialogKey::kEnter);
    EXPECT_FALSE(model.working.master);
    input.isFocusShown = false;
    last = DialogAction::kNone;
    repeat(DialogKey::kEnter);  // the one that opened the dialog
    EXPECT_EQ(last, DialogAction::kNone);
    repeat(DialogKey::kEscape);  // the one that closed another window
    EXPECT_EQ(last, DialogAction::kNone);
}

TEST_F(DialogHand, AKeyHeldDownMovesAndStepsOn) {
    focus(kMasterToggle);
    repeat(DialogKey::kTab);
    EXPECT_EQ(input.focus, kPanelVisibleToggle);
    focus(kOpacitySlider);
    repeat(DialogKey::kLeft);
    repeat(DialogKey::kLeft);
    EXPECT_EQ(model.working.opacity, 98.0f);
}

TEST_F(DialogHand, EscapeClosesWhereverTheFocusIs) {
    for (const int id : {kNothingHit, int{kMasterToggle}, int{kSaveAndClose}}) {
        focus(id);
        last = DialogAction::kNone;
        press(DialogKey::kEscape);
        EXPECT_EQ(last, DialogAction::kClose);
    }
}

TEST_F(DialogHand, ArrowsHomeAndEndMoveASlider) {
    focus(kPanelScaleSlider);
    press(DialogKey::kRight);
    press(DialogKey::kUp);
    EXPECT_EQ(model.working.panel_scale, 110.0f);
    press(DialogKey::kLeft);
    press(DialogKey::kDown);
    EXPECT_EQ(model.working.panel_scale, 100.0f);
    press(DialogKey::kEnd);
    EXPECT_EQ(model.working.panel_scale, 200.0f);
    press(DialogKey::kHome);
    EXPECT_EQ(model.working.panel_scale, 50.0f);
}

TEST_F(DialogHand, ArrowsStepChoicesWithinTheirEnds) {
    focus(kThemeChoice);
    const int themes = optionCount(row(kThemeChoice));
    for (int i = 0; i < themes; i++) press(DialogKey::kRight);
    EXPECT_EQ(model.working.theme, themes - 1);
    press(DialogKey::kHome);
    EXPECT_EQ(model.working.theme, 0);
    model.page = 2;
    focus(kKeyDSelector);
    press(DialogKey::kEnd);
    EXPECT_EQ(model.working.bind_D, 7);
    press(DialogKey::kLeft);
    EXPECT_EQ(model.working.bind_D, 6);
}

TEST_F(DialogHand, ArrowsMoveBetweenTabsLanguagesAndOptions) {
    focus(kGeneralTab);
    press(DialogKey::kDown);
    EXPECT_EQ(model.page, 1);
    EXPECT_EQ(input.focus, kVoiceTab);
    press(DialogKey::kUp);
    press(DialogKey::kUp);
    EXPECT_EQ(model.page, 0);
    focus(kRadioTab);  // as with Tab: the page shown is still the first
    press(DialogKey::kDown);
    EXPECT_EQ(input.focus, kAboutTab);
    EXPECT_EQ(model.page, 3);
    focus(kVoiceTab);
    press(DialogKey::kUp);
    EXPECT_EQ(input.focus, kGeneralTab);
    EXPECT_EQ(model.page, 0);
    focus(languageControl(kKorean));
    press(DialogKey::kDown);
    EXPECT_EQ(input.focus, languageControl(kSpanish));
    press(DialogKey::kDown);
    EXPECT_EQ(input.focus, languageControl(kSpanish));
    press(DialogKey::kRight);
    EXPECT_EQ(input.focus, languageControl(kRussian));
    EXPECT_EQ(model.working.language, "auto");  // only chosen with Space
    model.page = 2;
    focus(kCom1Option);
    press(DialogKey::kDown);
    EXPECT_EQ(input.focus, kActiveOption);
    EXPECT_EQ(model.working.target, 0);
}

TEST_F(DialogHand, PageKeysScroll) {
    height = 450;
    press(DialogKey::kPageDown);
    EXPECT_GT(input.scroll, 0);
    press(DialogKey::kEnd);
    EXPECT_EQ(input.scroll, layout().scrollRange);
    press(DialogKey::kHome);
    EXPECT_EQ(input.scroll, 0);
}

TEST_F(DialogHand, AnotherPageBeginsAtItsTopAndLetsGoOfTheMouse) {
    height = 450;
    press(DialogKey::kPageDown);
    ASSERT_GT(input.scroll, 0);
    const DialogLayout now = layout();
    ASSERT_TRUE(pressMouse(input, model, now, {now.scrollBar.left + 2, now.scrollThumb.top + 2}));
    command(kGeneralTab + 1);
    EXPECT_EQ(input.scroll, 0);
    EXPECT_FALSE(input.isDragging);
    EXPECT_EQ(input.pressed, DialogHit{});
    EXPECT_EQ(input.hover, DialogHit{});
    input.scroll = 5;
    command(kGeneralTab + 1);  // the same page once more
    EXPECT_EQ(input.scroll, 5);
}

TEST_F(DialogHand, AnotherLanguageEndsADragWhereItStands) {
    const DialogLayout now = layout();
    const PixelRect track = trackRect(now, *findControl(now, kOpacitySlider));
    pressMouse(input, model, now, {(track.left + track.right) / 2, track.top});
    ASSERT_EQ(model.working.opacity, 65.0f);
    command(kFirstLanguage + int{kEnglish});  // it is English already
    EXPECT_TRUE(input.isDragging);
    command(kFirstLanguage + int{kKorean});
    EXPECT_FALSE(input.isDragging);
    EXPECT_EQ(input.hover, DialogHit{});
    moveMouse(input, model, now, {track.right, track.top});
    EXPECT_EQ(releaseMouse(input, model, now, {track.right, track.top}), std::nullopt);
    EXPECT_EQ(model.working.opacity, 65.0f);
    EXPECT_EQ(model.working.language, "ko");
}

TEST_F(DialogHand, WhatIsClickedIsStillUnderTheMouse) {
    for (const int id : {int{kMasterToggle}, int{kResetPanel}, int{kVoiceTab}, int{kApply}}) {
        click(id);
        EXPECT_EQ(input.hover.id, id);
        EXPECT_EQ(input.pressed, DialogHit{}) << id;
    }
}

TEST_F(DialogHand, AnArrowShowsWhatItSteps) {
    height = kDialogLowest;
    model.page = 1;
    focus(kReceiveVolumeSlider);
    input.scroll = layout().scrollRange;
    ASSERT_LT(rect(kReceiveVolumeSlider).top, layout().pageView.top);
    press(DialogKey::kLeft);
    EXPECT_EQ(model.working.receive_volume, 79.0f);
    EXPECT_GE(rect(kReceiveVolumeSlider).top, layout().pageView.top);
}

TEST_F(DialogHand, TheFixedKeyTakesNeitherClicksNorTheWheel) {
    model.page = 2;
    model.working.theme = 2;
    EXPECT_FALSE(pressMouse(input, model, layout(), middleOf(rect(kKeyASelector))));
    for (int part = 0; part < 2; part++) click(kKeyASelector, part);
    wheel(kKeyASelector, -240);
    focus(kStandbyOption);
    press(DialogKey::kTab);
    EXPECT_EQ(input.focus, kKeyBSelector);
    EXPECT_EQ(model.working.bind_A, 0);
}

TEST_F(DialogHand, AToggleLeavesTheMouseWhereItIs) {
    moveMouse(input, model, layout(), middleOf(rect(kSaveAndClose)));
    command(kMasterToggle);
    EXPECT_EQ(input.hover.id, kSaveAndClose);
}
