// host_events.h - what the host's connection events change: the current server and who is talking.
// [host] All of them; the current server is one atomic that every thread reads.
#pragma once
#include <atomic>
#include <cstdint>
#include "audio/talk_tracker.h"
#include "base/host_functions.h"

inline constexpr int kStatusDisconnected = 0;  // connect status of the host
inline constexpr int kStatusEstablished = 4;

// The user switched to another server tab; 0 means that none is connected.
void serverConnectionChanged(std::atomic<std::uint64_t>& currentServer, TalkTracker& talk, std::uint64_t schid,
                             std::uint64_t nowMs);

// A connection changed its status. After a disconnect nobody talks any more, and the current server is none if it was
// that one. A connection that comes back in the same tab is announced in no other way: while no server is current, the
// one that the host says is in front becomes so.
void connectStatusChanged(std::atomic<std::uint64_t>& currentServer, TalkTracker& talk, const HostFunctions& host,
                          std::uint64_t schid, int newStatus, std::uint64_t nowMs);

// A client went to another channel; channel 0 means that it left the server.
void clientMoved(TalkTracker& talk, std::uint64_t schid, std::uint16_t clientId, std::uint64_t newChannel,
                 std::uint64_t nowMs);
