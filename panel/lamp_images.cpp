#include "panel/lamp_images.h"
#include <algorithm>
#include <cmath>
#include "ui/shapes.h"

namespace {

constexpr float kLampGlowReach = 22.0f;  // logical units from the glass to where the glow ends
constexpr float kLampGlowStrength = 0.42f;
constexpr float kIconBrightness = 225.0f;  // 0..255: of an icon's or legend's paint in the artwork
constexpr float kHotShare = 0.62f;         // how near to white the middle of the glass is
constexpr float kBarRadius = 3.0f;         // logical units, corners
constexpr float kSquareRadius = 3.5f;

float lampDistance(const UnitRect& lamp, std::int32_t style, float scale, UnitPoint point) {
    if (style == kRoundLamp) return ellipseDistance(lamp, point);
    return roundedRectDistance(lamp, (style == kSquareLamp ? kSquareRadius : kBarRadius) * scale, point);
}

std::uint32_t mixTowardsWhite(std::uint32_t argb, float share) {
    std::uint32_t mixed = 0xFF000000;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        const auto channel = static_cast<float>(argb >> shift & 0xFFU);
        mixed |= nearestWhole(channel + (255.0f - channel) * share) << shift;
    }
    return mixed;
}

// Light has colour and no alpha: it adds to what it falls on.
std::uint32_t lightOf(std::uint32_t argb, float strength) {
    return premultiplied(argb, strength) & 0x00FFFFFFU;
}

std::uint32_t dimmed(std::uint32_t argb, float light) {
    return 0xFF000000 | (premultiplied(argb, light) & 0x00FFFFFFU);
}

float glowAt(float distance, float reach) {
    const float share = std::clamp(1.0f - std::max(distance, 0.0f) / reach, 0.0f, 1.0f);
    return kLampGlowStrength * share * share * share;
}

}  // namespace

PlacedImage makeLitLamp(const UnitRect& lamp, std::int32_t style, std::uint32_t colour, float scale) {
    const float reach = std::max(1.0f, kLampGlowReach * scale);
    const PixelRect area = pixelsAround(lamp, reach);
    PlacedImage lit{ArgbImage(area.right - area.left, area.bottom - area.top), area.left, area.top};
    if (lit.image.isEmpty()) return lit;
    const float depth = std::max(1.0f, std::min(lamp.width, lamp.height) / 2.0f);
    forEachPixel(area, [&](std::int32_t x, std::int32_t y, UnitPoint point) {
        const float distance = lampDistance(lamp, style, scale, point);
        const float inside = std::clamp(-distance / depth, 0.0f, 1.0f);
        const std::uint32_t glass = premultiplied(mixTowardsWhite(colour, kHotShare * inside), coverageOf(distance));
        lit.image.row(y - area.top)[x - area.left] = blendOver(lightOf(colour, glowAt(distance, reach)), glass);
    });
    return lit;
}

ArgbImage tintIcon(const ArgbImage& key, std::uint32_t colour) {
    ArgbImage tinted = key;
    for (std::uint32_t& pixel : tinted.pixels) {
        const std::uint32_t brightest = std::max({pixel >> 16U & 0xFFU, pixel >> 8U & 0xFFU, pixel & 0xFFU});
        // Key caps are dark, below a third of full brightness; icons are bright.
        const float share = std::clamp((static_cast<float>(brightest) - 80.0f) / 90.0f, 0.0f, 1.0f);
        // As bright as it was: at small sizes the ground between two strokes is what keeps them apart.
        const std::uint32_t tint = dimmed(colour, std::min(static_cast<float>(brightest) / kIconBrightness, 1.0f));
        pixel = blendOver(pixel, premultiplied(tint, share * static_cast<float>(pixel >> 24U) / 255.0f));
    }
    return tinted;
}
