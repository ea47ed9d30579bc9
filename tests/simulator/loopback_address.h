// loopback_address.h - this computer's own address in either family, as the system's socket calls take it. Include it
// after the system header that declares them, unless that is <netinet/in.h>.
#pragma once
#ifndef _WIN32
#include <netinet/in.h>
#endif
#include <cstdint>
#include "tests/simulator/connections.h"

namespace standin {

class LoopbackAddress {
  public:
    LoopbackAddress(std::uint16_t port, Loopback loopback) : isIpv6_(loopback == Loopback::kIPv6) {
        if (isIpv6_) {
            ipv6_.sin6_family = AF_INET6;
            ipv6_.sin6_port = htons(port);
            ipv6_.sin6_addr.s6_addr[15] = 1;  // ::1
        } else {
            ipv4_.sin_family = AF_INET;
            ipv4_.sin_port = htons(port);
            ipv4_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        }
    }
    int family() const { return isIpv6_ ? AF_INET6 : AF_INET; }
    sockaddr* general() { return isIpv6_ ? reinterpret_cast<sockaddr*>(&ipv6_) : reinterpret_cast<sockaddr*>(&ipv4_); }
    socklen_t length() const { return isIpv6_ ? kIpv6Bytes : kIpv4Bytes; }
    std::uint16_t port() const { return ntohs(isIpv6_ ? ipv6_.sin6_port : ipv4_.sin_port); }

  private:
    static constexpr socklen_t kIpv4Bytes = sizeof(sockaddr_in);
    static constexpr socklen_t kIpv6Bytes = sizeof(sockaddr_in6);

    const bool isIpv6_;
    sockaddr_in ipv4_ = {};
    sockaddr_in6 ipv6_ = {};
};

}  // namespace standin
