#include "plugin/lifecycle_win.h"
#include <cstdlib>
#include <optional>
#include "audio/tones.h"
#include "base/code_page_win.h"
#include "base/data_folder_win.h"
#include "base/identity.h"
#include "base/log_line.h"
#include "bridge/poll_loop.h"
#include "exchange/command_text.h"
#include "panel/panel_window_win.h"
#include "plugin/host_program_win.h"
#include "plugin/settings_dialog_win.h"
#include "plugin/try_twice.h"
#include "plugin/ui_thread_win.h"
#include "settings/language.h"

namespace {

// What went wrong with the folder and the settings file; goes into the log behind the line "Corvalis loaded".
struct FileTroubles {
    std::string folderName;         // of the data folder, as that line has it; may be relative
    std::uint32_t folderError = 0;  // the data folder is not there and cannot be made
    SettingsLoad settings;
};

FileTroubles findFilesAndLoad(PluginState& plugin) REQUIRES(plugin.foldersMutex) {
    FileTroubles troubles;
    troubles.folderName = findDataFolder();
    troubles.folderError = createDataFolder(troubles.folderName);
    // The same folder when somebody changes the working folder later. Only one that is there may have a short name.
    plugin.dataFolder = fullPath(troubles.folderName);
    plugin.moduleFolder = findModuleFolder();
    setSettingsFolders(plugin.settings, plugin.dataFolder, plugin.moduleFolder);
    troubles.settings = loadSettings(plugin.settings);
    return troubles;
}

void tellFileTroubles(PluginState& plugin, const FileTroubles& troubles) {
    const std::string folder = copyDataFolder(plugin);
    if (troubles.folderName == kFallbackDataFolder)
        logToHost(plugin.host, "Corvalis cannot use APPDATA: its data folder is " + utf8FromNarrow(folder) +
                                   ", below the working folder");
    if (troubles.folderError != 0)
        logToHost(plugin.host, "Corvalis cannot make its data folder (error " + std::to_string(troubles.folderError) +
                                   "): " + utf8FromNarrow(folder));
    const std::string line = unreadSettingsLine(troubles.settings);
    if (!line.empty()) logToHost(plugin.host, line);
}

void removeOldTemporariesOfOurs(const std::string& folder) {
    for (const char* name : {kSettingsFile, kCommandFile, kTailFile, kAlertFile, kHostAnswerFile, kLinkStateFile})
        removeOldTemporaries(folder, name);
}

void writeSounds(PluginState& plugin) {
    const std::string folder = copyDataFolder(plugin);
    plugin.tailTonePath = joinPath(folder, kTailFile);
    plugin.files.replace(plugin.tailTonePath, wavFileOf(synthesizeTail()));
    plugin.files.replace(joinPath(folder, kAlertFile), wavFileOf(synthesizeAlert()));
}

void askHost(PluginState& plugin) {
    if (plugin.host.getCurrentServerConnectionHandlerID)
        plugin.currentServer = plugin.host.getCurrentServerConnectionHandlerID();
    // A move requested before an earlier shutdown cannot be answered under the new return code.
    plugin.moves.pendingChannel = 0;
    plugin.moves.moveReturnCode.clear();
    if (!plugin.host.createReturnCode || !plugin.pluginId) return;
    char code[256] = {};
    plugin.host.createReturnCode(plugin.pluginId, code, sizeof code);
    code[sizeof code - 1] = '\0';
    plugin.moves.moveReturnCode = code;
}

void logLoaded(PluginState& plugin, const std::string& folderName) {
    const auto tail =
        plugin.tailTonePath.empty() ? std::string("(none)") : utf8FromNarrow(joinPath(folderName, kTailFile));
    logToHost(plugin.host, "Corvalis loaded: version=" + std::string(kPluginVersion) +
                               " dll=" + utf8FromNarrow(joinPath(copyModuleFolder(plugin), kDllName)) +
                               " dataDir=" + utf8FromNarrow(folderName) + " tailTone=" + tail);
}

// In the log, and in a file that the report for support shows.
void tellHostInterface(PluginState& plugin) {
    const std::string line = hostInterfaceLine(plugin.hostInterface);
    logToHost(plugin.host, "Corvalis " + line);
    plugin.files.replace(joinPath(copyDataFolder(plugin), kHostAnswerFile), line + "\r\n");
}

// All that the poll thread works with.
class Polling {
  public:
    explicit Polling(PluginState& plugin)
        : tails_{.host = plugin.host,
                 .settings = plugin.settings,
                 .clock = plugin.clock,
                 .tailPath = utf8FromNarrow(plugin.tailTonePath),
                 .throttle = {}},
          context_{
              .host = plugin.host,
              .files = plugin.files,
              .clock = plugin.clock,
              .dataFolder = copyDataFolder(plugin),
              .processId = GetCurrentProcessId(),
              .currentServer = plugin.currentServer,
              .settings = plugin.settings,
              .radios = plugin.radios,
              .moves = plugin.moves,
              .talk = plugin.talk,
              .tails = tails_,
              .voice = plugin.voice,
              .lookAtWorker = [&plugin] { return lookAtWorker(plugin.worker); },
          } {}
    void pass() { pollOnce(memory_, context_); }

