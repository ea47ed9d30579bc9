#include "worker/diagnosis.h"
#include <gtest/gtest.h>
#include <limits>
#include "base/number_text.h"

namespace {

constexpr double kNow = 1'790'000'000.0;

std::string undecoded(const std::string& narrow) {
    return narrow;
}

FoundFile fileOf(const std::string& bytes, double age = 5.0) {
    FoundFile file;
    file.state = FoundFile::State::kRead;
    file.bytes = bytes;
    file.size = bytes.size();
    file.writtenUnixSeconds = kNow - age;
    return file;
}

Diagnosis emptyFolder() {
    Diagnosis found;
    found.nowUnixSeconds = kNow;
    found.workerVersion = "1.3.0";
    found.windowsVersion = "10.0.19045";
    found.programFolder = "C:\\Users\\Jane Doe\\AppData\\Roaming\\TS3Client\\plugins";
    found.dataFolder = "C:\\Users\\Jane Doe\\AppData\\Roaming\\Corvalis";
    found.dataFolderOrigin = "%APPDATA%";
    found.folderExists = found.folderWritable = true;
    found.linkKind = "link auto, simulator on this computer";
    found.accountNames = {"jane"};
    return found;
}

std::string telemetry(const std::string& ok, double updated, const std::string& ackId) {
    return "{\"updated\":" + formatFixed(updated, 3) + ",\"ok\":" + ok + ",\"protocol\":2,\"ack_id\":\"" + ackId +
           "\"}";
}

std::string report(const Diagnosis& found) {
    return composeDiagnosis(found, undecoded);
}

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) found++;
    return found;
}

std::string logOf(int first, int last) {
    std::string log;
    for (int i = first; i <= last; i++) log += "line " + std::to_string(i) + ".\r\n";
    return log;
}

}  // namespace

TEST(Diagnosis, OfAnEmptyFolderIsWhole) {
    const std::string expected =
        "Corvalis diagnosis, 2026-09-21 14:13:20.000 UTC\r\n"
        "User names in paths are shown as <user>, other computers as <host>. Please read it before you pass it on.\r\n"
        "\r\n"
        "== Versions\r\n"
        "worker          1.3.0\r\n"
        "protocol        2\r\n"
        "plugin          no version to be read beside the worker\r\n"
        "Windows         10.0.19045\r\n"
        "program folder  C:\\Users\\<user>\\AppData\\Roaming\\TS3Client\\plugins\r\n"
        "\r\n"
        "== Data folder\r\n"
        "folder          C:\\Users\\<user>\\AppData\\Roaming\\Corvalis\r\n"
        "chosen by       %APPDATA%\r\n"
        "state           exists, can be written\r\n"
        "\r\n"
        "== settings.ini: there is none\r\n"
        "\r\n"
        "== worker.ini: there is none\r\n"
        "\r\n"
        "== capture_mode.txt: there is none\r\n"
        "\r\n"
        "== host_api.txt: there is none\r\n"
        "\r\n"
        "== host_api_answer.txt: there is none\r\n"
        "\r\n"
        "== link_state.txt: there is none\r\n"
        "\r\n"
        "== telemetry.json: there is none\r\n"
        "\r\n"
        "== command.json: there is none\r\n"
        "\r\n"
        "== Link\r\n"
        "set to          link auto, simulator on this computer\r\n"
        "worker          none serves this folder just now\r\n"
        "The log has no line on the link.\r\n"
        "\r\n"
        "== hopline_worker.old.log: there is none\r\n"
        "\r\n"
        "== hopline_worker.log: there is none\r\n"
        "\r\n"
        "== Plugin's log\r\n"
        "The plugin has no log file: its lines stand in the voice client's own log, channel \"Corvalis\".\r\n";
    EXPECT_EQ(report(emptyFolder()), expected);
}

