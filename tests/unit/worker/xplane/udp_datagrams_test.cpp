// udp_datagrams_test.cpp - the real sockets, on this computer's loopback: two of them speak with each other.
#include "worker/xplane/udp_datagrams.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <functional>
#include <thread>
#include "tests/unit/worker/becomes.h"
#include "tests/unit/worker/xplane/loopback_socket.h"

namespace {

using xplane::Endpoint;
using xplane::Received;
using xplane::UdpDatagrams;

constexpr std::uint32_t kNobody = 0xC0000201;  // 192.0.2.1: kept for examples, so not this computer
using Bytes = std::vector<std::uint8_t>;

// X-Plane's side.
struct Other : LoopbackSocket {
    // The next datagram, and whom it is from.
    Bytes receive(Endpoint& from) {
        Bytes into(2048);
        std::optional<Received> received;
        EXPECT_TRUE(becomes([&] { return (received = socket.receive(into)).has_value(); }));
        if (!received) return {};
        from = received->from;
        into.resize(received->bytes);
        return into;
    }
};

Bytes receivedBy(const std::function<std::optional<Received>(std::span<std::uint8_t>)>& receive, Endpoint& from) {
    Bytes into(64);
    std::optional<Received> received;
    EXPECT_TRUE(becomes([&] { return (received = receive(into)).has_value(); }));
    if (!received) return {};
    from = received->from;
    into.resize(received->bytes);
    return into;
}

}  // namespace

TEST(UdpDatagrams, CarryQuestionsAndAnswersThroughOneSocket) {
    Other other;
    UdpDatagrams ours;
    std::array<std::uint8_t, 64> into;
    EXPECT_FALSE(ours.receiveAnswer(into));  // before the first question there is no socket
    const Bytes question = {1, 2, 0, 255}, answer = {9, 8};
    ASSERT_TRUE(ours.send({kLocalhost, other.port}, question));
    EXPECT_FALSE(ours.receiveAnswer(into));
    Endpoint asking, answering;
    EXPECT_EQ(other.receive(asking), question);
    EXPECT_EQ(asking.address, kLocalhost);
    ASSERT_TRUE(other.socket.send(asking, answer));
    EXPECT_EQ(receivedBy([&](auto room) { return ours.receiveAnswer(room); }, answering), answer);
    EXPECT_EQ(answering, (Endpoint{kLocalhost, other.port}));
    const auto port = asking.port;
    ASSERT_TRUE(ours.send({kLocalhost, other.port}, answer));
    EXPECT_EQ(other.receive(asking), answer);
    EXPECT_EQ(asking.port, port);
}

TEST(UdpDatagrams, HandOutTheBeginningOfWhatIsTooLong) {
    Other other;
    UdpDatagrams ours;
    ASSERT_TRUE(ours.send({kLocalhost, other.port}, Bytes(1)));
    Endpoint asking, answering;
    other.receive(asking);
    ASSERT_TRUE(other.socket.send(asking, Bytes(1000, 7)));
    EXPECT_EQ(receivedBy([&](auto room) { return ours.receiveAnswer(room); }, answering), Bytes(64, 7));
}

TEST(UdpDatagrams, GoOnWhereNobodyListens) {
    UdpDatagrams ours;
    const auto deaf = freePort();
    std::array<std::uint8_t, 64> into;
    for (int i = 0; i < 20; i++) {
        ours.send({kLocalhost, deaf}, Bytes(10));
        EXPECT_FALSE(ours.receiveAnswer(into));
    }
    Other other;
    ASSERT_TRUE(ours.send({kLocalhost, other.port}, Bytes(3)));
    Endpoint asking, answering;
    EXPECT_EQ(other.receive(asking).size(), 3u);
    ASSERT_TRUE(other.socket.send(asking, Bytes(4)));
    EXPECT_EQ(receivedBy([&](auto room) { return ours.receiveAnswer(room); }, answering).size(), 4u);
}

TEST(UdpDatagrams, HearABeaconOnAPortThatOthersListenToAsWell) {
    const auto port = freePort();
    UdpDatagrams first({kLocalhost, port}), second({kLocalhost, port});
    std::array<std::uint8_t, 64> into;
    EXPECT_FALSE(first.receiveBeacon(into));
    ASSERT_TRUE(first.listen()) << first.problem();
    ASSERT_TRUE(second.listen()) << second.problem();
    ASSERT_TRUE(first.listen());  // again
    Other other;
    ASSERT_TRUE(other.socket.send({kLocalhost, port}, Bytes(21, 5)));
    // Only one of them gets what is not sent to a group.
    ASSERT_TRUE(becomes([&] { return first.receiveBeacon(into) || second.receiveBeacon(into); }));
    EXPECT_FALSE(first.receiveAnswer(into));
}

