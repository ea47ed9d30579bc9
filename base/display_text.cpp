#include "base/display_text.h"
#include <algorithm>
#include <array>
#include "base/utf8.h"

namespace {

constexpr char32_t kJoiner = 0x200D;

struct PointRange {
    char32_t first;
    char32_t last;
};

// Characters drawn onto the one before. Listed by block: the few unassigned points in a block do no harm.
constexpr PointRange kAttached[] = {
    {0x0300, 0x036F},                                        // combining marks
    {0x0483, 0x0489},                                        // Cyrillic
    {0x0591, 0x05BD},                                        // Hebrew points
    {0x064B, 0x065F},                                        // Arabic points
    {0x0E31, 0x0E31},                                        // Thai vowels and tones
    {0x0E34, 0x0E3A},   {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF},  // combining marks, extended
    {0x1DC0, 0x1DFF},                                        // combining marks, supplement
    {kJoiner, kJoiner},                                      // joins the next character as well
    {0x20D0, 0x20FF},                                        // combining marks for symbols
    {0x302A, 0x302F},                                        // tone marks
    {0x3099, 0x309A},                                        // kana voicing
    {0xFE00, 0xFE0F},                                        // variation selectors
    {0xFE20, 0xFE2F},                                        // half marks
    {0x1F3FB, 0x1F3FF},                                      // skin tones
    {0xE0020, 0xE007F},                                      // tags of flags
    {0xE0100, 0xE01EF},                                      // variation selectors
};

template <std::size_t kCount>
bool isIn(const PointRange (&ranges)[kCount], char32_t point) {
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [=](const PointRange& range) { return point >= range.first && point <= range.last; });
}

bool isLineEnd(char32_t point) {
    return (point >= 0x0A && point <= 0x0D) || point == 0x85 || point == 0x2028 || point == 0x2029;
}

// Invisible, or for the machine only: interlinear annotation, byte order mark, Unicode's deprecated format characters.
bool isFormat(char32_t point) {
    return point == 0xFEFF || (point >= 0xFFF9 && point <= 0xFFFB) || (point >= 0x206A && point <= 0x206F);
}

bool isNoCharacter(char32_t point) {
    return (point & 0xFFFE) == 0xFFFE || (point >= 0xFDD0 && point <= 0xFDEF);
}

// The code point at `at` and its units; an unpaired surrogate is a point of its own.
struct Utf16Point {
    char32_t point;
    std::size_t units;
};
Utf16Point pointAt(std::u16string_view text, std::size_t at) {
    const char32_t first = text[at];
    if (first < 0xD800 || first > 0xDBFF || at + 1 == text.size()) return {first, 1};
    const char32_t second = text[at + 1];
    if (second < 0xDC00 || second > 0xDFFF) return {first, 1};
    return {0x10000 + ((first - 0xD800) << 10U) + (second - 0xDC00), 2};
}

}  // namespace

bool isControl(char32_t point) {
    return point < 0x20 || (point >= 0x7F && point < 0xA0);
}

bool isDirectionControl(char32_t point) {
    return point == 0x061C || point == 0x200E || point == 0x200F || (point >= 0x202A && point <= 0x202E) ||
           (point >= 0x2066 && point <= 0x2069);
}

std::u16string displayText(std::string_view utf8) {
    std::u16string text;
    text.reserve(utf8.size());
    bool isAfterReturn = false;
    while (!utf8.empty()) {
        const auto [point, bytes] = decodePoint(utf8);
        utf8.remove_prefix(bytes);
        const bool isSecondOfTwo = isAfterReturn && point == '\n';
        isAfterReturn = point == '\r';
        if (isSecondOfTwo) continue;
        if (isLineEnd(point))
            text += u'\n';
        else if (point == '\t')
            text += u' ';
        else if (isNoCharacter(point))
            appendUtf16(text, kReplacementPoint);
        else if (!isControl(point) && !isDirectionControl(point) && !isFormat(point))
            appendUtf16(text, point);
    }
    return text;
}

std::u16string displayLine(std::string_view utf8, std::size_t maxBytes) {
    std::u16string line = displayText(cutUtf8(utf8, maxBytes));
    std::replace(line.begin(), line.end(), u'\n', u' ');
    return line;
}

bool holdsWide(std::u16string_view text) {
    return std::any_of(text.begin(), text.end(), isWide);
}

std::size_t characterEnd(std::u16string_view text, std::size_t start) {
    const Utf16Point base = pointAt(text, start);
    std::size_t end = start + base.units;
    if (base.point == ' ' || base.point == '\n') return end;
    bool isJoined = false;
    while (end < text.size()) {
        const Utf16Point next = pointAt(text, end);
        const bool belongs = isIn(kAttached, next.point) || (isJoined && next.point != ' ' && next.point != '\n');
        if (!belongs || end + next.units - start > kMaxCharacterUnits) break;
        isJoined = next.point == kJoiner;
        end += next.units;
    }
    return end;
}
