// code_page_win.h - converts between Windows' wide paths, our narrow ones (system code page) and the host's UTF-8.
#pragma once
#include <optional>
#include <string>

// [any] The path in the system code page; its short (8.3) form if the code page lacks one of its characters; nothing if
// that fails too. Only an existing folder has a short form.
std::optional<std::string> narrowPath(const std::wstring& path);

// [any] A narrow text as UTF-8, for the host.
std::string utf8FromNarrow(const std::string& narrow);
