// exports_win.cpp - the functions the host calls, one or two lines each. Their names are listed in corvalis.def; no
// exception leaves them.
#include <cstdlib>
#include <cstring>
#include "audio/voice_threads_win.h"
#include "base/identity.h"
#include "plugin/host_events.h"
#include "plugin/lifecycle_win.h"
#include "plugin/menu_win.h"
#include "plugin/message_receipt_win.h"
#include "plugin/settings_dialog_win.h"
#ifdef __GLIBCXX__
#include "plugin/runtime_threads_win.h"
#endif

PluginState gPlugin;

#ifdef __GLIBCXX__
// From the C++ library, which is linked into this DLL: frees the 70 KB it reserves for exceptions when memory runs out.
// No header declares it; nothing may throw afterwards.
namespace __gnu_cxx {
void __freeres();  // NOLINT(bugprone-reserved-identifier): its own name
}
#endif

namespace {

// What the C and C++ libraries inside this DLL need at load and at unload.
void openRuntime([[maybe_unused]] HINSTANCE module) {
#ifdef __GLIBCXX__
    DisableThreadLibraryCalls(module);  // other libraries need the calls to free what they keep per thread
#endif
}

void closeRuntime() {
#ifdef __GLIBCXX__
    closeRuntimeThreads();
    __gnu_cxx::__freeres();
#endif
}

// Runs body; whatever it throws (mostly out of memory) ends here, and the host goes on.
template <class Body>
void guarded(Body body) noexcept {
    try {
        body();
    } catch (...) {
        if (gPlugin.host.logMessage)
            gPlugin.host.logMessage("Corvalis: an event could not be handled", kLogInformation, kLogChannel, 0);
    }
}

char* copyText(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(std::malloc(size));
    if (copy) std::memcpy(copy, text, size);
    return copy;
}

}  // namespace

extern "C" {

const char* ts3plugin_name() {
    return kPluginName;
}
const char* ts3plugin_version() {
    return kPluginVersion;
}
int ts3plugin_apiVersion() {
    guarded([] { answerHost(gPlugin); });
    return gPlugin.hostInterface.version;
}
const char* ts3plugin_author() {
    return kPluginAuthor;
}
const char* ts3plugin_description() {
    return kPluginDescription;
}
int ts3plugin_offersConfigure() {
    return 1;
}  // on a new thread of the host
int ts3plugin_requestAutoload() {
    return 1;
}
void ts3plugin_freeMemory(void* memory) {
    std::free(memory);
}

void ts3plugin_setFunctionPointers(HostFunctionTable table) {
    gPlugin.hostTable = table;
    gPlugin.host = resolveHostFunctions(table);
}

void ts3plugin_registerPluginID(const char* id) {
    if (!id) return;
    std::free(gPlugin.pluginId);
    gPlugin.pluginId = copyText(id);
}

int ts3plugin_init() {
    guarded([] { startPlugin(gPlugin); });
    return 0;
}

void ts3plugin_shutdown() {
    guarded([] { stopPlugin(gPlugin); });
}

void ts3plugin_initMenus(PluginMenuItem*** menuItems, char** /*menuIcon*/) {
    guarded([=] { *menuItems = buildMenu(gPlugin); });
}

void ts3plugin_onMenuItemEvent(std::uint64_t /*schid*/, int /*type*/, int menuItemId, std::uint64_t /*selected*/) {
    guarded([=] { chooseMenuEntry(gPlugin, menuItemId); });
}

void ts3plugin_currentServerConnectionChanged(std::uint64_t schid) {
    guarded([=] { serverConnectionChanged(gPlugin.currentServer, gPlugin.talk, schid, gPlugin.clock.tickMs()); });
}

void ts3plugin_onConnectStatusChangeEvent(std::uint64_t schid, int newStatus, unsigned /*error*/) {
    guarded([=] {
        connectStatusChanged(gPlugin.currentServer, gPlugin.talk, hostWhileRunning(gPlugin), schid, newStatus,
                             gPlugin.clock.tickMs());
    });
}

int ts3plugin_onServerErrorEvent(std::uint64_t /*schid*/, const char* /*message*/, unsigned error,
                                 const char* returnCode, const char* /*extra*/) {
    return onServerError(gPlugin.moves, returnCode, static_cast<std::int32_t>(error)) ? 1 : 0;
}

void ts3plugin_onClientMoveEvent(std::uint64_t schid, std::uint16_t clientId, std::uint64_t /*oldChannel*/,
                                 std::uint64_t newChannel, int /*visibility*/, const char* /*message*/) {
    guarded([=] { clientMoved(gPlugin.talk, schid, clientId, newChannel, gPlugin.clock.tickMs()); });
}

void ts3plugin_onTalkStatusChangeEvent(std::uint64_t schid, int status, int /*whisper*/, std::uint16_t clientId) {
    guarded([=] { talkChanged(gPlugin.talk, schid, clientId, status == 1, gPlugin.clock.tickMs()); });
}

void ts3plugin_onEditCapturedVoiceDataEvent(std::uint64_t /*schid*/, short* samples, int sampleCount, int channels,
                                            int* edited) {
    editCapturedVoiceHere(loadVoiceControls(gPlugin.settings, gPlugin.voice), samples, sampleCount, channels, edited);
}

void ts3plugin_onEditPlaybackVoiceDataEvent(std::uint64_t schid, std::uint16_t clientId, short* samples,
                                            int sampleCount, int channels) {
    editPlaybackVoiceHere(loadVoiceControls(gPlugin.settings, gPlugin.voice), speakerKey(schid, clientId), samples,
                          sampleCount, channels);
}

// Always 0: the host shows the message as well.
int ts3plugin_onTextMessageEvent(std::uint64_t /*schid*/, std::uint16_t targetMode, std::uint16_t /*toId*/,
                                 std::uint16_t fromId, const char* fromName, const char* /*fromUniqueId*/,
                                 const char* message, int /*ignored*/) {
    guarded([=] { receiveTextMessage(gPlugin, {fromName, message, targetMode, fromId}); });
    return 0;
}

// On a thread that the host makes for it; returns when the dialog is closed.
void ts3plugin_configure(void* /*handle*/, void* /*parentWidget*/) {
    guarded([] { runSettingsDialogHere(gPlugin); });
}

}  // extern "C"

// Runs under the loader lock: remembers which module this is, and takes and gives back the slot of the audio threads.
// When the process ends (processEnds) its other threads and the heap may be in any state: nothing is freed.
BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_ATTACH) {
        gPlugin.module = module;
        openRuntime(module);
        openVoiceThreads();
    }
    if (reason == DLL_PROCESS_DETACH && !processEnds) {
        closeVoiceThreads();
        closeRuntime();
    }
    return TRUE;
}
