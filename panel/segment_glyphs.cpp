#include "panel/segment_glyphs.h"
#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace {

constexpr float kThickness = 0.115f;      // of the cell's height
constexpr float kMaxThickness = 0.30f;    // of the upright digit's width
constexpr float kGap = 0.09f;             // of the thickness: half the gap between two segments, along an edge
constexpr float kMaxSlantedShare = 0.5f;  // of the cell's width that the slant may take

// An upright digit in its own coordinates, and how it is laid into the cell.
class SlantedCell {
  public:
    SlantedCell(const UnitRect& cell, float slant) : cell_(cell) {
        const float mostLean = kMaxSlantedShare * cell.width;
        lean_ = std::isfinite(slant) ? std::clamp(slant * cell.height, -mostLean, mostLean) : 0.0f;
    }
    float width() const { return cell_.width - std::fabs(lean_); }
    float height() const { return cell_.height; }
    // A cell that leans to the left has its bottom, not its top, at the right edge.
    UnitPoint place(UnitPoint upright) const {
        const float fromBottom = cell_.height > 0.0f ? 1.0f - upright.y / cell_.height : 0.0f;
        const float x = cell_.x + std::max(0.0f, -lean_) + upright.x + lean_ * fromBottom;
        // A sum's rounding error must not stick out of the cell.
        return {std::clamp(x, cell_.x, cell_.x + std::max(0.0f, cell_.width)), cell_.y + upright.y};
    }

  private:
    UnitRect cell_;
    float lean_ = 0.0f;  // how far the top is right of the bottom
};

// The segments of an upright digit. Ends are cut at 45 degrees, so that neighbours meet along a narrow gap.
struct UprightDigit {
    float w, h, t, g;

    using Corners = std::initializer_list<UnitPoint>;

    static SegmentOutline make(Corners corners) {
        SegmentOutline outline;
        for (const UnitPoint& corner : corners) outline.corners[static_cast<std::size_t>(outline.count++)] = corner;
        return outline;
    }
    SegmentOutline top() const { return make({{g, 0}, {w - g, 0}, {w - t - g, t}, {t + g, t}}); }
    SegmentOutline upperRight() const {
        const float m = h / 2;
        return make({{w, g}, {w, m - g}, {w - t / 2, m - g}, {w - t, m - t / 2 - g}, {w - t, t + g}});
    }
    SegmentOutline middle() const {
        const float m = h / 2;
        return make({{t / 2 + g, m},
                     {t + g, m - t / 2},
                     {w - t - g, m - t / 2},
                     {w - t / 2 - g, m},
                     {w - t - g, m + t / 2},
                     {t + g, m + t / 2}});
    }
    SegmentOutline mirrored(SegmentOutline outline, bool leftRight, bool upDown) const {
        for (UnitPoint& corner : outline.corners) {
            if (leftRight) corner.x = w - corner.x;
            if (upDown) corner.y = h - corner.y;
        }
        return outline;
    }
    SegmentOutline segment(int index) const {
        switch (index) {
            case 0:
                return top();
            case 1:
                return upperRight();
            case 2:
                return mirrored(upperRight(), false, true);
            case 3:
                return mirrored(top(), false, true);
            case 4:
                return mirrored(upperRight(), true, true);
            case 5:
                return mirrored(upperRight(), true, false);
            case 6:
                return middle();
            default:
                return {};
        }
    }
};

float thicknessOf(const SlantedCell& cell) {
    return std::max(0.0f, std::min(kThickness * cell.height(), kMaxThickness * cell.width()));
}

SegmentOutline placed(const SlantedCell& cell, SegmentOutline outline) {
    for (int i = 0; i < outline.count; i++) {
        UnitPoint& corner = outline.corners[static_cast<std::size_t>(i)];
        corner = cell.place(corner);
    }
    return outline;
}

}  // namespace

std::uint8_t segmentsOf(char digit) {
    static constexpr std::uint8_t kDigits[] = {0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};
    if (digit == '-') return 0x40;
    return digit >= '0' && digit <= '9' ? kDigits[digit - '0'] : std::uint8_t{0};
}

SegmentOutline segmentOutline(const UnitRect& cell, int segment, float slant) {
    const SlantedCell slanted(cell, slant);
    const float thickness = thicknessOf(slanted);
    const UprightDigit digit{slanted.width(), slanted.height(), thickness, thickness * kGap};
    return placed(slanted, digit.segment(segment));
}
