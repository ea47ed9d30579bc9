// display_text.h - a message's UTF-8 as the UTF-16 that is shown. Pure functions. [any]
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

// One code point, read from UTF-8.
struct DecodedPoint {
    char32_t point = 0;     // U+FFFD where the bytes are not UTF-8
    std::size_t bytes = 0;  // read, 1..4
};
// text is not empty. Of damaged bytes the longest beginning of a character counts as one U+FFFD.
DecodedPoint decodePoint(std::string_view text);

// What must reach neither a line of text nor a log: the control characters, and those that turn the direction of the
// text around them (embeddings, overrides, isolates, marks).
bool isControl(char32_t point);
bool isDirectionControl(char32_t point);

// The text in lines ended by U+000A: CR LF, CR and Unicode's own line ends become one, a tab becomes a space, other
// controls and direction controls are left out, what is not UTF-8 becomes U+FFFD. Surrogates come in pairs only.
std::u16string displayText(std::string_view utf8);
// The same on one line: a space for every line end. Of the text no more than maxBytes are read.
std::u16string displayLine(std::string_view utf8, std::size_t maxBytes = std::string_view::npos);

// U+2E80 and above: drawn in the font that has Chinese, Japanese and Korean; a line may break at each of them.
inline bool isWide(char16_t unit) {
    return unit >= 0x2E80;
}
bool holdsWide(std::u16string_view text);

// Where the character that begins at start ends: a surrogate pair counts as one, and what attaches to it (combining
// marks, variation selectors, joined emoji) belongs to it, up to kMaxCharacterUnits. A space and a line feed stand
// alone. start < text.size().
inline constexpr std::size_t kMaxCharacterUnits = 16;
std::size_t characterEnd(std::u16string_view text, std::size_t start);
