// datagrams.h - the way to X-Plane: single datagrams, IPv4, without a connection. One thread, the worker's only one;
// nothing here blocks. udp_datagrams.h has the real one.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include "worker/net_address.h"

namespace xplane {

// An address with a port, both as numbers of this machine: 127.0.0.1 is 0x7F000001.
struct Endpoint {
    std::uint32_t address = 0;
    std::uint16_t port = 0;
    bool operator==(const Endpoint&) const = default;
};

// "192.168.1.20:49000"
std::string endpointText(const Endpoint& endpoint);

// Nothing unless it is four numbers from 0 to 255 with dots.
std::optional<std::uint32_t> parseIpv4(std::string_view text);

// Nothing for an IPv6 address: X-Plane is not known to listen there.
std::optional<Endpoint> endpointOf(const NetAddress& address);

// Where X-Plane's beacon is sent to: a group of computers, on whichever networks there are.
inline constexpr Endpoint kBeaconGroup = {0xEFFF0101U, 49707};  // 239.255.1.1
inline constexpr std::uint16_t kUsualPort = 49000;              // where X-Plane listens unless told otherwise

struct Received {
    std::size_t bytes = 0;  // of a datagram larger than the room for it, its beginning
    Endpoint from;
};

class Datagrams {
  public:
    virtual ~Datagrams() = default;

    // Listens for the beacon, on networks that have come since the last call as well. False with the system's number of
    // the error in problem() if the port cannot be had; may be tried again.
    virtual bool listen() = 0;
    virtual std::uint32_t problem() const = 0;

    // The next datagram that has arrived for the beacon's socket or for ours, up to into.size() bytes of it.
    virtual std::optional<Received> receiveBeacon(std::span<std::uint8_t> into) = 0;
    virtual std::optional<Received> receiveAnswer(std::span<std::uint8_t> into) = 0;

    // From our socket, opened for the first one. True only says that the system has taken it.
    virtual bool send(const Endpoint& to, std::span<const std::uint8_t> datagram) = 0;
    // Closes our socket: nothing of what is still on its way comes any more.
    virtual void closeOurs() = 0;

    // Whether the address is one of this computer's own.
    virtual bool isHere(std::uint32_t address) = 0;

    // Something the system can wait for, signalled once by what arrives on either socket, and once more by what is left
    // when something is taken: an event handle, or null.
    virtual void* wakeHandle() const { return nullptr; }
};

// Sockets that listen for the beacon there.
using MakeDatagrams = std::function<std::unique_ptr<Datagrams>(const Endpoint& beacon)>;

}  // namespace xplane
