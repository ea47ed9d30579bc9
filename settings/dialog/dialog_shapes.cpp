#include "settings/dialog/dialog_shapes.h"
#include <algorithm>
#include <cmath>
#include "settings/dialog/dialog_colours.h"
#include "settings/interface_texts.h"
#include "ui/shapes.h"

namespace {

UnitRect floatsOf(const PixelRect& rect) {
    return {static_cast<float>(rect.left), static_cast<float>(rect.top), static_cast<float>(rect.right - rect.left),
            static_cast<float>(rect.bottom - rect.top)};
}

// Distance to the line segment between two points.
float stretchDistance(UnitPoint from, UnitPoint to, UnitPoint point) {
    const UnitPoint along = {to.x - from.x, to.y - from.y};
    const UnitPoint offset = {point.x - from.x, point.y - from.y};
    const float square = along.x * along.x + along.y * along.y;
    const float share = square > 0.0f ? (offset.x * along.x + offset.y * along.y) / square : 0.0f;
    const float nearest = std::clamp(share, 0.0f, 1.0f);
    return std::hypot(offset.x - nearest * along.x, offset.y - nearest * along.y);
}

PixelRect inset(const PixelRect& rect, std::int32_t by) {
    return {rect.left + by, rect.top + by, rect.right - by, rect.bottom - by};
}

// The shapes of one picture; lengths in units.
class DialogShapes {
  public:
    DialogShapes(const ArgbView& target, const DialogLayout& layout, const DialogPicture& picture)
        : target_(target), clip_(target.bounds()), layout_(layout), picture_(picture) {}

    void paint() {
        paintGround();
        clipTo(layout_.pageView);
        paintPage();
        for (const DialogControl& control : layout_.controls) {
            if (control.isOnPage) paintControl(control);
        }
        clip_ = target_.bounds();
        for (const DialogControl& control : layout_.controls) {
            if (!control.isOnPage) paintControl(control);
        }
        if (!layout_.scrollBar.isEmpty()) paintScrollBar();
        paintFocus();
    }

  private:
    float units(float length) const { return length * layout_.scale; }
    std::int32_t hairline() const { return std::max(1, layout_.px(1)); }

    void clipTo(const PixelRect& rect) { clip_ = intersectRects(rect, target_.bounds()); }
    void fill(const PixelRect& rect, ARGB colour) {
        const PixelRect seen = intersectRects(rect, clip_);
        for (std::int32_t y = seen.top; y < seen.bottom; y++)
            std::fill(target_.row(y) + seen.left, target_.row(y) + seen.right, colour);
    }
    // Paints the pixels of rect in the colour, as far as the outline at that distance covers each of them.
    template <class Distance>
    void cover(const PixelRect& rect, ARGB colour, Distance distance) {
        forEachPixel(intersectRects(rect, clip_), [&](std::int32_t x, std::int32_t y, UnitPoint point) {
            const float coverage = coverageOf(distance(point));
            if (coverage <= 0.0f) return;
            std::uint32_t& pixel = target_.row(y)[x];
            pixel = blendOver(pixel, premultiplied(colour, coverage));
        });
    }
    void fillRounded(const PixelRect& rect, float radius, ARGB colour) {
        const UnitRect outline = floatsOf(rect);
        const auto distance = [&](UnitPoint point) { return roundedRectDistance(outline, units(radius), point); };
        // Between the bands of the corners every pixel is inside.
        const std::int32_t band = std::min(layout_.px(radius) + 1, (rect.bottom - rect.top + 1) / 2);
        cover({rect.left, rect.top, rect.right, rect.top + band}, colour, distance);
        fill({rect.left, rect.top + band, rect.right, rect.bottom - band}, colour);
        cover({rect.left, std::max(rect.top + band, rect.bottom - band), rect.right, rect.bottom}, colour, distance);
    }
    void drawRounded(const PixelRect& rect, float radius, float width, ARGB colour) {
        const UnitRect outline = floatsOf(rect);
        const float line = std::max(1.0f, units(width));
        const auto distance = [&](UnitPoint point) {
            const float outer = roundedRectDistance(outline, units(radius), point);
            return std::max(outer, -outer - line);
        };
        const std::int32_t band = std::min(layout_.px(radius + width) + 1, (rect.bottom - rect.top + 1) / 2);
        cover({rect.left, rect.top, rect.right, rect.top + band}, colour, distance);
        cover({rect.left, rect.top + band, rect.left + band, rect.bottom - band}, colour, distance);
        cover({rect.right - band, rect.top + band, rect.right, rect.bottom - band}, colour, distance);
        cover({rect.left, std::max(rect.top + band, rect.bottom - band), rect.right, rect.bottom}, colour, distance);
    }
    void fillCircle(float x, float y, float radius, ARGB colour) {
        const UnitRect box = {x - radius, y - radius, 2.0f * radius, 2.0f * radius};
        cover(pixelsAround(box, 1.0f), colour,
              [&](UnitPoint point) { return std::hypot(point.x - x, point.y - y) - radius; });
    }
    void drawLine(float fromX, float fromY, float toX, float toY, float width, ARGB colour) {
        const float half = units(width) / 2.0f;
        const UnitRect box = {std::min(fromX, toX), std::min(fromY, toY), std::fabs(toX - fromX),
                              std::fabs(toY - fromY)};
        cover(pixelsAround(box, half + 1.0f), colour, [&](UnitPoint point) {
            return stretchDistance({fromX, fromY}, {toX, toY}, point) - half;
        });
    }

