#include "tests/client/plugin_library_win.h"
#include <windows.h>
#include "tests/client/host_model.h"
#include "tests/client/new_client_win.h"

template <class Function>
bool PluginLibrary::resolve(const char* name, Function*& function) {
    const FARPROC address = GetProcAddress(static_cast<HMODULE>(module_), name);
    function = reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
    if (!function) error_ += std::string("no export ") + name + "; ";
    return function != nullptr;
}

bool PluginLibrary::load(const std::filesystem::path& file) {
    unload();
    error_.clear();
    module_ = LoadLibraryW(file.c_str());
    if (!module_) {
        error_ = "LoadLibrary failed with " + std::to_string(GetLastError());
        return false;
    }
    PluginExports& e = exports_;
    resolve("ts3plugin_name", e.name);
    resolve("ts3plugin_version", e.version);
    resolve("ts3plugin_apiVersion", e.apiVersion);
    resolve("ts3plugin_author", e.author);
    resolve("ts3plugin_description", e.description);
    resolve("ts3plugin_setFunctionPointers", e.setFunctionPointers);
    resolve("ts3plugin_registerPluginID", e.registerPluginID);
    resolve("ts3plugin_offersConfigure", e.offersConfigure);
    resolve("ts3plugin_requestAutoload", e.requestAutoload);
    resolve("ts3plugin_freeMemory", e.freeMemory);
    resolve("ts3plugin_init", e.init);
    resolve("ts3plugin_shutdown", e.shutdown);
    resolve("ts3plugin_configure", e.configure);
    resolve("ts3plugin_initMenus", e.initMenus);
    resolve("ts3plugin_onMenuItemEvent", e.onMenuItemEvent);
    resolve("ts3plugin_currentServerConnectionChanged", e.currentServerConnectionChanged);
    resolve("ts3plugin_onConnectStatusChangeEvent", e.onConnectStatusChangeEvent);
    resolve("ts3plugin_onServerErrorEvent", e.onServerErrorEvent);
    resolve("ts3plugin_onClientMoveEvent", e.onClientMoveEvent);
    resolve("ts3plugin_onTalkStatusChangeEvent", e.onTalkStatusChangeEvent);
    resolve("ts3plugin_onEditCapturedVoiceDataEvent", e.onEditCapturedVoiceDataEvent);
    resolve("ts3plugin_onEditPlaybackVoiceDataEvent", e.onEditPlaybackVoiceDataEvent);
    resolve("ts3plugin_onTextMessageEvent", e.onTextMessageEvent);
    return error_.empty();
}

void PluginLibrary::unload() {
    if (module_) FreeLibrary(static_cast<HMODULE>(module_));
    module_ = nullptr;
    exports_ = {};
}

bool PluginLibrary::introduce(const HostModel& host) {
    const int version = exports_.apiVersion();
    if (!takesInterface(version)) {
        error_ = "this client does not take interface version " + std::to_string(version);
        return false;
    }
    if (isNewClient()) {
        using TakeTable = void (*)(NewHostFunctionTable);
        reinterpret_cast<TakeTable>(reinterpret_cast<void*>(exports_.setFunctionPointers))(host.newTable());
    } else {
        exports_.setFunctionPointers(host.table());
    }
    return true;
}

std::vector<HostMenuItem> PluginLibrary::takeMenus() const {
    std::vector<HostMenuItem> menus;
    HostMenuItem** items = nullptr;
    char* icon = nullptr;
    exports_.initMenus(&items, &icon);
    for (HostMenuItem** item = items; item && *item; item++) {
        menus.push_back(**item);
        exports_.freeMemory(*item);
    }
    if (items) exports_.freeMemory(items);
    if (icon) exports_.freeMemory(icon);
    return menus;
}

int PluginLibrary::deliver(const HostEvent& event) const {
    switch (event.kind) {
        case HostEventKind::kClientMove:
            exports_.onClientMoveEvent(event.schid, event.clientId, event.oldChannelId, event.newChannelId, 0, "");
            return 0;
        case HostEventKind::kServerError:
            return exports_.onServerErrorEvent(event.schid, "", event.error,
                                               event.returnCode ? event.returnCode->c_str() : nullptr, "");
        case HostEventKind::kTalkStatus:
            exports_.onTalkStatusChangeEvent(event.schid, event.talkStatus, 0, event.clientId);
            return 0;
    }
    return 0;
}

int PluginLibrary::deliver(const HostTextMessage& message) const {
    return exports_.onTextMessageEvent(message.schid, message.targetMode, message.toClientId, message.fromClientId,
                                       message.fromName.c_str(), message.fromUniqueId.c_str(), message.message.c_str(),
                                       message.ignored);
}
