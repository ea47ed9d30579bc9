#include <windows.h>
#include <algorithm>
#include <atomic>
#include <sstream>
#include "bridge/worker_command_line.h"
#include "exchange/support_files.h"
#include "exchange/telemetry_text.h"
#include "tests/client/client_session_win.h"
#include "tests/client/import_patch_win.h"
#include "tests/client/worker_at_work_win.h"

namespace {

constexpr const wchar_t* kLibrary = L"corvalis_win64.dll";
constexpr const char* kStarted = "SimConnect worker started";

// What a fake worker wrote about its start.
struct StartReport {
    std::uint32_t processId = 0;
    std::string commandLine;
    std::string folder;
    std::string show;  // start-up flags and show state
};

std::vector<StartReport> startReports(const std::filesystem::path& folder) {
    std::vector<StartReport> reports;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("started-", 0) != 0 || entry.path().extension() != ".txt") continue;
        StartReport report;
        report.processId = static_cast<std::uint32_t>(std::stoul(name.substr(8)));
        std::istringstream lines(readFile(entry.path()));
        std::getline(lines, report.commandLine);
        std::getline(lines, report.folder);
        std::getline(lines, report.show);
        reports.push_back(report);
    }
    return reports;
}

std::string quoted(const std::filesystem::path& path) {
    std::string text = "\"";
    text += toCodePage(path.wstring());
    return text += '"';
}

// What the plugin calls instead of the system's job functions.
HANDLE WINAPI createNoJob(SECURITY_ATTRIBUTES*, const char*) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

BOOL WINAPI refuseLimits(HANDLE, JOBOBJECTINFOCLASS, void*, DWORD) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

std::atomic<int> gAssignments{0};

BOOL WINAPI countAssignment(HANDLE, HANDLE) {
    gAssignments++;
    return TRUE;
}

}  // namespace

class Worker : public PluginTest {
  protected:
    StartReport waitForReport(const std::filesystem::path& folder) {
        StartReport report;
        session.waitUntil(
            [&] {
                const auto reports = startReports(folder);
                if (!reports.empty()) report = reports[0];
                return !reports.empty();
            },
            kPatienceMs);
        return report;
    }
    static bool waitForEnd(std::uint32_t processId) {
        return waitFor([&] { return !isProcessRunning(processId); }, kPatienceMs);
    }
    testing::AssertionResult waitForReports(std::size_t count) {
        if (session.waitUntil([&] { return startReports(session.pluginFolder).size() == count; }, kPatienceMs))
            return testing::AssertionSuccess();
        auto failure = testing::AssertionFailure() << "no report " << count << "; in the folder:";
        for (const auto& entry : std::filesystem::directory_iterator(session.pluginFolder))
            failure << ' ' << entry.path().filename().string();
        failure << "; in the log:";
        for (const std::string& line : host.logLines()) failure << "\n  " << line;
        return failure;
    }
    // Starts the fake worker beside the DLL; returns its report.
    StartReport startWithWorker() {
        EXPECT_TRUE(session.copyWorker(programFolder() / "fake_worker.exe"));
        EXPECT_TRUE(session.start());
        return waitForReport(session.pluginFolder);
    }
    std::string linkState() const { return readFile(session.dataFolder / kLinkStateFile); }
    bool waitForLinkState(const std::string& text) {
        return session.waitUntil([&] { return linkState() == text; }, kPatienceMs);
    }
    std::string commonArguments() const {
        return " --data-dir " + quoted(session.dataFolder) + " --watch-pid " + std::to_string(GetCurrentProcessId());
    }
};

TEST_F(Worker, IsStartedHiddenInThePluginFolderWithDataFolderAndHost) {
    const StartReport report = startWithWorker();
    EXPECT_EQ(report.commandLine, quoted(session.pluginFolder / "hopline_worker.exe") + commonArguments());
    EXPECT_EQ(report.folder, toCodePage(session.pluginFolder.wstring()));
    EXPECT_EQ(report.show, "1 0");  // a show state was given: hidden
    const auto lines = host.logLines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[2], kStarted);
}

TEST_F(Worker, IsGivenTheWholePathOfADataFolderBelowTheWorkingFolder) {
    const FreshFolder work;
    const WorkingFolder here(work.path);
    const EnvironmentValue unset(L"APPDATA", std::nullopt);
    const StartReport report = startWithWorker();
    EXPECT_EQ(report.commandLine, quoted(session.pluginFolder / "hopline_worker.exe") + " --data-dir " +
                                      quoted(work.path / "Corvalis") + " --watch-pid " +
                                      std::to_string(GetCurrentProcessId()));
    session.stop();
}

