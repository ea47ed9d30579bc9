// worker_program_test.cpp - the real worker program on its own: when it ends, its exit code and its log's last line.
#include <gtest/gtest.h>
#include <windows.h>
#include "tests/client/worker_at_work_win.h"

namespace {

constexpr auto kDeadlineMs = static_cast<std::uint32_t>(kPatienceMs);
constexpr std::uint32_t kEnded = 0, kBadArguments = 2, kSecondWorker = 3;

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

}  // namespace

class WorkerProgram : public ::testing::Test {
  protected:
    bool startWatching(std::uint32_t processId) {
        return worker.startWith(worker.dataDirArgument() + L" --simulate --watch-pid " + std::to_wstring(processId));
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

TEST_F(WorkerProgram, LeavesAFolderToTheWorkerThatServesItAlready) {
    ASSERT_TRUE(worker.start(L" --simulate"));
    ASSERT_TRUE(worker.waitOk()) << worker.log();
    standin::Program second;
    // The same folder under another name.
    const auto folder = worker.folder.path.wstring() + L"\\.";
    ASSERT_TRUE(second.start(L"\"" + productFile("hopline_worker.exe").wstring() + L"\" --simulate --data-dir \"" +
                             folder + L"\""));
    EXPECT_EQ(second.waitForEnd(kDeadlineMs), kSecondWorker);
    EXPECT_TRUE(worker.hasLogged("ending: another worker already serves " + toCodePage(worker.folder.path.wstring())))
        << worker.log();
    EXPECT_TRUE(worker.program.isRunning());
    EXPECT_TRUE(worker.waitOk());  // goes on as before

    worker.program.kill();  // and what a killed worker leaves behind locks nobody out
    ASSERT_TRUE(worker.start(L" --simulate"));
    EXPECT_TRUE(worker.waitOk()) << worker.log();
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
