// display_text.h - a message's UTF-8 as the UTF-16 that is shown. Pure functions. [any]
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

// Characters that must not reach a line of text or a log: control characters, and those that change the direction of
// the text around them (embeddings, overrides, isolates, marks).
bool isControl(char32_t point);
bool isDirectionControl(char32_t point);

// The text with U+000A as its only line end: CR LF, CR and Unicode's own line ends become it, a tab becomes a space,
// other controls and direction controls are left out, invalid UTF-8 becomes U+FFFD. Surrogates come only in pairs.
std::u16string displayText(std::string_view utf8);
// The same on one line: a space for every line end. At most maxBytes of the text are read.
std::u16string displayLine(std::string_view utf8, std::size_t maxBytes = std::string_view::npos);

// U+2E80 and above: drawn in the font that has Chinese, Japanese and Korean; a line may break around each of them.
inline bool isWide(char16_t unit) {
    return unit >= 0x2E80;
}
bool holdsWide(std::u16string_view text);

// The end of the character that begins at start: a surrogate pair is one character, and what attaches to a character
// (combining marks, variation selectors, joined emoji) belongs to it, up to kMaxCharacterUnits. A space and a line feed
// stand alone. start < text.size().
inline constexpr std::size_t kMaxCharacterUnits = 16;
std::size_t characterEnd(std::u16string_view text, std::size_t start);
