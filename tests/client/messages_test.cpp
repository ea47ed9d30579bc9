// messages_test.cpp - text messages from the host's event to the message window, through the real DLL: what the window
// decides (message_model_test.cpp) and how it paints (message_paint_test.cpp), here joined.
#include <windows.h>
#include <algorithm>
#include <atomic>
#include <utility>
#include "tests/client/message_test.h"
#include "tests/client/picture_compare.h"
#include "tests/client/window_picture_win.h"
#include "tests/client/window_watch_win.h"
#include "tests/soak/own_memory_win.h"

namespace {

constexpr std::size_t kLogBytes = 256;  // of a line's buffer, including its end

// An opaque window of this program over a part of the screen, so that nothing else there shows through.
class Backdrop {
  public:
    static constexpr COLORREF kColour = RGB(200, 0, 200);

    explicit Backdrop(const RECT& place)
        : window_(CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, L"STATIC", L"",
                                  WS_POPUP | SS_OWNERDRAW, place.left, place.top, place.right - place.left,
                                  place.bottom - place.top, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr)) {
        ShowWindow(window_, SW_SHOWNOACTIVATE);
        paint();
    }
    ~Backdrop() { DestroyWindow(window_); }
    Backdrop(const Backdrop&) = delete;
    Backdrop& operator=(const Backdrop&) = delete;

