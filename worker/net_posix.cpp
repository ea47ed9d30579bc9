#include <netdb.h>
#include "worker/address_list.h"

Sockets::Sockets() = default;
Sockets::~Sockets() = default;

std::vector<NetAddress> lookUp(const HostPort& address, bool literalOnly) {
    return listAddresses(address, literalOnly);
}
