// sockets.h - the sockets of a stand-in X-Plane on this computer: the one that it listens on and answers from, one of a
// stranger (127.0.0.2 if it is 127.0.0.1), and one for the beacon. All stay within this computer: bound to a loopback
// address, and so is whatever they send. One thread; only wait() blocks, and wake() may come from another thread.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>
#include "tests/xplane/rough_network.h"

namespace xstandin {

inline constexpr std::uint32_t kLoopback = 0x7F000001U;       // 127.0.0.1
inline constexpr Endpoint kBeaconGroup{0xEFFF0101U, 49'707};  // 239.255.1.1
inline constexpr std::uint16_t kUsualPort = 49'000;

class Sockets {
  public:
    virtual ~Sockets() = default;

    // Listens there; port 0 takes a free one. Returns 0 if it cannot be had.
    virtual std::uint16_t open(const Endpoint& own) = 0;
    // Where the beacon goes: a group, or one place; none with port 0.
    virtual void announceTo(const Endpoint& whom) = 0;
    // While unreachable, nobody has the port.
    virtual void setReachable(bool reachable) = 0;

    // What has arrived, after at most timeoutMs.
    virtual std::vector<Datagram> wait(std::uint64_t timeoutMs) = 0;
    virtual void wake() = 0;

    // At once, or not at all.
    virtual void send(const Datagram& datagram) = 0;
};

std::unique_ptr<Sockets> makeSockets();

// "127.0.0.1:49000". False for anything else.
bool parseEndpoint(const char* text, Endpoint& endpoint);

}  // namespace xstandin
