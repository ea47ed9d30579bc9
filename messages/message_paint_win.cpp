#include "messages/message_paint_win.h"
#include <algorithm>
#include <cmath>
#include <utility>
#include "base/wide_text_win.h"
#include "ui/shapes.h"
#include "ui/text_fonts_win.h"

namespace {

constexpr float kMoreRoom = 200.0f;  // design pixels, for right-aligned text

// These have the signs that the text fonts lack: every Windows since 7 has the first, most of its imitators the second.
constexpr std::string_view kSymbolFamilies[] = {"Segoe UI Symbol", "DejaVu Sans"};

const WCHAR* wide(const char16_t* text) {
    static_assert(sizeof(WCHAR) == sizeof(char16_t));
    return reinterpret_cast<const WCHAR*>(text);
}

// How text is measured and drawn: on one line, as far as its letters reach, trailing spaces included.
void prepareFormat(Gdiplus::StringFormat& format) {
    format.SetFormatFlags(Gdiplus::StringFormatFlagsNoWrap | Gdiplus::StringFormatFlagsMeasureTrailingSpaces |
                          Gdiplus::StringFormatFlagsNoFitBlackBox);
    format.SetLineAlignment(Gdiplus::StringAlignmentCenter);
    format.SetTrimming(Gdiplus::StringTrimmingNone);
}

Gdiplus::StringAlignment alignmentOf(PageAlign align) {
    if (align == PageAlign::kLeft) return Gdiplus::StringAlignmentNear;
    return align == PageAlign::kCentre ? Gdiplus::StringAlignmentCenter : Gdiplus::StringAlignmentFar;
}

void prepareText(Gdiplus::Graphics& graphics, float scale) {
    graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAliasGridFit);
    graphics.ScaleTransform(scale, scale);
}

int pixelsOf(float length, float scale) {
    return static_cast<int>(std::lround(length * scale));
}

// Shapes keep to whole pixels, so that lines stay sharp at every scale.
class Shapes {
  public:
    Shapes(Gdiplus::Graphics& graphics, float scale) : graphics_(graphics), scale_(scale) {}

    void draw(const PageItem& item) {
        const Gdiplus::SolidBrush brush(Gdiplus::Color(item.colour));
        const UnitRect& rect = item.rect;
        const RECT area = pagePixels(rect, scale_);
        const int width = area.right - area.left;
        if (item.kind == PageItemKind::kFill)
            graphics_.FillRectangle(&brush, area.left, area.top, width, area.bottom - area.top);
        if (item.kind == PageItemKind::kRule) graphics_.FillRectangle(&brush, area.left, area.top, width, lineWidth());
        if (item.kind == PageItemKind::kFrame) drawFrame(brush, rect);
    }

  private:
    int lineWidth() const { return std::max(1, pixelsOf(1.0f, scale_)); }

    // The line's middle is the rectangle's edge: it covers half a design pixel on either side.
    void drawFrame(const Gdiplus::SolidBrush& brush, const UnitRect& rect) {
        const RECT area = pagePixels({rect.x - 0.5f, rect.y - 0.5f, rect.width + 1.0f, rect.height + 1.0f}, scale_);
        const int left = area.left;
        const int top = area.top;
        const int width = area.right - left;
        const int height = area.bottom - top;
        const int line = lineWidth();
        graphics_.FillRectangle(&brush, left, top, width, line);
        graphics_.FillRectangle(&brush, left, top + height - line, width, line);
        graphics_.FillRectangle(&brush, left, top, line, height);
        graphics_.FillRectangle(&brush, left + width - line, top, line, height);
    }

    Gdiplus::Graphics& graphics_;
    float scale_;
};

// Not with GDI+, whose edges may be rough when it draws into a device context.
void drawDot(const ArgbView& view, const PageItem& item, float scale) {
    const UnitRect dot = {item.rect.x * scale, item.rect.y * scale, item.rect.width * scale, item.rect.height * scale};
    GdiFlush();  // before our own code touches the pixels
    forEachPixel(intersectRects(pixelsAround(dot, 1.0f), view.bounds()), [&](int x, int y, UnitPoint point) {
        const std::uint32_t colour = premultiplied(item.colour, coverageOf(ellipseDistance(dot, point)));
        view.row(y)[x] = blendOver(view.row(y)[x], colour);
    });
}

void drawText(Gdiplus::Graphics& graphics, const PageItem& item, const Gdiplus::Font& font) {
    Gdiplus::StringFormat format(Gdiplus::StringFormat::GenericTypographic());
    prepareFormat(format);
    format.SetAlignment(alignmentOf(item.align));
    const Gdiplus::SolidBrush brush(Gdiplus::Color(item.colour));
    Gdiplus::RectF box(item.rect.x + item.indent, item.rect.y, item.rect.width - item.indent, item.rect.height);
    if (item.align == PageAlign::kRight) {  // GDI+ would cut off the end, which is what counts
        box.X -= kMoreRoom;
        box.Width += kMoreRoom;
    }
    graphics.DrawString(wide(item.text.c_str()), static_cast<INT>(item.text.size()), &font, box, &format, &brush);
}

