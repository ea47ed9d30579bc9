#include "base/data_folder_win.h"
#include <windows.h>
#include "base/code_page_win.h"
#include "base/data_files.h"

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

void createDataFolder(const std::string& folder) {
    CreateDirectoryA(folder.c_str(), nullptr);
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
