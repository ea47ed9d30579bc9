#include <windows.h>
#include <atomic>
#include "tests/client/client_session_win.h"
#include "tests/client/host_thread_win.h"
#include "tests/client/locked_file_win.h"

namespace {

const char* const kDefaultSettings =
    "[Hopline]\r\nmaster=1\r\nnrSelf=0\r\nenabled=1\r\nradio=COM1\r\nfollow_volume=1\r\nvolume_min=0\r\nvolume_max="
    "1\r\n"
    "distort_self=1\r\ndistort_others=1\r\ntail_self=1\r\ntail_others=1\r\npython=pythonw.exe\r\nlanguage=auto\r\n"
    "target=0\r\ntheme=0\r\npanel_scale=100\r\nopacity=100\r\nreceive_volume=80\r\ntransmit_gain=0\r\npanel_visible="
    "1\r\n"
    "pin=0\r\nequalize=0\r\npanel_x=80\r\npanel_y=80\r\nradio_lamps=1\r\ntext_alert=1\r\ntext_auto_open=1\r\n"
    "text_scale=15\r\nbind_A=0\r\nbind_B=0\r\nbind_C=0\r\nbind_D=0\r\nbind_E=0\r\n";

constexpr int kShowPanelEntry = 2;

}  // namespace

using StartUp = PluginTest;

TEST_F(StartUp, AsksForServerAndReturnCodeThenLogsThenStartsTheWorker) {
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForLog("Python worker"));
    std::vector<std::string> order;
    for (const HostCall& call : host.calls()) {
        if (call.function == "getCurrentServerConnectionHandlerID" || call.function == "createReturnCode" ||
            call.function == "logMessage") {
            order.push_back(call.function);
        }
    }
    // Loaded, the interface version answered, the worker.
    const std::vector<std::string> expected = {"getCurrentServerConnectionHandlerID", "createReturnCode", "logMessage",
                                               "logMessage", "logMessage"};
    EXPECT_EQ(order, expected);
    const auto codes = host.callsOf("createReturnCode");
    ASSERT_EQ(codes.size(), 1u);
    EXPECT_EQ(codes[0].text, kPluginId);
    EXPECT_EQ(codes[0].number, 256u);
}

TEST_F(StartUp, LogsVersionAndPaths) {
    ASSERT_TRUE(session.start());
    const auto calls = host.callsOf("logMessage");
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls[0].text, "Corvalis loaded: version=1.3.0 dll=" + toUtf8(session.dll.wstring()) +
                                 " dataDir=" + toUtf8(session.dataFolder.wstring()) +
                                 " tailTone=" + toUtf8((session.dataFolder / "radio_tail.wav").wstring()));
    EXPECT_EQ(calls[0].number, 4u);
    EXPECT_EQ(calls[0].channelText, "Corvalis");
    EXPECT_EQ(calls[0].schid, 0u);  // the log id
}

TEST_F(StartUp, LogsTheFixedNameOfADllUnderAnother) {
    ASSERT_TRUE(session.load());
    session.plugin.unload();
    const auto renamed = session.pluginFolder / "renamed.dll";
    std::filesystem::rename(session.dll, renamed);
    ASSERT_TRUE(session.plugin.load(renamed) && session.plugin.introduce(host)) << session.plugin.error();
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForLog("dll=" + toUtf8(session.dll.wstring()) + " "));
}

TEST_F(StartUp, WithoutAModuleFolderLogsTheBareNameAndWorks) {
    // The system's short paths end at 260 characters; a DLL with a longer path cannot find out where it is.
    constexpr std::size_t kFolderLength = 245;
    const auto folder = session.machine.path / std::wstring(kFolderLength - session.machine.path.native().size(), L'a');
    const std::filesystem::path deep = L"\\\\?\\" + (folder / "corvalis_win64.dll").wstring();
    std::filesystem::create_directories(folder);
    std::filesystem::copy_file(productFile("corvalis_win64.dll"), deep);
    ASSERT_TRUE(session.plugin.load(deep) && session.plugin.introduce(host)) << session.plugin.error();
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForLog(" dll=corvalis_win64.dll dataDir="));
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
    session.stop();
    session.plugin.unload();
    std::filesystem::remove(deep);  // by its long path, since nobody else can
}

TEST_F(StartUp, HasTheSoundsWrittenBeforeItLogs) {
    std::atomic<std::uintmax_t> tailBytes{0}, alertBytes{0};
    std::atomic<bool> isLooked{false};
    host.setBeforeCall([&](const HostCall& call) {
        if (call.function != "logMessage" || isLooked.exchange(true)) return;
        tailBytes = fileBytes(session.dataFolder / "radio_tail.wav");
        alertBytes = fileBytes(session.dataFolder / "text_alert.wav");
    });
    ASSERT_TRUE(session.start());
    EXPECT_EQ(tailBytes, 28844u);
    EXPECT_EQ(alertBytes, 48044u);
}

