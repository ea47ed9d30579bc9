#include "settings/dialog/dialog_model.h"
#include <gtest/gtest.h>
#include "settings/language.h"
#include "settings/settings_text.h"
#include "tests/unit/fakes.h"
#include "tests/unit/settings/dialog/dialog_rig.h"
#include "tests/unit/settings/dialog/dialog_walk.h"
#include "tests/unit/settings/settings_copy.h"

namespace {

constexpr std::uint16_t kGermanSystem = 0x0407;

struct DialogModelTest : ::testing::Test {
    MemoryFiles files;
    SettingsStore store{files};
    std::atomic<std::int32_t> languageIndex{kEnglish};
    DialogModel model;

    void SetUp() override {
        setSettingsFolders(store, "data", "");
        followLive(model, copySettings(store));
    }
    void commit() { commitDialog(model, store, languageIndex, kGermanSystem); }
    std::string file() { return files.text("data\\settings.ini"); }
    bool isSaved(const std::string& line) { return file().find("\r\n" + line + "\r\n") != std::string::npos; }
};

}  // namespace

TEST_F(DialogModelTest, EveryToggleSwitchesItsOwnFieldOnly) {
    for (const DialogRow& row : dialogRows()) {
        if (row.kind != RowKind::kToggle) continue;
        DialogModel fresh;
        const bool before = rowSwitch(row, fresh.working);
        EXPECT_EQ(runDialogCommand(fresh, row.id), DialogAction::kNone);
        EXPECT_EQ(rowSwitch(row, fresh.working), !before) << row.id;
        Settings expected;
        expected.*std::get<bool Settings::*>(row.field) = !before;
        EXPECT_EQ(fresh.working, expected) << row.id;
        runDialogCommand(fresh, row.id);
        EXPECT_EQ(fresh.working, Settings{}) << row.id;
    }
}

TEST_F(DialogModelTest, OptionsSetRadioAndTarget) {
    runDialogCommand(model, kCom2Option);
    EXPECT_EQ(model.working.radio, 2);
    runDialogCommand(model, kCom1Option);
    EXPECT_EQ(model.working.radio, 1);
    runDialogCommand(model, kStandbyOption);
    EXPECT_EQ(model.working.target, 1);
    runDialogCommand(model, kActiveOption);
    EXPECT_EQ(model.working.target, 0);
}

TEST_F(DialogModelTest, ChoicesTakeAnOptionOrGoOnAroundTheEnd) {
    const int themes = optionCount(*findRow(kThemeChoice));
    runDialogCommand(model, kThemeChoice, themes - 1);
    EXPECT_EQ(model.working.theme, themes - 1);
    runDialogCommand(model, kThemeChoice);
    EXPECT_EQ(model.working.theme, 0);
    runDialogCommand(model, kThemeChoice, themes);
    EXPECT_EQ(model.working.theme, 0);
    std::int32_t Settings::*const keys[] = {&Settings::bind_A, &Settings::bind_B, &Settings::bind_C, &Settings::bind_D,
                                            &Settings::bind_E};
    for (int key = 0; key < 5; key++) {
        runDialogCommand(model, kKeyASelector + key, 3 + key % 2);
        EXPECT_EQ(model.working.*keys[key], 3 + key % 2);
    }
    runDialogCommand(model, kKeyESelector, 7);
    runDialogCommand(model, kKeyESelector);
    EXPECT_EQ(model.working.bind_E, 0);
}

