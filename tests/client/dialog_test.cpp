// The settings dialog's real window: opened from the menu, the panel and the host's configuration, worked by mouse,
// keyboard and commands, and what stands in settings.ini afterwards.
#include <cmath>
#include <thread>
#include "settings/dialog_fonts_win.h"
#include "settings/settings_text.h"
#include "settings/texts.h"
#include "tests/client/dialog_driver_win.h"
#include "tests/client/panel_test.h"
#include "tests/client/resource_count_win.h"

namespace {

constexpr const char* kSavedLine = "settings saved";
constexpr const char* kAppliedLine = "settings applied (window kept open)";
constexpr std::uint64_t kPatienceMs = 60'000;  // everything posted before is painted first, on a busy machine too

int languageId(Language language) {
    return kFirstLanguage + static_cast<int>(language);
}

bool isDialogShown() {
    return findDialog() && IsWindowVisible(findDialog());
}

std::uint64_t cpuMsOf(HANDLE thread) {
    constexpr std::uint64_t kPerMs = 10'000;  // of the system's 100 ns
    FILETIME created = {}, ended = {}, kernel = {}, user = {};
    GetThreadTimes(thread, &created, &ended, &kernel, &user);
    const auto ticks = [](const FILETIME& time) {
        return std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime;
    };
    return (ticks(kernel) + ticks(user)) / kPerMs;
}

class DialogTest : public PanelTest {
  protected:
    void openFromMenu() { session.plugin.exports().onMenuItemEvent(kSchid, 0, 1, 0); }
    ::testing::AssertionResult open() {
        if (!session.isRunning()) {
            const auto started = session.start();
            if (!started) return started;
        }
        // Chosen again while the thread of the dialog before is ending, the entry does nothing.
        const auto isOpening = [&] {
            if (!findDialog()) openFromMenu();
            return isDialogShown();
        };
        if (session.waitUntil(isOpening)) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "no dialog";
    }
    bool isGone() {
        return session.waitUntil([] { return !findDialog(); });
    }
    DialogDriver dialog(int page = 0) const { return {findDialog(), page}; }
    // Everything posted before has been done when this is.
    bool apply() {
        host.forgetCalls();
        dialog().command(kApply);
        return session.waitForLog(kAppliedLine, kPatienceMs);
    }
    bool save() {
        dialog().command(kSaveAndClose);
        return session.waitForLog(kSavedLine, kPatienceMs) && isGone();
    }
    void expectSaved(const Settings& expected) { EXPECT_EQ(session.settings(), writeSettingsText(expected)); }
};

Settings everythingChanged() {
    Settings all;
    all.language = "de";
    all.theme = kAirbusTheme;
    all.opacity = 60.0f;
    all.panel_scale = 125.0f;
    all.master = all.enabled = all.follow_volume = all.panel_visible = false;
    all.distort_self = all.distort_others = all.tail_self = all.tail_others = false;
    all.equalize = all.nrSelf = all.pin = true;
    all.radio_lamps = all.text_alert = all.text_auto_open = false;
    all.receive_volume = 33.0f;
    all.transmit_gain = 7.0f;
    all.volume_min = 0.15f;
    all.volume_max = 0.85f;
    all.radio = 2;
    all.target = 1;
    all.text_scale = 19.0f;
    all.bind_A = 1;
    all.bind_B = 1;
    all.bind_C = 7;
    all.bind_D = 1;
    all.bind_E = 7;
    return all;
}

constexpr int kGeneralToggles[] = {6000, 6001, 6020, 6021, 6026, 6027, 6028, 6029};
constexpr int kRadioToggles[] = {6044, 6045, 6046, 6047};

}  // namespace

