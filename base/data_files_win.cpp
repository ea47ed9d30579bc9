#include "base/data_files_win.h"
#include <windows.h>
#include <algorithm>
#include <limits>
#include <span>

namespace {

// Pauses between tries. The other side's rename takes well under a millisecond; another reader of the file to be
// replaced (a virus scanner, a backup) holds it for longer, and what cannot be written by then is lost.
constexpr DWORD kOpenPausesMs[] = {3, 3};
constexpr DWORD kReplacePausesMs[] = {3, 3, 6, 12, 25, 50};
constexpr DWORD kWriteChunk = 1U << 20U;

bool isBusy(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED || error == ERROR_DELETE_PENDING ||
           error == ERROR_LOCK_VIOLATION;
}

// Runs attempt until it succeeds, fails for a lasting reason, or the pauses are used up.
template <class Attempt>
bool retryWhileBusy(std::span<const DWORD> pausesMs, Attempt attempt) {
    for (const DWORD pauseMs : pausesMs) {
        if (attempt()) return true;
        if (!isBusy(GetLastError())) return false;
        Sleep(pauseMs);
    }
    return attempt();
}

class File {
  public:
    File(const std::string& path, DWORD access, DWORD disposition) {
        constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        retryWhileBusy(kOpenPausesMs, [&] {
            handle_ =
                CreateFileA(path.c_str(), access, kShareAll, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
            return isOpen();
        });
    }
    ~File() { close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE handle() const { return handle_; }
    bool close() {
        const HANDLE handle = handle_;
        handle_ = INVALID_HANDLE_VALUE;
        return handle == INVALID_HANDLE_VALUE || CloseHandle(handle) != 0;
    }

  private:
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

bool writeAll(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto chunk = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), kWriteChunk));
        DWORD written = 0;
        if (!WriteFile(file, bytes.data(), chunk, &written, nullptr) || written == 0) return false;
        bytes.remove_prefix(written);
    }
    return true;
}

bool writeFile(const std::string& path, std::string_view bytes) {
    File file(path, GENERIC_WRITE, CREATE_ALWAYS);
    return file.isOpen() && writeAll(file.handle(), bytes) && file.close();
}

}  // namespace

bool WindowsDataFiles::read(const std::string& path, std::string& bytes) {
    return readBeginning(path, std::numeric_limits<std::size_t>::max(), bytes);
}

bool WindowsDataFiles::readBeginning(const std::string& path, std::size_t maxBytes, std::string& bytes) {
    bytes.clear();
    const File file(path, GENERIC_READ, OPEN_EXISTING);
    if (!file.isOpen()) return false;
    char chunk[4096];
    while (bytes.size() < maxBytes) {
        const auto wanted = static_cast<DWORD>(std::min(sizeof chunk, maxBytes - bytes.size()));
        DWORD got = 0;
        if (!ReadFile(file.handle(), chunk, wanted, &got, nullptr) || got == 0) break;
        bytes.append(chunk, got);
    }
    return true;
}

bool WindowsDataFiles::replace(const std::string& path, std::string_view bytes) {
    const std::string temporary = path + ".tmp";
    if (!writeFile(temporary, bytes)) return false;
    return retryWhileBusy(kReplacePausesMs, [&] {
        return MoveFileExA(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
    });
}
