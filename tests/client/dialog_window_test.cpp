// dialog_window_test.cpp - the settings dialog as a window among others: its place, the title bar, minimised, another
// resolution, what it paints, and the message window that it shows and empties.
#include <atomic>
#include <string_view>
#include "settings/language.h"
#include "tests/client/dialog_test.h"
#include "tests/client/import_patch_win.h"
#include "tests/client/message_driver_win.h"

namespace {

// The resolution that the system tells of the dialog: another one once it has left the place it comes to first.
std::atomic<unsigned> gBefore{96}, gThere{96};
std::atomic<bool> gIsThere{false};
UINT WINAPI tellResolution(HWND window) {
    wchar_t name[64] = {};
    RECT rect = {};
    GetClassNameW(window, name, 64);
    if (std::wstring_view(name) != L"CorvalisSettingsClass") return 96;
    GetWindowRect(window, &rect);
    if (rect.left != 0 || rect.top != 0) gIsThere = true;
    return gIsThere ? gThere : gBefore;
}

// Counts the WM_PAINT that a window's own thread sends it: those it asks for itself after drawing.
class PaintCount {
  public:
    explicit PaintCount(HWND window) {
        painted_ = window;
        count_ = 0;
        hook_ = SetWindowsHookExW(WH_CALLWNDPROC, onMessage, nullptr, GetWindowThreadProcessId(window, nullptr));
    }
    ~PaintCount() { UnhookWindowsHookEx(hook_); }
    PaintCount(const PaintCount&) = delete;
    PaintCount& operator=(const PaintCount&) = delete;

    bool isCounting() const { return hook_ != nullptr; }
    int take() { return count_.exchange(0); }

  private:
    static LRESULT CALLBACK onMessage(int code, WPARAM wParam, LPARAM lParam) {
        const auto* message = reinterpret_cast<const CWPSTRUCT*>(lParam);
        if (code == HC_ACTION && message->hwnd == painted_ && message->message == WM_PAINT) count_++;
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }

    static inline std::atomic<HWND> painted_{nullptr};
    static inline std::atomic<int> count_{0};
    HHOOK hook_;
};

// The part of the message window that holds a message's text, read from its device context.
std::string messageArea() {
    constexpr int kLeft = 24, kTop = 100, kWidth = 560, kHeight = 240;
    std::string pixels(std::size_t{4} * kWidth * kHeight, '\0');
    const HWND window = findMessageWindow();
    const HDC from = GetDC(window), to = CreateCompatibleDC(from);
    const HBITMAP bitmap = CreateCompatibleBitmap(from, kWidth, kHeight);
    const HGDIOBJ before = SelectObject(to, bitmap);
    BitBlt(to, 0, 0, kWidth, kHeight, from, kLeft, kTop, SRCCOPY);
    SelectObject(to, before);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, kWidth, kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    GetDIBits(to, bitmap, 0, kHeight, pixels.data(), &info, DIB_RGB_COLORS);
    DeleteObject(bitmap);
    DeleteDC(to);
    ReleaseDC(window, from);
    return pixels;
}

}  // namespace

class DialogWindowTest : public DialogFixture {
  protected:
    PixelRect workArea() const {
        MONITORINFO monitor = {};
        monitor.cbSize = sizeof monitor;
        GetMonitorInfoW(MonitorFromWindow(findDialog(), MONITOR_DEFAULTTONEAREST), &monitor);
        return {monitor.rcWork.left, monitor.rcWork.top, monitor.rcWork.right, monitor.rcWork.bottom};
    }
    PixelRect place() const {
        const RECT rect = dialogRect();
        return {rect.left, rect.top, rect.right, rect.bottom};
    }
    bool hasMessage(const std::string& empty) {
        return session.waitUntil([&] { return messageArea() != empty; }, kPatienceMs);
    }
    bool hasNone(const std::string& empty) {
        return session.waitUntil([&] { return messageArea() == empty; }, kPatienceMs);
    }
};

TEST_F(DialogWindowTest, OpensInTheMiddleOfTheScreenWithItsStyleAndTitle) {
    ASSERT_TRUE(openWith("language=fr\r\n"));
    EXPECT_EQ(title(), L"Corvalis · Paramètres");
    const auto style = static_cast<DWORD>(GetWindowLongW(findDialog(), GWL_STYLE));
    EXPECT_TRUE(style & WS_POPUP);
    EXPECT_TRUE(style & WS_CLIPCHILDREN);
    EXPECT_FALSE(style & (WS_CAPTION | WS_THICKFRAME));
    EXPECT_TRUE(static_cast<DWORD>(GetWindowLongW(findDialog(), GWL_EXSTYLE)) & WS_EX_APPWINDOW);
    EXPECT_EQ(GetWindow(findDialog(), GW_OWNER), nullptr);

    const PixelRect expected = placeDialog(workArea(), GetDpiForWindow(findDialog()));
    EXPECT_TRUE(session.waitUntil([&] { return place() == expected; }))
        << place().left << ", " << place().top << ": " << place().width() << " x " << place().height();
}

