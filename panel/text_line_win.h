// text_line_win.h - one line of text as a picture, in a Windows font.
#pragma once
#include <windows.h>
#include <cstdint>
#include <string>
#include <string_view>
#include "panel/panel_layers.h"
#include "ui/argb_image.h"

struct TextLine {
    std::string text;              // UTF-8
    std::string family;            // UTF-8; another generic family stands in for one that is not installed
    std::int32_t fontPixels = 12;  // em height
    std::int32_t width = 0;        // of the picture
    std::int32_t height = 0;
    std::uint32_t colour = 0xFFFFFFFF;  // ARGB
    bool isRightAligned = false;

    bool operator==(const TextLine&) const = default;
};

// A status line of the panel: side 0 left, 1 right; text in UTF-8, in the font of an interface language.
TextLine statusLine(const PanelLayers& layers, std::size_t side, std::string_view text, std::int32_t language);

// [ui] The line, vertically centred, with an ellipsis where it is too long, on transparent ground. Empty when there is
// no text, no room or no memory.
ArgbImage paintTextLine(const TextLine& line);
