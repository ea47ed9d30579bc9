// settings_ranges.h - what must hold of every record read from a file, whatever its bytes. For unit tests and fuzzing.
#pragma once
#include <string>
#include "settings/settings.h"

// The first field that is out of its range; empty if all are within.
inline std::string fieldOutOfRange(const Settings& s) {
    const struct {
        const char* name;
        double value, min, max;
    } rows[] = {{"radio", static_cast<double>(s.radio), 1, 2},
                {"volume_min", s.volume_min, 0, 1},
                {"volume_max", s.volume_max, s.volume_min, 1},
                {"target", static_cast<double>(s.target), 0, 1},
                {"theme", static_cast<double>(s.theme), 0, 2},
                {"panel_scale", s.panel_scale, 50, 200},
                {"opacity", s.opacity, 30, 100},
                {"receive_volume", s.receive_volume, 0, 100},
                {"transmit_gain", s.transmit_gain, 0, 18},
                {"text_scale", s.text_scale, 12, 22},
                {"bind_A", static_cast<double>(s.bind_A), 0, 7},
                {"bind_B", static_cast<double>(s.bind_B), 0, 7},
                {"bind_C", static_cast<double>(s.bind_C), 0, 7},
                {"bind_D", static_cast<double>(s.bind_D), 0, 7},
                {"bind_E", static_cast<double>(s.bind_E), 0, 7}};
    for (const auto& row : rows)
        if (!(row.value >= row.min && row.value <= row.max)) return row.name;
    if (s.python.empty()) return "python";
    if (s.language.empty()) return "language";
    return {};
}
