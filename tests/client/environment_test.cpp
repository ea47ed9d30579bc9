#include <windows.h>
#include <clocale>
#include "tests/client/client_session_win.h"

namespace {

bool hasPluginFiles(const std::filesystem::path& dataFolder) {
    return fileBytes(dataFolder / "radio_tail.wav") == 28844 && fileBytes(dataFolder / "text_alert.wav") == 48044;
}

// Restores the process's locale.
class LocaleValue {
  public:
    explicit LocaleValue(const char* locale) : before_(std::setlocale(LC_ALL, nullptr)) {
        isSet = std::setlocale(LC_ALL, locale) != nullptr;
    }
    ~LocaleValue() { std::setlocale(LC_ALL, before_.c_str()); }
    LocaleValue(const LocaleValue&) = delete;
    LocaleValue& operator=(const LocaleValue&) = delete;

    bool isSet = false;

  private:
    const std::string before_;
};

}  // namespace

using Environment = PluginTest;

TEST_F(Environment, WithoutAppDataTheDataFolderIsBelowTheWorkingFolder) {
    const FreshFolder work;
    const WorkingFolder here(work.path);
    const EnvironmentValue unset(L"APPDATA", std::nullopt);
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForLog("dataDir=.\\Corvalis tailTone=.\\Corvalis\\radio_tail.wav"));
    session.stop();
    EXPECT_TRUE(hasPluginFiles(work.path / "Corvalis"));
}

TEST_F(Environment, WithoutAppDataTheWorkerServesThatFolderTooAndTheLogSaysOnceWhereItIs) {
    const FreshFolder work;
    const WorkingFolder here(work.path);
    const EnvironmentValue unset(L"APPDATA", std::nullopt);
    const auto folder = work.path / "Corvalis";
    std::filesystem::create_directories(folder);
    ASSERT_TRUE(writeFile(folder / "worker.ini", "link=simulate\n"));
    ASSERT_TRUE(session.copyWorker(productFile("hopline_worker.exe")));
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(waitFor([&] { return std::filesystem::exists(folder / "telemetry.json"); }, 30'000));
    session.stop();
    const std::string said = "Corvalis cannot use APPDATA: its data folder is " + toUtf8(folder.wstring()) + ",";
    int lines = 0;
    for (const std::string& line : host.logLines()) lines += line.starts_with(said);
    EXPECT_EQ(lines, 1);
}

TEST_F(Environment, WithoutAppDataALaterChangeOfTheWorkingFolderMovesNoFile) {
    const FreshFolder work, elsewhere;
    const EnvironmentValue unset(L"APPDATA", std::nullopt);
    {
        const WorkingFolder here(work.path);
        ASSERT_TRUE(session.start());
    }
    const WorkingFolder there(elsewhere.path);
    const auto& plugin = session.plugin.exports();
    plugin.onMenuItemEvent(kSchid, 0, 2, 0);  // saves
    EXPECT_TRUE(std::filesystem::exists(work.path / "Corvalis" / "settings.ini"));
    plugin.onTalkStatusChangeEvent(kSchid, 1, 0, kOtherClient);
    ASSERT_TRUE(session.waitTicks(200));
    plugin.onTalkStatusChangeEvent(kSchid, 0, 0, kOtherClient);
    ASSERT_TRUE(session.waitForCalls("playWaveFile", 1));
    EXPECT_EQ(host.playedSounds()[0], toUtf8((work.path / "Corvalis" / "radio_tail.wav").wstring()));
}

TEST_F(Environment, AnEmptyAppDataCountsAsMissing) {
    const FreshFolder work;
    const WorkingFolder here(work.path);
    const EnvironmentValue empty(L"APPDATA", L"");
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForLog("dataDir=.\\Corvalis tailTone"));
}

TEST_F(Environment, AnAppDataLongerThan260CountsAsMissing) {
    const FreshFolder work;
    const WorkingFolder here(work.path);
    const EnvironmentValue tooLong(L"APPDATA", L"C:\\" + std::wstring(300, L'x'));
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForLog("dataDir=.\\Corvalis tailTone"));
    session.stop();
    EXPECT_TRUE(hasPluginFiles(work.path / "Corvalis"));
}

