// panel_monitors_test.cpp - the radio panel on two monitors of different DPI. The plugin is told that the screen is two
// of them side by side: its left half has 96 DPI, its right half 144.
#include <atomic>
#include <cmath>
#include "tests/client/import_patch_win.h"
#include "tests/client/panel_test.h"

namespace {

constexpr LONG kTaskBar = 40;  // at the bottom of both

LONG middleX() {
    return GetSystemMetrics(SM_CXSCREEN) / 2;
}

std::atomic<bool> gIsRightGone{false};  // unplugged

// Numbers that are no handles of the system's.
HMONITOR monitorAt(LONG x) {
    return reinterpret_cast<HMONITOR>(static_cast<LONG_PTR>(x < middleX() || gIsRightGone ? 0x10001 : 0x10002));
}

bool isRight(HMONITOR monitor) {
    return !gIsRightGone && monitor == monitorAt(middleX());
}

HMONITOR WINAPI monitorOfPoint(POINT point, DWORD) {
    return monitorAt(point.x);
}

HMONITOR WINAPI monitorOfRect(const RECT* rect, DWORD) {
    return monitorAt(rect->left + (rect->right - rect->left) / 2);
}

HMONITOR WINAPI monitorOfWindow(HWND window, DWORD flags) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return monitorOfRect(&rect, flags);
}

BOOL WINAPI tellMonitor(HMONITOR monitor, MONITORINFO* info) {
    info->rcMonitor = {isRight(monitor) ? middleX() : 0, 0, isRight(monitor) ? 2 * middleX() : middleX(),
                       GetSystemMetrics(SM_CYSCREEN)};
    info->rcWork = info->rcMonitor;
    info->rcWork.bottom -= kTaskBar;
    return TRUE;
}

UINT WINAPI dpiOfWindow(HWND window) {
    return isRight(monitorOfWindow(window, 0)) ? 144 : 96;
}

class TwoMonitors {
  public:
    TwoMonitors() = default;
    ~TwoMonitors() { gIsRightGone = false; }
    TwoMonitors(const TwoMonitors&) = delete;
    TwoMonitors& operator=(const TwoMonitors&) = delete;

    static void unplugTheRight() { gIsRightGone = true; }
    bool areInPlace() const {
        return point_.isInPlace() && rect_.isInPlace() && window_.isInPlace() && info_.isInPlace() && dpi_.isInPlace();
    }

  private:
    static constexpr const wchar_t* kLibrary = L"corvalis_win64.dll";
    const ImportPatch point_{kLibrary, "MonitorFromPoint", reinterpret_cast<void*>(&monitorOfPoint)};
    const ImportPatch rect_{kLibrary, "MonitorFromRect", reinterpret_cast<void*>(&monitorOfRect)};
    const ImportPatch window_{kLibrary, "MonitorFromWindow", reinterpret_cast<void*>(&monitorOfWindow)};
    const ImportPatch info_{kLibrary, "GetMonitorInfoW", reinterpret_cast<void*>(&tellMonitor)};
    const ImportPatch dpi_{kLibrary, "GetDpiForWindow", reinterpret_cast<void*>(&dpiOfWindow)};
};

constexpr const char* kHalfSize = "panel_scale=50\r\n";  // 450 pixels wide at 96 DPI, 675 at 144
constexpr LONG kPlainWidth = 450, kSharpWidth = 675;

LONG heightFor(LONG width) {
    return static_cast<LONG>(std::ceil(width * 793.0 / 1793.0 - 1e-6));  // BOEING
}

}  // namespace

class PanelMonitors : public PanelTest {
  protected:
    static std::string placeLines(LONG x, LONG y) {
        return "panel_x=" + std::to_string(x) + "\r\npanel_y=" + std::to_string(y) + "\r\n";
    }
    ::testing::AssertionResult becomes(LONG x, LONG y, LONG width) {
        const RECT wanted = {x, y, x + width, y + heightFor(width)};
        RECT rect = {};
        const bool is = session.waitUntil([&] {
            rect = screenRect();
            return EqualRect(&rect, &wanted) != FALSE;
        });
        if (is) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << rect.left << ',' << rect.top << " to " << rect.right << ',' << rect.bottom << " instead of " << x
               << ',' << y << ", " << width << " wide";
    }
    // As the settings dialog does when it is told to reset the panel's place.
    ::testing::AssertionResult storePlace(LONG x, LONG y) {
        session.writeSettings("theme=1\r\n" + std::string(kHalfSize) + placeLines(x, y));
        return session.start();  // a second init reads the settings anew
    }
    // What the system sends while it moves the panel onto a monitor of this DPI.
    void changeDpi(UINT dpi, POINT place) const {
        SIZE size = {};
        EXPECT_TRUE(send(WM_GETDPISCALEDSIZE, dpi, reinterpret_cast<LPARAM>(&size)));
        EXPECT_EQ(size.cx, dpi == 144 ? kSharpWidth : kPlainWidth);
        EXPECT_EQ(size.cy, heightFor(size.cx));
        const RECT suggested = {place.x, place.y, place.x + size.cx, place.y + size.cy};
        EXPECT_EQ(send(WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested)), 0);
    }
};

