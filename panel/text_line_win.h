// text_line_win.h - one line of text as a picture, in a Windows font.
#pragma once
#include <windows.h>
#include <cstdint>
#include <string>
#include "ui/argb_image.h"
#include "ui/text_fonts_win.h"

struct TextLine {
    std::string text;              // UTF-8
    std::int32_t language = 0;     // whose fonts it is drawn in
    std::int32_t fontPixels = 12;  // em height
    std::int32_t width = 0;        // of the picture
    std::int32_t height = 0;
    std::uint32_t colour = 0xFFFFFFFF;  // ARGB
    TextSide side = TextSide::kLeft;

    bool operator==(const TextLine&) const = default;
};

// [ui] The width at which nothing of the line is cut; 0 for a line without text.
std::int32_t wholeWidthOf(TextFonts& fonts, const TextLine& line);

// [ui] The line, vertically centred, with an ellipsis where it is too long, on transparent ground. Empty if there is no
// text, no space or no memory.
ArgbImage paintTextLine(TextFonts& fonts, const TextLine& line);
