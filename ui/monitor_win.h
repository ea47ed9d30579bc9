// monitor_win.h - what is known of the monitor a window is on.
#pragma once
#include <windows.h>
#include "ui/geometry.h"

// [any] The work area of the monitor nearest to the window; empty when the system does not tell.
PixelRect workAreaOf(HWND window);
// The same for a rectangle or a point of the screen, which may lie on no monitor.
PixelRect workAreaOf(const PixelRect& rect);
PixelRect workAreaOf(PixelPoint point);
// Of the monitor that the mouse is on; the argument `otherwise` when that is unknown.
PixelRect workAreaUnderCursor(const PixelRect& otherwise);
