// settings_file_test.cpp - settings.ini as other programs, a crash or a careless hand leave it: what becomes of it.
#include <windows.h>
#include <memory>
#include <string>
#include <vector>
#include "settings/settings_text.h"
#include "tests/client/client_session_win.h"
#include "tests/client/host_thread_win.h"
#include "tests/client/import_patch_win.h"
#include "tests/client/locked_file_win.h"

namespace {

constexpr const wchar_t* kLibrary = L"corvalis_win64.dll";

// What the plugin calls on the host's thread instead of the system's functions.
HANDLE gHeld = nullptr;  // let go when the pauses are over
int gPausesUntilFree = 0;
int gReads = 0;
std::vector<std::string> gSteps;

void WINAPI pauseAndLetGo(DWORD ms) {
    if (isHostThread() && gHeld && --gPausesUntilFree == 0) {
        CloseHandle(gHeld);
        gHeld = nullptr;
    }
    Sleep(ms);
}

BOOL WINAPI readOnlyTheFirstPart(HANDLE file, void* bytes, DWORD size, DWORD* got, OVERLAPPED* overlapped) {
    if (!isHostThread() || gReads++ % 2 == 0) return ReadFile(file, bytes, size, got, overlapped);
    SetLastError(ERROR_CRC);
    return FALSE;
}

BOOL WINAPI writeToAFullDisk(HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
    if (!isHostThread()) return WriteFile(file, bytes, size, written, overlapped);
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

BOOL WINAPI noteFlush(HANDLE file) {
    if (isHostThread()) gSteps.emplace_back("flush");
    return FlushFileBuffers(file);
}

BOOL WINAPI noteMove(const char* from, const char* to, DWORD flags) {
    const auto nameOf = [](const std::string& path) { return path.substr(path.rfind('\\') + 1); };
    if (isHostThread()) gSteps.push_back(nameOf(from) + " becomes " + nameOf(to));
    return MoveFileExA(from, to, flags);
}

}  // namespace

class SettingsFile : public PluginTest {
  protected:
    const std::filesystem::path file = session.dataFolder / "settings.ini";
    const std::filesystem::path backup = session.dataFolder / "settings.bak";
    const std::string temporaryName = "settings.ini." + std::to_string(GetCurrentProcessId()) + ".tmp";

    // The loaded plugin calls replacement instead of the system's function.
    void replace(const char* function, void* replacement) {
        patches_.push_back(std::make_unique<ImportPatch>(kLibrary, function, replacement));
        ASSERT_TRUE(patches_.back()->isInPlace()) << function;
    }
    // Another program holds the file until the third pause, which only a patient caller makes.
    void holdForThreePauses() {
        gPausesUntilFree = 3;
        gHeld = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(gHeld, INVALID_HANDLE_VALUE);
    }
    void removePatches() { patches_.clear(); }
    int linesWith(const std::string& part) const {
        int count = 0;
        for (const std::string& line : host.logLines()) count += line.find(part) != std::string::npos;
        return count;
    }

    // Chooses the host's menu entry that shows the panel, which saves at once.
    void saveByTheMenu() { session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0); }
    // The file after that, if these were the settings before.
    static std::string savedAfter(Settings settings) {
        settings.panel_visible = true;
        return writeSettingsText(settings);
    }

  private:
    std::vector<std::unique_ptr<ImportPatch>> patches_;
};

TEST_F(SettingsFile, ThatIsReadOnlyIsReadAndASaveThatFailsIsLivedWith) {
    const std::string before = "theme=2\r\npanel_visible=0\r\n";
    Settings airbus;
    airbus.theme = 2;
    ASSERT_TRUE(session.writeSettings(before));
    ASSERT_TRUE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY));
    ASSERT_TRUE(session.start());
    replace("MoveFileExA", reinterpret_cast<void*>(moveButNotOntoReadOnly));
    {
        const HostPauses pauses(kLibrary);
        saveByTheMenu();
        saveByTheMenu();
        EXPECT_EQ(pauses.ms(), 0u);  // waiting does not help
    }
    EXPECT_EQ(session.settings(), before);
    EXPECT_FALSE(keepsTemporaryFiles(session.dataFolder));
    EXPECT_EQ(linesWith("Corvalis cannot save settings.ini (error 5)"), 1);
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    saveByTheMenu();
    EXPECT_EQ(session.settings(), savedAfter(airbus));
}