TEST_F(DialogTest, OpensInTheMiddleOfTheScreenWithItsStyleAndTitle) {
    ASSERT_TRUE(session.writeSettings("language=fr\r\n"));
    ASSERT_TRUE(open());
    wchar_t title[64] = {};
    GetWindowTextW(findDialog(), title, 64);
    EXPECT_STREQ(title, L"Corvalis · Paramètres");
    const auto style = static_cast<DWORD>(GetWindowLongW(findDialog(), GWL_STYLE));
    EXPECT_TRUE(style & WS_POPUP);
    EXPECT_TRUE(style & WS_CLIPCHILDREN);
    EXPECT_FALSE(style & (WS_CAPTION | WS_THICKFRAME));
    EXPECT_TRUE(static_cast<DWORD>(GetWindowLongW(findDialog(), GWL_EXSTYLE)) & WS_EX_APPWINDOW);
    EXPECT_EQ(GetWindow(findDialog(), GW_OWNER), nullptr);

    const double scale = GetDpiForWindow(findDialog()) / 96.0;
    RECT rect = {};
    ASSERT_TRUE(session.waitUntil([&] {
        GetWindowRect(findDialog(), &rect);
        return rect.right - rect.left == std::lround(940 * scale) && rect.bottom - rect.top == std::lround(660 * scale);
    })) << rect.right - rect.left
        << " x " << rect.bottom - rect.top;
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(findDialog(), MONITOR_DEFAULTTONEAREST), &monitor);
    EXPECT_EQ(rect.left, (monitor.rcWork.left + monitor.rcWork.right - (rect.right - rect.left)) / 2);
    EXPECT_EQ(rect.top, (monitor.rcWork.top + monitor.rcWork.bottom - (rect.bottom - rect.top)) / 2);
}

TEST_F(DialogTest, IsOneHoweverOftenItIsOpened) {
    ASSERT_TRUE(session.start());
    const int threads = threadCount();
    openFromMenu();
    openFromMenu();
    ASSERT_TRUE(session.waitUntil([] { return isDialogShown(); }));
    const HWND first = findDialog();
    openFromMenu();
    session.plugin.exports().configure(nullptr, nullptr);  // returns: the dialog is there
    EXPECT_EQ(findDialog(), first);
    EXPECT_EQ(FindWindowExW(nullptr, first, L"CorvalisSettingsClass", nullptr), nullptr);
    EXPECT_LE(threadCount(), threads + 1);
    dialog().command(kCancel);
    ASSERT_TRUE(isGone());
    ASSERT_TRUE(open());  // on a new thread
}

TEST_F(DialogTest, EveryControlByTheMouseStandsInTheFile) {
    ASSERT_TRUE(open());
    DialogDriver hand = dialog();
    hand.click(languageId(kGerman));
    hand.click(kThemeChoice, 2);
    hand.drag(6003, 100.0f, 60.0f);
    hand.drag(6004, 100.0f, 125.0f);
    for (const int id : kGeneralToggles) hand.click(id);
    hand.turnTo(1);
    hand.drag(6022, 80.0f, 33.0f);
    hand.drag(6023, 0.0f, 7.0f);
    hand.drag(6024, 0.0f, 0.15f);
    hand.drag(6025, 1.0f, 0.85f);
    hand.click(6030);
    hand.click(6031);
    hand.turnTo(2);
    hand.click(6041);
    hand.click(6043);
    for (const int id : kRadioToggles) hand.click(id);
    hand.wheel(6048, 4 * WHEEL_DELTA);
    for (const int key : {0, 1, 3}) hand.click(kFirstKeySelector + key, 1);
    for (const int key : {2, 4}) hand.click(kFirstKeySelector + key, 0);  // back from the first is the last
    hand.click(kSaveAndClose);
    ASSERT_TRUE(session.waitForLog(kSavedLine, kPatienceMs));
    EXPECT_TRUE(isGone());
    expectSaved(everythingChanged());
}

TEST_F(DialogTest, EveryControlByCommandStandsInTheFile) {
    ASSERT_TRUE(session.writeSettings(
        "opacity=60\r\npanel_scale=125\r\nreceive_volume=33\r\ntransmit_gain=7\r\nvolume_min=0.15\r\n"
        "volume_max=0.85\r\ntext_scale=19\r\n"));
    ASSERT_TRUE(open());
    const DialogDriver hand = dialog();
    hand.command(languageId(kGerman));
    hand.command(kThemeChoice, 2);
    for (const int id : kGeneralToggles) hand.command(id);
    for (const int id : {6030, 6031, 6041, 6043}) hand.command(id);
    for (const int id : kRadioToggles) hand.command(id);
    for (const int key : {0, 1, 3}) hand.command(kFirstKeySelector + key);
    for (const int key : {2, 4}) hand.command(kFirstKeySelector + key, 7);
    ASSERT_TRUE(save());
    expectSaved(everythingChanged());
}