    // To be called until it has reached the screen; also handles the window's own messages.
    void paint() const {
        MSG message;
        while (PeekMessageW(&message, window_, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        RECT area = {};
        GetClientRect(window_, &area);
        const HDC dc = GetDC(window_);
        const HBRUSH brush = CreateSolidBrush(kColour);
        FillRect(dc, &area, brush);
        DeleteObject(brush);
        ReleaseDC(window_, dc);
        GdiFlush();
    }

  private:
    HWND window_;
};

}  // namespace

using Messages = MessageTest;

TEST_F(Messages, AreLoggedAndAnnouncedAndTheHostGoesOn) {
    ASSERT_TRUE(begin(kNoAutoOpen));
    EXPECT_EQ(receive("PDC 1423", "EDDF_DEL"), 0);
    EXPECT_TRUE(hasLogged("Corvalis text message from EDDF_DEL (8 bytes)"));
    ASSERT_EQ(host.playedSounds().size(), 1U);
    EXPECT_NE(host.playedSounds()[0].find("text_alert.wav"), std::string::npos);
    EXPECT_EQ(receive(""), 0);
    EXPECT_EQ(session.plugin.exports().onTextMessageEvent(kSchid, 1, 0, 2, nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(host.playedSounds().size(), 1U);
    EXPECT_EQ(session.plugin.exports().onTextMessageEvent(kSchid, 1, 0, 2, nullptr, nullptr, "hi", 0), 0);
    EXPECT_TRUE(hasLogged("Corvalis text message from (unknown) (2 bytes)"));
    EXPECT_EQ(receive("x", std::string(10'000, 'N')), 0);
    EXPECT_TRUE(hasLogged("Corvalis text message from " + std::string(228, 'N')));
    for (const std::string& line : host.logLines()) {
        const bool isOfAMessage = line.find("text message") != std::string::npos;
        EXPECT_TRUE(!isOfAMessage || line.size() < kLogBytes) << line;
    }
}

TEST_F(Messages, MakeNoSoundWithTheAlertOff) {
    ASSERT_TRUE(begin("text_auto_open=0\r\ntext_alert=0\r\n"));
    EXPECT_EQ(receive("hello"), 0);
    EXPECT_TRUE(hasLogged("(5 bytes)"));
    EXPECT_TRUE(host.playedSounds().empty());
}

TEST_F(Messages, OnesOwnEchoedByTheHostIsTakenLikeAnyOther) {
    ASSERT_TRUE(begin());
    EXPECT_EQ(receive("request taxi", "My own name", kOwnClient), 0);
    EXPECT_TRUE(hasLogged("Corvalis text message from My own name (12 bytes)"));
    EXPECT_EQ(host.playedSounds().size(), 1U);
    EXPECT_TRUE(isShown());
    EXPECT_TRUE(shows({.page = 0}));
}

TEST_F(Messages, TheWindowIsHiddenAtStartAndAsItShouldBe) {
    ASSERT_TRUE(begin());
    const HWND window = findMessageWindow();
    EXPECT_FALSE(isShown());
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

TEST_F(Messages, ThatWereShownLeaveNothingBehindWhenTheDllGoes) {
    const auto leftAfterALife = [&](bool isPageShown) {
        EXPECT_TRUE(session.load());
        const OwnMemory memory;
        EXPECT_TRUE(memory.isCounting());
        EXPECT_TRUE(begin());
        if (isPageShown) {
            receive("CLEARED TO LAND");
            EXPECT_TRUE(open());
        }
        session.stop();
        session.plugin.unload();
        return std::pair(OwnMemory::bytes(), OwnMemory::blocks());
    };
    const auto without = leftAfterALife(false);
    EXPECT_EQ(leftAfterALife(true), without);
}

TEST_F(Messages, LeaveTheWindowHiddenWhenTheSettingSaysSo) {
    ASSERT_TRUE(begin(kNoAutoOpen));
    receive("hello");
    EXPECT_FALSE(isShown());
}

TEST_F(Messages, OpenOnTheNewestPageButLeaveAVisibleWindowAlone) {
    ASSERT_TRUE(begin());
    for (const char* text : {"one", "two", "three"}) receive(text);
    ASSERT_TRUE(isShown());
    // The first message opened the window; whether the others came before or after that depends on the machine.
    pressMessageKey(VK_DOWN);
    EXPECT_TRUE(shows({.page = 0}));
    pressMessageKey(VK_UP);
    EXPECT_TRUE(shows({.page = 1}));
    receive("four");
    ASSERT_TRUE(isShown());
    EXPECT_TRUE(shows({.page = 1, .unread = 1}));
    pressMessageKey(VK_ESCAPE);
    ASSERT_FALSE(isMessageWindowShown());
    receive("five");
    ASSERT_TRUE(isShown());
    EXPECT_TRUE(shows({.page = 0}));
}

TEST_F(Messages, TheMenuEntryTogglesTheWindow) {
    ASSERT_TRUE(begin());
    for (int i = 0; i < 3; i++) {
        chooseMenu();
        EXPECT_TRUE(isShown());
        chooseMenu();
        EXPECT_FALSE(isShown());
    }
}

TEST_F(Messages, TheTextKeyTogglesTheWindow) {
    for (const std::int32_t theme : {kGeneralTheme, kBoeingTheme, kAirbusTheme}) {
        const std::int32_t key = theme == kGeneralTheme ? kTextKey : kCustomKeyA;
        ASSERT_TRUE(show(theme)) << theme;
        for (const bool wanted : {true, false}) {
            panel().click(key);
            ASSERT_TRUE(waitForPosted(findPanel()));  // the key's own request comes after that
            EXPECT_EQ(isShown(), wanted) << theme;
        }
        session.stop();
    }
}

TEST_F(Messages, AKeyOrATurnOfTheWheelIsCarriedOutWhenItReturns) {
    ASSERT_TRUE(begin());
    for (const char* text : {"one", "two", "three"}) receive(text);
    ASSERT_TRUE(isShown());
    pressMessageKey(VK_DOWN);
    const auto turn = [&](const char* what, void (*older)(), void (*newer)()) {
        older();
        EXPECT_TRUE(wanted_.isShownBy(findMessageWindow(), {.page = 1})) << what;
        older();
        EXPECT_TRUE(wanted_.isShownBy(findMessageWindow(), {.page = 2})) << what;
        newer();
        newer();
        EXPECT_TRUE(wanted_.isShownBy(findMessageWindow(), {.page = 0})) << what;
    };
    turn(
        "arrows", [] { pressMessageKey(VK_UP); }, [] { pressMessageKey(VK_DOWN); });
    turn(
        "page keys", [] { pressMessageKey(VK_PRIOR); }, [] { pressMessageKey(VK_NEXT); });
    turn(
        "wheel", [] { turnMessageWheel(WHEEL_DELTA); }, [] { turnMessageWheel(-WHEEL_DELTA); });
    pressMessageKey('A');
    clickMessageWindow(300, 200);
    EXPECT_TRUE(isMessageWindowShown());
    EXPECT_TRUE(wanted_.isShownBy(findMessageWindow(), {.page = 0}));
    pressMessageKey(VK_DELETE);
    wanted_.clear();
    EXPECT_TRUE(wanted_.isShownBy(findMessageWindow(), {}));
    EXPECT_TRUE(isMessageWindowShown());
    pressMessageKey(VK_ESCAPE);
    EXPECT_FALSE(isMessageWindowShown());
}

TEST_F(Messages, TheCloseButtonAndACloseHideTheWindow) {
    ASSERT_TRUE(begin());
    ASSERT_TRUE(open());
    clickMessageWindow(596, 24);
    EXPECT_FALSE(isMessageWindowShown());
    ASSERT_TRUE(open());
    SendMessageW(findMessageWindow(), WM_CLOSE, 0, 0);
    EXPECT_FALSE(isMessageWindowShown());
    ASSERT_TRUE(open());  // it was not destroyed
}

TEST_F(Messages, TheCloseGlyphIsRedUntilThePointerLeaves) {
    ASSERT_TRUE(begin());
    receive("hello");
    ASSERT_TRUE(isShown());
    // The real pointer is elsewhere, and the system tells the window so at once.
    const WindowWatch watch(findMessageWindow(), {.onTaken =
                                                      [](MSG& message) {
                                                          if (message.message == WM_MOUSELEAVE)
                                                              message.message = WM_NULL;
                                                      },
                                                  .onSent = nullptr});
    ASSERT_TRUE(watch.isWatching());
    moveOverMessageWindow(596, 24);
    EXPECT_TRUE(shows({.isCloseHovered = true}));
    moveOverMessageWindow(300, 200);
    EXPECT_TRUE(shows({.isCloseHovered = false}));
    moveOverMessageWindow(596, 24);
    EXPECT_TRUE(shows({.isCloseHovered = true}));
    SendMessageW(findMessageWindow(), WM_MOUSELEAVE, 0, 0);
    EXPECT_TRUE(shows({.isCloseHovered = false}));
}

TEST_F(Messages, APressOnTheHeaderDragsTheWindowByIt) {
    ASSERT_TRUE(begin());
    ASSERT_TRUE(open());
    std::atomic<LPARAM> pressedAt{0};
    std::atomic<int> captionPresses{0}, moves{0}, ends{0};
    const HWND window = findMessageWindow();
    const WindowWatch watch(window,
                            {.onTaken = nullptr, .onSent = [&](const MSG& message) {
                                 if (message.hwnd != window) return;
                                 if (message.message == WM_SYSCOMMAND && message.wParam == (SC_MOVE | HTCAPTION)) {
                                     pressedAt = message.lParam;
                                     captionPresses++;
                                 }
                                 moves += message.message == WM_ENTERSIZEMOVE;
                                 ends += message.message == WM_EXITSIZEMOVE;
                             }});
    ASSERT_TRUE(watch.isWatching());
    PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(300, 20));
    ASSERT_TRUE(session.waitUntil([&] { return moves == 1; }, kLongMs));  // the system is moving it now
    EXPECT_EQ(captionPresses, 1);
    POINT at = {300, 20};
    ClientToScreen(window, &at);
    EXPECT_EQ(pressedAt, MAKELPARAM(at.x, at.y));
    PostMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(300, 20));
    EXPECT_TRUE(session.waitUntil([&] { return ends == 1; }, kLongMs));
    EXPECT_TRUE(isShown());
    clickMessageWindow(300, 50);  // a press below the header drags nothing
    EXPECT_EQ(captionPresses, 1);
    pressMessageKey(VK_ESCAPE);
    EXPECT_FALSE(isMessageWindowShown());
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
    GUITHREADINFO thread = {};
    thread.cbSize = sizeof thread;
    ASSERT_TRUE(GetGUIThreadInfo(GetWindowThreadProcessId(findMessageWindow(), nullptr), &thread));
    EXPECT_NE(thread.hwndActive, findMessageWindow());  // the keyboard focus has not moved
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

// The only one that looks at the screen: a layered window appears there only once its opacity is set.
TEST_F(Messages, TheWindowIsSeenOnTheScreen) {
    ASSERT_TRUE(show(kGeneralTheme, kNoAutoOpen));
    receive("hello");
    ASSERT_TRUE(open());
    const RECT place = messageWindowRect();
    pressMessageKey(VK_ESCAPE);
    const Backdrop backdrop(place);
    const auto screenShows = [&](const ArgbImage& wanted) {
        return session.waitUntil(
            [&] {
                backdrop.paint();
                return isSamePicture(coloursOf(lookAtScreen(place)), wanted);
            },
            kLongMs);
    };
    ArgbImage behind(place.right - place.left, place.bottom - place.top);
    std::fill(behind.pixels.begin(), behind.pixels.end(), Backdrop::kColour);  // the same with red and blue swapped
    ASSERT_TRUE(screenShows(behind));
    ASSERT_TRUE(open());
    const RECT again = messageWindowRect();
    ASSERT_TRUE(EqualRect(&again, &place));
    // The cursor blinks: each look compares with a new picture of the window.
    EXPECT_TRUE(session.waitUntil(
        [&] { return isSamePicture(coloursOf(lookAtScreen(place)), coloursOf(askForPicture(findMessageWindow()))); },
        kLongMs));
}

TEST_F(Messages, AreForgottenAtShutdown) {
    ASSERT_TRUE(begin(kNoAutoOpen));
    receive("hello");
    ASSERT_TRUE(open());
    ASSERT_TRUE(shows({.page = 0}));
    session.stop();
    EXPECT_EQ(findMessageWindow(), nullptr);
    wanted_.clear();
    ASSERT_TRUE(begin(kNoAutoOpen));
    ASSERT_TRUE(open());
    EXPECT_TRUE(shows({}));  // the empty page
}

TEST_F(Messages, OutsideOfInitToShutdownAreNotKept) {
    ASSERT_TRUE(session.load());
    EXPECT_EQ(receive("before init"), 0);
    wanted_.clear();
    ASSERT_TRUE(begin(kNoAutoOpen));
    ASSERT_TRUE(open());
    EXPECT_TRUE(shows({}));  // the empty page
    session.stop();
    EXPECT_EQ(receive("after shutdown, when no window is there"), 0);
    EXPECT_EQ(findMessageWindow(), nullptr);
    wanted_.clear();
    ASSERT_TRUE(begin(kNoAutoOpen));
    EXPECT_FALSE(isShown());
    ASSERT_TRUE(open());
    EXPECT_TRUE(shows({}));
}

TEST_F(Messages, TheWindowAndItsClassGoWithTheThread) {
    ASSERT_TRUE(begin());
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
