#include "settings/dialog_rows.h"
#include <gtest/gtest.h>
#include <set>
#include "settings/language.h"
#include "settings/texts.h"

namespace {

// What the dialog's controls are, told a second time: a row changed by mistake shows here.
struct ToggleFact {
    int id, label, description;
    bool Settings::*field;
};
const ToggleFact kToggles[] = {
    {6000, 13, 14, &Settings::master},       {6001, 15, 16, &Settings::panel_visible},
    {6020, 19, 20, &Settings::enabled},      {6021, 21, 22, &Settings::follow_volume},
    {6026, 23, -1, &Settings::distort_self}, {6027, 24, -1, &Settings::distort_others},
    {6028, 25, -1, &Settings::tail_self},    {6029, 26, -1, &Settings::tail_others},
    {6030, 34, 35, &Settings::equalize},     {6031, 36, 37, &Settings::nrSelf},
    {6044, 40, 41, &Settings::pin},          {6045, 42, 43, &Settings::radio_lamps},
    {6046, 45, 46, &Settings::text_alert},   {6047, 47, 48, &Settings::text_auto_open},
};
struct SliderFact {
    int id, label;
    float Settings::*field;
    float min, max, step;
    const char* unit;
    int decimals;
};
const SliderFact kSliders[] = {
    {6003, 12, &Settings::opacity, 30, 100, 1, "%", 0},       {6004, 11, &Settings::panel_scale, 50, 200, 5, "%", 0},
    {6022, 28, &Settings::receive_volume, 0, 100, 1, "%", 0}, {6023, 29, &Settings::transmit_gain, 0, 18, 1, "dB", 0},
    {6024, 30, &Settings::volume_min, 0, 1, 0.05f, "", 2},    {6025, 31, &Settings::volume_max, 0, 1, 0.05f, "", 2},
    {6048, 49, &Settings::text_scale, 12, 22, 1, "px", 0},
};
struct NumberFact {
    int id;
    RowKind kind;
    std::int32_t Settings::*field;
    int value;
    const char* caption;
};
const NumberFact kNumbers[] = {
    {6040, RowKind::kOption, &Settings::radio, 1, "COM1"},    {6041, RowKind::kOption, &Settings::radio, 2, "COM2"},
    {6042, RowKind::kOption, &Settings::target, 0, "ACTIVE"}, {6043, RowKind::kOption, &Settings::target, 1, "STANDBY"},
    {6060, RowKind::kSelector, &Settings::bind_A, 0, "A"},    {6061, RowKind::kSelector, &Settings::bind_B, 0, "B"},
    {6062, RowKind::kSelector, &Settings::bind_C, 0, "C"},    {6063, RowKind::kSelector, &Settings::bind_D, 0, "D"},
    {6064, RowKind::kSelector, &Settings::bind_E, 0, "E"},
};

}  // namespace

TEST(DialogRows, HoldEveryToggleWithItsTextsAndField) {
    for (const auto& fact : kToggles) {
        const DialogRow* row = findRow(fact.id);
        ASSERT_TRUE(row) << fact.id;
        EXPECT_EQ(row->kind, RowKind::kToggle) << fact.id;
        EXPECT_EQ(row->label, fact.label) << fact.id;
        EXPECT_EQ(row->description, fact.description) << fact.id;
        EXPECT_EQ(row->field, SettingsField(fact.field)) << fact.id;
    }
}

TEST(DialogRows, HoldEverySliderWithItsRange) {
    for (const auto& fact : kSliders) {
        const DialogRow* row = findRow(fact.id);
        ASSERT_TRUE(row) << fact.id;
        EXPECT_EQ(row->kind, RowKind::kSlider) << fact.id;
        EXPECT_EQ(row->label, fact.label) << fact.id;
        EXPECT_EQ(row->field, SettingsField(fact.field)) << fact.id;
        EXPECT_EQ(row->range.min, fact.min) << fact.id;
        EXPECT_EQ(row->range.max, fact.max) << fact.id;
        EXPECT_EQ(row->range.step, fact.step) << fact.id;
        EXPECT_EQ(row->range.decimals, fact.decimals) << fact.id;
        EXPECT_STREQ(row->range.unit, fact.unit) << fact.id;
    }
}

TEST(DialogRows, HoldTheOptionsAndTheKeySelectors) {
    for (const auto& fact : kNumbers) {
        const DialogRow* row = findRow(fact.id);
        ASSERT_TRUE(row) << fact.id;
        EXPECT_EQ(row->kind, fact.kind) << fact.id;
        EXPECT_EQ(row->field, SettingsField(fact.field)) << fact.id;
        EXPECT_EQ(row->value, fact.value) << fact.id;
        EXPECT_EQ(rowText(*row, kEnglish), fact.caption) << fact.id;
    }
}

