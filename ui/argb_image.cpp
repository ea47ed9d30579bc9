#include "ui/argb_image.h"
#include <algorithm>
#include <cstring>

ArgbImage::ArgbImage(std::int32_t imageWidth, std::int32_t imageHeight) {
    if (imageWidth < 1 || imageHeight < 1) return;
    width = imageWidth;
    height = imageHeight;
    pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
}

ArgbView viewOf(ArgbImage& image) {
    return {image.pixels.data(), image.width, image.height};
}

std::uint32_t premultiplied(std::uint32_t argb, float opacity) {
    const float alpha = std::clamp(opacity, 0.0f, 1.0f) * static_cast<float>(argb >> 24U) / 255.0f;
    const auto channel = [&](unsigned shift) {
        return nearestWhole(static_cast<float>(argb >> shift & 0xFFU) * alpha) << shift;
    };
    return nearestWhole(alpha * 255.0f) << 24U | channel(16) | channel(8) | channel(0);
}

void copyPixels(const ArgbView& target, const ArgbImage& source, const PixelRect& rect) {
    const PixelRect area = intersectRects(intersectRects(rect, target.bounds()), source.bounds());
    if (area.isEmpty()) return;
    const auto bytes = static_cast<std::size_t>(area.right - area.left) * sizeof(std::uint32_t);
    for (std::int32_t y = area.top; y < area.bottom; y++)
        std::memcpy(target.row(y) + area.left, source.row(y) + area.left, bytes);
}

void stampImage(const ArgbView& target, const ArgbImage& source, std::int32_t x, std::int32_t y,
                const PixelRect& clip) {
    const PixelRect area =
        intersectRects(intersectRects(clip, target.bounds()), {x, y, x + source.width, y + source.height});
    for (std::int32_t row = area.top; row < area.bottom; row++) {
        std::uint32_t* to = target.row(row);
        const std::uint32_t* from = source.row(row - y);
        for (std::int32_t column = area.left; column < area.right; column++) {
            const std::uint32_t pixel = from[column - x];
            if (pixel != 0) to[column] = blendOver(to[column], pixel);
        }
    }
}

ArgbImage cropImage(const ArgbImage& source, const PixelRect& rect) {
    ArgbImage cut(rect.right - rect.left, rect.bottom - rect.top);
    const PixelRect area = intersectRects(rect, source.bounds());
    for (std::int32_t y = area.top; y < area.bottom; y++) {
        std::copy(source.row(y) + area.left, source.row(y) + area.right,
                  cut.row(y - rect.top) + (area.left - rect.left));
    }
    return cut;
}
