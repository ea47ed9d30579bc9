// system_win.h - what the worker needs of Windows: time, file stamps, its log file, other processes, the loop's sleep.
#pragma once
#include <windows.h>
#include <memory>
#include <string>
#include "base/clock_win.h"
#include "worker/worker_folder.h"
#include "worker/worker_log.h"

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

// Ticks of one millisecond, where GetTickCount64 has 16. The wall clock stays the one that the plugin judges "updated"
// by: a finer one runs up to 16 ms ahead of it, and the plugin refuses a file from the future.
class FineClock : public SystemClock {
  public:
    std::uint64_t tickMs() const override;
};

class WindowsFolder : public WorkerFolder {
  public:
    bool folderExists(const std::string& path) override;
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

// The loop's sleep, cut short by the end of the watched process.
class WorkerSleep {
  public:
    // watched may be null; it is not owned.
    explicit WorkerSleep(HANDLE watched);
    // True if the watched process has ended.
    bool sleep(std::uint64_t ms);

  private:
    HANDLE watched_;
    OwnedHandle timer_;  // null before Windows 10 1803: the sleep then ends with the system's own 16 ms tick
};

// Full path of the file or folder as seen from the current directory; the path as it was if there is none.
std::string fullPath(const std::string& path);

// The mutex that says we serve this folder; null if another worker holds it. Waits up to half a second: a plugin that
// is reloaded starts its new worker while the killed one is still going.
OwnedHandle claimFolder(const std::string& dataDir);

// Moves to the Windows folder: a current directory cannot be deleted.
void leaveCurrentDirectory();
