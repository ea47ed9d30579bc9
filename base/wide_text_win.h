// wide_text_win.h - UTF-8 as Windows' wide functions take it.
#pragma once
#include <string>
#include <string_view>

// [any] What is not UTF-8 becomes U+FFFD.
std::wstring wideFromUtf8(std::string_view text);
