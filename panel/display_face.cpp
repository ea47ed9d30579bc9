#include "panel/display_face.h"
#include <algorithm>
#include <cmath>
#include "panel/panel_style.h"
#include "panel/segment_glyphs.h"
#include "ui/shapes.h"

namespace {

constexpr std::size_t kDash = 10;
constexpr std::size_t kPoint = 11;
constexpr float kDigitGlowReach = 0.20f;  // of the digit's height
constexpr float kDigitGlowStrength = 0.34f;
constexpr float kUnderlineThickness = 0.05f;  // of the digit's height
constexpr float kUnderlineDistance = 0.09f;   // below the digits, of their height

std::size_t glyphOf(char character) {
    return character >= '0' && character <= '9' ? static_cast<std::size_t>(character - '0') : kDash;
}

char characterOf(std::size_t glyph) {
    return glyph == kDash ? '-' : static_cast<char>('0' + static_cast<int>(glyph));
}

std::uint32_t digitColour(std::int32_t theme, FrequencyState state) {
    if (state == FrequencyState::kDisconnected) return kDisconnectedArgb;
    const PanelStyle& style = panelStyle(theme);
    return state == FrequencyState::kPending ? style.pendingDigits : style.confirmedDigits;
}

// A dead display does not shine.
float glowStrength(FrequencyState state) {
    return state == FrequencyState::kDisconnected ? 0.0f : kDigitGlowStrength;
}

std::int32_t roundToPixel(float x) {
    return static_cast<std::int32_t>(std::lround(x));
}

// One pixel of a lit shape: its own colour where it covers, light around it.
std::uint32_t litPixel(std::uint32_t colour, float distance, float reach, float glow) {
    const float share = std::clamp(1.0f - std::max(distance, 0.0f) / reach, 0.0f, 1.0f);
    const std::uint32_t light = premultiplied(colour, glow * share * share * share) & 0x00FFFFFFU;
    return blendOver(light, premultiplied(colour, coverageOf(distance)));
}

// The distance to the nearest of the segments whose bit is set; far away when there is none.
float segmentsDistance(const std::array<SegmentOutline, kSegmentCount>& outlines, std::uint8_t segments,
                       UnitPoint point) {
    float nearest = 1e9f;
    for (std::size_t i = 0; i < outlines.size(); i++) {
        if ((segments >> i & 1U) == 0) continue;
        const std::span<const UnitPoint> corners(outlines[i].corners.data(),
                                                 static_cast<std::size_t>(outlines[i].count));
        nearest = std::min(nearest, convexDistance(corners, point));
    }
    return nearest;
}

}  // namespace

DisplayFace::DisplayFace(std::int32_t theme, float scale) : theme_(theme) {
    const ThemeLayout& layout = themeLayout(theme);
    for (std::size_t i = 0; i < rects_.size(); i++) {
        const UnitRect& display = layout.displays[i];
        rects_[i] = {(display.x - layout.origin.x) * scale, (display.y - layout.origin.y) * scale,
                     display.width * scale, display.height * scale};
    }
    // Both displays of a theme have the same height, which decides the digits' size.
    const FrequencyCells cells = layoutFrequency(rects_[0]);
    const float height = cells.digits[0].height;
    margin_ = static_cast<std::int32_t>(std::ceil(kDigitGlowReach * height)) + 1;
    pitch_ = roundToPixel(cells.digits[1].x - cells.digits[0].x);
    pointPitch_ = roundToPixel(cells.digits[3].x - cells.point.x);
    const auto inset = static_cast<float>(margin_);
    cell_ = {inset, inset, cells.digits[0].width, height};
    const float dot = std::max(1.0f, cells.point.width);
    point_ = {inset, inset + height - dot, dot, dot};
}

