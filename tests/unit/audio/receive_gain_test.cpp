#include "audio/receive_gain.h"
#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include "audio/capture_mode.h"

namespace {

constexpr float kUnknown = -1.0f;

Settings settingsOf(bool follow, float low, float high, float receive) {
    Settings settings;
    settings.follow_volume = follow;
    settings.volume_min = low;
    settings.volume_max = high;
    settings.receive_volume = receive;
    return settings;
}

double decibels(double db) {
    return std::pow(10.0, db / 20.0);
}

}  // namespace

TEST(ReceiveGain, FollowsTheAircraftBetweenTheBounds) {
    const struct {
        float low, high, receive, volume;
        double gain;
    } rows[] = {
        {0.0f, 1.0f, 80.0f, 0.0f, 0.0},
        {0.0f, 1.0f, 80.0f, 0.5f, 0.5},
        {0.0f, 1.0f, 80.0f, 1.0f, 1.0},
        {0.25f, 0.75f, 80.0f, 0.0f, 0.25},
        {0.25f, 0.75f, 80.0f, 1.0f, 0.75},
        {0.25f, 0.75f, 80.0f, 0.5f, 0.5},
        {0.5f, 0.5f, 80.0f, 0.9f, 0.5},
        {0.0f, 1.0f, 10.0f, 0.5f, 0.5},  // below unity the own volume is the simulator's affair
        {0.0f, 1.0f, 90.0f, 0.5f, 0.5 * decibels(3.0)},
        {0.0f, 1.0f, 100.0f, 1.0f, decibels(6.0)},
    };
    for (const auto& row : rows)
        EXPECT_NEAR(receiveGainOf(settingsOf(true, row.low, row.high, row.receive), row.volume), row.gain, 1e-5)
            << row.low << " " << row.high << " " << row.receive << " " << row.volume;
}

TEST(ReceiveGain, IsUnityWhileTheFollowedVolumeIsUnknown) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float volume : {kUnknown, -0.001f, 1.001f, 75.0f, nan, std::numeric_limits<float>::infinity()})
        for (const float receive : {10.0f, 80.0f, 100.0f})
            EXPECT_EQ(receiveGainOf(settingsOf(true, 0.2f, 0.9f, receive), volume), 1.0f) << volume;
}

TEST(ReceiveGain, IsTheUsersOwnWithoutFollowing) {
    const struct {
        float low, high, receive;
        double gain;
    } rows[] = {
        {0.0f, 1.0f, 80.0f, 1.0},
        {0.0f, 1.0f, 40.0f, 0.5},
        {0.0f, 1.0f, 0.0f, 0.0},
        {0.25f, 0.75f, 80.0f, 0.75},  // 20 + 0.5 * 80 percent
        {0.25f, 0.75f, 0.0f, 0.25},
        {0.25f, 0.75f, 40.0f, 0.5},
        {0.0f, 1.0f, 100.0f, decibels(6.0)},
        {0.0f, 0.5f, 90.0f, 0.5 * decibels(3.0)},
    };
    for (const auto& row : rows)
        for (const float volume : {kUnknown, 0.0f, 0.3f, 1.0f})
            EXPECT_NEAR(receiveGainOf(settingsOf(false, row.low, row.high, row.receive), volume), row.gain, 1e-5)
                << row.low << " " << row.high << " " << row.receive;
}

TEST(ReceiveGain, IsUnityWithMasterOff) {
    for (const bool follow : {true, false})
        for (const float volume : {kUnknown, 0.0f, 0.5f}) {
            Settings settings = settingsOf(follow, 0.0f, 0.5f, 100.0f);
            settings.master = false;
            EXPECT_EQ(receiveGainOf(settings, volume), 1.0f);
        }
}

TEST(CaptureModeText, GoesByTheFirstCharacterOfTheFirstLine) {
    const struct {
        const char* text;
        std::int32_t mode;
    } rows[] = {{"off", 2},
                {"on", 2},
                {"o", 2},
                {"2", 2},
                {"2\r\n0", 2},
                {"false", 0},
                {"f", 0},
                {"0", 0},
                {"0\n2", 0},
                {"1", 1},
                {"auto", 1},
                {"", 1},
                {"\n0", 1},
                {"\r\n2", 1},
                {" 0", 1},
                {"OFF", 1},
                {"F", 1},
                {"-2", 1},
                {"\xef\xbb\xbf"
                 "0",
                 1}};
    for (const auto& row : rows) EXPECT_EQ(captureModeOf(row.text), row.mode) << row.text;
}
