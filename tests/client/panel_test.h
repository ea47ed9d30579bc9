// panel_test.h - a test with the radio panel in the real DLL: a flying aircraft, the real window, a hand to work it.
// The pointer is parked where no panel is: a panel that appears below it would get mouse moves.
#pragma once
#include <string>
#include "tests/client/client_session_win.h"
#include "tests/client/command_reader.h"
#include "tests/client/panel_driver_win.h"
#include "tests/client/window_picture_win.h"

class PanelTest : public PluginTest {
  protected:
    PanelTest();
    ~PanelTest() override;

    // Both radios on the air, the settings written, the plugin started, the panel visible in its theme's size.
    // lines: "key=value\r\n" of the settings, without the theme.
    ::testing::AssertionResult show(std::int32_t theme, const std::string& lines = "");
    // The same without waiting for the window to be visible.
    ::testing::AssertionResult startWith(std::int32_t theme, const std::string& lines);
    bool isShown() const;
    RECT screenRect() const;
    PanelDriver panel() const { return {findPanel(), theme_}; }

    // Each returns when the panel's thread has done it.
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    LRESULT sendAt(UINT message, POINT client) const;
    void presentNow() const { send(WM_DISPLAYCHANGE, 32); }
    // No ticks except those that a test sends, no presentation: the panel believes that the system is moving it.
    void stopTicks() const { send(WM_ENTERSIZEMOVE); }
    void letTick() const { send(WM_EXITSIZEMOVE); }

    // The saved settings hold this line.
    bool isSaved(const std::string& line) const;
    ::testing::AssertionResult becomesSaved(const std::string& line);
    ::testing::AssertionResult clickSaves(std::int32_t element, const std::string& line);

    // Nothing done to the panel so far had any effect: the next command is the one for this function's own turn of the
    // STANDBY knob, from the frequency of the aircraft's radio, and no setting was saved meanwhile.
    ::testing::AssertionResult nothingHappened();
    // "standby 122500" for COM1's next command; "" if none comes.
    std::string nextTuning(std::int32_t com = 1);
    // The worker has carried out the last command, and the plugin knows it. Otherwise the next command waits until that
    // one times out, even after another init.
    void answer();

  private:
    CommandReader commands_{session};
    const DPI_AWARENESS_CONTEXT awarenessBefore_;
    std::int32_t theme_ = kGeneralTheme;
    std::string settingsBefore_;
};
