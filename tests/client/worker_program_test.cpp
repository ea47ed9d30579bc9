// worker_program_test.cpp - the real worker program on its own: when it ends, its exit code and its log's last line.
#include <gtest/gtest.h>
#include <windows.h>
#include "base/handle_win.h"
#include "tests/client/worker_at_work_win.h"
#include "worker/single_worker.h"

namespace {

constexpr auto kDeadlineMs = static_cast<std::uint32_t>(kPatienceMs);
constexpr std::uint32_t kEnded = 0, kBadArguments = 2;

// A program that ends when it is told to, or is killed.
class WatchedProgram {
  public:
    bool start() { return program.start(standin::besideUs(L"stand_in_simulator.exe", L"--tcp 0")); }
    void endByItself() { program.endInput(); }

    standin::Program program;
};

bool canBeOpened(std::uint32_t processId) {
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, processId);
    if (process) CloseHandle(process);
    return process != nullptr;
}

// What a worker holds that serves the folder; null if there is one.
OwnedHandle serveFolder(const std::filesystem::path& folder) {
    const auto handle = ownFile(CreateFileW(folder.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                            nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    wchar_t path[1024] = {};
    const DWORD length = GetFinalPathNameByHandleW(handle.get(), path, 1024, 0);
    CharLowerBuffW(path, length);
    OwnedHandle mutex(CreateMutexA(nullptr, TRUE, workerMutexName(toUtf8(path)).c_str()));
    return GetLastError() == ERROR_ALREADY_EXISTS ? nullptr : std::move(mutex);
}

}  // namespace

class WorkerProgram : public ::testing::Test {
  protected:
    bool startWatching(std::uint32_t processId) {
        return worker.startWith(worker.dataDirArgument() + L" --simulate --watch-pid " + std::to_wstring(processId));
    }

    // A worker for the same folder under another name.
    bool startSecond(standin::Program& second, std::uint32_t watchedId) {
        const auto folder = worker.folder.path.wstring() + L"\\.";
        return second.start(L"\"" + productFile("hopline_worker.exe").wstring() + L"\" --simulate --data-dir \"" +
                            folder + L"\" --watch-pid " + std::to_wstring(watchedId));
    }
    std::string waitingLine() const {
        return "another worker already serves " + toCodePage(worker.folder.path.wstring()) + "; waiting for it to go";
    }

    WatchedProgram watched;
    WorkerAtWork worker;
};

TEST_F(WorkerProgram, EndsWhenTheWatchedProcessIsKilled) {
    ASSERT_TRUE(watched.start());
    ASSERT_TRUE(startWatching(watched.program.processId()));
    ASSERT_TRUE(worker.waitOk()) << worker.log();
    ASSERT_TRUE(killProcess(watched.program.processId()));
    EXPECT_EQ(worker.program.waitForEnd(kDeadlineMs), kEnded);
    EXPECT_TRUE(worker.hasLogged("ending: the watched process has ended")) << worker.log();
}

TEST_F(WorkerProgram, EndsWhenTheWatchedProcessEnds) {
    ASSERT_TRUE(watched.start());
    ASSERT_TRUE(startWatching(watched.program.processId()));
    ASSERT_TRUE(worker.waitOk()) << worker.log();
    watched.endByItself();
    EXPECT_EQ(worker.program.waitForEnd(kDeadlineMs), kEnded);
    EXPECT_TRUE(worker.hasLogged("ending: the watched process has ended")) << worker.log();
}

TEST_F(WorkerProgram, ServesNobodyWhenTheProcessToWatchIsGoneAlready) {
    ASSERT_TRUE(watched.start());
    const auto processId = watched.program.processId();
    watched.program.kill();
    ASSERT_TRUE(waitFor([&] { return !canBeOpened(processId); }, kPatienceMs));  // the system forgets it a moment later
    ASSERT_TRUE(startWatching(processId));
    EXPECT_EQ(worker.program.waitForEnd(kDeadlineMs), kEnded);
    EXPECT_TRUE(worker.hasLogged("ending: process " + std::to_string(processId) + " cannot be opened (error "))
        << worker.log();
    EXPECT_EQ(worker.telemetry().updated, 0.0);
}

// Two voice clients with one data folder.
TEST_F(WorkerProgram, WaitsForTheWorkerThatServesTheFolderAndThenServesIt) {
    ASSERT_TRUE(worker.start(L" --simulate"));
    ASSERT_TRUE(worker.waitOk()) << worker.log();
    standin::Program second;
    ASSERT_TRUE(startSecond(second, GetCurrentProcessId()));
    ASSERT_TRUE(waitFor([&] { return worker.hasLogged(waitingLine()); }, kPatienceMs)) << worker.log();
    EXPECT_TRUE(worker.program.isRunning());
    EXPECT_TRUE(worker.command(1, "standby", "128855").ackOk) << worker.log();  // the first goes on as before
    EXPECT_TRUE(second.isRunning());

    worker.program.kill();
    ASSERT_TRUE(waitFor([&] { return worker.hasLogged("the other worker has gone"); }, kPatienceMs)) << worker.log();
    const auto answer = worker.command(1, "standby", "121500");
    EXPECT_TRUE(answer.ackOk) << worker.log();
    EXPECT_EQ(answer.radios[0].standby, 121500);
    EXPECT_TRUE(second.isRunning());
}

TEST_F(WorkerProgram, WaitsNoLongerThanItsWatchedProcessRuns) {
    ASSERT_TRUE(watched.start());
    ASSERT_TRUE(worker.start(L" --simulate"));
    ASSERT_TRUE(worker.waitOk()) << worker.log();
    standin::Program second;
    ASSERT_TRUE(startSecond(second, watched.program.processId()));
    ASSERT_TRUE(waitFor([&] { return worker.hasLogged(waitingLine()); }, kPatienceMs)) << worker.log();
    watched.endByItself();
    EXPECT_EQ(second.waitForEnd(kDeadlineMs), kEnded);
    EXPECT_TRUE(worker.hasLogged("ending: the watched process has ended")) << worker.log();
    EXPECT_TRUE(worker.program.isRunning());
    EXPECT_TRUE(worker.waitOk());
}

TEST_F(WorkerProgram, WaitsNoLongerThanItsFolderIsThere) {
    // As a worker that outlives the folder: a real one would go, too, and make room.
    const OwnedHandle served = serveFolder(worker.folder.path);
    ASSERT_TRUE(served);
    standin::Program second;
    ASSERT_TRUE(startSecond(second, GetCurrentProcessId()));
    ASSERT_TRUE(waitFor([&] { return worker.hasLogged(waitingLine()); }, kPatienceMs)) << worker.log();
    const auto elsewhere = worker.folder.path.wstring() + L" elsewhere";
    ASSERT_TRUE(waitFor([&] { return MoveFileW(worker.folder.path.c_str(), elsewhere.c_str()) != 0; }, kPatienceMs));
    EXPECT_EQ(second.waitForEnd(kDeadlineMs), kEnded);
    ReleaseMutex(served.get());
    std::error_code ignored;
    std::filesystem::remove_all(elsewhere, ignored);
}

TEST_F(WorkerProgram, RefusesABadCommandLine) {
    const auto nowhere = worker.folder.path / "nowhere";
    const struct {
        std::wstring arguments;
        const char* logged;
    } rows[] = {{L"", ""},
                {L"--data-dir \"" + nowhere.wstring() + L"\"", ""},
                {worker.dataDirArgument() + L" --bogus", "ending: bad command line: unknown argument --bogus"},
                {worker.dataDirArgument() + L" --watch-pid", "ending: bad command line: "}};
    for (const auto& row : rows) {
        ASSERT_TRUE(worker.startWith(row.arguments));
        EXPECT_EQ(worker.program.waitForEnd(kDeadlineMs), kBadArguments) << toUtf8(row.arguments);
        EXPECT_TRUE(*row.logged ? worker.hasLogged(row.logged) : worker.log().empty()) << toUtf8(row.arguments) << '\n'
                                                                                       << worker.log();
    }
    EXPECT_FALSE(std::filesystem::exists(nowhere));
}

TEST_F(WorkerProgram, EndsWhenItsFolderIsGone) {
    ASSERT_TRUE(worker.start(L" --simulate"));
    ASSERT_TRUE(worker.waitOk()) << worker.log();
    const auto elsewhere = worker.folder.path.wstring() + L" elsewhere";
    ASSERT_TRUE(waitFor([&] { return MoveFileW(worker.folder.path.c_str(), elsewhere.c_str()) != 0; }, kPatienceMs));
    EXPECT_EQ(worker.program.waitForEnd(kDeadlineMs), kEnded);
    std::error_code ignored;
    std::filesystem::remove_all(elsewhere, ignored);
}
