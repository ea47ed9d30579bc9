#include "panel/panel_layers.h"
#include <algorithm>
#include <cmath>
#include "panel/panel_style.h"
#include "panel/plain_face.h"
#include "ui/shapes.h"

namespace {

constexpr float kGlassRadius = 5.0f;  // logical units
constexpr float kShadowDepth = 9.0f;  // logical units: the bezel's shadow on the glass, from the top edge down
constexpr float kShadowStrength = 0.5f;
constexpr float kStatusInset = 12.0f;  // logical units, at both ends of the strip
constexpr float kStatusGap = 24.0f;    // logical units, between the two lines

UnitRect toPixels(const ThemeLayout& layout, const UnitRect& rect, float scale) {
    return {(rect.x - layout.origin.x) * scale, (rect.y - layout.origin.y) * scale, rect.width * scale,
            rect.height * scale};
}

// The dark glass, with the bezel's shadow along its upper edge.
void paintGlass(ArgbImage& face, const UnitRect& glass, float scale) {
    const PixelRect area = intersectRects(pixelsAround(glass, 1.0f), face.bounds());
    forEachPixel(area, [&](std::int32_t x, std::int32_t y, UnitPoint point) {
        const float coverage = coverageOf(roundedRectDistance(glass, kGlassRadius * scale, point));
        const float depth = std::clamp(1.0f - (point.y - glass.y) / (kShadowDepth * scale), 0.0f, 1.0f);
        std::uint32_t& pixel = face.row(y)[x];
        pixel = blendOver(pixel, premultiplied(kDisplayArgb, coverage));
        pixel = blendOver(pixel, premultiplied(0xFF000000, coverage * kShadowStrength * depth * depth));
    });
}

ArgbImage makeFace(const ArgbImage& art, const ThemeLayout& layout, std::int32_t theme, float scale, std::int32_t width,
                   std::int32_t height) {
    ArgbImage face = art.isEmpty() ? paintPlainFace(theme, scale, width, height)
                                   : scaleImage(art, layout.origin, scale, width, height);
    for (const UnitRect& display : layout.displays) paintGlass(face, toPixels(layout, display, scale), scale);
    return face;
}

// What lies inside an outline, cut out of the face with a smooth edge.
template <class Distance>
Sprite cutSprite(const ArgbImage& face, const UnitRect& rect, Distance distance) {
    const PixelRect area = pixelsAround(rect, static_cast<float>(kSpriteMargin));
    Sprite sprite{cropImage(face, area), {}, {}};
    sprite.pivot = {rect.x + rect.width / 2 - static_cast<float>(area.left),
                    rect.y + rect.height / 2 - static_cast<float>(area.top)};
    if (sprite.image.isEmpty()) return sprite;
    forEachPixel(area, [&](std::int32_t x, std::int32_t y, UnitPoint point) {
        std::uint32_t& pixel = sprite.image.row(y - area.top)[x - area.left];
        const float coverage = coverageOf(distance(point));
        std::uint32_t cut = 0;
        for (unsigned shift = 0; shift < 32; shift += 8)
            cut |= nearestWhole(static_cast<float>(pixel >> shift & 0xFFU) * coverage) << shift;
        pixel = cut;
    });
    return sprite;
}

Sprite cutRound(const ArgbImage& face, const UnitRect& rect) {
    Sprite sprite = cutSprite(face, rect, [&](UnitPoint point) { return ellipseDistance(rect, point); });
    sprite.radii = {rect.width / 2, rect.height / 2};
    return sprite;
}

Sprite cutKey(const ArgbImage& face, const UnitRect& rect, float scale) {
    return cutSprite(face, rect, [&](UnitPoint point) { return roundedRectDistance(rect, kKeyRadius * scale, point); });
}

// The small knob in the middle of the large one.
UnitRect smallKnobOf(const UnitRect& large) {
    const float size = std::min(large.width, large.height) * kSmallKnobShare;
    return {large.x + (large.width - size) / 2, large.y + (large.height - size) / 2, size, size};
}

ElementLayer makeElement(const ArgbImage& face, const ThemeLayout& layout, const PanelStyle& style,
                         const PanelHotspot& spot, float scale) {
    ElementLayer element;
    element.spot = &spot;
    element.rect = toPixels(layout, spot.rect, scale);
    element.sprite = spot.round ? cutRound(face, element.rect) : cutKey(face, element.rect, scale);
    if (spot.id == kLargeKnob) {
        const UnitRect small = smallKnobOf(element.rect);
        element.inner = cutRound(face, small);
        element.innerBounds = pixelsAround(small, 1.0f);
    }
    if (spot.id == kPinKey || spot.id == kTextKey) {
        element.tinted = element.sprite;
        element.tinted.image = tintIcon(element.sprite.image, spot.id == kPinKey ? style.pinIcon : style.textLamp);
    }
    element.bounds = pixelsAround(element.rect, 1.0f + kPressDepth * scale);
    if (spot.indicator.width > 0.0f) {
        const std::uint32_t colour = spot.id == kCustomKeyA ? style.textLamp : style.keyLamp;
        element.lit = makeLitLamp(toPixels(layout, spot.indicator, scale), spot.indicatorStyle, colour, scale);
        element.isLampOnKey = spot.rect.contains(
            {spot.indicator.x + spot.indicator.width / 2, spot.indicator.y + spot.indicator.height / 2});
        element.bounds = uniteRects(element.bounds, element.lit.bounds());
        if (element.isLampOnKey) element.bounds.bottom += static_cast<std::int32_t>(std::ceil(kPressDepth * scale)) + 1;
    }
    return element;
}

PixelRect statusRoomOf(const ThemeLayout& layout, float scale) {
    const UnitRect strip = toPixels(layout, layout.statusStrip, scale);
    const float inset = kStatusInset * scale;
    const auto pixel = [](float x) { return static_cast<std::int32_t>(std::lround(x)); };
    return {pixel(strip.x + inset), pixel(strip.y), pixel(strip.x + strip.width - inset),
            pixel(strip.y + strip.height)};
}

}  // namespace

