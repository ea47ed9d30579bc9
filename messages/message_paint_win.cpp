#include "messages/message_paint_win.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <cwchar>
#include "base/wide_text_win.h"
#include "ui/shapes.h"

namespace {

constexpr float kMoreRoom = 200.0f;  // design pixels, for a text that is aligned right

// Has the signs that the fonts of texts lack: part of every Windows since 7; the other of most that imitate it.
constexpr const WCHAR* kSymbolFamilies[] = {L"Segoe UI Symbol", L"DejaVu Sans"};

const WCHAR* wide(const char16_t* text) {
    static_assert(sizeof(WCHAR) == sizeof(char16_t));
    return reinterpret_cast<const WCHAR*>(text);
}

// As text is measured and drawn: on one line, as far as its letters reach, spaces at the end counted.
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
        const PageRect& rect = item.rect;
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
    void drawFrame(const Gdiplus::SolidBrush& brush, const PageRect& rect) {
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

// Not by GDI+: where it draws into a device context its edges may be rough.
void drawDot(const ArgbView& view, const PageItem& item, float scale) {
    const PanelRect dot = {item.rect.x * scale, item.rect.y * scale, item.rect.width * scale, item.rect.height * scale};
    GdiFlush();  // before our own code touches the pixels
    forEachPixel(intersectRects(pixelsAround(dot, 1.0f), view.bounds()), [&](int x, int y, PanelPoint point) {
        const std::uint32_t colour = premultiplied(item.colour, coverageOf(ellipseDistance(dot, point)));
        view.row(y)[x] = blendOver(view.row(y)[x], colour);
    });
}

void drawText(Gdiplus::Graphics& graphics, const PageItem& item, const Gdiplus::Font& font) {
    Gdiplus::StringFormat format(Gdiplus::StringFormat::GenericTypographic());
    prepareFormat(format);
    format.SetAlignment(alignmentOf(item.align));
    if (item.isShortened) format.SetTrimming(Gdiplus::StringTrimmingEllipsisCharacter);
    const Gdiplus::SolidBrush brush(Gdiplus::Color(item.colour));
    Gdiplus::RectF box(item.rect.x, item.rect.y, item.rect.width, item.rect.height);
    if (item.align == PageAlign::kRight) {  // GDI+ would cut the end off, which is what counts
        box.X -= kMoreRoom;
        box.Width += kMoreRoom;
    }
    graphics.DrawString(wide(item.text.c_str()), static_cast<INT>(item.text.size()), &font, box, &format, &brush);
}

bool hasSigns(const WCHAR* family) {
    LOGFONTW description = {};
    description.lfCharSet = DEFAULT_CHARSET;
    std::wcsncpy(description.lfFaceName, family, LF_FACESIZE - 1);
    const HDC dc = CreateCompatibleDC(nullptr);
    const HFONT font = CreateFontIndirectW(&description);
    const HGDIOBJ before = SelectObject(dc, font);
    std::array<WORD, kPageSigns.size()> glyphs = {};
    const DWORD count = GetGlyphIndicesW(dc, wide(kPageSigns.data()), static_cast<int>(kPageSigns.size()),
                                         glyphs.data(), GGI_MARK_NONEXISTING_GLYPHS);
    SelectObject(dc, before);
    DeleteObject(font);
    DeleteDC(dc);
    return count == glyphs.size() && std::find(glyphs.begin(), glyphs.end(), 0xFFFF) == glyphs.end();
}

// The interface font draws signs only, and may have to leave them to another.
std::wstring familyFor(PageFont font) {
    std::wstring named = wideFromUtf8(pageFontFamily(font));
    if (font != PageFont::kInterface || hasSigns(named.c_str())) return named;
    for (const WCHAR* family : kSymbolFamilies) {
        if (hasSigns(family) && Gdiplus::FontFamily(family).IsAvailable()) return family;
    }
    return named;
}

std::unique_ptr<Gdiplus::Font> makeFont(const PageTextStyle& style) {
    const Gdiplus::FontFamily named(familyFor(style.font).c_str());
    const Gdiplus::FontFamily* generic = style.font == PageFont::kMono ? Gdiplus::FontFamily::GenericMonospace()
                                                                       : Gdiplus::FontFamily::GenericSansSerif();
    auto font = std::make_unique<Gdiplus::Font>(named.IsAvailable() ? &named : generic, style.size,
                                                style.isBold ? Gdiplus::FontStyleBold : Gdiplus::FontStyleRegular,
                                                Gdiplus::UnitPixel);
    return font->IsAvailable() ? std::move(font) : nullptr;
}

}  // namespace

RECT pagePixels(const PageRect& rect, float scale) {
    return {pixelsOf(rect.x, scale), pixelsOf(rect.y, scale), pixelsOf(rect.x + rect.width, scale),
            pixelsOf(rect.y + rect.height, scale)};
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