TEST_F(Worker, ProgramIsPreferredToTheScript) {
    ASSERT_TRUE(writeFile(session.pluginFolder / "hopline_worker.py", "raise SystemExit"));
    const StartReport report = startWithWorker();
    EXPECT_EQ(report.commandLine, quoted(session.pluginFolder / "hopline_worker.exe") + commonArguments());
}

TEST_F(Worker, ScriptIsRunByTheInterpreterOfTheSettings) {
    const auto interpreter = session.machine.path / "my python" / "python w.exe";
    std::filesystem::create_directories(interpreter.parent_path());
    std::filesystem::copy_file(programFolder() / "fake_worker.exe", interpreter);
    ASSERT_TRUE(session.writeSettings("python=" + toCodePage(interpreter.wstring()) + "\r\n"));
    ASSERT_TRUE(session.start());
    const StartReport report = waitForReport(interpreter.parent_path());
    EXPECT_EQ(report.commandLine,
              quoted(interpreter) + " " + quoted(session.pluginFolder / "hopline_worker.py") + commonArguments());
    EXPECT_EQ(report.folder, toCodePage(session.pluginFolder.wstring()));
    EXPECT_TRUE(session.waitForLog(kStarted, kPatienceMs));
}

TEST_F(Worker, IsGoneAfterShutdown) {
    const StartReport report = startWithWorker();
    ASSERT_TRUE(isProcessRunning(report.processId));
    session.stop();
    EXPECT_TRUE(waitForEnd(report.processId));
}

TEST_F(Worker, OfAnEarlierStartIsEndedByTheNext) {
    const StartReport first = startWithWorker();
    ASSERT_TRUE(isProcessRunning(first.processId));
    ASSERT_TRUE(session.start());  // without a shutdown before it
    ASSERT_TRUE(waitForReports(2));
    EXPECT_TRUE(waitForEnd(first.processId));
    int running = 0;
    for (const StartReport& report : startReports(session.pluginFolder)) running += isProcessRunning(report.processId);
    EXPECT_EQ(running, 1);
}

TEST_F(Worker, IsStartedAgainAfterAReload) {
    const StartReport first = startWithWorker();
    session.stop();
    session.plugin.unload();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(waitForReports(2));
    EXPECT_TRUE(waitForEnd(first.processId));
}

TEST_F(Worker, DiesWithAHostThatIsKilled) {
    ASSERT_TRUE(session.copyWorker(programFolder() / "fake_worker.exe"));
    std::filesystem::copy_file(productFile("corvalis_win64.dll"), session.dll);
    const auto ready = session.machine.path / "ready.txt";
    const std::uint32_t hostId = startHost(L"--play-host", session.dll, ready);
    ASSERT_NE(hostId, 0u);
    ASSERT_TRUE(waitFor([&] { return readFile(ready) == "ready"; }, kPatienceMs));
    const StartReport report = waitForReport(session.pluginFolder);
    ASSERT_TRUE(isProcessRunning(report.processId));
    ASSERT_TRUE(killProcess(hostId));
    EXPECT_TRUE(waitForEnd(report.processId));
    killProcess(report.processId);  // nobody else would
}

// If the job cannot be made or told to kill, the worker is just not tied to it.
TEST_F(Worker, IsStartedAndStoppedAllTheSameWithoutAJob) {
    const struct {
        const char* what;
        bool canCreate;
    } rows[] = {{"creation", false}, {"configuration", true}};
    ASSERT_TRUE(session.copyWorker(programFolder() / "fake_worker.exe"));
    ASSERT_TRUE(session.load());
    const ImportPatch assign(kLibrary, "AssignProcessToJobObject", reinterpret_cast<void*>(countAssignment));
    ASSERT_TRUE(assign.isInPlace());
    std::size_t starts = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const ImportPatch patch =
            row.canCreate ? ImportPatch(kLibrary, "SetInformationJobObject", reinterpret_cast<void*>(refuseLimits))
                          : ImportPatch(kLibrary, "CreateJobObjectA", reinterpret_cast<void*>(createNoJob));
        ASSERT_TRUE(patch.isInPlace());
        gAssignments = 0;
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(waitForReports(++starts));
        const auto lines = host.logLines();
        EXPECT_EQ(std::count(lines.begin(), lines.end(), kStarted), static_cast<std::ptrdiff_t>(starts));
        EXPECT_EQ(gAssignments, 0);
        std::uint32_t running = 0;
        for (const StartReport& report : startReports(session.pluginFolder)) {
            if (isProcessRunning(report.processId)) running = report.processId;
        }
        EXPECT_NE(running, 0u);
        session.stop();
        EXPECT_TRUE(waitForEnd(running));
    }
}

