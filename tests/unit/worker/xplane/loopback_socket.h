// loopback_socket.h - the other side of our datagrams: one socket on this computer's loopback.
#pragma once
#include <chrono>
#include "worker/xplane/udp_datagrams.h"

inline constexpr std::uint32_t kLocalhost = 0x7F000001;

// On a port that was free, in a process where sockets are usable.
struct LoopbackSocket {
    LoopbackSocket() {
        // Not where others begin to look, nor where the system takes its own from.
        const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
        port = static_cast<std::uint16_t>(20'000 + ticks / 128 % 10'000);
        for (; port < 32'000 && socket.open({kLocalhost, port}, false, nullptr) != 0; port++) {
        }
    }

    Sockets sockets;
    xplane::UdpSocket socket;
    std::uint16_t port = 0;
};

// A port that nobody has just now.
inline std::uint16_t freePort() {
    return LoopbackSocket().port;
}