// The interface font draws only signs, which may need another of the fonts that this thread's GDI+ has.
std::wstring familyOf(PageFont font) {
    const std::string_view named = pageFontFamily(font);
    if (font != PageFont::kInterface) return wideFromUtf8(named);
    std::vector<std::string_view> families = {named};
    for (const std::string_view family : kSymbolFamilies) {
        if (Gdiplus::FontFamily(wideFromUtf8(family).c_str()).IsAvailable()) families.push_back(family);
    }
    return wideFromUtf8(familyFor(families, kPageSigns));
}

// What GDI+ has in place of a family that is not there; "" if nothing. By its name, since the object that <gdiplus.h>
// would give is kept for ever and belongs to the GDI+ of that moment.
std::wstring genericFamily(PageFont font) {
    Gdiplus::GpFontFamily* family = nullptr;
    const auto status = font == PageFont::kMono ? Gdiplus::DllExports::GdipGetGenericFontFamilyMonospace(&family)
                                                : Gdiplus::DllExports::GdipGetGenericFontFamilySansSerif(&family);
    if (status != Gdiplus::Ok) return {};
    WCHAR name[LF_FACESIZE] = {};
    if (Gdiplus::DllExports::GdipGetFamilyName(family, name, LANG_NEUTRAL) != Gdiplus::Ok) name[0] = L'\0';
    Gdiplus::DllExports::GdipDeleteFontFamily(family);
    return name;
}

std::unique_ptr<Gdiplus::Font> makeFont(const PageTextStyle& style) {
    std::wstring name = familyOf(style.font);
    if (!Gdiplus::FontFamily(name.c_str()).IsAvailable()) name = genericFamily(style.font);
    const Gdiplus::FontFamily family(name.c_str());
    auto font = std::make_unique<Gdiplus::Font>(
        &family, style.size, style.isBold ? Gdiplus::FontStyleBold : Gdiplus::FontStyleRegular, Gdiplus::UnitPixel);
    return font->IsAvailable() ? std::move(font) : nullptr;
}

}  // namespace

RECT pagePixels(const UnitRect& rect, float scale) {
    return {pixelsOf(rect.x, scale), pixelsOf(rect.y, scale), pixelsOf(rect.x + rect.width, scale),
            pixelsOf(rect.y + rect.height, scale)};
}

// <gdiplus.h> wraps GDI+'s typographic format at its first use and keeps that in a variable of the C++ library's: it
// would point into a GDI+ that has ended, and stay behind when the DLL goes. The format itself is GDI+'s.
MessagePainter::~MessagePainter() {
    Gdiplus::GdiplusBase::operator delete(std::exchange(Gdiplus::_GdipStringFormatCachedGenericTypographic, nullptr));
}

const Gdiplus::Font* MessagePainter::fontFor(const PageTextStyle& style) {
    for (const auto& [known, font] : fonts_) {
        if (known == style) return font.get();
    }
    fonts_.emplace_back(style, makeFont(style));
    return fonts_.back().second.get();
}

TextMeasurer::TextMeasurer(MessagePainter& painter, const MemorySurface& surface, float scale)
    : painter_(painter), graphics_(surface.dc()), format_(Gdiplus::StringFormat::GenericTypographic()) {
    prepareText(graphics_, scale);
    prepareFormat(format_);
}

float TextMeasurer::measure(const PageTextStyle& style, std::u16string_view text) {
    const Gdiplus::Font* font = painter_.fontFor(style);
    if (!font) return 0.0f;
    Gdiplus::RectF bounds;
    graphics_.MeasureString(wide(text.data()), static_cast<INT>(text.size()), font, Gdiplus::PointF(0.0f, 0.0f),
                            &format_, &bounds);
    return bounds.Width;
}

void MessagePainter::paint(const MemorySurface& surface, float scale, const std::vector<PageItem>& items) {
    Gdiplus::Graphics forShapes(surface.dc());
    Gdiplus::Graphics forText(surface.dc());
    prepareText(forText, scale);
    Shapes shapes(forShapes, scale);
    for (const PageItem& item : items) {
        if (item.kind == PageItemKind::kDot)
            drawDot(surface.view(), item, scale);
        else if (item.kind != PageItemKind::kText)
            shapes.draw(item);
        else if (const Gdiplus::Font* font = fontFor(item.style); font && !item.text.empty())
            drawText(forText, item, *font);
    }
}
