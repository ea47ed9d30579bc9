#include "tests/client/test_machine_win.h"
#include <windows.h>
#include <algorithm>
#include <fstream>
// tlhelp32.h needs windows.h before it.
#include <tlhelp32.h>

namespace {

std::optional<std::wstring> environmentValue(const std::wstring& name) {
    wchar_t value[4096];
    const DWORD count = GetEnvironmentVariableW(name.c_str(), value, 4096);
    if (count == 0 || count >= 4096) return std::nullopt;
    return std::wstring(value, count);
}

std::wstring freshPath(const std::wstring& name) {
    static int serial = 0;
    wchar_t base[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH, base);
    return base + name + L" " + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++serial);
}

std::string encode(std::wstring_view text, UINT codePage) {
    const int length = static_cast<int>(text.size());
    const int count = WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(count), '\0');
    WideCharToMultiByte(codePage, 0, text.data(), length, bytes.data(), count, nullptr, nullptr);
    return bytes;
}

struct WindowSearch {
    const wchar_t* windowClass;
    HWND found;
};

BOOL CALLBACK onTopWindow(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<WindowSearch*>(parameter);
    wchar_t name[128] = {};
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    GetClassNameW(window, name, 128);
    if (owner != GetCurrentProcessId() || std::wstring(name) != search.windowClass) return TRUE;
    search.found = window;
    return FALSE;
}

}  // namespace

FreshFolder::FreshFolder(const std::wstring& name) : path(freshPath(name)) {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
    std::filesystem::create_directories(path, ignored);
}

FreshFolder::~FreshFolder() {
    // A program that was just ended may hold its file for a moment.
    waitFor(
        [this] {
            std::error_code error;
            std::filesystem::remove_all(path, error);
            return !error;
        },
        2000);
}

EnvironmentValue::EnvironmentValue(const wchar_t* name, const std::optional<std::wstring>& value)
    : name_(name), before_(environmentValue(name)) {
    SetEnvironmentVariableW(name, value ? value->c_str() : nullptr);
}

EnvironmentValue::~EnvironmentValue() {
    SetEnvironmentVariableW(name_.c_str(), before_ ? before_->c_str() : nullptr);
}

WorkingFolder::WorkingFolder(const std::filesystem::path& folder) : before_(std::filesystem::current_path()) {
    SetCurrentDirectoryW(folder.c_str());
}

WorkingFolder::~WorkingFolder() {
    SetCurrentDirectoryW(before_.c_str());
}

std::string readFile(const std::filesystem::path& file) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return "";
    std::string bytes;
    char chunk[4096];
    DWORD count = 0;
    while (ReadFile(handle, chunk, sizeof chunk, &count, nullptr) && count > 0) bytes.append(chunk, count);
    CloseHandle(handle);
    return bytes;
}

bool writeFile(const std::filesystem::path& file, std::string_view bytes) {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    return stream.good();
}

bool replaceFile(const std::filesystem::path& file, std::string_view bytes) {
    std::filesystem::path beside = file;
    beside += L".test.tmp";
    if (!writeFile(beside, bytes)) return false;
    return waitFor([&] { return MoveFileExW(beside.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING) != 0; });
}

bool keepsTemporaryFiles(const std::filesystem::path& folder) {
    const auto isTemporary = [](const auto& entry) { return entry.path().extension() == ".tmp"; };
    const auto hasNone = [&] {
        std::error_code error;
        const std::filesystem::directory_iterator entries(folder, error);
        return !error && std::none_of(begin(entries), end(entries), isTemporary);
    };
    return !waitFor(hasNone);
}

std::uintmax_t fileBytes(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t bytes = std::filesystem::file_size(file, error);
    return error ? 0 : bytes;
}

void pauseBriefly() {
    Sleep(5);
}

std::uint64_t systemTickMs() {
    return GetTickCount64();
}

std::filesystem::path thisProgram() {
    wchar_t file[MAX_PATH + 1] = {};
    GetModuleFileNameW(nullptr, file, MAX_PATH);
    return file;
}

std::filesystem::path programFolder() {
    return thisProgram().parent_path();
}

std::filesystem::path productFile(const char* name) {
    wchar_t folder[MAX_PATH + 1] = {};
    const DWORD length = GetEnvironmentVariableW(L"CORVALIS_PRODUCT_FOLDER", folder, MAX_PATH);
    return (length > 0 && length < MAX_PATH ? std::filesystem::path(folder) : programFolder()) / name;
}

int threadCount() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return -1;
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == GetCurrentProcessId()) count++;
    }
    CloseHandle(snapshot);
    return count;
}

int handleCount() {
    constexpr std::uintptr_t kMost = 0x4000;  // handles are multiples of 4, reused from the lowest
    int count = 0;
    for (std::uintptr_t value = 4; value < kMost; value += 4) {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != 0;
    }
    return count;
}

void* findOwnWindow(const wchar_t* windowClass) {
    WindowSearch search = {windowClass, nullptr};
    EnumWindows(onTopWindow, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

std::vector<std::uint32_t> childProcesses(const wchar_t* program) {
    std::vector<std::uint32_t> children;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return children;
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) {
        const bool isChild = entry.th32ParentProcessID == GetCurrentProcessId();
        if (isChild && std::wstring_view(entry.szExeFile) == program) children.push_back(entry.th32ProcessID);
    }
    CloseHandle(snapshot);
    return children;
}

bool isProcessRunning(std::uint32_t processId) {
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, processId);
    if (!process) return false;
    const bool running = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
    CloseHandle(process);
    return running;
}

bool killProcess(std::uint32_t processId) {
    const HANDLE process = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, processId);
    if (!process) return false;
    const bool killed = TerminateProcess(process, 9) && WaitForSingleObject(process, 5000) == WAIT_OBJECT_0;
    CloseHandle(process);
    return killed;
}

std::uint32_t startHost(const std::wstring& role, const std::filesystem::path& dll,
                        const std::filesystem::path& readyFile) {
    std::wstring text = L"\"" + thisProgram().wstring() + L"\" " + role;
    for (const std::filesystem::path& file : {dll, readyFile}) text += L" \"" + file.wstring() + L"\"";
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, text.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process)) return 0;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return process.dwProcessId;
}

std::string toUtf8(std::wstring_view text) {
    return encode(text, CP_UTF8);
}

std::string toCodePage(std::wstring_view text) {
    return encode(text, CP_ACP);
}
