#include <winsock2.h>
#include <ws2tcpip.h>
#include "worker/address_list.h"

Sockets::Sockets() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);  // if it fails, so will every call that needs it
}

Sockets::~Sockets() {
    WSACleanup();
}

std::vector<NetAddress> lookUp(const HostPort& address, bool literalOnly) {
    return listAddresses(address, literalOnly);
}
