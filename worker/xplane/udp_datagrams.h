// udp_datagrams.h - the sockets behind Datagrams: one for the beacon, which all programs of a computer share, and one
// of our own for all else. udp_win.cpp has the calls for Windows, udp_posix.cpp for everything else.
#pragma once
#include <array>
#include <utility>
#include <vector>
#include "worker/net_address.h"
#include "worker/xplane/datagrams.h"

namespace xplane {

// From where we ask, if nobody else has the port. A worker that is killed cannot stop X-Plane's answers; the next one
// takes them over by asking from the same place, and they do not grow in number.
inline constexpr std::uint16_t kOwnPort = 47'330;

// One UDP socket, IPv4; closed when it goes.
class UdpSocket {
  public:
    UdpSocket() = default;
    ~UdpSocket() { close(); }
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    bool isOpen() const { return handle_ != -1; }
    // Bound to that address (0 = any) and port (0 = one that is free), which isShared others may have as well; signals
    // the event, where there is one. 0, or the system's number of the error; then it is closed.
    std::uint32_t open(const Endpoint& at, bool isShared, void* event);
    void close();
    // Takes part in the group on the network that this address of ours belongs to.
    void join(std::uint32_t group, std::uint32_t ownAddress);
    std::optional<Received> receive(std::span<std::uint8_t> into);
    bool send(const Endpoint& to, std::span<const std::uint8_t> datagram);

  private:
    std::intptr_t handle_ = -1;
};

// What the sockets signal, and a wait that it ends takes back; on the build machine there is none.
class SocketEvent {
  public:
    SocketEvent();
    ~SocketEvent();  // NOLINT(performance-trivially-destructible): not on Windows
    SocketEvent(const SocketEvent&) = delete;
    SocketEvent& operator=(const SocketEvent&) = delete;
    void* handle() const { return handle_; }

  private:
    void* handle_ = nullptr;
};

// This computer's addresses, 127.0.0.1 among them.
std::vector<std::uint32_t> ownAddresses();

class UdpDatagrams : public Datagrams {
  public:
    // beacon: the group that it is sent to, or an address of this computer.
    explicit UdpDatagrams(const Endpoint& beacon = kBeaconGroup) : beacon_(beacon) {}

    bool listen() override;
    std::uint32_t problem() const override { return problem_; }
    std::optional<Received> receiveBeacon(std::span<std::uint8_t> into) override;
    std::optional<Received> receiveAnswer(std::span<std::uint8_t> into) override;
    bool send(const Endpoint& to, std::span<const std::uint8_t> datagram) override;
    void closeOurs() override { ours_.close(); }
    bool isHere(std::uint32_t address) override;
    void* wakeHandle() const override;

  private:
    bool openOurs();

    Endpoint beacon_;
    Sockets sockets_;  // outlives the others
    SocketEvent event_;
    UdpSocket beaconSocket_;
    UdpSocket ours_;
    std::uint32_t problem_ = 0;
    std::optional<std::pair<std::uint32_t, bool>> lastAsked_;  // whether that address is here
};

}  // namespace xplane