TEST_F(SettingsFile, ThatIsLockedIsNotTornByASave) {
    ASSERT_TRUE(session.writeSettings("theme=2\r\n"));
    ASSERT_TRUE(session.start());
    LockedFile lock(file);
    ASSERT_TRUE(lock.isHeld());
    saveByTheMenu();
    lock.release();
    EXPECT_EQ(session.settings(), "theme=2\r\n");
    saveByTheMenu();
    EXPECT_NE(session.settings().find("\r\ntheme=2\r\n"), std::string::npos);
}

TEST_F(SettingsFile, ThatIsLockedAtInitIsKeptAsABackupByTheFirstSave) {
    const std::string before = "theme=2\r\nopacity=60\r\n";
    ASSERT_TRUE(session.writeSettings(before));
    ASSERT_TRUE(session.load());
    LockedFile lock(file);
    ASSERT_TRUE(lock.isHeld());
    {
        const HostPauses pauses(kLibrary);
        ASSERT_TRUE(session.start());
        EXPECT_GT(pauses.ms(), 0u);
        EXPECT_LE(pauses.ms(), 100u);
    }
    EXPECT_EQ(linesWith("Corvalis cannot read settings.ini (error 32)"), 1);
    saveByTheMenu();  // cannot move the file away yet
    EXPECT_EQ(linesWith("Corvalis cannot save settings.ini (error 32)"), 1);
    lock.release();
    EXPECT_EQ(session.settings(), before);
    saveByTheMenu();
    EXPECT_EQ(session.settings(), savedAfter(Settings{}));
    EXPECT_EQ(readFile(backup), before);
    EXPECT_EQ(linesWith("Corvalis keeps the settings.ini it could not read as settings.bak"), 1);
}

TEST_F(SettingsFile, ThatIsLockedAtASecondInitLeavesTheSettingsAndIsWaitedForOnce) {
    const std::string before = "theme=2\r\npanel_visible=0\r\n";
    ASSERT_TRUE(session.writeSettings(before));
    ASSERT_TRUE(session.start());
    LockedFile lock(file);
    ASSERT_TRUE(lock.isHeld());
    saveByTheMenu();  // cannot
    {
        const HostPauses pauses(kLibrary);
        ASSERT_TRUE(session.start());
        EXPECT_LE(pauses.ms(), 106u);  // three tries to save, then the patience for reading
    }
    lock.release();
    session.stop();  // saves what is not saved yet
    Settings airbus;
    airbus.theme = 2;
    EXPECT_EQ(session.settings(), savedAfter(airbus));
    EXPECT_EQ(readFile(backup), before);
}

