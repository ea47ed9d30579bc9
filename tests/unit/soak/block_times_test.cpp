#include "tests/soak/block_times.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <vector>
#include "tests/soak/dice.h"

TEST(BlockTimes, WithoutAnyAreNought) {
    const BlockTimes times;
    EXPECT_EQ(times.count(), 0u);
    EXPECT_EQ(times.worst(), 0u);
    EXPECT_EQ(times.percentile(0.5), 0u);
    EXPECT_EQ(times.percentile(1.0), 0u);
}

TEST(BlockTimes, OfOneAreThatOne) {
    for (const std::uint64_t time : {0ULL, 1ULL, 31ULL, 32ULL, 33ULL, 63ULL, 64ULL, 65ULL, 20'000'000ULL}) {
        BlockTimes times;
        times.add(time);
        for (const double share : {0.0, 0.5, 0.999, 1.0}) EXPECT_EQ(times.percentile(share), time);
        EXPECT_EQ(times.worst(), time);
    }
}

TEST(BlockTimes, ArePercentilesOfTheSortedTimesAndNeverTooSmall) {
    Dice dice(7);
    std::vector<std::uint64_t> all;
    BlockTimes times;
    for (int i = 0; i < 5000; i++) {
        // From nanoseconds to seconds, evenly by octaves.
        all.push_back(dice.next() >> (64 - 1 - dice.below(30)));
        times.add(all.back());
    }
    std::sort(all.begin(), all.end());
    for (const double share : {0.01, 0.25, 0.5, 0.9, 0.99, 0.999, 1.0}) {
        const auto rank = static_cast<std::size_t>(std::ceil(share * 5000.0));
        const std::uint64_t exact = all[rank - 1];
        EXPECT_GE(times.percentile(share), exact) << share;
        EXPECT_LE(static_cast<double>(times.percentile(share)), static_cast<double>(exact) * 1.032 + 1.0) << share;
    }
    EXPECT_EQ(times.worst(), all.back());
    EXPECT_EQ(times.percentile(1.0), all.back());
}

TEST(BlockTimes, AddUp) {
    BlockTimes one, two;
    for (int i = 0; i < 99; i++) one.add(1000);
    two.add(5'000'000);
    one.add(two);
    EXPECT_EQ(one.count(), 100u);
    EXPECT_EQ(one.worst(), 5'000'000u);
    EXPECT_LT(one.percentile(0.99), 1100u);
    EXPECT_EQ(one.percentile(0.995), 5'000'000u);
}

TEST(BlockTimes, TakeTimesOfAnyLength) {
    BlockTimes times;
    times.add(~std::uint64_t{0});
    times.add(1);
    EXPECT_EQ(times.percentile(0.5), 1u);
    EXPECT_EQ(times.percentile(1.0), ~std::uint64_t{0});
}
