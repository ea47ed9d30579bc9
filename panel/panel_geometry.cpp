#include "panel/panel_geometry.h"
#include <algorithm>
#include <cmath>
#include <limits>
#include "panel/panel_layout.h"

namespace {

constexpr double kPanelPixels = 900.0;  // width at 96 DPI and 100 percent
constexpr double kDefaultDpi = 96.0;
constexpr double kMinScale = 1.0e-4;      // a panel of one pixel
constexpr double kMaxSidePixels = 16384;  // beyond any screen; keeps a nonsense DPI from asking for gigabytes

// 64 bits: a rectangle's edges may lie at both ends of the 32-bit range.
std::int64_t widthOf(const PixelRect& rect) {
    return std::int64_t{rect.right} - rect.left;
}

std::int64_t heightOf(const PixelRect& rect) {
    return std::int64_t{rect.bottom} - rect.top;
}

bool hasSize(const PixelRect& rect) {
    return widthOf(rect) > 0 && heightOf(rect) > 0;
}

double percentOr(float percent, double fallback) {
    return std::isfinite(percent) && percent > 0.0f ? static_cast<double>(percent) : fallback;
}

double wantedScale(const ThemeLayout& layout, float panelScale, std::uint32_t dpi) {
    const double pixels = (dpi == 0 ? kDefaultDpi : dpi) * (percentOr(panelScale, 100.0) * kPanelPixels / 100.0);
    return pixels / kDefaultDpi / static_cast<double>(layout.width);
}

double fitScale(const ThemeLayout& layout, const PixelRect& area) {
    return std::min(static_cast<double>(widthOf(area)) / static_cast<double>(layout.width),
                    static_cast<double>(heightOf(area)) / static_cast<double>(layout.height));
}

// Rounded up, except for an excess that is only the division's rounding error.
std::int32_t pixelsOf(float units, double scale) {
    return std::max(1, static_cast<std::int32_t>(std::ceil(static_cast<double>(units) * scale - 1.0e-6)));
}

// The stored coordinate, moved back if the panel's end passes the area's end, else forward to the area's start.
std::int32_t moveInto(std::int32_t stored, std::int32_t start, std::int32_t end, std::int32_t size) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t last = std::int64_t{end} - size;
    const std::int64_t moved = stored > last ? last : std::int64_t{std::max(stored, start)};
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(moved, Limits::min(), Limits::max()));
}

// 50 percent gives 128: halves round up.
std::uint8_t alphaOf(float opacity) {
    if (!std::isfinite(opacity)) return 255;
    const double percent = std::clamp(static_cast<double>(opacity), 0.0, 100.0);
    return static_cast<std::uint8_t>(std::floor(percent * 255.0 / 100.0 + 0.5));
}

}  // namespace

PanelPlacement placePanel(const Settings& settings, const PixelRect& workArea, std::uint32_t dpi) {
    const ThemeLayout& layout = themeLayout(settings.theme);
    double scale = wantedScale(layout, settings.panel_scale, dpi);
    if (hasSize(workArea)) scale = std::min(scale, fitScale(layout, workArea));
    scale = std::clamp(scale, kMinScale, kMaxSidePixels / static_cast<double>(std::max(layout.width, layout.height)));

    PanelPlacement placement;
    placement.scale = static_cast<float>(scale);
    placement.width = pixelsOf(layout.width, scale);
    placement.height = pixelsOf(layout.height, scale);
    placement.x = settings.panel_x;
    placement.y = settings.panel_y;
    if (hasSize(workArea)) {
        placement.x = moveInto(settings.panel_x, workArea.left, workArea.right, placement.width);
        placement.y = moveInto(settings.panel_y, workArea.top, workArea.bottom, placement.height);
    }
    placement.alpha = alphaOf(settings.opacity);
    return placement;
}

PanelPlacement placeMovedPanel(const Settings& settings, const PixelRect& workArea, std::uint32_t dpi, PixelPoint at) {
    PanelPlacement placement = placePanel(settings, workArea, dpi);
    placement.x = at.x;
    placement.y = at.y;
    return placement;
}
