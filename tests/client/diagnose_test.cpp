// diagnose_test.cpp - the real worker program started for a report: --diagnose on prepared folders, without a client.
#include <gtest/gtest.h>
#include <windows.h>
#include <atomic>
#include <thread>
#include "base/clock_win.h"
#include "base/identity.h"
#include "bridge/worker_command_line.h"
#include "exchange/telemetry_text.h"
#include "tests/client/fake_telemetry.h"
#include "tests/client/worker_at_work_win.h"
#include "tests/simulator/program_win.h"
#include "tests/simulator/server.h"
#include "worker/diagnosis.h"

namespace {

struct Outcome {
    bool ended = false;
    DWORD exitCode = 0;
    std::string output;
};

std::wstring quoted(const std::filesystem::path& path) {
    return L"\"" + path.wstring() + L"\"";
}

// Runs the program to its end with its standard output in a file, like "> file" at a command prompt.
Outcome runWorker(const std::wstring& arguments, const std::filesystem::path& outputFile) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    const HANDLE output = CreateFileW(outputFile.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    std::wstring text = quoted(productFile(kWorkerProgram)) + L" " + arguments;
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = output;
    PROCESS_INFORMATION process = {};
    Outcome outcome;
    if (CreateProcessW(nullptr, text.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process)) {
        outcome.ended = WaitForSingleObject(process.hProcess, 60'000) == WAIT_OBJECT_0;
        GetExitCodeProcess(process.hProcess, &outcome.exitCode);
        if (!outcome.ended) TerminateProcess(process.hProcess, 9);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    CloseHandle(output);
    outcome.output = readFile(outputFile);
    return outcome;
}

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

class Diagnose : public ::testing::Test {
  protected:
    // Makes the folder of a user of that name, with a few files in it.
    void prepare(const std::wstring& user) {
        profile = machine.path / L"Users" / user;
        appData = profile / L"AppData" / L"Roaming";
        data = appData / L"Corvalis";
        std::filesystem::create_directories(data);
        const std::string here = toCodePage(data.wstring());
        ASSERT_TRUE(writeFile(data / "settings.ini", "master=1\r\npython=" + here + "\\python.exe\r\n"));
        ASSERT_TRUE(writeFile(data / "worker.ini", "link=simulate\r\naddress=cockpit:500\r\n"));
        ASSERT_TRUE(writeFile(data / "telemetry.json", "{\"updated\":1.5,\"ok\":true,\"protocol\":2}"));
        ASSERT_TRUE(writeFile(data / "hopline_worker.log",
                              "2026-11-21 06:19:08.354 UTC  data folder " + here + ", watching no process\r\n" +
                                  "2026-11-21 06:19:08.355 UTC  link down: simulator not running\r\n"));
    }
    Outcome run(const std::wstring& arguments) { return runWorker(arguments, machine.path / "output.txt"); }
    // What follows the report on the standard output.
    static std::string behind(const std::string& report, const std::string& output) {
        return output.starts_with(report) ? output.substr(report.size()) : "not the report";
    }

    FreshFolder machine{L"corvalis diagnosis"};
    std::filesystem::path profile, appData, data;
};

TEST_F(Diagnose, PrintsWhatItSavesAndMasksTheUserAndTheComputer) {
    prepare(L"J\u00FCrgen M\u00FCller");
    const EnvironmentValue account(L"USERNAME", L"corvalis diagnosis");
    const auto outcome = run(L"--diagnose --data-dir " + quoted(data));
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.exitCode, 0u);
    const auto report = readFile(data / kDiagnosisFile);
    ASSERT_FALSE(report.empty());
    const auto saved = behind(report, outcome.output);
    EXPECT_TRUE(saved.starts_with("\r\nSaved as ")) << outcome.output;
    EXPECT_TRUE(saved.ends_with("\\Users\\<user>\\AppData\\Roaming\\Corvalis\\corvalis-diagnose.txt\r\n")) << saved;

    EXPECT_FALSE(has(outcome.output, "rgen")) << outcome.output;
    EXPECT_FALSE(has(outcome.output, "ller")) << outcome.output;
    EXPECT_FALSE(has(outcome.output, "cockpit")) << outcome.output;
    EXPECT_TRUE(has(report, "link=simulate\r\naddress=<host>:500\r\n"));
    EXPECT_TRUE(has(report, "worker          " + std::string(kPluginVersion) + "\r\n"));
    EXPECT_TRUE(has(report, "plugin          " + std::string(kPluginVersion) + "\r\n"));  // the DLL stands beside it
    EXPECT_TRUE(has(report, "chosen by       --data-dir\r\nstate           exists, can be written\r\n"));
    EXPECT_TRUE(has(report, "settings.ini, 20"));
    EXPECT_TRUE(has(report, "master=1\r\npython="));
    EXPECT_TRUE(has(report, "\\Users\\<user>\\AppData\\Roaming\\Corvalis\\python.exe\r\n"));
    EXPECT_TRUE(has(report, "{\"updated\":1.5,\"ok\":true,\"protocol\":2}\r\n"));
    EXPECT_TRUE(has(report, "set to          link simulate, script none\r\nworker          none serves"));
    EXPECT_TRUE(has(report, "s: built-in aircraft\r\nLast in the log:\r\n2026-11-21 06:19:08.355 UTC  link down: "));
    EXPECT_TRUE(has(report, "\\Users\\<user>\\AppData\\Roaming\\Corvalis, watching no process\r\n"));

    int files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(data)) files++;
    EXPECT_EQ(files, 5);  // only the report was added
}

TEST_F(Diagnose, FindsThePluginsDataFolderAndTheWorkerThatServesIt) {
    prepare(L"jane");
    const EnvironmentValue appDataVariable(L"APPDATA", appData.wstring());
    standin::Program worker;
    ASSERT_TRUE(worker.start(quoted(productFile(kWorkerProgram)) + L" --data-dir " + quoted(data)));
    // Fresh telemetry comes after the log's line about the link.
    ASSERT_TRUE(
        waitFor([&] { return isFresh(parseTelemetry(readFile(data / kTelemetryFile)), SystemClock().unixSeconds()); },
                kPatienceMs));
    const auto outcome = run(L"--diagnose");
    EXPECT_TRUE(worker.isRunning());  // and was not disturbed
    worker.kill();
    EXPECT_EQ(outcome.exitCode, 0u);
    const auto report = readFile(data / kDiagnosisFile);
    EXPECT_TRUE(behind(report, outcome.output).starts_with("\r\nSaved as ")) << outcome.output;
    EXPECT_TRUE(has(report, "chosen by       %APPDATA%\r\n"));
    EXPECT_TRUE(has(report, "worker          one serves this folder; the link is its own and was not tried\r\n"));
    EXPECT_TRUE(has(report, "judgement       used by the plugin: it shows CONNECTED\r\n"));
    EXPECT_TRUE(has(report, "  link up: built-in aircraft\r\n"));
}

TEST_F(Diagnose, SaysWhatTheLinkWouldSay) {
    prepare(L"jane");
    ASSERT_TRUE(writeFile(data / "worker.ini", ""));
    standin::Server simulator(*standin::findPersonality("stock"));
    const auto port = simulator.listenTcp(0);
    ASSERT_NE(port, 0);
    simulator.start();
    std::string error;
    const struct {
        const char* action;
        const char* found;
        bool isEnd = false;
    } rows[] = {{"sim menu", " s: simulator in menu\r\n"},
                {"sim running", " s: flying\r\n"},
                {"exit", " s: waiting for the simulator\r\n", true}};
    for (const auto& row : rows) {
        ASSERT_TRUE(simulator.act(row.action, error)) << error;
        // Over, it does not listen any more.
        ASSERT_TRUE(waitFor([&] { return simulator.isOver() == row.isEnd; }, kPatienceMs));
        const auto outcome =
            run(L"--diagnose --data-dir " + quoted(data) + L" --address 127.0.0.1:" + std::to_wstring(port));
        EXPECT_TRUE(has(outcome.output, row.found)) << outcome.output;
        EXPECT_FALSE(has(outcome.output, " after 40.")) << outcome.output;  // has found out, and not given up
    }
}

// A worker goes on writing while the report is made.
TEST_F(Diagnose, JudgesTheTelemetryByTheTimeAtWhichItWasRead) {
    prepare(L"jane");
    const auto write = [&] {
        return replaceFile(data / kTelemetryFile, telemetryText(FakeTelemetry(), SystemClock().unixSeconds()));
    };
    ASSERT_TRUE(write());  // before the report is begun: a busy machine may take long to start the thread
    std::atomic<bool> stops{false};
    std::thread worker([&] {
        for (; !stops; pauseBriefly()) write();
    });
    const auto outcome = run(L"--diagnose --data-dir " + quoted(data));
    stops = true;
    worker.join();
    EXPECT_EQ(outcome.exitCode, 0u);
    EXPECT_TRUE(has(outcome.output, "judgement       used by the plugin: it shows CONNECTED\r\n")) << outcome.output;
}

TEST_F(Diagnose, SavesInTheFolderForTemporaryFilesIfThereIsNoDataFolder) {
    prepare(L"jane");
    const auto temporary = machine.path / "temporary";
    std::filesystem::create_directories(temporary);
    const EnvironmentValue first(L"TMP", temporary.wstring());
    const EnvironmentValue second(L"TEMP", temporary.wstring());
    const auto outcome = run(L"--diagnose --simulate --bogus --data-dir " + quoted(machine.path / "nowhere"));
    EXPECT_EQ(outcome.exitCode, 0u);
    const auto report = readFile(temporary / kDiagnosisFile);
    EXPECT_TRUE(has(report, "state           does not exist")) << outcome.output;
    EXPECT_TRUE(has(report, "command line    unknown argument --bogus\r\n"));
    EXPECT_TRUE(behind(report, outcome.output).ends_with("\\temporary\\corvalis-diagnose.txt\r\n")) << outcome.output;
    EXPECT_FALSE(std::filesystem::exists(machine.path / "nowhere"));
}

TEST_F(Diagnose, ThatCanBeSavedNowhereSaysSo) {
    const auto nowhere = machine.path / "nowhere";
    const EnvironmentValue first(L"TMP", nowhere.wstring());
    const EnvironmentValue second(L"TEMP", nowhere.wstring());
    const auto outcome = run(L"--diagnose --simulate --data-dir " + quoted(nowhere));
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.exitCode, 2u);
    EXPECT_TRUE(has(outcome.output, "== Versions\r\n"));
    EXPECT_TRUE(outcome.output.ends_with("\r\nThis report could not be saved.\r\n")) << outcome.output;
}

