// host_table.h - the voice client's function table as it hands it over: 210 pointers, called by position.
#pragma once
#include "base/host_functions.h"

inline constexpr int kHostFunctionCount = 210;

// By value across the plugin boundary; copied verbatim. Any entry may be null.
struct HostFunctionTable {
    void (*entries[kHostFunctionCount])() = {};
};
static_assert(sizeof(HostFunctionTable) == 1680);  // 210 pointers of 8 bytes

// Positions in the table, counted from 0 (plugin interface version 23).
enum HostPosition {
    kFreeMemoryPosition = 5,
    kLogMessagePosition = 6,
    kPlayWaveFilePosition = 28,
    kRequestClientMovePosition = 48,
    kGetClientIdPosition = 73,
    kGetClientSelfVariableAsIntPosition = 74,
    kGetChannelOfClientPosition = 83,
    kGetChannelVariableAsStringPosition = 86,
    kGetChannelListPosition = 93,
    kGetCurrentServerConnectionHandlerIdPosition = 183,
    kCreateReturnCodePosition = 191,
};

// [host] The functions that we call, null where the table has null.
HostFunctions resolveHostFunctions(const HostFunctionTable& table);