TEST(UdpDatagrams, SayWhyAPortCannotBeHad) {
    Other other;
    UdpDatagrams ours({kNobody, other.port});
    EXPECT_FALSE(ours.listen());
    EXPECT_NE(ours.problem(), 0u);
}

TEST(UdpDatagrams, JoinAGroupAndHearItWhereTheMachineHasOne) {
    const Endpoint group = {0xEFFF0101, freePort()};
    UdpDatagrams ours(group);
    ASSERT_TRUE(ours.listen()) << ours.problem();
    EXPECT_TRUE(ours.listen());  // for networks that have come since
    Other other;
    std::array<std::uint8_t, 64> into;
    if (!other.socket.send(group, Bytes(21, 5))) GTEST_SKIP() << "no way to any group from here";
    // Nothing promises that it arrives: a container's network need not carry it.
    const auto arrives = [&] { return ours.receiveBeacon(into).has_value(); };
    for (int i = 0; i < 1000 && !arrives(); i++) std::this_thread::yield();
}

TEST(UdpDatagrams, KnowWhichAddressesAreThisComputers) {
    const auto addresses = xplane::ownAddresses();
    EXPECT_EQ(addresses.front(), kLocalhost);
    EXPECT_EQ(std::count(addresses.begin(), addresses.end(), 0u), 0);
#ifdef _WIN32
    GTEST_SKIP() << "under Wine, which binds to any address";
#endif
    UdpDatagrams ours;
    EXPECT_TRUE(ours.isHere(kLocalhost));
    EXPECT_TRUE(ours.isHere(0x7F010203));
    EXPECT_FALSE(ours.isHere(kNobody));
    EXPECT_FALSE(ours.isHere(0));
    EXPECT_FALSE(ours.isHere(0xEFFF0101));
    for (const auto address : addresses) EXPECT_TRUE(ours.isHere(address)) << address;
}

TEST(UdpDatagrams, CloseAndOpenOurSocketAnew) {
    Other other;
    UdpDatagrams ours;
    Endpoint asking;
    ASSERT_TRUE(ours.send({kLocalhost, other.port}, Bytes(1)));
    other.receive(asking);
    const auto before = asking.port;
    ours.closeOurs();
    other.socket.send(asking, Bytes(2));
    std::array<std::uint8_t, 64> into;
    EXPECT_FALSE(ours.receiveAnswer(into));
    ASSERT_TRUE(ours.send({kLocalhost, other.port}, Bytes(3)));
    EXPECT_EQ(other.receive(asking).size(), 3u);
    if (before != xplane::kOwnPort) return;  // another program has it
    EXPECT_EQ(asking.port, before);
}

TEST(UdpDatagrams, TakeAnotherPortWhereSomebodyHasTheirs) {
    Other other;
    UdpDatagrams first, second;
    Endpoint one, two;
    ASSERT_TRUE(first.send({kLocalhost, other.port}, Bytes(1)));
    other.receive(one);
    ASSERT_TRUE(second.send({kLocalhost, other.port}, Bytes(1)));
    other.receive(two);
    EXPECT_NE(one.port, two.port);
}

TEST(Endpoints, AreWrittenAndReadAsPeopleDo) {
    EXPECT_EQ(xplane::endpointText({0xC0A80120, 49000}), "192.168.1.32:49000");
    EXPECT_EQ(xplane::parseIpv4("192.168.1.32"), 0xC0A80120U);
    EXPECT_EQ(xplane::parseIpv4("255.255.255.255"), 0xFFFFFFFFU);
    for (const char* bad : {"", "1", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1.2.3.4 ", " 1.2.3.4", "1.2.3.x", "1..2.3"}) {
        EXPECT_EQ(xplane::parseIpv4(bad), std::nullopt) << bad;
    }
    const Sockets sockets;
    EXPECT_EQ(xplane::endpointOf(lookUp({"192.168.1.32", 49000}, true).at(0)), (Endpoint{0xC0A80120, 49000}));
    EXPECT_EQ(xplane::endpointOf(lookUp({"::1", 49000}, true).at(0)), std::nullopt);
    EXPECT_EQ(xplane::endpointOf({}), std::nullopt);
}
