#include "worker/diagnosis_win.h"
#include <windows.h>
#include <exception>
#include <memory>
#include <utility>
#include "base/code_page_win.h"
#include "base/data_files_win.h"
#include "base/data_folder_win.h"
#include "base/identity.h"
#include "base/wide_text_win.h"
#include "exchange/command_text.h"
#include "exchange/support_files.h"
#include "exchange/telemetry_text.h"
#include "worker/diagnosis.h"
#include "worker/output_win.h"
#include "worker/system_win.h"
#include "worker/user_names.h"
#include "worker/versions_win.h"

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kTrialPauseMs = 20;
constexpr std::uint64_t kMaxCountedEntries = 100'000;

// The worker's log of the trial, kept in memory: the real one belongs to the workers that serve.
class LogInMemory : public LogFile {
  public:
    std::uint64_t bytes() override { return 0; }
    bool append(std::string_view line) override {
        text += line;
        return true;
    }
    bool rotate() override { return false; }

    std::string text;
};

// Owns a search through a folder; null if it could not begin.
struct SearchCloser {
    void operator()(HANDLE search) const { FindClose(search); }
};
using OwnedSearch = std::unique_ptr<void, SearchCloser>;

// The last kMaxFoundBytes of a larger file, or the first ones.
bool readPart(const std::string& path, bool fromEnd, std::string& bytes) {
    const auto file = ownFile(
        CreateFileA(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER back;
    back.QuadPart = -static_cast<LONGLONG>(kMaxFoundBytes);
    if (!file || (fromEnd && !SetFilePointerEx(file.get(), back, nullptr, FILE_END))) return false;
    bytes.resize(kMaxFoundBytes);
    DWORD count = 0;
    const bool isRead = ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) != 0;
    bytes.resize(isRead ? count : 0);
    return isRead;
}

FoundFile findFile(const std::string& path, bool isLog = false) {
    FoundFile file;
    WindowsFolder folder;
    const auto stamp = folder.stamp(path);
    if (!stamp.exists && !WindowsFolder::folderExists(path)) return file;
    file.size = stamp.bytes;
    file.writtenUnixSeconds = unixSecondsOfFileTime(stamp.written);
    const bool isRead =
        stamp.exists && (stamp.bytes > kMaxFoundBytes ? readPart(path, isLog, file.bytes)
                                                      : static_cast<bool>(WindowsDataFiles().read(path, file.bytes)));
    file.state = isRead ? FoundFile::State::kRead : FoundFile::State::kUnreadable;
    return file;
}

// Not tried with the report itself, whose text says the result.
bool isWritable(const std::string& folder) {
    const auto path = joinPath(folder, std::string(kDiagnosisFile) + ".try");
    return ownFile(CreateFileA(path.c_str(), GENERIC_WRITE | DELETE, kShareAll, nullptr, CREATE_ALWAYS,
                               FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr)) != nullptr;
}

void listFolder(Diagnosis& found, const std::string& folder) {
    WIN32_FIND_DATAW data;
    const auto pattern = wideFromUtf8(utf8FromNarrow(joinPath(folder, "*")));
    const HANDLE handle = FindFirstFileW(pattern.c_str(), &data);
    const OwnedSearch search(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
    for (bool more = search != nullptr; more && found.moreEntries < kMaxCountedEntries;
         more = FindNextFileW(handle, &data) != 0) {
        FolderEntry entry;
        entry.name = utf8FromWide(data.cFileName);
        if (entry.name == "." || entry.name == "..") continue;
        entry.isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        entry.size = joined(data.nFileSizeHigh, data.nFileSizeLow);
        entry.writtenUnixSeconds =
            unixSecondsOfFileTime(joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime));
        if (found.entries.size() < kMaxFolderEntries) {
            found.entries.push_back(std::move(entry));
        } else {
            found.moreEntries++;
        }
    }
}

void findDataFolderOf(WorkerOptions& options, Diagnosis& found) {
    if (!options.dataDir.empty()) {
        found.dataFolderOrigin = "--data-dir";
    } else {
        const auto folder = findDataFolder();
        found.dataFolderOrigin =
            folder.starts_with('.') ? "the working folder, as %APPDATA% is not set or too long" : "%APPDATA%";
        options.dataDir = fullPath(folder);
    }
    found.dataFolder = utf8FromNarrow(options.dataDir);
    found.folderExists = WindowsFolder::folderExists(options.dataDir);
    found.folderWritable = found.folderExists && isWritable(options.dataDir);
    listFolder(found, options.dataDir);
}

void findFiles(const std::string& dataDir, const std::string& programFolder, Diagnosis& found) {
    const auto inData = [&](const char* name) { return joinPath(dataDir, name); };
    found.settings = findFile(inData("settings.ini"));
    if (found.settings.state == FoundFile::State::kMissing) {
        found.settings = findFile(joinPath(programFolder, "settings.ini"));
        found.settingsBesideDll = found.settings.state != FoundFile::State::kMissing;
    }
    found.workerIni = findFile(inData("worker.ini"));
    found.captureMode = findFile(inData("capture_mode.txt"));
    found.hostInterface = findFile(inData(kHostInterfaceFile));
    found.hostAnswer = findFile(inData(kHostAnswerFile));
    found.linkState = findFile(inData(kLinkStateFile));
    found.telemetry = findFile(inData(kTelemetryFile));
    found.command = findFile(inData(kCommandFile));
    found.oldLog = findFile(inData("hopline_worker.old.log"), true);
    found.log = findFile(inData("hopline_worker.log"), true);
}

void examineLink(WorkerOptions& options, const LinkWays& ways, Diagnosis& found) {
    found.iniRemarks = applyIni(found.workerIni.bytes, options);
    found.linkKind = describeLink(options);
    found.otherWorkerRuns = found.folderExists && isFolderServed(options.dataDir);
    if (found.otherWorkerRuns) return;
    const FineClock clock;
    LogInMemory file;
    WorkerLog log(file, clock);
    WindowsDataFiles files;
    WindowsFolder folder;
    const auto link = makeLink(options, files, folder, log, ways, clock.tickMs());
    found.trial = tryLink(*link, clock, [] { Sleep(kTrialPauseMs); });
    const auto lines = splitLines(file.text);
    found.trial->notes.insert(found.trial->notes.begin(), lines.begin(), lines.end());
}

// The names by which the environment knows the user: the account's, and the last part of the home folder's path.
std::vector<std::string> accountNames() {
    constexpr DWORD kBuffer = 4096;
    std::vector<std::string> names;
    std::vector<wchar_t> value(kBuffer);
    for (const wchar_t* variable : {L"USERNAME", L"USERPROFILE", L"HOMEPATH", L"HOME"}) {
        const DWORD length = GetEnvironmentVariableW(variable, value.data(), kBuffer);
        if (length == 0 || length >= kBuffer) continue;
        auto name = utf8FromWide(value.data());
        while (name.ends_with('\\') || name.ends_with('/')) name.pop_back();
        names.push_back(name.substr(name.find_last_of("\\/:") + 1));
    }
    return names;
}

std::string temporaryFolder() {
    wchar_t path[MAX_PATH + 2] = {};
    const DWORD length = GetTempPathW(MAX_PATH + 1, path);
    auto narrow = length > 0 ? narrowPath(std::wstring(path, length)).value_or("") : std::string();
    while (narrow.ends_with('\\')) narrow.pop_back();
    return narrow;
}

// The file's path; empty if it could not be saved anywhere.
std::string save(const std::string& report, const std::string& dataDir) {
    WindowsDataFiles files;
    for (const auto& folder : {dataDir, temporaryFolder()}) {
        auto path = joinPath(folder, kDiagnosisFile);
        if (!folder.empty() && files.replace(path, report)) return path;
    }
    return {};
}

}  // namespace

bool diagnose(WorkerOptions options, const std::string& commandLineProblem, const LinkWays& ways) {
    try {
        Diagnosis found;
        found.commandLineProblem = commandLineProblem;
        found.accountNames = accountNames();
        const auto programFolder = findModuleFolder();
        found.workerVersion = kPluginVersion;
        found.pluginVersion = fileVersion(joinPath(programFolder, kDllName));
        found.windowsVersion = windowsVersion();
        found.programFolder = utf8FromNarrow(programFolder);
        findDataFolderOf(options, found);
        findFiles(options.dataDir, programFolder, found);
        // After the files: a worker goes on writing, and a file from the future would count as not used.
        found.nowUnixSeconds = SystemClock().unixSeconds();
        examineLink(options, ways, found);
        const auto report = composeDiagnosis(found, utf8FromNarrow);
        const auto path = save(report, options.dataDir);
        const auto outcome = path.empty() ? "This report could not be saved." : "Saved as " + utf8FromNarrow(path);
        printText(report + "\r\n" + maskUserNames(outcome, found.accountNames) + "\r\n");
        return !path.empty();
    } catch (const std::exception& failure) {
        printText(std::string("The diagnosis failed: ") + failure.what() + "\r\n");
        return false;
    }
}
