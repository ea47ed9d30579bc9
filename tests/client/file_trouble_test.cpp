#include <windows.h>
#include <atomic>
#include <fstream>
#include "base/data_files_win.h"
#include "base/number_text.h"
#include "bridge/poll_loop.h"
#include "panel/panel_requests.h"
#include "tests/client/client_session_win.h"
#include "tests/client/import_patch_win.h"
#include "tests/client/locked_file_win.h"
#include "tests/client/panel_driver_win.h"

namespace {

BOOL WINAPI writeToAFullDisk(HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

HANDLE WINAPI openInAReadOnlyFolder(const char* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                                    DWORD disposition, DWORD flags, HANDLE like) {
    if ((access & GENERIC_WRITE) == 0) return CreateFileA(path, access, share, security, disposition, flags, like);
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
}

}  // namespace

class FileTrouble : public PluginTest {
  protected:
    // On all of its threads the plugin calls replacement instead of the system's function, in the midst of a flight.
    void expectNothingWrittenAndNothingLost(const char* function, void* replacement, const std::string& error) {
        ASSERT_TRUE(session.writeSettings("theme=2\r\npanel_visible=0\r\n"));
        session.tune(1, 122800);
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitForArrival(kTower122800));
        {
            const ImportPatch patch(L"corvalis_win64.dll", function, replacement);
            ASSERT_TRUE(patch.isInPlace());
            session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);  // saves, or would
            PostMessageW(findPanel(), kPanelSwapMessage, 1, 0);
            ASSERT_TRUE(session.waitPasses(5));
            session.tune(1, 121500);
            EXPECT_TRUE(session.waitForArrival(kGround121500));
            EXPECT_TRUE(session.waitForLog("Corvalis cannot save settings.ini (error " + error + ")"));
            EXPECT_EQ(session.settings(), "theme=2\r\npanel_visible=0\r\n");
            EXPECT_FALSE(std::filesystem::exists(session.dataFolder / "command.json"));
        }
        session.stop();
        EXPECT_NE(session.settings().find("\r\ntheme=2\r\n"), std::string::npos);
        EXPECT_NE(session.settings().find("panel_visible=1\r\n"), std::string::npos);
    }
    std::filesystem::path telemetryFile() const { return session.dataFolder / "telemetry.json"; }
    // Writes the present time where the text of a telemetry begins: the whole of a large file would be old before it is
    // on the disk.
    void stampAnew(std::size_t textBegins) const {
        std::fstream file(telemetryFile(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(textBegins + std::string_view("{\n \"updated\": ").size()));
        file << formatFixed(session.clock.unixSeconds(), 3);
    }
    // The file is there for some passes without effect; then a good one is followed.
    void expectIgnoredThenRecovered(const std::string& bytes) {
        std::filesystem::create_directories(session.dataFolder);
        ASSERT_TRUE(writeFile(telemetryFile(), bytes));
        ASSERT_TRUE(session.start());
        ASSERT_TRUE(session.waitPasses(2));
        EXPECT_TRUE(host.callsOf("getChannelList").empty());
        session.tune(1, 122800);
        EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
    }
};

