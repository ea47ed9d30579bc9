#include "plugin/settings_dialog_win.h"
#include <system_error>
#include "base/log_line.h"
#include "plugin/lifecycle_win.h"
#include "plugin/message_receipt_win.h"

namespace {

// A window that is closed takes some milliseconds, but two seconds under Wine on a screen without a window manager.
constexpr int kHostDialogWaitMs = 3000;

void preview(PluginState& plugin) {
    playTextAlert(plugin);
    // Whatever text_auto_open says: on the newest page when it opens, in front when it is open.
    requestOfMessageWindow(plugin.messageWindow, kShowNewestMessage);
    requestOfMessageWindow(plugin.messageWindow, kShowMessages);
}

void runOnOwnThread(PluginState& plugin) {
    try {
        runSettingsDialogHere(plugin);
    } catch (const std::bad_alloc&) {
        // No memory for a dialog: none.
    }
    plugin.settingsRunning = false;
}

}  // namespace

void openSettingsDialog(PluginState& plugin) {
    if (showOpenDialog(plugin.dialog) || plugin.settingsRunning.exchange(true)) return;
    plugin.settingsThread.join();  // one whose dialog has gone
    try {
        plugin.settingsThread.start([&plugin] { runOnOwnThread(plugin); });
    } catch (const std::system_error& error) {
        plugin.settingsRunning = false;
        logToHost(plugin.host, "Corvalis cannot start its settings thread (error " +
                                   std::to_string(error.code().value()) + "); going on without it");
    }
}

void runSettingsDialogHere(PluginState& plugin) {
    runSettingsDialog({plugin.module, plugin.clock, plugin.host, plugin.settings, plugin.sim, plugin.messages,
                       plugin.languageIndex, plugin.dialog, [&plugin] { preview(plugin); }},
                      [&plugin] { loadSettingsOnce(plugin); });
}

void closeSettingsDialog(PluginState& plugin) {
    plugin.dialog.slot.close();
    if (const HWND window = plugin.dialog.window) PostMessageA(window, WM_CLOSE, 0, 0);
    plugin.settingsThread.join();
    plugin.dialog.slot.waitUntilFree(kHostDialogWaitMs);
    plugin.dialog.slot.reopen();
}
