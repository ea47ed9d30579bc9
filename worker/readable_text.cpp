#include "worker/readable_text.h"
#include <algorithm>
#include <cstdint>
#include "base/display_text.h"
#include "base/utf8.h"

namespace {

constexpr std::string_view kReplacementUtf8 = "\xEF\xBF\xBD";

// low: which of a unit's two bytes is the lower one. A last single byte is left out.
std::string utf8FromUtf16Bytes(std::string_view bytes, std::size_t low) {
    std::u16string units;
    for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
        units += static_cast<char16_t>(static_cast<unsigned char>(bytes[at + low]) |
                                       static_cast<unsigned char>(bytes[at + 1 - low]) << 8U);
    }
    return utf8FromUtf16(units);
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const auto next = decodePoint(text);
        if (next.point == kReplacementPoint && text.substr(0, next.bytes) != kReplacementUtf8) return false;
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
        return splitLines(utf8FromUtf16Bytes(bytes.substr(2), isLittleEnd ? 0 : 1));
    }
    bytes = withoutUtf8Mark(bytes);
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
    if (line.find('\0') != std::string_view::npos) {
        std::string size = std::to_string(line.size());
        return size.insert(0, 1, '(') + " bytes that are no text)";
    }
    return isUtf8(line) ? printable(line) : printable(decodeNarrow(std::string(line)));
}
