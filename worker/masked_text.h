// masked_text.h - what the masks of user_names and host_names agree on: where a path's parts and a text's words end.
#pragma once
#include <string_view>

inline constexpr std::string_view kPathSeparators = "\\/";

inline bool isPathSeparator(char c) {
    return kPathSeparators.find(c) != std::string_view::npos;
}

// Letters and digits, and every byte of a character beyond ASCII.
inline bool isWordByte(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c & 0x80) != 0;
}