    bool isHovered(const DialogControl& control) const {
        const DialogHit& pressed = picture_.input.pressed;
        return picture_.input.hover.id == control.id && (pressed.id < 0 || pressed.id == control.id);
    }
    bool isPressed(const DialogControl& control) const {
        return picture_.input.pressed.id == control.id &&
               (picture_.input.hover.id == control.id || picture_.input.isDragging);
    }
    ARGB cardOf(const DialogControl& control) const {
        return isPressed(control) ? kCardPressed : isHovered(control) ? kCardHovered : kCard;
    }
    ARGB accentOf(const DialogControl& control) const {
        return isPressed(control) ? kAccentPressed : isHovered(control) ? kAccentHovered : kAccent;
    }

    void paintGround() {
        fill(layout_.client, kGround);
        fill(layout_.navigation, kNavigationGround);
        fill(layout_.titleBar, kTitleGround);
        const std::int32_t line = hairline();
        const PixelRect& title = layout_.titleBar;
        fill({title.left, title.bottom - line, title.right, title.bottom}, kLine);
        const PixelRect& navigation = layout_.navigation;
        fill({navigation.right - line, navigation.top, navigation.right, navigation.bottom}, kLine);
        fill({layout_.bottomBar.left, layout_.bottomBar.top, layout_.bottomBar.right, layout_.bottomBar.top + line},
             kLine);
        paintMark();
        const PixelRect& client = layout_.client;
        fill({0, 0, client.right, line}, kFrame);
        fill({0, client.bottom - line, client.right, client.bottom}, kFrame);
        fill({0, 0, line, client.bottom}, kFrame);
        fill({client.right - line, 0, client.right, client.bottom}, kFrame);
    }

    // Three bars of a rising signal.
    void paintMark() {
        fillRounded({layout_.px(18), layout_.px(19), layout_.px(44), layout_.px(45)}, 7, 0xFF17382A);
        const float heights[] = {6, 10, 14};
        for (int i = 0; i < 3; i++) {
            const float left = 24.0f + 5.5f * static_cast<float>(i);
            fillRounded({layout_.px(left), layout_.px(39 - heights[i]), layout_.px(left + 3), layout_.px(39)}, 1.5f,
                        kAccent);
        }
    }

    void paintPage() {
        for (const DialogPageText& text : layout_.pageTexts) {
            if (text.style != DialogTextStyle::kAboutLabel) continue;
            fill({text.rect.left, text.rect.bottom, layout_.pageView.right - layout_.px(20),
                  text.rect.bottom + hairline()},
                 kLine);
        }
    }

