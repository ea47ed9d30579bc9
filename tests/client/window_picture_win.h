// window_picture_win.h - what a window of ours shows, from itself: neither the screen nor what lies behind matters.
// [host] Used from the main thread of a test or the pictures.
#pragma once
#include <windows.h>
#include "ui/argb_image.h"

// The window's own picture (WM_PRINTCLIENT) in the size of its client area; empty without a window. Pixels that the
// window does not draw are 0.
ArgbImage askForPicture(HWND window);

// A part of the screen as it is now; only for checking that a window reaches it at all.
ArgbImage lookAtScreen(const RECT& part);