TEST_F(DialogWindowTest, ThePressedTitleBarMovesItUntilItIsReleased) {
    ASSERT_TRUE(openWith("language=en\r\n"));
    ASSERT_TRUE(holdTitle());
    dialog().command(kFirstLanguage + int{kGerman});  // the dialog still works
    EXPECT_EQ(title(), L"Corvalis · Einstellungen");
    dialog().post(WM_LBUTTONUP, 0, 0);
    EXPECT_TRUE(session.waitUntil([&] { return !isMoved(); }, kPatienceMs));
    dialog().click(kMasterToggle);
    ASSERT_TRUE(save());
    EXPECT_TRUE(isSaved("language=de"));
    EXPECT_TRUE(isSaved("master=0"));
}

TEST_F(DialogWindowTest, MinimisedItIsRestoredByTheMenu) {
    ASSERT_TRUE(openWith(""));
    const HWND window = findDialog();
    const RECT before = dialogRect();
    ShowWindow(window, SW_MINIMIZE);
    ASSERT_TRUE(session.waitUntil([&] { return IsIconic(window) != FALSE; }, kPatienceMs));
    openFromMenu();
    EXPECT_TRUE(session.waitUntil(
        [&] {
            const RECT now = dialogRect();
            return !IsIconic(window) && IsWindowVisible(window) && EqualRect(&now, &before);
        },
        kPatienceMs));
    EXPECT_EQ(findDialog(), window);
    dialog().click(kMasterToggle);
    ASSERT_TRUE(save());
    EXPECT_TRUE(isSaved("master=0"));
}

TEST_F(DialogWindowTest, ALanguageChosenWhileASliderIsDraggedEndsTheDrag) {
    ASSERT_TRUE(openWith("language=en\r\n"));
    const DialogDriver hand = dialog();
    hand.inOneGo([&] {
        hand.press(hand.pointOnTrack(kOpacitySlider, 100.0f));
        hand.move(hand.pointOnTrack(kOpacitySlider, 70.0f));
        hand.command(kFirstLanguage + int{kJapanese});
        hand.move(hand.pointOnTrack(kOpacitySlider, 40.0f));
        hand.release(hand.pointOnTrack(kOpacitySlider, 40.0f));
    });
    ASSERT_TRUE(save());
    EXPECT_TRUE(isSaved("opacity=70"));
    EXPECT_TRUE(isSaved("language=ja"));
}

TEST_F(DialogWindowTest, ALostCaptureEndsADrag) {
    ASSERT_TRUE(openWith(""));
    const DialogDriver hand = dialog();
    for (const UINT message : {WM_CANCELMODE, WM_CAPTURECHANGED}) {
        hand.inOneGo([&] {
            hand.press(hand.pointOnTrack(kOpacitySlider, 70.0f));
            hand.send(message, 0, 0);
            hand.move(hand.pointOnTrack(kOpacitySlider, 40.0f));
            hand.release(hand.pointOnTrack(kOpacitySlider, 40.0f));
        });
    }
    ASSERT_TRUE(save());
    EXPECT_TRUE(isSaved("opacity=70"));
}

