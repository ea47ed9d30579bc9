// dialog_run_win.h - the settings dialog as the rest of the plugin sees it: what it works with, and how it is run. One
// at a time in the process.
#pragma once
#include <windows.h>
#include <atomic>
#include <functional>
#include "base/clock.h"
#include "base/host_functions.h"
#include "bridge/sim_state.h"
#include "messages/message_store.h"
#include "settings/dialog/dialog_slot.h"
#include "settings/settings_store.h"

// What all threads know of the dialog.
struct DialogLink {
    DialogSlot slot;
    std::atomic<HWND> window{nullptr};  // [dialog] stores, [any] loads: there is a dialog, and messages go here
};

// All outlive the dialog.
struct DialogRooms {
    HINSTANCE module = nullptr;
    const Clock& clock;
    const HostFunctions& host;
    SettingsStore& settings;
    SharedSimState& sim;
    MessageStore& messages;
    std::atomic<std::int32_t>& languageIndex;
    DialogLink& link;
    std::function<void()> previewMessages;  // [dialog] the alert and the message window
};

// [any] Brings the dialog to the front; false when there is none.
bool showOpenDialog(const DialogLink& link);

// [dialog] Runs the dialog until it is closed. Without a window, or while another thread has the dialog or the plugin
// shuts down, it returns at once. Afterwards no window, class or graphics object of the dialog is left. prepare is
// called before anything is read of the settings.
void runSettingsDialog(DialogRooms rooms, const std::function<void()>& prepare);
