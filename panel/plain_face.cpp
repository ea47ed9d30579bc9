#include "panel/plain_face.h"
#include <algorithm>
#include <cmath>
#include "panel/panel_style.h"
#include "ui/shapes.h"

namespace {

constexpr float kPlateRadius = 18.0f;          // logical units
constexpr float kLineThickness = 3.0f;         // logical units
constexpr std::uint32_t kHollow = 0xFF0C0E10;  // unlit lamps and the status strip

// Paints on one face in pixels, from rectangles in logical units.
class Plate {
  public:
    Plate(const ThemeLayout& layout, const PanelStyle& style, float scale, ArgbImage& face)
        : layout_(layout), style_(style), scale_(scale), face_(face) {}

    void paintGround() {
        const UnitRect whole = {layout_.origin.x, layout_.origin.y, layout_.width, layout_.height};
        fill(toPixels(whole), kPlateRadius * scale_, style_.plate);
    }
    void paintHollow(const UnitRect& rect) { fill(toPixels(rect), 3.0f * scale_, kHollow); }
    void paintHotspot(const PanelHotspot& spot) {
        const UnitRect rect = toPixels(spot.rect);
        const float radius = (spot.round ? std::max(spot.rect.width, spot.rect.height) : kKeyRadius) * scale_;
        fill(rect, radius, style_.engraving);
        const float line = std::max(1.0f, kLineThickness * scale_);
        const UnitRect cap = {rect.x + line, rect.y + line, rect.width - 2 * line, rect.height - 2 * line};
        fill(cap, radius - line, style_.key);
        if (spot.round) paintPointer(rect);
        if (spot.id == kLargeKnob) paintSmallKnob(rect, line);
        if (spot.indicator.width > 0.0f) paintHollow(spot.indicator);
    }

  private:
    UnitRect toPixels(const UnitRect& rect) const {
        return {(rect.x - layout_.origin.x) * scale_, (rect.y - layout_.origin.y) * scale_, rect.width * scale_,
                rect.height * scale_};
    }
    void fill(const UnitRect& rect, float radius, std::uint32_t colour) {
        const PixelRect area = intersectRects(pixelsAround(rect, 1.0f), face_.bounds());
        forEachPixel(area, [&](std::int32_t x, std::int32_t y, UnitPoint point) {
            std::uint32_t& pixel = face_.row(y)[x];
            const float coverage = coverageOf(roundedRectDistance(rect, std::max(radius, 0.0f), point));
            pixel = blendOver(pixel, premultiplied(colour, coverage));
        });
    }
    void paintPointer(const UnitRect& knob) {
        const float width = std::max(2.0f, knob.width * 0.05f);
        fill({knob.x + (knob.width - width) / 2, knob.y + knob.height * 0.06f, width, knob.height * 0.16f}, 0.0f,
             style_.engraving);
    }
    void paintSmallKnob(const UnitRect& knob, float line) {
        const float size = std::min(knob.width, knob.height) * kSmallKnobShare;
        const UnitRect small = {knob.x + (knob.width - size) / 2, knob.y + (knob.height - size) / 2, size, size};
        fill(small, size, style_.engraving);
        fill({small.x + line, small.y + line, size - 2 * line, size - 2 * line}, size, style_.key);
        paintPointer(small);
    }

    const ThemeLayout& layout_;
    const PanelStyle& style_;
    float scale_;
    ArgbImage& face_;
};

}  // namespace

ArgbImage paintPlainFace(std::int32_t theme, float scale, std::int32_t width, std::int32_t height) {
    const ThemeLayout& layout = themeLayout(theme);
    ArgbImage face(width, height);
    Plate plate(layout, panelStyle(theme), scale, face);
    plate.paintGround();
    plate.paintHollow(layout.statusStrip);
    plate.paintHollow(layout.txLamp);
    plate.paintHollow(layout.rxLamp);
    for (const PanelHotspot& spot : layout.hotspots) plate.paintHotspot(spot);
    return face;
}
