#include <winsock2.h>
#include <ws2tcpip.h>
#include "worker/xplane/system_endpoint.h"

namespace xplane {

namespace {

constexpr int kErrorsInARow = 16;  // of datagrams sent before, each reported by one call

SOCKET socketOf(std::intptr_t handle) {
    return static_cast<SOCKET>(handle);
}

}  // namespace

std::optional<Endpoint> endpointOf(const NetAddress& address) {
    return endpointFrom(address);
}

// Without an event it is made non-blocking by hand; WSAEventSelect does it as well.
std::uint32_t UdpSocket::open(const Endpoint& at, bool isShared, void* event) {
    close();
    const SOCKET made = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    if (made == INVALID_SOCKET) return static_cast<std::uint32_t>(WSAGetLastError());
    handle_ = static_cast<std::intptr_t>(made);
    const BOOL yes = TRUE;
    u_long isNonBlocking = 1;
    const auto form = systemForm(at);
    const auto* option = reinterpret_cast<const char*>(&yes);
    const bool isOpened = (!isShared || setsockopt(made, SOL_SOCKET, SO_REUSEADDR, option, sizeof yes) == 0) &&
                          (event ? WSAEventSelect(made, event, FD_READ)
                                 : ioctlsocket(made, static_cast<long>(FIONBIO), &isNonBlocking)) == 0 &&
                          bind(made, reinterpret_cast<const sockaddr*>(&form), sizeof form) == 0;
    const int error = isOpened ? 0 : WSAGetLastError();
    if (!isOpened) close();
    return static_cast<std::uint32_t>(error);
}

void UdpSocket::close() {
    if (isOpen()) closesocket(socketOf(handle_));
    handle_ = -1;
}

void UdpSocket::join(std::uint32_t group, std::uint32_t ownAddress) {
    ip_mreq membership{};
    membership.imr_multiaddr.s_addr = htonl(group);
    membership.imr_interface.s_addr = htonl(ownAddress);
    setsockopt(socketOf(handle_), IPPROTO_IP, IP_ADD_MEMBERSHIP, reinterpret_cast<const char*>(&membership),
               sizeof membership);
}

// Where nobody listens to what was sent, Windows says so at the next receive: no news here, X-Plane may come yet.
std::optional<Received> UdpSocket::receive(std::span<std::uint8_t> into) {
    for (int i = 0; i < kErrorsInARow; i++) {
        sockaddr_in from{};
        int length = sizeof from;
        const int result = recvfrom(socketOf(handle_), reinterpret_cast<char*>(into.data()),
                                    static_cast<int>(into.size()), 0, reinterpret_cast<sockaddr*>(&from), &length);
        if (result >= 0) return Received{static_cast<std::size_t>(result), endpointFrom(from)};
        const int error = WSAGetLastError();
        if (error == WSAEMSGSIZE) return Received{into.size(), endpointFrom(from)};
        if (error != WSAECONNRESET && error != WSAENETRESET) return std::nullopt;
    }
    return std::nullopt;
}

bool UdpSocket::send(const Endpoint& to, std::span<const std::uint8_t> datagram) {
    const auto form = systemForm(to);
    const int result =
        sendto(socketOf(handle_), reinterpret_cast<const char*>(datagram.data()), static_cast<int>(datagram.size()), 0,
               reinterpret_cast<const sockaddr*>(&form), sizeof form);
    return result == static_cast<int>(datagram.size());
}

SocketEvent::SocketEvent() : handle_(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

SocketEvent::~SocketEvent() {
    if (handle_) CloseHandle(handle_);
}

std::vector<std::uint32_t> ownAddresses() {
    std::vector<std::uint32_t> addresses = {INADDR_LOOPBACK};
    const SOCKET asked = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    if (asked == INVALID_SOCKET) return addresses;
    alignas(SOCKET_ADDRESS_LIST) std::array<char, 8'192> buffer;  // more than a hundred addresses
    DWORD bytes = 0;
    const int result = WSAIoctl(asked, SIO_ADDRESS_LIST_QUERY, nullptr, 0, buffer.data(),
                                static_cast<DWORD>(buffer.size()), &bytes, nullptr, nullptr);
    closesocket(asked);
    if (result != 0) return addresses;
    const auto* list = reinterpret_cast<const SOCKET_ADDRESS_LIST*>(buffer.data());
    for (int i = 0; i < list->iAddressCount; i++) addOwnAddress(list->Address[i].lpSockaddr, addresses);
    return addresses;
}

}  // namespace xplane
