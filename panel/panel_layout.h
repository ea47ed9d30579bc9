// panel_layout.h - where everything is on the radio panel, and what lies under a point. Lengths are logical units, the
// pixels of the theme's artwork, y down; static data (panel_tables.inc) and pure functions.
#pragma once
#include <array>
#include <cstdint>
#include <span>
#include "ui/geometry.h"

enum Theme : std::int32_t {
    kGeneralTheme = 0,
    kBoeingTheme = 1,
    kAirbusTheme = 2,
};
inline constexpr int kThemeCount = 3;

enum PanelElement : std::int32_t {
    kBackground = 0,  // pressing it drags the window
    kSwapKey = 1,
    kCom1Key = 2,
    kCom2Key = 3,
    kActiveKey = 4,   // target ACTIVE
    kStandbyKey = 5,  // target STANDBY
    kAutoKey = 6,
    kVolumeKnob = 7,
    kSmallKnob = 8,  // inner tuning knob, within kLargeKnob's rectangle
    kLargeKnob = 9,  // outer tuning knob
    kPinKey = 10,    // always on top
    kSettingsKey = 11,
    kMinimizeKey = 12,
    kUnassignedKey = 13,
    kCustomKeyA = 14,  // TEXT key of BOEING and AIRBUS
    kCustomKeyB = 15,
    kCustomKeyC = 16,
    kCustomKeyD = 17,
    kCustomKeyE = 18,
    kActiveMhzDigits = 19,  // the four digit fields: GENERAL only
    kActiveChannelDigits = 20,
    kStandbyMhzDigits = 21,
    kStandbyChannelDigits = 22,
    kFrequencyDisplay = 23,  // outside the digit fields
    kTextKey = 24,           // GENERAL
};

enum IndicatorStyle : std::int32_t {
    kLightBar = 0,
    kSquareLamp = 1,
    kRoundLamp = 2,
};

struct PanelHotspot {
    std::int32_t id;  // PanelElement
    UnitRect rect;
    bool round;          // the outline is the inscribed ellipse; otherwise a rectangle with corners of kKeyRadius
    UnitRect indicator;  // all 0 if there is none
    std::int32_t indicatorStyle;
};
inline constexpr float kKeyRadius = 8.0f;

struct ThemeLayout {
    UnitPoint origin;  // top left corner of the visible area within the artwork
    float width;       // of the visible area
    float height;
    std::array<UnitRect, 2> displays;        // ACTIVE, STANDBY
    std::span<const PanelHotspot> hotspots;  // in the order they are hit
    UnitRect statusStrip;                    // both status lines, side by side
    UnitRect txLamp;
    UnitRect rxLamp;
    std::int32_t lampStyle;  // of the two lamps, IndicatorStyle
};

// The theme itself, GENERAL for an unknown one.
std::int32_t knownTheme(std::int32_t theme);

// The layout of a theme; GENERAL's for an unknown one.
const ThemeLayout& themeLayout(std::int32_t theme);

// The hotspot with this id, null when the theme has none. The small knob has the large one's.
const PanelHotspot* findHotspot(const ThemeLayout& layout, std::int32_t id);

// One frequency's six digits and point, centred in its display rectangle: d d d . d d d.
struct FrequencyCells {
    std::array<UnitRect, 6> digits;
    UnitRect point;
    UnitRect mhzField;      // first cell to the gap after the third
    UnitRect pointField;    // the point with its gap
    UnitRect channelField;  // the rest
};
FrequencyCells layoutFrequency(const UnitRect& display);

// The scale itself; 1 for one that is not a number above 0.
float usableScale(float scale);

// A point of the window's client area (signed pixels) as artwork units; scale is client pixels per unit (usableScale).
UnitPoint panel_to_logical(std::int32_t theme, float scale, int clientX, int clientY);

// The inner tuning knob's radius as a share of the outer one's, which is half the shorter side of the rectangle.
inline constexpr float kSmallKnobShare = 0.46f;

// What lies under the point; the first hotspot in list order, then (GENERAL) the digits, then the displays.
PanelElement hit_test(std::int32_t theme, UnitPoint point);
