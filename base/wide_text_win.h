// wide_text_win.h - converts between UTF-8 and the UTF-16 of Windows' wide functions.
#pragma once
#include <string>
#include <string_view>

// [any] Invalid UTF-8 becomes U+FFFD.
std::wstring wideFromUtf8(std::string_view text);

// [any] An unpaired surrogate becomes U+FFFD.
std::string utf8FromWide(std::wstring_view wide);
