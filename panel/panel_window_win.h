// panel_window_win.h - the radio panel's window: unpacks messages, asks the model, shows the picture.
#pragma once
#include <windows.h>
#include <optional>
#include "panel/panel_draw.h"
#include "panel/panel_layers.h"
#include "panel/panel_model.h"
#include "panel/panel_picture.h"
#include "panel/panel_tooltip_win.h"
#include "panel/text_line_win.h"
#include "panel/ui_rooms_win.h"
#include "ui/memory_surface_win.h"

inline constexpr const wchar_t* kPanelClass = L"CorvalisRadioPanel";

// Where the window is, as the system says.
struct ScreenPlace {
    ScreenRect workArea;  // of the nearest monitor
    std::uint32_t dpi = 0;
};

// [ui] One window, created once; its class is registered by the thread.
class PanelWindow {
  public:
    PanelWindow(const UiRooms& rooms, const ThemeArt& theme_art);
    PanelWindow(const PanelWindow&) = delete;
    PanelWindow& operator=(const PanelWindow&) = delete;

    bool create();
    // Draws and pushes what has changed since the last time, then brings stacking and visibility in line with the
    // settings. Does nothing while the system moves the window. What fails is tried again by the next call.
    void present_panel() noexcept;

    static LRESULT CALLBACK wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

  private:
    LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT onCreate();
    LRESULT onPrint(HDC dc) const;
    LRESULT onClose(WPARAM reason);
    LRESULT onDestroy();
    LRESULT onTimer();
    LRESULT onMouseMove(ClientPoint at);
    LRESULT onMouseLeave();
    LRESULT onLeftDown(ClientPoint at);
    LRESULT onLeftUp(ClientPoint at);
    LRESULT onWheel(int delta, POINT screen);
    LRESULT onCaptureChanged();
    LRESULT onCancel();
    LRESULT onWindowPosChanged(WPARAM wParam, LPARAM lParam);
    LRESULT onDisplayChange();
    LRESULT onSettingChange(WPARAM wParam, LPARAM lParam);
    LRESULT onEnterMove();
    LRESULT onExitMove();
    LRESULT onStep(WPARAM knob, LPARAM steps);
    LRESULT onVolume(WPARAM com, LPARAM percent);
    LRESULT onSwap(WPARAM com);

    PanelRooms panelRooms() const { return {rooms_.settings, rooms_.sim, rooms_.commands, rooms_.actions}; }
    std::uint64_t nowMs() const { return rooms_.clock.tickMs(); }
    void startTimer();  // at the pace for what is visible
    void showTooltip();

    void present();
    void showPicture(const Settings& settings);
    PixelRect drawPicture(const PanelPicture& picture);
    void paintStatus(const PanelLayers& layers, const PanelPicture& picture);
    bool pushPicture(const PanelPlacement& placement, const PixelRect& changed);
    bool isWhereItBelongs(const PanelPlacement& placement) const;
    PanelPlacement findPlacement(const Settings& settings);
    PanelInputs gatherInputs(const Settings& settings) const;
    void applyStacking(bool pin);
    void applyVisibility(bool visible);

    UiRooms rooms_;
    HWND window_ = nullptr;
    PanelModel model_;
    PanelTooltip tooltip_;
    ScreenPlace screen_;
    int screenAge_ = 0;             // ticks until screen_ is asked for again
    bool isMoving_ = false;         // the system moves the window
    bool applied_topmost_ = false;  // the stacking given last

    LayerCache layers_;
    MemorySurface surface_;
    std::array<TextLine, 2> statusLines_;
    StatusImages statusImages_;             // of statusLines_
    std::optional<PanelPicture> drawn_;     // what the surface shows
    std::optional<PanelPlacement> pushed_;  // how the screen shows the surface; nothing: not as it is now
};
