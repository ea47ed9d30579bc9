#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <cerrno>
#include "worker/simconnect/sockets.h"

namespace simconnect {

namespace {

int descriptor(std::intptr_t handle) {
    return static_cast<int>(handle);
}

bool isJustNotNow(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

ConnectProgress connectFailure(int error) {
    return error == ECONNREFUSED ? ConnectProgress::kRefused : ConnectProgress::kFailed;
}

}  // namespace

ConnectProgress Socket::startConnect(const NetAddress& address) {
    close();
    handle_ = socket(address.family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_TCP);
    if (handle_ < 0) return ConnectProgress::kFailed;
    const int yes = 1;
    setsockopt(descriptor(handle_), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    const auto* to = reinterpret_cast<const sockaddr*>(address.bytes.data());
    if (::connect(descriptor(handle_), to, static_cast<socklen_t>(address.length)) == 0 || errno == EINPROGRESS) {
        return ConnectProgress::kPending;
    }
    const auto failure = connectFailure(errno);
    close();
    return failure;
}

ConnectProgress Socket::connectProgress() {
    if (handle_ < 0) return ConnectProgress::kFailed;
    pollfd ready{descriptor(handle_), POLLOUT, 0};
    if (::poll(&ready, 1, 0) == 0) return ConnectProgress::kPending;
    int error = 0;
    socklen_t length = sizeof error;
    const bool asked = getsockopt(descriptor(handle_), SOL_SOCKET, SO_ERROR, &error, &length) == 0;
    return asked && error == 0 ? ConnectProgress::kReady : connectFailure(error);
}

SocketProgress Socket::receive(std::span<std::uint8_t> into, std::size_t& count) {
    const auto result = ::recv(descriptor(handle_), into.data(), into.size(), 0);
    if (result < 0) return isJustNotNow(errno) ? SocketProgress::kPending : SocketProgress::kFailed;
    count = static_cast<std::size_t>(result);
    return count > 0 ? SocketProgress::kReady : SocketProgress::kFailed;
}

SocketProgress Socket::send(std::span<const std::uint8_t> bytes, std::size_t& count) {
    const auto result = ::send(descriptor(handle_), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (result < 0) return isJustNotNow(errno) ? SocketProgress::kPending : SocketProgress::kFailed;
    count = static_cast<std::size_t>(result);
    return SocketProgress::kReady;
}

void Socket::close() {
    if (handle_ >= 0) ::close(descriptor(handle_));
    handle_ = -1;
}

void* Socket::wakeHandle() const {
    return event_;
}

}  // namespace simconnect
