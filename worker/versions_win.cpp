#include "worker/versions_win.h"
#include <windows.h>
#include <vector>
// winver.h needs windows.h before it.
#include <winver.h>

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
    const DWORD size = GetFileVersionInfoSizeA(path.c_str(), nullptr);
    std::vector<char> data(size);
    if (size == 0 || !GetFileVersionInfoA(path.c_str(), 0, size, data.data())) return {};
    void* found = nullptr;
    UINT bytes = 0;
    if (!VerQueryValueA(data.data(), "\\", &found, &bytes) || bytes < sizeof(VS_FIXEDFILEINFO)) return {};
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(found);
    auto text = std::to_string(HIWORD(fixed.dwFileVersionMS)) + '.' + std::to_string(LOWORD(fixed.dwFileVersionMS)) +
                '.' + std::to_string(HIWORD(fixed.dwFileVersionLS));
    if (LOWORD(fixed.dwFileVersionLS) != 0) text += '.' + std::to_string(LOWORD(fixed.dwFileVersionLS));
    return text;
}
