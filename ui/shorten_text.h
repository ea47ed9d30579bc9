// shorten_text.h - a line of text cut to the room there is for it. Pure functions. [any]
#pragma once
#include <string>
#include "ui/word_wrap.h"

// The text if it is no wider than room, otherwise as many of its characters (characterEnd) as fit with an ellipsis
// behind them. Blanks before the ellipsis are left out; where not even the ellipsis fits it stands alone.
std::u16string shortenText(std::u16string_view text, float room, const MeasureText& measure);
