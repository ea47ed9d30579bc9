#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <array>
#include <chrono>
#include <future>
#include <optional>
#include <string>
#include <utility>
#include <vector>
#include "tests/simulator/loopback_address.h"
#include "tests/unit/worker/becomes.h"
#include "worker/simconnect/connection.h"
#include "worker/simconnect/tcp_transport.h"

namespace {

using simconnect::TcpTransport;
using simconnect::TransportState;
using standin::Loopback;
using standin::LoopbackAddress;

// Listens on a port of this machine chosen by the system; the kernel itself accepts into the backlog.
class Listener {
  public:
    explicit Listener(Loopback kind = Loopback::kIPv4, int backlog = 4) : loopback(kind) {
        LoopbackAddress address(0, loopback);
        socket_ = socket(address.family(), SOCK_STREAM, 0);
        socklen_t length = address.length();
        if (bind(socket_, address.general(), length) != 0 || listen(socket_, backlog) != 0) return;
        if (getsockname(socket_, address.general(), &length) == 0) port = address.port();
    }
    ~Listener() {
        drop();
        stop();
    }
    void accept() { peer = ::accept(socket_, nullptr, nullptr); }
    bool hasVisitor() const {
        pollfd waiting{socket_, POLLIN, 0};
        return ::poll(&waiting, 1, 0) == 1;
    }
    void drop() {
        if (peer >= 0) close(std::exchange(peer, -1));
    }
    void stop() {
        if (socket_ >= 0) close(std::exchange(socket_, -1));
    }

    const Loopback loopback;
    std::uint16_t port = 0;  // 0: this machine has no such address
    int peer = -1;

  private:
    int socket_ = -1;
};

std::vector<NetAddress> addressOf(const Listener& listener) {
    const bool is6 = listener.loopback == Loopback::kIPv6;
    return lookUp({is6 ? "::1" : "127.0.0.1", listener.port}, true);
}

// Clients that connect get no answer, not even a refusal: the queue is full, so the kernel drops their packets.
class SilentListener : public Listener {
  public:
    explicit SilentListener(Loopback kind = Loopback::kIPv4) : Listener(kind, 0) {
        if (port == 0) return;
        for (auto& filler : fillers_) filler.startConnect(addressOf(*this).at(0));
    }

