// dialog_fonts_win.h - the settings dialog's fonts, and lines of text measured and drawn with them. Not every system
// finds a glyph that a font lacks in another one: a line is drawn with as many fonts as it needs.
#pragma once
#include <windows.h>
#include <map>
#include <string>
#include <tuple>
#include <vector>
#include "settings/dialog/dialog_view.h"

// The fonts of the dialog, each made once. [dialog]
class DialogFonts {
  public:
    DialogFonts() = default;
    ~DialogFonts();
    DialogFonts(const DialogFonts&) = delete;
    DialogFonts& operator=(const DialogFonts&) = delete;

    // Null when the system has no room for it. A family that is not installed is stood in for by a generic one.
    HFONT fontFor(const DialogText& text);
    // The font that has the character: the text's own, else another language's or one of symbols.
    HFONT fontFor(HDC dc, const DialogText& text, wchar_t character);

  private:
    HFONT fontOf(std::int32_t language, std::int32_t pixels, bool isBold);

    std::map<std::tuple<std::int32_t, std::int32_t, bool>, HFONT> fonts_;  // by language, pixels and weight
    std::map<std::pair<HFONT, wchar_t>, bool> glyphs_;  // whether a font has a character, as far as it was asked
};

// A piece of a line that one font can show.
struct FontRun {
    HFONT font;
    std::wstring text;
};
std::vector<FontRun> runsOf(HDC dc, DialogFonts& fonts, const DialogText& style, const std::string& piece);

// [dialog] Width in pixels of a piece of text, in the font it is drawn with.
std::int32_t measureDialogText(HDC dc, DialogFonts& fonts, const DialogText& style, const std::string& piece);
// [dialog] One line in its box, in the context's colour; with an ellipsis where it is too long.
void drawDialogLine(HDC dc, DialogFonts& fonts, const DialogText& style, const std::string& line, RECT box);
