// panel_window_test.cpp - the radio panel's window: size, place, stacking and visibility.
#include <cmath>
#include "tests/client/import_patch_win.h"
#include "tests/client/panel_test.h"

namespace {

RECT workArea() {
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(findPanel(), MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

int pixelsUp(double length) {
    return static_cast<int>(std::ceil(length - 1e-6));
}

// Another window that is always on top. The panel owns a topmost window, its tip: Wine gives such an owner the topmost
// style only when another topmost window follows.
class TopmostWindow {
  public:
    TopmostWindow()
        : window_(CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, L"Static", L"", WS_POPUP, 0, 0,
                                  1, 1, nullptr, nullptr, nullptr, nullptr)) {}
    ~TopmostWindow() { DestroyWindow(window_); }
    TopmostWindow(const TopmostWindow&) = delete;
    TopmostWindow& operator=(const TopmostWindow&) = delete;

  private:
    HWND window_;
};

bool isTopmost() {
    return (GetWindowLongW(findPanel(), GWL_EXSTYLE) & WS_EX_TOPMOST) != 0;
}

// A panel that gets it in place of SetTimer has no ticks.
UINT_PTR WINAPI startNoTimer(HWND, UINT_PTR timer, UINT, TIMERPROC) {
    return timer;
}

BOOL CALLBACK countPanel(HWND window, LPARAM count) {
    wchar_t name[64] = {};
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    GetClassNameW(window, name, 64);
    if (owner == GetCurrentProcessId() && std::wstring(name) == L"CorvalisRadioPanel") {
        ++*reinterpret_cast<int*>(count);
    }
    return TRUE;
}

// Of this process.
int countPanels() {
    int count = 0;
    EnumWindows(countPanel, reinterpret_cast<LPARAM>(&count));
    return count;
}

}  // namespace

using PanelWindow = PanelTest;

TEST_F(PanelWindow, IsLayeredAToolWindowAndTitled) {
    ASSERT_TRUE(show(kGeneralTheme));
    const auto style = static_cast<DWORD>(GetWindowLongW(findPanel(), GWL_STYLE));
    const auto extended = static_cast<DWORD>(GetWindowLongW(findPanel(), GWL_EXSTYLE));
    EXPECT_TRUE(style & WS_POPUP);
    EXPECT_FALSE(style & (WS_CAPTION | WS_THICKFRAME));
    EXPECT_TRUE(extended & WS_EX_LAYERED);
    EXPECT_TRUE(extended & WS_EX_TOOLWINDOW);
    EXPECT_FALSE(isTopmost());
    wchar_t title[64] = {};
    GetWindowTextW(findPanel(), title, 64);
    EXPECT_STREQ(title, L"Corvalis Radio");
    EXPECT_EQ(GetWindow(findPanel(), GW_OWNER), nullptr);
}

TEST_F(PanelWindow, HasTheSizeOfItsThemeAndScale) {
    const struct {
        std::int32_t theme;
        double width, height;  // of the theme, units
    } rows[] = {{kGeneralTheme, 1964, 595}, {kBoeingTheme, 1793, 793}, {kAirbusTheme, 1579, 924}};
    ASSERT_TRUE(show(kGeneralTheme));
    for (const auto& row : rows) {
        for (const int percent : {50, 100, 137}) {
            // A second init reads the settings anew.
            session.writeSettings("theme=" + std::to_string(row.theme) + "\r\npanel_scale=" + std::to_string(percent) +
                                  "\r\n");
            ASSERT_TRUE(session.start());
            const double width = 900.0 * percent / 100.0 * GetDpiForWindow(findPanel()) / 96.0;
            const LONG wide = pixelsUp(width), high = pixelsUp(width * row.height / row.width);
            const auto size = [&] {
                return POINT{screenRect().right - screenRect().left, screenRect().bottom - screenRect().top};
            };
            EXPECT_TRUE(session.waitUntil([&] { return size().x == wide && size().y == high; }))
                << themeName(row.theme) << percent << ": " << size().x << " x " << size().y;
        }
    }
}

TEST_F(PanelWindow, StandsWhereTheSettingsSay) {
    ASSERT_TRUE(show(kBoeingTheme, "panel_x=123\r\npanel_y=45\r\n"));
    EXPECT_EQ(screenRect().left, 123);
    EXPECT_EQ(screenRect().top, 45);
}

TEST_F(PanelWindow, IsBroughtBackFromBeyondTheScreenAndKeepsItsStoredPlace) {
    ASSERT_TRUE(show(kGeneralTheme, "panel_x=30000\r\npanel_y=25000\r\n"));
    EXPECT_EQ(screenRect().right, workArea().right);
    EXPECT_EQ(screenRect().bottom, workArea().bottom);
    EXPECT_TRUE(clickSaves(kCom2Key, "radio=COM2"));
    EXPECT_TRUE(isSaved("panel_x=30000"));
    EXPECT_TRUE(isSaved("panel_y=25000"));
    session.stop();
    ASSERT_TRUE(show(kGeneralTheme, "panel_x=-5000\r\npanel_y=-5000\r\n"));
    EXPECT_EQ(screenRect().left, workArea().left);
    EXPECT_EQ(screenRect().top, workArea().top);
}

TEST_F(PanelWindow, FollowsANewThemeAndScaleWhileItStands) {
    ASSERT_TRUE(show(kGeneralTheme));
    for (const std::int32_t theme : {kAirbusTheme, kBoeingTheme, kGeneralTheme}) {
        // A second init reads the settings anew and keeps the window.
        ASSERT_TRUE(session.writeSettings("theme=" + std::to_string(theme) + "\r\npanel_scale=80\r\n"));
        const HWND before = findPanel();
        ASSERT_TRUE(session.start());
        EXPECT_EQ(findPanel(), before);
        const ThemeLayout& layout = themeLayout(theme);
        const double width = 720.0 * GetDpiForWindow(findPanel()) / 96.0;
        const int height = pixelsUp(width * static_cast<double>(layout.height) / static_cast<double>(layout.width));
        EXPECT_TRUE(session.waitUntil([&] { return screenRect().bottom - screenRect().top == height; }))
            << themeName(theme) << ": " << screenRect().bottom - screenRect().top << " instead of " << height;
    }
}

TEST_F(PanelWindow, ASecondInitKeepsThePanelsWindowAndMakesNoOther) {
    ASSERT_TRUE(show(kAirbusTheme));
    const HWND before = findPanel();
    const DWORD thread = GetWindowThreadProcessId(before, nullptr);
    ASSERT_TRUE(session.writeSettings("theme=1\r\nradio=COM2\r\n"));
    ASSERT_TRUE(session.start());
    // Once the panel shows the settings that the second init has read, that init has started everything.
    const LONG height = pixelsUp(900.0 * 793.0 / 1793.0 * GetDpiForWindow(before) / 96.0);
    ASSERT_TRUE(session.waitUntil([&] { return screenRect().bottom - screenRect().top == height; }));
    ASSERT_TRUE(session.waitPasses(3));
    EXPECT_EQ(findPanel(), before);
    EXPECT_EQ(GetWindowThreadProcessId(findPanel(), nullptr), thread);
    EXPECT_EQ(countPanels(), 1);
    session.stop();
    EXPECT_EQ(countPanels(), 0);
}

TEST_F(PanelWindow, ClosedByTheUserItOnlyHides) {
    ASSERT_TRUE(show(kAirbusTheme));
    panel().post(WM_CLOSE);
    EXPECT_TRUE(becomesSaved("panel_visible=0"));
    EXPECT_TRUE(session.waitUntil([&] { return findPanel() && !isShown(); }));
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
    EXPECT_TRUE(session.waitUntil([&] { return isShown(); }));
}

TEST_F(PanelWindow, IsHiddenAndShownAtOnceNotWithATick) {
    ASSERT_TRUE(session.load());
    const ImportPatch patch(L"corvalis_win64.dll", "SetTimer", reinterpret_cast<void*>(startNoTimer));
    ASSERT_TRUE(patch.isInPlace());
    ASSERT_TRUE(show(kAirbusTheme));
    for (int i = 0; i < 3; i++) {
        panel().post(WM_CLOSE);
        ASSERT_TRUE(session.waitUntil([&] { return !isShown(); }));
        session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
        ASSERT_TRUE(session.waitUntil([&] { return isShown(); }));
    }
}

TEST_F(PanelWindow, StaysHiddenWhenTheSettingsSaySo) {
    ASSERT_TRUE(startWith(kBoeingTheme, "panel_visible=0\r\n"));
    ASSERT_TRUE(session.waitUntil([] { return findPanel() != nullptr; }));
    for (int i = 0; i < 5; i++) presentNow();
    EXPECT_FALSE(IsWindowVisible(findPanel()));
}

TEST_F(PanelWindow, PinMakesItTopmostOnceAndTakesThatBackOnce) {
    const TopmostWindow another;
    ASSERT_TRUE(show(kBoeingTheme));
    ASSERT_TRUE(clickSaves(kPinKey, "pin=1"));
    ASSERT_TRUE(session.waitUntil([] { return isTopmost(); }));
    // As if another program had moved it down: only a change of the setting counts.
    SetWindowPos(findPanel(), HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    for (int i = 0; i < 5; i++) presentNow();
    EXPECT_FALSE(isTopmost());
    ASSERT_TRUE(clickSaves(kPinKey, "pin=0"));
    presentNow();
    SetWindowPos(findPanel(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    for (int i = 0; i < 5; i++) presentNow();
    EXPECT_TRUE(isTopmost());
}

TEST_F(PanelWindow, StartsPinnedWhenTheSettingsSaySo) {
    const TopmostWindow another;
    ASSERT_TRUE(show(kGeneralTheme, "pin=1\r\n"));
    EXPECT_TRUE(session.waitUntil([] { return isTopmost(); }));
}

TEST_F(PanelWindow, TheEndOfAMoveIsSaved) {
    ASSERT_TRUE(show(kGeneralTheme));
    send(WM_ENTERSIZEMOVE);
    SetWindowPos(findPanel(), nullptr, 211, 97, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    send(WM_EXITSIZEMOVE);
    EXPECT_TRUE(isSaved("panel_x=211"));
    EXPECT_TRUE(isSaved("panel_y=97"));
    presentNow();
    EXPECT_EQ(screenRect().left, 211);
    EXPECT_EQ(screenRect().top, 97);
}

TEST_F(PanelWindow, IsLeftAloneWhileItIsMoved) {
    ASSERT_TRUE(show(kGeneralTheme));
    send(WM_ENTERSIZEMOVE);
    SetWindowPos(findPanel(), nullptr, 300, 200, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    for (int i = 0; i < 5; i++) send(WM_TIMER, 1);  // ticks that were already on their way
    presentNow();
    EXPECT_EQ(screenRect().left, 300);
    EXPECT_EQ(screenRect().top, 200);
    send(WM_EXITSIZEMOVE);
    // The timer is back: the panel goes where the settings say.
    session.writeSettings("panel_x=40\r\npanel_y=50\r\n");
    ASSERT_TRUE(session.start());
    EXPECT_TRUE(session.waitUntil([&] { return screenRect().left == 40 && screenRect().top == 50; }));
}

TEST_F(PanelWindow, APressOnTheBackgroundBeginsAMove) {
    ASSERT_TRUE(show(kGeneralTheme, "panel_x=150\r\npanel_y=60\r\n"));
    const POINT at = panel().pointOn(kBackground);
    panel().press(at);
    panel().release(at);
    EXPECT_TRUE(becomesSaved("panel_visible=1"));  // a line that this test did not write: the plugin saved
    EXPECT_TRUE(isSaved("panel_x=150"));
    EXPECT_TRUE(isSaved("panel_y=60"));
}

TEST_F(PanelWindow, ErasesNothing) {
    ASSERT_TRUE(show(kGeneralTheme));
    EXPECT_EQ(send(WM_ERASEBKGND), 1);
}

TEST_F(PanelWindow, TakesAnyOpacityAndScale) {
    for (const char* lines : {"opacity=30\r\npanel_scale=50\r\n", "opacity=100\r\npanel_scale=200\r\n"}) {
        ASSERT_TRUE(show(kAirbusTheme, lines)) << lines;
        const RECT rect = screenRect(), area = workArea();
        EXPECT_LE(rect.right, area.right);
        EXPECT_LE(rect.bottom, area.bottom);
        session.stop();
    }
}
