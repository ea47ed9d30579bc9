// panel_tip_test.cpp - the tip that follows the mouse over the radio panel. The system reports in its own time that the
// real mouse is elsewhere: so a tip is requested until it shows, and hiding it is checked at once.
#include <array>
#include <cstdlib>
#include "tests/client/panel_test.h"
// commctrl.h needs windows.h before it.
#include <commctrl.h>

class PanelTip : public PanelTest {
  protected:
    static bool isTipShown() { return findPanelTip() && IsWindowVisible(findPanelTip()); }

    // The mouse on an element, and a tick of the panel's timer.
    void hover(std::int32_t element) const {
        sendAt(WM_MOUSEMOVE, panel().pointOn(element));
        send(WM_TIMER, 1);
    }
    bool showTip(std::int32_t element) {
        return session.waitUntil([&] {
            hover(element);
            return isTipShown();
        });
    }
    static std::wstring tipText() {
        std::array<wchar_t, 512> text = {};
        TOOLINFOW tool = {};
        tool.cbSize = TTTOOLINFOW_V1_SIZE;
        tool.hwnd = findPanel();
        tool.uId = 1;
        tool.lpszText = text.data();
        SendMessageW(findPanelTip(), TTM_GETTEXTW, text.size(), reinterpret_cast<LPARAM>(&tool));
        return text.data();
    }
};

TEST_F(PanelTip, TellsWhatLiesUnderTheMouse) {
    ASSERT_TRUE(show(kBoeingTheme));
    const struct {
        std::int32_t element;
        const wchar_t* text;
    } rows[] = {
        {kCom1Key, L"Select COM1 (ACTIVE + STANDBY)"},
        {kSmallKnob, L"SMALL KNOB \u2014 fractional part (kHz).\nScroll or drag vertically"},
        {kPinKey, L"Always on top: OFF \u2014 Click to enable"},
        {kUnassignedKey, L"Not assigned"},
    };
    stopTicks();
    for (const auto& row : rows) {
        const bool told = session.waitUntil([&] {
            hover(row.element);
            return tipText() == row.text;
        });
        EXPECT_TRUE(told) << row.element << ": " << toUtf8(tipText());
    }
}

TEST_F(PanelTip, AppearsWithTheTickAfterTheMouseNotBefore) {
    ASSERT_TRUE(show(kAirbusTheme));
    stopTicks();
    EXPECT_FALSE(isTipShown());
    sendAt(WM_MOUSEMOVE, panel().pointOn(kSwapKey));
    EXPECT_FALSE(isTipShown());
    EXPECT_TRUE(showTip(kSwapKey));
}

TEST_F(PanelTip, StandsBesideTheCursorAndFollowsItWithTheTick) {
    ASSERT_TRUE(show(kBoeingTheme));
    stopTicks();
    for (const POINT& at : {POINT{40, 1000}, POINT{300, 1100}}) {  // away from the panel; the tip follows nevertheless
        ASSERT_TRUE(SetCursorPos(at.x, at.y));
        POINT offset = {};
        const bool isBeside = session.waitUntil([&] {
            POINT cursor = {}, after = {};
            RECT tip = {};
            if (!GetCursorPos(&cursor)) return false;
            hover(kSettingsKey);
            if (!isTipShown() || !GetWindowRect(findPanelTip(), &tip) || !GetCursorPos(&after)) return false;
            offset = {tip.left - cursor.x, tip.top - cursor.y};
            // The control may put its own border outside.
            return cursor.x == after.x && std::abs(offset.x - 14) <= 2 && std::abs(offset.y - 22) <= 2;
        });
        EXPECT_TRUE(isBeside) << offset.x << ',' << offset.y << " from the cursor";
    }
}

TEST_F(PanelTip, GoesWithTheMouseWithTheFocusAndWithItsPanel) {
    ASSERT_TRUE(show(kBoeingTheme));
    stopTicks();
    for (const UINT message : {WM_MOUSELEAVE, WM_KILLFOCUS, WM_CANCELMODE}) {
        ASSERT_TRUE(showTip(kCom1Key)) << message;
        send(message);
        EXPECT_FALSE(isTipShown()) << message;
    }
    ASSERT_TRUE(showTip(kCom1Key));
    ShowWindow(findPanel(), SW_HIDE);  // returns when the panel has been told
    EXPECT_FALSE(isTipShown());
    EXPECT_EQ(tipText(), L"Select COM1 (ACTIVE + STANDBY)");  // kept while hidden
}

