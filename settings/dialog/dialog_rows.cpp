#include "settings/dialog/dialog_rows.h"
#include <algorithm>
#include <cmath>
#include <iterator>
#include "base/number_text.h"
#include "settings/interface_texts.h"
#include "settings/setting_ranges.h"

namespace {

constexpr SliderRange sliderOf(const SettingRange& range, float step, int decimals, const char* unit) {
    return {range.min, range.max, step, decimals, unit};
}
constexpr SliderRange kNoRange = {};
constexpr SliderRange kPercentOfOpacity = sliderOf(kOpacityRange, 1, 0, "%");
constexpr SliderRange kPercentOfScale = sliderOf(kPanelScaleRange, 5, 0, "%");
constexpr SliderRange kPercent = sliderOf(kReceiveVolumeRange, 1, 0, "%");
constexpr SliderRange kDecibels = sliderOf(kTransmitGainRange, 1, 0, "dB");
constexpr SliderRange kShare = sliderOf(kFractionRange, 0.05f, 2, "");
constexpr SliderRange kTextPixels = sliderOf(kTextScaleRange, 1, 0, "px");
constexpr std::monostate kNoField;

// In the order of the identifiers. kResetPanel resets the panel's place, size and opacity.
// clang-format off
constexpr DialogRow kRows[] = {
    // id                                    kind                label                 description              field                      value                range              caption
    {kGeneralTab,                          RowKind::kTab,      kTextPageGeneral,     kNoText,                 kNoField,                  0,                   kNoRange,          nullptr},
    {kVoiceTab,                            RowKind::kTab,      kTextPageVoice,       kNoText,                 kNoField,                  1,                   kNoRange,          nullptr},
    {kRadioTab,                            RowKind::kTab,      kTextPageRadio,       kNoText,                 kNoField,                  2,                   kNoRange,          nullptr},
    {kAboutTab,                            RowKind::kTab,      kTextPageAbout,       kNoText,                 kNoField,                  3,                   kNoRange,          nullptr},
    {kFirstLanguage,                       RowKind::kLanguage, kNoText,              kNoText,                 &Settings::language,       kSimplifiedChinese,  kNoRange,          "简体中文"},
    {languageControl(kTraditionalChinese), RowKind::kLanguage, kNoText,              kNoText,                 &Settings::language,       kTraditionalChinese, kNoRange,          "繁體中文"},
    {languageControl(kEnglish),            RowKind::kLanguage, kNoText,              kNoText,                 &Settings::language,       kEnglish,            kNoRange,          "English"},
    {languageControl(kJapanese),           RowKind::kLanguage, kNoText,              kNoText,                 &Settings::language,       kJapanese,           kNoRange,          "日本語"},
    {languageControl(kKorean),             RowKind::kLanguage, kNoText,              kNoText,                 &Settings::language,       kKorean,             kNoRange,          "한국어"},
    {languageControl(kGerman),             RowKind::kLanguage, kNoText,              kNoText,                 &Settings::language,       kGerman,             kNoRange,          "Deutsch"},
    {languageControl(kFrench),             RowKind::kLanguage, kNoText,              kNoText,                 &Settings::language,       kFrench,             kNoRange,          "Français"},
    {languageControl(kSpanish),            RowKind::kLanguage, kNoText,              kNoText,                 &Settings::language,       kSpanish,            kNoRange,          "Español"},
    {languageControl(kRussian),            RowKind::kLanguage, kNoText,              kNoText,                 &Settings::language,       kRussian,            kNoRange,          "Русский"},
    {kWindowButton,                        RowKind::kButton,   kNoText,              kNoText,                 kNoField,                  0,                   kNoRange,          ""},
    {kMasterToggle,                        RowKind::kToggle,   kTextMaster,          kTextMasterHint,         &Settings::master,         0,                   kNoRange,          nullptr},
    {kPanelVisibleToggle,                  RowKind::kToggle,   kTextPanelVisible,    kTextPanelVisibleHint,   &Settings::panel_visible,  0,                   kNoRange,          nullptr},
    {kThemeChoice,                         RowKind::kChoice,   kTextTheme,           kNoText,                 &Settings::theme,          0,                   kNoRange,          nullptr},
    {kOpacitySlider,                       RowKind::kSlider,   kTextOpacity,         kNoText,                 &Settings::opacity,        0,                   kPercentOfOpacity, nullptr},
    {kPanelScaleSlider,                    RowKind::kSlider,   kTextPanelScale,      kNoText,                 &Settings::panel_scale,    0,                   kPercentOfScale,   nullptr},
    {kResetPanel,                          RowKind::kButton,   kTextResetPanel,      kNoText,                 kNoField,                  0,                   kNoRange,          nullptr},
    {kLiveRow,                             RowKind::kLive,     kTextLive,            kNoText,                 kNoField,                  0,                   kNoRange,          nullptr},
    {kAutoSwitchingToggle,                 RowKind::kToggle,   kTextAutoSwitching,   kTextAutoSwitchingHint,  &Settings::enabled,        0,                   kNoRange,          nullptr},
    {kFollowVolumeToggle,                  RowKind::kToggle,   kTextFollowVolume,    kTextFollowVolumeHint,   &Settings::follow_volume,  0,                   kNoRange,          nullptr},
    {kReceiveVolumeSlider,                 RowKind::kSlider,   kTextReceiveVolume,   kNoText,                 &Settings::receive_volume, 0,                   kPercent,          nullptr},
    {kTransmitGainSlider,                  RowKind::kSlider,   kTextTransmitGain,    kNoText,                 &Settings::transmit_gain,  0,                   kDecibels,         nullptr},
    {kVolumeMinSlider,                     RowKind::kSlider,   kTextVolumeMin,       kNoText,                 &Settings::volume_min,     0,                   kShare,            nullptr},
    {kVolumeMaxSlider,                     RowKind::kSlider,   kTextVolumeMax,       kNoText,                 &Settings::volume_max,     0,                   kShare,            nullptr},
    {kDistortSelfToggle,                   RowKind::kToggle,   kTextDistortSelf,     kNoText,                 &Settings::distort_self,   0,                   kNoRange,          nullptr},
    {kDistortOthersToggle,                 RowKind::kToggle,   kTextDistortOthers,   kNoText,                 &Settings::distort_others, 0,                   kNoRange,          nullptr},
    {kTailSelfToggle,                      RowKind::kToggle,   kTextTailSelf,        kNoText,                 &Settings::tail_self,      0,                   kNoRange,          nullptr},
    {kTailOthersToggle,                    RowKind::kToggle,   kTextTailOthers,      kNoText,                 &Settings::tail_others,    0,                   kNoRange,          nullptr},
    {kEqualizeToggle,                      RowKind::kToggle,   kTextEqualize,        kTextEqualizeHint,       &Settings::equalize,       0,                   kNoRange,          nullptr},
    {kNoiseReductionToggle,                RowKind::kToggle,   kTextNoiseReduction,  kTextNoiseReductionHint, &Settings::nrSelf,         0,                   kNoRange,          nullptr},
    {kCom1Option,                          RowKind::kOption,   kNoText,              kNoText,                 &Settings::radio,          1,                   kNoRange,          "COM1"},
    {kCom2Option,                          RowKind::kOption,   kNoText,              kNoText,                 &Settings::radio,          2,                   kNoRange,          "COM2"},
    {kActiveOption,                        RowKind::kOption,   kNoText,              kNoText,                 &Settings::target,         0,                   kNoRange,          "ACTIVE"},
    {kStandbyOption,                       RowKind::kOption,   kNoText,              kNoText,                 &Settings::target,         1,                   kNoRange,          "STANDBY"},
    {kPinToggle,                           RowKind::kToggle,   kTextPin,             kTextPinHint,            &Settings::pin,            0,                   kNoRange,          nullptr},
    {kLampsToggle,                         RowKind::kToggle,   kTextLamps,           kTextLampsHint,          &Settings::radio_lamps,    0,                   kNoRange,          nullptr},
    {kTextAlertToggle,                     RowKind::kToggle,   kTextTextAlert,       kTextTextAlertHint,      &Settings::text_alert,     0,                   kNoRange,          nullptr},
    {kTextAutoOpenToggle,                  RowKind::kToggle,   kTextTextAutoOpen,    kTextTextAutoOpenHint,   &Settings::text_auto_open, 0,                   kNoRange,          nullptr},
    {kTextScaleSlider,                     RowKind::kSlider,   kTextTextScale,       kNoText,                 &Settings::text_scale,     0,                   kTextPixels,       nullptr},
    {kPreviewMessages,                     RowKind::kButton,   kTextPreviewMessages, kNoText,                 kNoField,                  0,                   kNoRange,          nullptr},
    {kClearMessages,                       RowKind::kButton,   kTextClearMessages,   kNoText,                 kNoField,                  0,                   kNoRange,          nullptr},
    {kKeyASelector,                        RowKind::kSelector, kNoText,              kNoText,                 &Settings::bind_A,         0,                   kNoRange,          "A"},
    {kKeyBSelector,                        RowKind::kSelector, kNoText,              kNoText,                 &Settings::bind_B,         0,                   kNoRange,          "B"},
    {kKeyCSelector,                        RowKind::kSelector, kNoText,              kNoText,                 &Settings::bind_C,         0,                   kNoRange,          "C"},
    {kKeyDSelector,                        RowKind::kSelector, kNoText,              kNoText,                 &Settings::bind_D,         0,                   kNoRange,          "D"},
    {kKeyESelector,                        RowKind::kSelector, kNoText,              kNoText,                 &Settings::bind_E,         0,                   kNoRange,          "E"},
    {kApply,                               RowKind::kButton,   kTextApply,           kNoText,                 kNoField,                  0,                   kNoRange,          nullptr},
    {kSaveAndClose,                        RowKind::kButton,   kTextSaveAndClose,    kNoText,                 kNoField,                  0,                   kNoRange,          nullptr},
    {kCancel,                              RowKind::kButton,   kTextCancel,          kNoText,                 kNoField,                  0,                   kNoRange,          nullptr},
};
// clang-format on

constexpr bool isInOrder() {
    for (std::size_t i = 1; i < std::size(kRows); i++) {
        if (kRows[i - 1].id >= kRows[i].id) return false;
    }
    return true;
}
static_assert(isInOrder());  // findRow bisects

constexpr const char* kThemeNames[] = {"GENERAL", "BOEING", "AIRBUS"};  // in the order of the theme setting
constexpr int kThemeKeys[] = {0, 2, 5};  // the custom keys of each, from A on (panel/panel_tables.inc)
static_assert(std::size(kThemeKeys) == std::size(kThemeNames));
constexpr int kActionCount = 8;
constexpr const char* kCodes[] = {"zh-CN", "zh-TW", "en", "ja", "ko", "de", "fr", "es", "ru"};
static_assert(std::size(kCodes) == kLanguageCount);

template <class Type>
Type valueOf(const DialogRow& row, const Settings& settings) {
    const auto* member = std::get_if<Type Settings::*>(&row.field);
    return member ? settings.*(*member) : Type{};
}

}  // namespace

