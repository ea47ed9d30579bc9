#include "tests/soak/hostile_telemetry.h"
#include <gtest/gtest.h>
#include <set>
#include "exchange/telemetry_text.h"
#include "tests/client/fake_telemetry.h"

TEST(HostileTelemetry, OfEveryKindDiffersFromTheGoodTextAndIsRead) {
    const std::string good = telemetryText(FakeTelemetry{}, 1'800'000'000.0);
    Dice dice(11);
    for (std::size_t kind = 0; kind < kHostileKinds; kind++) {
        for (int times = 0; times < 20; times++) {
            const std::string harmed = harmedTelemetry(kind, good, dice);
            EXPECT_NE(harmed, good) << kind;
            EXPECT_LT(harmed.size(), 1'200'000u) << kind;
            parseTelemetry(harmed);  // under the sanitizers
        }
    }
}

TEST(HostileTelemetry, IsTheSameForTheSameSeedAndOtherForAnother) {
    const std::string good = telemetryText(FakeTelemetry{}, 1'800'000'000.0);
    Dice one(3), same(3), other(4);
    int different = 0;
    for (std::size_t kind = 0; kind < kHostileKinds; kind++) {
        const std::string harmed = harmedTelemetry(kind, good, one);
        EXPECT_EQ(harmed, harmedTelemetry(kind, good, same)) << kind;
        different += harmed != harmedTelemetry(kind, good, other);
    }
    EXPECT_GE(different, 8);  // an empty file is empty for every seed, and a few others have not many forms
}

TEST(HostileTelemetry, TearsAtAnyPlace) {
    const std::string good = telemetryText(FakeTelemetry{}, 1'800'000'000.0);
    Dice dice(5);
    std::set<std::size_t> lengths;
    for (int times = 0; times < 5000; times++) lengths.insert(harmedTelemetry(0, good, dice).size());
    EXPECT_GT(lengths.size(), good.size() * 9 / 10);
    EXPECT_LT(*lengths.rbegin(), good.size());
}

TEST(HostileTelemetry, ReplacesOneNumberOrAll) {
    const std::string good = "{\"a\": 1, \"b\": 2}";
    Dice dice(1);
    const std::string all = harmedTelemetry(7, good, dice);
    EXPECT_EQ(all.find(" 1"), std::string::npos);
    EXPECT_EQ(all.find(" 2"), std::string::npos);
    EXPECT_NE(all.find("\"b\":"), std::string::npos);
    const std::string one = harmedTelemetry(6, good, dice);
    EXPECT_NE(one.find(" 1") == std::string::npos, one.find(" 2") == std::string::npos) << one;
}
