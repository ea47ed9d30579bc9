// dialog_test.cpp - the settings dialog's real window worked by mouse, keyboard and commands, and what it saves.
#include "tests/client/dialog_test.h"
#include "settings/interface_texts.h"
#include "tests/unit/settings/dialog/dialog_walk.h"

namespace {

int languageId(Language language) {
    return kFirstLanguage + static_cast<int>(language);
}

}  // namespace

using DialogTest = DialogFixture;

TEST_F(DialogTest, EverySettingByTheMouseStandsInTheFile) {
    ASSERT_TRUE(open());
    DialogDriver hand = dialog();
    const Settings expected = clickEverySetting(hand);
    host.forgetCalls();
    hand.click(kSaveAndClose);
    EXPECT_TRUE(hasLogged(kSavedLine));
    EXPECT_EQ(findDialog(), nullptr);
    expectSaved(expected);
}

TEST_F(DialogTest, EverySettingByCommandStandsInTheFile) {
    ASSERT_TRUE(open());
    const DialogDriver hand = dialog();
    const Settings expected = commandEverySetting(hand);
    ASSERT_TRUE(save());
    expectSaved(expected);
}

TEST_F(DialogTest, TheKeyboardAloneChangesAndSaves) {
    ASSERT_TRUE(open());
    const DialogDriver hand = dialog();
    const DialogLayout layout = hand.layout();
    const auto tabTo = [&](int from, int to) {
        int at = -1, steps = 0, index = 0;
        for (const DialogControl& control : layout.controls) {
            if (control.id == from) at = index;
            if (control.id == to) steps = index - at;
            index++;
        }
        for (int i = 0; i < steps; i++) hand.key(VK_TAB);
    };
    tabTo(-1, languageId(kKorean));
    hand.key(VK_SPACE);
    tabTo(languageId(kKorean), kPanelScaleSlider);
    hand.key(VK_RIGHT);
    tabTo(kPanelScaleSlider, kMasterToggle);
    hand.key(VK_RETURN);
    tabTo(kMasterToggle, kSaveAndClose);
    hand.key(VK_RETURN);
    EXPECT_EQ(findDialog(), nullptr);
    Settings expected;
    expected.language = "ko";
    expected.panel_scale = 105.0f;
    expected.master = false;
    expectSaved(expected);
}

TEST_F(DialogTest, EnterSavesWhereNoFocusIsShown) {
    ASSERT_TRUE(openWith(""));
    dialog().click(kMasterToggle);
    dialog().key(VK_SPACE);  // presses nothing
    host.forgetCalls();
    dialog().key(VK_RETURN);
    EXPECT_TRUE(hasLogged(kSavedLine));
    EXPECT_EQ(findDialog(), nullptr);
    EXPECT_TRUE(isSaved("master=0"));
}

TEST_F(DialogTest, AKeyHeldDownPressesOnce) {
    ASSERT_TRUE(openWith(""));
    const DialogDriver hand = dialog();
    hand.repeatKey(VK_RETURN);  // of the key that chose the menu entry
    hand.repeatKey(VK_ESCAPE);
    ASSERT_TRUE(isDialogShown());
    hand.click(kMasterToggle);
    hand.key(VK_TAB);  // to the panel's toggle
    hand.key(VK_SPACE);
    for (int i = 0; i < 4; i++) hand.repeatKey(VK_SPACE);
    for (int i = 0; i < 4; i++) hand.repeatKey(VK_RETURN);
    ASSERT_TRUE(save());
    EXPECT_TRUE(isSaved("master=0"));
    EXPECT_TRUE(isSaved("panel_visible=1"));
}

TEST_F(DialogTest, TheWheelOverASliderMovesIt) {
    ASSERT_TRUE(open());
    DialogDriver hand = dialog();
    hand.turnTo(2);
    hand.wheel(kTextScaleSlider, 4 * WHEEL_DELTA);
    hand.wheel(kTextScaleSlider, -WHEEL_DELTA);
    ASSERT_TRUE(save());
    Settings expected;
    expected.text_scale += 3.0f;
    expectSaved(expected);
}