TEST_F(Worker, EndsByItselfWithAKilledHostThatHadNoJob) {
    ASSERT_TRUE(session.copyWorker(productFile(kWorkerProgram)));
    std::filesystem::copy_file(productFile("corvalis_win64.dll"), session.dll);
    const auto ready = session.machine.path / "ready.txt";
    const std::uint32_t hostId = startHost(L"--play-jobless-host", session.dll, ready);
    ASSERT_NE(hostId, 0u);
    ASSERT_TRUE(waitFor([&] { return readFile(ready) == "ready"; }, kPatienceMs));
    const auto waitForLine = [&](const std::string& line) {
        const auto log = session.dataFolder / "hopline_worker.log";
        return waitFor([&] { return readFile(log).find(line) != std::string::npos; }, kPatienceMs);
    };
    ASSERT_TRUE(waitForLine(", watching process " + std::to_string(hostId)));
    ASSERT_TRUE(killProcess(hostId));
    EXPECT_TRUE(waitForLine("ending: the watched process has ended"));
}

TEST_F(Worker, KilledFromOutsideLeavesThePluginRunningAndItsDataGoingStale) {
    const StartReport report = startWithWorker();
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.waitForArrival(kTower122800));
    ASSERT_TRUE(killProcess(report.processId));
    session.stopPublishing();
    // The killed worker's last frequency was another one, which expires before it has stood still for long enough.
    session.telemetry.radios[0].activeKhz = 121500;
    const double written = session.clock.unixSeconds() - kTelemetryMaxAgeSeconds + 0.15;
    ASSERT_TRUE(replaceFile(session.dataFolder / kTelemetryFile, telemetryText(session.telemetry, written)));
    ASSERT_TRUE(session.waitPasses(14));  // of at least 50 ms: twice as long as a fresh frequency must stand still
    EXPECT_EQ(host.callsOf("requestClientMove").size(), 1u);
    EXPECT_EQ(startReports(session.pluginFolder).size(), 1u);  // and it is not started again
    session.publish();                                         // a worker is back
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 2));
}

TEST_F(Worker, ThatIsNoProgramCountsAsNotStarted) {
    ASSERT_TRUE(writeFile(session.pluginFolder / "hopline_worker.exe", "not a program"));
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForLog("无法启动 Python worker；请在设置中确认 Python 路径", kPatienceMs));
    ASSERT_TRUE(session.waitPasses(2));
    EXPECT_TRUE(waitForLinkState("DISCONNECTED: worker not started (error 193)\r\n")) << linkState();
}

// What the panel's left line says also stands in a file for support, where it is read here.
TEST_F(Worker, ThatIsNotInThePackageIsSaidToBeMissing) {
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(waitForLinkState("DISCONNECTED: worker program missing\r\n")) << linkState();
}

TEST_F(Worker, IsSaidToBeMissingEvenIfAnInterpreterStarted) {
    const auto interpreter = session.machine.path / "python.exe";
    std::filesystem::copy_file(programFolder() / "fake_worker.exe", interpreter);
    ASSERT_TRUE(session.writeSettings("python=" + toCodePage(interpreter.wstring()) + "\r\n"));
    ASSERT_TRUE(session.start());
    const StartReport report = waitForReport(session.machine.path);
    EXPECT_TRUE(waitForLinkState("DISCONNECTED: waiting for the worker\r\n")) << linkState();
    ASSERT_TRUE(killProcess(report.processId));
    EXPECT_TRUE(waitForLinkState("DISCONNECTED: worker program missing\r\n")) << linkState();
}

TEST_F(Worker, ThatHasEndedIsSaidToHaveWithItsCodeAndLoggedOnce) {
    const StartReport report = startWithWorker();
    EXPECT_TRUE(waitForLinkState("DISCONNECTED: waiting for the worker\r\n")) << linkState();
    ASSERT_TRUE(killProcess(report.processId));  // with code 9
    EXPECT_TRUE(waitForLinkState("DISCONNECTED: worker not running (code 9)\r\n")) << linkState();
    ASSERT_TRUE(session.waitPasses(5));
    const auto lines = host.logLines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "SimConnect worker ended (exit code 9)"), 1);
}

TEST_F(Worker, ThatFindsNoSimulatorSaysSo) {
    ASSERT_TRUE(session.copyWorker(productFile(kWorkerProgram)));
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(waitForLinkState("DISCONNECTED: waiting for the simulator\r\n")) << linkState();
}
