// settings_dialog_win.h - the settings dialog as the rest of the plugin sees it: what it works with, and how it is run.
// One at a time in the process.
#pragma once
#include <windows.h>
#include <atomic>
#include <functional>
#include <string_view>
#include "base/clock.h"
#include "settings/dialog/dialog_slot.h"
#include "settings/dialog/dialog_view.h"
#include "settings/settings_store.h"

// What all threads know of the dialog.
struct DialogLink {
    DialogSlot slot;
    std::atomic<HWND> window{nullptr};  // [dialog] stores, [any] loads: there is a dialog, and messages go here
};

// What the dialog works with; all of it outlives the dialog. The functions are called on the dialog's thread.
struct DialogContext {
    HINSTANCE module = nullptr;
    const Clock& clock;
    SettingsStore& settings;
    std::atomic<std::int32_t>& languageIndex;
    DialogLink& link;
    std::function<void()> prepare;                         // once, before any setting is read
    std::function<LiveRadio(std::int32_t com)> liveRadio;  // the simulator's radio 1 or 2 just now
    std::function<void()> previewMessages;                 // a sample message, the alert and the message window
    std::function<void()> clearMessages;                   // forgets the text messages
    std::function<void(std::string_view line)> logCommit;  // what has been done with the settings
};

// [any] Brings the dialog to the front; false when there is none.
bool showOpenDialog(const DialogLink& link);

// [dialog] Runs the dialog until it is closed. If no window can be created, another thread has the dialog, or the
// plugin is shutting down, it returns at once. Afterwards no window, class or graphics object of the dialog is left.
void runSettingsDialog(const DialogContext& context);
