// plugin_state.h - everything that lives from the DLL's load to its unload. It only composes the rooms' own records:
// a function that needs two of them takes two arguments.
#pragma once
#include <windows.h>
#include <atomic>
#include <string>
#include <string_view>
#include "audio/talk_tracker.h"
#include "audio/voice_levels.h"
#include "base/clock_win.h"
#include "base/data_files_win.h"
#include "base/log_line.h"
#include "bridge/command_queue.h"
#include "bridge/worker_process_win.h"
#include "channels/follow_frequency.h"
#include "messages/message_requests_win.h"
#include "messages/message_store.h"
#include "panel/panel_requests.h"
#include "plugin/host_interface.h"
#include "plugin/host_table.h"
#include "plugin/panel_actions_win.h"
#include "plugin/thread_slot.h"
#include "settings/dialog/settings_dialog_win.h"
#include "settings/settings_store.h"

struct PluginState {
    HINSTANCE module = nullptr;  // our DLL, set at load

    // Host binding. [host] fills it before init; read-only while threads run.
    HostFunctionTable hostTable;
    HostFunctions host;
    HostInterface hostInterface;                  // as answered to the client
    char* pluginId = nullptr;                     // malloc'ed copy, null until registered
    std::atomic<std::uint64_t> currentServer{0};  // [host] stores, [any] loads; 0 not connected

    // Paths, narrow. Init finds the folders before the threads start, or a settings dialog that the host opens before
    // init: one at a time. Whoever needs them meanwhile waits until the settings are read, too.
    Mutex foldersMutex;
    std::string dataFolder GUARDED_BY(foldersMutex);
    std::string moduleFolder GUARDED_BY(foldersMutex);
    std::string tailTonePath;  // set by init before the threads start, also when the sound could not be written

    std::atomic<std::int32_t> languageIndex{2};  // settings/language.h; [host] stores, [any] loads
    std::atomic<bool> running{false};            // between init and shutdown; [host] stores, [any] loads

    // The rooms' records.
    WindowsDataFiles files;
    SystemClock clock;
    SettingsStore settings{files, [this](std::string_view line) { logToHost(host, line); },
                           [this](const Settings& before, const Settings& now) {
                               const HWND panel = panel_window;
                               if (panel && isPanelAsked(before, now)) PostMessageW(panel, kPanelSettingsMessage, 0, 0);
                           }};
    SimRadios radios;
    MoveTracker moves;
    TalkTracker talk;
    MessageStore messages;
    MessageWindowLink messageWindow;
    VoiceLevels voice;
    WorkerProcess worker;
    PluginPanelActions panelActions{*this};

    // Threads: [host] starts and joins them.
    ThreadSlot uiThread;
    ThreadSlot pollThread;
    std::atomic<bool> stopUi{false};
    std::atomic<bool> stopPolling{false};
    std::atomic<HWND> panel_window{nullptr};  // [ui] publishes

    // The settings dialog: on its own thread if opened from the menu or the panel, else on a host thread.
    DialogLink dialog;
    ThreadSlot settingsThread;                 // touched only by whoever has set settingsRunning, and by shutdown
    std::atomic<bool> settingsRunning{false};  // from the start of settingsThread until its dialog has gone
};

// [any] Copies, taken under their lock.
std::string copyDataFolder(PluginState& plugin);
std::string copyModuleFolder(PluginState& plugin);

// The one instance of the process.
extern PluginState gPlugin;
