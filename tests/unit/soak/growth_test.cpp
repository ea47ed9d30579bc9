#include "tests/soak/growth.h"
#include <gtest/gtest.h>
#include <vector>
#include "tests/soak/dice.h"

namespace {

// A sample every 10 s.
template <class ValueOf>
std::vector<GrowthSample> samplesOf(int count, ValueOf valueOf) {
    std::vector<GrowthSample> samples;
    for (int i = 0; i < count; i++) samples.push_back({10.0 * i, valueOf(i)});
    return samples;
}

// -1..1
double noise(Dice& dice) {
    return static_cast<double>(dice.below(2001)) / 1000.0 - 1.0;
}

}  // namespace

TEST(GrowthLine, OfAStraightLineIsThatLine) {
    const GrowthLine line = fitGrowth(samplesOf(20, [](int i) { return 100.0 + 2.5 * i; }));
    EXPECT_TRUE(line.isKnown);
    EXPECT_DOUBLE_EQ(line.slope, 0.25);
    EXPECT_DOUBLE_EQ(line.lowest, 0.25);
    EXPECT_DOUBLE_EQ(line.highest, 0.25);
    EXPECT_DOUBLE_EQ(line.spanSeconds, 190.0);
    EXPECT_DOUBLE_EQ(line.certainGrowth(), 47.5);
}

// 0 1 2 .. 10 and then 400: 55 of the 66 slopes are 0.1 exactly, and eleven lead to the 400. Kendall's deviation for
// twelve samples is 14.58, so that the 14 flattest and the 14 steepest are outside the limits.
TEST(GrowthLine, HasTheMedianSlopeNotTheMean) {
    const GrowthLine line = fitGrowth(samplesOf(12, [](int i) { return i < 11 ? 1.0 * i : 400.0; }));
    EXPECT_DOUBLE_EQ(line.slope, 0.1);
    EXPECT_DOUBLE_EQ(line.lowest, 0.1);
    EXPECT_DOUBLE_EQ(line.highest, 0.1);
}

// Sorted, the slopes of 0 0 0 0 0 0 60 60 60 60 60 60 are 30 noughts, then those across the step, from 60/110 s up.
TEST(GrowthLine, HasTheLimitsOfKendall) {
    const GrowthLine line = fitGrowth(samplesOf(12, [](int i) { return i < 6 ? 0.0 : 60.0; }));
    EXPECT_DOUBLE_EQ(line.lowest, 0.0);
    // 36 pairs cross the step: one is 10 s apart, two 20 s, three 30 s and so on; the fifteenth steepest is 50 s apart.
    EXPECT_DOUBLE_EQ(line.highest, 60.0 / 50.0);
}

TEST(GrowthLine, FallsWhereTheValuesDo) {
    const GrowthLine line = fitGrowth(samplesOf(20, [](int i) { return 100.0 - i; }));
    EXPECT_DOUBLE_EQ(line.slope, -0.1);
    EXPECT_LT(line.certainGrowth(), 0.0);
}

TEST(GrowthLine, NeedsTwelveSamplesAtDifferentTimes) {
    const auto rising = [](int i) { return 1.0 * i; };
    EXPECT_FALSE(fitGrowth({}).isKnown);
    EXPECT_FALSE(fitGrowth(samplesOf(11, rising)).isKnown);
    EXPECT_TRUE(fitGrowth(samplesOf(12, rising)).isKnown);
    const std::vector<GrowthSample> sameTime(20, GrowthSample{7.0, 3.0});
    EXPECT_FALSE(fitGrowth(sameTime).isKnown);
}

