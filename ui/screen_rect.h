// screen_rect.h - a rectangle of the screen.
#pragma once
#include <cstdint>

// Screen pixels; may be negative on a monitor left of or above the first.
struct ScreenRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;  // exclusive
    std::int32_t bottom = 0;

    bool operator==(const ScreenRect&) const = default;
};
