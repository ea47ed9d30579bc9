#include "plugin/settings_dialog_win.h"
#include "base/log_line.h"
#include "plugin/lifecycle_win.h"
#include "plugin/message_receipt_win.h"

namespace {

constexpr const char* kSampleSender = "Beijing Control";
constexpr const char* kSampleText =
    "PDC 2026-09-28 ZBAA\n"
    "CLR TO ZSPD VIA ELKUR W40 YQO\n"
    "INITIAL CLB 3000M\n"
    "SQUAWK 4312\n"
    "DEP RWY 36L\n"
    "WHEN READY CONTACT 121.600";

// Closing a window takes some milliseconds. A host whose thread hangs in our dialog must still end.
constexpr int kHostDialogWaitMs = 1000;

void preview(PluginState& plugin) {
    const std::uint32_t sample =
        addMessage(plugin.messages, kSampleSender, kSampleText, kPrivateMessage, 0, plugin.clock.tickMs());
    playTextAlert(plugin);
    // Regardless of text_auto_open, and whatever else has arrived since.
    requestOfMessageWindow(plugin.messageWindow, kShowMessage, sample);
}

LiveRadio liveRadioOf(const SimState& sim, std::int32_t com) {
    LiveRadio live;
    live.isConnected = sim.connected;
    live.readTickMs = sim.readTick;
    live.reason = reasonText(sim.reason);
    if (const RadioReading* radio = radioOf(sim, com)) {
        live.isKnown = true;
        live.activeKHz = radio->active;
        live.volume = radio->volume;
    }
    return live;
}

void runOnOwnThread(PluginState& plugin) noexcept {
    try {
        runSettingsDialogHere(plugin);
    } catch (...) {
        // Mostly no memory: no dialog.
    }
    plugin.settingsRunning = false;
}

}  // namespace

void openSettingsDialog(PluginState& plugin) {
    if (showOpenDialog(plugin.dialog) || plugin.settingsRunning.exchange(true)) return;
    plugin.settingsThread.join();  // the previous one, whose dialog has gone
    const int error = plugin.settingsThread.start([&plugin] { runOnOwnThread(plugin); });
    if (error == 0) return;
    plugin.settingsRunning = false;
    logMissingThread(plugin.host, "settings", error);
}

void runSettingsDialogHere(PluginState& plugin) {
    const DialogContext context{
        .module = plugin.module,
        .clock = plugin.clock,
        .settings = plugin.settings,
        .languageIndex = plugin.languageIndex,
        .link = plugin.dialog,
        .prepare = [&plugin] { loadSettingsOnce(plugin); },
        .liveRadio = [&plugin](std::int32_t com) { return liveRadioOf(copySimState(plugin.radios.sim), com); },
        .previewMessages = [&plugin] { preview(plugin); },
        .clearMessages = [&plugin] { clearMessages(plugin.messages); },
        .logCommit = [&plugin](std::string_view line) { logToHost(plugin.host, line); },
    };
    runSettingsDialog(context);
}

void closeSettingsDialog(PluginState& plugin) {
    if (const HWND window = plugin.dialog.window) PostMessageA(window, WM_CLOSE, 0, 0);
    plugin.settingsThread.join();
    plugin.dialog.slot.waitUntilFree(kHostDialogWaitMs);
}
