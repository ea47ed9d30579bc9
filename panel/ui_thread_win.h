// ui_thread_win.h - the thread that owns the plugin's windows, from init until the panel is destroyed.
#pragma once
#include "panel/ui_rooms_win.h"

// [ui] The thread's body: loads the artwork, creates the windows and serves their messages until the panel is
// destroyed. Ends at once if the panel cannot be created. Afterwards no window, class or graphics object of ours is
// left.
void run_ui_thread(UiRooms rooms);
