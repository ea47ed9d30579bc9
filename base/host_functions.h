// host_functions.h - the voice client's functions that we call, typed; an entry the host did not supply is null, and
// every caller checks first. Filled once before init (plugin/host_table.h), read from all threads afterwards.
#pragma once
#include <cstddef>
#include <cstdint>

inline constexpr int kLogInformation = 4;               // logMessage severity
inline constexpr const char* kLogChannel = "Corvalis";  // logMessage channel
inline constexpr std::size_t kChannelName = 0;          // channel variable CHANNEL_NAME
inline constexpr std::size_t kClientFlagTalking = 4;    // client variable CLIENT_FLAG_TALKING

// Unless noted, a function returns an error code; 0 is success.
struct HostFunctions {
    unsigned (*freeMemory)(void* memory) = nullptr;
    unsigned (*logMessage)(const char* text, int severity, const char* channel, std::uint64_t logId) = nullptr;
    unsigned (*playWaveFile)(std::uint64_t schid, const char* path) = nullptr;
    unsigned (*requestClientMove)(std::uint64_t schid, std::uint16_t clientId, std::uint64_t channelId,
                                  const char* password, const char* returnCode) = nullptr;
    unsigned (*getClientID)(std::uint64_t schid, std::uint16_t* clientId) = nullptr;
    unsigned (*getClientSelfVariableAsInt)(std::uint64_t schid, std::size_t flag, int* value) = nullptr;
    unsigned (*getChannelOfClient)(std::uint64_t schid, std::uint16_t clientId, std::uint64_t* channelId) = nullptr;
    unsigned (*getChannelVariableAsString)(std::uint64_t schid, std::uint64_t channelId, std::size_t flag,
                                           char** text) = nullptr;
    unsigned (*getChannelList)(std::uint64_t schid, std::uint64_t** channelIds) = nullptr;  // ended by a 0
    std::uint64_t (*getCurrentServerConnectionHandlerID)() = nullptr;                       // returns the id, 0 = none
    void (*createReturnCode)(const char* pluginId, char* buffer, std::size_t maxLength) = nullptr;
};
