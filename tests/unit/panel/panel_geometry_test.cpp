#include "panel/panel_geometry.h"
#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include "panel/panel_layout.h"

namespace {

constexpr PixelRect kFullHd{0, 0, 1920, 1040};  // with a task bar
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

Settings settingsOf(std::int32_t theme, float scale = 100.0f) {
    Settings settings;
    settings.theme = theme;
    settings.panel_scale = scale;
    return settings;
}

Settings settingsAt(std::int32_t x, std::int32_t y) {
    Settings settings;
    settings.panel_x = x;
    settings.panel_y = y;
    return settings;
}

struct Size {
    std::int32_t width, height;
};

std::uint8_t alphaOf(float opacity) {
    Settings settings;
    settings.opacity = opacity;
    return placePanel(settings, kFullHd, 96).alpha;
}

}  // namespace

TEST(PanelPlacement, APanelOfHundredPercentIs900PixelsWideAt96Dpi) {
    const Size sizes[] = {{900, 273}, {900, 399}, {900, 527}};  // heights 272.66, 398.05, 526.66
    for (std::int32_t theme = 0; theme < 3; theme++) {
        const PanelPlacement panel = placePanel(settingsOf(theme), kFullHd, 96);
        EXPECT_EQ(panel.width, sizes[theme].width) << theme;
        EXPECT_EQ(panel.height, sizes[theme].height) << theme;
    }
}

TEST(PanelPlacement, TheScaleIsPixelsPerArtworkUnit) {
    EXPECT_FLOAT_EQ(placePanel(settingsOf(0), kFullHd, 96).scale, 900.0f / 1964.0f);
    EXPECT_FLOAT_EQ(placePanel(settingsOf(1), kFullHd, 96).scale, 900.0f / 1793.0f);
    EXPECT_FLOAT_EQ(placePanel(settingsOf(2, 50), kFullHd, 96).scale, 450.0f / 1579.0f);
}

TEST(PanelPlacement, GrowsWithTheSettingAndTheMonitorsDpi) {
    const struct {
        float percent;
        std::uint32_t dpi;
        std::int32_t width;
    } rows[] = {{50, 96, 450},    {75, 96, 675},    {110, 96, 990}, {150, 96, 1350}, {200, 96, 1800}, {100, 120, 1125},
                {100, 144, 1350}, {100, 192, 1800}, {60, 144, 810}, {50, 288, 1350}, {100, 0, 900},   {130, 0, 1170}};
    for (const auto& row : rows)
        for (std::int32_t theme = 0; theme < 3; theme++)
            EXPECT_EQ(placePanel(settingsOf(theme, row.percent), {0, 0, 4000, 4000}, row.dpi).width, row.width)
                << theme << ' ' << row.percent << " % " << row.dpi;
}

TEST(PanelPlacement, APanelTooLargeForItsMonitorFillsTheTighterSide) {
    const struct {
        std::int32_t theme;
        PixelRect area;
        Size size;
    } rows[] = {
        {0, {0, 0, 1000, 1000}, {1000, 303}},                                       // width decides
        {1, {0, 0, 1000, 1000}, {1000, 443}},  {2, {0, 0, 1024, 400}, {684, 400}},  // height decides
        {2, {-1000, -400, 24, 0}, {684, 400}}, {0, {0, 0, 64, 64}, {64, 20}},
    };
    for (const auto& row : rows) {
        const PanelPlacement panel = placePanel(settingsOf(row.theme, 200), row.area, 144);
        EXPECT_EQ(panel.width, row.size.width) << row.theme;
        EXPECT_EQ(panel.height, row.size.height) << row.theme;
    }
}

TEST(PanelPlacement, NeverOutgrowsTheWorkArea) {
    for (std::int32_t theme = 0; theme < 3; theme++)
        for (std::int32_t side = 1; side < 2500; side += 7)
            for (const PixelRect& area : {PixelRect{0, 0, side, 3000}, PixelRect{0, 0, 5000, side}}) {
                const PanelPlacement panel = placePanel(settingsOf(theme, 200), area, 192);
                ASSERT_LE(panel.width, area.right) << theme << ' ' << side;
                ASSERT_LE(panel.height, area.bottom) << theme << ' ' << side;
                ASSERT_GE(panel.width, 1);
                ASSERT_GE(panel.height, 1);
                ASSERT_TRUE(panel.width == area.right || panel.height == area.bottom || panel.width == 3600);
            }
}

