#include "tests/client/new_client_win.h"
#include <windows.h>
#include <cstdio>
#include <string>
#include "tests/client/test_machine_win.h"

namespace {

constexpr std::wstring_view kClientName = L"ts3client";

std::wstring clientName(const std::wstring& program) {
    return std::wstring(kClientName) + L"_" + program;
}

bool isAskedFor() {
    wchar_t first = 0;
    return GetEnvironmentVariableW(L"CORVALIS_NEW_CLIENT", &first, 1) > 1;
}

int runToItsEnd(const std::filesystem::path& program) {
    std::wstring commandLine = GetCommandLineW();
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    start.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                        &process)) {
        std::printf("cannot start %s: error %lu\n", toUtf8(program.wstring()).c_str(), GetLastError());
        return 1;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 1;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
}

}  // namespace

bool isNewClient() {
    return thisProgram().filename().wstring().starts_with(kClientName);
}

bool takesInterface(int version) {
    return isNewClient() ? version == 26 : version >= 23 && version <= 25;
}

std::wstring programName(const std::wstring& name) {
    return isNewClient() ? clientName(name) : name;
}

std::optional<int> runAsNewClient() {
    if (!isAskedFor() || isNewClient()) return std::nullopt;
    return runToItsEnd(programFolder() / clientName(thisProgram().filename().wstring()));
}
