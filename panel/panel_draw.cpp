#include "panel/panel_draw.h"
#include <algorithm>
#include <cmath>
#include "ui/shapes.h"

namespace {

constexpr float kPressShrink = 0.035f;  // of the key's size
constexpr float kPressShade = 0.22f;    // of the key's brightness
constexpr float kHoleShade = 0.85f;     // opacity of the dark beneath the key

bool isKnob(const ElementLayer& element) {
    return element.spot->round;
}

bool isLit(const PanelPicture& picture, std::int32_t element) {
    if (element == kCustomKeyA) return picture.textLit;
    return (picture.litElements >> static_cast<unsigned>(element) & 1U) != 0;
}

float pressOf(const PanelPicture& picture, const ElementLayer& element) {
    return picture.pressedElement == element.spot->id && !isKnob(element) ? picture.pressLevel : 0.0f;
}

// The part of an element that looks different; empty when it looks the same.
PixelRect changedPart(const ElementLayer& element, const PanelPicture& before, const PanelPicture& after) {
    const std::int32_t id = element.spot->id;
    if (id == kVolumeKnob) return before.volumeAngle != after.volumeAngle ? element.bounds : PixelRect{};
    if (id == kLargeKnob) {
        if (before.largeKnobAngle != after.largeKnobAngle) return element.bounds;
        return before.smallKnobAngle != after.smallKnobAngle ? element.innerBounds : PixelRect{};
    }
    const bool isSame = pressOf(before, element) == pressOf(after, element) && isLit(before, id) == isLit(after, id) &&
                        (id != kPinKey || before.pinned == after.pinned);
    return isSame ? PixelRect{} : element.bounds;
}

// Draws the parts of one picture inside one rectangle.
class Painter {
  public:
    Painter(const ArgbView& target, PanelLayers& layers, const PanelPicture& picture, const PixelRect& clip)
        : target_(target), layers_(layers), picture_(picture), clip_(clip) {}

    void drawDisplays() {
        for (std::size_t i = 0; i < picture_.frequencies.size(); i++) {
            if (!intersectRects(pixelsAround(layers_.displays.rect(i), 0.0f), clip_).isEmpty())
                layers_.displays.draw(target_, i, picture_.frequencies[i], clip_);
        }
    }
    void drawElement(const ElementLayer& element) {
        if (intersectRects(element.bounds, clip_).isEmpty()) return;
        if (element.spot->id == kVolumeKnob) {
            drawKnob(element.sprite, element.rect, picture_.volumeAngle);
        } else if (element.spot->id == kLargeKnob) {
            drawKnob(element.sprite, element.rect, picture_.largeKnobAngle);
            // The outer knob's turn has carried the inner one's picture along.
            drawKnobAlways(element.inner, element.rect, picture_.smallKnobAngle);
        } else {
            drawKey(element);
        }
    }
    void drawLamp(const PlacedImage& lamp, bool lit) {
        if (lit) stampImage(target_, lamp.image, lamp.x, lamp.y, clip_);
    }
    void drawStatus(const StatusImages& texts) {
        const PixelRect& room = layers_.statusRoom;
        const PixelRect visible = intersectRects(room, clip_);
        stampImage(target_, texts[0], room.left, room.top, visible);
        stampImage(target_, texts[1], room.right - texts[1].width, room.top, visible);
    }

  private:
    static UnitPoint centreOf(const UnitRect& rect) { return {rect.x + rect.width / 2, rect.y + rect.height / 2}; }

    void drawKnobAlways(const Sprite& sprite, const UnitRect& rect, float angle) {
        stampSprite(target_, sprite, {centreOf(rect), angle, 1.0f, 1.0f}, clip_);
    }
    // The face shows knobs at angle 0.
    void drawKnob(const Sprite& sprite, const UnitRect& rect, float angle) {
        if (angle != 0.0f) drawKnobAlways(sprite, rect, angle);
    }
    void drawKey(const ElementLayer& element) {
        const float press = pressOf(picture_, element);
        const bool pinned = element.spot->id == kPinKey && picture_.pinned;
        if (press > 0.0f) darkenHole(element.rect, press);
        if (press > 0.0f || pinned) {
            UnitPoint at = centreOf(element.rect);
            at.y += kPressDepth * layers_.scale * press;
            stampSprite(target_, pinned ? element.pinned : element.sprite,
                        {at, 0.0f, 1.0f - kPressShrink * press, 1.0f - kPressShade * press}, clip_);
        }
        if (!isLit(picture_, element.spot->id)) return;
        const float sink = element.isLampOnKey ? kPressDepth * layers_.scale * press : 0.0f;
        stampImage(target_, element.lit.image, element.lit.x,
                   element.lit.y + static_cast<std::int32_t>(std::lround(sink)), clip_);
    }
    void darkenHole(const UnitRect& rect, float press) {
        const PixelRect area = intersectRects(intersectRects(pixelsAround(rect, 0.0f), clip_), target_.bounds());
        forEachPixel(area, [&](std::int32_t x, std::int32_t y, UnitPoint point) {
            const float coverage = coverageOf(roundedRectDistance(rect, kKeyRadius * layers_.scale, point));
            std::uint32_t& pixel = target_.row(y)[x];
            pixel = blendOver(pixel, premultiplied(0xFF000000, kHoleShade * press * coverage));
        });
    }

    ArgbView target_;
    PanelLayers& layers_;
    const PanelPicture& picture_;
    PixelRect clip_;
};

}  // namespace

std::vector<PixelRect> changedAreas(const PanelLayers& layers, const PanelPicture& before, const PanelPicture& after) {
    std::vector<PixelRect> areas;
    for (std::size_t i = 0; i < after.frequencies.size(); i++) {
        if (before.frequencies[i] != after.frequencies[i]) areas.push_back(pixelsAround(layers.displays.rect(i), 0.0f));
    }
    for (const ElementLayer& element : layers.elements) {
        const PixelRect part = changedPart(element, before, after);
        if (!part.isEmpty()) areas.push_back(part);
    }
    if (before.txLit != after.txLit) areas.push_back(layers.txLamp.bounds());
    if (before.rxLit != after.rxLit) areas.push_back(layers.rxLamp.bounds());
    // Both: where one ends decides how much of the other is seen.
    const bool isStatusSame = before.statusText == after.statusText && before.channelStatus == after.channelStatus;
    if (!isStatusSame) areas.push_back(layers.statusRoom);
    return areas;
}

void drawPanel(const ArgbView& target, PanelLayers& layers, const PanelPicture& picture, const StatusImages& texts,
               const PixelRect& clip) {
    const PixelRect area = intersectRects(clip, target.bounds());
    copyPixels(target, layers.face, area);
    Painter painter(target, layers, picture, area);
    painter.drawDisplays();
    for (const ElementLayer& element : layers.elements) painter.drawElement(element);
    painter.drawLamp(layers.txLamp, picture.txLit);
    painter.drawLamp(layers.rxLamp, picture.rxLit);
    painter.drawStatus(texts);
}
