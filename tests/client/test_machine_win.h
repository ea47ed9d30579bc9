// test_machine_win.h - the machine around a test: fresh folders, environment, waiting, processes, windows and threads.
// [host] Used from the test's main thread.
#pragma once
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A new folder of its own, removed with all it holds; name says what it is for and may hold any characters.
class FreshFolder {
  public:
    explicit FreshFolder(const std::wstring& name = L"corvalis test");
    ~FreshFolder();
    FreshFolder(const FreshFolder&) = delete;
    FreshFolder& operator=(const FreshFolder&) = delete;

    const std::filesystem::path path;  // absolute
};

// Sets an environment variable of this process, or unsets it (nullopt), and puts the old value back.
class EnvironmentValue {
  public:
    EnvironmentValue(const wchar_t* name, const std::optional<std::wstring>& value);
    ~EnvironmentValue();
    EnvironmentValue(const EnvironmentValue&) = delete;
    EnvironmentValue& operator=(const EnvironmentValue&) = delete;

  private:
    const std::wstring name_;
    std::optional<std::wstring> before_;
};

// Makes folder the process's current one and restores the old one.
class WorkingFolder {
  public:
    explicit WorkingFolder(const std::filesystem::path& folder);
    ~WorkingFolder();
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

  private:
    std::filesystem::path before_;
};

// Empty if it cannot be read. Lets the file be replaced meanwhile, as the worker does.
std::string readFile(const std::filesystem::path& file);
bool writeFile(const std::filesystem::path& file, std::string_view bytes);
// Writes a temporary file and moves it over file, as the other process does; retries while a reader holds it.
bool replaceFile(const std::filesystem::path& file, std::string_view bytes);
// Whether a *.tmp stays in folder. One that is there for a moment is a write under way on another of the plugin's
// threads.
bool keepsTemporaryFiles(const std::filesystem::path& folder);
std::uintmax_t fileBytes(const std::filesystem::path& file);  // 0 if there is none

// Checks condition every few milliseconds; false if it does not hold by the deadline.
template <class Condition>
bool waitFor(Condition condition, std::uint64_t deadlineMs = 10'000);
void pauseBriefly();  // a few milliseconds, between two looks
std::uint64_t systemTickMs();

std::filesystem::path thisProgram();
std::filesystem::path programFolder();  // where this program was built
// The DLL or the worker: from the unpacked package if CORVALIS_PRODUCT_FOLDER names its folder, otherwise as built,
// beside this program.
std::filesystem::path productFile(const char* name);
int threadCount();  // of this process
int handleCount();  // of this process, each looked up: not every system keeps a count
// This process's window of that class; null if there is none.
void* findOwnWindow(const wchar_t* windowClass);
std::vector<std::uint32_t> childProcesses(const wchar_t* program);  // those running; by the program's bare name
bool isProcessRunning(std::uint32_t processId);
bool killProcess(std::uint32_t processId);
// Starts this test program as a voice client process (main_win.cpp); returns its id, 0 on failure.
std::uint32_t startHost(const std::wstring& role, const std::filesystem::path& dll,
                        const std::filesystem::path& readyFile);
std::string toUtf8(std::wstring_view text);
std::string toCodePage(std::wstring_view text);  // the system's; '?' for what it lacks

template <class Condition>
bool waitFor(Condition condition, std::uint64_t deadlineMs) {
    const std::uint64_t end = systemTickMs() + deadlineMs;
    while (!condition()) {
        if (systemTickMs() >= end) return false;
        pauseBriefly();
    }
    return true;
}
