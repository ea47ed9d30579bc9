// settings_copy.h - every setting listed a second time: the only place besides the product's own tables where a setting
// is written down, so that a key, default, range or control changed by mistake shows. All tests walk it.
#pragma once
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>
#include "settings/dialog/dialog_rows.h"
#include "settings/language.h"

// How a value in the file is read.
enum class ValueRule {
    kOffByWord,   // a switch: "0" and "false" are off
    kOffByDigit,  // "0" is off
    kOnByWord,    // "1" and "true" are on
    kOnByDigit,   // "1" is on
    kSecond,      // one of two numbers: the second if the value is exactly that, else the first
    kWhole,       // a number, clamped to its range
    kReal,        // the same with a fraction
    kPixel,       // any whole number
    kText,        // as it stands; the default when it is empty
};

// The controls of a setting in the dialog: how many, from which identifier on, and on which of its pages they are.
struct ControlCopy {
    int id = 0;
    RowKind kind = RowKind::kToggle;
    int label = kNoText;
    int description = kNoText;
    std::vector<int> pages = {};
    int count = 1;
};

struct SettingCopy {
    const char* key;
    SettingsField field;
    const char* standard;  // the default, as the file has it
    const char* other;     // another value
    ValueRule rule;
    SliderRange range = {};  // of a number; its step, decimals and unit count if it has a slider
    ControlCopy control = {};

    bool isSwitch() const { return std::holds_alternative<bool Settings::*>(field); }
    bool isReal() const { return rule == ValueRule::kReal; }
};

// In the order of the file.
inline const std::vector<SettingCopy>& settingsCopy() {
    using S = Settings;
    using enum ValueRule;
    constexpr RowKind kSwitch = RowKind::kToggle, kSlider = RowKind::kSlider, kSelector = RowKind::kSelector;
    constexpr SliderRange kBinding = {0, 7, 0, 0, ""};
    constexpr SliderRange kShare = {0, 1, 0.05f, 2, ""};
    // clang-format off
    static const std::vector<SettingCopy> rows = {
        {"master",         &S::master,         "1",           "0",            kOffByWord,  {}, {6000, kSwitch, 13, 14, {0}}},
        {"nrSelf",         &S::nrSelf,         "0",           "1",            kOnByWord,   {}, {6031, kSwitch, 36, 37, {1}}},
        {"enabled",        &S::enabled,        "1",           "0",            kOffByWord,  {}, {6020, kSwitch, 19, 20, {0}}},
        {"radio",          &S::radio,          "COM1",        "COM2",         kSecond, {1, 2, 0, 0, ""}, {6040, RowKind::kOption, -1, -1, {2}, 2}},
        {"follow_volume",  &S::follow_volume,  "1",           "0",            kOffByWord,  {}, {6021, kSwitch, 21, 22, {0, 1}}},
        {"volume_min",     &S::volume_min,     "0",           "0.25",         kReal, kShare, {6024, kSlider, 30, -1, {1}}},
        {"volume_max",     &S::volume_max,     "1",           "0.75",         kReal, kShare, {6025, kSlider, 31, -1, {1}}},
        {"distort_self",   &S::distort_self,   "1",           "0",            kOffByWord,  {}, {6026, kSwitch, 23, -1, {0, 1}}},
        {"distort_others", &S::distort_others, "1",           "0",            kOffByWord,  {}, {6027, kSwitch, 24, -1, {0, 1}}},
        {"tail_self",      &S::tail_self,      "1",           "0",            kOffByWord,  {}, {6028, kSwitch, 25, -1, {0, 1}}},
        {"tail_others",    &S::tail_others,    "1",           "0",            kOffByWord,  {}, {6029, kSwitch, 26, -1, {0, 1}}},
        {"python",         &S::python,         "pythonw.exe", "C:\\My Python\\py.exe", kText},
        {"language",       &S::language,       "auto",        "zh-TW",        kText, {}, {5100, RowKind::kLanguage, -1, -1, {0}, kLanguageCount}},
        {"target",         &S::target,         "0",           "1",            kSecond, {0, 1, 0, 0, ""}, {6042, RowKind::kOption, -1, -1, {2}, 2}},
        {"theme",          &S::theme,          "0",           "2",            kWhole, {0, 2, 0, 0, ""}, {6002, RowKind::kChoice, 10, -1, {0}}},
        {"panel_scale",    &S::panel_scale,    "100",         "133.5",        kReal, {50, 200, 5, 0, "%"}, {6004, kSlider, 11, -1, {0}}},
        {"opacity",        &S::opacity,        "100",         "62.1235",      kReal, {30, 100, 1, 0, "%"}, {6003, kSlider, 12, -1, {0}}},
        {"receive_volume", &S::receive_volume, "80",          "33.3333",      kReal, {0, 100, 1, 0, "%"}, {6022, kSlider, 28, -1, {1}}},
        {"transmit_gain",  &S::transmit_gain,  "0",           "1e-05",        kReal, {0, 18, 1, 0, "dB"}, {6023, kSlider, 29, -1, {1}}},
        {"panel_visible",  &S::panel_visible,  "1",           "0",            kOffByDigit, {}, {6001, kSwitch, 15, 16, {0}}},
        {"pin",            &S::pin,            "0",           "1",            kOnByDigit,  {}, {6044, kSwitch, 40, 41, {2}}},
        {"equalize",       &S::equalize,       "0",           "1",            kOnByDigit,  {}, {6030, kSwitch, 34, 35, {1}}},
        {"panel_x",        &S::panel_x,        "80",          "-1920",        kPixel},
        {"panel_y",        &S::panel_y,        "80",          "-2147483648",  kPixel},
        {"radio_lamps",    &S::radio_lamps,    "1",           "0",            kOffByDigit, {}, {6045, kSwitch, 42, 43, {2}}},
        {"text_alert",     &S::text_alert,     "1",           "0",            kOffByDigit, {}, {6046, kSwitch, 45, 46, {2}}},
        {"text_auto_open", &S::text_auto_open, "1",           "0",            kOffByDigit, {}, {6047, kSwitch, 47, 48, {2}}},
        {"text_scale",     &S::text_scale,     "15",          "17.5",         kReal, {12, 22, 1, 0, "px"}, {6048, kSlider, 49, -1, {2}}},
        {"bind_A",         &S::bind_A,         "0",           "1",            kWhole, kBinding, {6060, kSelector, -1, -1, {2}}},
        {"bind_B",         &S::bind_B,         "0",           "2",            kWhole, kBinding, {6061, kSelector, -1, -1, {2}}},
        {"bind_C",         &S::bind_C,         "0",           "3",            kWhole, kBinding, {6062, kSelector, -1, -1, {2}}},
        {"bind_D",         &S::bind_D,         "0",           "4",            kWhole, kBinding, {6063, kSelector, -1, -1, {2}}},
        {"bind_E",         &S::bind_E,         "0",           "5",            kWhole, kBinding, {6064, kSelector, -1, -1, {2}}},
    };
    // clang-format on
    return rows;
}

