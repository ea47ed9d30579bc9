// panel_driver_win.h - a pilot's hand on the radio panel's real window: finds its elements and turns presses, drags and
// the wheel into posted messages. Neither the real cursor nor the focus matters.
// [host] Used from the main thread of a test, the pictures or a benchmark.
#pragma once
#include <windows.h>
#include <cstdint>
#include <string_view>
#include "panel/panel_layout.h"

// The panel of this process, null while there is none.
HWND findPanel();
// The panel's tooltip control, null while there is none.
HWND findPanelTip();

// From here on this thread gets places and sizes in the screen's own pixels, like the panel's thread; otherwise the
// system scales them wherever the resolution is not 96 DPI. Returns the previous setting.
DPI_AWARENESS_CONTEXT useDevicePixels();

// A theme's name as in the settings dialog: "GENERAL".
std::string_view themeName(std::int32_t theme);

class PanelDriver {
  public:
    // theme: the one that the window shows (panel/panel_layout.h).
    PanelDriver(HWND panel, std::int32_t theme) : panel_(panel), layout_(themeLayout(theme)), theme_(theme) {}

    HWND window() const { return panel_; }
    double scale() const;  // client pixels per unit of the layout, from the window's width
    // A client point well inside the element: on the ring for kLargeKnob, a free spot for kBackground. {-1, -1} if the
    // theme lacks it.
    POINT pointOn(std::int32_t element) const;
    POINT toClient(UnitPoint point) const;

    // Each posts one message at a client point.
    void press(POINT at) const { postAt(WM_LBUTTONDOWN, MK_LBUTTON, at); }
    void move(POINT at) const { postAt(WM_MOUSEMOVE, 0, at); }
    void release(POINT at) const { postAt(WM_LBUTTONUP, 0, at); }
    void wheel(POINT at, int delta) const;  // 120 per notch, away from the user positive

    void click(std::int32_t element) const;
    void wheel(std::int32_t element, int delta) const { wheel(pointOn(element), delta); }
    // Presses the element, moves up by pixelsPerMove (negative: down) in each of `moves` messages, and releases.
    void drag(std::int32_t element, int pixelsPerMove, int moves) const;
    void post(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;

  private:
    void postAt(UINT message, WPARAM keys, POINT at) const;
    UnitPoint freeSpot() const;

    HWND panel_;
    const ThemeLayout& layout_;
    std::int32_t theme_;
};