TEST_F(DialogTest, TheKeyboardAloneChangesAndSaves) {
    ASSERT_TRUE(open());
    const DialogDriver hand = dialog();
    const DialogLayout layout = hand.layout();
    const auto tabTo = [&](int from, int to) {
        int at = -1, steps = 0, index = 0;
        for (const DialogControl& control : layout.controls) {
            if (control.id == from) at = index;
            if (control.id == to) steps = index - at;
            index++;
        }
        for (int i = 0; i < steps; i++) hand.key(VK_TAB);
    };
    tabTo(-1, languageId(kKorean));
    hand.key(VK_SPACE);
    tabTo(languageId(kKorean), 6004);
    hand.key(VK_RIGHT);
    tabTo(6004, 6000);
    hand.key(VK_RETURN);
    tabTo(6000, kSaveAndClose);
    hand.key(VK_RETURN);
    ASSERT_TRUE(session.waitForLog(kSavedLine, kPatienceMs));
    Settings expected;
    expected.language = "ko";
    expected.panel_scale = 105.0f;
    expected.master = false;
    expectSaved(expected);
}

TEST_F(DialogTest, ApplyThenCancelKeepsAndCancelDiscards) {
    ASSERT_TRUE(open());
    dialog().command(6044);
    ASSERT_TRUE(apply());
    EXPECT_TRUE(isDialogShown());
    EXPECT_TRUE(isSaved("pin=1"));
    dialog().command(6044);
    dialog().command(6000);
    dialog().command(kCancel);
    EXPECT_TRUE(isGone());
    EXPECT_TRUE(isSaved("pin=1"));
    EXPECT_TRUE(isSaved("master=1"));
}

TEST_F(DialogTest, EscapeTheWindowButtonAndCloseDiscard) {
    ASSERT_TRUE(session.start());
    for (const int way : {0, 1, 2, 3}) {
        ASSERT_TRUE(open());
        dialog().click(6000);
        if (way == 0) dialog().key(VK_ESCAPE);
        if (way == 1) dialog().click(kWindowButton);
        if (way == 2) dialog().click(kCancel);
        if (way == 3) dialog().post(WM_CLOSE, 0, 0);
        EXPECT_TRUE(isGone()) << way;
        EXPECT_FALSE(std::filesystem::exists(session.dataFolder / "settings.ini")) << way;
    }
    EXPECT_TRUE(host.callsOf("logMessage").size() < 4);
}

TEST_F(DialogTest, ACommitKeepsWhatThePanelChangedMeanwhile) {
    ASSERT_TRUE(show(kGeneralTheme));
    ASSERT_TRUE(open());
    dialog().click(6000);
    EXPECT_TRUE(clickSaves(kCom2Key, "radio=COM2"));
    ASSERT_TRUE(save());
    EXPECT_TRUE(isSaved("radio=COM2"));
    EXPECT_TRUE(isSaved("master=0"));
}

TEST_F(DialogTest, ThePanelsKeyOpensIt) {
    ASSERT_TRUE(show(kGeneralTheme));
    panel().click(kSettingsKey);
    EXPECT_TRUE(session.waitUntil([] { return isDialogShown(); }));
}

TEST_F(DialogTest, ResetPutsThePanelBack) {
    ASSERT_TRUE(session.writeSettings("panel_x=400\r\npanel_y=-20\r\npanel_scale=150\r\nopacity=40\r\npin=1\r\n"));
    ASSERT_TRUE(open());
    dialog().click(kResetPanel);
    ASSERT_TRUE(save());
    Settings expected;
    expected.pin = true;
    expectSaved(expected);
}

