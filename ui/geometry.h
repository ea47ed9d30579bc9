// geometry.h - points, sizes and rectangles of every window: in whole pixels, and as floats in design units.
// y grows downwards. Values; nothing here allocates or throws.
#pragma once
#include <cstdint>

// Of the client area or of the screen; negative on a monitor left of or above the first.
struct PixelPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;

    bool operator==(const PixelPoint&) const = default;
};

struct PixelSize {
    std::int32_t width = 0;
    std::int32_t height = 0;

    bool operator==(const PixelSize&) const = default;
};

struct PixelRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;   // exclusive
    std::int32_t bottom = 0;  // exclusive

    bool operator==(const PixelRect&) const = default;
    bool isEmpty() const { return left >= right || top >= bottom; }
    std::int32_t width() const { return right - left; }
    std::int32_t height() const { return bottom - top; }
    // The left and top edges are inside, the right and bottom edges outside.
    bool contains(PixelPoint point) const {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
};

PixelRect intersectRects(const PixelRect& a, const PixelRect& b);
// The smallest rectangle around both; an empty one adds nothing.
PixelRect uniteRects(const PixelRect& a, const PixelRect& b);

// Lengths of a design: the panel's artwork, or a window's pixels at 96 DPI.
struct UnitPoint {
    float x = 0.0f;
    float y = 0.0f;
};

struct UnitRect {
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;

    bool operator==(const UnitRect&) const = default;
    // The left and top edges are inside, the right and bottom edges outside.
    bool contains(UnitPoint point) const {
        return point.x >= x && point.x < x + width && point.y >= y && point.y < y + height;
    }
};
