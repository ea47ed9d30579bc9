// utf8.h - UTF-8 decoded, encoded and cut, and converted to UTF-16 and back. Pure functions. [any]
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

// The text without the mark that some editors put before UTF-8.
std::string_view withoutUtf8Mark(std::string_view text);

inline constexpr char32_t kReplacementPoint = 0xFFFD;  // stands for what is not a character

// One code point, read from UTF-8.
struct DecodedPoint {
    char32_t point = 0;     // kReplacementPoint where the bytes are not UTF-8
    std::size_t bytes = 0;  // read, 1..4
};
// text is not empty. Of damaged bytes, the longest beginning of a character becomes one kReplacementPoint.
DecodedPoint decodePoint(std::string_view text);

// point is at most U+10FFFF and not a surrogate.
void appendUtf8(std::string& text, char32_t point);
void appendUtf16(std::u16string& text, char32_t point);

// An unpaired surrogate becomes kReplacementPoint.
std::string utf8FromUtf16(std::u16string_view units);
// Damaged bytes become kReplacementPoint, as with decodePoint. Surrogates come only in pairs.
std::u16string utf16FromUtf8(std::string_view text);

// The longest prefix of text of at most maxBytes bytes that does not end inside a UTF-8 character.
std::string_view cutUtf8(std::string_view text, std::size_t maxBytes);
