#include "worker/readable_text.h"
#include <algorithm>
#include <cstdint>
#include "base/display_text.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::string_view kReplacementUtf8 = "\xEF\xBF\xBD";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

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

// low: which of a unit's two bytes is the lower one. A last single byte is left out.
std::string utf8FromUtf16(std::string_view bytes, std::size_t low) {
    const auto unitAt = [&](std::size_t at) {
        return static_cast<char32_t>(static_cast<unsigned char>(bytes[at + low]) |
                                     static_cast<unsigned char>(bytes[at + 1 - low]) << 8U);
    };
    std::string text;
    for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
        char32_t point = unitAt(at);
        if (point >= 0xD800 && point < 0xDC00 && at + 4 <= bytes.size()) {
            const char32_t second = unitAt(at + 2);
            if (second >= 0xDC00 && second < 0xE000) {
                point = 0x10000 + ((point - 0xD800) << 10U) + (second - 0xDC00);
                at += 2;
            }
        }
        appendUtf8(text, point >= 0xD800 && point < 0xE000 ? kReplacement : point);
    }
    return text;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const auto next = decodePoint(text);
        if (next.point == kReplacement && text.substr(0, next.bytes) != kReplacementUtf8) return false;
        text.remove_prefix(next.bytes);
    }
    return true;
}

std::string printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const auto next = decodePoint(text);
        if (next.point == '\t') {
            shown += ' ';
        } else if (isControl(next.point) || isDirectionControl(next.point)) {
            shown += '?';
        } else {
            appendUtf8(shown, next.point);
        }
        text.remove_prefix(next.bytes);
    }
    return shown;
}

}  // namespace

std::vector<std::string> splitLines(std::string_view bytes) {
    const bool isLittleEnd = bytes.starts_with("\xFF\xFE");
    if (isLittleEnd || bytes.starts_with("\xFE\xFF")) {
        return splitLines(utf8FromUtf16(bytes.substr(2), isLittleEnd ? 0 : 1));
    }
    if (bytes.starts_with(kUtf8Mark)) bytes.remove_prefix(kUtf8Mark.size());
    std::vector<std::string> lines;
    while (!bytes.empty()) {
        const auto end = std::min(bytes.find('\n'), bytes.size());
        lines.emplace_back(bytes.substr(0, end));
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    return lines;
}

std::string readableLine(std::string_view line, const NarrowDecoder& decodeNarrow) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.find('\0') != std::string_view::npos)
        return "(" + std::to_string(line.size()) + " bytes that are no text)";
    return isUtf8(line) ? printable(line) : printable(decodeNarrow(std::string(line)));
}
