// settings_file_test.cpp - settings.ini as other programs, a crash or a careless hand leave it: what becomes of it.
#include <windows.h>
#include "settings/settings_text.h"
#include "tests/client/client_session_win.h"
#include "tests/client/locked_file_win.h"

class SettingsFile : public PluginTest {
  protected:
    const std::filesystem::path file = session.dataFolder / "settings.ini";
    const std::filesystem::path temporary = session.dataFolder / "settings.ini.tmp";

    // Chooses the host's menu entry that shows the panel, which saves at once.
    void saveByTheMenu() { session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0); }
    // The file after that, if these were the settings before.
    static std::string savedAfter(Settings settings) {
        settings.panel_visible = true;
        return writeSettingsText(settings);
    }
};

TEST_F(SettingsFile, ThatIsReadOnlyIsReadAndASaveThatFailsIsLivedWith) {
    const std::string before = "theme=2\r\npanel_visible=0\r\n";
    Settings airbus;
    airbus.theme = 2;
    ASSERT_TRUE(session.writeSettings(before));
    ASSERT_TRUE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY));
    ASSERT_TRUE(session.start());
    saveByTheMenu();
    const std::string after = session.settings();  // systems differ in whether a read-only file may be replaced
    EXPECT_TRUE(after == before || after == savedAfter(airbus)) << after;
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

// A file that cannot be opened counts as missing: the next save overwrites it with the defaults.
TEST_F(SettingsFile, ThatIsLockedAtInitCountsAsMissing) {
    ASSERT_TRUE(session.writeSettings("theme=2\r\nopacity=60\r\n"));
    LockedFile lock(file);
    ASSERT_TRUE(lock.isHeld());
    ASSERT_TRUE(session.start());
    lock.release();
    EXPECT_EQ(session.settings(), "theme=2\r\nopacity=60\r\n");  // init writes nothing
    saveByTheMenu();
    EXPECT_EQ(session.settings(), savedAfter(Settings{}));
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