TEST(PanelPlacement, KeepsAStoredPositionThatFits) {
    for (const auto& [x, y] : {std::pair{80, 80}, {0, 0}, {1020, 767}, {512, 3}}) {
        const PanelPlacement panel = placePanel(settingsAt(x, y), kFullHd, 96);
        EXPECT_EQ(panel.x, x);
        EXPECT_EQ(panel.y, y);
    }
}

TEST(PanelPlacement, SitsFlushWithTheEdgeItWouldHaveCrossed) {
    const struct {
        std::int32_t storedX, storedY, x, y;
    } rows[] = {
        {1021, 768, 1020, 767}, {5000, 80, 1020, 80}, {80, 5000, 80, 767},       {-1, -1, 0, 0},
        {-5000, 80, 0, 80},     {80, -9, 80, 0},      {kMost, kMost, 1020, 767}, {kLeast, kLeast, 0, 0},
    };
    for (const auto& row : rows) {
        const PanelPlacement panel = placePanel(settingsAt(row.storedX, row.storedY), kFullHd, 96);
        EXPECT_EQ(panel.x, row.x) << row.storedX;
        EXPECT_EQ(panel.y, row.y) << row.storedY;
    }
}

TEST(PanelPlacement, KnowsMonitorsLeftOfAndAboveTheFirst) {
    constexpr PixelRect kLeft{-1920, -300, 0, 780};
    const struct {
        std::int32_t storedX, storedY, x, y;
    } rows[] = {{-1000, -100, -1000, -100}, {-2000, -400, -1920, -300}, {80, 900, -900, 507}, {-900, 507, -900, 507}};
    for (const auto& row : rows) {
        const PanelPlacement panel = placePanel(settingsAt(row.storedX, row.storedY), kLeft, 96);
        EXPECT_EQ(panel.x, row.x) << row.storedX;
        EXPECT_EQ(panel.y, row.y) << row.storedY;
    }
}

TEST(PanelPlacement, KnowsAMonitorRightOfTheFirstWithATaskBarOnTopAndItsOwnDpi) {
    constexpr PixelRect kRight{1920, 260, 5760, 2300};  // 3840 wide, its first row 220 lower, a bar of 40 on top
    const struct {
        std::int32_t storedX, storedY, x, y;
    } rows[] = {{80, 80, 1920, 260}, {2000, 240, 2000, 260}, {5700, 2290, 4410, 1891}, {4410, 1891, 4410, 1891}};
    for (const auto& row : rows) {
        const PanelPlacement panel = placePanel(settingsAt(row.storedX, row.storedY), kRight, 144);
        EXPECT_EQ(panel.width, 1350);
        EXPECT_EQ(panel.height, 409);
        EXPECT_EQ(panel.x, row.x) << row.storedX;
        EXPECT_EQ(panel.y, row.y) << row.storedY;
    }
}

TEST(PanelPlacement, AWorkAreaWithoutSizeLeavesSizeAndPositionAsTheyAreWanted) {
    for (const PixelRect& area : {PixelRect{}, PixelRect{0, 0, 1920, 0}, PixelRect{0, 0, 0, 1080},
                                  PixelRect{1920, 1080, 0, 0}, PixelRect{kMost, kMost, kLeast, kLeast}}) {
        const PanelPlacement panel = placePanel(settingsAt(-777, 4321), area, 96);
        EXPECT_EQ(panel.width, 900);
        EXPECT_EQ(panel.height, 273);
        EXPECT_EQ(panel.x, -777);
        EXPECT_EQ(panel.y, 4321);
    }
}

TEST(PanelPlacement, SurvivesTheLargestAndSmallestScreens) {
    const PanelPlacement whole = placePanel(settingsAt(kMost, kLeast), {kLeast, kLeast, kMost, kMost}, 96);
    EXPECT_EQ(whole.width, 900);
    EXPECT_EQ(whole.x, kMost - 900);
    EXPECT_EQ(whole.y, kLeast);
    const PanelPlacement dot = placePanel(settingsAt(80, 80), {5, 6, 6, 7}, 96);
    EXPECT_EQ(dot.width, 1);
    EXPECT_EQ(dot.height, 1);
    EXPECT_EQ(dot.x, 5);
    EXPECT_EQ(dot.y, 6);
    EXPECT_GT(dot.scale, 0.0f);
}

