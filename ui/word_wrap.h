// word_wrap.h - a text broken into lines no wider than the page.
#pragma once
#include <functional>
#include <string_view>
#include <vector>

// The width of a piece of text in the font it is drawn in, in any unit. It must not shrink when text is appended. It
// may be costly: each line asks for it only a few times.
using MeasureText = std::function<float(std::u16string_view text)>;

// Where a line may be broken, apart from the line feeds, which always end one.
struct WrapRules {
    // Whether a line may end before next, which is not a space; both are the first UTF-16 units of characters.
    bool (*mayBreakBetween)(char16_t before, char16_t next);
    // True: a token too wide for a line of its own is broken between characters (characterEnd). False: it sticks out.
    bool breaksTokens;
};

// As messages are broken: after a space, and around each wide character (isWide).
extern const WrapRules kMessageWrap;
// As descriptions are: after a space, and around an ideograph, but not before a closing character (a full stop, a
// bracket, a small kana). Tokens stay whole.
extern const WrapRules kDescriptionWrap;

// The lines of text, each a part of it. A line feed ends a line, even an empty one. A line breaks before the token that
// would reach beyond maxWidth. Spaces stay on the line they follow, whatever its width; a single character too wide for
// any line gets one to itself. A line feed at the very end adds no line. After maxLines lines the rest of the text is
// left out, unmeasured. [any]
std::vector<std::u16string_view> wrapText(std::u16string_view text, float maxWidth, const MeasureText& measure,
                                          const WrapRules& rules = kMessageWrap,
                                          std::size_t maxLines = static_cast<std::size_t>(-1));
