#include "settings/dialog/dialog_rows.h"
#include <algorithm>
#include <cmath>
#include <iterator>
#include "base/number_text.h"
#include "settings/interface_texts.h"

namespace {

constexpr SliderRange kNoRange = {};
constexpr SliderRange kPercentOfOpacity = {30, 100, 1, 0, "%"};
constexpr SliderRange kPercentOfScale = {50, 200, 5, 0, "%"};
constexpr SliderRange kPercent = {0, 100, 1, 0, "%"};
constexpr SliderRange kDecibels = {0, 18, 1, 0, "dB"};
constexpr SliderRange kShare = {0, 1, 0.05f, 2, ""};
constexpr SliderRange kTextPixels = {12, 22, 1, 0, "px"};
constexpr std::monostate kNoField;

// By identifier. The keys A to E have the five identifiers from 6060 on; 6005 puts the panel back to its place and
// size.
// clang-format off
constexpr DialogRow kRows[] = {
    // id   kind                label    description  field                       value range            caption
    {5000, RowKind::kTab,       5,       kNoText,     kNoField,                   0, kNoRange,           nullptr},
    {5001, RowKind::kTab,       6,       kNoText,     kNoField,                   1, kNoRange,           nullptr},
    {5002, RowKind::kTab,       7,       kNoText,     kNoField,                   2, kNoRange,           nullptr},
    {5003, RowKind::kTab,       8,       kNoText,     kNoField,                   3, kNoRange,           nullptr},
    {5100, RowKind::kLanguage,  kNoText, kNoText,     &Settings::language,        0, kNoRange,           "简体中文"},
    {5101, RowKind::kLanguage,  kNoText, kNoText,     &Settings::language,        1, kNoRange,           "繁體中文"},
    {5102, RowKind::kLanguage,  kNoText, kNoText,     &Settings::language,        2, kNoRange,           "English"},
    {5103, RowKind::kLanguage,  kNoText, kNoText,     &Settings::language,        3, kNoRange,           "日本語"},
    {5104, RowKind::kLanguage,  kNoText, kNoText,     &Settings::language,        4, kNoRange,           "한국어"},
    {5105, RowKind::kLanguage,  kNoText, kNoText,     &Settings::language,        5, kNoRange,           "Deutsch"},
    {5106, RowKind::kLanguage,  kNoText, kNoText,     &Settings::language,        6, kNoRange,           "Français"},
    {5107, RowKind::kLanguage,  kNoText, kNoText,     &Settings::language,        7, kNoRange,           "Español"},
    {5108, RowKind::kLanguage,  kNoText, kNoText,     &Settings::language,        8, kNoRange,           "Русский"},
    {5150, RowKind::kButton,    kNoText, kNoText,     kNoField,                   0, kNoRange,           ""},
    {6000, RowKind::kToggle,    13,      14,          &Settings::master,          0, kNoRange,           nullptr},
    {6001, RowKind::kToggle,    15,      16,          &Settings::panel_visible,   0, kNoRange,           nullptr},
    {6002, RowKind::kChoice,    10,      kNoText,     &Settings::theme,           0, kNoRange,           nullptr},
    {6003, RowKind::kSlider,    12,      kNoText,     &Settings::opacity,         0, kPercentOfOpacity,  nullptr},
    {6004, RowKind::kSlider,    11,      kNoText,     &Settings::panel_scale,     0, kPercentOfScale,    nullptr},
    {6005, RowKind::kButton,    17,      kNoText,     kNoField,                   0, kNoRange,           nullptr},
    {6006, RowKind::kLive,      69,      kNoText,     kNoField,                   0, kNoRange,           nullptr},
    {6020, RowKind::kToggle,    19,      20,          &Settings::enabled,         0, kNoRange,           nullptr},
    {6021, RowKind::kToggle,    21,      22,          &Settings::follow_volume,   0, kNoRange,           nullptr},
    {6022, RowKind::kSlider,    28,      kNoText,     &Settings::receive_volume,  0, kPercent,           nullptr},
    {6023, RowKind::kSlider,    29,      kNoText,     &Settings::transmit_gain,   0, kDecibels,          nullptr},
    {6024, RowKind::kSlider,    30,      kNoText,     &Settings::volume_min,      0, kShare,             nullptr},
    {6025, RowKind::kSlider,    31,      kNoText,     &Settings::volume_max,      0, kShare,             nullptr},
    {6026, RowKind::kToggle,    23,      kNoText,     &Settings::distort_self,    0, kNoRange,           nullptr},
    {6027, RowKind::kToggle,    24,      kNoText,     &Settings::distort_others,  0, kNoRange,           nullptr},
    {6028, RowKind::kToggle,    25,      kNoText,     &Settings::tail_self,       0, kNoRange,           nullptr},
    {6029, RowKind::kToggle,    26,      kNoText,     &Settings::tail_others,     0, kNoRange,           nullptr},
    {6030, RowKind::kToggle,    34,      35,          &Settings::equalize,        0, kNoRange,           nullptr},
    {6031, RowKind::kToggle,    36,      37,          &Settings::nrSelf,          0, kNoRange,           nullptr},
    {6040, RowKind::kOption,    kNoText, kNoText,     &Settings::radio,           1, kNoRange,           "COM1"},
    {6041, RowKind::kOption,    kNoText, kNoText,     &Settings::radio,           2, kNoRange,           "COM2"},
    {6042, RowKind::kOption,    kNoText, kNoText,     &Settings::target,          0, kNoRange,           "ACTIVE"},
    {6043, RowKind::kOption,    kNoText, kNoText,     &Settings::target,          1, kNoRange,           "STANDBY"},
    {6044, RowKind::kToggle,    40,      41,          &Settings::pin,             0, kNoRange,           nullptr},
    {6045, RowKind::kToggle,    42,      43,          &Settings::radio_lamps,     0, kNoRange,           nullptr},
    {6046, RowKind::kToggle,    45,      46,          &Settings::text_alert,      0, kNoRange,           nullptr},
    {6047, RowKind::kToggle,    47,      48,          &Settings::text_auto_open,  0, kNoRange,           nullptr},
    {6048, RowKind::kSlider,    49,      kNoText,     &Settings::text_scale,      0, kTextPixels,        nullptr},
    {6049, RowKind::kButton,    50,      kNoText,     kNoField,                   0, kNoRange,           nullptr},
    {6050, RowKind::kButton,    51,      kNoText,     kNoField,                   0, kNoRange,           nullptr},
    {6060, RowKind::kSelector,  kNoText, kNoText,     &Settings::bind_A,          0, kNoRange,           "A"},
    {6061, RowKind::kSelector,  kNoText, kNoText,     &Settings::bind_B,          0, kNoRange,           "B"},
    {6062, RowKind::kSelector,  kNoText, kNoText,     &Settings::bind_C,          0, kNoRange,           "C"},
    {6063, RowKind::kSelector,  kNoText, kNoText,     &Settings::bind_D,          0, kNoRange,           "D"},
    {6064, RowKind::kSelector,  kNoText, kNoText,     &Settings::bind_E,          0, kNoRange,           "E"},
    {6080, RowKind::kButton,    4,       kNoText,     kNoField,                   0, kNoRange,           nullptr},
    {6081, RowKind::kButton,    2,       kNoText,     kNoField,                   0, kNoRange,           nullptr},
    {6082, RowKind::kButton,    3,       kNoText,     kNoField,                   0, kNoRange,           nullptr},
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
    return row.kind == RowKind::kChoice ? kThemeNames[option] : textOf(language, kTextActionFirst + option);
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
