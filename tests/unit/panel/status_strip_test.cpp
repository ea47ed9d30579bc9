// status_strip_test.cpp - how the panel's two status lines share their strip.
#include "panel/status_strip.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <string>
#include <string_view>
#include "panel/panel_geometry.h"
#include "panel/panel_layers.h"

namespace {

constexpr std::string_view kLongestLeft = "Radio spacing unavailable or frequency limit";
constexpr std::string_view kLongestRight = "TS3 move requested; awaiting confirmation";

PanelLayers layersOf(std::int32_t theme, float percent) {
    Settings settings;
    settings.theme = theme;
    settings.panel_scale = percent;
    const PanelPlacement place = placePanel(settings, {}, 96);
    return {ArgbImage(), theme, place.scale, place.width, place.height};
}

// As wide as letters are on the average, half as wide as the font is high.
std::int32_t widthOf(const PanelLayers& layers, std::string_view text) {
    const float letter = std::max(9.0f, static_cast<float>(layers.statusRoom.height()) * 0.6f) * 0.5f;
    return static_cast<std::int32_t>(letter * static_cast<float>(text.size()));
}

}  // namespace

TEST(StatusStrip, TheLeftLineHasWhatTheRightOneLeaves) {
    EXPECT_EQ(shareStatusRoom(700, 20, {100, 200}), (StatusWidths{480, 200}));
    EXPECT_EQ(shareStatusRoom(700, 20, {480, 200}), (StatusWidths{480, 200}));
    EXPECT_EQ(shareStatusRoom(700, 20, {650, 200}), (StatusWidths{480, 200}));  // the left one is cut
    EXPECT_EQ(shareStatusRoom(700, 20, {9000, 30}), (StatusWidths{650, 30}));
}

TEST(StatusStrip, TheRightLineMayPassTheMiddleAndStopsWhereTheLeftOneWouldSayNothing) {
    EXPECT_EQ(shareStatusRoom(700, 20, {100, 560}), (StatusWidths{120, 560}));
    EXPECT_EQ(shareStatusRoom(700, 20, {100, 580}), (StatusWidths{100, 580}));
    EXPECT_EQ(shareStatusRoom(700, 20, {100, 900}), (StatusWidths{100, 580}));
    EXPECT_EQ(shareStatusRoom(700, 20, {900, 900}), (StatusWidths{272, 408}));
    EXPECT_EQ(shareStatusRoom(700, 20, {280, 900}), (StatusWidths{272, 408}));
}

TEST(StatusStrip, ALineAloneHasTheWholeRoom) {
    EXPECT_EQ(shareStatusRoom(700, 20, {900, 0}), (StatusWidths{700, 0}));
    EXPECT_EQ(shareStatusRoom(700, 20, {0, 900}), (StatusWidths{0, 700}));
    EXPECT_EQ(shareStatusRoom(700, 20, {0, 300}), (StatusWidths{0, 300}));
    EXPECT_EQ(shareStatusRoom(700, 20, {0, 0}), (StatusWidths{700, 0}));
}

TEST(StatusStrip, TheLinesNeverMeetOrLeaveTheirRoom) {
    for (const std::int32_t room : {-5, 0, 1, 5, 20, 21, 339, 715}) {
        for (const std::int32_t left : {0, 1, 30, 200, 5000}) {
            for (const std::int32_t right : {0, 1, 30, 200, 5000}) {
                const StatusWidths share = shareStatusRoom(room, 20, {left, right});
                EXPECT_GE(share.left, 0);
                EXPECT_GE(share.right, 0);
                const std::int32_t gap = share.left > 0 && share.right > 0 ? 20 : 0;
                EXPECT_LE(share.left + gap + share.right, std::max(room, 0)) << room << ' ' << left << ' ' << right;
            }
        }
    }
}

TEST(StatusStrip, TheRoomLiesInsideTheStripAtEverySize) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        for (const float percent : {50.0f, 100.0f, 150.0f, 200.0f}) {
            const PanelLayers layers = layersOf(theme, percent);
            const ThemeLayout& layout = themeLayout(theme);
            const UnitRect& strip = layout.statusStrip;
            const auto left = (strip.x - layout.origin.x) * layers.scale;
            const auto top = (strip.y - layout.origin.y) * layers.scale;
            EXPECT_GT(static_cast<float>(layers.statusRoom.left), left);
            EXPECT_LT(static_cast<float>(layers.statusRoom.right), left + strip.width * layers.scale);
            EXPECT_NEAR(static_cast<float>(layers.statusRoom.top), top, 1.0f);
            EXPECT_NEAR(static_cast<float>(layers.statusRoom.bottom), top + strip.height * layers.scale, 1.0f);
            EXPECT_GE(layers.statusGap, 4);
        }
    }
}

TEST(StatusStrip, TheLongestPairIsWholeFromFullSizeOnAndAtHalfSizeTheRightLineIs) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        for (const float percent : {50.0f, 100.0f, 200.0f}) {
            SCOPED_TRACE(std::to_string(theme) + " at " + std::to_string(percent));
            const PanelLayers layers = layersOf(theme, percent);
            const StatusWidths wanted = {widthOf(layers, kLongestLeft), widthOf(layers, kLongestRight)};
            const StatusWidths share = shareStatusRoom(layers.statusRoom.width(), layers.statusGap, wanted);
            EXPECT_EQ(share.right, wanted.right);
            EXPECT_EQ(share.left >= wanted.left, percent > 50.0f);
            EXPECT_GE(share.left, wanted.left / 2);
            // Beside a short line the longest one is whole at every size.
            const StatusWidths beside = {wanted.left, widthOf(layers, "TS3 channel confirmed")};
            EXPECT_GE(shareStatusRoom(layers.statusRoom.width(), layers.statusGap, beside).left, beside.left);
        }
    }
}