TEST_F(DialogWindowTest, OnAnotherResolutionItIsCentredInItsSizeThereAndWorks) {
    ASSERT_TRUE(openWith(""));
    const PixelRect work = workArea();
    // As the system suggests: the old corner kept, so that the window hangs over the edge.
    RECT suggested = {work.right - 500, work.bottom - 300, work.right + 910, work.bottom + 690};
    for (const unsigned dpi : {144U, 96U, 120U, 480U}) {
        dialog().send(WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
        EXPECT_EQ(place(), placeDialog(work, dpi)) << dpi;
        dialog(0, dpi).click(kMasterToggle);  // at its new place
    }
    dialog(0, 480).click(kPanelVisibleToggle);
    ASSERT_TRUE(save());
    EXPECT_TRUE(isSaved("master=1"));  // four times
    EXPECT_TRUE(isSaved("panel_visible=1"));
}

// A monitor of another resolution: the system tells of it only once the dialog is there.
TEST_F(DialogWindowTest, OpenedWhereTheResolutionIsAnotherItIsPlacedForThatOne) {
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\n"));
    ASSERT_TRUE(session.start());
    const ImportPatch patch(L"corvalis_win64.dll", "GetDpiForWindow", reinterpret_cast<void*>(&tellResolution));
    ASSERT_TRUE(patch.isInPlace());
    const struct { unsigned before, there; } ways[] = {{96, 144}, {144, 96}};
    for (const auto& way : ways) {
        gBefore = way.before;
        gThere = way.there;
        gIsThere = false;
        ASSERT_TRUE(open());
        EXPECT_TRUE(gIsThere);
        const PixelRect expected = placeDialog(workArea(), way.there);
        EXPECT_TRUE(session.waitUntil([&] { return place() == expected; }, kPatienceMs))
            << way.there << ": " << place().width() << " x " << place().height();
        dialog(0, way.there).click(kMasterToggle);
        ASSERT_TRUE(save());
        EXPECT_TRUE(isSaved(way.there == 144 ? "master=0" : "master=1"));
    }
}

TEST_F(DialogWindowTest, DraggedToAnotherResolutionItStaysUnderThePointerAndInsideOnceReleased) {
    ASSERT_TRUE(openWith(""));
    const PixelRect work = workArea();
    const PixelSize fine = {placeDialog(work, 144).width(), placeDialog(work, 144).height()};
    const PixelRect dragged = {work.right - 200, work.top + 30, work.right - 200 + fine.width,
                               work.top + 30 + fine.height};
    RECT suggested = {dragged.left, dragged.top, dragged.right, dragged.bottom};
    dialog().send(WM_ENTERSIZEMOVE, 0, 0);
    dialog().send(WM_DPICHANGED, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(&suggested));
    EXPECT_EQ(place(), dragged);
    dialog().send(WM_EXITSIZEMOVE, 0, 0);
    EXPECT_EQ(place(), moveInto(dragged, work));
    EXPECT_EQ(place().right, work.right);
    // On one and the same monitor it may be left over an edge.
    const PixelRect hanging = {work.right - 300, work.top + 50, work.right - 300 + fine.width,
                               work.top + 50 + fine.height};
    dialog().send(WM_ENTERSIZEMOVE, 0, 0);
    SetWindowPos(findDialog(), nullptr, hanging.left, hanging.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    dialog().send(WM_EXITSIZEMOVE, 0, 0);
    EXPECT_EQ(place(), hanging);
}

TEST_F(DialogWindowTest, WhatIsClickedIsStillLitUnderTheMouse) {
    ASSERT_TRUE(openWith(""));
    const DialogDriver hand = dialog();
    const DialogLayout layout = hand.layout();
    const PixelRect button = findControl(layout, kResetPanel)->rect;  // changes nothing to be seen here
    const POINT at = hand.pointOn(kResetPanel);
    ArgbImage plain, lit, clicked;
    hand.inOneGo([&] {
        const auto look = [&] { return cropImage(askForPicture(hand.window()), button); };
        hand.move(hand.pointOn(kOpacitySlider));
        plain = look();
        hand.move(at);
        lit = look();
        hand.press(at);
        hand.release(at);
        clicked = look();
    });
    EXPECT_NE(lit.pixels, plain.pixels);
    EXPECT_EQ(clicked.pixels, lit.pixels);
}

TEST_F(DialogWindowTest, AtRestItPaintsNothingAndAChangeOnce) {
    ASSERT_TRUE(openWith(""));
    PaintCount paints(findDialog());
    ASSERT_TRUE(paints.isCounting());
    const auto tick = [&] { dialog().send(WM_TIMER, 1, 0); };
    // The real pointer may be over the dialog and light something up, once.
    EXPECT_TRUE(session.waitUntil([&] {
        paints.take();
        for (int i = 0; i < 20; i++) tick();
        return paints.take() == 0;
    }));
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);  // shows the panel, which flips the toggle
    tick();
    EXPECT_EQ(paints.take(), 1);
    tick();
    EXPECT_EQ(paints.take(), 0);
}

TEST_F(DialogWindowTest, PreviewShowsTheMessageWindowWithItsAlert) {
    ASSERT_TRUE(show(kGeneralTheme, "text_auto_open=0\r\n"));  // the UI thread has made its windows
    ASSERT_TRUE(open());
    dialog().command(kPreviewMessages);
    EXPECT_EQ(host.callsOf("playWaveFile").size(), 1u);
    EXPECT_TRUE(session.waitUntil([] { return isMessageWindowShown(); }, kPatienceMs));
}

TEST_F(DialogWindowTest, PreviewIsSilentWithoutTextAlert) {
    ASSERT_TRUE(openWith("text_alert=0\r\n"));
    dialog().command(kPreviewMessages);
    EXPECT_TRUE(host.callsOf("playWaveFile").empty());
}

TEST_F(DialogWindowTest, ClearEmptiesTheMessageWindowThatIsOpen) {
    ASSERT_TRUE(show(kGeneralTheme, "text_auto_open=0\r\n"));
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 3, 0);  // the message window, empty
    ASSERT_TRUE(session.waitUntil([] { return isMessageWindowShown(); }, kPatienceMs));
    SendMessageW(findMessageWindow(), WM_TIMER, 1, 0);  // drawn
    const std::string empty = messageArea();
    ASSERT_NE(empty.find_first_not_of(empty[0]), std::string::npos);  // the words that say it is empty
    ASSERT_TRUE(open());
    dialog().command(kPreviewMessages);
    ASSERT_TRUE(hasMessage(empty));
    dialog().command(kClearMessages);
    EXPECT_TRUE(hasNone(empty));
    dialog().command(kPreviewMessages);
    EXPECT_TRUE(hasMessage(empty));
}