TEST_F(DialogTest, MinimumAboveMaximumIsSavedInOrder) {
    ASSERT_TRUE(open());
    DialogDriver hand = dialog();
    hand.turnTo(1);
    hand.drag(6024, 0.0f, 0.9f);
    hand.drag(6025, 1.0f, 0.2f);
    ASSERT_TRUE(save());
    EXPECT_TRUE(isSaved("volume_min=0.2"));
    EXPECT_TRUE(isSaved("volume_max=0.9"));
}

TEST_F(DialogTest, ALanguageShowsAtOnceAndInTheMenuAfterACommit) {
    ASSERT_TRUE(session.writeSettings("language=en\r\n"));
    ASSERT_TRUE(open());
    dialog().click(languageId(kRussian));
    EXPECT_TRUE(session.waitUntil([] {
        wchar_t title[64] = {};
        GetWindowTextW(findDialog(), title, 64);
        return std::wstring(title) == L"Corvalis · Настройки";
    }));
    EXPECT_TRUE(isSaved("language=en"));
    ASSERT_TRUE(apply());
    EXPECT_TRUE(isSaved("language=ru"));
    EXPECT_STREQ(session.plugin.takeMenus()[0].text, "Corvalis Настройки");
}

TEST_F(DialogTest, PreviewShowsTheMessageWindowWithItsAlert) {
    ASSERT_TRUE(show(kGeneralTheme, "text_auto_open=0\r\n"));  // the UI thread has its windows
    ASSERT_TRUE(open());
    host.forgetCalls();
    dialog().command(kPreviewMessages);
    EXPECT_TRUE(session.waitUntil([] {
        const auto window = static_cast<HWND>(findOwnWindow(L"CorvalisTextMessage"));
        return window && IsWindowVisible(window);
    }));
    EXPECT_TRUE(session.waitForCalls("playWaveFile", 1));
    dialog().command(kClearMessages);
    EXPECT_TRUE(apply());
}

TEST_F(DialogTest, PreviewIsSilentWithoutTextAlert) {
    ASSERT_TRUE(session.writeSettings("text_alert=0\r\n"));
    ASSERT_TRUE(open());
    dialog().command(kPreviewMessages);
    ASSERT_TRUE(apply());
    EXPECT_TRUE(host.callsOf("playWaveFile").empty());
}

TEST_F(DialogTest, ShutdownClosesAnOpenDialog) {
    ASSERT_TRUE(open());
    session.stop();
    EXPECT_EQ(findDialog(), nullptr);
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    EXPECT_FALSE(GetClassInfoExW(GetModuleHandleW(L"corvalis_win64.dll"), L"CorvalisSettingsClass", &description));
    session.plugin.unload();
    ASSERT_TRUE(open());  // the DLL again
    session.stop();
}

TEST_F(DialogTest, ShutdownOvertakesADialogThatIsJustOpening) {
    for (int i = 0; i < 8; i++) {
        ASSERT_TRUE(session.start());
        openFromMenu();
        for (int pause = 0; pause < i; pause++) pauseBriefly();
        session.stop();
        EXPECT_EQ(findDialog(), nullptr) << i;
    }
}

TEST_F(DialogTest, ShutdownClosesADialogOfTheHostsThread) {
    ASSERT_TRUE(session.start());
    std::atomic<bool> hasReturned{false};
    std::thread hosts([&] {
        session.plugin.exports().configure(nullptr, nullptr);
        hasReturned = true;
    });
    EXPECT_TRUE(session.waitUntil([] { return isDialogShown(); }));
    EXPECT_FALSE(hasReturned);
    session.stop();
    EXPECT_EQ(findDialog(), nullptr);
    EXPECT_TRUE(waitFor([&] { return hasReturned.load(); }));
    hosts.join();
}

