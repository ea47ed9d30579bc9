#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <cerrno>
#include "worker/xplane/system_endpoint.h"

namespace xplane {

namespace {

int descriptorOf(std::intptr_t handle) {
    return static_cast<int>(handle);
}

}  // namespace

std::optional<Endpoint> endpointOf(const NetAddress& address) {
    return endpointFrom(address);
}

std::uint32_t UdpSocket::open(const Endpoint& at, bool isShared, void* /*event*/) {
    close();
    handle_ = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_UDP);
    const int yes = 1;
    const auto form = systemForm(at);
    const bool isOpened =
        isOpen() && (!isShared || setsockopt(descriptorOf(handle_), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) == 0) &&
        bind(descriptorOf(handle_), reinterpret_cast<const sockaddr*>(&form), sizeof form) == 0;
    const int error = isOpened ? 0 : errno;
    if (!isOpened) close();
    return static_cast<std::uint32_t>(error);
}

void UdpSocket::close() {
    if (isOpen()) ::close(descriptorOf(handle_));
    handle_ = -1;
}

void UdpSocket::join(std::uint32_t group, std::uint32_t ownAddress) {
    ip_mreq membership{};
    membership.imr_multiaddr.s_addr = htonl(group);
    membership.imr_interface.s_addr = htonl(ownAddress);
    setsockopt(descriptorOf(handle_), IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership);
}

std::optional<Received> UdpSocket::receive(std::span<std::uint8_t> into) {
    sockaddr_in from{};
    socklen_t length = sizeof from;
    const auto result =
        recvfrom(descriptorOf(handle_), into.data(), into.size(), 0, reinterpret_cast<sockaddr*>(&from), &length);
    if (result < 0) return std::nullopt;
    return Received{static_cast<std::size_t>(result), endpointFrom(from)};
}

bool UdpSocket::send(const Endpoint& to, std::span<const std::uint8_t> datagram) {
    const auto form = systemForm(to);
    const auto result = sendto(descriptorOf(handle_), datagram.data(), datagram.size(), MSG_NOSIGNAL,
                               reinterpret_cast<const sockaddr*>(&form), sizeof form);
    return result == static_cast<ssize_t>(datagram.size());
}

SocketEvent::SocketEvent() = default;
SocketEvent::~SocketEvent() = default;

std::vector<std::uint32_t> ownAddresses() {
    std::vector<std::uint32_t> addresses = {INADDR_LOOPBACK};
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) return addresses;
    for (const auto* entry = list; entry; entry = entry->ifa_next) addOwnAddress(entry->ifa_addr, addresses);
    freeifaddrs(list);
    return addresses;
}

}  // namespace xplane
