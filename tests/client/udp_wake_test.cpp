// udp_wake_test.cpp - the worker's sleep and X-Plane's datagrams: what arrives on either socket ends a wait.
#include <gtest/gtest.h>
#include <windows.h>
#include <array>
#include <cstdint>
#include <optional>
#include "tests/client/test_machine_win.h"
#include "tests/unit/worker/xplane/loopback_socket.h"

namespace {

using xplane::UdpDatagrams;

constexpr DWORD kSoonMs = 20'000;  // only a wait that never ends takes so long

bool wakes(const UdpDatagrams& datagrams) {
    return WaitForSingleObject(datagrams.wakeHandle(), kSoonMs) == WAIT_OBJECT_0;
}

bool isAwake(const UdpDatagrams& datagrams) {
    return WaitForSingleObject(datagrams.wakeHandle(), 0) == WAIT_OBJECT_0;
}

}  // namespace

TEST(UdpWake, ADatagramOnEitherSocketEndsTheSleepAndTakingThemLetsItSleepAgain) {
    LoopbackSocket xplane;
    const std::uint16_t beaconPort = freePort();
    UdpDatagrams datagrams({kLocalhost, beaconPort});
    EXPECT_EQ(datagrams.wakeHandle(), nullptr);
    ASSERT_TRUE(datagrams.listen()) << datagrams.problem();
    ASSERT_NE(datagrams.wakeHandle(), nullptr);
    std::array<std::uint8_t, 64> into;
    const std::array<std::uint8_t, 3> bytes = {1, 2, 3};
    for (int i = 0; i < 3; i++) {
        EXPECT_FALSE(datagrams.receiveBeacon(into));
        EXPECT_FALSE(isAwake(datagrams));
        ASSERT_TRUE(xplane.socket.send({kLocalhost, beaconPort}, bytes));
        ASSERT_TRUE(wakes(datagrams));
        EXPECT_TRUE(datagrams.receiveBeacon(into));
    }
    ASSERT_TRUE(datagrams.send({kLocalhost, xplane.port}, bytes));
    std::optional<xplane::Received> question;
    ASSERT_TRUE(waitFor([&] { return (question = xplane.socket.receive(into)).has_value(); }, kSoonMs));
    for (int i = 0; i < 3; i++) {
        EXPECT_FALSE(datagrams.receiveAnswer(into));
        EXPECT_FALSE(datagrams.receiveBeacon(into));
        EXPECT_FALSE(isAwake(datagrams));
        ASSERT_TRUE(xplane.socket.send(question->from, bytes));
        ASSERT_TRUE(wakes(datagrams));
        EXPECT_TRUE(datagrams.receiveAnswer(into));
    }
}

TEST(UdpWake, WhatIsLeftForTheNextRoundEndsTheSleepAgain) {
    LoopbackSocket xplane;
    const std::uint16_t beaconPort = freePort();
    UdpDatagrams datagrams({kLocalhost, beaconPort});
    ASSERT_TRUE(datagrams.listen()) << datagrams.problem();
    std::array<std::uint8_t, 64> into;
    for (int i = 0; i < 2; i++)
        ASSERT_TRUE(xplane.socket.send({kLocalhost, beaconPort}, std::array<std::uint8_t, 3>{}));
    for (int i = 0; i < 2; i++) {
        ASSERT_TRUE(wakes(datagrams)) << i;
        EXPECT_TRUE(datagrams.receiveBeacon(into)) << i;  // one only
    }
    EXPECT_FALSE(datagrams.receiveBeacon(into));
    EXPECT_FALSE(isAwake(datagrams));
}
