#include "exchange/frequency_grid.h"
#include <gtest/gtest.h>
#include <cstdlib>
#include <limits>
#include <vector>

namespace {

constexpr FrequencyRange kAir{118000, 136990};
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

// The channels of one megahertz inside the range, written down the plain way.
std::vector<std::int32_t> channelsOf(std::int32_t base, std::int32_t spacing, FrequencyRange range) {
    std::vector<std::int32_t> channels;
    for (std::int32_t hundred = 0; hundred < 1000; hundred += 100)
        for (const std::int32_t quarter : {0, 25, 50, 75})
            for (const std::int32_t name : {0, 5, 10, 15}) {
                const std::int32_t khz = base + hundred + quarter + name;
                const bool isChannel = spacing == kSpacing833 || name == 0;
                if (isChannel && khz >= range.minKHz && khz <= range.maxKHz) channels.push_back(khz);
            }
    return channels;
}

}  // namespace

TEST(FrequencyGrid, HasFortyChannelsAt25And160At833InEachMegahertz) {
    const FrequencyRange all{0, 200000};
    EXPECT_EQ(channelsOf(118000, kSpacing25, all).size(), 40U);
    EXPECT_EQ(channelsOf(118000, kSpacing833, all).size(), 160U);
    int on25 = 0;
    int on833 = 0;
    for (std::int32_t khz = 118000; khz < 119000; khz++) {
        on25 += isOnGrid(khz, kSpacing25) ? 1 : 0;
        on833 += isOnGrid(khz, kSpacing833) ? 1 : 0;
    }
    EXPECT_EQ(on25, 40);
    EXPECT_EQ(on833, 160);
    for (const std::int32_t khz : channelsOf(118000, kSpacing25, all)) EXPECT_TRUE(isOnGrid(khz, kSpacing25)) << khz;
    for (const std::int32_t khz : channelsOf(118000, kSpacing833, all)) EXPECT_TRUE(isOnGrid(khz, kSpacing833)) << khz;
}

TEST(FrequencyGrid, OtherSpacingsHaveNoChannelAndNoStep) {
    for (const std::int32_t spacing : {-1, 2, 3, 25, kMost, kLeast}) {
        EXPECT_FALSE(isOnGrid(122800, spacing)) << spacing;
        for (const std::int32_t steps : {-1, 0, 1, 40}) {
            EXPECT_EQ(stepMegahertz(122800, spacing, kAir, steps), 0) << spacing;
            EXPECT_EQ(stepChannel(122800, spacing, kAir, steps), 0) << spacing;
        }
    }
}

TEST(FrequencyGrid, TheSmallKnobGoesToTheNextChannelAndWrapsInsideItsMegahertz) {
    const struct {
        std::int32_t start, spacing, steps, next;
    } rows[] = {
        {121975, kSpacing25, +1, 121000},  {121000, kSpacing25, -1, 121975},   {121500, kSpacing25, +1, 121525},
        {121500, kSpacing25, -1, 121475},  {121500, kSpacing25, 0, 121500},    {121500, kSpacing25, 40, 121500},
        {121500, kSpacing25, -40, 121500}, {121500, kSpacing25, 41, 121525},   {118015, kSpacing833, +1, 118025},
        {118025, kSpacing833, -1, 118015}, {118990, kSpacing833, +1, 118000},  {118000, kSpacing833, -1, 118990},
        {118000, kSpacing833, +1, 118005}, {118000, kSpacing833, 160, 118000}, {118000, kSpacing833, 159, 118990},
    };
    for (const auto& row : rows)
        EXPECT_EQ(stepChannel(row.start, row.spacing, kAir, row.steps), row.next) << row.start << " " << row.steps;
}

TEST(FrequencyGrid, AStartOffTheGridStepsFromTheNearestChannelAndOfTwoFromTheLower) {
    const struct {
        std::int32_t start, spacing, steps, next;
    } rows[] = {
        {118010, kSpacing25, +1, 118025},  // although 118.000 is nearer
        {118010, kSpacing25, 0, 118000},   {118013, kSpacing25, 0, 118025},   {118012, kSpacing25, 0, 118000},
        {118020, kSpacing833, 0, 118015},  // equally far from 118.025
        {118020, kSpacing833, +1, 118025}, {118020, kSpacing833, -1, 118010}, {118995, kSpacing833, 0, 118990},
        {118995, kSpacing833, +1, 118000}, {118999, kSpacing25, 0, 118975},
    };
    for (const auto& row : rows)
        EXPECT_EQ(stepChannel(row.start, row.spacing, kAir, row.steps), row.next) << row.start << " " << row.steps;
}

TEST(FrequencyGrid, ARangeThatCutsTheMegahertzTakesItsChannelsAway) {
    const FrequencyRange cutAbove{118000, 136500};
    EXPECT_EQ(stepChannel(136475, kSpacing25, cutAbove, +1), 136500);
    EXPECT_EQ(stepChannel(136475, kSpacing25, cutAbove, +2), 136000);
    EXPECT_EQ(stepChannel(136000, kSpacing25, cutAbove, -1), 136500);
    EXPECT_EQ(stepChannel(136000, kSpacing25, cutAbove, 21), 136000);
    const FrequencyRange cutBelow{118500, 136990};
    EXPECT_EQ(stepChannel(118500, kSpacing25, cutBelow, -1), 118975);
    EXPECT_EQ(stepChannel(118975, kSpacing25, cutBelow, +1), 118500);
    const FrequencyRange between{118001, 118024};  // without a single 25 kHz channel
    EXPECT_EQ(stepChannel(118010, kSpacing25, between, +1), 0);
    EXPECT_EQ(stepChannel(118010, kSpacing833, between, +1), 118015);
    EXPECT_EQ(stepChannel(118015, kSpacing833, between, +1), 118005);
    const FrequencyRange one{121500, 121500};
    for (const std::int32_t steps : {-3, 0, 1, 7}) EXPECT_EQ(stepChannel(121500, kSpacing25, one, steps), 121500);
}