  private:
    TailPlayer tails_;
    PollContext context_;
    PollMemory memory_;
};

void runPollThread(PluginState& plugin) noexcept {
    std::optional<Polling> polling;
    while (!plugin.stopPolling) {
        tryPass(plugin.radios, [&] {
            if (!polling) polling.emplace(plugin);
            polling->pass();
        });
        Sleep(kPollPeriodMs);
    }
    finishPolling(plugin.voice);
}

template <class Body>
void startThread(PluginState& plugin, ThreadSlot& slot, std::atomic<bool>& stop, const char* name, const Body& body) {
    const int error = startWithStopFlag(slot, stop, body);
    if (error != 0) logMissingThread(plugin.host, name, error);
}

void startPollThread(PluginState& plugin) {
    startThread(plugin, plugin.pollThread, plugin.stopPolling, "poll", [&plugin] { runPollThread(plugin); });
}

void stopPollThread(PluginState& plugin) {
    plugin.stopPolling = true;
    plugin.pollThread.join();
}

void startUiThread(PluginState& plugin) {
    if (plugin.uiThread.isRunning()) return;
    startThread(plugin, plugin.uiThread, plugin.stopUi, "UI", [&plugin] { runUiThread(plugin); });
}

void stopUiThread(PluginState& plugin) {
    plugin.stopUi = true;
    if (const HWND panel = plugin.panel_window) PostMessageW(panel, WM_CLOSE, kCloseByShutdown, 0);
    plugin.uiThread.join();
}

// Neither lit, nor played, nor shown, nor sent to the aircraft any more after a new start.
void forgetSession(PluginState& plugin) {
    clearMessages(plugin.messages);
    forgetAllTalk(plugin.talk, plugin.clock.tickMs());
    forgetRadios(plugin.radios);
}

void startOnce(PluginState& plugin) {
    if (!plugin.running) forgetSession(plugin);  // what the host has told us before
    stopPollThread(plugin);                      // on a second start its folders and host handles are about to change
    // They are about to be read again, and only one of the two waits for whoever holds the file.
    savePendingSettings(plugin.settings, 0);
    FileTroubles troubles;
    {
        const MutexLock lock(plugin.foldersMutex);
        troubles = findFilesAndLoad(plugin);
    }
    plugin.dialog.slot.reopen();
    removeOldTemporariesOfOurs(copyDataFolder(plugin));
    writeSounds(plugin);
    const Settings settings = copySettings(plugin.settings);
    plugin.languageIndex = chooseLanguage(settings.language, GetUserDefaultUILanguage());
    askHost(plugin);
    logLoaded(plugin, troubles.folderName);
    tellHostInterface(plugin);
    tellFileTroubles(plugin, troubles);
    applySettings(plugin.settings);
    startWorker(plugin.worker, plugin.host, copyModuleFolder(plugin), copyDataFolder(plugin), settings.python);
    startPollThread(plugin);
    startUiThread(plugin);
    plugin.running = true;
}

void stopOnce(PluginState& plugin) {
    plugin.running = false;
    plugin.dialog.slot.close();  // from here on no dialog opens
    stopUiThread(plugin);
    stopPollThread(plugin);
    stopWorker(plugin.worker);
    closeSettingsDialog(plugin);
    savePendingSettings(plugin.settings);
    forgetSession(plugin);
    std::free(plugin.pluginId);
    plugin.pluginId = nullptr;
}

}  // namespace

std::string copyDataFolder(PluginState& plugin) {
    const MutexLock lock(plugin.foldersMutex);
    return plugin.dataFolder;
}

std::string copyModuleFolder(PluginState& plugin) {
    const MutexLock lock(plugin.foldersMutex);
    return plugin.moduleFolder;
}

const HostFunctions& hostWhileRunning(const PluginState& plugin) {
    static const HostFunctions kNone;
    return plugin.running ? plugin.host : kNone;
}

void answerHost(PluginState& plugin) {
    plugin.hostInterface = findHostInterface(findHostProgram(), plugin.files, findDataFolder());
}

void startPlugin(PluginState& plugin) {
    tryTwice([&] { startOnce(plugin); });
}

void stopPlugin(PluginState& plugin) {
    tryTwice([&] { stopOnce(plugin); });
}

void loadSettingsOnce(PluginState& plugin) {
    const MutexLock lock(plugin.foldersMutex);
    if (plugin.dataFolder.empty()) findFilesAndLoad(plugin);  // init will do it again, and tell what is wrong
}