TEST_F(DialogTest, ApplyThenCancelKeepsAndCancelDiscards) {
    ASSERT_TRUE(openWith(""));
    dialog().command(kPinToggle);
    ASSERT_TRUE(apply());
    EXPECT_TRUE(isDialogShown());
    EXPECT_TRUE(isSaved("pin=1"));
    dialog().command(kPinToggle);
    dialog().command(kMasterToggle);
    dialog().command(kCancel);
    EXPECT_EQ(findDialog(), nullptr);
    EXPECT_TRUE(isSaved("pin=1"));
    EXPECT_TRUE(isSaved("master=1"));
}

TEST_F(DialogTest, EscapeTheWindowButtonCancelAndCloseDiscard) {
    const std::string before = "panel_visible=0\r\n";
    ASSERT_TRUE(session.writeSettings(before));
    ASSERT_TRUE(session.start());
    for (const int way : {0, 1, 2, 3}) {
        ASSERT_TRUE(open());
        host.forgetCalls();
        dialog().click(kMasterToggle);
        if (way == 0) dialog().key(VK_ESCAPE);
        if (way == 1) dialog().click(kWindowButton);
        if (way == 2) dialog().click(kCancel);
        if (way == 3) dialog().post(WM_CLOSE, 0, 0);
        EXPECT_TRUE(isGone()) << way;
        EXPECT_EQ(session.settings(), before) << way;
        EXPECT_FALSE(hasLogged(kSavedLine)) << way;
        EXPECT_FALSE(hasLogged(kAppliedLine)) << way;
    }
}

TEST_F(DialogTest, ACommitKeepsWhatThePanelChangedMeanwhile) {
    ASSERT_TRUE(show(kGeneralTheme));
    ASSERT_TRUE(open());
    dialog().click(kMasterToggle);
    EXPECT_TRUE(clickSaves(kCom2Key, "radio=COM2"));
    ASSERT_TRUE(save());
    EXPECT_TRUE(isSaved("radio=COM2"));
    EXPECT_TRUE(isSaved("master=0"));
}

TEST_F(DialogTest, ThePanelsKeyOpensIt) {
    ASSERT_TRUE(show(kGeneralTheme));
    panel().click(kSettingsKey);
    EXPECT_TRUE(becomesOpen());
}

TEST_F(DialogTest, ResetPutsThePanelBack) {
    ASSERT_TRUE(openWith("panel_x=400\r\npanel_y=-20\r\npanel_scale=150\r\nopacity=40\r\npin=1\r\n"));
    dialog().click(kResetPanel);
    ASSERT_TRUE(save());
    Settings expected;
    expected.panel_visible = false;
    expected.pin = true;
    expectSaved(expected);
}

TEST_F(DialogTest, MinimumAboveMaximumIsSavedInOrder) {
    ASSERT_TRUE(openWith(""));
    DialogDriver hand = dialog();
    hand.turnTo(1);
    hand.drag(kVolumeMinSlider, 0.0f, 0.9f);
    hand.drag(kVolumeMaxSlider, 1.0f, 0.2f);
    ASSERT_TRUE(save());
    EXPECT_TRUE(isSaved("volume_min=0.2"));
    EXPECT_TRUE(isSaved("volume_max=0.9"));
}

TEST_F(DialogTest, ALanguageShowsAtOnceAndInTheMenuAfterACommit) {
    ASSERT_TRUE(openWith("language=en\r\n"));
    dialog().click(languageId(kRussian));
    EXPECT_EQ(title(), L"Corvalis · Настройки");
    EXPECT_TRUE(isSaved("language=en"));
    EXPECT_STREQ(session.plugin.takeMenus()[0].text, "Corvalis Settings");
    ASSERT_TRUE(apply());
    EXPECT_TRUE(isSaved("language=ru"));
    EXPECT_STREQ(session.plugin.takeMenus()[0].text, "Corvalis Настройки");
}

TEST_F(DialogTest, WorksWithoutTheHostsLog) {
    host.removeFunction(kLogMessagePosition);
    ASSERT_TRUE(openWith(""));
    dialog().command(kPinToggle);
    dialog().command(kSaveAndClose);
    EXPECT_EQ(findDialog(), nullptr);
    EXPECT_TRUE(isSaved("pin=1"));
}