std::span<const DialogRow> dialogRows() {
    return kRows;
}

const DialogRow* findRow(int id) {
    const auto* row = std::lower_bound(std::begin(kRows), std::end(kRows), id,
                                       [](const DialogRow& candidate, int wanted) { return candidate.id < wanted; });
    return row != std::end(kRows) && row->id == id ? row : nullptr;
}

bool rowSwitch(const DialogRow& row, const Settings& settings) {
    return valueOf<bool>(row, settings);
}
std::int32_t rowNumber(const DialogRow& row, const Settings& settings) {
    return valueOf<std::int32_t>(row, settings);
}
float rowLevel(const DialogRow& row, const Settings& settings) {
    return valueOf<float>(row, settings);
}

int optionCount(const DialogRow& row) {
    if (row.kind == RowKind::kChoice) return static_cast<int>(std::size(kThemeNames));
    return row.kind == RowKind::kSelector ? kActionCount : 0;
}

std::string_view optionText(const DialogRow& row, int option, std::int32_t language) {
    if (option < 0 || option >= optionCount(row)) return {};
    return row.kind == RowKind::kChoice ? kThemeNames[option] : textOf(language, kTextActionNone + option);
}

bool hasKey(std::int32_t theme, const DialogRow& selector) {
    const bool isKnown = theme >= 0 && theme < static_cast<std::int32_t>(std::size(kThemeKeys));
    return selector.kind == RowKind::kSelector && selector.id - kKeyASelector < kThemeKeys[isKnown ? theme : 0];
}

bool isFixedKey(const DialogRow& row) {
    return row.id == kKeyASelector;
}

std::string_view rowText(const DialogRow& row, std::int32_t language) {
    return row.caption ? row.caption : textOf(language, row.label);
}

std::string sliderText(const SliderRange& range, float value) {
    const std::string number = formatFixed(static_cast<double>(value), range.decimals == 2 ? 2 : 0);
    return *range.unit ? number + " " + range.unit : number;
}

float snapToStep(const SliderRange& range, float value) {
    const double shown = range.decimals == 2 ? 100.0 : 1.0;
    const double steps =
        std::round((static_cast<double>(value) - static_cast<double>(range.min)) / static_cast<double>(range.step));
    const double snapped = static_cast<double>(range.min) + steps * static_cast<double>(range.step);
    return std::clamp(static_cast<float>(std::round(snapped * shown) / shown), range.min, range.max);
}

const char* languageCode(std::int32_t language) {
    return kCodes[std::clamp(language, 0, kLanguageCount - 1)];
}
