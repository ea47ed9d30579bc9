#include "settings/dialog/dialog_rows.h"
#include <gtest/gtest.h>
#include <set>
#include "panel/panel_layout.h"
#include "settings/interface_texts.h"
#include "settings/language.h"
#include "tests/unit/settings/settings_copy.h"

namespace {

// The controls that do not belong to a setting, listed a second time; those of settings are in settings_copy.h.
const struct {
    int id;
    RowKind kind;
    int label;
} kOtherControls[] = {
    {kGeneralTab, RowKind::kTab, 5},        {kVoiceTab, RowKind::kTab, 6},
    {kRadioTab, RowKind::kTab, 7},          {kAboutTab, RowKind::kTab, 8},
    {kWindowButton, RowKind::kButton, -1},  {kResetPanel, RowKind::kButton, 17},
    {kLiveRow, RowKind::kLive, 69},         {kPreviewMessages, RowKind::kButton, 50},
    {kClearMessages, RowKind::kButton, 51}, {kApply, RowKind::kButton, 4},
    {kSaveAndClose, RowKind::kButton, 2},   {kCancel, RowKind::kButton, 3},
};

}  // namespace

TEST(DialogRows, BindEverySettingsControlsToItsFieldAndTexts) {
    for (const SettingCopy& setting : settingsCopy()) {
        const ControlCopy& control = setting.control;
        for (int i = 0; control.id != 0 && i < control.count; i++) {
            const DialogRow* row = findRow(control.id + i);
            ASSERT_TRUE(row) << setting.key << ' ' << i;
            EXPECT_EQ(row->kind, control.kind) << setting.key;
            EXPECT_EQ(row->label, control.label) << setting.key;
            EXPECT_EQ(row->description, control.description) << setting.key;
            EXPECT_EQ(row->field, setting.field) << setting.key;
            EXPECT_FALSE(rowText(*row, kEnglish).empty()) << setting.key;
        }
    }
}

TEST(DialogRows, GiveASliderItsSettingsRange) {
    for (const SettingCopy& setting : settingsCopy()) {
        if (setting.control.kind != RowKind::kSlider) continue;
        const SliderRange& range = findRow(setting.control.id)->range;
        EXPECT_EQ(range.min, setting.range.min) << setting.key;
        EXPECT_EQ(range.max, setting.range.max) << setting.key;
        EXPECT_EQ(range.step, setting.range.step) << setting.key;
        EXPECT_EQ(range.decimals, setting.range.decimals) << setting.key;
        EXPECT_STREQ(range.unit, setting.range.unit) << setting.key;
    }
}

TEST(DialogRows, GiveAChoiceAsManyOptionsAsItsSettingHasValues) {
    for (const SettingCopy& setting : settingsCopy()) {
        if (setting.control.kind != RowKind::kChoice && setting.control.kind != RowKind::kSelector) continue;
        EXPECT_EQ(optionCount(*findRow(setting.control.id)), static_cast<int>(setting.range.max) + 1) << setting.key;
        EXPECT_EQ(setting.range.min, 0.0f) << setting.key;  // an option's number is its value
    }
}

TEST(DialogRows, HoldTabsButtonsTheLiveRowTheSettingsAndNothingElse) {
    std::set<int> ids, expected;
    for (const DialogRow& row : dialogRows()) ids.insert(row.id);
    for (const auto& control : kOtherControls) {
        expected.insert(control.id);
        const DialogRow* row = findRow(control.id);
        ASSERT_TRUE(row) << control.id;
        EXPECT_EQ(row->kind, control.kind) << control.id;
        EXPECT_EQ(row->label, control.label) << control.id;
        EXPECT_EQ(row->field, SettingsField{}) << control.id;
    }
    for (const SettingCopy& setting : settingsCopy()) {
        for (int i = 0; setting.control.id != 0 && i < setting.control.count; i++)
            expected.insert(setting.control.id + i);
    }
    EXPECT_EQ(ids, expected);
    for (int page = 0; page < kPageCount; page++) EXPECT_EQ(findRow(kGeneralTab + page)->value, page);
    for (int id = -1; id <= *ids.rbegin() + 1; id++) EXPECT_EQ(findRow(id) != nullptr, ids.count(id) == 1) << id;
}

