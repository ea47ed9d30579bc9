#include "panel/text_line_win.h"
#include "settings/interface_texts.h"
#include "ui/memory_surface_win.h"

namespace {

constexpr std::int32_t kOverhang = 2;  // pixels: letters may reach a little beyond the width that the font names

// White on black: afterwards a pixel's brightness is how much of it the text covers.
void drawWhite(const MemorySurface& surface, TextFonts& fonts, const TextLine& line) {
    const HDC dc = surface.dc();
    const HGDIOBJ before = GetCurrentObject(dc, OBJ_FONT);
    const RECT box = {0, 0, line.width, line.height};
    FillRect(dc, &box, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, RGB(255, 255, 255));
    drawLine(dc, fonts, {fontFamiliesOf(line.language), line.fontPixels, false}, line.side, line.text, box);
    SelectObject(dc, before);
    GdiFlush();  // before our own code reads the pixels
}

}  // namespace

std::int32_t wholeWidthOf(TextFonts& fonts, const TextLine& line) {
    if (line.text.empty()) return 0;
    const HDC dc = CreateCompatibleDC(nullptr);
    if (!dc) return 0;
    const TextStyle style = {fontFamiliesOf(line.language), line.fontPixels, false};
    const std::int32_t width = measureLine(dc, fonts, style, line.text) + kOverhang;
    DeleteDC(dc);
    return width;
}

ArgbImage paintTextLine(TextFonts& fonts, const TextLine& line) {
    MemorySurface surface;
    if (line.text.empty() || line.width < 1 || line.height < 1 || !surface.resize(line.width, line.height)) return {};
    drawWhite(surface, fonts, line);
    ArgbImage image(line.width, line.height);
    for (std::int32_t y = 0; y < image.height; y++) {
        for (std::int32_t x = 0; x < image.width; x++) {
            const auto coverage = static_cast<float>(surface.view().row(y)[x] & 0xFFU) / 255.0f;
            image.row(y)[x] = premultiplied(line.colour, coverage);
        }
    }
    return image;
}
