// panel_test.h - a test with the radio panel on the screen: a flying aircraft, the real window, a hand to work it.
#pragma once
#include <string>
#include "tests/client/client_session_win.h"
#include "tests/client/command_reader.h"
#include "tests/client/panel_driver_win.h"

inline constexpr const char* kThemeNames[] = {"GENERAL", "BOEING", "AIRBUS"};

class PanelTest : public PluginTest {
  protected:
    PanelTest() { useScreenPixels(); }

    // Both radios on the air, the settings written, the plugin started, the panel on the screen in its theme's size.
    // lines: "key=value\r\n" of the settings, without the theme.
    ::testing::AssertionResult show(std::int32_t theme, const std::string& lines = "");
    // The same without waiting for the window to be visible.
    ::testing::AssertionResult startWith(std::int32_t theme, const std::string& lines);
    bool isShown() const;
    RECT screenRect() const;
    PanelDriver panel() const { return {findPanel(), theme_}; }

    // The saved settings hold this line.
    bool isSaved(const std::string& line) const;
    ::testing::AssertionResult becomesSaved(const std::string& line);
    ::testing::AssertionResult clickSaves(std::int32_t element, const std::string& line);

    // What was done to the panel before had no effect at all: the next command is the one of this function's own turn
    // of the STANDBY knob, from where the aircraft's radio stands, and no setting was saved meanwhile.
    ::testing::AssertionResult nothingHappened();
    // "standby 122500" for COM1's next command; "" if none comes.
    std::string nextTuning(std::int32_t com = 1);
    // The worker has done as the last command says, and the plugin knows.
    void answer();

  private:
    CommandReader commands_{session};
    std::int32_t theme_ = kGeneralTheme;
    std::string settingsBefore_;
};