TEST(Diagnosis, ShowsTheFilesAsTheyStand) {
    auto found = emptyFolder();
    found.settings = fileOf("master=1\r\npython=C:\\Users\\Jane Doe\\python.exe\r\n", 300.0);
    found.workerIni = fileOf("link=simulate\nspeed=3");
    found.iniRemarks = {"worker.ini line 2 ignored: it has an unknown key"};
    found.captureMode = fileOf("2", 3.0 * 3600.0);
    found.linkState = fileOf("DISCONNECTED: worker not running (code 3)\r\n", 60.0);
    found.entries = {{"settings.ini", false, 1234, kNow - 300.0}, {"old", true, 0, kNow + 20.0}};
    found.moreEntries = 7;
    const auto text = report(found);
    EXPECT_TRUE(has(text,
                    "== settings.ini: 47 bytes, written 2026-09-21 14:08:20.000 UTC (5 min ago)\r\n"
                    "master=1\r\npython=C:\\Users\\<user>\\python.exe\r\n\r\n"))
        << text;
    EXPECT_TRUE(has(text, "link=simulate\r\nspeed=3\r\n"));
    EXPECT_TRUE(has(text, "worker.ini      worker.ini line 2 ignored: it has an unknown key\r\n"));
    EXPECT_TRUE(has(text, "== capture_mode.txt: 1 bytes, written 2026-09-21 11:13:20.000 UTC (3 h ago)\r\n2\r\n"));
    EXPECT_TRUE(has(text,
                    "== link_state.txt: 43 bytes, written 2026-09-21 14:12:20.000 UTC (60 s ago)\r\n"
                    "DISCONNECTED: worker not running (code 3)\r\n"))
        << text;
    EXPECT_TRUE(has(text, "  1234          settings.ini, 2026-09-21 14:08:20.000 UTC (5 min ago)\r\n"));
    EXPECT_TRUE(has(text, "  folder        old, 2026-09-21 14:13:40.000 UTC (20 s in the future)\r\n"));
    EXPECT_TRUE(has(text, "  ... (7 more)\r\n"));
    found.settingsBesideDll = true;
    EXPECT_TRUE(has(report(found), "== settings.ini (in the program folder): 47 bytes"));
}