// Phases of three samples, as far apart as the steepest growth: taken together they would rise or fall.
TEST(GrowthLine, ComparesSamplesOfOnePhaseOnly) {
    for (const double apart : {-100.0, 100.0}) {
        const auto withPhases = [&](int count, double perSample) {
            auto samples = samplesOf(count, [&](int i) { return perSample * i; });
            for (int i = 0; i < count; i++) {
                GrowthSample& sample = samples[static_cast<std::size_t>(i)];
                sample.phase = i / 3 % 2;
                sample.value += apart * sample.phase;
            }
            return fitGrowth(samples);
        };
        for (const int count : {12, 13, 14, 15}) {
            const GrowthLine still = withPhases(count, 0.0);
            EXPECT_EQ(still.lowest, 0.0) << count;
            EXPECT_EQ(still.highest, 0.0) << count;
            const GrowthLine growing = withPhases(count, 1.0);
            EXPECT_DOUBLE_EQ(growing.lowest, 0.1) << count;
            EXPECT_DOUBLE_EQ(growing.highest, 0.1) << count;
        }
    }
}

TEST(GrowthLine, OfPhasesWithOneSampleEachIsUnknown) {
    auto samples = samplesOf(12, [](int i) { return 1.0 * i; });
    for (int i = 0; i < 12; i++) samples[static_cast<std::size_t>(i)].phase = i;
    EXPECT_FALSE(fitGrowth(samples).isKnown);
}

// Wherever it stands: a line of least squares would call each of the middle ones certain.
TEST(GrowthLine, OfASingleStepIsNoCertainGrowth) {
    for (int step = 1; step < 60; step++) {
        const GrowthLine line = fitGrowth(samplesOf(60, [&](int i) { return i < step ? 200.0 : 240.0; }));
        EXPECT_LE(line.certainGrowth(), 0.0) << step;
    }
}

TEST(GrowthLine, IsNotTiltedByAFewStrays) {
    for (int stray = 0; stray < 58; stray++) {
        const GrowthLine line =
            fitGrowth(samplesOf(60, [&](int i) { return i >= stray && i < stray + 3 ? 1000.0 : 50.0; }));
        EXPECT_EQ(line.slope, 0.0) << stray;
        EXPECT_EQ(line.certainGrowth(), 0.0) << stray;
    }
}

TEST(GrowthLine, OfNoiseIsUncertainToBothSides) {
    for (const int phases : {1, 2}) {
        int certain = 0;
        for (std::uint64_t seed = 1; seed <= 500; seed++) {
            Dice dice(seed);
            auto samples = samplesOf(40, [&](int) { return 500.0 + 20.0 * noise(dice); });
            for (std::size_t i = 0; i < samples.size(); i++) samples[i].phase = static_cast<int>(i) / 3 % phases;
            const GrowthLine line = fitGrowth(samples);
            EXPECT_LT(line.lowest, line.slope) << seed;
            EXPECT_GT(line.highest, line.slope) << seed;
            certain += line.lowest > 0.0 || line.highest < 0.0;
        }
        EXPECT_LE(certain, 12) << phases;  // 5 on average
        EXPECT_GE(certain, 1) << phases;   // limits that no noise ever exceeds would be too wide
    }
}

TEST(GrowthLine, FindsASlowLeakUnderNoise) {
    for (std::uint64_t seed = 1; seed <= 50; seed++) {
        Dice dice(seed);
        // 30 within the run, under noise of 20 to either side.
        const GrowthLine line = fitGrowth(samplesOf(60, [&](int i) { return 0.5 * i + 20.0 * noise(dice); }));
        EXPECT_GT(line.certainGrowth(), 1.0) << seed;
        EXPECT_LT(line.certainGrowth(), 29.5) << seed;
        EXPECT_GT(line.possibleGrowth(), 29.5) << seed;
    }
}

TEST(GrowthLastHalf, LeavesOutTheWarmUp) {
    const auto samples = samplesOf(13, [](int i) { return 1.0 * i; });  // 0..120 s
    const auto half = lastHalf(samples);
    ASSERT_EQ(half.size(), 7u);
    EXPECT_EQ(half.front().atSeconds, 60.0);
    EXPECT_EQ(half.back().atSeconds, 120.0);
    EXPECT_TRUE(lastHalf({}).empty());
}
