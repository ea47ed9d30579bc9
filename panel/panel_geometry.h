// panel_geometry.h - where on the screen the panel is, how large and how opaque. Pure functions; screen pixels.
#pragma once
#include <cstdint>
#include "settings/settings.h"
#include "ui/geometry.h"

struct PanelPlacement {
    float scale = 1.0f;  // pixels per logical unit, above 0
    std::int32_t x = 0;  // of the window's top left corner; may be negative
    std::int32_t y = 0;
    std::int32_t width = 1;  // pixels, at least 1
    std::int32_t height = 1;
    std::uint8_t alpha = 255;  // constant alpha of the whole window

    bool operator==(const PanelPlacement&) const = default;
};

// The panel of settings.theme on the monitor with this work area and DPI (0: unknown, taken as 96): panel_scale percent
// of 900 pixels at 96 DPI, no larger than fits; the stored position, moved into the work area. A work area without size
// (some remote sessions report one) limits nothing, so the panel keeps its wanted size.
PanelPlacement placePanel(const Settings& settings, const PixelRect& workArea, std::uint32_t dpi);

// The same while the pilot moves it onto a monitor with this work area and DPI: as large as it will be there, at the
// place where the system holds it below the mouse, which may be partly outside.
PanelPlacement placeMovedPanel(const Settings& settings, const PixelRect& workArea, std::uint32_t dpi, PixelPoint at);