TEST_F(Diagnose, SurvivesAHostileFolder) {
    prepare(L"jane");
    std::string log;
    for (int i = 0; log.size() < 3'000'000; i++) log += "line " + std::to_string(i) + " \xFF C:\\Users\\J\xFC\\x\r\n";
    ASSERT_TRUE(writeFile(data / "hopline_worker.log", log + "the last line"));
    ASSERT_TRUE(writeFile(data / "settings.ini", std::string(2'000'000, '\0')));
    ASSERT_TRUE(writeFile(data / "command.json", std::string(1'000'000, '{')));
    std::filesystem::remove(data / "telemetry.json");
    std::filesystem::create_directories(data / "telemetry.json");
    for (int i = 0; i < 150; i++) ASSERT_TRUE(writeFile(data / ("file " + std::to_string(i)), "x"));
    const auto outcome = run(L"--diagnose --data-dir " + quoted(data));
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.exitCode, 0u);
    const auto report = readFile(data / kDiagnosisFile);
    EXPECT_LT(report.size(), 100'000u);
    EXPECT_TRUE(has(report, "(1000000 bytes that are no text)\r\n... (only its beginning was looked at)\r\n"));
    EXPECT_TRUE(has(report, "telemetry.json: there, but cannot be read\r\n"));
    EXPECT_TRUE(has(report, "judgement       no command\r\n"));
    EXPECT_TRUE(has(report, "C:\\Users\\<user>\\x\r\nthe last line\r\n"));
    EXPECT_FALSE(has(report, "Users\\J"));
    EXPECT_TRUE(has(report, " more)\r\n"));
}
