#include "panel/text_line_win.h"
#include <algorithm>
#include <cmath>
#include "panel/panel_style.h"
#include "settings/interface_texts.h"
#include "ui/memory_surface_win.h"

namespace {

constexpr float kStatusFontShare = 0.60f;  // em height of a status line, as a share of the strip's height
constexpr std::int32_t kSmallestFont = 9;  // pixels: below this nothing is legible, so the text fills the strip instead

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

TextLine statusLine(const PanelLayers& layers, std::size_t side, std::string_view text, std::int32_t language) {
    const PixelRect& area = layers.statusAreas[side];
    TextLine line;
    line.text = text;
    line.language = language;
    line.width = area.right - area.left;
    line.height = area.bottom - area.top;
    const float fontPixels = std::floor(static_cast<float>(line.height) * kStatusFontShare + 0.5f);
    line.fontPixels = std::max(static_cast<std::int32_t>(fontPixels), std::min(kSmallestFont, line.height));
    line.colour = panelStyle(layers.theme).statusText;
    line.side = side == 1 ? TextSide::kRight : TextSide::kLeft;
    return line;
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