PanelLayers::PanelLayers(const ArgbImage& art, std::int32_t themeIndex, float pixelScale, std::int32_t width,
                         std::int32_t height)
    : theme(themeIndex), scale(pixelScale), displays(themeIndex, pixelScale) {
    const ThemeLayout& layout = themeLayout(theme);
    const PanelStyle& style = panelStyle(theme);
    face = makeFace(art, layout, theme, scale, width, height);
    for (const PanelHotspot& spot : layout.hotspots) elements.push_back(makeElement(face, layout, style, spot, scale));
    txLamp = makeLitLamp(toPixels(layout, layout.txLamp, scale), layout.lampStyle, kTransmitLamp, scale);
    rxLamp = makeLitLamp(toPixels(layout, layout.rxLamp, scale), layout.lampStyle, kReceiveLamp, scale);
    statusRoom = statusRoomOf(layout, scale);
    statusGap = std::max(1, static_cast<std::int32_t>(std::lround(kStatusGap * scale)));
}

PanelLayers& LayerCache::layersFor(std::int32_t theme, float scale, std::int32_t width, std::int32_t height) {
    const auto found = std::find_if(layers_.begin(), layers_.end(), [&](const PanelLayers& layers) {
        return layers.theme == theme && layers.scale == scale && layers.face.width == width &&
               layers.face.height == height;
    });
    if (found != layers_.end()) {
        layers_.splice(layers_.begin(), layers_, found);
    } else {
        if (layers_.size() >= kMostLayers) layers_.pop_back();
        layers_.emplace_front(art_[static_cast<std::size_t>(knownTheme(theme))], theme, scale, width, height);
    }
    return layers_.front();
}
