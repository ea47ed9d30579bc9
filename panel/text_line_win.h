// text_line_win.h - one line of text as a picture, in a Windows font.
#pragma once
#include <windows.h>
#include <cstdint>
#include <string>
#include <string_view>
#include "panel/panel_layers.h"
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

// A status line of the panel: side 0 left, 1 right; text in UTF-8, in the fonts of an interface language.
TextLine statusLine(const PanelLayers& layers, std::size_t side, std::string_view text, std::int32_t language);

// [ui] The line, vertically centred, with an ellipsis where it is too long, on transparent ground. Empty if there is no
// text, no space or no memory.
ArgbImage paintTextLine(TextFonts& fonts, const TextLine& line);
