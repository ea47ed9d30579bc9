// dialog_test.h - a test with the settings dialog open: the real window, a hand to work it, and what it has saved.
#pragma once
#include <string>
#include "settings/settings_text.h"
#include "tests/client/dialog_driver_win.h"
#include "tests/client/panel_test.h"

inline constexpr const char* kSavedLine = "settings saved";
inline constexpr const char* kAppliedLine = "settings applied (window kept open)";
inline constexpr std::uint64_t kPatienceMs = 30'000;  // a busy machine draws a window slowly

class DialogFixture : public PanelTest {
  protected:
    void openFromMenu() { session.plugin.exports().onMenuItemEvent(kSchid, 0, 1, 0); }
    ::testing::AssertionResult becomesOpen() {
        if (session.waitUntil([] { return isDialogShown(); }, kPatienceMs)) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "no dialog";
    }
    ::testing::AssertionResult open() {
        if (!session.isRunning()) {
            const auto started = session.start();
            if (!started) return started;
        }
        // While the previous dialog's thread is ending, the menu entry does nothing and must be chosen again.
        const auto isOpening = [&] {
            if (!findDialog()) openFromMenu();
            return isDialogShown();
        };
        if (session.waitUntil(isOpening, kPatienceMs)) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "no dialog";
    }
    // Without the panel, whose windows no dialog needs.
    ::testing::AssertionResult openWith(const std::string& lines) {
        session.writeSettings("panel_visible=0\r\n" + lines);
        return open();
    }
    bool isGone() {
        return session.waitUntil([] { return !findDialog(); }, kPatienceMs);
    }
    DialogDriver dialog(int page = 0, unsigned dpi = 0) const { return {findDialog(), page, dpi}; }
    bool hasLogged(const std::string& line) const {
        const auto lines = host.logLines();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }
    // Each commits: apply() keeps the window open, save() closes it.
    ::testing::AssertionResult apply() {
        host.forgetCalls();
        dialog().command(kApply);
        if (hasLogged(kAppliedLine)) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "nothing applied";
    }
    ::testing::AssertionResult save() {
        host.forgetCalls();
        dialog().command(kSaveAndClose);
        if (hasLogged(kSavedLine) && !findDialog()) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "not saved, or not closed";
    }
    void expectSaved(const Settings& expected) { EXPECT_EQ(session.settings(), writeSettingsText(expected)); }
    // Whether the system is moving the dialog, as after a press on its title bar.
    bool isMoved() const {
        GUITHREADINFO info = {};
        info.cbSize = sizeof info;
        const DWORD thread = GetWindowThreadProcessId(findDialog(), nullptr);
        return GetGUIThreadInfo(thread, &info) && (info.flags & GUI_INMOVESIZE) && info.hwndMoveSize == findDialog();
    }
    // Presses the title bar until the system's own loop moves the window: a change of focus that is still on its way,
    // as after opening, ends that loop at once.
    ::testing::AssertionResult holdTitle() {
        constexpr std::uint64_t kAgainMs = 3000;
        for (std::uint64_t waitedMs = 0; waitedMs < kPatienceMs; waitedMs += kAgainMs) {
            const POINT at = dialog().pointOnTitle();
            dialog().post(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
            if (session.waitUntil([&] { return isMoved(); }, kAgainMs)) return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure() << "the system does not move the dialog";
    }
    std::wstring title() const {
        wchar_t text[64] = {};
        GetWindowTextW(findDialog(), text, 64);
        return text;
    }
    RECT dialogRect() const {
        RECT rect = {};
        GetWindowRect(findDialog(), &rect);
        return rect;
    }
};
