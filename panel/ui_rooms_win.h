// ui_rooms_win.h - what the plugin's windows work with.
#pragma once
#include <windows.h>
#include <atomic>
#include "audio/talk_tracker.h"
#include "base/clock.h"
#include "bridge/command_queue.h"
#include "bridge/poll_loop.h"
#include "bridge/sim_state.h"
#include "messages/message_requests_win.h"
#include "messages/message_store.h"
#include "panel/panel_model.h"
#include "settings/settings_store.h"

// All outlive the UI thread.
struct UiRooms {
    HINSTANCE module = nullptr;
    const Clock& clock;
    SettingsStore& settings;
    SharedSimState& sim;
    CommandQueue& commands;
    const TalkTracker& talk;           // the lamps
    const BridgeOutputs& bridge;       // the volume tip's output gain
    MessageStore& messages;            // the TEXT lamp, and the message window
    MessageWindowLink& messageWindow;  // what the others know of it
    const std::atomic<std::int32_t>& languageIndex;
    PanelActions& actions;
    std::atomic<bool>& stop;          // [host] sets it at shutdown, before it posts the close
    std::atomic<HWND>& panel_window;  // [ui] publishes the handle for the other threads to post to
};

// WM_CLOSE with this first parameter destroys the panel; a user's close does not.
inline constexpr WPARAM kCloseByShutdown = 1;
