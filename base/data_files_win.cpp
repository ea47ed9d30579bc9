#include "base/data_files_win.h"
#include <windows.h>
#include <algorithm>
#include <chrono>
#include "base/clock_win.h"
#include "base/handle_win.h"

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kWriteChunk = 1U << 20U;
constexpr double kOldSeconds = 60.0;

FileResult resultOf(DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return {FileState::kMissing, error};
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_DELETE_PENDING:
            return {FileState::kHeld, error};
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_EXISTS:
            return {FileState::kTaken, error};
        default:
            return {FileState::kFailed, error};
    }
}

FileResult lastFailure() {
    return resultOf(GetLastError());
}

OwnedHandle openFile(const std::string& path, DWORD access, DWORD disposition) {
    return ownFile(CreateFileA(path.c_str(), access, kShareAll, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// The system denies a move onto an open file in the same words as one onto a read-only file or without the right to.
FileResult deniedMove(const std::string& to) {
    const DWORD attributes = GetFileAttributesA(to.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
        return {FileState::kReadOnly, ERROR_ACCESS_DENIED};
    // With the right to delete it, only an open handle stood in the way.
    if (openFile(to, DELETE, OPEN_EXISTING)) return {FileState::kHeld, ERROR_ACCESS_DENIED};
    const FileResult result = lastFailure();
    return result.state == FileState::kHeld ? result : FileResult{FileState::kFailed, ERROR_ACCESS_DENIED};
}

bool writeAll(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto chunk = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), kWriteChunk));
        DWORD written = 0;
        if (!WriteFile(file, bytes.data(), chunk, &written, nullptr)) return false;
        if (written == 0) {
            SetLastError(ERROR_DISK_FULL);
            return false;
        }
        bytes.remove_prefix(written);
    }
    return true;
}

// A file system that has nothing to flush says so.
bool flush(HANDLE file) {
    if (FlushFileBuffers(file)) return true;
    const DWORD error = GetLastError();
    return error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED;
}

double lastWriteSeconds(const WIN32_FIND_DATAA& data) {
    const std::uint64_t high = data.ftLastWriteTime.dwHighDateTime;
    return unixSecondsOfFileTime(high << 32U | data.ftLastWriteTime.dwLowDateTime);
}

}  // namespace

FileResult WindowsDataFiles::readOnce(const std::string& path, std::size_t maxBytes, std::string& bytes) {
    bytes.clear();
    const OwnedHandle file = openFile(path, GENERIC_READ, OPEN_EXISTING);
    if (!file) return lastFailure();
    char chunk[4096];
    DWORD got = 0;
    do {
        const auto wanted = static_cast<DWORD>(std::min(sizeof chunk, maxBytes - bytes.size()));
        if (!ReadFile(file.get(), chunk, wanted, &got, nullptr)) return lastFailure();
        bytes.append(chunk, got);
    } while (got > 0 && bytes.size() < maxBytes);
    return {};
}

FileResult WindowsDataFiles::writeOnce(const std::string& path, std::string_view bytes, bool isFlushed) {
    OwnedHandle file = openFile(path, GENERIC_WRITE, CREATE_ALWAYS);
    if (!file || !writeAll(file.get(), bytes) || (isFlushed && !flush(file.get()))) return lastFailure();
    return CloseHandle(file.release()) ? FileResult{} : lastFailure();
}

FileResult WindowsDataFiles::moveOnce(const std::string& from, const std::string& to, bool isReplacing) {
    const DWORD replace = isReplacing ? MOVEFILE_REPLACE_EXISTING : 0;
    const DWORD wait = moveOnto_ == MoveOnto::kDisk ? MOVEFILE_WRITE_THROUGH : 0;
    if (MoveFileExA(from.c_str(), to.c_str(), replace | wait)) return {};
    const DWORD error = GetLastError();
    return error == ERROR_ACCESS_DENIED ? deniedMove(to) : resultOf(error);
}

void WindowsDataFiles::remove(const std::string& path) {
    DeleteFileA(path.c_str());
}

std::uint32_t WindowsDataFiles::pause(std::uint32_t ms) {
    const auto begun = std::chrono::steady_clock::now();
    Sleep(ms);
    const auto took = std::chrono::steady_clock::now() - begun;
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(took).count());
}

std::uint32_t WindowsDataFiles::processId() const {
    return GetCurrentProcessId();
}

void removeOldTemporaries(const std::string& folder, const std::string& fileName) {
    WIN32_FIND_DATAA data;
    const HANDLE search = FindFirstFileA(joinPath(folder, fileName + ".*.tmp").c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        const bool isOld = SystemClock().unixSeconds() - lastWriteSeconds(data) >= kOldSeconds;
        if (isOld && isTemporaryOf(data.cFileName, fileName)) DeleteFileA(joinPath(folder, data.cFileName).c_str());
    } while (FindNextFileA(search, &data));
    FindClose(search);
}
