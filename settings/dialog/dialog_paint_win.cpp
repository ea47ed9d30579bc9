#include "settings/dialog/dialog_paint_win.h"
#include "settings/dialog/dialog_colours.h"
#include "settings/interface_texts.h"

namespace {

COLORREF colorRefOf(ARGB colour) {
    return RGB(colour >> 16U & 0xFFU, colour >> 8U & 0xFFU, colour & 0xFFU);
}

// Restores a context's settings at the end of the scope.
class SavedContext {
  public:
    explicit SavedContext(HDC dc) : dc_(dc), state_(SaveDC(dc)) {}
    ~SavedContext() { RestoreDC(dc_, state_); }
    SavedContext(const SavedContext&) = delete;
    SavedContext& operator=(const SavedContext&) = delete;

  private:
    HDC dc_;
    int state_;
};

}  // namespace

void DialogPainter::paint(const MemorySurface& surface, const DialogLayout& layout, const DialogPicture& picture) {
    GdiFlush();
    drawDialogShapes(surface.view(), layout, picture);
    for (const DialogText& text : dialogTexts(layout, picture.view)) {
        if (!text.clip.isEmpty() && !text.text.empty()) paintText(surface.dc(), text);
    }
    GdiFlush();
}

TextStyle styleOf(const DialogText& text) {
    return {fontFamiliesOf(text.language), text.fontPixels, text.isBold};
}

void DialogPainter::paintText(HDC dc, const DialogText& text) {
    const SavedContext saved(dc);
    IntersectClipRect(dc, text.clip.left, text.clip.top, text.clip.right, text.clip.bottom);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, colorRefOf(colourOf(text.tone)));
    RECT box = {text.rect.left, text.rect.top, text.rect.right, text.rect.bottom};
    const auto lines = linesOf(text, [&](const DialogText& style, const std::string& piece) {
        return measureLine(dc, fonts_, styleOf(style), piece);
    });
    for (const std::string& line : lines) {
        if (text.wraps) box.bottom = box.top + lineHeightOf(text);
        drawLine(dc, fonts_, styleOf(text), text.side, line, box);
        box.top = box.bottom;
    }
}