TEST_F(PanelTip, IsNotShownOverAHiddenPanel) {
    ASSERT_TRUE(show(kBoeingTheme));
    stopTicks();
    ASSERT_TRUE(showTip(kCom1Key));
    ShowWindow(findPanel(), SW_HIDE);
    for (int i = 0; i < 5; i++) {
        hover(kCom1Key);
        EXPECT_FALSE(isTipShown());
    }
    ShowWindow(findPanel(), SW_SHOWNOACTIVATE);
    EXPECT_TRUE(showTip(kCom1Key));
}

TEST_F(PanelTip, IsThatOfTheHeldKnobWhateverLiesUnderTheMouse) {
    ASSERT_TRUE(show(kBoeingTheme));
    stopTicks();
    const std::wstring knobText = L"LARGE KNOB \u2014 whole MHz.\nScroll or drag vertically";
    sendAt(WM_LBUTTONDOWN, panel().pointOn(kLargeKnob));
    for (const std::int32_t below : {kCom1Key, kVolumeKnob, kBackground}) {
        hover(below);
        EXPECT_TRUE(isTipShown()) << below;
        EXPECT_EQ(toUtf8(tipText()), toUtf8(knobText)) << below;
    }
    send(WM_MOUSELEAVE);
    EXPECT_TRUE(isTipShown());
    sendAt(WM_LBUTTONUP, panel().pointOn(kCom1Key));
    EXPECT_TRUE(session.waitUntil([&] {
        hover(kCom1Key);
        return isTipShown() && tipText() == L"Select COM1 (ACTIVE + STANDBY)";
    })) << toUtf8(tipText());
}

TEST_F(PanelTip, GoesToTheCursorsOtherSideAtTheWorkAreasEnd) {
    ASSERT_TRUE(show(kBoeingTheme));
    stopTicks();
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    ASSERT_TRUE(GetMonitorInfoW(MonitorFromWindow(findPanel(), MONITOR_DEFAULTTONEAREST), &monitor));
    ASSERT_TRUE(SetCursorPos(monitor.rcWork.right - 10, monitor.rcWork.bottom - 10));
    RECT tip = {};
    POINT cursor = {};
    const bool isBefore = session.waitUntil([&] {
        POINT after = {};
        if (!GetCursorPos(&cursor)) return false;
        hover(kSettingsKey);
        if (!isTipShown() || !GetWindowRect(findPanelTip(), &tip) || !GetCursorPos(&after)) return false;
        return cursor.x == after.x && std::abs(tip.right - (cursor.x - 14)) <= 2 &&
               std::abs(tip.bottom - (cursor.y - 22)) <= 2;
    });
    EXPECT_TRUE(isBefore) << "to " << tip.right << ',' << tip.bottom << " at " << cursor.x << ',' << cursor.y;
}

TEST_F(PanelTip, IsNotShownWhereThereIsNothingToTell) {
    ASSERT_TRUE(show(kBoeingTheme));
    stopTicks();
    ASSERT_TRUE(showTip(kCom1Key));
    hover(kBackground);
    EXPECT_FALSE(isTipShown());
    ASSERT_TRUE(showTip(kCom1Key));
}

TEST_F(PanelTip, GoesWhenTheBackgroundIsPressedToMoveThePanel) {
    ASSERT_TRUE(show(kBoeingTheme));
    stopTicks();
    ASSERT_TRUE(showTip(kCom1Key));
    const POINT at = panel().pointOn(kBackground);
    // The press only returns after the system's move, which handles what is sent later.
    SendNotifyMessageW(findPanel(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
    send(WM_NULL);
    EXPECT_FALSE(isTipShown());
    panel().release(at);
    EXPECT_TRUE(becomesSaved("panel_visible=1"));  // the move is over
}
