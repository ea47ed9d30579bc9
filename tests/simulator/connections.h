// connections.h - the connections of a stand-in simulator, as events: TCP everywhere, the named pipe on Windows too.
// One thread; only wait() blocks, and wake() may come from another thread.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

struct ConnectionEvent {
    enum class Kind : std::uint8_t { kOpened, kReceived, kClosed };
    Kind kind = Kind::kOpened;
    int connection = 0;
    std::string bytes;  // of Received
};

enum class Loopback : std::uint8_t { kIPv4, kIPv6 };

class Connections {
  public:
    virtual ~Connections() = default;

    // port 0 takes a free one; returns 0 if the port cannot be had. Only this computer can connect.
    virtual std::uint16_t listenTcp(std::uint16_t port, Loopback loopback) = 0;
    // "Microsoft Flight Simulator\SimConnect". False if there are no such pipes, or if somebody else has this one.
    virtual bool listenPipe(const std::string& name) = 0;
    // While unreachable, the port and the pipe do not exist; existing connections stay.
    virtual void setReachable(bool reachable) = 0;

    // What has happened, after at most timeoutMs.
    virtual std::vector<ConnectionEvent> wait(std::uint64_t timeoutMs) = 0;
    virtual void wake() = 0;

    // In one call to the system. A client that does not read for long is cut off.
    virtual void send(int connection, std::string_view bytes) = 0;
    // What was sent still arrives. No Closed follows.
    virtual void close(int connection) = 0;
};

std::unique_ptr<Connections> makeConnections();

}  // namespace standin
