// panel_tooltip_win.h - the tip that follows the mouse over the radio panel.
#pragma once
#include <windows.h>
#include <string>
#include <string_view>

// [ui] Beside the panel's window, from its creation to its destruction. Without the system's tooltip class every call
// does nothing.
class PanelTooltip {
  public:
    PanelTooltip() = default;
    ~PanelTooltip() { destroy(); }
    PanelTooltip(const PanelTooltip&) = delete;
    PanelTooltip& operator=(const PanelTooltip&) = delete;

    void create(HWND owner, HINSTANCE module);
    void destroy();
    // Shows the text (UTF-8, lines parted by \n) beside the cursor, within the work area; hides the tip when it is
    // empty.
    void show(std::string_view text);
    void hide();  // the text is kept

  private:
    bool setText(std::string_view text);  // true if it is another
    void moveBeside(const POINT& cursor);
    void activate(bool on);

    HWND owner_ = nullptr;
    HWND tooltip_window_ = nullptr;
    std::string text_;
    POINT cursor_ = {};    // beside which the tip was last put
    LPARAM position_ = 0;  // where that is, as TTM_TRACKPOSITION takes it
    bool isShown_ = false;
};
