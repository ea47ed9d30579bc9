#include "plugin/host_program_win.h"
#include <windows.h>
#include "base/wide_text_win.h"

namespace {

std::string fileNameOf(HMODULE program) {
    wchar_t path[1024];
    const DWORD length = GetModuleFileNameW(program, path, static_cast<DWORD>(std::size(path)));
    if (length == 0 || length >= std::size(path)) return {};
    const std::wstring_view whole(path, length);
    return utf8FromWide(whole.substr(whole.find_last_of(L"\\/") + 1));
}

// Out of the loaded program, where the system has mapped it: nothing is opened, and no library of versions is needed.
std::optional<ProgramVersion> versionOf(HMODULE program) {
    const HRSRC place = FindResourceW(program, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(16));  // RT_VERSION
    const HGLOBAL loaded = place ? LoadResource(program, place) : nullptr;
    const void* bytes = loaded ? LockResource(loaded) : nullptr;
    if (!bytes) return std::nullopt;
    return readVersionResource({static_cast<const std::byte*>(bytes), SizeofResource(program, place)});
}

}  // namespace

HostProgram findHostProgram() {
    const HMODULE program = GetModuleHandleW(nullptr);
    return {fileNameOf(program), versionOf(program)};
}
