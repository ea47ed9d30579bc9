#include "worker/system_win.h"
#include <chrono>
#include <vector>
#include "base/data_files.h"
#include "base/wide_text_win.h"
#include "worker/single_worker.h"

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kHighResolution = 2;  // CREATE_WAITABLE_TIMER_HIGH_RESOLUTION
// A sleep of this length may end a tick of the system early: then it needs no timer, which costs a system call to set.
constexpr std::uint64_t kLongSleepMs = 100;
constexpr std::uint64_t kTickMs = 16;

std::wstring finalPath(const std::string& folder) {
    const auto handle =
        ownFile(CreateFileA(folder.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    std::wstring path(MAX_PATH, L'\0');
    while (handle) {
        const DWORD length = GetFinalPathNameByHandleW(handle.get(), path.data(), static_cast<DWORD>(path.size()), 0);
        if (length == 0) break;
        const bool fits = length < path.size();
        path.resize(length);
        if (fits) return path;
    }
    return {};
}

// Links and short names resolved, lower case, UTF-8. Without a final path, the name as given must do.
std::string canonicalPath(const std::string& folder) {
    auto wide = finalPath(folder);
    if (wide.empty()) return folder;
    CharLowerBuffW(wide.data(), static_cast<DWORD>(wide.size()));
    return utf8FromWide(wide);
}

// Anything else, from access denied to a network drive that is away for a moment, says nothing about the folder.
bool isNotFound(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

}  // namespace

std::uint64_t FineClock::tickMs() const {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

bool WindowsFolder::folderExists(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return !isNotFound(GetLastError());
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool WindowsFolder::isGone(const std::string& path) {
    return GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES && isNotFound(GetLastError());
}

FileStamp WindowsFolder::stamp(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    FileStamp stamp;
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return stamp;
    stamp.exists = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    stamp.bytes = joined(data.nFileSizeHigh, data.nFileSizeLow);
    stamp.written = joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime);
    return stamp;
}

WindowsLogFile::WindowsLogFile(const std::string& dataDir)
    : path_(joinPath(dataDir, "hopline_worker.log")), oldPath_(joinPath(dataDir, "hopline_worker.old.log")) {}

std::uint64_t WindowsLogFile::bytes() {
    const auto stamp = WindowsFolder().stamp(path_);
    return stamp.exists ? stamp.bytes : 0;
}

bool WindowsLogFile::append(std::string_view line) {
    const auto file = ownFile(
        CreateFileA(path_.c_str(), FILE_APPEND_DATA, kShareAll, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    return file && WriteFile(file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr) &&
           written == line.size();
}

bool WindowsLogFile::rotate() {
    return MoveFileExA(path_.c_str(), oldPath_.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

void FolderWatch::begin() {
    handle_ = FindFirstChangeNotificationA(folder_.c_str(), FALSE, FILE_NOTIFY_CHANGE_FILE_NAME);
    if (handle_ == INVALID_HANDLE_VALUE) handle_ = nullptr;
    begunMs_ = GetTickCount64();
}

bool FolderWatch::watchOn(bool signalled) {
    const bool due = GetTickCount64() - begunMs_ >= kFolderCheckMs;
    if (!due && (!signalled || FindNextChangeNotification(handle_))) return signalled;
    end();
    begin();
    return true;  // nobody watched in between
}

void FolderWatch::end() {
    if (handle_) FindCloseChangeNotification(handle_);
    handle_ = nullptr;
}

WorkerSleep::WorkerSleep(HANDLE watched, const std::string& folder)
    : watched_(watched),
      folder_(folder),
      timer_(CreateWaitableTimerExW(nullptr, nullptr, kHighResolution, TIMER_ALL_ACCESS)) {}

std::optional<PassCause> WorkerSleep::sleep(const PassResult& pass, const WakeHandles& wake) {
    const auto ms = folder_.handle() ? pass.quietMs : pass.waitMs;
    LARGE_INTEGER due;
    due.QuadPart = -static_cast<LONGLONG>(ms) * 10000;  // 100 ns, negative: from now
    const bool timed = ms < kLongSleepMs && timer_ && SetWaitableTimer(timer_.get(), &due, 0, nullptr, nullptr, FALSE);
    HANDLE handles[3 + std::tuple_size_v<WakeHandles>];
    DWORD count = 0;
    if (watched_) handles[count++] = watched_;
    const DWORD folderIndex = count;
    if (folder_.handle()) handles[count++] = folder_.handle();
    const DWORD linkIndex = count;
    for (const HANDLE event : wake) {
        if (event) handles[count++] = event;
    }
    const DWORD timerIndex = count;
    if (timed) handles[count++] = timer_.get();
    const auto untimedMs = ms < kLongSleepMs ? ms : ms - kTickMs;
    const auto timeout = static_cast<DWORD>(timed ? ms + 100 : untimedMs);  // 100 ms more: the timer may never fire
    const DWORD result = count > 0 ? WaitForMultipleObjects(count, handles, FALSE, timeout) : WAIT_FAILED;
    if (result == WAIT_FAILED) Sleep(static_cast<DWORD>(ms));
    if (watched_ && result == WAIT_OBJECT_0) return std::nullopt;
    // The first one that is signalled counts: if it is the link, the folder was not.
    const bool isLink = folder_.handle() && result >= WAIT_OBJECT_0 + linkIndex && result < WAIT_OBJECT_0 + timerIndex;
    const bool mayHaveChanged = folder_.watchOn(folder_.handle() && result == WAIT_OBJECT_0 + folderIndex);
    return isLink && !mayHaveChanged ? PassCause::kLinkNews : PassCause::kAnything;
}

FolderClaim::FolderClaim(const std::string& dataDir) : name_(workerMutexName(canonicalPath(dataDir))) {}

FolderClaim::Outcome FolderClaim::wait(HANDLE watched, std::uint64_t ms) {
    if (!mutex_) mutex_.reset(CreateMutexA(nullptr, FALSE, name_.c_str()));
    HANDLE handles[2];
    DWORD count = 0;
    if (watched) handles[count++] = watched;  // the first one that is signalled counts
    const DWORD mutexIndex = count;
    if (mutex_) handles[count++] = mutex_.get();
    const auto timeout = static_cast<DWORD>(ms);
    const DWORD result = count > 0 ? WaitForMultipleObjects(count, handles, FALSE, timeout) : WAIT_FAILED;
    if (watched && result == WAIT_OBJECT_0) return Outcome::kWatchedEnded;
    // Abandoned: its owner was killed, as workers are.
    if (mutex_ && (result == WAIT_OBJECT_0 + mutexIndex || result == WAIT_ABANDONED_0 + mutexIndex))
        return Outcome::kOurs;
    if (result == WAIT_FAILED) Sleep(timeout);
    return Outcome::kTaken;
}

// The mutex lives as long as anybody has it open; that of a worker with more rights than ours denies us access.
bool isFolderServed(const std::string& dataDir) {
    const OwnedHandle mutex(OpenMutexA(SYNCHRONIZE, FALSE, workerMutexName(canonicalPath(dataDir)).c_str()));
    return mutex || GetLastError() == ERROR_ACCESS_DENIED;
}

void leaveCurrentDirectory() {
    char folder[MAX_PATH];
    const UINT length = GetWindowsDirectoryA(folder, MAX_PATH);
    if (length > 0 && length < MAX_PATH) SetCurrentDirectoryA(folder);
}