TEST(DialogRows, HoldTabsLanguagesButtonsAndNothingElse) {
    std::set<int> ids;
    for (const DialogRow& row : dialogRows()) ids.insert(row.id);
    std::set<int> expected = {5150, 6002, 6005, 6006, 6049, 6050, 6080, 6081, 6082};
    for (int page = 0; page < 4; page++) {
        expected.insert(5000 + page);
        EXPECT_EQ(rowText(*findRow(5000 + page), kEnglish), textOf(kEnglish, 5 + page));
    }
    const char* const names[] = {"简体中文", "繁體中文", "English", "日本語", "한국어",
                                 "Deutsch",  "Français", "Español", "Русский"};
    for (int language = 0; language < 9; language++) {
        expected.insert(5100 + language);
        EXPECT_EQ(rowText(*findRow(5100 + language), kRussian), names[language]);
    }
    for (const auto& fact : kToggles) expected.insert(fact.id);
    for (const auto& fact : kSliders) expected.insert(fact.id);
    for (const auto& fact : kNumbers) expected.insert(fact.id);
    EXPECT_EQ(ids, expected);
    const struct {
        int id, label;
    } buttons[] = {{6080, 4}, {6081, 2}, {6082, 3}, {6049, 50}, {6050, 51}, {6005, 17}, {6002, 10}, {6006, 69}};
    for (const auto& button : buttons) EXPECT_EQ(findRow(button.id)->label, button.label) << button.id;
    for (const int id : {-1, 0, 4999, 5004, 5109, 6007, 6083}) EXPECT_EQ(findRow(id), nullptr) << id;
}

TEST(DialogRows, OfferThreeThemesAndEightActions) {
    const DialogRow& theme = *findRow(6002);
    EXPECT_EQ(theme.kind, RowKind::kChoice);
    EXPECT_EQ(theme.field, SettingsField(&Settings::theme));
    ASSERT_EQ(optionCount(theme), 3);
    const char* const names[] = {"GENERAL", "BOEING", "AIRBUS"};
    for (int i = 0; i < 3; i++) EXPECT_EQ(optionText(theme, i, kGerman), names[i]);
    const DialogRow& key = *findRow(6062);
    ASSERT_EQ(optionCount(key), 8);
    for (int code = 0; code < 8; code++) EXPECT_EQ(optionText(key, code, kFrench), textOf(kFrench, 55 + code));
    EXPECT_EQ(optionText(key, 8, kFrench), "");
    EXPECT_EQ(optionText(key, -1, kFrench), "");
    EXPECT_EQ(optionCount(*findRow(6000)), 0);
}

TEST(DialogRows, WriteSliderValuesWithUnitAndDecimals) {
    EXPECT_EQ(sliderText(findRow(6003)->range, 80.0f), "80 %");
    EXPECT_EQ(sliderText(findRow(6023)->range, 12.4f), "12 dB");
    EXPECT_EQ(sliderText(findRow(6048)->range, 15.0f), "15 px");
    EXPECT_EQ(sliderText(findRow(6024)->range, 0.85f), "0.85");
    EXPECT_EQ(sliderText(findRow(6025)->range, 1.0f), "1.00");
}

TEST(DialogRows, SnapToStepsWithinTheRange) {
    EXPECT_EQ(snapToStep(findRow(6004)->range, 137.0f), 135.0f);
    EXPECT_EQ(snapToStep(findRow(6004)->range, 138.0f), 140.0f);
    EXPECT_EQ(snapToStep(findRow(6003)->range, 12.0f), 30.0f);
    EXPECT_EQ(snapToStep(findRow(6003)->range, 400.0f), 100.0f);
    for (int i = 0; i <= 20; i++) {
        const float wanted = static_cast<float>(i * 5) / 100.0f;
        EXPECT_EQ(snapToStep(findRow(6025)->range, wanted + 0.011f), wanted) << i;  // 0.15, not 0.15000001
    }
}

TEST(DialogRows, NameTheFirstCodeOfEachLanguage) {
    const char* const codes[] = {"zh-CN", "zh-TW", "en", "ja", "ko", "de", "fr", "es", "ru"};
    for (int language = 0; language < 9; language++) {
        EXPECT_STREQ(languageCode(language), codes[language]);
        EXPECT_EQ(languageOfCode(languageCode(language)), language);
    }
    EXPECT_STREQ(languageCode(-1), "zh-CN");
    EXPECT_STREQ(languageCode(9), "ru");
}
