#include "panel/text_line_win.h"
#include <algorithm>
#include <cmath>
#include <cwchar>
#include "base/wide_text_win.h"
#include "panel/panel_style.h"
#include "settings/interface_texts.h"
#include "ui/memory_surface_win.h"

namespace {

constexpr float kStatusFontShare = 0.60f;  // em height of a status line, of the strip's height
constexpr std::int32_t kSmallestFont = 9;  // pixels: below this nothing can be read, so the strip is filled instead

// A font selected into a context.
class SelectedFont {
  public:
    SelectedFont(HDC dc, const TextLine& line) : dc_(dc) {
        LOGFONTW description = {};
        description.lfHeight = -line.fontPixels;
        description.lfWeight = FW_NORMAL;
        description.lfCharSet = DEFAULT_CHARSET;
        // Plain grey edges: the picture is blended, so there is no ground that coloured ones could fit.
        description.lfQuality = ANTIALIASED_QUALITY;
        description.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
        const std::wstring family = wideFromUtf8(line.family);
        std::wcsncpy(description.lfFaceName, family.c_str(), LF_FACESIZE - 1);
        font_ = CreateFontIndirectW(&description);
        if (font_) before_ = SelectObject(dc_, font_);
    }
    ~SelectedFont() {
        if (before_) SelectObject(dc_, before_);
        if (font_) DeleteObject(font_);
    }
    SelectedFont(const SelectedFont&) = delete;
    SelectedFont& operator=(const SelectedFont&) = delete;

  private:
    HDC dc_;
    HFONT font_ = nullptr;
    HGDIOBJ before_ = nullptr;
};

// White on black: afterwards a pixel's brightness is how much of it the text covers.
void drawWhite(const MemorySurface& surface, const TextLine& line) {
    const SelectedFont font(surface.dc(), line);
    RECT box = {0, 0, line.width, line.height};
    FillRect(surface.dc(), &box, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    SetBkMode(surface.dc(), TRANSPARENT);
    SetTextColor(surface.dc(), RGB(255, 255, 255));
    const std::wstring text = wideFromUtf8(line.text);
    const UINT side = line.isRightAligned ? DT_RIGHT : DT_LEFT;
    DrawTextW(surface.dc(), text.c_str(), static_cast<int>(text.size()), &box,
              side | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    GdiFlush();  // before our own code reads the pixels
}

}  // namespace

TextLine statusLine(const PanelLayers& layers, std::size_t side, std::string_view text, std::int32_t language) {
    const PixelRect& area = layers.statusAreas[side];
    TextLine line;
    line.text = text;
    line.family = fontFamilyOf(language);
    line.width = area.right - area.left;
    line.height = area.bottom - area.top;
    const float fontPixels = std::floor(static_cast<float>(line.height) * kStatusFontShare + 0.5f);
    line.fontPixels = std::max(static_cast<std::int32_t>(fontPixels), std::min(kSmallestFont, line.height));
    line.colour = panelStyle(layers.theme).statusText;
    line.isRightAligned = side == 1;
    return line;
}

ArgbImage paintTextLine(const TextLine& line) {
    MemorySurface surface;
    if (line.text.empty() || line.width < 1 || line.height < 1 || !surface.resize(line.width, line.height)) return {};
    drawWhite(surface, line);
    ArgbImage image(line.width, line.height);
    for (std::int32_t y = 0; y < image.height; y++) {
        for (std::int32_t x = 0; x < image.width; x++) {
            const auto coverage = static_cast<float>(surface.view().row(y)[x] & 0xFFU) / 255.0f;
            image.row(y)[x] = premultiplied(line.colour, coverage);
        }
    }
    return image;
}
