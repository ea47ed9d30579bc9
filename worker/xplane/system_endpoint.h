// system_endpoint.h - Endpoint as the system writes it. Include it after the system header that declares sockaddr_in:
// <ws2tcpip.h> or <netinet/in.h>, which agree on everything used here.
#pragma once
#include <algorithm>
#include <cstring>
#include <vector>
#include "worker/xplane/udp_datagrams.h"

namespace xplane {

inline sockaddr_in systemForm(const Endpoint& endpoint) {
    sockaddr_in form{};
    form.sin_family = AF_INET;
    form.sin_addr.s_addr = htonl(endpoint.address);
    form.sin_port = htons(endpoint.port);
    return form;
}

inline Endpoint endpointFrom(const sockaddr_in& form) {
    return {ntohl(form.sin_addr.s_addr), ntohs(form.sin_port)};
}

inline std::optional<Endpoint> endpointFrom(const NetAddress& address) {
    sockaddr_in form{};
    if (address.family != AF_INET || address.length < sizeof form) return std::nullopt;
    std::memcpy(&form, address.bytes.data(), sizeof form);
    return endpointFrom(form);
}

// One of this computer's, if it is IPv4 and not among them yet. A network without an address has 0.
inline void addOwnAddress(const sockaddr* entry, std::vector<std::uint32_t>& addresses) {
    if (!entry || entry->sa_family != AF_INET) return;
    sockaddr_in form{};
    std::memcpy(&form, entry, sizeof form);
    const auto address = endpointFrom(form).address;
    if (address != 0 && std::find(addresses.begin(), addresses.end(), address) == addresses.end())
        addresses.push_back(address);
}

}  // namespace xplane
