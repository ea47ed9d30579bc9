#include "worker/versions_win.h"
#include <windows.h>
#include "base/version_resource_win.h"

std::string windowsVersion() {
    using GetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOW*);
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    const auto address = ntdll ? reinterpret_cast<void*>(GetProcAddress(ntdll, "RtlGetVersion")) : nullptr;
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    if (!address || reinterpret_cast<GetVersionFunction>(address)(&version) != 0) return "unknown";
    return std::to_string(version.dwMajorVersion) + '.' + std::to_string(version.dwMinorVersion) + '.' +
           std::to_string(version.dwBuildNumber);
}

std::string fileVersion(const std::string& path) {
    // As data: nothing in the file is run, and nothing that it imports is loaded.
    const HMODULE file =
        LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    if (!file) return {};
    const auto version = versionOf(file);
    FreeLibrary(file);
    if (!version) return {};
    const auto build = version->parts[3];
    return versionText(*version) + (build != 0 ? '.' + std::to_string(build) : std::string());
}
