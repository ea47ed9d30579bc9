// panel_window_win.h - the radio panel's window: unpacks messages, asks the model, shows the picture.
#pragma once
#include <windows.h>
#include <atomic>
#include <optional>
#include "audio/talk_tracker.h"
#include "audio/voice_levels.h"
#include "base/clock.h"
#include "panel/panel_draw.h"
#include "panel/panel_layers.h"
#include "panel/panel_model.h"
#include "panel/panel_picture.h"
#include "panel/panel_tooltip_win.h"
#include "panel/status_strip_win.h"
#include "ui/memory_surface_win.h"
#include "ui/window_win.h"

inline constexpr const wchar_t* kPanelClass = L"CorvalisRadioPanel";

// WM_CLOSE with this first parameter destroys the panel; a user's close does not.
inline constexpr WPARAM kCloseByShutdown = 1;

// What the window works with; all of it outlives the window.
struct PanelWindowContext {
    HINSTANCE module = nullptr;
    const Clock& clock;
    SettingsStore& settings;
    SimRadios& radios;
    const TalkTracker& talk;                       // the lamps
    const VoiceLevels& voice;                      // the volume tip's output gain
    const std::atomic<std::int32_t>& unreadTexts;  // the TEXT lamp
    const std::atomic<std::int32_t>& languageIndex;
    PanelActions& actions;
    const std::atomic<bool>& stop;    // [host] sets it at shutdown, before posting the close
    std::atomic<HWND>& publicWindow;  // [ui] publishes the handle for the other threads to post to
};

// Where the window is, as the system says.
struct ScreenPlace {
    PixelRect workArea;  // of the nearest monitor
    std::uint32_t dpi = 0;
};

// [ui] One window, created once; its class is registered by the thread.
class PanelWindow final : private Window {
  public:
    PanelWindow(const PanelWindowContext& context, const ThemeArt& theme_art);
    ~PanelWindow() override { destroyWindow(); }

    bool create();
    // Draws and pushes what has changed since the last time, then brings stacking and visibility in line with the
    // settings. Does nothing while the system moves the window. Whatever fails is tried again by the next call.
    void present_panel() noexcept;

  private:
    LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void onDestroyed() override;
    LRESULT onCreate();
    LRESULT onPrint(HDC dc) const;
    LRESULT onClose(WPARAM reason);
    LRESULT onMouseActivate(WPARAM wParam, LPARAM lParam);
    LRESULT onTimer();
    LRESULT onMouseMove(PixelPoint at);
    LRESULT onMouseLeave();
    LRESULT onLeftDown(PixelPoint at);
    LRESULT onLeftUp(PixelPoint at);
    LRESULT onWheel(int delta, POINT screen);
    LRESULT onCaptureChanged();
    LRESULT onCancel();
    LRESULT onWindowPosChanged(WPARAM wParam, LPARAM lParam);
    LRESULT onDisplayChange();
    LRESULT onDpiChanged(unsigned dpi, const RECT* suggested);
    LRESULT onGetDpiSize(unsigned dpi, SIZE* size);
    LRESULT onSettingChange(WPARAM wParam, LPARAM lParam);
    LRESULT onEnterMove();
    LRESULT onExitMove();
    LRESULT onStep(WPARAM knob, LPARAM steps);
    LRESULT onVolume(WPARAM com, LPARAM percent);
    LRESULT onSwap(WPARAM com);
    LRESULT onSettings();

    PanelContext panelContext() const {
        return {.settings = context_.settings, .radios = context_.radios, .actions = context_.actions};
    }
    std::uint64_t nowMs() const { return context_.clock.tickMs(); }
    void keepPace();  // sets the timer, slower while hidden
    void updateTooltip();
    void hideTooltipUnlessHeld();

    void present();
    void showPicture(const Settings& settings, const PanelPlacement& placement);
    PixelRect drawPicture(const PanelPicture& picture);
    bool pushPicture(const PanelPlacement& placement, const PixelRect& changed);
    bool isWhereItBelongs(const PanelPlacement& placement) const;
    PanelPlacement findPlacement(const Settings& settings);
    void goToStoredPlace(const Settings& settings);
    PanelInputs gatherInputs(const Settings& settings) const;
    void applyStacking(bool pin);
    void applyVisibility(bool visible);

    PanelWindowContext context_;
    PanelModel model_;
    PanelTooltip tooltip_;
    PixelPoint storedPlace_;  // panel_x, panel_y when they were last this window's own or followed
    ScreenPlace screen_;
    int screenAge_ = 0;             // ticks until screen_ is asked for again
    bool isMoving_ = false;         // the system moves the window
    bool isVisible_ = false;        // as the system last told
    bool applied_topmost_ = false;  // the stacking last set

    LayerCache layers_;
    MemorySurface surface_;
    StatusStrip statusStrip_;
    std::optional<PanelPicture> drawn_;     // what the surface shows
    std::optional<PanelPlacement> pushed_;  // how the screen shows the surface; empty: not in its present state
};
