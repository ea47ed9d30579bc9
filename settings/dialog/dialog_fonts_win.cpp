#include "settings/dialog/dialog_fonts_win.h"
#include <cwchar>
#include "base/wide_text_win.h"
#include "settings/interface_texts.h"

namespace {

UINT sideOf(TextSide side) {
    return side == TextSide::kLeft ? DT_LEFT : side == TextSide::kMiddle ? DT_CENTER : DT_RIGHT;
}

constexpr std::int32_t kSymbols = -1;  // in place of a language: what no language's font has
constexpr const wchar_t* kSymbolFamily = L"Segoe UI Symbol";

// In the font itself: not every system finds a missing glyph in another one.
bool hasGlyph(HDC dc, HFONT font, wchar_t character) {
    const HGDIOBJ before = SelectObject(dc, font);
    WORD glyph = 0;
    const DWORD found = GetGlyphIndicesW(dc, &character, 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS);
    SelectObject(dc, before);
    return found != GDI_ERROR && glyph != 0xFFFF;
}

std::int32_t widthOf(HDC dc, const FontRun& run) {
    const HGDIOBJ before = SelectObject(dc, run.font);
    SIZE size = {};
    GetTextExtentPoint32W(dc, run.text.c_str(), static_cast<int>(run.text.size()), &size);
    if (before) SelectObject(dc, before);
    return size.cx;
}

// Several fonts on the base line that the first one has in the box.
void drawRuns(HDC dc, const std::vector<FontRun>& runs, const RECT& box, TextSide side) {
    std::int32_t width = 0;
    for (const FontRun& run : runs) width += widthOf(dc, run);
    const std::int32_t rest = box.right - box.left - width;
    std::int32_t x = box.left + (side == TextSide::kLeft ? 0 : side == TextSide::kMiddle ? rest / 2 : rest);
    SelectObject(dc, runs.front().font);
    TEXTMETRICW metrics = {};
    GetTextMetricsW(dc, &metrics);
    const std::int32_t y = (box.top + box.bottom - metrics.tmHeight) / 2 + metrics.tmAscent;
    SetTextAlign(dc, TA_LEFT | TA_BASELINE);
    for (const FontRun& run : runs) {
        SelectObject(dc, run.font);
        ExtTextOutW(dc, x, y, 0, nullptr, run.text.c_str(), static_cast<UINT>(run.text.size()), nullptr);
        x += widthOf(dc, run);
    }
    SetTextAlign(dc, TA_LEFT | TA_TOP);
}
}  // namespace

DialogFonts::~DialogFonts() {
    for (const auto& [key, font] : fonts_) {
        if (font) DeleteObject(font);
    }
}

HFONT DialogFonts::fontFor(const DialogText& text) {
    return fontOf(text.language, text.fontPixels, text.isBold);
}

HFONT DialogFonts::fontOf(std::int32_t language, std::int32_t pixels, bool isBold) {
    const auto [place, isNew] = fonts_.try_emplace({language, pixels, isBold}, nullptr);
    if (!isNew) return place->second;
    LOGFONTW description = {};
    description.lfHeight = -pixels;
    description.lfWeight = isBold ? FW_SEMIBOLD : FW_NORMAL;
    description.lfCharSet = DEFAULT_CHARSET;
    description.lfQuality = ANTIALIASED_QUALITY;
    description.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    const std::wstring family = language == kSymbols ? kSymbolFamily : wideFromUtf8(fontFamilyOf(language));
    std::wcsncpy(description.lfFaceName, family.c_str(), LF_FACESIZE - 1);
    return place->second = CreateFontIndirectW(&description);
}

HFONT DialogFonts::fontFor(HDC dc, const DialogText& text, wchar_t character) {
    for (const std::int32_t language : {text.language, +kSimplifiedChinese, +kJapanese, +kKorean, kSymbols}) {
        const HFONT font = fontOf(language, text.fontPixels, text.isBold);
        if (!font) continue;
        const auto [place, isNew] = glyphs_.try_emplace({font, character}, false);
        if (isNew) place->second = hasGlyph(dc, font, character);
        if (place->second) return font;
    }
    return fontFor(text);
}

std::vector<FontRun> runsOf(HDC dc, DialogFonts& fonts, const DialogText& style, const std::string& piece) {
    std::vector<FontRun> runs;
    for (const wchar_t character : wideFromUtf8(piece)) {
        // Blanks, and nearly all of a text, stay with the run before them.
        const bool goesAlong = character == L' ' && !runs.empty();
        const HFONT font = goesAlong ? runs.back().font : fonts.fontFor(dc, style, character);
        if (runs.empty() || runs.back().font != font) runs.push_back({font, {}});
        runs.back().text += character;
    }
    return runs;
}

std::int32_t measureDialogText(HDC dc, DialogFonts& fonts, const DialogText& style, const std::string& piece) {
    std::int32_t width = 0;
    for (const FontRun& run : runsOf(dc, fonts, style, piece)) width += widthOf(dc, run);
    return width;
}

void drawDialogLine(HDC dc, DialogFonts& fonts, const DialogText& style, const std::string& line, RECT box) {
    const auto runs = runsOf(dc, fonts, style, line);
    if (runs.empty()) return;
    if (runs.size() > 1) return drawRuns(dc, runs, box, style.side);
    SelectObject(dc, runs.front().font);
    DrawTextW(dc, runs.front().text.c_str(), static_cast<int>(runs.front().text.size()), &box,
              sideOf(style.side) | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}
