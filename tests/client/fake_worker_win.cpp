// fake_worker_win.cpp - stands in for the worker (or for a Python interpreter). Writes how it was started into the file
// "started-PID.txt" beside itself - command line, current folder, show state, one per line - and waits to be killed.
#include <windows.h>
#include <filesystem>
#include <fstream>
#include <string>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    wchar_t file[MAX_PATH + 1] = {};
    GetModuleFileNameW(nullptr, file, MAX_PATH);
    char folder[MAX_PATH + 1] = {};
    GetCurrentDirectoryA(MAX_PATH, folder);
    STARTUPINFOA start = {};
    GetStartupInfoA(&start);
    const std::filesystem::path report =
        std::filesystem::path(file).parent_path() / ("started-" + std::to_string(GetCurrentProcessId()) + ".txt");
    std::filesystem::path beside = report;
    beside += ".tmp";
    std::ofstream stream(beside, std::ios::binary);
    stream << GetCommandLineA() << '\n' << folder << '\n' << start.dwFlags << ' ' << start.wShowWindow << '\n';
    stream.close();
    MoveFileExW(beside.c_str(), report.c_str(), MOVEFILE_REPLACE_EXISTING);
    Sleep(120'000);  // whoever started it kills it; a forgotten one ends by itself
    return 0;
}
