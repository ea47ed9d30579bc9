// message_paint_win.h - carries a page's items out with GDI+, and measures text as it will draw it.
#pragma once
#include <memory>
#include <string_view>
#include <utility>
#include <vector>
#include "messages/message_page.h"
#include "ui/gdiplus_win.h"
#include "ui/memory_surface_win.h"

// [ui] Must not outlive the thread's GDI+. What cannot be made (a font, a brush) is left out of the picture.
class MessagePainter {
  public:
    MessagePainter() = default;
    ~MessagePainter();
    MessagePainter(const MessagePainter&) = delete;
    MessagePainter& operator=(const MessagePainter&) = delete;

    void paint(const MemorySurface& surface, float scale, const std::vector<PageItem>& items);
    const Gdiplus::Font* fontFor(const PageTextStyle& style);

  private:
    std::vector<std::pair<PageTextStyle, std::unique_ptr<Gdiplus::Font>>> fonts_;  // all fonts ever needed: a dozen
};

// Measures as the painter draws: the same fonts, surface and scale. [ui] For one layout, during which the surface is
// not resized.
class TextMeasurer {
  public:
    TextMeasurer(MessagePainter& painter, const MemorySurface& surface, float scale);
    float measure(const PageTextStyle& style, std::u16string_view text);  // design pixels

  private:
    MessagePainter& painter_;
    Gdiplus::Graphics graphics_;
    Gdiplus::StringFormat format_;
};

// The pixels that a rectangle of the page covers.
RECT pagePixels(const UnitRect& rect, float scale);