TEST(FrequencyGrid, TheLargeKnobMovesByWholeMegahertzAndStopsAtTheRange) {
    EXPECT_EQ(stepMegahertz(122800, kSpacing25, kAir, +1), 123800);
    EXPECT_EQ(stepMegahertz(122800, kSpacing833, kAir, -4), 118800);
    EXPECT_EQ(stepMegahertz(122800, kSpacing25, kAir, -5), 0);
    EXPECT_EQ(stepMegahertz(136500, kSpacing25, {118000, 136975}, +1), 0);
    EXPECT_EQ(stepMegahertz(135975, kSpacing25, {118000, 136975}, +1), 136975);
    EXPECT_EQ(stepMegahertz(135980, kSpacing833, {118000, 136975}, +1), 0);
    EXPECT_EQ(stepMegahertz(122803, kSpacing25, kAir, +1), 123803);  // keeps the digits after the point
    EXPECT_EQ(stepMegahertz(122800, kSpacing25, kAir, 0), 122800);
}

TEST(FrequencyGrid, AStartOutsideTheRangeGoesNowhere) {
    for (const std::int32_t start : {0, 117999, 136991, -122800, kMost, kLeast}) {
        EXPECT_EQ(stepMegahertz(start, kSpacing25, kAir, 1), 0) << start;
        EXPECT_EQ(stepMegahertz(start, kSpacing25, kAir, -1), 0) << start;
        EXPECT_EQ(stepChannel(start, kSpacing25, kAir, 1), 0) << start;
    }
    EXPECT_EQ(stepChannel(122800, kSpacing25, {0, 0}, 1), 0);              // an unknown range
    EXPECT_EQ(stepMegahertz(122800, kSpacing25, {136990, 118000}, 1), 0);  // or an inverted one
}

TEST(FrequencyGrid, HugeStepsNeitherOverflowNorLeaveTheRange) {
    for (const std::int32_t steps : {kMost, kMost - 1, kLeast, kLeast + 1}) {
        EXPECT_EQ(stepMegahertz(122800, kSpacing25, kAir, steps), 0) << steps;
        for (const std::int32_t spacing : {kSpacing25, kSpacing833}) {
            const auto channels = channelsOf(122000, spacing, kAir);
            const auto count = static_cast<std::int64_t>(channels.size());
            const auto index = (((static_cast<std::int64_t>(steps) % count) + count) % count);
            EXPECT_EQ(stepChannel(122000, spacing, kAir, steps), channels[static_cast<std::size_t>(index)]) << steps;
        }
    }
    const FrequencyRange widest{kLeast, kMost};
    EXPECT_EQ(stepMegahertz(kMost, kSpacing25, widest, +1), 0);
    EXPECT_EQ(stepMegahertz(kMost, kSpacing25, widest, kMost), 0);
    EXPECT_EQ(stepChannel(kMost, kSpacing833, widest, 0), 2147483640);  // ...645 is not a channel, ...650 is too far
}

TEST(FrequencyGrid, EveryResultIsAChannelInRangeAndTurningBackReturns) {
    const FrequencyRange ranges[] = {kAir, {118000, 136975}, {118007, 136512}, {121490, 121530}};
    for (const auto& range : ranges)
        for (const std::int32_t spacing : {kSpacing25, kSpacing833})
            for (std::int32_t base = 118000; base < 137000; base += 1000)
                for (const std::int32_t start : channelsOf(base, spacing, range))
                    for (const std::int32_t steps : {1, 2, 7, 39, 41, 161, 1000}) {
                        const auto up = stepChannel(start, spacing, range, steps);
                        ASSERT_TRUE(isOnGrid(up, spacing)) << start << " " << steps;
                        ASSERT_TRUE(up >= range.minKHz && up <= range.maxKHz) << start << " " << steps;
                        ASSERT_EQ(up / 1000, start / 1000) << start << " " << steps;
                        ASSERT_EQ(stepChannel(up, spacing, range, -steps), start) << steps;
                        const auto megahertz = stepMegahertz(start, spacing, range, steps);
                        if (megahertz == 0) continue;
                        ASSERT_TRUE(megahertz >= range.minKHz && megahertz <= range.maxKHz);
                        ASSERT_EQ(stepMegahertz(megahertz, spacing, range, -steps), start);
                    }
}

TEST(FrequencyGrid, StepsAddUp) {
    for (const std::int32_t spacing : {kSpacing25, kSpacing833})
        for (std::int32_t steps = 0; steps < 200; steps++) {
            std::int32_t oneByOne = 121500;
            for (std::int32_t i = 0; i < steps; i++) oneByOne = stepChannel(oneByOne, spacing, kAir, 1);
            ASSERT_EQ(stepChannel(121500, spacing, kAir, steps), oneByOne) << steps;
        }
}