    void paintScrollBar() {
        const bool isHeld = picture_.input.pressed.id == kScrollBarHit || picture_.input.hover.id == kScrollBarHit;
        PixelRect thumb = layout_.scrollThumb;
        thumb.left += layout_.px(3);
        fillRounded(thumb, 4, isHeld ? kKnob : 0xFF44584D);
    }

    void paintControl(const DialogControl& control) {
        const DialogRow& row = *findRow(control.id);
        switch (control.look) {
            case ControlLook::kTab:
                paintTab(control, row.value == layout_.page);
                break;
            case ControlLook::kLanguage:
                paintOption(control, picture_.view.language == row.value);
                break;
            case ControlLook::kOption:
                paintOption(control, rowNumber(row, picture_.view.settings) == row.value);
                break;
            case ControlLook::kToggle:
            case ControlLook::kCompactToggle:
                paintToggle(control, rowSwitch(row, picture_.view.settings));
                break;
            case ControlLook::kSlider:
                paintSlider(control, row);
                break;
            case ControlLook::kSegments:
                paintSegments(control, row);
                break;
            case ControlLook::kSelector:
            case ControlLook::kFixedKey:
                paintSelector(control, row);
                break;
            case ControlLook::kButton:
                fillRounded(control.rect, 8,
                            isPressed(control)   ? kCardPressed
                            : isHovered(control) ? 0xFF223029
                                                 : 0xFF18221D);
                drawRounded(control.rect, 8, 1, isHovered(control) ? 0xFF3C5447 : 0xFF2A3B32);
                break;
            case ControlLook::kPrimaryButton:
                fillRounded(control.rect, 8, accentOf(control));
                break;
            case ControlLook::kWindowButton:
                paintCross(control);
                break;
            case ControlLook::kLive:
                paintLive(control);
                break;
        }
    }

    // After all controls: the next one is closer than the ring is wide.
    void paintFocus() {
        const DialogControl* control =
            picture_.input.isFocusShown ? findControl(layout_, picture_.input.focus) : nullptr;
        if (!control) return;
        clipTo(control->isOnPage ? layout_.pageView : target_.bounds());
        drawRounded(inset(control->rect, -layout_.px(3)), 10, 2, kFocus);
        clip_ = target_.bounds();
    }

    void paintTab(const DialogControl& control, bool isShown) {
        if (isShown || isHovered(control))
            fillRounded(control.rect, 8, isShown ? 0xFF14251C : isPressed(control) ? kCardPressed : kCard);
        if (!isShown) return;
        const PixelRect& rect = control.rect;
        fillRounded({rect.left, rect.top + layout_.px(10), rect.left + layout_.px(3), rect.bottom - layout_.px(10)},
                    1.5f, kAccent);
    }

    void paintOption(const DialogControl& control, bool isChosen) {
        fillRounded(control.rect, 8, isChosen ? accentOf(control) : cardOf(control));
        if (!isChosen) drawRounded(control.rect, 8, 1, kCardEdge);
    }

    void paintToggle(const DialogControl& control, bool isOn) {
        fillRounded(control.rect, 8, cardOf(control));
        const PixelRect track = switchRect(layout_, control);
        fillRounded(track, 10, isOn ? kAccent : kGroove);
        const float radius = units(7);
        const float middle = static_cast<float>(track.top + track.bottom) / 2.0f;
        const float x = isOn ? static_cast<float>(track.right) - units(10) : static_cast<float>(track.left) + units(10);
        fillCircle(x, middle, radius, isOn ? kOnAccent : kKnob);
    }

    void paintSlider(const DialogControl& control, const DialogRow& row) {
        fillRounded(control.rect, 8, isHovered(control) || isPressed(control) ? 0xFF16201B : kCard);
        PixelRect track = trackRect(layout_, control);
        const std::int32_t x = thumbX(layout_, control, row.range, rowLevel(row, picture_.view.settings));
        const float middle = static_cast<float>(track.top + track.bottom) / 2.0f;
        fillRounded(track, 2, kGroove);
        track.right = x;
        fillRounded(track, 2, kAccent);
        const bool isHeld = picture_.input.isDragging && picture_.input.pressed.id == control.id;
        fillCircle(static_cast<float>(x), middle, units(isHeld ? 9.0f : 8.0f), kCard);
        fillCircle(static_cast<float>(x), middle, units(isHeld ? 7.5f : 6.5f),
                   isHovered(control) || isHeld ? kAccentHovered : kAccent);
    }

