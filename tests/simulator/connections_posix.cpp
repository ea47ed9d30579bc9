#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <map>
#include <utility>
#include "tests/simulator/loopback_address.h"

namespace standin {

namespace {

class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
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
    int number_ = -1;
};

class PosixConnections : public Connections {
  public:
    PosixConnections() {
        std::array<int, 2> ends{-1, -1};
        if (::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC) != 0) return;
        wakeRead_ = Descriptor(ends[0]);
        wakeWrite_ = Descriptor(ends[1]);
    }

    std::uint16_t listenTcp(std::uint16_t port, Loopback loopback) override {
        LoopbackAddress address(port, loopback);
        Descriptor listener(::socket(address.family(), SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        const int on = 1;
        ::setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        socklen_t length = address.length();
        if (::bind(listener.get(), address.general(), length) != 0 || ::listen(listener.get(), 16) != 0) return 0;
        if (::getsockname(listener.get(), address.general(), &length) != 0) return 0;
        listener_ = std::move(listener);
        loopback_ = loopback;
        return port_ = address.port();
    }

    bool listenPipe(const std::string&) override { return false; }

    void setReachable(bool reachable) override {
        if (port_ == 0 || reachable == (listener_.get() >= 0)) return;
        if (reachable)
            listenTcp(port_, loopback_);
        else
            listener_ = Descriptor();
    }

    std::vector<ConnectionEvent> wait(std::uint64_t timeoutMs) override {
        std::vector<pollfd> polled = {{wakeRead_.get(), POLLIN, 0}, {listener_.get(), POLLIN, 0}};
        std::vector<int> numbers;
        for (const auto& [number, socket] : sockets_) {
            polled.push_back({socket.get(), POLLIN, 0});
            numbers.push_back(number);
        }
        ::poll(polled.data(), static_cast<nfds_t>(polled.size()), static_cast<int>(timeoutMs));
        std::vector<ConnectionEvent> events;
        std::array<char, 64> woken{};
        while (::read(wakeRead_.get(), woken.data(), woken.size()) > 0) continue;
        for (std::size_t i = 0; i < numbers.size(); i++) {
            if (polled[i + 2].revents != 0) readFrom(numbers[i], events);
        }
        if (polled[1].revents != 0) acceptAll(events);
        return events;
    }

    void wake() override {
        const char byte = 0;
        [[maybe_unused]] const auto written = ::write(wakeWrite_.get(), &byte, 1);
    }

    void send(int connection, std::string_view bytes) override {
        const auto socket = sockets_.find(connection);
        while (socket != sockets_.end() && !bytes.empty()) {
            const auto sent = ::send(socket->second.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent > 0) {
                bytes.remove_prefix(static_cast<std::size_t>(sent));
                continue;
            }
            pollfd room = {socket->second.get(), POLLOUT, 0};
            if (::poll(&room, 1, 500) <= 0 || (room.revents & POLLOUT) == 0) break;  // the next read sees the end
        }
    }

    void close(int connection) override { sockets_.erase(connection); }

  private:
    void acceptAll(std::vector<ConnectionEvent>& events) {
        while (true) {
            Descriptor socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
            if (socket.get() < 0) return;
            const int on = 1;
            ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            sockets_.emplace(++last_, std::move(socket));
            events.push_back({ConnectionEvent::Kind::kOpened, last_, ""});
        }
    }

    void readFrom(int number, std::vector<ConnectionEvent>& events) {
        std::array<char, 65'536> bytes;
        const auto count = ::recv(sockets_.at(number).get(), bytes.data(), bytes.size(), 0);
        if (count > 0) {
            events.push_back(
                {ConnectionEvent::Kind::kReceived, number, {bytes.data(), static_cast<std::size_t>(count)}});
        } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            sockets_.erase(number);
            events.push_back({ConnectionEvent::Kind::kClosed, number, ""});
        }
    }

    Descriptor wakeRead_;
    Descriptor wakeWrite_;
    Descriptor listener_;
    std::uint16_t port_ = 0;
    Loopback loopback_ = Loopback::kIPv4;
    std::map<int, Descriptor> sockets_;
    int last_ = 0;
};

}  // namespace

std::unique_ptr<Connections> makeConnections() {
    return std::make_unique<PosixConnections>();
}

}  // namespace standin
