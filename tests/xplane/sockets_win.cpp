#include <winsock2.h>
#include <ws2tcpip.h>
// windows.h includes an older winsock unless it comes second; mswsock.h needs both.
#include <mswsock.h>
#include <windows.h>
#include <array>
#include <utility>
#include "tests/xplane/socket_address.h"
#include "tests/xplane/sockets.h"

namespace xstandin {

namespace {

class Socket {
  public:
    explicit Socket(SOCKET socket = INVALID_SOCKET) : socket_(socket) {}
    Socket(Socket&& other) noexcept : socket_(std::exchange(other.socket_, INVALID_SOCKET)) {}
    Socket& operator=(Socket&& other) noexcept {
        std::swap(socket_, other.socket_);
        return *this;
    }
    ~Socket() {
        if (socket_ != INVALID_SOCKET) closesocket(socket_);
    }
    SOCKET get() const { return socket_; }
    bool isOpen() const { return socket_ != INVALID_SOCKET; }

  private:
    SOCKET socket_;
};

// On a loopback address, so that a group, too, is only reached on this computer. Closed if the port is taken.
Socket openSocket(const Endpoint& own) {
    Socket opened(socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP));
    SocketAddress address(own);
    if (bind(opened.get(), address.general(), SocketAddress::kBytes) != 0) return Socket();
    setsockopt(opened.get(), IPPROTO_IP, IP_MULTICAST_IF, reinterpret_cast<const char*>(&address.host()),
               sizeof(in_addr));
    u_long isNonblocking = 1;
    ioctlsocket(opened.get(), FIONBIO, &isNonblocking);
    // Else one client that has gone would show as an error where the others' datagrams are read.
    BOOL reportsUnreachable = FALSE;
    DWORD bytes = 0;
    WSAIoctl(opened.get(), SIO_UDP_CONNRESET, &reportsUnreachable, sizeof reportsUnreachable, nullptr, 0, &bytes,
             nullptr, nullptr);
    return opened;
}

class WindowsSockets : public Sockets {
  public:
    WindowsSockets() : event_(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
    }
    ~WindowsSockets() override {
        for (auto* one : {&socket_, &stranger_, &announcer_}) *one = Socket();
        WSACleanup();
        CloseHandle(event_);
    }

    std::uint16_t open(const Endpoint& own) override {
        own_ = own;
        if (!listen()) return 0;
        SocketAddress address;
        int length = SocketAddress::kBytes;
        if (getsockname(socket_.get(), address.general(), &length) != 0) return 0;
        stranger_ = openSocket({own.address + 1, 0});
        announcer_ = openSocket({own.address, 0});
        return own_.port = address.endpoint().port;
    }

    void announceTo(const Endpoint& whom) override { whom_ = whom; }

    void setReachable(bool reachable) override {
        if (reachable == socket_.isOpen()) return;
        if (reachable)
            listen();
        else
            socket_ = Socket();
    }

    std::vector<Datagram> wait(std::uint64_t timeoutMs) override {
        WaitForSingleObject(event_, static_cast<DWORD>(timeoutMs));
        std::vector<Datagram> arrived;
        SocketAddress from;
        int length = SocketAddress::kBytes;
        int count = 0;
        while (socket_.isOpen() && (count = recvfrom(socket_.get(), buffer_.data(), static_cast<int>(buffer_.size()), 0,
                                                     from.general(), &length)) >= 0)
            arrived.push_back({Way::kAnswer, from.endpoint(), {buffer_.data(), static_cast<std::size_t>(count)}});
        return arrived;
    }

    void wake() override { SetEvent(event_); }

    void send(const Datagram& datagram) override {
        const bool isBeacon = datagram.way == Way::kBeacon;
        if (isBeacon && whom_.port == 0) return;
        const auto& socket = isBeacon ? announcer_ : datagram.way == Way::kStranger ? stranger_ : socket_;
        SocketAddress to(isBeacon ? whom_ : datagram.peer);
        sendto(socket.get(), datagram.bytes.data(), static_cast<int>(datagram.bytes.size()), 0, to.general(),
               SocketAddress::kBytes);
    }

  private:
    // The same event as wake(): either way there is something to look at.
    bool listen() {
        socket_ = openSocket(own_);
        return socket_.isOpen() && WSAEventSelect(socket_.get(), event_, FD_READ) == 0;
    }

    HANDLE event_;
    Endpoint own_;
    Endpoint whom_;
    Socket socket_;
    Socket stranger_;
    Socket announcer_;
    std::array<char, 65'536> buffer_{};
};

}  // namespace

std::unique_ptr<Sockets> makeSockets() {
    return std::make_unique<WindowsSockets>();
}

}  // namespace xstandin