TEST_F(DialogModelTest, SlidersStepAndStayInRange) {
    stepLevel(model, *findRow(kPanelScaleSlider), 3);
    EXPECT_EQ(model.working.panel_scale, 115.0f);
    stepLevel(model, *findRow(kPanelScaleSlider), 100);
    EXPECT_EQ(model.working.panel_scale, 200.0f);
    setLevel(model, *findRow(kVolumeMaxSlider), 0.37f);
    EXPECT_EQ(model.working.volume_max, 0.35f);
    setLevel(model, *findRow(kVolumeMaxSlider), std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(model.working.volume_max, 0.35f);
    setLevel(model, *findRow(kMasterToggle), 5.0f);
    EXPECT_TRUE(model.working.master);
    EXPECT_EQ(runDialogCommand(model, kPanelScaleSlider), DialogAction::kNone);
    EXPECT_EQ(model.working.panel_scale, 200.0f);
}

TEST_F(DialogModelTest, ButtonsAskForWhatTheyAreCalled) {
    const struct {
        int id;
        DialogAction action;
    } rows[] = {{kApply, DialogAction::kApply},
                {kSaveAndClose, DialogAction::kSaveAndClose},
                {kCancel, DialogAction::kClose},
                {kWindowButton, DialogAction::kClose},
                {kPreviewMessages, DialogAction::kPreviewMessages},
                {kClearMessages, DialogAction::kClearMessages},
                {kResetPanel, DialogAction::kNone},
                {kLiveRow, DialogAction::kNone},
                {1, DialogAction::kNone},
                {-1, DialogAction::kNone}};
    for (const auto& row : rows) EXPECT_EQ(runDialogCommand(model, row.id), row.action) << row.id;
}

TEST_F(DialogModelTest, TabsTurnThePage) {
    for (int page = 3; page >= 0; page--) {
        runDialogCommand(model, kGeneralTab + page);
        EXPECT_EQ(model.page, page);
    }
    EXPECT_TRUE(model.changed.empty());
}

TEST_F(DialogModelTest, FollowsTheLiveRecordInWhatTheUserHasNotTouched) {
    runDialogCommand(model, kPinToggle);  // pin on
    Settings live = copySettings(store);
    live.panel_x = 500;
    live.radio = 2;
    live.pin = false;
    followLive(model, live);
    EXPECT_EQ(model.working.panel_x, 500);
    EXPECT_EQ(model.working.radio, 2);
    EXPECT_TRUE(model.working.pin);
}

TEST_F(DialogModelTest, CommitKeepsWhatThePanelChangedMeanwhile) {
    runDialogCommand(model, kThemeChoice, 1);
    updateSettings(store, [](Settings& live) {
        live.panel_x = 321;
        live.receive_volume = 42.0f;
        live.enabled = false;
    });
    commit();  // without a look at the live record in between
    const Settings live = copySettings(store);
    EXPECT_EQ(live.theme, 1);
    EXPECT_EQ(live.panel_x, 321);
    EXPECT_EQ(live.receive_volume, 42.0f);
    EXPECT_FALSE(live.enabled);
    EXPECT_EQ(model.working, live);
    EXPECT_TRUE(isSaved("panel_x=321"));
    EXPECT_TRUE(isSaved("theme=1"));
}

TEST_F(DialogModelTest, CommitWritesWhatTheUserSetOverWhatThePanelSet) {
    setLevel(model, *findRow(kReceiveVolumeSlider), 10.0f);
    updateSettings(store, [](Settings& live) { live.receive_volume = 42.0f; });
    commit();
    EXPECT_EQ(copySettings(store).receive_volume, 10.0f);
}

TEST_F(DialogModelTest, AfterACommitEverythingFollowsAgain) {
    runDialogCommand(model, kPinToggle);
    commit();
    updateSettings(store, [](Settings& live) { live.pin = false; });
    commit();
    EXPECT_FALSE(copySettings(store).pin);
}

TEST_F(DialogModelTest, ResetPutsThePanelBackEvenIfItMovesAgain) {
    updateSettings(store, [](Settings& live) { live.panel_x = live.panel_y = -700; });
    followLive(model, copySettings(store));
    runDialogCommand(model, kOpacitySlider);
    setLevel(model, *findRow(kOpacitySlider), 40.0f);
    setLevel(model, *findRow(kPanelScaleSlider), 150.0f);
    runDialogCommand(model, kResetPanel);
    EXPECT_EQ(copySettings(store).panel_x, -700);  // only in the working copy
    updateSettings(store, [](Settings& live) { live.panel_x = 900; });
    commit();
    const Settings live = copySettings(store);
    EXPECT_EQ(live.panel_x, 80);
    EXPECT_EQ(live.panel_y, 80);
    EXPECT_EQ(live.panel_scale, 100.0f);
    EXPECT_EQ(live.opacity, 100.0f);
}

TEST_F(DialogModelTest, CommitPutsTheVolumesInOrder) {
    setLevel(model, *findRow(kVolumeMinSlider), 0.9f);
    setLevel(model, *findRow(kVolumeMaxSlider), 0.2f);
    EXPECT_EQ(model.working.volume_min, 0.9f);
    commit();
    EXPECT_EQ(copySettings(store).volume_min, 0.2f);
    EXPECT_EQ(copySettings(store).volume_max, 0.9f);
    EXPECT_EQ(model.working.volume_min, 0.2f);
    EXPECT_TRUE(isSaved("volume_min=0.2"));
}

TEST_F(DialogModelTest, LanguageShowsAtOnceAndCountsForTheOthersAfterACommit) {
    EXPECT_EQ(dialogLanguage(model, kGermanSystem), kGerman);  // "auto"
    runDialogCommand(model, languageControl(kRussian));
    EXPECT_EQ(model.working.language, "ru");
    EXPECT_EQ(dialogLanguage(model, kGermanSystem), kRussian);
    EXPECT_EQ(languageIndex, kEnglish);
    commit();
    EXPECT_EQ(languageIndex, kRussian);
    EXPECT_TRUE(isSaved("language=ru"));
}

TEST_F(DialogModelTest, CommitAsksTheSystemWhenNoLanguageIsNamed) {
    commit();
    EXPECT_EQ(languageIndex, kGerman);
    EXPECT_EQ(copySettings(store).language, "auto");
}

TEST_F(DialogModelTest, CommitCountsTheVoiceGenerationOnlyForVoiceSwitches) {
    runDialogCommand(model, kPinToggle);
    commit();
    EXPECT_EQ(store.DspGeneration, 0u);
    runDialogCommand(model, kNoiseReductionToggle);
    commit();
    EXPECT_EQ(store.DspGeneration, 1u);
    EXPECT_EQ(store.AudioFlags & kAudioNrSelf, static_cast<std::uint32_t>(kAudioNrSelf));
    commit();
    EXPECT_EQ(store.DspGeneration, 1u);
}

TEST_F(DialogModelTest, EverySettingSetByTheMouseStandsInTheFile) {
    DialogRig rig;
    const Settings expected = clickEverySetting(rig);
    for (const SettingCopy& setting : settingsCopy()) {
        if (setting.control.id == 0 || setting.control.id == kKeyASelector) continue;  // key A is fixed
        Settings unchanged = expected;
        putValue(unchanged, setting, setting.standard);
        EXPECT_NE(unchanged, expected) << setting.key << " was not changed";
    }
    commitDialog(rig.model, store, languageIndex, kGermanSystem);
    EXPECT_EQ(file(), writeSettingsText(expected));
}

TEST_F(DialogModelTest, EverySettingSetByCommandStandsInTheFile) {
    DialogRig rig;
    const Settings expected = commandEverySetting(rig);
    commitDialog(rig.model, store, languageIndex, kGermanSystem);
    EXPECT_EQ(file(), writeSettingsText(expected));
}
