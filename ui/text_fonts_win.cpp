#include "ui/text_fonts_win.h"
#include <algorithm>
#include <cwchar>
#include "base/wide_text_win.h"

namespace {

// Several times what all interface texts need; strangers' channel names, which are drawn too, may hold any character.
constexpr std::size_t kMostGlyphs = 8192;

// A piece of a line that one font can show.
struct FontRun {
    HFONT font;
    std::wstring text;
};

UINT sideOf(TextSide side) {
    return side == TextSide::kLeft ? DT_LEFT : side == TextSide::kMiddle ? DT_CENTER : DT_RIGHT;
}

HFONT makeFont(std::string_view family, std::int32_t pixels, bool isBold) {
    LOGFONTW description = {};
    description.lfHeight = -pixels;
    description.lfWeight = isBold ? FW_SEMIBOLD : FW_NORMAL;
    description.lfCharSet = DEFAULT_CHARSET;
    // Plain grey edges: a picture that is blended later has no fixed ground for coloured edges to match.
    description.lfQuality = ANTIALIASED_QUALITY;
    description.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    std::wcsncpy(description.lfFaceName, wideFromUtf8(family).c_str(), LF_FACESIZE - 1);
    return CreateFontIndirectW(&description);
}

// Whether the font itself has them: not every system looks for a missing glyph in other fonts.
bool hasGlyphs(HDC dc, HFONT font, std::wstring_view characters) {
    const HGDIOBJ before = SelectObject(dc, font);
    std::vector<WORD> glyphs(characters.size());
    const DWORD found = GetGlyphIndicesW(dc, characters.data(), static_cast<int>(characters.size()), glyphs.data(),
                                         GGI_MARK_NONEXISTING_GLYPHS);
    SelectObject(dc, before);
    return found == glyphs.size() && std::find(glyphs.begin(), glyphs.end(), 0xFFFF) == glyphs.end();
}

std::int32_t widthOf(HDC dc, const FontRun& run) {
    const HGDIOBJ before = SelectObject(dc, run.font);
    SIZE size = {};
    GetTextExtentPoint32W(dc, run.text.c_str(), static_cast<int>(run.text.size()), &size);
    if (before) SelectObject(dc, before);
    return size.cx;
}

std::vector<FontRun> runsOf(HDC dc, TextFonts& fonts, const TextStyle& style, std::string_view piece) {
    std::vector<FontRun> runs;
    for (const wchar_t character : wideFromUtf8(piece)) {
        // A blank stays with the run before it.
        const bool goesAlong = character == L' ' && !runs.empty();
        const HFONT font = goesAlong ? runs.back().font : fonts.fontFor(dc, style, character);
        if (runs.empty() || runs.back().font != font) runs.push_back({font, {}});
        runs.back().text += character;
    }
    return runs;
}

// Draws runs in several fonts, on the baseline that the first one has in the box.
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

TextFonts::~TextFonts() {
    clear();
}

void TextFonts::clear() {
    for (const auto& [key, font] : fonts_) {
        if (font) DeleteObject(font);
    }
    fonts_.clear();
    glyphs_.clear();
}

HFONT TextFonts::fontOf(std::string_view family, std::int32_t pixels, bool isBold) {
    const auto [place, isNew] = fonts_.try_emplace({family, pixels, isBold}, nullptr);
    if (isNew) place->second = makeFont(family, pixels, isBold);
    return place->second;
}

HFONT TextFonts::fontFor(HDC dc, const TextStyle& style, wchar_t character) {
    for (const std::string_view family : style.families) {
        const HFONT font = fontOf(family, style.pixels, style.isBold);
        if (!font) continue;
        if (glyphs_.size() >= kMostGlyphs) glyphs_.clear();
        const auto [place, isNew] = glyphs_.try_emplace({font, character}, false);
        if (isNew) place->second = hasGlyphs(dc, font, {&character, 1});
        if (place->second) return font;
    }
    return fontOf(style.families.front(), style.pixels, style.isBold);
}

std::int32_t measureLine(HDC dc, TextFonts& fonts, const TextStyle& style, std::string_view piece) {
    std::int32_t width = 0;
    for (const FontRun& run : runsOf(dc, fonts, style, piece)) width += widthOf(dc, run);
    return width;
}

void drawLine(HDC dc, TextFonts& fonts, const TextStyle& style, TextSide side, std::string_view line, RECT box) {
    const auto runs = runsOf(dc, fonts, style, line);
    if (runs.empty()) return;
    if (runs.size() > 1) return drawRuns(dc, runs, box, side);
    SelectObject(dc, runs.front().font);
    DrawTextW(dc, runs.front().text.c_str(), static_cast<int>(runs.front().text.size()), &box,
              sideOf(side) | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

std::string_view familyFor(FontFamilies families, std::u16string_view characters) {
    const std::wstring wanted(characters.begin(), characters.end());
    const HDC dc = CreateCompatibleDC(nullptr);
    const auto has = [&](std::string_view family) {
        const HFONT font = makeFont(family, 12, false);
        const bool isWhole = font && hasGlyphs(dc, font, wanted);
        if (font) DeleteObject(font);
        return isWhole;
    };
    const auto found = std::find_if(families.begin(), families.end(), has);
    DeleteDC(dc);
    return found != families.end() ? *found : families.front();
}
