// monitor_win.h - what is known of the monitor a window is on.
#pragma once
#include <windows.h>
#include "ui/screen_rect.h"

// [any] The work area of the monitor nearest to the window; empty when the system does not tell.
ScreenRect workAreaOf(HWND window);
