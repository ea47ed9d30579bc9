#include "plugin/host_program_win.h"
#include <windows.h>
#include "base/version_resource_win.h"
#include "base/wide_text_win.h"

namespace {

std::string fileNameOf(HMODULE program) {
    wchar_t path[1024];
    const DWORD length = GetModuleFileNameW(program, path, static_cast<DWORD>(std::size(path)));
    if (length == 0 || length >= std::size(path)) return {};
    const std::wstring_view whole(path, length);
    return utf8FromWide(whole.substr(whole.find_last_of(L"\\/") + 1));
}

}  // namespace

HostProgram findHostProgram() {
    const HMODULE program = GetModuleHandleW(nullptr);
    return {fileNameOf(program), versionOf(program)};
}
