#include "audio/voice_gain.h"
#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include "tests/reference/plain_voice_hooks.h"
#include "tests/unit/audio/voice_blocks.h"

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

std::vector<short> everySample() {
    std::vector<short> all;
    for (int x = -32768; x <= 32767; x++) all.push_back(static_cast<short>(x));
    return all;
}

}  // namespace

TEST(VoiceGain, OfEverySampleIsTheTruncatedAndClampedProduct) {
    const float gains[] = {0.0f,     1.0f,     0.5f,  0.25f, -1.0f,  1.9952623f, 7.943282f, 4.0f,   31.76f,     1e-30f,
                           65537.0f, 70000.0f, -7e4f, 1e10f, -1e10f, 1e38f,      -1e38f,    3e-39f, 0.99999994f};
    for (const float gain : gains) {
        std::vector<short> got = everySample();
        applyGain(got.data(), static_cast<int>(got.size()), gain);
        for (int x = -32768; x <= 32767; x++) {
            const float product = static_cast<float>(x) * gain;
            ASSERT_EQ(got[static_cast<std::size_t>(x + 32768)], plainToSample(static_cast<double>(product)))
                << x << " times " << gain;
        }
    }
}

TEST(VoiceGain, IsTheSameInTheTailOfABlockAsInItsBody) {
    const std::vector<short> all = everySample();
    for (const float gain : {0.7f, 7.943282f, 1e38f}) {
        std::vector<short> body = all;
        applyGain(body.data(), static_cast<int>(body.size()), gain);
        for (std::size_t i = 0; i < all.size(); i++) {
            short one = all[i];
            applyGain(&one, 1, gain);
            ASSERT_EQ(one, body[i]) << all[i] << " times " << gain;
        }
    }
}

TEST(VoiceGain, TouchesNoValueBesideTheBlock) {
    for (int n = 0; n <= 40; n++) {
        std::vector<short> block(48, 100);
        applyGain(block.data() + 4, n, 2.0f);
        for (int i = 0; i < 48; i++)
            ASSERT_EQ(block[static_cast<std::size_t>(i)], i >= 4 && i < 4 + n ? 200 : 100) << n << " values, at " << i;
    }
}

TEST(VoiceGain, TruncatesTowardZeroAndClampsWhateverTheSize) {
    const struct {
        float x;
        short sample;
    } rows[] = {{0.99f, 0},        {-0.99f, 0},       {1.5f, 1},          {-1.5f, -1},         {32767.0f, 32767},
                {32767.9f, 32767}, {32768.0f, 32767}, {1e30f, 32767},     {-32768.0f, -32768}, {-32768.9f, -32768},
                {-4e9f, -32768},   {-1e30f, -32768},  {kInfinity, 32767}, {-kInfinity, -32768}};
    for (const auto& row : rows) EXPECT_EQ(truncateToSample(row.x), row.sample) << row.x;
}

TEST(BlockRms, IsExactForEverySoundAndLength) {
    VoiceBlocks blocks(1);
    for (int round = 0; round < 400; round++) {
        const std::vector<short> block = blocks.takeAny();
        double squares = 0.0;
        for (const short x : block) squares += static_cast<double>(x) * static_cast<double>(x);
        ASSERT_EQ(blockRms(block.data(), static_cast<int>(block.size())),
                  std::sqrt(squares / static_cast<double>(block.size())));
    }
    const std::vector<short> lowest(100'003, -32768);
    EXPECT_EQ(blockRms(lowest.data(), static_cast<int>(lowest.size())), 32768.0);
}

TEST(FollowLevel, HoldsAt180AndMovesAboveIt) {
    EXPECT_EQ(followLevel(2.5f, 180.0, 0.02), 2.5f);
    EXPECT_EQ(followLevel(2.5f, 0.0, 0.02), 2.5f);
    EXPECT_GT(followLevel(2.5f, 180.001, 0.02), 2.5f);
}

TEST(FollowLevel, FallsSixteenTimesFasterThanItRises) {
    // After one time constant 63 % of the way is done.
    EXPECT_NEAR(followLevel(1.0f, 32767.0, 0.025), 1.0 + (0.25 - 1.0) * 0.63212056, 1e-6);
    EXPECT_NEAR(followLevel(1.0f, 500.0, 0.4), 1.0 + (4.0 - 1.0) * 0.63212056, 1e-6);
}

TEST(FollowLevel, EndsAtOneTenthOfFullScaleWithinAQuarterAndFourTimes) {
    const struct {
        double rms;
        float gain;
    } rows[] = {{3277.0, 1.0f}, {6554.0, 0.5f}, {32767.0, 0.25f}, {13109.0, 0.25f}, {200.0, 4.0f}, {1638.5, 2.0f}};
    for (const auto& row : rows) {
        float gain = 1.7f;
        for (int i = 0; i < 2000; i++) gain = followLevel(gain, row.rms, 0.02);
        EXPECT_NEAR(gain, row.gain, 2e-5f) << row.rms;
    }
}

TEST(FollowLevel, IsThePlainEqualizersGainToTheLastBit) {
    VoiceBlocks blocks(7);
    float gain = 1.0f;
    for (int round = 0; round < 3000; round++) {
        const std::vector<short> block = blocks.takeAny();
        const int n = static_cast<int>(block.size());
        const int channels = static_cast<int>(blocks.below(4));
        const int slots = channels == 2 || channels == 3 ? 2 : 1;
        const float expected = plainFollowLevel(gain, block.data(), n, channels);
        gain = followLevel(gain, blockRms(block.data(), n), n / (slots * 48000.0));
        ASSERT_EQ(gain, expected) << "round " << round;
    }
}
