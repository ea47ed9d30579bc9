#include "ui/shapes.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr float kFar = 1e9f;

}  // namespace

float roundedRectDistance(const UnitRect& rect, float radius, UnitPoint point) {
    const float halfWidth = rect.width / 2.0f;
    const float halfHeight = rect.height / 2.0f;
    const float corner = std::min({radius, halfWidth, halfHeight});
    const float dx = std::fabs(point.x - rect.x - halfWidth) - halfWidth + corner;
    const float dy = std::fabs(point.y - rect.y - halfHeight) - halfHeight + corner;
    const float outside = std::hypot(std::max(dx, 0.0f), std::max(dy, 0.0f));
    return outside + std::min(std::max(dx, dy), 0.0f) - corner;
}

float ellipseDistance(const UnitRect& rect, UnitPoint point) {
    const float radiusX = rect.width / 2.0f;
    const float radiusY = rect.height / 2.0f;
    if (!(radiusX > 0.0f) || !(radiusY > 0.0f)) return std::hypot(point.x - rect.x, point.y - rect.y);
    const float dx = point.x - rect.x - radiusX;
    const float dy = point.y - rect.y - radiusY;
    const float share = std::hypot(dx / radiusX, dy / radiusY);
    if (share < 1e-6f) return -std::min(radiusX, radiusY);
    const float slope = std::hypot(dx / (radiusX * radiusX), dy / (radiusY * radiusY));
    return (share - 1.0f) * share / slope;
}

float convexDistance(std::span<const UnitPoint> corners, UnitPoint point) {
    float area = 0.0f;
    for (std::size_t i = 0; i < corners.size(); i++) {
        const UnitPoint& to = corners[(i + 1) % corners.size()];
        area += corners[i].x * to.y - corners[i].y * to.x;
    }
    const float outward = area < 0.0f ? -1.0f : 1.0f;
    float deepest = -kFar;  // to the lines the edges lie on: the answer inside
    float nearest = kFar;   // to the edges themselves: the answer outside
    for (std::size_t i = 0; i < corners.size(); i++) {
        const UnitPoint& from = corners[i];
        const UnitPoint& to = corners[(i + 1) % corners.size()];
        const UnitPoint edge = {to.x - from.x, to.y - from.y};
        const UnitPoint offset = {point.x - from.x, point.y - from.y};
        const float length = std::hypot(edge.x, edge.y);
        if (!(length > 0.0f)) continue;
        deepest = std::max(deepest, outward * (offset.x * edge.y - offset.y * edge.x) / length);
        const float along = std::clamp((offset.x * edge.x + offset.y * edge.y) / (length * length), 0.0f, 1.0f);
        nearest = std::min(nearest, std::hypot(offset.x - along * edge.x, offset.y - along * edge.y));
    }
    return deepest > 0.0f || nearest == kFar ? nearest : deepest;
}

float coverageOf(float distance) {
    return std::clamp(0.5f - distance, 0.0f, 1.0f);
}

PixelRect pixelsAround(const UnitRect& rect, float margin) {
    return {static_cast<std::int32_t>(std::floor(rect.x - margin)),
            static_cast<std::int32_t>(std::floor(rect.y - margin)),
            static_cast<std::int32_t>(std::ceil(rect.x + rect.width + margin)),
            static_cast<std::int32_t>(std::ceil(rect.y + rect.height + margin))};
}
