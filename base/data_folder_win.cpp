#include "base/data_folder_win.h"
#include <windows.h>
#include "base/code_page_win.h"
#include "base/data_files.h"
#include "base/wide_text_win.h"

namespace {

constexpr DWORD kPathBuffer = 260;
constexpr const char* kFolderName = "Corvalis";

std::string applicationData() {
    wchar_t value[kPathBuffer];
    const DWORD length = GetEnvironmentVariableW(L"APPDATA", value, kPathBuffer);
    if (length == 0 || length >= kPathBuffer) return ".";
    const auto narrow = narrowPath(std::wstring(value, length));
    return narrow && narrow->size() < kPathBuffer ? *narrow : ".";
}

}  // namespace

std::string findDataFolder() {
    return joinPath(applicationData(), kFolderName);
}

std::uint32_t createDataFolder(const std::string& folder) {
    if (CreateDirectoryA(folder.c_str(), nullptr)) return 0;
    const DWORD error = GetLastError();
    const DWORD attributes = GetFileAttributesA(folder.c_str());
    const bool isThere = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return isThere ? 0 : error;
}

std::string fullPath(const std::string& path) {
    const std::wstring wide = wideFromUtf8(utf8FromNarrow(path));
    const DWORD needed = GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
    std::wstring full(needed, L'\0');
    const DWORD length = needed > 0 ? GetFullPathNameW(wide.c_str(), needed, full.data(), nullptr) : 0;
    if (length == 0 || length >= needed) return path;
    full.resize(length);
    return narrowPath(full).value_or(path);
}

std::string findModuleFolder() {
    constexpr DWORD kByAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    const auto address = reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&findModuleFolder));
    if (!GetModuleHandleExW(kByAddress, address, &module)) return {};
    wchar_t file[kPathBuffer];
    const DWORD length = GetModuleFileNameW(module, file, kPathBuffer);
    if (length == 0 || length >= kPathBuffer) return {};
    const std::wstring path(file, length);
    const auto separator = path.find_last_of(L"\\/");
    if (separator == std::wstring::npos) return {};
    return narrowPath(path.substr(0, separator)).value_or(std::string());
}
