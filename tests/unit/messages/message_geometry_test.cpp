#include "messages/message_geometry.h"
#include <gtest/gtest.h>

namespace {

constexpr PixelRect kScreen = {0, 0, 1920, 1160};

}  // namespace

TEST(MessagePlacement, StandsUnderTheMiddleOfThePanel) {
    EXPECT_EQ(placeMessageWindow({100, 50, 1000, 400}, kScreen, 96), (PixelRect{240, 412, 860, 812}));
    EXPECT_EQ(placeMessageWindow({100, 50, 1000, 400}, kScreen, 0), (PixelRect{240, 412, 860, 812}));
    EXPECT_EQ(placeMessageWindow({-1900, 10, -1000, 200}, {-1920, 0, 0, 1080}, 96),
              (PixelRect{-1760, 212, -1140, 612}));
}

TEST(MessagePlacement, ScalesWithTheResolution) {
    const struct {
        std::uint32_t dpi;
        std::int32_t width, height, gap;
    } rows[] = {
        {96, 620, 400, 12}, {120, 775, 500, 15}, {144, 930, 600, 18}, {192, 1240, 800, 24}, {100, 646, 417, 13}};
    for (const auto& row : rows) {
        const PixelRect place = placeMessageWindow({0, 0, 1900, 100}, {0, 0, 4000, 3000}, row.dpi);
        EXPECT_EQ(place.right - place.left, row.width) << row.dpi;
        EXPECT_EQ(place.bottom - place.top, row.height) << row.dpi;
        EXPECT_EQ(place.top, 100 + row.gap) << row.dpi;
    }
}

TEST(MessagePlacement, StaysInTheWorkArea) {
    EXPECT_EQ(placeMessageWindow({-500, 0, 100, 300}, kScreen, 96).left, 0);
    EXPECT_EQ(placeMessageWindow({1800, 0, 2400, 300}, kScreen, 96).right, 1920);
    EXPECT_EQ(placeMessageWindow({100, 800, 1000, 1150}, kScreen, 96).bottom, 1160);
    EXPECT_EQ(placeMessageWindow({100, -900, 1000, -600}, kScreen, 96).top, 0);
    const PixelRect small = placeMessageWindow({0, 0, 500, 300}, {10, 20, 400, 300}, 96);
    EXPECT_EQ(small.left, 10);  // larger than the work area: the header stays in reach
    EXPECT_EQ(small.top, 20);
    EXPECT_EQ(small.right - small.left, 620);
}

TEST(MessagePlacement, WithoutAPanelStandsAtTheLowerRight) {
    EXPECT_EQ(placeMessageWindow(1920, 1200), (PixelRect{1260, 720, 1880, 1120}));
}

TEST(MessageHit, FindsTheCloseButtonAtEveryResolution) {
    for (const std::uint32_t dpi : {96U, 120U, 144U, 192U}) {
        const float s = messageScale(dpi);
        const auto at = [&](float x, float y) {
            return PixelPoint{static_cast<std::int32_t>(x * s), static_cast<std::int32_t>(y * s)};
        };
        const auto width = static_cast<std::int32_t>(620 * s);
        EXPECT_TRUE(isOnCloseButton(at(596, 24), width, dpi)) << dpi;
        EXPECT_TRUE(isOnCloseButton(at(580, 8), width, dpi)) << dpi;
        EXPECT_TRUE(isOnCloseButton(at(611, 39), width, dpi)) << dpi;
        for (const auto& out : {at(579, 24), at(612, 24), at(596, 7), at(596, 40), at(30, 24)})
            EXPECT_FALSE(isOnCloseButton(out, width, dpi)) << dpi << " " << out.x << " " << out.y;
        EXPECT_TRUE(isOnHeader(at(300, 43), dpi)) << dpi;
        EXPECT_FALSE(isOnHeader(at(300, 44), dpi)) << dpi;
    }
}
