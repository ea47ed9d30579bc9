// locked_file_win.h - files that cannot be replaced: kept open by another program, like a virus scanner or a backup, or
// read-only.
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

// In place of MoveFileExA: denies what Windows denies and Wine may grant.
inline BOOL WINAPI moveButNotOntoReadOnly(const char* from, const char* to, DWORD flags) {
    const DWORD attributes = GetFileAttributesA(to);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_READONLY) == 0)
        return MoveFileExA(from, to, flags);
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}
