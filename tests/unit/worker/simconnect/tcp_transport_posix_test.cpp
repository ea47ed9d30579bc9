#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>
#include "worker/simconnect/tcp_transport.h"

namespace {

using simconnect::TcpTransport;
using simconnect::TransportState;

// Listens on a port of this machine that the system chooses; the kernel itself accepts into the backlog.
class Listener {
  public:
    Listener() : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&address), length), 0);
        EXPECT_EQ(listen(socket_, 4), 0);
        EXPECT_EQ(getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length), 0);
        port = ntohs(address.sin_port);
    }
    ~Listener() {
        drop();
        stop();
    }
    void accept() { peer = ::accept(socket_, nullptr, nullptr); }
    void drop() {
        if (peer >= 0) close(std::exchange(peer, -1));
    }
    void stop() {
        if (socket_ >= 0) close(std::exchange(socket_, -1));
    }

    std::uint16_t port = 0;
    int peer = -1;

  private:
    int socket_;
};

// Polls until the condition holds; false after two seconds.
bool becomes(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

bool opens(TcpTransport& transport) {
    transport.connect();
    return becomes([&] { return transport.poll() != TransportState::Connecting; }) &&
           transport.poll() == TransportState::Open;
}

std::vector<std::uint8_t> receivedBy(TcpTransport& transport, std::size_t count) {
    std::vector<std::uint8_t> all(count);
    std::size_t have = 0;
    EXPECT_TRUE(becomes([&] {
        have += transport.receive(std::span(all).subspan(have));
        return have == count || transport.poll() == TransportState::Closed;
    }));
    all.resize(have);
    return all;
}

}  // namespace

TEST(TcpTransport, CarriesBytesBothWaysAndSeesTheEnd) {
    Listener listener;
    TcpTransport transport({"127.0.0.1", listener.port});
    ASSERT_TRUE(opens(transport)) << transport.problem();
    listener.accept();
    const std::vector<std::uint8_t> bytes = {1, 2, 3, 0, 255};
    ASSERT_EQ(write(listener.peer, bytes.data(), bytes.size()), 5);
    EXPECT_EQ(receivedBy(transport, 5), bytes);
    EXPECT_TRUE(transport.send(bytes));
    std::vector<std::uint8_t> arrived(5);
    ASSERT_EQ(recv(listener.peer, arrived.data(), 5, MSG_WAITALL), 5);
    EXPECT_EQ(arrived, bytes);
    ASSERT_EQ(write(listener.peer, bytes.data(), 2), 2);
    listener.drop();
    EXPECT_EQ(receivedBy(transport, 5).size(), 2u);  // what came before the end
    EXPECT_EQ(transport.poll(), TransportState::Closed);
    EXPECT_FALSE(transport.send(bytes));
    ASSERT_TRUE(opens(transport));
}

TEST(TcpTransport, NobodyListeningIsNoProblemWorthAWord) {
    Listener listener;
    listener.stop();
    TcpTransport transport({"127.0.0.1", listener.port});
    EXPECT_FALSE(opens(transport));
    EXPECT_EQ(transport.poll(), TransportState::Closed);
    EXPECT_EQ(transport.problem(), "");
}

TEST(TcpTransport, LooksANameUpWithoutWaitingForIt) {
    Listener listener;
    TcpTransport transport({"localhost", listener.port});
    const auto before = std::chrono::steady_clock::now();
    transport.connect();
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(100));
    EXPECT_TRUE(becomes([&] { return transport.poll() == TransportState::Open; })) << transport.problem();
}

TEST(TcpTransport, SaysThatANameIsNotKnown) {
    const std::string tooLong(64, 'a');  // no name has a part of 64 letters, so nobody needs to be asked
    TcpTransport transport({tooLong, 500});
    transport.connect();
    transport.close();
    transport.connect();  // while the name is still being looked up
    ASSERT_TRUE(becomes([&] { return transport.poll() == TransportState::Closed; }));
    EXPECT_EQ(transport.problem(), tooLong + " is not known on this network");
}

TEST(TcpTransport, RefusesMoreOnceTooMuchIsWaiting) {
    Listener listener;
    TcpTransport transport({"127.0.0.1", listener.port});
    ASSERT_TRUE(opens(transport));
    listener.accept();
    const std::vector<std::uint8_t> packet(40'000);
    std::size_t taken = 0;
    while (taken < 1000 && transport.send(packet)) taken++;
    EXPECT_LT(taken, 1000u);  // nobody reads
    EXPECT_EQ(transport.poll(), TransportState::Open);
}
