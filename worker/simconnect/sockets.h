// sockets.h - the few socket calls that a TCP connection needs; none blocks except lookUp.
// tcp_win.cpp has them for Windows, tcp_posix.cpp for everything else.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>
#include "worker/host_port.h"

namespace simconnect {

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

enum class SocketProgress { kPending, kReady, kFailed };
enum class ConnectProgress { kPending, kReady, kRefused, kFailed };  // Refused: somebody is there, but nobody listens

// One TCP connection; closed when it goes. Does not delay small packets.
class Socket {
  public:
    Socket() = default;
    ~Socket() { close(); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    // Pending unless it has failed already.
    ConnectProgress startConnect(const NetAddress& address);
    ConnectProgress connectProgress();
    // Pending: nothing now; Ready: count bytes, more than 0; Failed: the connection is over.
    SocketProgress receive(std::span<std::uint8_t> into, std::size_t& count);
    SocketProgress send(std::span<const std::uint8_t> bytes, std::size_t& count);
    void close();
    void* wakeHandle() const;

  private:
    std::intptr_t handle_ = -1;
    void* event_ = nullptr;  // Windows: what the socket signals
};

}  // namespace simconnect
