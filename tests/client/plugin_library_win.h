// plugin_library_win.h - the real plugin DLL, loaded as the voice client loads it: every export with its signature.
#pragma once
#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>
#include "plugin/host_table.h"
#include "tests/client/host_records.h"

// A menu entry as plugin and host exchange it.
struct HostMenuItem {
    std::int32_t type = 0;  // 0 global, 1 channel, 2 client
    std::int32_t id = 0;
    char text[128] = {};  // UTF-8
    char icon[128] = {};
};
static_assert(sizeof(HostMenuItem) == 264);

// Every name the plugin exports, and no other.
inline constexpr std::array kExportNames = {
    "ts3plugin_name",
    "ts3plugin_version",
    "ts3plugin_apiVersion",
    "ts3plugin_author",
    "ts3plugin_description",
    "ts3plugin_setFunctionPointers",
    "ts3plugin_registerPluginID",
    "ts3plugin_offersConfigure",
    "ts3plugin_requestAutoload",
    "ts3plugin_freeMemory",
    "ts3plugin_init",
    "ts3plugin_shutdown",
    "ts3plugin_configure",
    "ts3plugin_initMenus",
    "ts3plugin_onMenuItemEvent",
    "ts3plugin_currentServerConnectionChanged",
    "ts3plugin_onConnectStatusChangeEvent",
    "ts3plugin_onServerErrorEvent",
    "ts3plugin_onClientMoveEvent",
    "ts3plugin_onTalkStatusChangeEvent",
    "ts3plugin_onEditCapturedVoiceDataEvent",
    "ts3plugin_onEditPlaybackVoiceDataEvent",
    "ts3plugin_onTextMessageEvent",
};

// The exports by their names without "ts3plugin_"; null while no library is loaded, or where one is missing.
struct PluginExports {
    const char* (*name)() = nullptr;
    const char* (*version)() = nullptr;
    int (*apiVersion)() = nullptr;
    const char* (*author)() = nullptr;
    const char* (*description)() = nullptr;
    void (*setFunctionPointers)(HostFunctionTable table) = nullptr;
    void (*registerPluginID)(const char* id) = nullptr;
    int (*offersConfigure)() = nullptr;
    int (*requestAutoload)() = nullptr;
    void (*freeMemory)(void* memory) = nullptr;
    int (*init)() = nullptr;
    void (*shutdown)() = nullptr;
    void (*configure)(void* handle, void* qParentWidget) = nullptr;
    void (*initMenus)(HostMenuItem*** items, char** icon) = nullptr;
    void (*onMenuItemEvent)(std::uint64_t schid, int type, int menuItemId, std::uint64_t selectedItemId) = nullptr;
    void (*currentServerConnectionChanged)(std::uint64_t schid) = nullptr;
    void (*onConnectStatusChangeEvent)(std::uint64_t schid, int newStatus, unsigned errorNumber) = nullptr;
    int (*onServerErrorEvent)(std::uint64_t schid, const char* errorMessage, unsigned error, const char* returnCode,
                              const char* extraMessage) = nullptr;
    void (*onClientMoveEvent)(std::uint64_t schid, std::uint16_t clientId, std::uint64_t oldChannelId,
                              std::uint64_t newChannelId, int visibility, const char* moveMessage) = nullptr;
    void (*onTalkStatusChangeEvent)(std::uint64_t schid, int status, int isReceivedWhisper,
                                    std::uint16_t clientId) = nullptr;
    void (*onEditCapturedVoiceDataEvent)(std::uint64_t schid, short* samples, int sampleCount, int channels,
                                         int* edited) = nullptr;
    void (*onEditPlaybackVoiceDataEvent)(std::uint64_t schid, std::uint16_t clientId, short* samples, int sampleCount,
                                         int channels) = nullptr;
    int (*onTextMessageEvent)(std::uint64_t schid, std::uint16_t targetMode, std::uint16_t toId, std::uint16_t fromId,
                              const char* fromName, const char* fromUniqueIdentifier, const char* message,
                              int ffIgnored) = nullptr;
};

class HostModel;

class PluginLibrary {
  public:
    PluginLibrary() = default;
    ~PluginLibrary() { unload(); }
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    // False, with the reason in error(), if the file does not load or lacks an export.
    bool load(const std::filesystem::path& file);
    void unload();  // the code is gone: do not call exports() afterwards
    bool isLoaded() const { return module_ != nullptr; }
    const std::string& error() const { return error_; }
    const PluginExports& exports() const { return exports_; }

    // Asks which interface version the plugin answers and, if this client takes it, hands the table over as this client
    // does (new_client_win.h): by value, 210 entries, or 230. False, with the reason in error(), if it does not.
    bool introduce(const HostModel& host);

    // The menu entries as the host takes them: copies them, then hands each record and the list back to be freed.
    std::vector<HostMenuItem> takeMenus() const;
    // Passes the event to the right export; returns the server-error export's answer, else 0.
    int deliver(const HostEvent& event) const;
    int deliver(const HostTextMessage& message) const;

  private:
    template <class Function>
    bool resolve(const char* name, Function*& function);

    void* module_ = nullptr;  // HMODULE
    std::string error_;
    PluginExports exports_;
};
