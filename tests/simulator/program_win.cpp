#include "tests/simulator/program_win.h"
#include <windows.h>
#include <array>
#include <utility>

namespace standin {

namespace {

// What a started program inherits: these two handles and no others, or it would keep our sockets and files open.
class Inheritance {
  public:
    Inheritance(HANDLE input, HANDLE output) : handles_{input, output} {
        SIZE_T bytes = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &bytes);
        memory_.resize(bytes);
        isGood_ = InitializeProcThreadAttributeList(list(), 1, 0, &bytes) != 0;
        isGood_ = isGood_ && UpdateProcThreadAttribute(list(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                                                       sizeof handles_, nullptr, nullptr);
    }
    ~Inheritance() { DeleteProcThreadAttributeList(list()); }
    Inheritance(const Inheritance&) = delete;
    Inheritance& operator=(const Inheritance&) = delete;

    bool isGood() const { return isGood_; }
    LPPROC_THREAD_ATTRIBUTE_LIST list() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data()); }

  private:
    std::array<HANDLE, 2> handles_;
    std::vector<char> memory_;
    bool isGood_ = false;
};

void closeHandle(void*& handle) {
    if (handle) CloseHandle(std::exchange(handle, nullptr));
}

}  // namespace

bool Program::start(const std::wstring& commandLine) {
    kill();
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    HANDLE theirInput = nullptr, theirOutput = nullptr;
    if (!CreatePipe(&theirInput, &input_, &inherited, 0)) return false;
    if (!CreatePipe(&output_, &theirOutput, &inherited, 0)) {
        CloseHandle(theirInput);
        return false;
    }
    SetHandleInformation(input_, HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(output_, HANDLE_FLAG_INHERIT, 0);
    Inheritance inheritance(theirInput, theirOutput);
    STARTUPINFOEXW startup = {};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = theirInput;
    startup.StartupInfo.hStdOutput = theirOutput;
    startup.StartupInfo.hStdError = theirOutput;
    startup.lpAttributeList = inheritance.list();
    PROCESS_INFORMATION process = {};
    std::wstring text = commandLine;
    constexpr DWORD kFlags = CREATE_NO_WINDOW | EXTENDED_STARTUPINFO_PRESENT;
    const BOOL isStarted = inheritance.isGood() && CreateProcessW(nullptr, text.data(), nullptr, nullptr, TRUE, kFlags,
                                                                  nullptr, nullptr, &startup.StartupInfo, &process);
    CloseHandle(theirInput);
    CloseHandle(theirOutput);
    if (!isStarted) {
        closeHandle(input_);
        closeHandle(output_);
        return false;
    }
    CloseHandle(process.hThread);
    process_ = process.hProcess;
    processId_ = process.dwProcessId;
    {
        MutexLock textLock(mutex_);
        text_.clear();
    }
    isEnding_ = false;
    listener_ = std::thread([this] { listen(); });
    return true;
}

void Program::kill() {
    if (process_) {
        TerminateProcess(process_, 9);
        WaitForSingleObject(process_, 5000);
    }
    isEnding_ = true;
    if (listener_.joinable()) listener_.join();
    closeHandle(process_);
    closeHandle(input_);
    closeHandle(output_);
}

bool Program::isRunning() const {
    return process_ && WaitForSingleObject(process_, 0) == WAIT_TIMEOUT;
}

std::optional<std::uint32_t> Program::waitForEnd(std::uint32_t deadlineMs) const {
    DWORD code = 0;
    if (!process_ || WaitForSingleObject(process_, deadlineMs) != WAIT_OBJECT_0) return std::nullopt;
    if (!GetExitCodeProcess(process_, &code)) return std::nullopt;
    return code;
}

void Program::say(const std::string& line) {
    const std::string bytes = line + "\n";
    DWORD count = 0;
    if (input_) WriteFile(input_, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
}

void Program::endInput() {
    closeHandle(input_);
}

std::vector<std::string> Program::lines() const {
    MutexLock lock(mutex_);
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (auto end = text_.find('\n'); end != std::string::npos; end = text_.find('\n', start)) {
        const bool hasReturn = end > start && text_[end - 1] == '\r';
        lines.push_back(text_.substr(start, end - start - (hasReturn ? 1 : 0)));
        start = end + 1;
    }
    return lines;
}

// Looks instead of waiting: what the program has started may keep its output open after the program has ended.
void Program::listen() {
    char bytes[4096];
    DWORD count = 0;
    while (PeekNamedPipe(output_, nullptr, 0, nullptr, &count, nullptr)) {
        if (count == 0) {
            if (isEnding_) return;
            Sleep(5);
        } else if (ReadFile(output_, bytes, sizeof bytes, &count, nullptr)) {
            MutexLock lock(mutex_);
            text_.append(bytes, count);
        }
    }
}

std::wstring besideUs(const std::wstring& program, const std::wstring& arguments) {
    wchar_t file[MAX_PATH + 1] = {};
    GetModuleFileNameW(nullptr, file, MAX_PATH);
    std::wstring path = file;
    path.resize(path.find_last_of(L"\\/") + 1);
    return L"\"" + path + program + L"\" " + arguments;
}

}  // namespace standin
