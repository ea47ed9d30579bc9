// shapes.h - outlines as signed distances: below 0 inside, above 0 outside, in the caller's units (pixels here). One
// number serves the filled shape with its smooth edge, its outline and the glow around it. Pure functions.
#pragma once
#include <span>
#include "ui/argb_image.h"
#include "ui/geometry.h"

float roundedRectDistance(const UnitRect& rect, float radius, UnitPoint point);
// Of the inscribed ellipse; exact for a circle and on the outline.
float ellipseDistance(const UnitRect& rect, UnitPoint point);
// Of a convex polygon, its corners in either direction of rotation; very large when there are none.
float convexDistance(std::span<const UnitPoint> corners, UnitPoint point);

// How much of a pixel at this distance lies inside, 0..1.
float coverageOf(float distance);

// The whole pixels that cover a rectangle widened by margin on every side.
PixelRect pixelsAround(const UnitRect& rect, float margin);

// Calls paint(x, y, point) for every pixel of the rectangle; the point is the pixel's centre.
template <class Paint>
void forEachPixel(const PixelRect& rect, Paint paint) {
    for (std::int32_t y = rect.top; y < rect.bottom; y++) {
        for (std::int32_t x = rect.left; x < rect.right; x++)
            paint(x, y, UnitPoint{static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f});
    }
}
