// panel_focus_test.cpp - whoever has the keyboard keeps it, whatever the mouse does to the radio panel. The input is
// the system's own, not posted: only so does it ask who is to be activated.
#include <string>
#include "tests/client/import_patch_win.h"
#include "tests/client/keyboard_owner_win.h"
#include "tests/client/panel_test.h"

namespace {

// Another window, such as the simulator's, that notes the keys it gets. [host]
class KeyWindow {
  public:
    KeyWindow() {
        WNDCLASSW description = {};
        description.lpfnWndProc = &procedure;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = kClass;
        RegisterClassW(&description);
        window_ = CreateWindowExW(WS_EX_TOOLWINDOW, kClass, L"", WS_POPUP | WS_VISIBLE, 0, 0, 60, 60, nullptr, nullptr,
                                  description.hInstance, this);
    }
    ~KeyWindow() {
        DestroyWindow(window_);
        UnregisterClassW(kClass, GetModuleHandleW(nullptr));
    }
    KeyWindow(const KeyWindow&) = delete;
    KeyWindow& operator=(const KeyWindow&) = delete;

    void takeKeyboard() const {
        SetForegroundWindow(window_);
        SetFocus(window_);
    }
    bool hasKeyboard() const { return GetForegroundWindow() == window_ && GetFocus() == window_; }
    const std::string& keys() const { return keys_; }
    int losses() const { return losses_; }  // of the keyboard, to any other window

  private:
    static constexpr const wchar_t* kClass = L"CorvalisTestKeys";

    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_NCCREATE)
            SetWindowLongPtrW(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
        auto* self = reinterpret_cast<KeyWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (self && message == WM_KEYDOWN) self->keys_ += static_cast<char>(wParam);
        if (self && message == WM_KILLFOCUS) self->losses_++;
        return DefWindowProcW(window, message, wParam, lParam);
    }

    HWND window_ = nullptr;
    std::string keys_;
    int losses_ = 0;
};

// The user's setting as SystemParametersInfo reports it to the plugin.
DWORD gWheelRouting = 0;

BOOL WINAPI reportWheelRouting(UINT action, UINT parameter, void* value, UINT flags) {
    constexpr UINT kGetWheelRouting = 0x201C;
    if (action != kGetWheelRouting) return SystemParametersInfoW(action, parameter, value, flags);
    *static_cast<DWORD*>(value) = gWheelRouting;
    return TRUE;
}

}  // namespace

class PanelFocus : public PanelTest {
  protected:
    // Handles this thread's own windows while it waits.
    template <class Condition>
    bool becomesTrue(Condition condition) {
        return session.waitUntil(
            [&] {
                MSG message;
                while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
                return condition();
            },
            30'000);
    }
    ::testing::AssertionResult giveKeyboardTo(const KeyWindow& other) {
        if (becomesTrue([&] {
                other.takeKeyboard();
                return other.hasKeyboard();
            }))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "the other window does not get the keyboard";
    }
    POINT onScreen(std::int32_t element) const {
        POINT at = panel().pointOn(element);
        ClientToScreen(findPanel(), &at);
        return at;
    }
    void clickOn(std::int32_t element) const { clickScreen(onScreen(element)); }
    LRESULT askWhoIsActivated() const {
        return send(WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(findPanel()), MAKELPARAM(HTCLIENT, WM_LBUTTONDOWN));
    }
};

TEST_F(PanelFocus, ClicksWheelAndDragsLeaveTheKeyboardWhereItIs) {
    ASSERT_TRUE(show(kBoeingTheme, "panel_x=120\r\npanel_y=90\r\nfollow_volume=0\r\nreceive_volume=50\r\n"));
    KeyWindow other;
    ASSERT_TRUE(giveKeyboardTo(other));

    clickOn(kAutoKey);
    EXPECT_TRUE(becomesTrue([&] { return isSaved("enabled=0"); }));
    typeKey('A');
    wheelScreen(onScreen(kVolumeKnob), WHEEL_DELTA);
    EXPECT_TRUE(becomesTrue([&] { return isSaved("receive_volume=51"); }));
    typeKey('B');
    const POINT held = onScreen(kBackground);
    dragScreen(held, {held.x + 40, held.y + 30});
    EXPECT_TRUE(becomesTrue([&] { return isSaved("panel_x=160") && isSaved("panel_y=120"); }));
    typeKey('C');
    clickOn(kMinimizeKey);
    EXPECT_TRUE(becomesTrue([&] { return !isShown(); }));
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);  // "Show panel"
    EXPECT_TRUE(becomesTrue([&] { return isShown(); }));
    typeKey('D');

    EXPECT_TRUE(becomesTrue([&] { return other.keys().size() >= 4; }));
    EXPECT_EQ(other.keys(), "ABCD");
    EXPECT_EQ(other.losses(), 0);
    EXPECT_TRUE(other.hasKeyboard());
}

TEST_F(PanelFocus, AClickTakesTheKeyboardOnlyWhereTheWheelGoesWithIt) {
    ASSERT_TRUE(show(kBoeingTheme));
    EXPECT_EQ(askWhoIsActivated(), MA_NOACTIVATE);  // as this system is set
    const ImportPatch patch(L"corvalis_win64.dll", "SystemParametersInfoW",
                            reinterpret_cast<void*>(reportWheelRouting));
    ASSERT_TRUE(patch.isInPlace());
    const struct {
        DWORD routing;
        LRESULT answer;
    } rows[] = {{2, MA_NOACTIVATE}, {0, MA_ACTIVATE}, {1, MA_ACTIVATE}, {2, MA_NOACTIVATE}};
    for (const auto& row : rows) {
        gWheelRouting = row.routing;
        EXPECT_EQ(askWhoIsActivated(), row.answer) << row.routing;
    }
}

TEST_F(PanelFocus, WhereTheWheelGoesWithTheKeyboardAClickStillBringsBoth) {
    ASSERT_TRUE(show(kBoeingTheme, "panel_x=120\r\npanel_y=90\r\n"));
    gWheelRouting = 0;
    const ImportPatch patch(L"corvalis_win64.dll", "SystemParametersInfoW",
                            reinterpret_cast<void*>(reportWheelRouting));
    ASSERT_TRUE(patch.isInPlace());
    KeyWindow other;
    ASSERT_TRUE(giveKeyboardTo(other));
    clickOn(kCom2Key);
    EXPECT_TRUE(becomesTrue([&] { return isSaved("radio=COM2"); }));
    EXPECT_TRUE(becomesTrue([&] { return other.losses() == 1 && GetForegroundWindow() == findPanel(); }));
}

TEST_F(PanelFocus, AClickBringsACoveredPanelToTheFront) {
    ASSERT_TRUE(show(kBoeingTheme, "panel_x=120\r\npanel_y=90\r\n"));
    const HWND cover = CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, L"Static", L"", WS_POPUP, 100, 80, 60, 60,
                                       nullptr, nullptr, nullptr, nullptr);
    SetWindowPos(cover, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    const auto upper = [&] {
        HWND window = GetTopWindow(nullptr);
        while (window && window != cover && window != findPanel()) window = GetWindow(window, GW_HWNDNEXT);
        return window;
    };
    EXPECT_TRUE(becomesTrue([&] { return upper() == cover; }));
    clickOn(kCom2Key);
    EXPECT_TRUE(becomesTrue([&] { return isSaved("radio=COM2"); }));
    EXPECT_EQ(upper(), findPanel());
    DestroyWindow(cover);
}
