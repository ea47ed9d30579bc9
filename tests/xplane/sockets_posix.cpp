#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <array>
#include <utility>
#include "tests/xplane/socket_address.h"
#include "tests/xplane/sockets.h"

namespace xstandin {

namespace {

class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    int get() const { return number_; }

  private:
    int number_;
};

// On a loopback address, so that a group, too, is only reached on this computer. Invalid if the port is taken.
Descriptor openSocket(const Endpoint& own) {
    Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    SocketAddress address(own);
    if (::bind(socket.get(), address.general(), SocketAddress::kBytes) != 0) return Descriptor();
    ::setsockopt(socket.get(), IPPROTO_IP, IP_MULTICAST_IF, &address.host(), sizeof(in_addr));
    return socket;
}

class PosixSockets : public Sockets {
  public:
    PosixSockets() {
        std::array<int, 2> ends{-1, -1};
        if (::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC) != 0) return;
        wakeRead_ = Descriptor(ends[0]);
        wakeWrite_ = Descriptor(ends[1]);
    }

    std::uint16_t open(const Endpoint& own) override {
        own_ = own;
        socket_ = openSocket(own);
        SocketAddress address;
        socklen_t length = SocketAddress::kBytes;
        if (socket_.get() < 0 || ::getsockname(socket_.get(), address.general(), &length) != 0) return 0;
        stranger_ = openSocket({own.address + 1, 0});
        announcer_ = openSocket({own.address, 0});
        return own_.port = address.endpoint().port;
    }

    void announceTo(const Endpoint& whom) override { whom_ = whom; }

    void setReachable(bool reachable) override {
        if (reachable == (socket_.get() >= 0)) return;
        socket_ = reachable ? openSocket(own_) : Descriptor();
    }

    std::vector<Datagram> wait(std::uint64_t timeoutMs) override {
        std::array<pollfd, 2> polled = {{{wakeRead_.get(), POLLIN, 0}, {socket_.get(), POLLIN, 0}}};
        ::poll(polled.data(), polled.size(), static_cast<int>(timeoutMs));
        while (::read(wakeRead_.get(), buffer_.data(), buffer_.size()) > 0) continue;
        std::vector<Datagram> arrived;
        SocketAddress from;
        socklen_t length = SocketAddress::kBytes;
        ssize_t count = 0;
        // An error (nobody listens where we sent something) is no end: the next datagram may be fine.
        while (socket_.get() >= 0 &&
               (count = ::recvfrom(socket_.get(), buffer_.data(), buffer_.size(), 0, from.general(), &length)) >= 0)
            arrived.push_back({Way::kAnswer, from.endpoint(), {buffer_.data(), static_cast<std::size_t>(count)}});
        return arrived;
    }

    void wake() override {
        const char byte = 0;
        [[maybe_unused]] const auto written = ::write(wakeWrite_.get(), &byte, 1);
    }

    void send(const Datagram& datagram) override {
        const bool isBeacon = datagram.way == Way::kBeacon;
        if (isBeacon && whom_.port == 0) return;
        const auto& socket = isBeacon ? announcer_ : datagram.way == Way::kStranger ? stranger_ : socket_;
        SocketAddress to(isBeacon ? whom_ : datagram.peer);
        ::sendto(socket.get(), datagram.bytes.data(), datagram.bytes.size(), 0, to.general(), SocketAddress::kBytes);
    }

  private:
    Descriptor wakeRead_;
    Descriptor wakeWrite_;
    Endpoint own_;
    Endpoint whom_;
    Descriptor socket_;
    Descriptor stranger_;
    Descriptor announcer_;
    std::array<char, 65'536> buffer_{};
};

}  // namespace

std::unique_ptr<Sockets> makeSockets() {
    return std::make_unique<PosixSockets>();
}

}  // namespace xstandin