TEST(PanelPlacement, ANonsenseDpiAsksForNoMoreThanAWindowCanHave) {
    for (const std::uint32_t dpi : {100'000u, std::numeric_limits<std::uint32_t>::max()}) {
        const PanelPlacement unbounded = placePanel(settingsOf(2, 200), {}, dpi);
        EXPECT_LE(unbounded.width, 16384);
        EXPECT_LE(unbounded.height, 16384);
        EXPECT_GE(unbounded.width, 1800);
        EXPECT_EQ(placePanel(settingsOf(0), kFullHd, dpi).width, 1920);
    }
}

TEST(PanelPlacement, ASettingThatIsNoNumberCountsAsItsDefault) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const float percent : {kNan, kInfinity, -kInfinity, 0.0f, -100.0f})
        EXPECT_EQ(placePanel(settingsOf(0, percent), kFullHd, 96).width, 900) << percent;
    EXPECT_EQ(placePanel(settingsOf(0, 1e-30f), kFullHd, 96).width, 1);
    EXPECT_GT(placePanel(settingsOf(0, 1e-30f), kFullHd, 96).scale, 0.0f);
    EXPECT_EQ(placePanel(settingsOf(7), kFullHd, 96), placePanel(settingsOf(0), kFullHd, 96));
    EXPECT_EQ(alphaOf(kNan), 255);
}

TEST(PanelPlacement, OpacityBecomesAConstantAlphaRoundedToTheNearestWithHalvesUp) {
    const struct {
        float percent;
        int alpha;
    } rows[] = {{100, 255}, {50, 128}, {30, 77}, {70, 179},   {90, 230}, {33, 84},     {99, 252},
                {10, 26},   {0, 0},    {-20, 0}, {1000, 255}, {51, 130}, {99.9f, 255}, {49.9f, 127}};
    for (const auto& row : rows) EXPECT_EQ(alphaOf(row.percent), row.alpha) << row.percent;
}

TEST(PanelPlacement, OnTheWayToAMonitorOfAnotherDpiItHasTheSizeThatItKeepsThere) {
    constexpr PixelRect kSharp{1920, 0, 4480, 1400};  // 144 DPI, right of the other
    const struct {
        const char* way;
        PixelRect workArea;
        std::uint32_t dpi;
        PixelPoint held, dropped;  // dropped: brought wholly onto that monitor
        std::int32_t width, height;
    } rows[] = {
        {"96 to 144", kSharp, 144, {1700, 300}, {1920, 300}, 1350, 598},
        {"144 to 96", kFullHd, 96, {1500, 900}, {1020, 641}, 900, 399},
    };
    for (const auto& row : rows) {
        Settings settings = settingsOf(kBoeingTheme);
        const PanelPlacement moved = placeMovedPanel(settings, row.workArea, row.dpi, row.held);
        EXPECT_EQ((PixelPoint{moved.x, moved.y}), row.held) << row.way;
        EXPECT_EQ(moved.width, row.width) << row.way;
        EXPECT_EQ(moved.height, row.height) << row.way;
        settings.panel_x = row.held.x;
        settings.panel_y = row.held.y;
        PanelPlacement dropped = placePanel(settings, row.workArea, row.dpi);
        EXPECT_EQ((PixelPoint{dropped.x, dropped.y}), row.dropped) << row.way;
        dropped.x = moved.x;
        dropped.y = moved.y;
        EXPECT_EQ(moved, dropped) << row.way;  // but for the place
    }
}

TEST(PanelPlacement, OnTheWayToASmallMonitorItIsNoLargerThanFitsThere) {
    constexpr PixelRect kSmall{-1280, 0, 0, 680};
    const PanelPlacement moved = placeMovedPanel(settingsOf(kAirbusTheme, 200), kSmall, 144, {-300, 50});
    EXPECT_EQ(moved.height, 680);
    EXPECT_EQ((PixelPoint{moved.x, moved.y}), (PixelPoint{-300, 50}));
}
