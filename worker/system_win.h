// system_win.h - what the worker needs of Windows: time, file stamps, its log file, other processes, the loop's sleep.
#pragma once
#include <windows.h>
#include <cstdint>
#include <optional>
#include <string>
#include "base/clock_win.h"
#include "base/handle_win.h"
#include "worker/worker_folder.h"
#include "worker/worker_log.h"
#include "worker/worker_loop.h"

// The 64 bits that Windows hands out in halves.
inline std::uint64_t joined(DWORD high, DWORD low) {
    return (static_cast<std::uint64_t>(high) << 32) | low;
}

// Ticks of one millisecond, where GetTickCount64 has 16. The wall clock stays the one by which the plugin judges
// "updated": a finer one runs up to 16 ms ahead of it, and the plugin refuses a file from the future.
class FineClock : public SystemClock {
  public:
    std::uint64_t tickMs() const override;
};

class WindowsFolder : public WorkerFolder {
  public:
    // Also one to which we have no access, or which cannot be looked at just now.
    static bool folderExists(const std::string& path);
    bool isGone(const std::string& path) override;
    FileStamp stamp(const std::string& path) override;
};

// Opened, written and closed for each line, shared with everyone: a second worker may add its line, an editor may look.
class WindowsLogFile : public LogFile {
  public:
    explicit WindowsLogFile(const std::string& dataDir);
    std::uint64_t bytes() override;
    bool append(std::string_view line) override;
    bool rotate() override;

  private:
    std::string path_;
    std::string oldPath_;
};

// Signals that a file in the folder has been added, removed or renamed. A watched folder cannot disappear until the
// watch lets go of it, so it does so every few hundred milliseconds.
class FolderWatch {
  public:
    explicit FolderWatch(const std::string& folder) : folder_(folder) { begin(); }
    ~FolderWatch() { end(); }
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    // Null if the folder cannot be watched.
    HANDLE handle() const { return handle_; }
    // After each sleep and before the folder is looked at: a change after this signals again. True if there may have
    // been one.
    bool watchOn(bool signalled);

  private:
    void begin();
    void end();

    std::string folder_;
    HANDLE handle_ = nullptr;
    std::uint64_t begunMs_ = 0;
};

// The loop's sleep, cut short by the end of the watched process, by news from the simulator and by changes in the
// folder.
class WorkerSleep {
  public:
    // watched may be null; it is not owned.
    WorkerSleep(HANDLE watched, const std::string& folder);
    // Why it is over; nothing if the watched process has ended.
    std::optional<PassCause> sleep(const PassResult& pass, const WakeHandles& wake);

  private:
    HANDLE watched_;
    FolderWatch folder_;
    OwnedHandle timer_;  // null before Windows 10 1803: the sleep then ends with the system's own 16 ms tick
};

// The right to serve a folder, which one worker at a time has: a mutex, ours until the process ends.
class FolderClaim {
  public:
    enum class Outcome { kOurs, kTaken, kWatchedEnded };

    explicit FolderClaim(const std::string& dataDir);
    // Waits for at most ms milliseconds until it is ours or the watched process has ended. watched may be null; it is
    // not owned.
    Outcome wait(HANDLE watched, std::uint64_t ms);

  private:
    std::string name_;
    OwnedHandle mutex_;  // null while a worker with more rights than ours keeps us from opening it
};

// Whether a worker holds that mutex or is about to. Only looks: a worker that starts meanwhile is not affected.
bool isFolderServed(const std::string& dataDir);

// Moves to the Windows folder: a current directory cannot be deleted.
void leaveCurrentDirectory();
