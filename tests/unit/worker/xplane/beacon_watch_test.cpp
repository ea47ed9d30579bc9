#include "worker/xplane/beacon_watch.h"
#include <gtest/gtest.h>

namespace {

using xplane::Beacon;
using xplane::BeaconWatch;
using xplane::Endpoint;
using xplane::Simulator;

constexpr std::uint32_t kThis = 0xC0A80105, kOne = 0xC0A80120, kTwo = 0xC0A80121;
constexpr std::uint64_t kBeginMs = 10'000;

struct XPlanesAround : testing::Test {
    BeaconWatch watch{kBeginMs};
    std::uint64_t nowMs = kBeginMs;
    std::optional<std::uint64_t> dataMs;

    static Beacon beaconOf(std::int32_t version = 122015, std::uint32_t role = 1, std::int32_t program = 1) {
        return {program, version, role, 49000, "pc"};
    }
    void hear(std::uint32_t sender, const Beacon& beacon = beaconOf()) {
        watch.hear(beacon, sender, sender == kThis, nowMs);
    }
    std::optional<std::uint32_t> chosen() {
        watch.choose(dataMs, nowMs);
        return watch.chosen() ? std::optional(watch.chosen()->at.address) : std::nullopt;
    }
    // A second in which these are heard.
    void second(std::initializer_list<std::uint32_t> senders) {
        nowMs += 1000;
        for (const auto sender : senders) hear(sender);
    }
};

}  // namespace

TEST_F(XPlanesAround, OneOnThisComputerIsTakenAtOnce) {
    EXPECT_EQ(chosen(), std::nullopt);
    hear(kThis);
    EXPECT_EQ(chosen(), kThis);
    EXPECT_EQ(watch.chosen(), (Simulator{{kThis, 49000}, 122015, true}));
}

TEST_F(XPlanesAround, OneElsewhereWaitsUntilOneHereWouldHaveBeenHeard) {
    hear(kOne);
    nowMs += 1599;
    EXPECT_EQ(chosen(), std::nullopt);
    nowMs += 1;
    EXPECT_EQ(chosen(), kOne);
    EXPECT_FALSE(watch.chosen()->isHere);
}

TEST_F(XPlanesAround, TheFirstHeardElsewhereStaysAndOneHereTakesItsPlace) {
    second({kTwo});
    second({kOne, kTwo});
    EXPECT_EQ(chosen(), kTwo);
    second({kOne, kTwo});
    EXPECT_EQ(chosen(), kTwo);
    second({kOne, kThis, kTwo});
    EXPECT_EQ(chosen(), kThis);
    second({kOne, kThis, kTwo});
    EXPECT_EQ(chosen(), kThis);
}

TEST_F(XPlanesAround, HelpersAndOtherProgramsAreNotTaken) {
    nowMs += 5000;
    hear(kThis, beaconOf(122015, 2));
    hear(kThis, beaconOf(122015, 3));
    hear(kThis, beaconOf(122015, 1, 2));
    EXPECT_EQ(chosen(), std::nullopt);
}

TEST_F(XPlanesAround, OneIsGoneAfterTwoBeaconsThatAreMissingAndThreeSecondsOfNoData) {
    hear(kThis);
    EXPECT_EQ(chosen(), kThis);
    nowMs += 2499;
    EXPECT_EQ(chosen(), kThis);
    nowMs += 1;
    EXPECT_EQ(chosen(), std::nullopt);
    hear(kThis);
    EXPECT_EQ(chosen(), kThis);
    for (int i = 0; i < 20; i++) {  // it flies on though its beacon is not heard
        nowMs += 1000;
        dataMs = nowMs - 10;
        EXPECT_EQ(chosen(), kThis);
    }
    nowMs += 2989;
    EXPECT_EQ(chosen(), kThis);
    nowMs += 1;
    EXPECT_EQ(chosen(), std::nullopt);
}

TEST_F(XPlanesAround, WhenOneIsGoneTheNextIsTaken) {
    second({kOne, kTwo});
    second({kOne, kTwo});
    EXPECT_EQ(chosen(), kOne);
    for (int i = 0; i < 3; i++) second({kTwo});
    EXPECT_EQ(chosen(), kTwo);
    second({kOne, kTwo});
    EXPECT_EQ(chosen(), kTwo);
}

TEST_F(XPlanesAround, AnotherVersionAtTheSamePlaceIsTold) {
    hear(kThis);
    EXPECT_EQ(chosen(), kThis);
    hear(kThis, beaconOf(122100));
    EXPECT_EQ(chosen(), kThis);
    EXPECT_EQ(watch.chosen()->version, 122100);
}

TEST_F(XPlanesAround, AFloodOfBeaconsIsNotKept) {
    nowMs += 2000;
    for (std::uint32_t i = 0; i < 100'000; i++) hear(0x0A000000 + i);
    EXPECT_EQ(chosen(), 0x0A000000U);
    hear(kThis);
    EXPECT_EQ(chosen(), kThis);  // there is room for it all the same
}
