// message_geometry.h - the message window's place on the screen and the areas of it that the mouse knows. Pure
// functions.
#pragma once
#include <cstdint>
#include "ui/screen_rect.h"

// The window in design pixels: screen pixels at 96 DPI.
inline constexpr std::int32_t kMessageWidth = 620;
inline constexpr std::int32_t kMessageHeight = 400;
inline constexpr float kHeaderHeight = 44.0f;

// Screen pixels a design pixel; an unknown DPI (0) counts as 96.
inline float messageScale(std::uint32_t dpi) {
    return static_cast<float>(dpi == 0 ? 96 : dpi) / 96.0f;
}

// Under the middle of the panel, a gap below it, within the work area of the panel's monitor; dpi is the panel's. What
// is larger than the work area begins at its left and top.
ScreenRect placeMessageWindow(const ScreenRect& panel, const ScreenRect& workArea, std::uint32_t dpi);
// Where there is no panel: near the lower right corner of a screen of that size, not scaled.
ScreenRect placeMessageWindow(std::int32_t screenWidth, std::int32_t screenHeight);

// Client pixels.
struct PagePoint {
    std::int32_t x = 0;
    std::int32_t y = 0;
};
bool isOnCloseButton(PagePoint at, std::int32_t windowWidth, std::uint32_t dpi);
// Where a press moves the window.
bool isOnHeader(PagePoint at, std::uint32_t dpi);
