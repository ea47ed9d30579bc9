// net_address.h - the addresses of a computer on the network, and what makes sockets usable at all.
// net_win.cpp has it for Windows, net_posix.cpp for everything else.
#pragma once
#include <array>
#include <cstddef>
#include <vector>
#include "worker/host_port.h"

// The system's own form of an address with its port.
struct NetAddress {
    alignas(8) std::array<std::byte, 128> bytes{};
    std::size_t length = 0;
    int family = 0;

    bool operator==(const NetAddress&) const = default;
};

// Makes sockets usable in this process for as long as it lives.
class Sockets {
  public:
    Sockets();
    ~Sockets();  // NOLINT(performance-trivially-destructible): not on Windows
    Sockets(const Sockets&) = delete;
    Sockets& operator=(const Sockets&) = delete;
};

// [any] The addresses of the host, in the order to try them. With literalOnly a name gives none and nothing blocks;
// otherwise the network is asked, which may take many seconds.
std::vector<NetAddress> lookUp(const HostPort& address, bool literalOnly);