TEST_F(PanelMonitors, OpensInTheSizeOfTheMonitorItIsStoredOn) {
    ASSERT_TRUE(session.load());
    const TwoMonitors monitors;
    ASSERT_TRUE(monitors.areInPlace());
    ASSERT_TRUE(show(kBoeingTheme, kHalfSize + placeLines(30, 40)));
    EXPECT_TRUE(becomes(30, 40, kPlainWidth));
    session.stop();
    ASSERT_TRUE(show(kBoeingTheme, kHalfSize + placeLines(middleX() + 30, 40)));
    EXPECT_TRUE(becomes(middleX() + 30, 40, kSharpWidth));
}

TEST_F(PanelMonitors, APlaceThatSomebodyElseStoresBringsItToThatMonitor) {
    ASSERT_TRUE(session.load());
    const TwoMonitors monitors;
    ASSERT_TRUE(monitors.areInPlace());
    ASSERT_TRUE(show(kBoeingTheme, kHalfSize + placeLines(middleX() + 30, 40)));
    ASSERT_TRUE(becomes(middleX() + 30, 40, kSharpWidth));
    ASSERT_TRUE(storePlace(80, 60));
    EXPECT_TRUE(becomes(80, 60, kPlainWidth));
    ASSERT_TRUE(storePlace(middleX() + 50, 5000));
    EXPECT_TRUE(
        becomes(middleX() + 50, GetSystemMetrics(SM_CYSCREEN) - kTaskBar - heightFor(kSharpWidth), kSharpWidth));
    ASSERT_TRUE(storePlace(-5000, 60));
    EXPECT_TRUE(becomes(0, 60, kPlainWidth));
}

TEST_F(PanelMonitors, ADragOntoAnotherResizesItOnTheWayInBothDirections) {
    ASSERT_TRUE(session.load());
    const TwoMonitors monitors;
    ASSERT_TRUE(monitors.areInPlace());
    ASSERT_TRUE(show(kBoeingTheme, kHalfSize + placeLines(300, 40)));
    ASSERT_TRUE(becomes(300, 40, kPlainWidth));
    send(WM_ENTERSIZEMOVE);
    SetCursorPos(middleX() + 5, 100);
    changeDpi(144, {middleX() - 200, 70});
    EXPECT_TRUE(becomes(middleX() - 200, 70, kSharpWidth));  // still held, partly on the other monitor
    SetCursorPos(middleX() - 5, 100);
    changeDpi(96, {middleX() - 250, 80});
    EXPECT_TRUE(becomes(middleX() - 250, 80, kPlainWidth));
    SetCursorPos(middleX() + 5, 100);
    changeDpi(144, {middleX() - 200, 90});
    send(WM_EXITSIZEMOVE);
    EXPECT_TRUE(isSaved("panel_x=" + std::to_string(middleX() - 200)));
    EXPECT_TRUE(isSaved("panel_y=90"));
    EXPECT_TRUE(becomes(middleX(), 90, kSharpWidth));  // dropped: wholly on the monitor that has most of it
}

TEST_F(PanelMonitors, OneThatGoesDuringADragLeavesThePanelWhollyOnTheOther) {
    ASSERT_TRUE(session.load());
    const TwoMonitors monitors;
    ASSERT_TRUE(monitors.areInPlace());
    ASSERT_TRUE(show(kBoeingTheme, kHalfSize + placeLines(300, 40)));
    ASSERT_TRUE(becomes(300, 40, kPlainWidth));
    send(WM_ENTERSIZEMOVE);
    SetCursorPos(middleX() + 5, 100);
    changeDpi(144, {middleX() - 200, 70});
    ASSERT_TRUE(becomes(middleX() - 200, 70, kSharpWidth));
    TwoMonitors::unplugTheRight();
    send(WM_DISPLAYCHANGE, 32, MAKELPARAM(middleX(), GetSystemMetrics(SM_CYSCREEN)));
    EXPECT_TRUE(isShown());
    send(WM_EXITSIZEMOVE);
    EXPECT_TRUE(becomes(middleX() - kPlainWidth, 70, kPlainWidth));
}
