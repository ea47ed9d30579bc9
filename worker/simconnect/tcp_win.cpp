#include <winsock2.h>
#include <ws2tcpip.h>
#include "worker/simconnect/sockets.h"

namespace simconnect {

namespace {

SOCKET socketOf(std::intptr_t handle) {
    return static_cast<SOCKET>(handle);
}

// What a failed call means: not just now, or never again.
SocketProgress failure() {
    return WSAGetLastError() == WSAEWOULDBLOCK ? SocketProgress::kPending : SocketProgress::kFailed;
}

ConnectProgress connectFailure(int error) {
    return error == WSAECONNREFUSED ? ConnectProgress::kRefused : ConnectProgress::kFailed;
}

}  // namespace

// WSAEventSelect makes the socket non-blocking as well.
ConnectProgress Socket::startConnect(const NetAddress& address) {
    close();
    const SOCKET made = socket(address.family, SOCK_STREAM, IPPROTO_TCP);
    if (made == INVALID_SOCKET) return ConnectProgress::kFailed;
    handle_ = static_cast<std::intptr_t>(made);
    event_ = WSACreateEvent();
    const BOOL yes = TRUE;
    setsockopt(made, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&yes), sizeof yes);
    const bool evented = WSAEventSelect(made, event_, FD_CONNECT | FD_READ | FD_WRITE | FD_CLOSE) == 0;
    const auto* to = reinterpret_cast<const sockaddr*>(address.bytes.data());
    if (evented &&
        (::connect(made, to, static_cast<int>(address.length)) == 0 || failure() == SocketProgress::kPending)) {
        return ConnectProgress::kPending;
    }
    const auto failed = connectFailure(WSAGetLastError());
    close();
    return failed;
}

ConnectProgress Socket::connectProgress() {
    if (handle_ == -1) return ConnectProgress::kFailed;
    fd_set writable, failed;
    FD_ZERO(&writable);
    FD_ZERO(&failed);
    FD_SET(socketOf(handle_), &writable);
    FD_SET(socketOf(handle_), &failed);
    timeval now{};
    if (select(0, nullptr, &writable, &failed, &now) == 0) return ConnectProgress::kPending;
    if (FD_ISSET(socketOf(handle_), &writable)) return ConnectProgress::kReady;
    int error = 0;
    int length = sizeof error;
    getsockopt(socketOf(handle_), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &length);
    return connectFailure(error);
}

// The event is reset first: whatever arrives after that sets it again.
SocketProgress Socket::receive(std::span<std::uint8_t> into, std::size_t& count) {
    WSAResetEvent(event_);
    const int result =
        ::recv(socketOf(handle_), reinterpret_cast<char*>(into.data()), static_cast<int>(into.size()), 0);
    if (result < 0) return failure();
    count = static_cast<std::size_t>(result);
    return count > 0 ? SocketProgress::kReady : SocketProgress::kFailed;
}

SocketProgress Socket::send(std::span<const std::uint8_t> bytes, std::size_t& count) {
    const int result =
        ::send(socketOf(handle_), reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()), 0);
    if (result < 0) return failure();
    count = static_cast<std::size_t>(result);
    return SocketProgress::kReady;
}

void Socket::close() {
    if (handle_ != -1) closesocket(socketOf(handle_));
    if (event_) WSACloseEvent(event_);
    handle_ = -1;
    event_ = nullptr;
}

void* Socket::wakeHandle() const {
    return event_;
}

}  // namespace simconnect
