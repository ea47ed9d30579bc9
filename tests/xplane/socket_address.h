// socket_address.h - an endpoint as the system's socket calls take it. Include it after the system header that declares
// them, unless that is <netinet/in.h>.
#pragma once
#ifndef _WIN32
#include <netinet/in.h>
#endif
#include "tests/xplane/rough_network.h"

namespace xstandin {

class SocketAddress {
  public:
    explicit SocketAddress(const Endpoint& endpoint = {}) {
        address_.sin_family = AF_INET;
        address_.sin_port = htons(endpoint.port);
        address_.sin_addr.s_addr = htonl(endpoint.address);
    }
    Endpoint endpoint() const { return {ntohl(address_.sin_addr.s_addr), ntohs(address_.sin_port)}; }
    sockaddr* general() { return reinterpret_cast<sockaddr*>(&address_); }
    const in_addr& host() const { return address_.sin_addr; }
    static constexpr socklen_t kBytes = sizeof(sockaddr_in);

  private:
    sockaddr_in address_ = {};
};

// A multicast group: 224.0.0.0 to 239.255.255.255.
inline bool isGroup(const Endpoint& endpoint) {
    return endpoint.address >> 28U == 0xEU;
}

}  // namespace xstandin
