// sockets.h - the few socket calls that a TCP connection needs; none blocks.
// tcp_win.cpp has them for Windows, tcp_posix.cpp for everything else.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include "worker/net_address.h"

namespace simconnect {

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