    void paintSegments(const DialogControl& control, const DialogRow& row) {
        fillRounded(control.rect, 8, kCard);
        drawRounded(control.rect, 8, 1, kCardEdge);
        for (int option = 0; option < optionCount(row); option++) {
            const PixelRect part = inset(partRect(layout_, control, option), layout_.px(3));
            const bool isUnder = isHovered(control) && picture_.input.hover.part == option;
            if (rowNumber(row, picture_.view.settings) == option)
                fillRounded(part, 6, isUnder ? kAccentHovered : kAccent);
            else if (isUnder)
                fillRounded(part, 6, kCardHovered);
        }
    }

    void paintSelector(const DialogControl& control, const DialogRow& row) {
        const bool isDimmed = !hasKey(picture_.view.settings.theme, row);
        PixelRect letter = control.rect;
        letter.right = letter.left + layout_.px(36);
        fillRounded(letter, 8, isDimmed ? kCard : 0xFF17382A);
        PixelRect value = partRect(layout_, control, 0);
        value.right = control.rect.right;
        if (isFixedKey(row)) return drawRounded(value, 8, 1, kCardEdge);
        fillRounded(value, 8, cardOf(control));
        drawRounded(value, 8, 1, kCardEdge);
        for (int part = 0; part < 2; part++) paintArrow(control, part, isDimmed);
    }

    void paintArrow(const DialogControl& control, int part, bool isDimmed) {
        const PixelRect rect = partRect(layout_, control, part);
        const bool isUnder = isHovered(control) && picture_.input.hover.part == part;
        const float x = static_cast<float>(rect.left + rect.right) / 2.0f;
        const float y = static_cast<float>(rect.top + rect.bottom) / 2.0f;
        const float reach = units(part == 0 ? -2.5f : 2.5f);
        const ARGB colour = isUnder ? kAccentHovered : isDimmed ? 0xFF4A5D53 : 0xFF93A89C;
        drawLine(x - reach, y - units(5), x + reach, y, 1.8f, colour);
        drawLine(x + reach, y, x - reach, y + units(5), 1.8f, colour);
    }

    void paintCross(const DialogControl& control) {
        const bool isUnder = isHovered(control);
        if (isUnder) fillRounded(control.rect, 8, isPressed(control) ? 0xFFC94F4F : kClose);
        const float x = static_cast<float>(control.rect.left + control.rect.right) / 2.0f;
        const float y = static_cast<float>(control.rect.top + control.rect.bottom) / 2.0f;
        const float arm = units(5.5f);
        const ARGB colour = isUnder ? 0xFF1A0606 : 0xFFB4C5BB;
        drawLine(x - arm, y - arm, x + arm, y + arm, 1.8f, colour);
        drawLine(x - arm, y + arm, x + arm, y - arm, 1.8f, colour);
    }

    void paintLive(const DialogControl& control) {
        const PixelRect& rect = control.rect;
        fill({rect.left, rect.top, rect.right, rect.top + hairline()}, kLine);
        const LiveStatus& live = picture_.view.live;
        const bool isGood = live.stateEntry == kTextSimConnected;
        const float x = static_cast<float>(rect.left) + units(6);
        const float y = static_cast<float>(rect.top) + units(18);
        if (isGood) fillCircle(x, y, units(6), 0x406FDC9C);
        fillCircle(x, y, units(3.5f), isGood ? kAccent : kAmber);
    }

    ArgbView target_;
    PixelRect clip_;
    const DialogLayout& layout_;
    const DialogPicture& picture_;
};

}  // namespace

void drawDialogShapes(const ArgbView& target, const DialogLayout& layout, const DialogPicture& picture) {
    DialogShapes(target, layout, picture).paint();
}
