#include "channels/channel_name.h"
#include <gtest/gtest.h>
#include <climits>
#include <cstdint>
#include <string>

TEST(ChannelName, CarriesAFrequencyWrittenWithPointOrCommaAnywhereInIt) {
    const struct {
        const char* name;
        std::int32_t khz;
    } rows[] = {{"122.800", 122800},
                {"122,800", 122800},
                {"122.800 Tower", 122800},
                {"Tower 122.800", 122800},
                {"118,275 Approach", 118275},
                {"[122.800]", 122800},
                {"TWR(122,800)TWR", 122800},
                {"x122.800y", 122800},
                {"-122.800-", 122800},
                {"122.800.", 122800},
                {".122.800", 122800},
                {"1 122.800", 122800},
                {"122.800 1", 122800},
                {"[cspacer0]塔台 122.800 东", 122800},
                {"Вышка 118,005", 118005},
                {"タワー122.800タワー", 122800},
                {"✈122.800", 122800},
                {"000.000", 0},
                {"001.025", 1025},
                {"999.999", 999999}};
    for (const auto& row : rows) EXPECT_TRUE(channelNameCarries(row.name, row.khz)) << row.name;
}

TEST(ChannelName, CarriesEveryFrequencyThatStandsInIt) {
    for (const char* name : {"APP 118.005 / TWR 122.800", "118.005,122.800", "122,800;118,005", "118.005 122.800"}) {
        EXPECT_TRUE(channelNameCarries(name, 118005)) << name;
        EXPECT_TRUE(channelNameCarries(name, 122800)) << name;
        EXPECT_FALSE(channelNameCarries(name, 121500)) << name;
    }
    EXPECT_TRUE(channelNameCarries("1122.800 122.8005 122.800", 122800));  // two near misses before it
    EXPECT_TRUE(channelNameCarries("122.800,118", 800118));                // one group may be part of two frequencies
    EXPECT_TRUE(channelNameCarries("122.800,118", 122800));
}

TEST(ChannelName, CarriesNothingWhenADigitTouchesTheFrequencyOrADecimalLacks) {
    for (const char* name :
         {"1122.800", "122.8005", "1122.8005", "0122.800", "122.8000",      "122.8",   "122.80",   "22.800",
          "122.",     ".800",     "122800",    "122 800",  "122:800",       "122-800", "122..800", "122.,800",
          "122. 800", "122 .800", "12a.800",   "122.8a0",  "１２２.８００", "122٫800", "122。800"})
        EXPECT_FALSE(channelNameCarries(name, 122800)) << name;
}

TEST(ChannelName, CarriesExactlyItsOwnFrequency) {
    for (const std::int32_t khz :
         {122799, 122801, 122805, 22800, 1228000, 122, 800, 0, -122800, INT32_MAX, INT32_MIN, -1})
        EXPECT_FALSE(channelNameCarries("TWR 122.800", khz)) << khz;
}

TEST(ChannelName, ShorterThanAFrequencyCarriesNothing) {
    const std::string token = "122.800";
    for (std::size_t length = 0; length < token.size(); length++) {
        EXPECT_FALSE(channelNameCarries(token.substr(0, length), 122800)) << length;
        EXPECT_FALSE(channelNameCarries(token.substr(token.size() - length), 122800)) << length;
        EXPECT_FALSE(channelNameCarries(token.substr(0, length), -1)) << length;
    }
}

TEST(ChannelName, CarriesItsFrequencyFromTheFirstPositionToTheLast) {
    for (std::size_t before = 0; before <= 40; before++) {
        for (const char fill : {' ', 'x', '.', ',', '\xE5', '\xFF'}) {
            const std::string left(before, fill);
            const std::string right(40 - before, fill);
            EXPECT_TRUE(channelNameCarries(left + "118.275" + right, 118275)) << before << fill;
            EXPECT_TRUE(channelNameCarries(left + "118.275", 118275)) << before << fill;
            EXPECT_FALSE(channelNameCarries(left + "7118.275" + right, 118275)) << before << fill;
            EXPECT_FALSE(channelNameCarries(left + "118.2757" + right, 118275)) << before << fill;
        }
    }
}

TEST(ChannelName, ReadsNothingBeyondTheEndOfTheView) {
    EXPECT_TRUE(channelNameCarries(std::string_view("122.8005").substr(0, 7), 122800));
    EXPECT_FALSE(channelNameCarries(std::string_view("122.800").substr(0, 6), 122800));
    EXPECT_TRUE(channelNameCarries(std::string_view("9122.800").substr(1), 122800));
}
