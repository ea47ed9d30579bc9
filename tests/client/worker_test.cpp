#include <windows.h>
#include <sstream>
#include "tests/client/client_session_win.h"

namespace {

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

}  // namespace

class Worker : public PluginTest {
  protected:
    StartReport waitForReport(const std::filesystem::path& folder) {
        StartReport report;
        session.waitUntil([&] {
            const auto reports = startReports(folder);
            if (!reports.empty()) report = reports[0];
            return !reports.empty();
        });
        return report;
    }
    // The fake worker beside the DLL, started; its report.
    StartReport startWithWorker() {
        EXPECT_TRUE(session.copyWorker(programFolder() / "fake_worker.exe"));
        EXPECT_TRUE(session.start());
        return waitForReport(session.pluginFolder);
    }
    std::string commonArguments() const {
        return " --data-dir " + quoted(session.dataFolder) + " --watch-pid " + std::to_string(GetCurrentProcessId());
    }
};

TEST_F(Worker, IsStartedHiddenInThePluginFolderWithDataFolderAndHost) {
    const StartReport report = startWithWorker();
    EXPECT_EQ(report.commandLine, quoted(session.pluginFolder / "hopline_worker.exe") + commonArguments());
    EXPECT_EQ(report.folder, toCodePage(session.pluginFolder.wstring()));
    EXPECT_EQ(report.show, "1 0");  // use the show state: hidden
    const auto lines = host.logLines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[1], "SimConnect worker started");
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
    EXPECT_TRUE(session.waitForLog("SimConnect worker started"));
}

TEST_F(Worker, IsGoneAfterShutdown) {
    const StartReport report = startWithWorker();
    ASSERT_TRUE(isProcessRunning(report.processId));
    session.stop();
    EXPECT_TRUE(waitFor([&] { return !isProcessRunning(report.processId); }, 2000));
}

TEST_F(Worker, OfAnEarlierStartIsEndedByTheNext) {
    const StartReport first = startWithWorker();
    ASSERT_TRUE(isProcessRunning(first.processId));
    ASSERT_TRUE(session.start());  // without a shutdown in between
    ASSERT_TRUE(session.waitUntil([&] { return startReports(session.pluginFolder).size() == 2; }));
    EXPECT_TRUE(waitFor([&] { return !isProcessRunning(first.processId); }, 2000));
    int running = 0;
    for (const StartReport& report : startReports(session.pluginFolder)) running += isProcessRunning(report.processId);
    EXPECT_EQ(running, 1);
}

TEST_F(Worker, IsStartedAgainAfterAReload) {
    const StartReport first = startWithWorker();
    session.stop();
    session.plugin.unload();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitUntil([&] { return startReports(session.pluginFolder).size() == 2; }));
    EXPECT_FALSE(isProcessRunning(first.processId));
}

TEST_F(Worker, DiesWithAHostThatIsKilled) {
    ASSERT_TRUE(session.copyWorker(programFolder() / "fake_worker.exe"));
    std::filesystem::copy_file(productFile("corvalis_win64.dll"), session.dll);
    const auto ready = session.machine.path / "ready.txt";
    const std::uint32_t hostId = startHost(L"--play-host", session.dll, ready);
    ASSERT_NE(hostId, 0u);
    ASSERT_TRUE(waitFor([&] { return readFile(ready) == "ready"; }));
    const StartReport report = waitForReport(session.pluginFolder);
    ASSERT_TRUE(isProcessRunning(report.processId));
    ASSERT_TRUE(killProcess(hostId));
    EXPECT_TRUE(waitFor([&] { return !isProcessRunning(report.processId); }, 3000));
    killProcess(report.processId);  // nobody else would
}

TEST_F(Worker, KilledFromOutsideLeavesThePluginRunningAndItsDataGoingStale) {
    const StartReport report = startWithWorker();
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    ASSERT_TRUE(session.waitUntil([&] { return host.ownChannel(kSchid) == kTower122800; }));
    ASSERT_TRUE(killProcess(report.processId));
    session.stopPublishing();
    ASSERT_TRUE(session.waitTicks(3200));
    // Nothing is followed on old data, though the user sits elsewhere now.
    host.moveByHand(kSchid, kOwnClient, kLobby);
    const std::size_t looks = host.callsOf("getChannelList").size();
    ASSERT_TRUE(session.waitTicks(2300));
    EXPECT_EQ(host.callsOf("getChannelList").size(), looks);
    EXPECT_EQ(startReports(session.pluginFolder).size(), 1u);  // and it is not started again
    session.publish();                                         // somebody brought one back
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 2));
}

TEST_F(Worker, ThatIsNoProgramCountsAsNotStarted) {
    ASSERT_TRUE(writeFile(session.pluginFolder / "hopline_worker.exe", "not a program"));
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForLog("无法启动 Python worker；请在设置中确认 Python 路径", 2000));
    ASSERT_TRUE(session.waitPasses(2));
}