TEST_F(FileTrouble, AnEmptyTelemetryIsIgnored) {
    expectIgnoredThenRecovered("");
}
TEST_F(FileTrouble, ABinaryTelemetryIsIgnored) {
    std::string bytes;
    for (int i = 0; i < 100'000; i++) bytes += static_cast<char>(i * 31 + (i >> 8));
    expectIgnoredThenRecovered(bytes);
}
TEST_F(FileTrouble, ATelemetryOfQuotesAndColonsIsIgnored) {
    std::string bytes;
    for (int i = 0; i < 50'000; i++) bytes += "\":\"updated";
    expectIgnoredThenRecovered(bytes);
}
TEST_F(FileTrouble, ATornTelemetryIsIgnored) {
    session.telemetry.radios[0].activeKhz = 122800;
    const std::string whole = telemetryText(session.telemetry, session.clock.unixSeconds());
    expectIgnoredThenRecovered(whole.substr(0, whole.find("com1_active") + 14));
}

TEST_F(FileTrouble, AHundredMegabytesOfTelemetryAreLivedThrough) {
    session.telemetry.radios[0].activeKhz = 119000;
    session.publish();
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    session.stopPublishing();
    ASSERT_TRUE(replaceFile(telemetryFile(), std::string(100'000'000, 'x')));
    ASSERT_TRUE(session.waitPasses(2));  // the second pass began after the file was there
    session.tune(1, 122800);
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1, 30'000));
}

TEST_F(FileTrouble, NoMoreThanWantedIsReadOfAFile) {
    std::filesystem::create_directories(session.dataFolder);
    std::string whole;
    for (int i = 0; whole.size() < 20'000; i++) whole += std::to_string(i);
    ASSERT_TRUE(writeFile(telemetryFile(), whole));
    const std::string path = toCodePage(telemetryFile().wstring());
    WindowsDataFiles files;
    for (const std::size_t bytes : {std::size_t{0}, std::size_t{1}, std::size_t{4096}, std::size_t{4097},
                                    whole.size() - 1, whole.size(), whole.size() + 1}) {
        std::string read = "what was there before";
        ASSERT_TRUE(files.readBeginning(path, bytes, read));
        EXPECT_EQ(read, whole.substr(0, bytes)) << bytes;
    }
    std::string read;
    ASSERT_TRUE(files.read(path, read));
    EXPECT_EQ(read, whole);
    EXPECT_FALSE(files.readBeginning(path + ".none", 10, read));
    EXPECT_EQ(read, "");
}

TEST_F(FileTrouble, AFreshTelemetryWithAHundredMegabytesOfTextIsUsed) {
    FakeTelemetry hostile;
    hostile.radios[0].activeKhz = 122800;
    hostile.ackId = "4242-1";
    hostile.ackMessage = std::string(100'000'000, 'x');
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(replaceFile(telemetryFile(), telemetryText(hostile, session.clock.unixSeconds())));
    EXPECT_TRUE(session.waitUntil(
        [&] {
            stampAnew(0);
            return host.ownChannel(kSchid) == kTower122800;
        },
        30'000));
    session.tune(1, 121500);
    EXPECT_TRUE(session.waitForArrival(kGround121500));
}

TEST_F(FileTrouble, OfATelemetryOnlyTheFirstMegabytesCount) {
    const std::size_t blanks = 5'000'000;
    FakeTelemetry behind;
    behind.radios[0].activeKhz = 122800;
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(
        replaceFile(telemetryFile(), std::string(blanks, ' ') + telemetryText(behind, session.clock.unixSeconds())));
    for (int pass = 0; pass < 14; pass++) {  // twice as long as a fresh frequency must stand still
        stampAnew(blanks);
        ASSERT_TRUE(session.waitPasses(1));
    }
    EXPECT_EQ(host.ownChannel(kSchid), kLobby);
    session.tune(1, 121500);
    EXPECT_TRUE(session.waitForArrival(kGround121500));
}

TEST_F(FileTrouble, AFolderInThePlaceOfTheTelemetryIsLivedWith) {
    std::filesystem::create_directories(telemetryFile());
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitPasses(5));
    std::filesystem::remove(telemetryFile());
    session.tune(1, 122800);
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
}

TEST_F(FileTrouble, ALockedTelemetryIsReadOnceItIsFree) {
    session.telemetry.radios[0].activeKhz = 122800;
    std::filesystem::create_directories(session.dataFolder);
    ASSERT_TRUE(writeFile(telemetryFile(), telemetryText(session.telemetry, session.clock.unixSeconds())));
    LockedFile lock(telemetryFile());
    ASSERT_TRUE(lock.isHeld());
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitPasses(10));  // 350 ms are seven of them
    EXPECT_TRUE(host.callsOf("getChannelList").empty());
    lock.release();
    session.publish();
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
}

TEST_F(FileTrouble, ATelemetryLockedForAMomentDoesNotRestartTheStandstill) {
    // Like a virus scanner: holds the file when a pass wants it, lets go while the plugin pauses before another try.
    static std::atomic<HANDLE> held{nullptr};
    static std::atomic<int> tries{0};
    const auto sleepAndLetGo = +[](DWORD ms) {
        if (ms > 0 && ms < kPollPeriodMs) {
            if (const HANDLE file = held.exchange(nullptr)) {
                CloseHandle(file);
                tries++;
            }
        }
        Sleep(ms);
    };
    tries = 0;
    session.tune(1, 119000);
    ASSERT_TRUE(session.load());
    const ImportPatch patch(L"corvalis_win64.dll", "Sleep", reinterpret_cast<void*>(sleepAndLetGo));
    ASSERT_TRUE(patch.isInPlace());
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    session.tune(1, 122800);
    const std::uint64_t visibleAt = session.clock.tickMs();
    const auto lock = [&] {
        const HANDLE file = CreateFileW(telemetryFile().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE) return false;  // the plugin has it open
        held = file;
        return true;
    };
    for (int i = 0; i < 7; i++) {
        session.publish();
        ASSERT_TRUE(waitFor(lock));
        ASSERT_TRUE(waitFor([&] { return tries > i; }));
        ASSERT_TRUE(session.waitPasses(1));  // held at all three tries of one pass, the file would be missed by it
    }
    ASSERT_TRUE(session.waitForCalls("requestClientMove", 1));
    // Each pass without telemetry would have restarted the count of eight passes, and so would the last of the seven.
    EXPECT_LE(session.passesBetween(visibleAt, host.callsOf("requestClientMove")[0].atMs), 12u);
}

TEST_F(FileTrouble, TelemetryWrittenWithoutAPauseIsFollowed) {
    session.tune(1, 119000);
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    session.tune(1, 122800);
    const std::uint64_t visibleAt = session.clock.tickMs();
    ASSERT_TRUE(session.waitUntil([&] {
        session.publish();  // every few milliseconds
        return !host.callsOf("requestClientMove").empty();
    }));
    EXPECT_LE(session.passesBetween(visibleAt, host.callsOf("requestClientMove")[0].atMs), 40u);
}

TEST_F(FileTrouble, AFileInThePlaceOfTheDataFolderIsLivedWith) {
    ASSERT_TRUE(writeFile(session.dataFolder, "in the way"));
    ASSERT_TRUE(session.start());
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
    ASSERT_TRUE(session.waitPasses(5));
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
    session.stop();
    EXPECT_EQ(readFile(session.dataFolder), "in the way");
    int folderLines = 0;
    int saveLines = 0;
    for (const std::string& line : host.logLines()) {
        folderLines += line.starts_with("Corvalis cannot make its data folder (error 183): ");
        saveLines += line.starts_with("Corvalis cannot save settings.ini (error ");
    }
    EXPECT_EQ(folderLines, 1);
    EXPECT_EQ(saveLines, 1);
}

TEST_F(FileTrouble, ADataFolderThatVanishesAndComesBackIsLivedWith) {
    session.tune(1, 119000);
    ASSERT_TRUE(session.start());
    ASSERT_TRUE(session.waitForCalls("getChannelList", 1));
    session.stopPublishing();
    ASSERT_TRUE(waitFor([&] {
        std::error_code error;
        std::filesystem::remove_all(session.dataFolder, error);
        return !std::filesystem::exists(session.dataFolder);
    }));
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
    ASSERT_TRUE(session.waitPasses(5));
    session.tune(1, 122800);
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
}

TEST_F(FileTrouble, ADiskThatIsFullInFlightIsLivedWithAndNoSettingIsLost) {
    expectNothingWrittenAndNothingLost("WriteFile", reinterpret_cast<void*>(&writeToAFullDisk), "112");
}

TEST_F(FileTrouble, ADataFolderThatIsReadOnlyInFlightIsLivedWithAndNoSettingIsLost) {
    expectNothingWrittenAndNothingLost("CreateFileA", reinterpret_cast<void*>(&openInAReadOnlyFolder), "5");
}
