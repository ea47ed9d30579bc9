// message_geometry.h - the message window's place on the screen and the areas of it that the mouse knows. Pure
// functions.
#pragma once
#include <cstdint>
#include "ui/geometry.h"

// The window in design pixels: screen pixels at 96 DPI.
inline constexpr std::int32_t kMessageWidth = 620;
inline constexpr std::int32_t kMessageHeight = 400;
inline constexpr float kHeaderHeight = 44.0f;

// Screen pixels per design pixel; an unknown DPI (0) counts as 96.
inline float messageScale(std::uint32_t dpi) {
    return static_cast<float>(dpi == 0 ? 96 : dpi) / 96.0f;
}

// Centred under the panel, a gap below it, within the work area of the panel's monitor; dpi is the panel's. A window
// larger than the work area begins at its top left corner.
PixelRect placeMessageWindow(const PixelRect& panel, const PixelRect& workArea, std::uint32_t dpi);
// Where there is no panel: near the lower right corner of a screen of that size, not scaled.
PixelRect placeMessageWindow(std::int32_t screenWidth, std::int32_t screenHeight);

// A point in client pixels.
bool isOnCloseButton(PixelPoint at, std::int32_t windowWidth, std::uint32_t dpi);
// Where a press moves the window.
bool isOnHeader(PixelPoint at, std::uint32_t dpi);