TEST(DialogRows, CallOptionsAndKeysByWhatIsEngravedOnThePanel) {
    const struct {
        int id, value;
        const char* caption;
    } rows[] = {{kCom1Option, 1, "COM1"},       {kCom2Option, 2, "COM2"}, {kActiveOption, 0, "ACTIVE"},
                {kStandbyOption, 1, "STANDBY"}, {kKeyASelector, 0, "A"},  {kKeyBSelector, 0, "B"},
                {kKeyCSelector, 0, "C"},        {kKeyDSelector, 0, "D"},  {kKeyESelector, 0, "E"}};
    for (const auto& row : rows) {
        EXPECT_EQ(findRow(row.id)->value, row.value) << row.id;
        for (std::int32_t language = 0; language < kLanguageCount; language++)
            EXPECT_EQ(rowText(*findRow(row.id), language), row.caption) << row.id;
    }
}

TEST(DialogRows, CallTheThemesByTheirNamesAndTheActionsByTheirTexts) {
    const DialogRow& theme = *findRow(kThemeChoice);
    const char* const names[] = {"GENERAL", "BOEING", "AIRBUS"};
    for (int i = 0; i < 3; i++) EXPECT_EQ(optionText(theme, i, kGerman), names[i]);
    const DialogRow& key = *findRow(kKeyASelector);
    for (int code = 0; code < optionCount(key); code++)
        EXPECT_EQ(optionText(key, code, kFrench), textOf(kFrench, kTextActionNone + code));
    EXPECT_EQ(optionText(key, optionCount(key), kFrench), "");
    EXPECT_EQ(optionText(key, -1, kFrench), "");
    EXPECT_EQ(optionCount(*findRow(kMasterToggle)), 0);
}

TEST(DialogRows, KnowWhichCustomKeysEachThemesPanelHas) {
    for (std::int32_t theme = -1; theme <= kThemeCount; theme++) {
        for (int key = 0; key < 5; key++) {
            const bool isThere = findHotspot(themeLayout(theme), kCustomKeyA + key) != nullptr;
            EXPECT_EQ(hasKey(theme, *findRow(kKeyASelector + key)), isThere) << theme << ' ' << key;
        }
        EXPECT_FALSE(hasKey(theme, *findRow(kMasterToggle)));
    }
}

TEST(DialogRows, CallALanguageByItsOwnNameInEveryLanguage) {
    std::string names;
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        const std::string name(rowText(*findRow(kFirstLanguage + language), kRussian));
        EXPECT_EQ(rowText(*findRow(kFirstLanguage + language), language), name);
        EXPECT_EQ(findRow(kFirstLanguage + language)->value, language);
        names += (names.empty() ? "" : " / ") + name;
    }
    const std::string_view listed = textOf(kEnglish, 68);
    EXPECT_EQ(listed.substr(listed.size() - std::min(listed.size(), names.size())), names);
}

TEST(DialogRows, WriteSliderValuesWithUnitAndDecimals) {
    EXPECT_EQ(sliderText(findRow(kOpacitySlider)->range, 80.0f), "80 %");
    EXPECT_EQ(sliderText(findRow(kTransmitGainSlider)->range, 12.4f), "12 dB");
    EXPECT_EQ(sliderText(findRow(kTextScaleSlider)->range, 15.0f), "15 px");
    EXPECT_EQ(sliderText(findRow(kVolumeMinSlider)->range, 0.85f), "0.85");
    EXPECT_EQ(sliderText(findRow(kVolumeMaxSlider)->range, 1.0f), "1.00");
}

TEST(DialogRows, SnapToStepsWithinTheRange) {
    EXPECT_EQ(snapToStep(findRow(kPanelScaleSlider)->range, 137.0f), 135.0f);
    EXPECT_EQ(snapToStep(findRow(kPanelScaleSlider)->range, 138.0f), 140.0f);
    EXPECT_EQ(snapToStep(findRow(kOpacitySlider)->range, 12.0f), 30.0f);
    EXPECT_EQ(snapToStep(findRow(kOpacitySlider)->range, 400.0f), 100.0f);
    for (int i = 0; i <= 20; i++) {
        const float wanted = static_cast<float>(i * 5) / 100.0f;
        EXPECT_EQ(snapToStep(findRow(kVolumeMaxSlider)->range, wanted + 0.011f), wanted) << i;  // 0.15, not 0.15000001
    }
}

TEST(DialogRows, NameACodeOfEachLanguageThatReadsAsIt) {
    for (std::int32_t language = 0; language < kLanguageCount; language++)
        EXPECT_EQ(languageOfCode(languageCode(language)), language);
    EXPECT_STREQ(languageCode(-1), languageCode(0));
    EXPECT_STREQ(languageCode(kLanguageCount), languageCode(kLanguageCount - 1));
}
