// settings_ranges.h - what must hold for every record read from a file, whatever its bytes. For unit tests and fuzzing.
#pragma once
#include <string>
#include "tests/unit/settings/settings_copy.h"

// The first field that is out of its range; empty if all are within.
inline std::string fieldOutOfRange(const Settings& settings) {
    for (const SettingCopy& copy : settingsCopy()) {
        const auto* text = std::get_if<std::string Settings::*>(&copy.field);
        if (text && (settings.*(*text)).empty()) return copy.key;
        if (text || copy.isSwitch() || copy.rule == ValueRule::kPixel) continue;
        const double value = numberOf(settings, copy);
        const bool isWithin =
            value >= static_cast<double>(copy.range.min) && value <= static_cast<double>(copy.range.max);
        if (!isWithin) return copy.key;  // also if it is not a number
    }
    return settings.volume_min <= settings.volume_max ? "" : "volume_max";
}
