#include "worker/xplane/named_simulator.h"
#include <gtest/gtest.h>
#include <atomic>
#include "tests/unit/worker/becomes.h"

namespace {

using xplane::Endpoint;
using xplane::NamedSimulator;

std::vector<NetAddress> addressesOf(std::initializer_list<const char*> hosts) {
    std::vector<NetAddress> all;
    for (const char* host : hosts) {
        for (const auto& address : lookUp({host, 49000}, true)) all.push_back(address);
    }
    return all;
}

const Sockets kSockets;  // for lookUp on Windows
constexpr Endpoint kFirst = {0x0A000001, 49000}, kSecond = {0x0A000002, 49000};
constexpr std::uint64_t kNowMs = 100'000;

}  // namespace

TEST(NamedXPlane, ANumberNeedsNoLookup) {
    NamedSimulator named({"10.0.0.1", 49000}, [](const HostPort& address, bool literalOnly) {
        EXPECT_TRUE(literalOnly);
        return lookUp(address, literalOnly);
    });
    named.poll(false, kNowMs);
    EXPECT_EQ(named.present(), kFirst);
    EXPECT_EQ(named.problem(), "");
    named.poll(false, kNowMs + 1999);
    EXPECT_EQ(named.problem(), "");
    named.poll(false, kNowMs + 2000);
    EXPECT_EQ(named.problem(), "no answer from 10.0.0.1");
    EXPECT_EQ(named.present(), kFirst);  // it may come yet
    named.poll(true, kNowMs + 60'000);
    EXPECT_EQ(named.problem(), "");
    named.poll(false, kNowMs + 90'000);
    EXPECT_EQ(named.present(), kFirst);
}

TEST(NamedXPlane, TheAddressesOfANameHaveTheirTurns) {
    std::atomic<int> lookups = 0;
    NamedSimulator named({"simpc", 49000}, [&](const HostPort&, bool literalOnly) {
        if (literalOnly) return std::vector<NetAddress>();
        lookups++;
        return addressesOf({"::1", "10.0.0.1", "10.0.0.2"});
    });
    ASSERT_TRUE(becomes([&] {
        named.poll(false, kNowMs);
        return named.present().has_value();
    }));
    EXPECT_EQ(named.present(), kFirst);  // the IPv6 address is passed over
    named.poll(false, kNowMs + 2000);
    EXPECT_EQ(named.present(), kSecond);
    EXPECT_EQ(named.problem(), "");
    named.poll(false, kNowMs + 4000);
    EXPECT_EQ(named.problem(), "no answer from simpc");
    EXPECT_EQ(named.present(), kFirst);
    named.poll(false, kNowMs + 6000);
    EXPECT_EQ(named.present(), kSecond);
    named.poll(true, kNowMs + 6100);  // answers
    EXPECT_EQ(named.present(), kSecond);
    EXPECT_EQ(lookups, 1);
    ASSERT_TRUE(becomes([&] {  // after it has gone it is looked up again
        named.poll(false, kNowMs + 60'000);
        return lookups == 2;
    }));
}

TEST(NamedXPlane, ANameThatNobodyKnowsIsLookedUpAgainAfterTenSeconds) {
    std::atomic<int> lookups = 0;
    NamedSimulator named({"simpc", 49000}, [&](const HostPort&, bool literalOnly) {
        if (!literalOnly) lookups++;
        return std::vector<NetAddress>();
    });
    ASSERT_TRUE(becomes([&] {
        named.poll(false, kNowMs);
        return !named.problem().empty();
    }));
    EXPECT_EQ(named.problem(), "no such computer: simpc");
    EXPECT_EQ(named.present(), std::nullopt);
    for (std::uint64_t ms = 0; ms < 10'000; ms += 50) named.poll(false, kNowMs + ms);
    EXPECT_EQ(lookups, 1);
    ASSERT_TRUE(becomes([&] {
        named.poll(false, kNowMs + 10'000);
        return lookups == 2;
    }));
}

TEST(NamedXPlane, ALookupThatTakesTooLongIsNotWaitedFor) {
    std::atomic<bool> mayAnswer = false;
    NamedSimulator named({"simpc", 49000}, [&mayAnswer](const HostPort&, bool literalOnly) {
        if (literalOnly) return std::vector<NetAddress>();
        becomes([&] { return mayAnswer.load(); });
        return addressesOf({"10.0.0.1"});
    });
    named.poll(false, kNowMs);
    named.poll(false, kNowMs + 9999);
    EXPECT_EQ(named.problem(), "");
    named.poll(false, kNowMs + 10'000);
    EXPECT_EQ(named.problem(), "no such computer: simpc");
    mayAnswer = true;
    ASSERT_TRUE(becomes([&] {  // but taken when it comes
        named.poll(false, kNowMs + 10'001);
        return named.present().has_value();
    }));
}