TEST_F(Environment, AnAppDataOfExactly260CountsAsMissing) {
    const FreshFolder work;
    const WorkingFolder here(work.path);
    const EnvironmentValue tooLong(L"APPDATA", L"C:\\" + std::wstring(257, L'x'));
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForLog("dataDir=.\\Corvalis tailTone"));
}

TEST_F(Environment, ASeparatorAtTheEndOfAppDataIsKept) {
    const EnvironmentValue ended(L"APPDATA", session.appData.wstring() + L"\\");
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForLog("dataDir=" + toUtf8(session.appData.wstring()) + "\\\\Corvalis tailTone"));
    EXPECT_TRUE(hasPluginFiles(session.dataFolder));
}

TEST_F(Environment, AFolderThatCannotBeMadeLeavesThePluginRunning) {
    const EnvironmentValue nowhere(L"APPDATA", session.appData.wstring() + L"\\no\\such\\folder");
    ASSERT_TRUE(session.start());
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
    EXPECT_TRUE(session.waitPasses(3));
    EXPECT_TRUE(session.waitForLog("Corvalis cannot make its data folder (error 3): "));
    EXPECT_TRUE(session.waitForLog("Corvalis cannot save settings.ini (error 3)"));
}

// A user name that the system's code page lacks.
class ForeignUserName : public ::testing::Test {
  protected:
    ClientSession session{L"Прилёт 到着"};
};

TEST_F(ForeignUserName, GetsTheDataFolderByItsShortName) {
    wchar_t shortPath[MAX_PATH + 1] = {};
    const DWORD count = GetShortPathNameW(session.appData.c_str(), shortPath, MAX_PATH);
    if (count == 0 || toCodePage(std::wstring(shortPath)).find('?') != std::string::npos) {
        GTEST_SKIP() << "this system gives the folder no short name";
    }
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(hasPluginFiles(session.dataFolder));
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
    EXPECT_NE(session.settings(), "");
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
}

TEST_F(ForeignUserName, IsNoReasonToFail) {
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitPasses(3));
}

// A user name beyond ASCII that the code page has.
TEST(AccentedUserName, IsUtf8ForTheHostAndOpensInTheCodePage) {
    ClientSession session(L"J\u00fcrgen");
    if (toCodePage(L"J\u00fcrgen").find('?') != std::string::npos) {
        GTEST_SKIP() << "code page " << GetACP() << " lacks the letter";
    }
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(hasPluginFiles(session.dataFolder));
    EXPECT_TRUE(session.waitForLog("tailTone=" + toUtf8((session.dataFolder / "radio_tail.wav").wstring())));
    session.plugin.exports().onTalkStatusChangeEvent(kSchid, 1, 0, kOtherClient);
    ASSERT_TRUE(session.waitTicks(200));
    session.plugin.exports().onTalkStatusChangeEvent(kSchid, 0, 0, kOtherClient);
    ASSERT_TRUE(session.waitForCalls("playWaveFile", 1));
    EXPECT_EQ(session.host.playedSounds()[0], toUtf8((session.dataFolder / "radio_tail.wav").wstring()));
}

TEST_F(Environment, NumbersInTheSettingsKeepTheirPointUnderACommaLocale) {
    const LocaleValue german("German_Germany.1252");
    if (!german.isSet || *std::localeconv()->decimal_point != ',') GTEST_SKIP() << "no locale with a decimal comma";
    ASSERT_TRUE(session.writeSettings("volume_min=0.25\r\nvolume_max=0.75\r\nopacity=45.5\r\n"));
    ASSERT_TRUE(session.start());
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
    EXPECT_NE(session.settings().find("\r\nvolume_min=0.25\r\nvolume_max=0.75\r\n"), std::string::npos);
    EXPECT_NE(session.settings().find("\r\nopacity=45.5\r\n"), std::string::npos);
    EXPECT_EQ(*std::localeconv()->decimal_point, ',');
}

TEST_F(Environment, TelemetryIsReadUnderACommaLocale) {
    const LocaleValue german("German_Germany.1252");
    if (!german.isSet || *std::localeconv()->decimal_point != ',') GTEST_SKIP() << "no locale with a decimal comma";
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
}

TEST_F(Environment, TheLocaleOfTheSystemIsNoHindrance) {
    const LocaleValue systems("");
    session.telemetry.radios[0].activeKhz = 122800;
    session.publish();
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitForCalls("requestClientMove", 1));
}