TEST_F(StartUp, WritesItsSoundsOverOldOnes) {
    std::filesystem::create_directories(session.dataFolder);
    ASSERT_TRUE(writeFile(session.dataFolder / "radio_tail.wav", "my own"));
    ASSERT_TRUE(writeFile(session.dataFolder / "text_alert.wav", std::string(100'000, 'x')));
    ASSERT_TRUE(session.start());
    const std::string tail = readFile(session.dataFolder / "radio_tail.wav");
    const std::string alert = readFile(session.dataFolder / "text_alert.wav");
    EXPECT_EQ(tail.size(), 28844u);
    EXPECT_EQ(alert.size(), 48044u);
    EXPECT_EQ(tail.substr(0, 4) + tail.substr(8, 8), "RIFFWAVEfmt ");
    EXPECT_EQ(alert.substr(0, 4) + alert.substr(8, 8), "RIFFWAVEfmt ");
}

TEST_F(StartUp, LosesNoTimeOverSoundsThatCannotBeReplacedAndLeavesNoneBesideThem) {
    const auto tail = session.dataFolder / "radio_tail.wav";
    const auto alert = session.dataFolder / "text_alert.wav";
    std::filesystem::create_directories(session.dataFolder);
    ASSERT_TRUE(writeFile(tail, "my own"));
    ASSERT_TRUE(writeFile(alert, "my own"));
    ASSERT_TRUE(SetFileAttributesW(tail.c_str(), FILE_ATTRIBUTE_READONLY));
    LockedFile lock(alert);
    ASSERT_TRUE(lock.isHeld());
    ASSERT_TRUE(session.load());
    {
        const ImportPatch move(L"corvalis_win64.dll", "MoveFileExA", reinterpret_cast<void*>(moveButNotOntoReadOnly));
        ASSERT_TRUE(move.isInPlace());
        const HostPauses pauses(L"corvalis_win64.dll");
        ASSERT_TRUE(session.start());
        EXPECT_LE(pauses.ms(), 6u);  // between the three tries of the open one
    }
    lock.release();
    SetFileAttributesW(tail.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(readFile(tail) + readFile(alert), "my ownmy own");
    EXPECT_FALSE(keepsTemporaryFiles(session.dataFolder));
}

TEST_F(StartUp, LogsThatNoWorkerCouldBeStarted) {
    ASSERT_TRUE(session.writeSettings("python=no such interpreter.exe\r\n"));
    ASSERT_TRUE(session.start());
    const auto lines = host.logLines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[2], "无法启动 Python worker；请在设置中确认 Python 路径");
}

TEST_F(StartUp, LeavesSettingsUnwrittenAtFirstStart) {
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitPasses(3));
    session.stop();
    EXPECT_FALSE(std::filesystem::exists(session.dataFolder / "settings.ini"));
}

TEST_F(StartUp, KeepsTheDefaultsWithoutAFile) {
    ASSERT_TRUE(session.start());
    session.plugin.exports().onMenuItemEvent(kSchid, 0, kShowPanelEntry, 0);
    EXPECT_EQ(session.settings(), kDefaultSettings);
}

TEST_F(StartUp, ReadsSettingsBesideTheDllWhenTheDataFolderHasNone) {
    ASSERT_TRUE(writeFile(session.pluginFolder / "settings.ini", "theme=2\r\nopacity=45.5\r\n"));
    ASSERT_TRUE(session.start());
    session.plugin.exports().onMenuItemEvent(kSchid, 0, kShowPanelEntry, 0);
    EXPECT_NE(session.settings().find("\r\ntheme=2\r\n"), std::string::npos);
    EXPECT_NE(session.settings().find("\r\nopacity=45.5\r\n"), std::string::npos);
    EXPECT_EQ(readFile(session.pluginFolder / "settings.ini"), "theme=2\r\nopacity=45.5\r\n");
}

TEST_F(StartUp, PrefersSettingsInTheDataFolder) {
    ASSERT_TRUE(writeFile(session.pluginFolder / "settings.ini", "theme=2\r\n"));
    ASSERT_TRUE(session.writeSettings("theme=1\n"));
    ASSERT_TRUE(session.start());
    session.plugin.exports().onMenuItemEvent(kSchid, 0, kShowPanelEntry, 0);
    EXPECT_NE(session.settings().find("\r\ntheme=1\r\n"), std::string::npos);
}

TEST_F(StartUp, ReadsTheSettingsAfreshAtEachInit) {
    ASSERT_TRUE(session.writeSettings("theme=1\r\n"));
    ASSERT_TRUE(session.start());
    session.stop();
    ASSERT_TRUE(session.writeSettings("opacity=60\r\n"));
    ASSERT_TRUE(session.start());
    session.plugin.exports().onMenuItemEvent(kSchid, 0, kShowPanelEntry, 0);
    EXPECT_NE(session.settings().find("\r\ntheme=0\r\n"), std::string::npos);
    EXPECT_NE(session.settings().find("\r\nopacity=60\r\n"), std::string::npos);
}
