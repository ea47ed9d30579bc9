// program_win.h - a program started by a test or a demonstration, with its standard input and output in our hands.
// [any thread] One owner; lines() and say() may be called while the program runs.
#pragma once
#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <vector>
#include "base/mutex.h"

namespace standin {

class Program {
  public:
    Program() = default;
    ~Program() { kill(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Kills a program that still runs first. False if this one cannot be started.
    bool start(const std::wstring& commandLine);
    // Ends it as a crash would, without a chance to say goodbye.
    void kill();
    bool isRunning() const;
    // Its exit code once it has ended by itself or was killed by others; nothing if it still runs at the deadline.
    std::optional<std::uint32_t> waitForEnd(std::uint32_t deadlineMs) const;
    std::uint32_t processId() const { return processId_; }  // 0 before the first start

    void say(const std::string& line);       // to its standard input
    void endInput();                         // no more input
    std::vector<std::string> lines() const;  // of its standard output since the start

  private:
    void listen();

    void* process_ = nullptr;
    void* input_ = nullptr;   // we write
    void* output_ = nullptr;  // we read
    std::uint32_t processId_ = 0;
    std::atomic<bool> isEnding_{false};  // the owner stores, the listener loads
    std::thread listener_;
    mutable Mutex mutex_;  // for one line, or a copy of them
    std::string text_ GUARDED_BY(mutex_);
};

// "\"C:\\folder\\name.exe\" arguments" for a program beside this one.
std::wstring besideUs(const std::wstring& program, const std::wstring& arguments);

}  // namespace standin