TEST_F(DialogTest, OpenedBeforeInitItLoadsAndSavesTheSettings) {
    std::filesystem::create_directories(session.dataFolder);
    ASSERT_TRUE(session.writeSettings("theme=1\r\npanel_x=-12\r\n"));
    ASSERT_TRUE(session.load());
    std::thread hosts([&] { session.plugin.exports().configure(nullptr, nullptr); });
    ASSERT_TRUE(waitFor([] { return isDialogShown(); }));
    dialog().click(6000);
    dialog().click(kSaveAndClose);
    hosts.join();
    Settings expected;
    expected.theme = 1;
    expected.panel_x = -12;
    expected.master = false;
    expectSaved(expected);
    EXPECT_EQ(host.logLines(), std::vector<std::string>{kSavedLine});
}

TEST_F(DialogTest, WorksWithoutTheHostsLog) {
    host.removeFunction(kLogMessagePosition);
    ASSERT_TRUE(open());
    dialog().command(6044);
    dialog().command(kSaveAndClose);
    EXPECT_TRUE(isGone());
    EXPECT_TRUE(isSaved("pin=1"));
}

TEST_F(DialogTest, OpenedAgainAndAgainItLeavesNothingBehind) {
    ASSERT_TRUE(session.start());
    const auto openAndClose = [&] {
        ASSERT_TRUE(open());
        for (int page = 0; page < kPageCount; page++) dialog().command(kFirstTab + page);
        for (int language = 0; language < kLanguageCount; language++) dialog().command(kFirstLanguage + language);
        ASSERT_TRUE(apply());
        dialog().command(kCancel);
        ASSERT_TRUE(isGone());
    };
    for (int i = 0; i < 3; i++) openAndClose();
    const ResourceCount before = countResources();
    for (int i = 0; i < 6; i++) openAndClose();
    const ResourceCount after = countResources();
    EXPECT_LE(after.gdiObjects, before.gdiObjects + 2);
    EXPECT_LE(after.userObjects, before.userObjects + 1);
    EXPECT_LE(after.handles, before.handles + 6);
}

TEST_F(DialogTest, OpenAndIdleItTakesUnderTwoPercentOfACore) {
    session.publish();
    ASSERT_TRUE(open());
    ASSERT_TRUE(apply());  // drawn, and at rest
    const HANDLE thread = OpenThread(THREAD_QUERY_INFORMATION, FALSE, GetWindowThreadProcessId(findDialog(), nullptr));
    ASSERT_TRUE(thread);
    const std::uint64_t cpuBefore = cpuMsOf(thread), before = systemTickMs();
    ASSERT_TRUE(session.waitTicks(3000));
    const std::uint64_t cpuMs = cpuMsOf(thread) - cpuBefore, allMs = systemTickMs() - before;
    CloseHandle(thread);
    RecordProperty("cpu_ms", static_cast<int>(cpuMs));
    EXPECT_LT(cpuMs * 50, allMs) << cpuMs << " ms of " << allMs;
}

TEST_F(DialogTest, EveryTextFitsInTheFontsOfThisSystem) {
    const HDC dc = CreateCompatibleDC(nullptr);
    DialogFonts fonts;
    const auto measure = [&](const DialogText& style, const std::string& piece) {
        return measureDialogText(dc, fonts, style, piece);
    };
    int texts = 0;
    for (const unsigned dpi : {96u, 120u, 144u, 192u}) {
        for (int page = 0; page < kPageCount; page++) {
            const auto width = static_cast<std::int32_t>(kDialogWidth * dpi / 96);
            const auto height = static_cast<std::int32_t>(kDialogHeight * dpi / 96);
            const DialogLayout layout = layoutDialog(width, height, dpi, page, 0);
            for (std::int32_t language = 0; language < kLanguageCount; language++) {
                for (std::int32_t action = 0; action < 8; action++) {
                    DialogView view;
                    view.language = language;
                    view.live = {"COM2   122.800 MHz", "VOL 100%", 70 + action % 3, true};
                    view.settings.bind_A = action;
                    for (const DialogText& text : dialogTexts(layout, view)) {
                        if (action > 2 && text.id != kFirstKeySelector) continue;
                        EXPECT_TRUE(isFitting(text, measure))
                            << text.text << " at " << dpi << " dpi is " << measure(text, text.text) << " wide";
                        texts++;
                    }
                }
            }
        }
    }
    DeleteDC(dc);
    EXPECT_GT(texts, 10'000);
}