ArgbImage DisplayFace::paintDigit(std::size_t index, FrequencyState state) const {
    ArgbImage image(static_cast<std::int32_t>(std::ceil(cell_.width)) + 2 * margin_,
                    static_cast<std::int32_t>(std::ceil(cell_.height)) + 2 * margin_);
    const PanelStyle& style = panelStyle(theme_);
    std::array<SegmentOutline, kSegmentCount> outlines;
    for (int i = 0; i < kSegmentCount; i++)
        outlines[static_cast<std::size_t>(i)] = segmentOutline(cell_, i, style.slant);
    const std::uint8_t lit = segmentsOf(characterOf(index));
    const std::uint32_t colour = digitColour(theme_, state);
    const float reach = kDigitGlowReach * cell_.height;
    forEachPixel(image.bounds(), [&](std::int32_t x, std::int32_t y, UnitPoint point) {
        const float unlit = coverageOf(segmentsDistance(outlines, static_cast<std::uint8_t>(~lit), point));
        const std::uint32_t ground = premultiplied(colour, style.unlitShare * unlit);
        const std::uint32_t light =
            litPixel(colour, segmentsDistance(outlines, lit, point), reach, glowStrength(state));
        image.row(y)[x] = blendOver(ground, light);
    });
    return image;
}

ArgbImage DisplayFace::paintPoint(FrequencyState state) const {
    ArgbImage image(static_cast<std::int32_t>(std::ceil(point_.width)) + 2 * margin_,
                    static_cast<std::int32_t>(std::ceil(cell_.height)) + 2 * margin_);
    const std::uint32_t colour = digitColour(theme_, state);
    const float reach = kDigitGlowReach * cell_.height;
    forEachPixel(image.bounds(), [&](std::int32_t x, std::int32_t y, UnitPoint point) {
        const float distance = roundedRectDistance(point_, point_.width * 0.25f, point);
        image.row(y)[x] = litPixel(colour, distance, reach, glowStrength(state));
    });
    return image;
}

const ArgbImage& DisplayFace::glyph(std::size_t index, FrequencyState state) {
    ArgbImage& image = glyphs_[static_cast<std::size_t>(state)][index];
    if (image.isEmpty()) image = index == kPoint ? paintPoint(state) : paintDigit(index, state);
    return image;
}

void DisplayFace::drawUnderline(const ArgbView& target, std::int32_t left, std::int32_t top,
                                const PixelRect& clip) const {
    const float thickness = std::max(1.0f, kUnderlineThickness * cell_.height);
    const UnitRect line = {static_cast<float>(left), static_cast<float>(top) + cell_.height * (1 + kUnderlineDistance),
                           static_cast<float>(5 * pitch_ + pointPitch_) + cell_.width, thickness};
    const std::uint32_t colour = digitColour(theme_, FrequencyState::kPending);
    const PixelRect area = intersectRects(intersectRects(pixelsAround(line, 1.0f), clip), target.bounds());
    forEachPixel(area, [&](std::int32_t x, std::int32_t y, UnitPoint point) {
        const float share = 0.8f * coverageOf(roundedRectDistance(line, thickness / 2, point));
        target.row(y)[x] = blendOver(target.row(y)[x], premultiplied(colour, share));
    });
}

void DisplayFace::draw(const ArgbView& target, std::size_t display, const FrequencyPicture& frequency,
                       const PixelRect& clip) {
    const UnitRect& rect = rects_[display];
    const PixelRect glass = intersectRects(clip, pixelsAround(rect, 0.0f));
    const float whole = static_cast<float>(5 * pitch_ + pointPitch_) + cell_.width;
    const std::int32_t left = roundToPixel(rect.x + (rect.width - whole) / 2);
    const std::int32_t top = roundToPixel(rect.y + (rect.height - cell_.height) / 2);
    const std::string digits = frequencyDigits(frequency);
    std::int32_t x = left;
    const auto stamp = [&](std::size_t index, std::int32_t pitch) {
        stampImage(target, glyph(index, frequency.state), x - margin_, top - margin_, glass);
        x += pitch;
    };
    for (std::size_t i = 0; i < digits.size(); i++) {
        if (i == 3) stamp(kPoint, pointPitch_);
        stamp(glyphOf(digits[i]), pitch_);
    }
    if (frequency.state == FrequencyState::kPending) drawUnderline(target, left, top, glass);
}
