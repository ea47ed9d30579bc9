// ui_thread_win.h - the thread that owns the plugin's windows, from init until the panel is destroyed.
#pragma once
#include <windows.h>
#include <atomic>
#include "base/clock.h"
#include "bridge/command_queue.h"
#include "bridge/sim_state.h"
#include "settings/settings_store.h"

// What the windows work with. All outlive the thread.
struct UiRooms {
    HINSTANCE module = nullptr;
    const Clock& clock;
    SettingsStore& settings;
    SharedSimState& sim;
    CommandQueue& commands;
    std::atomic<bool>& stop;         // [host] sets it at shutdown, before it posts the close
    std::atomic<HWND>& panelWindow;  // [ui] publishes the handle for the other threads to post to
};

// WM_CLOSE with this first parameter destroys the panel; a user's close does not.
inline constexpr WPARAM kCloseByShutdown = 1;

// [ui] The thread's body: creates the radio panel's window and serves its messages until it is destroyed.
// Ends at once if the window cannot be created.
void runUiThread(UiRooms rooms);
