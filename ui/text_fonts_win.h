// text_fonts_win.h - fonts, and lines of text measured and drawn with them. Not every system looks in other fonts for a
// glyph that a font lacks, so the rule here is the same everywhere: the first family of a list that has the character,
// or the first of all if none has it.
#pragma once
#include <windows.h>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>
#include "ui/text_side.h"

// The families that a text may be drawn in, the preferred one first. Static data, UTF-8.
using FontFamilies = std::span<const std::string_view>;

// How a text is drawn.
struct TextStyle {
    FontFamilies families;
    std::int32_t pixels = 12;  // em height
    bool isBold = false;
};

// Fonts of one thread's windows, each made once.
class TextFonts {
  public:
    TextFonts() = default;
    ~TextFonts();
    TextFonts(const TextFonts&) = delete;
    TextFonts& operator=(const TextFonts&) = delete;

    // The font that has the character, by the rule above. Null when the system has no room for it; a generic family
    // stands in for one that is not installed.
    HFONT fontFor(HDC dc, const TextStyle& style, wchar_t character);
    // Frees all fonts; none of them may be selected in a context.
    void clear();

  private:
    HFONT fontOf(std::string_view family, std::int32_t pixels, bool isBold);

    std::map<std::tuple<std::string_view, std::int32_t, bool>, HFONT> fonts_;  // by family, pixels and weight
    std::map<std::pair<HFONT, wchar_t>, bool> glyphs_;  // whether a font has a character; those asked about so far
};

// Width in pixels of a piece of text, in the fonts it is drawn with.
std::int32_t measureLine(HDC dc, TextFonts& fonts, const TextStyle& style, std::string_view piece);
// Draws one line in its box, centred vertically, in the context's colour; one too long ends in an ellipsis if it is all
// in one font. Leaves one of the fonts selected in the context: the caller restores its own.
void drawLine(HDC dc, TextFonts& fonts, const TextStyle& style, TextSide side, std::string_view line, RECT box);

// The first of the families that has all the characters, else the first: for drawing by other means.
std::string_view familyFor(FontFamilies families, std::u16string_view characters);
