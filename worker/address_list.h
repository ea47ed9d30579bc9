// address_list.h - the names and addresses that getaddrinfo knows, as NetAddress. Include it after the system header
// that declares getaddrinfo: <ws2tcpip.h> or <netdb.h>, which agree on everything used here.
#pragma once
#include <cstring>
#include <memory>
#include <string>
#include "worker/net_address.h"

struct AddressListCloser {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

inline std::vector<NetAddress> listAddresses(const HostPort& address, bool literalOnly) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV | (literalOnly ? AI_NUMERICHOST : 0);
    addrinfo* list = nullptr;
    if (getaddrinfo(address.host.c_str(), std::to_string(address.port).c_str(), &hints, &list) != 0) return {};
    const std::unique_ptr<addrinfo, AddressListCloser> owner(list);
    std::vector<NetAddress> found;
    for (const auto* entry = list; entry; entry = entry->ai_next) {
        NetAddress next;
        if (entry->ai_addrlen > next.bytes.size()) continue;
        std::memcpy(next.bytes.data(), entry->ai_addr, entry->ai_addrlen);
        next.length = entry->ai_addrlen;
        next.family = entry->ai_family;
        found.push_back(next);
    }
    return found;
}
