#include "plugin/host_events.h"

void serverConnectionChanged(std::atomic<std::uint64_t>& currentServer, TalkTracker& talk, std::uint64_t schid,
                             std::uint64_t nowMs) {
    currentServer = schid;
    if (schid == 0) resetTalk(talk, nowMs);
}

void connectStatusChanged(std::atomic<std::uint64_t>& currentServer, TalkTracker& talk, const HostFunctions& host,
                          std::uint64_t schid, int newStatus, std::uint64_t nowMs) {
    if (newStatus == kStatusEstablished && currentServer == 0 && host.getCurrentServerConnectionHandlerID) {
        std::uint64_t none = 0;
        currentServer.compare_exchange_strong(none, host.getCurrentServerConnectionHandlerID());
    }
    if (newStatus != kStatusDisconnected) return;
    std::uint64_t current = schid;
    currentServer.compare_exchange_strong(current, 0);
    resetTalk(talk, nowMs);
}

void clientMoved(TalkTracker& talk, std::uint64_t schid, std::uint16_t clientId, std::uint64_t newChannel,
                 std::uint64_t nowMs) {
    if (newChannel == 0) forgetClient(talk, schid, clientId, nowMs);
}
