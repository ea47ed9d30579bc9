#include "base/utf8.h"
#include <algorithm>
#include <iterator>

namespace {

// The bytes that may follow a first byte, from Unicode's table of well-formed UTF-8: no overlong forms, no surrogates,
// nothing above U+10FFFF.
struct Sequence {
    unsigned char firstLow, firstHigh;    // of the first byte
    unsigned char secondLow, secondHigh;  // of the second
    std::size_t bytes;
};
constexpr Sequence kSequences[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

std::string_view withoutUtf8Mark(std::string_view text) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (text.starts_with(kMark)) text.remove_prefix(kMark.size());
    return text;
}

DecodedPoint decodePoint(std::string_view text) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byteAt(0);
    if (first < 0x80) return {first, 1};
    const auto* sequence = std::find_if(std::begin(kSequences), std::end(kSequences), [=](const Sequence& row) {
        return first >= row.firstLow && first <= row.firstHigh;
    });
    if (sequence == std::end(kSequences)) return {kReplacementPoint, 1};
    char32_t point = first & (0x7FU >> sequence->bytes);
    for (std::size_t i = 1; i < sequence->bytes; i++) {
        const unsigned char low = i == 1 ? sequence->secondLow : 0x80;
        const unsigned char high = i == 1 ? sequence->secondHigh : 0xBF;
        if (i == text.size() || byteAt(i) < low || byteAt(i) > high) return {kReplacementPoint, i};
        point = (point << 6U) | (byteAt(i) & 0x3FU);
    }
    return {point, sequence->bytes};
}

void appendUtf8(std::string& text, char32_t point) {
    const auto add = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (point < 0x80) {
        add(point);
    } else if (point < 0x800) {
        add(0xC0 | point >> 6U);
        add(0x80 | (point & 0x3FU));
    } else if (point < 0x10000) {
        add(0xE0 | point >> 12U);
        add(0x80 | (point >> 6U & 0x3FU));
        add(0x80 | (point & 0x3FU));
    } else {
        add(0xF0 | point >> 18U);
        add(0x80 | (point >> 12U & 0x3FU));
        add(0x80 | (point >> 6U & 0x3FU));
        add(0x80 | (point & 0x3FU));
    }
}

void appendUtf16(std::u16string& text, char32_t point) {
    if (point < 0x10000) {
        text += static_cast<char16_t>(point);
        return;
    }
    text += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10U));
    text += static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FFU));
}

std::string utf8FromUtf16(std::u16string_view units) {
    std::string text;
    for (std::size_t at = 0; at < units.size(); at++) {
        char32_t point = units[at];
        if (isHighSurrogate(point) && at + 1 < units.size() && isLowSurrogate(units[at + 1])) {
            point = 0x10000 + ((point - 0xD800) << 10U) + (units[at + 1] - 0xDC00U);
            at++;
        }
        appendUtf8(text, isHighSurrogate(point) || isLowSurrogate(point) ? kReplacementPoint : point);
    }
    return text;
}

std::u16string utf16FromUtf8(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const auto [point, bytes] = decodePoint(text);
        appendUtf16(units, point);
        text.remove_prefix(bytes);
    }
    return units;
}

std::string_view cutUtf8(std::string_view text, std::size_t maxBytes) {
    if (text.size() <= maxBytes) return text;
    std::size_t end = maxBytes;
    // A continuation byte (10xxxxxx) at the cut belongs to a character that began before it. A character has at most
    // four bytes: text that is not UTF-8 is cut at maxBytes.
    for (int back = 0; back < 3 && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80; back++) end--;
    if ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) end = maxBytes;
    return text.substr(0, end);
}
