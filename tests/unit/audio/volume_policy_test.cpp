#include "audio/volume_policy.h"
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
        {0.0f, 1.0f, 10.0f, 0.5f, 0.5},  // below unity the simulator decides the own volume
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

TEST(CaptureModeText, AsksForTheMarkByItsSecondLine) {
    const struct {
        const char* text;
        bool isMarked;
    } rows[] = {{"1\nmark", true},
                {"0\r\nmark\r\n", true},
                {"\nmark\nmore", true},
                {"auto\n \tmark \r\n", true},
                {"", false},
                {"1", false},
                {"mark", false},
                {"1\n", false},
                {"1\n\nmark", false},
                {"1\nmarked", false},
                {"1\nMARK", false},
                {"1\nm", false},
                {"1\nno mark", false},
                {"1 mark\n", false},
                {"1\rmark", false}};
    for (const auto& row : rows) EXPECT_EQ(asksForMark(row.text), row.isMarked) << row.text;
}

TEST(VolumeCurve, IsLinearToUnityAt80AndThenAThirdOfADecibelAPercentToPlus6) {
    const struct {
        double percent, gain;
    } rows[] = {{0, 0.0},           {1, 0.0125},        {8, 0.1},           {20, 0.25},
                {40, 0.5},          {60, 0.75},         {79, 0.9875},       {80, 1.0},
                {81, 1.0351421667}, {90, 1.4125375446}, {95, 1.6788040181}, {100, 1.9952623150}};
    for (const auto& row : rows) EXPECT_NEAR(percentToGain(row.percent), row.gain, 1e-10) << row.percent;
    EXPECT_EQ(percentToGain(80.0), 1.0);
    EXPECT_NEAR(20.0 * std::log10(percentToGain(100.0)), 6.0, 1e-12);
    EXPECT_NEAR(20.0 * std::log10(percentToGain(85.0)), 1.5, 1e-12);
}

TEST(VolumeCurve, ClampsToItsHundredPercent) {
    EXPECT_EQ(percentToGain(-0.001), 0.0);
    EXPECT_EQ(percentToGain(-1e300), 0.0);
    EXPECT_EQ(percentToGain(100.001), percentToGain(100.0));
    EXPECT_EQ(percentToGain(1e300), percentToGain(100.0));
}

TEST(VolumeCurve, RisesAtEveryStepWithoutAJump) {
    for (int tenth = 1; tenth <= 1000; tenth++) {
        const double before = percentToGain((tenth - 1) / 10.0);
        const double now = percentToGain(tenth / 10.0);
        EXPECT_GT(now, before) << tenth;
        EXPECT_LT(now - before, 0.008) << tenth;
    }
}
