// panel_focus_test.cpp - whoever has the keyboard keeps it, whatever the mouse does to the radio panel. The input is
// the system's own, not posted: only so does it ask who is to be activated.
#include "tests/client/import_patch_win.h"
#include "tests/client/keyboard_owner_win.h"
#include "tests/client/panel_test.h"

namespace {

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
    template <class Condition>
    bool becomesTrue(Condition condition) {
        return session.waitUntil(condition, 30'000);
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
    KeyboardOwner other;
    ASSERT_TRUE(other.takeKeyboard());

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

    EXPECT_TRUE(becomesTrue([&] { return other.keys() == "ABCD"; })) << other.keys();
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
    KeyboardOwner other;
    ASSERT_TRUE(other.takeKeyboard());
    clickOn(kCom2Key);
    EXPECT_TRUE(becomesTrue([&] { return isSaved("radio=COM2"); }));
    EXPECT_TRUE(becomesTrue([&] { return other.losses() == 1 && GetForegroundWindow() == findPanel(); }));
}

TEST_F(PanelFocus, AClickBringsACoveredPanelToTheFront) {
    ASSERT_TRUE(show(kBoeingTheme, "panel_x=120\r\npanel_y=90\r\n"));
    const HWND cover = CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, L"Static", L"", WS_POPUP, 100, 80, 60, 60,
                                       nullptr, nullptr, nullptr, nullptr);
    const auto upper = [&] {
        HWND window = GetTopWindow(nullptr);
        while (window && window != cover && window != findPanel()) window = GetWindow(window, GW_HWNDNEXT);
        return window;
    };
    // Again if need be: what the screen tells of an earlier change of focus may still raise the panel.
    EXPECT_TRUE(becomesTrue([&] {
        SetWindowPos(cover, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
        return upper() == cover;
    }));
    clickOn(kCom2Key);
    EXPECT_TRUE(becomesTrue([&] { return isSaved("radio=COM2") && upper() == findPanel(); }));
    DestroyWindow(cover);
}
