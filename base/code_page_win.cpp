#include "base/code_page_win.h"
#include <windows.h>

namespace {

std::optional<std::string> convertExactly(const std::wstring& wide) {
    // With UTF-8 as the system code page every path can be expressed, and Windows rejects both the flag and &replaced.
    const bool isUtf8 = GetACP() == CP_UTF8;
    const DWORD flags = isUtf8 ? 0 : WC_NO_BEST_FIT_CHARS;
    BOOL replaced = FALSE;
    const int length = static_cast<int>(wide.size());
    const int size = WideCharToMultiByte(CP_ACP, flags, wide.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, flags, wide.data(), length, narrow.data(), size, nullptr, isUtf8 ? nullptr : &replaced);
    if (size == 0 || replaced) return std::nullopt;
    return narrow;
}

}  // namespace

std::optional<std::string> narrowPath(const std::wstring& path) {
    if (path.empty()) return std::string();
    if (auto narrow = convertExactly(path)) return narrow;
    wchar_t shortForm[MAX_PATH];
    const DWORD length = GetShortPathNameW(path.c_str(), shortForm, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return std::nullopt;
    return convertExactly(std::wstring(shortForm, length));
}

std::string utf8FromNarrow(const std::string& narrow) {
    if (narrow.empty()) return {};
    const int length = static_cast<int>(narrow.size());
    std::wstring wide(narrow.size(), L'\0');  // never more UTF-16 units than bytes
    const int units = MultiByteToWideChar(CP_ACP, 0, narrow.data(), length, wide.data(), length);
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, utf8.data(), size, nullptr, nullptr);
    return utf8;
}
