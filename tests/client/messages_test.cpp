// Text messages from the host's event to the message window, through the real DLL.
#include <windows.h>
#include <algorithm>
#include <functional>
#include "tests/client/message_driver_win.h"
#include "tests/client/panel_test.h"

namespace {

constexpr int kMessagesEntry = 3;
constexpr std::uint64_t kStillMs = 150;  // four ticks of the window without a change
constexpr const char* kNoAutoOpen = "text_auto_open=0\r\n";

// The colour at a design pixel of the window, as the screen shows it.
COLORREF colourAt(double x, double y) {
    const RECT rect = messageWindowRect();
    const double scale = GetDpiForWindow(findMessageWindow()) / 96.0;
    const HDC screen = GetDC(nullptr);
    const COLORREF colour =
        GetPixel(screen, rect.left + static_cast<int>(x * scale), rect.top + static_cast<int>(y * scale));
    ReleaseDC(nullptr, screen);
    return colour;
}

// Everything in a part of the window, as one number.
std::uint64_t pictureOf(double left, double top, double right, double bottom) {
    std::uint64_t hash = 1469598103934665603ULL;
    for (double y = top; y < bottom; y += 1.0) {
        for (double x = left; x < right; x += 1.0) hash = (hash ^ colourAt(x, y)) * 1099511628211ULL;
    }
    return hash;
}

std::uint64_t counterPicture() {
    return pictureOf(490, 368, 550, 384);
}

// The unread dot's middle: amber or bright green.
bool isAmber(COLORREF colour) {
    return GetRValue(colour) > 0xE0 && GetGValue(colour) < 0xD0;
}
bool isGreen(COLORREF colour) {
    return GetRValue(colour) < 0xA0 && GetGValue(colour) > 0xC0;
}
COLORREF dot() {
    return colourAt(19, 22);
}

class Messages : public PanelTest {
  protected:
    int receive(const std::string& text, const std::string& sender = "Tower") {
        HostTextMessage message;
        message.message = text;
        message.fromName = sender;
        return session.plugin.deliver(message);
    }
    void chooseMenu() { session.plugin.exports().onMenuItemEvent(kSchid, 0, kMessagesEntry, 0); }
    bool becomesShown() {
        return session.waitUntil([] { return isMessageWindowShown(); });
    }
    bool becomesHidden() {
        return session.waitUntil([] { return findMessageWindow() && !isMessageWindowShown(); });
    }
    ::testing::AssertionResult open() {
        if (!isMessageWindowShown()) chooseMenu();
        if (!becomesShown()) return ::testing::AssertionFailure() << "the message window is not shown";
        return ::testing::AssertionSuccess();
    }
    // Returns when the window has carried out all that was posted to it before and shows what there is to show.
    void settle() {
        SendMessageW(findMessageWindow(), WM_TIMER, 1, 0);
        EXPECT_TRUE(session.waitUntil([] { return isGreen(dot()) || isAmber(dot()); }));  // it is on the screen
        std::uint64_t last = 0, sinceMs = systemTickMs();
        EXPECT_TRUE(session.waitUntil([&] {
            const std::uint64_t now = counterPicture();
            if (now != last) sinceMs = systemTickMs();
            last = now;
            return systemTickMs() - sinceMs >= kStillMs;
        }));
    }
    // The counter changes from what it shows now.
    bool counterChanges(std::uint64_t from) {
        return session.waitUntil([&] { return counterPicture() != from; }, 30'000);
    }
};

}  // namespace

TEST_F(Messages, AreLoggedAndAnnouncedAndTheHostGoesOn) {
    ASSERT_TRUE(show(kGeneralTheme, kNoAutoOpen));
    EXPECT_EQ(receive("PDC 1423", "EDDF_DEL"), 0);
    EXPECT_TRUE(session.waitForLog("Corvalis text message from EDDF_DEL (8 bytes)"));
    ASSERT_EQ(host.playedSounds().size(), 1U);
    EXPECT_NE(host.playedSounds()[0].find("text_alert.wav"), std::string::npos);
    EXPECT_EQ(receive(""), 0);
    EXPECT_EQ(session.plugin.exports().onTextMessageEvent(kSchid, 1, 0, 2, nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(host.playedSounds().size(), 1U);
    EXPECT_EQ(session.plugin.exports().onTextMessageEvent(kSchid, 1, 0, 2, nullptr, nullptr, "hi", 0), 0);
    EXPECT_TRUE(session.waitForLog("Corvalis text message from (unknown) (2 bytes)"));
    EXPECT_EQ(receive("x", std::string(10'000, 'N')), 0);
    EXPECT_TRUE(session.waitForLog("Corvalis text message from " + std::string(228, 'N')));
    for (const std::string& line : host.logLines()) EXPECT_LT(line.size(), 512U);
}

TEST_F(Messages, MakeNoSoundWithTheAlertOff) {
    ASSERT_TRUE(show(kGeneralTheme, "text_auto_open=0\r\ntext_alert=0\r\n"));
    receive("hello");
    EXPECT_TRUE(session.waitForLog("(5 bytes)"));
    EXPECT_TRUE(host.playedSounds().empty());
}

TEST_F(Messages, TheWindowIsHiddenAtStartAndAsItShouldBe) {
    ASSERT_TRUE(show(kGeneralTheme));
    const HWND window = findMessageWindow();
    ASSERT_TRUE(window);
    EXPECT_FALSE(isMessageWindowShown());
    const auto extended = static_cast<DWORD>(GetWindowLongW(window, GWL_EXSTYLE));
    EXPECT_TRUE(extended & WS_EX_LAYERED);
    EXPECT_TRUE(extended & WS_EX_TOOLWINDOW);
    EXPECT_TRUE(extended & WS_EX_TOPMOST);
    EXPECT_TRUE(static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)) & WS_POPUP);
    EXPECT_FALSE(static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)) & WS_CAPTION);
    wchar_t title[64] = {};
    GetWindowTextW(window, title, 64);
    EXPECT_STREQ(title, L"Corvalis Text");
    EXPECT_EQ(GetWindow(window, GW_OWNER), nullptr);
    const RECT rect = messageWindowRect();
    EXPECT_EQ(rect.right - rect.left, 620);
    EXPECT_EQ(rect.bottom - rect.top, 400);
    EXPECT_EQ(GetWindowThreadProcessId(window, nullptr), GetWindowThreadProcessId(findPanel(), nullptr));
}

TEST_F(Messages, OpenTheWindowWhenTheSettingSaysSo) {
    ASSERT_TRUE(show(kGeneralTheme));
    receive("hello");
    EXPECT_TRUE(becomesShown());
}

TEST_F(Messages, LeaveTheWindowHiddenWhenTheSettingSaysSo) {
    ASSERT_TRUE(show(kGeneralTheme, kNoAutoOpen));
    receive("hello");
    ASSERT_TRUE(session.waitPasses(5));
    SendMessageW(findMessageWindow(), WM_NULL, 0, 0);  // it has had its turn since
    EXPECT_FALSE(isMessageWindowShown());
}

TEST_F(Messages, OpenOnTheNewestPageButLeaveAVisibleWindowAlone) {
    ASSERT_TRUE(show(kGeneralTheme));
    for (int i = 0; i < 3; i++) receive("hello");
    ASSERT_TRUE(becomesShown());
    settle();
    const std::uint64_t newest = counterPicture();  // 1 / 3
    pressMessageKey(VK_UP);
    ASSERT_TRUE(counterChanges(newest));
    settle();
    const std::uint64_t second = counterPicture();  // 2 / 3
    receive("hello");                               // 2 / 4, and unread
    ASSERT_TRUE(counterChanges(second));
    EXPECT_TRUE(session.waitUntil([] { return isAmber(dot()); }, 30'000));
    pressMessageKey(VK_ESCAPE);
    ASSERT_TRUE(becomesHidden());
    receive("hello");  // opens at 1 / 5
    ASSERT_TRUE(becomesShown());
    EXPECT_TRUE(session.waitUntil([] { return isGreen(dot()); }, 30'000));
    const std::uint64_t first = counterPicture();
    pressMessageKey(VK_DOWN);  // cannot get newer
    settle();
    EXPECT_EQ(counterPicture(), first);
}

TEST_F(Messages, TheMenuEntryTogglesTheWindow) {
    ASSERT_TRUE(show(kGeneralTheme));
    for (int i = 0; i < 3; i++) {
        chooseMenu();
        EXPECT_TRUE(becomesShown());
        chooseMenu();
        EXPECT_TRUE(becomesHidden());
    }
}

TEST_F(Messages, TheTextKeyTogglesTheWindow) {
    for (const std::int32_t theme : {kGeneralTheme, kBoeingTheme, kAirbusTheme}) {
        const std::int32_t key = theme == kGeneralTheme ? kTextKey : kCustomKeyA;
        ASSERT_TRUE(show(theme)) << theme;
        panel().click(key);
        EXPECT_TRUE(becomesShown()) << theme;
        panel().click(key);
        EXPECT_TRUE(becomesHidden()) << theme;
        session.stop();
    }
}

TEST_F(Messages, EscapeTheCloseButtonAndACloseHideTheWindow) {
    ASSERT_TRUE(show(kGeneralTheme));
    ASSERT_TRUE(open());
    pressMessageKey(VK_ESCAPE);
    EXPECT_TRUE(becomesHidden());
    ASSERT_TRUE(open());
    clickMessageWindow(596, 24);
    EXPECT_TRUE(becomesHidden());
    ASSERT_TRUE(open());
    PostMessageW(findMessageWindow(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(becomesHidden());
    ASSERT_TRUE(open());  // it was not destroyed
}

TEST_F(Messages, APressOnThePageKeepsTheWindow) {
    ASSERT_TRUE(show(kGeneralTheme));
    ASSERT_TRUE(open());
    clickMessageWindow(300, 200);
    clickMessageWindow(596, 42);
    pressMessageKey('A');
    settle();
    EXPECT_TRUE(isMessageWindowShown());
}

TEST_F(Messages, KeysAndTheWheelTurnThePages) {
    ASSERT_TRUE(show(kGeneralTheme));
    for (int i = 0; i < 3; i++) receive("hello");
    ASSERT_TRUE(becomesShown());
    settle();
    const std::uint64_t first = counterPicture();
    const auto turn = [&](const char* what, const std::function<void()>& older, const std::function<void()>& newer) {
        older();
        EXPECT_TRUE(counterChanges(first)) << what;
        settle();
        const std::uint64_t second = counterPicture();
        older();
        EXPECT_TRUE(counterChanges(second)) << what;
        settle();
        const std::uint64_t third = counterPicture();
        older();  // there is none older
        settle();
        EXPECT_EQ(counterPicture(), third) << what;
        newer();
        newer();
        newer();
        EXPECT_TRUE(session.waitUntil([&] { return counterPicture() == first; }, 30'000)) << what;
    };
    turn(
        "arrows", [] { pressMessageKey(VK_UP); }, [] { pressMessageKey(VK_DOWN); });
    turn(
        "page keys", [] { pressMessageKey(VK_PRIOR); }, [] { pressMessageKey(VK_NEXT); });
    turn(
        "wheel", [] { turnMessageWheel(WHEEL_DELTA); }, [] { turnMessageWheel(-WHEEL_DELTA); });
    turn(
        "fine wheel", [] { turnMessageWheel(1); }, [] { turnMessageWheel(0); });
}

TEST_F(Messages, DeleteForgetsThemAll) {
    ASSERT_TRUE(show(kGeneralTheme));
    ASSERT_TRUE(open());
    settle();
    const std::uint64_t empty = pictureOf(280, 176, 340, 200);
    receive("line one\nline two\nline three\nline four\nline five and more of it to fill the window");
    receive("1\n2\n3\n4\n5 a line in the middle of the window\n6 another line in the middle of the window");
    EXPECT_TRUE(session.waitUntil([&] { return pictureOf(280, 176, 340, 200) != empty; }, 30'000));
    EXPECT_TRUE(session.waitUntil([] { return isAmber(dot()); }, 30'000));
    pressMessageKey(VK_DELETE);
    EXPECT_TRUE(session.waitUntil([&] { return pictureOf(280, 176, 340, 200) == empty; }, 30'000));
    EXPECT_TRUE(session.waitUntil([] { return isGreen(dot()); }, 30'000));
    EXPECT_TRUE(isMessageWindowShown());
}

TEST_F(Messages, TheCloseGlyphTurnsRedUnderThePointer) {
    ASSERT_TRUE(show(kGeneralTheme));
    ASSERT_TRUE(open());
    settle();
    const auto hasRed = [] {
        for (double y = 10; y < 36; y++) {
            for (double x = 584; x < 608; x++) {
                const COLORREF colour = colourAt(x, y);
                if (GetRValue(colour) > 0xB0 && GetGValue(colour) < 0x90) return true;
            }
        }
        return false;
    };
    EXPECT_FALSE(hasRed());
    moveOverMessageWindow(596, 24);
    EXPECT_TRUE(session.waitUntil(hasRed, 30'000));
    moveOverMessageWindow(300, 200);
    EXPECT_TRUE(session.waitUntil([&] { return !hasRed(); }, 30'000));
}

TEST_F(Messages, TheFortyFirstPushesTheFirstOut) {
    ASSERT_TRUE(show(kGeneralTheme));
    for (int i = 0; i < 40; i++) receive("hello");
    ASSERT_TRUE(becomesShown());
    settle();
    const std::uint64_t forty = counterPicture();  // 1 / 40
    for (int i = 0; i < 45; i++) receive("hello");
    ASSERT_TRUE(session.waitUntil([] { return isAmber(dot()); }, 30'000));
    settle();
    EXPECT_EQ(counterPicture(), forty);
    for (int i = 0; i < 45; i++) pressMessageKey(VK_UP);
    EXPECT_TRUE(counterChanges(forty));
    settle();
    const std::uint64_t oldest = counterPicture();  // 40 / 40
    EXPECT_NE(oldest, forty);
    pressMessageKey(VK_UP);
    settle();
    EXPECT_EQ(counterPicture(), oldest);
}

TEST_F(Messages, TheWindowStandsUnderThePanelAndInTheWorkArea) {
    ASSERT_TRUE(show(kGeneralTheme, "panel_x=500\r\npanel_y=40\r\npanel_scale=70\r\n"));
    ASSERT_TRUE(open());
    RECT panelRect = screenRect();
    RECT rect = messageWindowRect();
    EXPECT_EQ(rect.left, panelRect.left + (panelRect.right - panelRect.left) / 2 - 310);
    EXPECT_EQ(rect.top, panelRect.bottom + 12);
    EXPECT_EQ(rect.right - rect.left, 620);
    EXPECT_EQ(rect.bottom - rect.top, 400);
    EXPECT_NE(GetForegroundWindow(), findMessageWindow());
    session.stop();
    ASSERT_TRUE(show(kGeneralTheme, "panel_x=5000\r\npanel_y=5000\r\npanel_scale=50\r\n"));
    ASSERT_TRUE(open());
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(findPanel(), MONITOR_DEFAULTTONEAREST), &monitor);
    rect = messageWindowRect();
    panelRect = screenRect();
    EXPECT_EQ(rect.right,
              std::min(monitor.rcWork.right, panelRect.left + (panelRect.right - panelRect.left) / 2 + 310));
    EXPECT_EQ(rect.bottom, monitor.rcWork.bottom);
}

TEST_F(Messages, ThePanelsTextLampGoesOutWhenTheyAreRead) {
    ASSERT_TRUE(show(kBoeingTheme, kNoAutoOpen));
    const PanelRect& lamp = findHotspot(themeLayout(kBoeingTheme), kCustomKeyA)->indicator;
    const PanelPoint origin = themeLayout(kBoeingTheme).origin;
    const auto lampColour = [&] {
        const double scale = panel().scale();
        POINT at = {static_cast<LONG>((lamp.x + lamp.width / 2.0f - origin.x) * scale),
                    static_cast<LONG>((lamp.y + lamp.height / 2.0f - origin.y) * scale)};
        ClientToScreen(findPanel(), &at);
        const HDC screen = GetDC(nullptr);
        const COLORREF colour = GetPixel(screen, at.x, at.y);
        ReleaseDC(nullptr, screen);
        return colour;
    };
    ASSERT_TRUE(session.waitUntil([&] { return lampColour() != 0; }));  // nothing of the panel is black
    const COLORREF dark = lampColour();
    receive("hello");
    EXPECT_TRUE(session.waitUntil([&] { return lampColour() != dark; }, 30'000));
    ASSERT_TRUE(open());
    EXPECT_TRUE(session.waitUntil([&] { return lampColour() == dark; }, 30'000));
    const std::uint64_t until = systemTickMs() + 1200;  // longer than a flash
    session.waitUntil([&] { return lampColour() != dark || systemTickMs() >= until; });
    EXPECT_EQ(lampColour(), dark);
}

TEST_F(Messages, HostileOnesAreShownWithoutHarm) {
    ASSERT_TRUE(show(kGeneralTheme));
    const std::string hostile[] = {
        std::string(8192, 'x'),
        std::string(8192, ' '),
        std::string(8192, '\n'),
        std::string(8192, '\xFF'),
        "\u202E\u202E\u2067 rtl",
        "\U0001F6EC \xF0\x9F",
        "שלום",
        std::string(100, '\r') + "x",
    };
    ASSERT_TRUE(open());
    for (const std::string& message : hostile) {
        EXPECT_EQ(receive(message, message), 0);
        pressMessageKey(VK_DOWN);
        settle();
        EXPECT_TRUE(session.waitUntil([] { return isGreen(dot()); }, 5000));
    }
    EXPECT_TRUE(isMessageWindowShown());
}

TEST_F(Messages, AreForgottenAtShutdown) {
    ASSERT_TRUE(show(kGeneralTheme, kNoAutoOpen));
    ASSERT_TRUE(open());
    settle();
    const std::uint64_t empty = pictureOf(280, 176, 340, 200);
    receive("hello");
    session.stop();
    EXPECT_EQ(findMessageWindow(), nullptr);
    EXPECT_EQ(receive("after shutdown, when no window is there"), 0);
    ASSERT_TRUE(show(kGeneralTheme, kNoAutoOpen));
    ASSERT_TRUE(open());
    pressMessageKey(VK_DELETE);  // the one from after the shutdown
    settle();
    EXPECT_TRUE(session.waitUntil([&] { return pictureOf(280, 176, 340, 200) == empty; }, 30'000));
}

TEST_F(Messages, TheWindowAndItsClassGoWithTheThread) {
    ASSERT_TRUE(show(kGeneralTheme));
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    const auto hasClass = [&] {
        return GetClassInfoExW(GetModuleHandleW(L"corvalis_win64.dll"), L"CorvalisTextMessage", &description) != 0;
    };
    EXPECT_TRUE(hasClass());
    ASSERT_TRUE(open());
    session.stop();
    EXPECT_EQ(findMessageWindow(), nullptr);
    EXPECT_FALSE(hasClass());
}