  private:
    std::array<simconnect::Socket, 4> fillers_;
};

// For what happens at once: no time passes.
constexpr std::uint64_t kNowMs = 5'000;

bool opens(TcpTransport& transport) {
    transport.connect();
    return becomes([&] { return transport.poll(kNowMs) != TransportState::kConnecting; }) &&
           transport.poll(kNowMs) == TransportState::kOpen;
}

std::vector<std::uint8_t> receivedBy(TcpTransport& transport, std::size_t count) {
    std::vector<std::uint8_t> all(count);
    std::size_t have = 0;
    EXPECT_TRUE(becomes([&] {
        have += transport.receive(std::span(all).subspan(have));
        return have == count || transport.poll(kNowMs) == TransportState::kClosed;
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
    EXPECT_EQ(transport.poll(kNowMs), TransportState::kClosed);
    EXPECT_FALSE(transport.send(bytes));
    ASSERT_TRUE(opens(transport));
}

TEST(TcpTransport, NobodyListeningIsNoProblemWorthAWord) {
    Listener listener;
    listener.stop();
    TcpTransport transport({"127.0.0.1", listener.port});
    EXPECT_FALSE(opens(transport));
    EXPECT_EQ(transport.poll(kNowMs), TransportState::kClosed);
    EXPECT_EQ(transport.problem(), "");
}

TEST(TcpTransport, ReachesAnIPv6Address) {
    Listener listener(Loopback::kIPv6);
    if (listener.port == 0) GTEST_SKIP() << "this machine has no IPv6";
    const auto address = parseHostPort("[::1]:" + std::to_string(listener.port));
    ASSERT_TRUE(address);
    TcpTransport transport(*address);
    ASSERT_TRUE(opens(transport)) << transport.problem();
    listener.accept();
    const std::vector<std::uint8_t> bytes = {1, 2, 3};
    EXPECT_TRUE(transport.send(bytes));
    std::vector<std::uint8_t> arrived(3);
    ASSERT_EQ(recv(listener.peer, arrived.data(), 3, MSG_WAITALL), 3);
    EXPECT_EQ(arrived, bytes);
}

// A name with several addresses, where nobody listens on the first.
TEST(TcpTransport, TriesTheNextAddressAfterOneThatRefuses) {
    Listener refusing, listening;
    refusing.stop();
    auto addresses = addressOf(refusing);
    addresses.push_back(addressOf(listening).at(0));
    for (const bool isLiteral : {true, false}) {  // known at once, or looked up on a thread
        TcpTransport transport({"simpc", 500}, [=](const HostPort& address, bool literalOnly) {
            EXPECT_EQ(address, (HostPort{"simpc", 500}));
            return literalOnly == isLiteral ? addresses : std::vector<NetAddress>{};
        });
        ASSERT_TRUE(opens(transport)) << transport.problem();
        listening.accept();
        EXPECT_GE(listening.peer, 0);
        listening.drop();
    }
}

// A name with a dead address in front, of either kind: none may hide the one behind it.
TEST(TcpTransport, GetsPastAnAddressThatSaysNothingInTwoSeconds) {
    for (const auto& [dead, live] : {std::pair(Loopback::kIPv4, Loopback::kIPv4),
                                     {Loopback::kIPv6, Loopback::kIPv4},
                                     {Loopback::kIPv4, Loopback::kIPv6}}) {
        const SilentListener silent(dead);
        const Listener listening(live);
        if (silent.port == 0 || listening.port == 0) continue;  // this machine has no IPv6
        auto addresses = addressOf(silent);
        addresses.push_back(addressOf(listening).at(0));
        TcpTransport transport({"simpc", 500}, [&](const HostPort&, bool) { return addresses; });
        simconnect::Connection connection(transport, "test");
        connection.poll(kNowMs);
        connection.poll(kNowMs + 1'999);
        EXPECT_FALSE(listening.hasVisitor());
        EXPECT_TRUE(becomes([&] {
            connection.poll(kNowMs + 2'000);
            return listening.hasVisitor();
        }));
    }
}

TEST(TcpTransport, GivesEveryAddressItsTimeAndThenSaysThatNobodyAnswers) {
    const SilentListener silent;
    const auto dead = addressOf(silent).at(0);
    int lookUps = 0;
    TcpTransport transport({"simpc", 500}, [&](const HostPort&, bool) {
        lookUps++;
        return std::vector{dead, dead, dead};
    });
    simconnect::Connection connection(transport, "test");
    std::uint64_t nowMs = 0;
    const auto pollFor = [&](std::uint64_t ms) {
        for (const auto end = nowMs + ms; nowMs < end;) connection.poll(nowMs += 20);
    };
    pollFor(6'000);
    EXPECT_EQ(connection.status(), "waiting for the simulator");
    pollFor(100);
    EXPECT_EQ(connection.status(), "no answer from simpc");
    EXPECT_EQ(lookUps, 1);
    pollFor(1'000);
    EXPECT_EQ(lookUps, 2);  // from the first one again, after the usual wait
}

// The second one is there, only without a simulator: the dead one in front of it is no news.
TEST(TcpTransport, ASilentAddressBesideOneThatRefusesIsNoProblemWorthAWord) {
    const SilentListener silent;
    Listener refusing;
    refusing.stop();
    const auto addresses = std::vector{addressOf(silent).at(0), addressOf(refusing).at(0)};
    TcpTransport transport({"simpc", 500}, [&](const HostPort&, bool) { return addresses; });
    transport.connect();
    EXPECT_EQ(transport.poll(kNowMs), TransportState::kConnecting);
    EXPECT_TRUE(becomes([&] { return transport.poll(kNowMs + 2'000) == TransportState::kClosed; }));
    EXPECT_EQ(transport.problem(), "");
}

// No network leads there, or the computer is off: the system says so at once, and nobody has refused anything.
TEST(TcpTransport, SaysThatNobodyAnswersWhereTheSystemKnowsNoWay) {
    const auto broadcast = lookUp({"255.255.255.255", 500}, true).at(0);  // no connection leads there
    Listener refusing;
    refusing.stop();
    const auto problemOf = [](const std::vector<NetAddress>& addresses) {
        TcpTransport transport({"simpc", 500}, [&](const HostPort&, bool) { return addresses; });
        EXPECT_FALSE(opens(transport));
        return transport.problem();
    };
    EXPECT_EQ(problemOf({broadcast}), "no answer from simpc");
    EXPECT_EQ(problemOf({broadcast, broadcast}), "no answer from simpc");
    EXPECT_EQ(problemOf({broadcast, addressOf(refusing).at(0)}), "");  // it is there, only without a simulator
}

TEST(TcpTransport, BeginsWithTheAddressThatAnsweredTheLastTime) {
    const SilentListener silent;
    Listener listening;
    auto addresses = addressOf(silent);
    addresses.push_back(addressOf(listening).at(0));
    TcpTransport transport({"simpc", 500}, [&](const HostPort&, bool) { return addresses; });
    const auto opensAfter = [&](std::uint64_t ms) {
        transport.connect();
        transport.poll(kNowMs);
        return becomes([&] { return transport.poll(kNowMs + ms) == TransportState::kOpen; });
    };
    ASSERT_TRUE(opensAfter(2'000));
    transport.connect();
    for (int i = 0; i < 100; i++) EXPECT_EQ(transport.poll(kNowMs), TransportState::kConnecting);  // it said nothing
    ASSERT_TRUE(opensAfter(2'000));
    listening.accept();  // the first connection
    listening.drop();
    listening.accept();
    const std::uint8_t byte = 1;
    ASSERT_EQ(write(listening.peer, &byte, 1), 1);
    ASSERT_EQ(receivedBy(transport, 1).size(), 1u);
    EXPECT_TRUE(opensAfter(0));
}

TEST(TcpTransport, GivesALookUpTenSecondsAndTakesItsAnswerTheNextTime) {
    Listener listening;
    std::promise<void> answer;
    const std::shared_future<void> isAnswered(answer.get_future());
    const auto addresses = addressOf(listening);
    TcpTransport transport({"simpc", 500}, [=](const HostPort&, bool literalOnly) {
        if (literalOnly) return std::vector<NetAddress>();
        isAnswered.wait_for(std::chrono::seconds(30));
        return addresses;
    });
    transport.connect();
    EXPECT_EQ(transport.poll(1'000), TransportState::kConnecting);
    EXPECT_EQ(transport.poll(10'999), TransportState::kConnecting);
    EXPECT_EQ(transport.poll(11'000), TransportState::kClosed);
    EXPECT_EQ(transport.problem(), "no such computer: simpc");
    answer.set_value();
    ASSERT_TRUE(opens(transport)) << transport.problem();
}

TEST(TcpTransport, LooksANameUpWithoutWaitingForIt) {
    Listener listener;
    std::promise<void> answer;
    const std::shared_future<void> isAnswered(answer.get_future());
    // Not with the system's lookup: a machine need not know any name, not even localhost.
    const auto addresses = addressOf(listener);
    TcpTransport transport({"simpc", listener.port}, [=](const HostPort&, bool literalOnly) {
        if (literalOnly) return std::vector<NetAddress>();
        isAnswered.wait_for(std::chrono::seconds(30));
        return addresses;
    });
    transport.connect();
    EXPECT_EQ(transport.poll(kNowMs), TransportState::kConnecting);
    EXPECT_FALSE(listener.hasVisitor());
    answer.set_value();
    EXPECT_TRUE(becomes([&] { return transport.poll(kNowMs) == TransportState::kOpen; })) << transport.problem();
}

TEST(TcpTransport, SaysThatANameIsNotKnown) {
    const std::string tooLong(64, 'a');  // no part of a name has 64 letters, so no server need be asked
    TcpTransport transport({tooLong, 500});
    transport.connect();
    transport.close();
    transport.connect();  // while the name is still being looked up
    ASSERT_TRUE(becomes([&] { return transport.poll(kNowMs) == TransportState::kClosed; }));
    EXPECT_EQ(transport.problem(), "no such computer: " + std::string(23, 'a') + "...");
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
    EXPECT_EQ(transport.poll(kNowMs), TransportState::kOpen);
    EXPECT_EQ(transport.problem(), "the simulator does not read what it is told");
}
