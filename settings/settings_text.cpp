#include "settings/settings_text.h"
#include <algorithm>
#include <iterator>
#include <utility>
#include "base/number_text.h"
#include "settings/setting_ranges.h"

namespace {

// Which values of a flag count as off and which as on. The rules differ from key to key, and existing files rely on
// each of them.
enum class FlagRule {
    kOffByWord,   // "0" and "false" are off, anything else is on
    kOffByDigit,  // "0" is off, anything else is on ("false" too)
    kOnByWord,    // "1" and "true" are on, anything else is off
    kOnByDigit,   // "1" is on, anything else is off ("true" too)
};

bool readFlag(FlagRule rule, std::string_view value) {
    switch (rule) {
        case FlagRule::kOffByWord:
            return value != "0" && value != "false";
        case FlagRule::kOffByDigit:
            return value != "0";
        case FlagRule::kOnByWord:
            return value == "1" || value == "true";
        case FlagRule::kOnByDigit:
            break;
    }
    return value == "1";
}

struct Range {
    consteval Range(double low, double high) : min(low), max(high) {}
    consteval Range(const SettingRange& range) : Range(double{range.min}, double{range.max}) {}
    double min;
    double max;
};

constexpr Range kAnyPixel{-2147483648.0, 2147483647.0};

// One line of the file: exactly one of the field pointers is set.
struct SettingRow {
    std::string_view key;
    bool Settings::*flag = nullptr;
    std::int32_t Settings::*whole = nullptr;
    float Settings::*real = nullptr;
    std::string Settings::*text = nullptr;
    FlagRule rule = FlagRule::kOffByWord;  // flags
    Range range{0, 0};                     // whole and real numbers
    bool isChoice = false;                 // a whole number with two values: range.max if named, else range.min
    std::string_view prefix{};             // comes before a choice's number ("COM1", "COM2")
    std::string_view insteadOfEmpty{};     // texts
};

consteval SettingRow flagRow(std::string_view key, FlagRule rule, bool Settings::*field) {
    SettingRow row{key};
    row.flag = field;
    row.rule = rule;
    return row;
}
consteval SettingRow wholeRow(std::string_view key, std::int32_t Settings::*field, Range range) {
    SettingRow row{key};
    row.whole = field;
    row.range = range;
    return row;
}
consteval SettingRow choiceRow(std::string_view key, std::int32_t Settings::*field, Range range,
                               std::string_view prefix) {
    SettingRow row = wholeRow(key, field, range);
    row.isChoice = true;
    row.prefix = prefix;
    return row;
}
consteval SettingRow realRow(std::string_view key, float Settings::*field, Range range) {
    SettingRow row{key};
    row.real = field;
    row.range = range;
    return row;
}
consteval SettingRow textRow(std::string_view key, std::string Settings::*field, std::string_view insteadOfEmpty) {
    SettingRow row{key};
    row.text = field;
    row.insteadOfEmpty = insteadOfEmpty;
    return row;
}

using S = Settings;

// Every key, in the order written. A key's writer, its reader's rule and its range are in its row.
// clang-format off
constexpr SettingRow kRows[] = {
    flagRow  ("master",         FlagRule::kOffByWord,  &S::master),
    flagRow  ("nrSelf",         FlagRule::kOnByWord,   &S::nrSelf),
    flagRow  ("enabled",        FlagRule::kOffByWord,  &S::enabled),
    choiceRow("radio",          &S::radio,            {1, 2}, "COM"),
    flagRow  ("follow_volume",  FlagRule::kOffByWord,  &S::follow_volume),
    realRow  ("volume_min",     &S::volume_min,       kFractionRange),
    realRow  ("volume_max",     &S::volume_max,       kFractionRange),
    flagRow  ("distort_self",   FlagRule::kOffByWord,  &S::distort_self),
    flagRow  ("distort_others", FlagRule::kOffByWord,  &S::distort_others),
    flagRow  ("tail_self",      FlagRule::kOffByWord,  &S::tail_self),
    flagRow  ("tail_others",    FlagRule::kOffByWord,  &S::tail_others),
    textRow  ("python",         &S::python,           "pythonw.exe"),
    textRow  ("language",       &S::language,         "auto"),
    choiceRow("target",         &S::target,           {0, 1}, ""),
    wholeRow ("theme",          &S::theme,            kThemeRange),
    realRow  ("panel_scale",    &S::panel_scale,      kPanelScaleRange),
    realRow  ("opacity",        &S::opacity,          kOpacityRange),
    realRow  ("receive_volume", &S::receive_volume,   kReceiveVolumeRange),
    realRow  ("transmit_gain",  &S::transmit_gain,    kTransmitGainRange),
    flagRow  ("panel_visible",  FlagRule::kOffByDigit, &S::panel_visible),
    flagRow  ("pin",            FlagRule::kOnByDigit,  &S::pin),
    flagRow  ("equalize",       FlagRule::kOnByDigit,  &S::equalize),
    wholeRow ("panel_x",        &S::panel_x,          kAnyPixel),
    wholeRow ("panel_y",        &S::panel_y,          kAnyPixel),
    flagRow  ("radio_lamps",    FlagRule::kOffByDigit, &S::radio_lamps),
    flagRow  ("text_alert",     FlagRule::kOffByDigit, &S::text_alert),
    flagRow  ("text_auto_open", FlagRule::kOffByDigit, &S::text_auto_open),
    realRow  ("text_scale",     &S::text_scale,       kTextScaleRange),
    wholeRow ("bind_A",         &S::bind_A,           kBindingRange),
    wholeRow ("bind_B",         &S::bind_B,           kBindingRange),
    wholeRow ("bind_C",         &S::bind_C,           kBindingRange),
    wholeRow ("bind_D",         &S::bind_D,           kBindingRange),
    wholeRow ("bind_E",         &S::bind_E,           kBindingRange),
};
// clang-format on
static_assert(std::size(kRows) == 33);

// A number below the range or not a number at all gives the lower bound.
double clampToRange(double value, Range range) {
    if (!(value >= range.min)) return range.min;
    return std::min(value, range.max);
}

std::int32_t readWhole(const SettingRow& row, std::string_view value) {
    if (!row.isChoice) return static_cast<std::int32_t>(clampToRange(leadingInt(value), row.range));
    const auto upper = std::string(row.prefix) + formatGeneral(row.range.max);
    return static_cast<std::int32_t>(value == upper ? row.range.max : row.range.min);
}

void readValue(const SettingRow& row, std::string_view value, Settings& settings) {
    if (row.flag) settings.*row.flag = readFlag(row.rule, value);
    if (row.whole) settings.*row.whole = readWhole(row, value);
    if (row.real) settings.*row.real = static_cast<float>(clampToRange(leadingDouble(value), row.range));
    if (row.text) settings.*row.text = value.empty() ? row.insteadOfEmpty : value;
}

std::string writeValue(const SettingRow& row, const Settings& settings) {
    if (row.flag) return settings.*row.flag ? "1" : "0";
    if (row.whole) return std::string(row.prefix) + std::to_string(settings.*row.whole);
    if (row.real) return formatGeneral(settings.*row.real);
    return settings.*row.text;
}

void readLine(std::string_view line, Settings& settings) {
    if (line.empty() || line.front() == '[') return;
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) return;
    const auto key = line.substr(0, equals);
    auto value = line.substr(equals + 1);
    value = value.substr(0, value.find_last_not_of("\r\n ") + 1);  // npos + 1 is 0: nothing but blanks
    const auto* row = std::find_if(std::begin(kRows), std::end(kRows), [&](const auto& r) { return r.key == key; });
    if (row != std::end(kRows)) readValue(*row, value, settings);
}

}  // namespace

std::string writeSettingsText(const Settings& settings) {
    std::string text = "[Hopline]\r\n";
    for (const auto& row : kRows) {
        text += row.key;
        text += '=';
        text += writeValue(row, settings);
        text += "\r\n";
    }
    return text;
}

Settings readSettingsText(std::string_view text) {
    Settings settings;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        readLine(text.substr(0, end), settings);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (settings.volume_min > settings.volume_max) std::swap(settings.volume_min, settings.volume_max);
    return settings;
}