// Puts a value from the copy into a record, without the product's reader.
inline void putValue(Settings& settings, const SettingCopy& copy, const std::string& value) {
    if (const auto* flag = std::get_if<bool Settings::*>(&copy.field)) settings.*(*flag) = value == "1";
    if (const auto* whole = std::get_if<std::int32_t Settings::*>(&copy.field))
        settings.*(*whole) =
            static_cast<std::int32_t>(std::strtol(value.c_str() + (value[0] == 'C' ? 3 : 0), nullptr, 10));
    if (const auto* real = std::get_if<float Settings::*>(&copy.field))
        settings.*(*real) = std::strtof(value.c_str(), nullptr);
    if (const auto* text = std::get_if<std::string Settings::*>(&copy.field)) settings.*(*text) = value;
}

// A record of the copy's defaults, or of its other values, where no field has its default.
inline Settings defaultSettings() {
    Settings settings;
    for (const SettingCopy& copy : settingsCopy()) putValue(settings, copy, copy.standard);
    return settings;
}
inline Settings otherSettings() {
    Settings settings;
    for (const SettingCopy& copy : settingsCopy()) putValue(settings, copy, copy.other);
    return settings;
}

// A field's number, whatever its type; 0 for a text or a switch.
inline double numberOf(const Settings& settings, const SettingCopy& copy) {
    if (const auto* whole = std::get_if<std::int32_t Settings::*>(&copy.field)) return settings.*(*whole);
    if (const auto* real = std::get_if<float Settings::*>(&copy.field)) return static_cast<double>(settings.*(*real));
    return 0.0;
}
