#include "panel/panel_draw.h"
#include <algorithm>
#include <cmath>
#include "ui/shapes.h"

namespace {

constexpr float kPressShrink = 0.035f;  // of the key's size
constexpr float kPressShade = 0.22f;    // of the key's or knob's brightness
constexpr float kHoleShade = 0.85f;     // opacity of the dark beneath the key

bool isLit(const PanelPicture& picture, std::int32_t element) {
    if (element == kCustomKeyA) return picture.textLit;
    return (picture.litElements >> static_cast<unsigned>(element) & 1U) != 0;
}

// Whether its icon or legend is in colour.
bool isTinted(const PanelPicture& picture, std::int32_t element) {
    return (element == kPinKey && picture.pinned) || (element == kTextKey && picture.textTinted);
}

// A key, or a knob that is held.
float pressOf(const PanelPicture& picture, std::int32_t element) {
    return picture.pressedElement == element ? picture.pressLevel : 0.0f;
}

bool isKnobSame(const PanelPicture& before, const PanelPicture& after, std::int32_t knob, float PanelPicture::*angle) {
    return before.*angle == after.*angle && pressOf(before, knob) == pressOf(after, knob);
}

// The part of an element that looks different; empty when it looks the same.
PixelRect changedPart(const ElementLayer& element, const PanelPicture& before, const PanelPicture& after) {
    const std::int32_t id = element.spot->id;
    if (id == kVolumeKnob)
        return isKnobSame(before, after, id, &PanelPicture::volumeAngle) ? PixelRect{} : element.bounds;
    if (id == kLargeKnob) {
        if (!isKnobSame(before, after, id, &PanelPicture::largeKnobAngle)) return element.bounds;
        return isKnobSame(before, after, kSmallKnob, &PanelPicture::smallKnobAngle) ? PixelRect{} : element.innerBounds;
    }
    const bool isSame = pressOf(before, id) == pressOf(after, id) && isLit(before, id) == isLit(after, id) &&
                        isTinted(before, id) == isTinted(after, id);
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
            drawKnob(element.sprite, element.rect, picture_.volumeAngle, kVolumeKnob);
        } else if (element.spot->id == kLargeKnob) {
            drawKnob(element.sprite, element.rect, picture_.largeKnobAngle, kLargeKnob);
            // The outer knob's turn and shade have carried the inner one's picture along.
            drawKnobAlways(element.inner, element.rect, picture_.smallKnobAngle, kSmallKnob);
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

    // A held knob is shaded as a pressed key is; it stays where it is.
    void drawKnobAlways(const Sprite& sprite, const UnitRect& rect, float angle, std::int32_t knob) {
        const float brightness = 1.0f - kPressShade * pressOf(picture_, knob);
        stampSprite(target_, sprite, {centreOf(rect), angle, 1.0f, brightness}, clip_);
    }
    // The face shows knobs at angle 0, and not held.
    void drawKnob(const Sprite& sprite, const UnitRect& rect, float angle, std::int32_t knob) {
        if (angle != 0.0f || pressOf(picture_, knob) > 0.0f) drawKnobAlways(sprite, rect, angle, knob);
    }
    void drawKey(const ElementLayer& element) {
        const float press = pressOf(picture_, element.spot->id);
        const bool tinted = isTinted(picture_, element.spot->id);
        if (press > 0.0f) darkenHole(element.rect, press);
        if (press > 0.0f || tinted) {
            UnitPoint at = centreOf(element.rect);
            at.y += kPressDepth * layers_.scale * press;
            stampSprite(target_, tinted ? element.tinted : element.sprite,
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