TEST_F(SettingsFile, ThatIsLockedForAMomentAtInitIsRead) {
    const std::string before = "theme=2\r\nopacity=60\r\n";
    ASSERT_TRUE(session.writeSettings(before));
    ASSERT_TRUE(session.load());
    replace("Sleep", reinterpret_cast<void*>(pauseAndLetGo));
    holdForThreePauses();
    ASSERT_TRUE(session.start());
    ASSERT_EQ(gHeld, nullptr);
    saveByTheMenu();
    EXPECT_NE(session.settings().find("\r\nopacity=60\r\n"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(backup));
    EXPECT_EQ(linesWith("cannot read settings.ini"), 0);
}

TEST_F(SettingsFile, ThatIsLockedForAMomentAtASaveIsSavedWhenItIsFree) {
    ASSERT_TRUE(session.writeSettings("theme=2\r\n"));
    ASSERT_TRUE(session.start());
    replace("Sleep", reinterpret_cast<void*>(pauseAndLetGo));
    holdForThreePauses();
    saveByTheMenu();
    ASSERT_EQ(gHeld, nullptr);
    Settings airbus;
    airbus.theme = 2;
    EXPECT_EQ(session.settings(), savedAfter(airbus));
    EXPECT_EQ(linesWith("cannot save"), 0);
}

TEST_F(SettingsFile, ThatCannotBeReadToItsEndCountsAsFarAsItGoesAndIsKept) {
    const std::string before = "theme=2\r\n" + std::string(5000, 'x') + "\r\nopacity=60\r\n";  // two reads
    ASSERT_TRUE(session.writeSettings(before));
    gReads = 0;
    ASSERT_TRUE(session.load());
    replace("ReadFile", reinterpret_cast<void*>(readOnlyTheFirstPart));
    ASSERT_TRUE(session.start());
    removePatches();
    EXPECT_EQ(linesWith("Corvalis cannot read settings.ini (error 23)"), 1);
    saveByTheMenu();
    Settings expected;
    expected.theme = 2;
    EXPECT_EQ(session.settings(), savedAfter(expected));
    EXPECT_EQ(readFile(backup), before);
}

TEST_F(SettingsFile, ThatFindsNoRoomOnTheDiskStaysAndIsSavedAtTheEndIfThereIsRoomThen) {
    const std::string before = "theme=2\r\npanel_visible=0\r\n";
    ASSERT_TRUE(session.writeSettings(before));
    ASSERT_TRUE(session.start());
    replace("WriteFile", reinterpret_cast<void*>(writeToAFullDisk));
    saveByTheMenu();
    saveByTheMenu();
    EXPECT_EQ(session.settings(), before);
    EXPECT_FALSE(std::filesystem::exists(session.dataFolder / temporaryName));
    EXPECT_EQ(linesWith("Corvalis cannot save settings.ini (error 112)"), 1);
    removePatches();
    session.stop();
    Settings airbus;
    airbus.theme = 2;
    EXPECT_EQ(session.settings(), savedAfter(airbus));
}

TEST_F(SettingsFile, IsOnTheDiskBeforeItTakesThePlaceOfTheOldOneUnderANameOfThisProcess) {
    ASSERT_TRUE(session.start());
    gSteps.clear();
    replace("FlushFileBuffers", reinterpret_cast<void*>(noteFlush));
    replace("MoveFileExA", reinterpret_cast<void*>(noteMove));
    saveByTheMenu();
    const std::vector<std::string> expected = {"flush", temporaryName + " becomes settings.ini"};
    EXPECT_EQ(gSteps, expected);
}

TEST_F(SettingsFile, OfBinaryBytesIsSkippedLineByLine) {
    std::string bytes = "theme=1\r\n";
    for (int i = 0; i < 10'000; i++) bytes += static_cast<char>(i * 31 + (i >> 8));
    ASSERT_TRUE(session.writeSettings(bytes + "\nopacity=77\n"));
    ASSERT_TRUE(session.start());
    saveByTheMenu();
    EXPECT_NE(session.settings().find("\r\ntheme=1\r\n"), std::string::npos);
    EXPECT_NE(session.settings().find("\r\nopacity=77\r\n"), std::string::npos);
}

TEST_F(SettingsFile, OfAHundredMegabytesIsReadToItsEnd) {
    Settings expected;
    expected.theme = 1;
    expected.opacity = 77.0f;
    ASSERT_TRUE(session.writeSettings("theme=1\r\n" + std::string(100'000'000, 'x') + "\r\nopacity=77\r\n"));
    ASSERT_TRUE(session.start());
    saveByTheMenu();
    EXPECT_EQ(session.settings(), savedAfter(expected));
}

TEST_F(SettingsFile, HasNothingOfATemporaryFileThatACrashLeft) {
    const auto temporary = session.dataFolder / temporaryName;
    Settings airbus;
    airbus.theme = 2;
    ASSERT_TRUE(session.writeSettings("theme=2\r\n"));
    ASSERT_TRUE(writeFile(temporary, "theme=1\r\n" + std::string(5000, 'x')));
    ASSERT_TRUE(session.start());
    saveByTheMenu();
    EXPECT_EQ(session.settings(), savedAfter(airbus));
    session.stop();
    std::filesystem::remove(file);
    ASSERT_TRUE(writeFile(temporary, "theme=1\r\n"));
    ASSERT_TRUE(session.start());  // half a save does not count as settings
    saveByTheMenu();
    EXPECT_EQ(session.settings(), savedAfter(Settings{}));
}

TEST_F(SettingsFile, LosesItsOldTemporaryFilesAtAStartButNotThoseOfAClientAtWork) {
    const auto make = [&](const std::string& name, int ageMinutes) {
        const auto path = session.dataFolder / name;
        EXPECT_TRUE(writeFile(path, "half a sa"));
        const auto now = std::filesystem::last_write_time(path);
        std::filesystem::last_write_time(path, now - std::chrono::minutes(ageMinutes));
        return path;
    };
    ASSERT_TRUE(session.writeSettings("theme=2\r\n"));
    const auto old = make("settings.ini.99998.tmp", 2);
    const auto oldSound = make("radio_tail.wav.99998.tmp", 2000);
    const auto oldState = make("link_state.txt.99998.tmp", 2);
    const auto fresh = make("settings.ini.99999.tmp", 0);
    const auto notOurs = make("settings.ini.mine.tmp", 2);
    ASSERT_TRUE(session.start());
    EXPECT_FALSE(std::filesystem::exists(old));
    EXPECT_FALSE(std::filesystem::exists(oldSound));
    EXPECT_FALSE(std::filesystem::exists(oldState));
    EXPECT_TRUE(std::filesystem::exists(fresh));
    EXPECT_TRUE(std::filesystem::exists(notOurs));
}
