// message_paint_rig.h - a page of the message window painted on a picture in memory, at the scale of the parameter's
// DPI, and eyes to look at it: no window, no screen.
#pragma once
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>
#include "messages/message_page.h"
#include "messages/message_paint_win.h"
#include "settings/language.h"
#include "tests/client/picture_compare.h"
#include "tests/unit/fakes.h"

inline constexpr std::uint32_t kBackground = 0x060908;
inline constexpr std::uint32_t kHeaderBand = 0x090E0C;
inline constexpr std::uint32_t kLines = 0x1B3A28;
inline constexpr std::uint32_t kAmber = 0xFFB84D;
inline constexpr std::uint32_t kDimGreen = 0x4E8F69;
inline constexpr std::uint32_t kBrightGreen = 0x86E8AC;
inline constexpr std::uint32_t kRed = 0xFF6B6B;

// Where something is, design pixels.
struct Ink {
    float left = 1e9f;
    float top = 1e9f;
    float right = -1.0f;  // exclusive
    float bottom = -1.0f;
    int count = 0;                // of pixels
    std::uint32_t strongest = 0;  // the one that differs most from the ground
};

// What a text takes up, design pixels.
struct Extent {
    UnitRect rect;  // its place
    float left;
    float right;
    std::string text;  // for a person to read
};

inline Extent extentOf(const PageItem& item, TextMeasurer& measurer) {
    const float width = measurer.measure(item.style, item.text);
    const float room = item.rect.width - width;
    const float left = item.align == PageAlign::kLeft    ? item.rect.x + item.indent
                       : item.align == PageAlign::kRight ? item.rect.x + room
                                                         : item.rect.x + room / 2;
    std::string text;
    for (const char16_t unit : item.text) text += unit < 128 ? static_cast<char>(unit) : '?';
    return {item.rect, left, left + width, text};
}

inline int distance(std::uint32_t a, std::uint32_t b) {
    int sum = 0;
    for (const unsigned shift : {0U, 8U, 16U})
        sum += std::abs(static_cast<int>(a >> shift & 0xFFU) - static_cast<int>(b >> shift & 0xFFU));
    return sum;
}

class MessagePaint : public testing::TestWithParam<std::uint32_t> {
  protected:
    void add(const std::string& text, const std::string& sender = "Tower") {
        addMessage(store, sender, text, kChannelMessage, 7, clock.tickMs());
    }
    void paint() {
        paint([this](TextMeasurer& measurer) { return itemsWith(measurer); });
    }
    // What each text of the page takes up.
    std::vector<Extent> paintAndMeasure() {
        std::vector<Extent> extents;
        paint([&](TextMeasurer& measurer) {
            std::vector<PageItem> items = itemsWith(measurer);
            for (const PageItem& item : items) {
                if (item.kind == PageItemKind::kText) extents.push_back(extentOf(item, measurer));
            }
            return items;
        });
        return extents;
    }
    void paint(const std::vector<PageItem>& items) {
        paint([&](TextMeasurer&) { return items; });
    }
    float widthOf(const PageTextStyle& style, const std::u16string& text) {
        float width = 0.0f;
        paint([&](TextMeasurer& measurer) {
            width = measurer.measure(style, text);
            return std::vector<PageItem>{};
        });
        return width;
    }
    // One text on the page's ground.
    Ink inkOf(const PageItem& text) {
        paint(std::vector<PageItem>{{PageItemKind::kFill, {0, 0, 620, 400}, 0xFF000000U | kBackground}, text});
        return inkIn({0, 0, 620, 400});
    }
    // The pixels that differ from the one in the rectangle's top left corner.
    Ink inkIn(const UnitRect& rect) const {
        const RECT area = pagePixels(rect, scale);
        const std::uint32_t ground = shown.row(area.top)[area.left];
        Ink ink;
        for (int y = area.top; y < area.bottom; y++) {
            for (int x = area.left; x < area.right; x++) {
                const std::uint32_t colour = shown.row(y)[x];
                if (distance(colour, ground) < kFaint) continue;
                ink.left = std::min(ink.left, static_cast<float>(x) / scale);
                ink.top = std::min(ink.top, static_cast<float>(y) / scale);
                ink.right = std::max(ink.right, static_cast<float>(x + 1) / scale);
                ink.bottom = std::max(ink.bottom, static_cast<float>(y + 1) / scale);
                if (ink.count++ == 0 || distance(colour, ground) > distance(ink.strongest, ground))
                    ink.strongest = colour;
            }
        }
        return ink;
    }
    // The colour in the middle of a design pixel.
    std::uint32_t colourAt(float x, float y) const {
        return shown.row(static_cast<int>((y + 0.5f) * scale))[static_cast<int>((x + 0.5f) * scale)];
    }
    static PageItem text(const std::u16string& what, const UnitRect& rect, PageAlign align = PageAlign::kLeft,
                         const PageTextStyle& style = {PageFont::kMono, 15.0f, false}) {
        return {PageItemKind::kText, rect, 0xFF000000U | kBrightGreen, what, style, align};
    }

    static constexpr int kFaint = 24;  // too faint a difference for the eye

    const float scale = messageScale(GetParam());
    ManualClock clock;
    MessageStore store;
    MessagePage page;
    float textScale = 15.0f;
    std::int32_t language = kEnglish;
    ArgbImage shown;

  private:
    std::vector<PageItem> itemsWith(TextMeasurer& measurer) {
        const auto measure = [&](const PageTextStyle& style, std::u16string_view text) {
            return measurer.measure(style, text);
        };
        const PageLook look = page.look(store, textScale, language, GetParam());
        return page.items(page.layOut(store, look, {measure, [](double) { return TimeOfDay{22, 34, 56}; }, clock}));
    }
    void paint(const std::function<std::vector<PageItem>(TextMeasurer&)>& itemsOf) {
        ASSERT_TRUE(surface_.resize(static_cast<int>(kMessageWidth * scale), static_cast<int>(kMessageHeight * scale)));
        TextMeasurer measurer(painter_, surface_, scale);
        painter_.paint(surface_, scale, itemsOf(measurer));
        GdiFlush();
        shown = coloursOf(surface_.view());
    }

    const GdiPlusSession gdiPlus_;
    MessagePainter painter_;
    MemorySurface surface_;
};
