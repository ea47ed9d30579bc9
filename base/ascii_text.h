// ascii_text.h - small things about plain text, the same under every locale; bytes beyond ASCII stay as they are. [any]
#pragma once
#include <algorithm>
#include <string_view>

inline char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Without the spaces, tabs and carriage returns at both ends.
inline std::string_view withoutBlanks(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const auto begin = std::min(text.find_first_not_of(kBlanks), text.size());
    return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}
