// locked_file_win.h - a file that another program keeps open, like a virus scanner or a backup.
// [any] Its own handle and nothing else.
#pragma once
#include <windows.h>
#include <filesystem>

// Meanwhile nobody else can open the file.
class LockedFile {
  public:
    explicit LockedFile(const std::filesystem::path& file)
        : handle_(CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~LockedFile() { release(); }
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;

    bool isHeld() const { return handle_ != INVALID_HANDLE_VALUE; }
    void release() {
        if (isHeld()) CloseHandle(handle_);
        handle_ = INVALID_HANDLE_VALUE;
    }

  private:
    HANDLE handle_;
};
