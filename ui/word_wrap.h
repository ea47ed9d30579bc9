// word_wrap.h - a text broken into lines no wider than the page.
#pragma once
#include <functional>
#include <string_view>
#include <vector>

// The width of a piece of text in the font it is drawn in, in any unit. Must not shrink when a text gets longer at its
// end. It may be costly: a line asks for it a few times only.
using MeasureText = std::function<float(std::u16string_view text)>;

// The lines of text, each a part of it. A line feed ends a line, also an empty one. A line breaks before the token
// that would reach beyond maxWidth; a token runs up to a space or a line feed, and a wide character (isWide) is one by
// itself. A token too wide for a line of its own is broken between its characters (characterEnd). Spaces stay on the
// line they follow, whatever its width; a single character too wide for any line stands on one by itself.
// Text without a line feed at its end and text with one give the same lines. After maxLines lines the rest of the text
// is not looked at. [any]
std::vector<std::u16string_view> wrapText(std::u16string_view text, float maxWidth, const MeasureText& measure,
                                          std::size_t maxLines = static_cast<std::size_t>(-1));
