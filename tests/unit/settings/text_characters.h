// text_characters.h - for the tests of the texts: what a text is made of, and a walk through the table.
#pragma once
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include "settings/interface_texts.h"

inline constexpr int kLanguageNames = 68;
inline constexpr std::string_view kReportCommand = "hopline_worker.exe --diagnose";

// The characters of a text, or nothing when it is not UTF-8 in its shortest form.
inline std::optional<std::u32string> charactersOf(std::string_view text) {
    std::u32string characters;
    for (std::size_t at = 0; at < text.size();) {
        const auto first = static_cast<unsigned char>(text[at]);
        const std::size_t bytes = first < 0x80 ? 1 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 0;
        if (bytes == 0 || first > 0xF4 || at + bytes > text.size()) return {};
        char32_t code = bytes == 1 ? first : first & (0x7FU >> bytes);
        for (std::size_t i = 1; i < bytes; i++) {
            const auto next = static_cast<unsigned char>(text[at + i]);
            if ((next & 0xC0U) != 0x80U) return {};
            code = code << 6U | (next & 0x3FU);
        }
        const char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        if (code < smallest[bytes] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {};
        characters += code;
        at += bytes;
    }
    return characters;
}

inline bool isBetween(char32_t c, char32_t first, char32_t last) {
    return c >= first && c <= last;
}
inline bool isLatin(char32_t c) {
    return isBetween(c, U'A', U'Z') || isBetween(c, U'a', U'z') || isBetween(c, 0xC0, 0x24F);
}
inline bool isKana(char32_t c) {
    return isBetween(c, 0x3041, 0x30FE) && c != U'・';
}
inline bool isHan(char32_t c) {
    return isBetween(c, 0x4E00, 0x9FFF);
}
inline bool isHangul(char32_t c) {
    return isBetween(c, 0xAC00, 0xD7A3);
}
inline bool isCyrillic(char32_t c) {
    return isBetween(c, 0x400, 0x4FF);
}
inline bool isFullWidth(char32_t c) {
    return isBetween(c, 0x3000, 0x303F) || isBetween(c, 0xFF00, 0xFFEF) || c == U'・';
}

inline bool isOwnLetter(std::int32_t language, char32_t c) {
    switch (language) {
        case kSimplifiedChinese:
        case kTraditionalChinese:
            return isHan(c);
        case kJapanese:
            return isHan(c) || isKana(c);
        case kKorean:
            return isHangul(c);
        case kRussian:
            return isCyrillic(c);
        default:
            return isLatin(c);
    }
}

// A text without what is foreign on purpose: the names of the languages; in place of the command for the report stands
// a name that every language keeps, so that the spaces around it still count.
inline std::string ownText(std::int32_t language, int entry) {
    std::string text(textOf(language, entry));
    if (entry == kLanguageNames) text.erase(std::min(text.find("简体中文 / "), text.size()));
    const auto command = text.find(kReportCommand);
    if (command != std::string::npos) text.replace(command, kReportCommand.size(), "PDC");
    return text;
}

inline std::string nameOf(std::int32_t language, int entry) {
    return "entry " + std::to_string(entry) + ", language " + std::to_string(language) + ": " +
           std::string(textOf(language, entry));
}

// The entries that hold a text, in every language.
inline std::vector<int> filledEntries() {
    std::vector<int> entries;
    for (int entry = 0; entry < kTextCount; entry++) {
        if (entry != kTextEmpty) entries.push_back(entry);
    }
    return entries;
}

// Calls check(language, entry) for every cell that holds a text.
template <class Check>
void forEachText(Check check) {
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        for (const int entry : filledEntries()) check(language, entry);
    }
}
