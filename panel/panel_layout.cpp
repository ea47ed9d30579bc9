#include "panel/panel_layout.h"
#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

// The rows of panel_tables.inc, theme by theme.
struct LayoutTables {
    struct ThemeRows {
        ThemeLayout layout{};
        std::array<PanelHotspot, 20> hotspots{};
        std::size_t hotspotCount = 0;

        constexpr void add(const PanelHotspot& hotspot) { hotspots[hotspotCount++] = hotspot; }
    };
    std::array<ThemeRows, kThemeCount> themes{};
};

constexpr LayoutTables readTables() {
    enum { GENERAL = kGeneralTheme, BOEING = kBoeingTheme, AIRBUS = kAirbusTheme };
    LayoutTables tables;
    auto& themes = tables.themes;
    // clang-format off
#define THEME(theme, x, y, w, h) \
    themes[theme].layout.origin = {x, y}; \
    themes[theme].layout.width = w; \
    themes[theme].layout.height = h;
#define DISPLAY(theme, field, x, y, w, h) themes[theme].layout.displays[field] = {x, y, w, h};
#define STRIP(theme, x, y, w, h) themes[theme].layout.statusStrip = {x, y, w, h};
#define LAMP_TX(layout) layout.txLamp
#define LAMP_RX(layout) layout.rxLamp
#define LAMP(theme, lamp, x, y, w, h, style) \
    LAMP_##lamp(themes[theme].layout) = {x, y, w, h}; \
    themes[theme].layout.lampStyle = style;
#define KEY(theme, id, x, y, w, h, round) themes[theme].add({id, {x, y, w, h}, round, {}, 0});
#define LIT_KEY(theme, id, x, y, w, h, round, lx, ly, lw, lh, style) \
    themes[theme].add({id, {x, y, w, h}, round, {lx, ly, lw, lh}, style});
#include "panel/panel_tables.inc"
#undef THEME
#undef DISPLAY
#undef STRIP
#undef LAMP_TX
#undef LAMP_RX
#undef LAMP
#undef KEY
#undef LIT_KEY
    // clang-format on
    return tables;
}

constexpr LayoutTables kTables = readTables();

constexpr ThemeLayout layoutOf(std::size_t theme) {
    const auto& rows = kTables.themes[theme];
    ThemeLayout layout = rows.layout;
    layout.hotspots = {rows.hotspots.data(), rows.hotspotCount};
    return layout;
}

constexpr std::array<ThemeLayout, kThemeCount> kLayouts = {layoutOf(kGeneralTheme), layoutOf(kBoeingTheme),
                                                           layoutOf(kAirbusTheme)};
static_assert(kLayouts[kGeneralTheme].hotspots.size() == 11);
static_assert(kLayouts[kBoeingTheme].hotspots.size() == 14);
static_assert(kLayouts[kAirbusTheme].hotspots.size() == 16);

// A coordinate around 2000 is a multiple of 1/8192 in a float: a point at the inner knob's very edge is still on it.
constexpr double kEdgeRounding = 1.0 / 4096.0;

bool isOnSmallKnob(const UnitRect& knob, UnitPoint point) {
    const double width = static_cast<double>(knob.width);
    const double height = static_cast<double>(knob.height);
    const double dx = static_cast<double>(point.x) - (static_cast<double>(knob.x) + width / 2.0);
    const double dy = static_cast<double>(point.y) - (static_cast<double>(knob.y) + height / 2.0);
    const double outerRadius = std::min(width, height) / 2.0;
    const double radius = static_cast<double>(kSmallKnobShare) * outerRadius + kEdgeRounding;
    return dx * dx + dy * dy <= radius * radius;
}

// The GENERAL theme's digit fields; kBackground when the point is in none of them.
PanelElement hitDigits(const ThemeLayout& layout, UnitPoint point) {
    const FrequencyCells active = layoutFrequency(layout.displays[0]);
    const FrequencyCells standby = layoutFrequency(layout.displays[1]);
    const struct {
        UnitRect rect;
        PanelElement element;
    } fields[] = {
        {active.mhzField, kActiveMhzDigits},    {active.channelField, kActiveChannelDigits},
        {standby.mhzField, kStandbyMhzDigits},  {standby.channelField, kStandbyChannelDigits},
        {active.pointField, kFrequencyDisplay}, {standby.pointField, kFrequencyDisplay},
    };
    for (const auto& field : fields)
        if (field.rect.contains(point)) return field.element;
    return kBackground;
}

}  // namespace

std::int32_t knownTheme(std::int32_t theme) {
    return theme >= 0 && theme < kThemeCount ? theme : std::int32_t{kGeneralTheme};
}

float usableScale(float scale) {
    return std::isfinite(scale) && scale > 0.0f ? scale : 1.0f;
}

const ThemeLayout& themeLayout(std::int32_t theme) {
    return kLayouts[static_cast<std::size_t>(knownTheme(theme))];
}

const PanelHotspot* findHotspot(const ThemeLayout& layout, std::int32_t id) {
    if (id == kSmallKnob) id = kLargeKnob;
    for (const PanelHotspot& hotspot : layout.hotspots)
        if (hotspot.id == id) return &hotspot;
    return nullptr;
}

FrequencyCells layoutFrequency(const UnitRect& display) {
    const float height = display.height * 0.68f;
    const float width = height * 0.53f;
    const float gap = width * 0.23f;
    const float pointWidth = width * 0.26f;
    const float whole = 6.0f * (width + gap) + pointWidth;
    const float y = display.y + (display.height - height) / 2.0f;
    float x = display.x + (display.width - whole) / 2.0f;

    FrequencyCells cells;
    const auto place = [&](UnitRect& cell, float cellWidth) {
        cell = {x, y, cellWidth, height};
        x += cellWidth + gap;
    };
    const float left = x;
    for (std::size_t i = 0; i < 3; i++) place(cells.digits[i], width);
    const float pointLeft = x;
    place(cells.point, pointWidth);
    const float channelLeft = x;
    for (std::size_t i = 3; i < 6; i++) place(cells.digits[i], width);
    cells.mhzField = {left, y, pointLeft - left, height};
    cells.pointField = {pointLeft, y, channelLeft - pointLeft, height};
    cells.channelField = {channelLeft, y, x - gap - channelLeft, height};
    return cells;
}

UnitPoint panel_to_logical(std::int32_t theme, float scale, int clientX, int clientY) {
    const UnitPoint origin = themeLayout(theme).origin;
    const float factor = usableScale(scale);
    return {static_cast<float>(clientX) / factor + origin.x, static_cast<float>(clientY) / factor + origin.y};
}

PanelElement hit_test(std::int32_t theme, UnitPoint point) {
    const ThemeLayout& layout = themeLayout(theme);
    for (const PanelHotspot& hotspot : layout.hotspots) {
        if (!hotspot.rect.contains(point)) continue;
        if (hotspot.id != kLargeKnob) return static_cast<PanelElement>(hotspot.id);
        return isOnSmallKnob(hotspot.rect, point) ? kSmallKnob : kLargeKnob;
    }
    if (&layout == &kLayouts[kGeneralTheme])
        if (const PanelElement digits = hitDigits(layout, point); digits != kBackground) return digits;
    for (const UnitRect& display : layout.displays)
        if (display.contains(point)) return kFrequencyDisplay;
    return kBackground;
}
