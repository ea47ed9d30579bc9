#include "plugin/host_table.h"

namespace {

template <class Function>
void take(const HostFunctionTable& table, HostPosition position, Function*& function) {
    function = reinterpret_cast<Function*>(table.entries[position]);
}

}  // namespace

HostFunctions resolveHostFunctions(const HostFunctionTable& table) {
    HostFunctions host;
    take(table, kFreeMemoryPosition, host.freeMemory);
    take(table, kLogMessagePosition, host.logMessage);
    take(table, kPlayWaveFilePosition, host.playWaveFile);
    take(table, kRequestClientMovePosition, host.requestClientMove);
    take(table, kGetClientIdPosition, host.getClientID);
    take(table, kGetClientSelfVariableAsIntPosition, host.getClientSelfVariableAsInt);
    take(table, kGetChannelOfClientPosition, host.getChannelOfClient);
    take(table, kGetChannelVariableAsStringPosition, host.getChannelVariableAsString);
    take(table, kGetChannelListPosition, host.getChannelList);
    take(table, kGetCurrentServerConnectionHandlerIdPosition, host.getCurrentServerConnectionHandlerID);
    take(table, kCreateReturnCodePosition, host.createReturnCode);
    return host;
}
