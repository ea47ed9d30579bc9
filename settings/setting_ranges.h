// setting_ranges.h - the ranges of the numbers in a Settings record, for the file's reader and the dialog's sliders.
#pragma once

// Both ends are included.
struct SettingRange {
    float min = 0.0f;
    float max = 0.0f;
};

inline constexpr SettingRange kFractionRange{0.0f, 1.0f};         // volume_min, volume_max
inline constexpr SettingRange kThemeRange{0.0f, 2.0f};            // theme
inline constexpr SettingRange kPanelScaleRange{50.0f, 200.0f};    // percent
inline constexpr SettingRange kOpacityRange{30.0f, 100.0f};       // percent
inline constexpr SettingRange kReceiveVolumeRange{0.0f, 100.0f};  // percent
inline constexpr SettingRange kTransmitGainRange{0.0f, 18.0f};    // dB
inline constexpr SettingRange kTextScaleRange{12.0f, 22.0f};      // pixels at 96 DPI
inline constexpr SettingRange kBindingRange{0.0f, 7.0f};          // action codes of the custom keys