TEST(Diagnosis, SaysHowOldAFileIs) {
    const struct {
        double age;
        const char* text;
    } rows[] = {{0.0, "(0.0 s ago)"},      {0.44, "(0.4 s ago)"},          {59.6, "(60 s ago)"},
                {119.0, "(119 s ago)"},    {120.0, "(2 min ago)"},         {7'199.0, "(120 min ago)"},
                {7'200.0, "(2 h ago)"},    {172'799.0, "(48 h ago)"},      {172'800.0, "(2 days ago)"},
                {1e9, "(11574 days ago)"}, {-0.5, "(0.5 s in the future)"}};
    for (const auto& row : rows) {
        auto found = emptyFolder();
        found.captureMode = fileOf("2", row.age);
        EXPECT_TRUE(has(report(found), row.text)) << row.text;
    }
}

TEST(Diagnosis, SaysWhatIsWrongWithTheFolderAndTheVersions) {
    auto found = emptyFolder();
    found.folderWritable = false;
    EXPECT_TRUE(has(report(found), "state           exists, cannot be written\r\n"));
    found.folderExists = false;
    EXPECT_TRUE(has(report(found), "state           does not exist"));
    found.pluginVersion = "1.3.0";
    EXPECT_TRUE(has(report(found), "plugin          1.3.0\r\n"));
    found.pluginVersion = "1.2.0";
    EXPECT_TRUE(has(report(found), "plugin          1.2.0 - not the worker's"));
    EXPECT_FALSE(has(report(found), "command line"));
    found.commandLineProblem = "unknown argument C:\\Users\\jane";
    EXPECT_TRUE(has(report(found), "command line    unknown argument C:\\Users\\<user>\r\n"));
}

TEST(Diagnosis, JudgesTheTelemetryAsThePluginDoes) {
    const struct {
        std::string bytes;
        const char* judgement;
    } rows[] = {
        {telemetry("true", kNow - 1.0, ""), "used by the plugin: it shows CONNECTED"},
        {telemetry("true", kNow - 4.0, ""), "not used by the plugin: updated 4.0 s ago"},
        {telemetry("true", kNow + 4.0, ""), "not used by the plugin: updated 4.0 s in the future"},
        {telemetry("false", kNow - 1.0, ""), "not used by the plugin: the worker has no live data"},
        {telemetry("false", kNow - 4.0, ""), "not used by the plugin: updated 4.0 s ago"},
        {"{\"updated\":" + formatFixed(kNow, 3) + ",\"ok\":false,\"protocol\":2,\"status\":\"simulator in menu\"}",
         "not used by the plugin: the worker has no live data (simulator in menu)"},
        {"{\"updated\":1e308,\"ok\":true,\"protocol\":1}", "not used by the plugin: protocol 1"},
        {"", "not used by the plugin: protocol 0"},
        {"{\"updated\":nan,\"ok\":true,\"protocol\":2}", "not used by the plugin: updated "},
    };
    for (const auto& row : rows) {
        auto found = emptyFolder();
        found.telemetry = fileOf(row.bytes);
        EXPECT_TRUE(has(report(found), std::string("judgement       ") + row.judgement)) << report(found);
    }
}

TEST(Diagnosis, TellsAPendingCommandFromAnAcknowledgedOne) {
    auto found = emptyFolder();
    found.command =
        fileOf("{\"id\":\"42-1\",\"com\":1,\"slot\":\"standby\",\"target\":122800,\"created\":1790000000.250}");
    EXPECT_TRUE(has(report(found), "judgement       pending: not acknowledged in telemetry.json\r\n"));
    found.telemetry = fileOf(telemetry("true", kNow, "42-0"));
    EXPECT_TRUE(has(report(found), "judgement       pending"));
    found.telemetry = fileOf(telemetry("true", kNow, "42-1"));
    EXPECT_TRUE(has(report(found), "judgement       acknowledged\r\n"));
    found.command = fileOf("{\"id\":\"42-1\",");
    EXPECT_TRUE(has(report(found), "judgement       no command\r\n"));
}

TEST(Diagnosis, ShowsTheLastLinesOfBothLogs) {
    auto found = emptyFolder();
    found.oldLog = fileOf(logOf(1, 300));
    found.log = fileOf(logOf(301, 350));
    auto text = report(found);
    EXPECT_EQ(count(text, "\r\nline "), 200u);
    EXPECT_FALSE(has(text, "line 150.\r\n"));
    EXPECT_TRUE(has(text, "at most:\r\nline 151.\r\n"));
    EXPECT_TRUE(has(text, "line 350.\r\n\r\n== Plugin's log"));
    // If a log is longer than what was read of it, its first line is incomplete.
    found = emptyFolder();
    found.log = fileOf("C:\\Us\r\nline 2.\r\n");
    found.log.size = 2'000'000;
    EXPECT_TRUE(has(report(found), "at most:\r\nline 2.\r\n"));
}

TEST(Diagnosis, TellsTheStateOfTheLink) {
    auto found = emptyFolder();
    std::string log;
    for (int i = 0; i < 20; i++) log += "2026-09-21 14:00:00.000 UTC  link up: flight " + std::to_string(i) + ".\r\n";
    log += "2026-09-21 14:00:01.000 UTC  link down: simulator not running\r\n" + logOf(1, 250);
    found.log = fileOf(log);
    found.otherWorkerRuns = true;
    auto text = report(found);
    EXPECT_TRUE(has(text,
                    "worker          one serves this folder; the link is its own and was not tried\r\n"
                    "Last in the log:\r\n2026-09-21 14:00:00.000 UTC  link up: flight 11.\r\n"))
        << text;
    EXPECT_TRUE(has(text, "link down: simulator not running\r\n\r\n=="));
    EXPECT_FALSE(has(text, "flight 10."));

    found.otherWorkerRuns = false;
    found.trial = LinkTrial{false, "simulator not running", 4012, {"first note"}};
    EXPECT_TRUE(has(report(found),
                    "tried           first note\r\n"
                    "tried           link down after 4.0 s: simulator not running\r\n"));
    found.trial = LinkTrial{true, "built-in aircraft", 0, {}};
    EXPECT_TRUE(has(report(found), "tried           link up after 0.0 s: built-in aircraft\r\n"));
}

TEST(Diagnosis, MasksUserNamesInEveryPartOfIt) {
    const std::string path = "C:\\Users\\J\xC3\xBCrgen M\xC3\xBCller\\x D:\\games\\Juergen\\y";
    auto found = emptyFolder();
    found.accountNames = {"juergen"};
    found.commandLineProblem = found.programFolder = found.dataFolder = found.dataFolderOrigin = found.linkKind = path;
    found.settings = found.workerIni = found.captureMode = found.telemetry = found.command = found.log = found.oldLog =
        fileOf("  link up: " + path + "\n");
    found.entries = {{"/home/J\xC3\xBCrgen", false, 1, 0.0}};
    found.iniRemarks = {path};
    found.trial = LinkTrial{true, path, 0, {path}};
    const auto text = report(found);
    EXPECT_FALSE(has(text, "rgen")) << text;
    EXPECT_GE(count(text, "C:\\Users\\<user>\\x D:\\games\\<user>\\y"), 15u);
}

TEST(Diagnosis, MasksOtherComputersInEveryPartOfIt) {
    auto found = emptyFolder();
    found.linkKind = "link auto, simulator at gaming:500";
    found.commandLineProblem = "unknown argument --address=cockpit:500";
    found.workerIni = fileOf("link=auto\naddress=attic:500\n");
    found.oldLog = fileOf("data folder D:\\x, link auto, simulator at cellar:500\n");
    found.log = fileOf("  link down: no such computer: CELLAR\n  link down: attic is silent\n");
    found.telemetry = fileOf("{\"status\":\"no answer from gaming\"}");
    found.linkState = fileOf("DISCONNECTED: no answer from johannes-flight-simulator-with-a-long-na");  // cut
    found.settings = fileOf("python=\\\\nas\\python.exe\n");
    found.dataFolder = "\\\\profiles.corp\\cockpit\\Corvalis";
    found.trial = LinkTrial{false, "no answer from gaming", 0, {"gaming has two addresses"}};
    const auto text = report(found);
    for (const char* name : {"gaming", "cockpit", "attic", "cellar", "CELLAR", "nas\\", "profiles", "johannes"})
        EXPECT_FALSE(has(text, name)) << name << " in " << text;
    EXPECT_TRUE(has(text, "set to          link auto, simulator at <host>:500\r\n"));
    EXPECT_TRUE(has(text, "  link down: no such computer: <host>\r\n"));
    EXPECT_TRUE(has(text, "DISCONNECTED: no answer from <host>\r\n"));
    EXPECT_TRUE(has(text, "tried           <host> has two addresses\r\n"));
    EXPECT_TRUE(has(text, "folder          \\\\<host>\\<host>\\Corvalis\r\n"));
}

// Each is looked for in every line of the report.
TEST(Diagnosis, LooksForABoundedNumberOfComputers) {
    auto found = emptyFolder();
    std::string log = "name-0 is silent\nname-19999 is silent\n";
    for (int i = 0; i < 20'000; i++) log += "simulator at name-" + std::to_string(i) + ":500\n";
    found.log = fileOf(log + "name-0 is silent\nname-19999 is silent\n");
    const auto text = report(found);
    EXPECT_TRUE(has(text, "\r\nname-0 is silent\r\n<host> is silent\r\n"));  // the newest come first
    EXPECT_EQ(count(text, "simulator at <host>:500\r\n"), 198u);
}

TEST(Diagnosis, StaysBoundedWithHugeFiles) {
    auto found = emptyFolder();
    auto huge = fileOf(std::string(kMaxFoundBytes, 'x'));
    huge.size = 5'000'000'000;
    found.settings = huge;
    found.workerIni = fileOf(std::string(kMaxFoundBytes, '\n'));
    found.telemetry = huge;
    found.command = huge;
    std::string wide;
    while (wide.size() < kMaxFoundBytes) wide += std::string(4000, 'y') + "\n";
    found.log = found.oldLog = fileOf(wide);
    const auto text = report(found);
    EXPECT_LT(text.size(), 500'000u);
    EXPECT_TRUE(has(text, "... (line cut)\r\n... (only its beginning was looked at)\r\n"));
    EXPECT_TRUE(has(text, "... (999800 more lines)\r\n"));
    EXPECT_EQ(count(text, "yyy... (line cut)\r\n"), kMaxShownLines);
}

TEST(Diagnosis, ShowsDamagedFilesAsTextOfOurOwn) {
    std::string every;
    for (int repeat = 0; repeat < 3; repeat++) {
        for (int byte = 0; byte < 256; byte++) every += static_cast<char>((byte * (2 * repeat + 1)) & 0xFF);
    }
    auto found = emptyFolder();
    const auto damaged = fileOf(every, std::numeric_limits<double>::quiet_NaN());
    found.settings = found.workerIni = found.captureMode = found.telemetry = found.command = found.log = found.oldLog =
        damaged;
    const auto text = report(found);
    for (const char c : text) EXPECT_TRUE(c == '\r' || c == '\n' || static_cast<unsigned char>(c) >= 0x20);
    EXPECT_TRUE(has(text, "bytes that are no text"));
    EXPECT_TRUE(has(text, "== Plugin's log"));

    found.settings = FoundFile{FoundFile::State::kUnreadable, "", 17, kNow};
    EXPECT_TRUE(has(report(found), "== settings.ini: there, but cannot be read\r\n"));
}

TEST(Diagnosis, ReadsTheSystemsCodePage) {
    auto found = emptyFolder();
    found.log = fileOf("in C:\\Users\\\x95\x5C\\x\r\n");
    // In code page 932 this is one letter, whose second byte is a backslash.
    const auto text = composeDiagnosis(found, [](const std::string& narrow) {
        return narrow == "in C:\\Users\\\x95\x5C\\x\r" || narrow == "in C:\\Users\\\x95\x5C\\x"
                   ? "in C:\\Users\\\xE8\xA1\xA8\\x"
                   : "undecoded";
    });
    EXPECT_TRUE(has(text, "in C:\\Users\\<user>\\x\r\n")) << text;
}
