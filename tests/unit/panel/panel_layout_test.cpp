#include "panel/panel_layout.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <iterator>
#include <limits>
#include <set>
#include <vector>

namespace {

// Smaller than a screen pixel at any scale, far larger than a float's last bit.
constexpr float kNear = 0.01f;

struct Edges {
    float left, top, right, bottom;
};

Edges edgesOf(const UnitRect& rect) {
    return {rect.x, rect.y, rect.x + rect.width, rect.y + rect.height};
}

UnitPoint centreOf(const UnitRect& rect) {
    return {rect.x + rect.width / 2, rect.y + rect.height / 2};
}

bool overlap(const UnitRect& a, const UnitRect& b) {
    const Edges p = edgesOf(a);
    const Edges q = edgesOf(b);
    return p.left < q.right && q.left < p.right && p.top < q.bottom && q.top < p.bottom;
}

bool isWithin(const UnitRect& inner, const UnitRect& outer) {
    const Edges p = edgesOf(inner);
    const Edges q = edgesOf(outer);
    return p.left >= q.left && p.top >= q.top && p.right <= q.right && p.bottom <= q.bottom;
}

// The element at the rectangle's rim; for the knob pair this is the large knob.
void expectFillsItsRectangle(std::int32_t theme, const UnitRect& rect, std::int32_t element) {
    const auto [left, top, right, bottom] = edgesOf(rect);
    const UnitPoint middle = centreOf(rect);
    const UnitPoint inside[] = {
        {left, top},      {right - kNear, top},      {left, bottom - kNear}, {right - kNear, bottom - kNear},
        {left, middle.y}, {right - kNear, middle.y}, {middle.x, top},        {middle.x, bottom - kNear},
    };
    for (const UnitPoint& point : inside) EXPECT_EQ(hit_test(theme, point), element) << point.x << ',' << point.y;
    const UnitPoint outside[] = {
        {left - kNear, middle.y}, {right, middle.y}, {middle.x, top - kNear},     {middle.x, bottom}, {right, top},
        {left, bottom},           {right, bottom},   {left - kNear, top - kNear},
    };
    for (const UnitPoint& point : outside) EXPECT_NE(hit_test(theme, point), element) << point.x << ',' << point.y;
}

UnitRect visibleArea(const ThemeLayout& layout) {
    return {layout.origin.x, layout.origin.y, layout.width, layout.height};
}

// What a theme must be like, apart from its table: some of its places, and how many elements it has.
struct Landmarks {
    std::int32_t theme;
    UnitRect area;
    UnitRect activeDisplay;
    UnitRect swapKey;
    UnitRect volumeKnob;
    UnitRect com2Key, com2Lamp;
    std::int32_t com2LampStyle;
    std::size_t elements;
};

constexpr Landmarks kLandmarks[] = {
    // clang-format off
    {kGeneralTheme, {43, 76, 1964, 595}, {160, 240, 696, 125}, {932, 233, 184, 145}, {231, 511, 111, 111},
     {1677, 460, 222, 166}, {1776, 497, 32, 32}, kRoundLamp, 11},
    {kBoeingTheme,  {29, 42, 1793, 793}, {239, 229, 535, 99},  {871, 236, 107, 72},  {138, 536, 215, 206},
     {748, 668, 158, 60},   {755, 597, 140, 28}, kLightBar, 14},
    {kAirbusTheme,  {18, 41, 1579, 924}, {180, 181, 480, 119}, {735, 202, 140, 90},  {144, 785, 102, 102},
     {350, 599, 142, 90},   {410, 555, 24, 23},  kSquareLamp, 16},
    // clang-format on
};

bool isKnob(std::int32_t element) {
    return element == kVolumeKnob || element == kLargeKnob;
}

}  // namespace

TEST(PanelLayout, HasTheLandmarksOfEveryTheme) {
    ASSERT_EQ(std::size(kLandmarks), static_cast<std::size_t>(kThemeCount));
    for (const Landmarks& marks : kLandmarks) {
        SCOPED_TRACE(marks.theme);
        const ThemeLayout& layout = themeLayout(marks.theme);
        EXPECT_EQ(visibleArea(layout), marks.area);
        EXPECT_EQ(layout.displays[0], marks.activeDisplay);
        EXPECT_EQ(layout.hotspots.size(), marks.elements);
        for (const std::int32_t element : {kSwapKey, kVolumeKnob, kCom2Key}) ASSERT_TRUE(findHotspot(layout, element));
        EXPECT_EQ(findHotspot(layout, kSwapKey)->rect, marks.swapKey);
        EXPECT_EQ(findHotspot(layout, kVolumeKnob)->rect, marks.volumeKnob);
        const PanelHotspot& com2 = *findHotspot(layout, kCom2Key);
        EXPECT_EQ(com2.rect, marks.com2Key);
        EXPECT_EQ(com2.indicator, marks.com2Lamp);
        EXPECT_EQ(com2.indicatorStyle, marks.com2LampStyle);
    }
}

TEST(PanelLayout, EveryThemeHasTheKeysThatAllHaveAndEachElementOnce) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        SCOPED_TRACE(theme);
        const ThemeLayout& layout = themeLayout(theme);
        for (const std::int32_t element : {kSwapKey, kCom1Key, kCom2Key, kActiveKey, kStandbyKey, kAutoKey, kVolumeKnob,
                                           kPinKey, kSettingsKey, kMinimizeKey}) {
            EXPECT_TRUE(findHotspot(layout, element)) << element;
        }
        EXPECT_NE(findHotspot(layout, kTextKey) != nullptr, findHotspot(layout, kCustomKeyA) != nullptr);
        std::set<std::int32_t> seen;
        for (const PanelHotspot& hotspot : layout.hotspots) {
            EXPECT_TRUE(seen.insert(hotspot.id).second) << hotspot.id << " twice";
            EXPECT_EQ(findHotspot(layout, hotspot.id), &hotspot);
        }
        EXPECT_FALSE(seen.contains(kSmallKnob));  // it has the large one's rectangle
        EXPECT_FALSE(seen.contains(kBackground));
    }
}

TEST(PanelLayout, OnlyKnobsAreRoundAndOnlyKeysHaveALampOfAKnownStyle) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        for (const PanelHotspot& hotspot : themeLayout(theme).hotspots) {
            SCOPED_TRACE(testing::Message() << "theme " << theme << " element " << hotspot.id);
            EXPECT_EQ(hotspot.round, isKnob(hotspot.id));
            const bool isLit = hotspot.indicator != UnitRect{};
            EXPECT_FALSE(isLit && isKnob(hotspot.id));
            EXPECT_EQ(isLit, hotspot.indicator.width > 0.0f && hotspot.indicator.height > 0.0f);
            EXPECT_GE(hotspot.indicatorStyle, kLightBar);
            EXPECT_LE(hotspot.indicatorStyle, isLit ? std::int32_t{kRoundLamp} : 0);
        }
    }
}

TEST(PanelLayout, KeysDisplaysStripAndLampsLieInTheVisibleAreaAndApart) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        const ThemeLayout& layout = themeLayout(theme);
        std::vector<UnitRect> solid = {layout.displays[0], layout.displays[1], layout.statusStrip, layout.txLamp,
                                       layout.rxLamp};
        for (const PanelHotspot& hotspot : layout.hotspots) solid.push_back(hotspot.rect);
        for (std::size_t i = 0; i < solid.size(); i++) {
            EXPECT_TRUE(isWithin(solid[i], visibleArea(layout))) << theme << ' ' << i;
            EXPECT_GT(solid[i].width, 0.0f);
            EXPECT_GT(solid[i].height, 0.0f);
            for (std::size_t k = 0; k < i; k++)
                EXPECT_FALSE(overlap(solid[i], solid[k])) << theme << ' ' << i << ' ' << k;
        }
    }
}

TEST(PanelLayout, IndicatorsCoverNoOtherKeyAndNeitherStripNorLampsCoverThem) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        const ThemeLayout& layout = themeLayout(theme);
        for (const PanelHotspot& lit : layout.hotspots) {
            if (lit.indicator == UnitRect{}) continue;
            EXPECT_TRUE(isWithin(lit.indicator, visibleArea(layout))) << theme << ' ' << lit.id;
            for (const PanelHotspot& other : layout.hotspots)
                EXPECT_TRUE(other.id == lit.id || !overlap(lit.indicator, other.rect)) << lit.id << ' ' << other.id;
            for (const UnitRect& rect : {layout.statusStrip, layout.txLamp, layout.rxLamp})
                EXPECT_FALSE(overlap(lit.indicator, rect)) << theme << ' ' << lit.id;
        }
    }
}

TEST(PanelLayout, AnUnknownThemeIsGeneral) {
    for (const std::int32_t theme :
         {-1, kThemeCount, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(&themeLayout(theme), &themeLayout(kGeneralTheme));
        EXPECT_EQ(knownTheme(theme), kGeneralTheme);
        EXPECT_EQ(hit_test(theme, {1000, 300}), kSwapKey);
        EXPECT_EQ(hit_test(theme, {200, 300}), hit_test(kGeneralTheme, {200, 300}));
    }
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) EXPECT_EQ(knownTheme(theme), theme);
}

TEST(PanelLayout, FindsTheHotspotOfAnElement) {
    const ThemeLayout& boeing = themeLayout(kBoeingTheme);
    ASSERT_TRUE(findHotspot(boeing, kSettingsKey));
    EXPECT_EQ(findHotspot(boeing, kSettingsKey)->rect, (UnitRect{1721, 187, 83, 76}));
    EXPECT_EQ(findHotspot(boeing, kSmallKnob), findHotspot(boeing, kLargeKnob));
    EXPECT_NE(findHotspot(boeing, kSmallKnob), nullptr);
    EXPECT_EQ(findHotspot(boeing, kCustomKeyC), nullptr);
    EXPECT_EQ(findHotspot(boeing, kBackground), nullptr);
    EXPECT_EQ(findHotspot(themeLayout(kGeneralTheme), kSmallKnob), nullptr);
}

TEST(PanelHitTest, EveryHotspotFillsItsRectangleUpToTheRightAndBottomEdge) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++)
        for (const PanelHotspot& hotspot : themeLayout(theme).hotspots) {
            SCOPED_TRACE(testing::Message() << "theme " << theme << " element " << hotspot.id);
            expectFillsItsRectangle(theme, hotspot.rect, hotspot.id);
            const bool isPair = hotspot.id == kLargeKnob;
            EXPECT_EQ(hit_test(theme, centreOf(hotspot.rect)), isPair ? kSmallKnob : hotspot.id);
        }
}

TEST(PanelHitTest, TheSmallKnobReachesTo046OfTheLargeOnesRadius) {
    const struct {
        std::int32_t theme;
        UnitPoint centre;
        float radius;  // of the large knob
    } pairs[] = {{kBoeingTheme, {1589, 618}, 124}, {kAirbusTheme, {1120, 592}, 128}};
    for (const auto& pair : pairs) {
        const float edge = 0.46f * pair.radius;
        const struct {
            float dx, dy;
        } directions[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {0.6f, 0.8f}, {-0.8f, 0.6f}, {-0.6f, -0.8f}, {0.8f, -0.6f}};
        for (const auto& d : directions) {
            const auto at = [&](float r) { return UnitPoint{pair.centre.x + d.dx * r, pair.centre.y + d.dy * r}; };
            EXPECT_EQ(hit_test(pair.theme, at(edge)), kSmallKnob) << pair.theme << ' ' << d.dx << ' ' << d.dy;
            EXPECT_EQ(hit_test(pair.theme, at(edge - kNear)), kSmallKnob) << pair.theme << ' ' << d.dx << ' ' << d.dy;
            EXPECT_EQ(hit_test(pair.theme, at(edge + kNear)), kLargeKnob) << pair.theme << ' ' << d.dx << ' ' << d.dy;
        }
    }
}

TEST(PanelHitTest, TheKnobPairsCornersAreTheLargeKnob) {
    EXPECT_EQ(hit_test(kBoeingTheme, {1463, 494}), kLargeKnob);
    EXPECT_EQ(hit_test(kAirbusTheme, {1249, 719}), kLargeKnob);
}

TEST(PanelHitTest, TheDisplaysOfBoeingAndAirbusAreOneElement) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        if (theme == kGeneralTheme) continue;
        for (const UnitRect& display : themeLayout(theme).displays) {
            expectFillsItsRectangle(theme, display, kFrequencyDisplay);
            EXPECT_EQ(hit_test(theme, centreOf(display)), kFrequencyDisplay);
            for (const UnitRect& digit : layoutFrequency(display).digits)
                EXPECT_EQ(hit_test(theme, centreOf(digit)), kFrequencyDisplay);
        }
    }
}

TEST(PanelHitTest, EverywhereElseIsBackground) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        const ThemeLayout& layout = themeLayout(theme);
        const auto isActive = [&](UnitPoint point) {
            const auto has = [&](const UnitRect& rect) {
                return point.x >= rect.x && point.x < rect.x + rect.width && point.y >= rect.y &&
                       point.y < rect.y + rect.height;
            };
            return has(layout.displays[0]) || has(layout.displays[1]) ||
                   std::ranges::any_of(layout.hotspots, [&](const PanelHotspot& hotspot) { return has(hotspot.rect); });
        };
        int wrong = 0;
        for (float y = 0; y < layout.origin.y * 2 + layout.height; y += 3)
            for (float x = 0; x < layout.origin.x * 2 + layout.width; x += 3)
                wrong += (hit_test(theme, {x, y}) != kBackground) != isActive({x, y});
        EXPECT_EQ(wrong, 0) << theme;
    }
}

TEST(PanelHitTest, NothingLiesFarOutsideOrNowhere) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kMost = std::numeric_limits<float>::max();
    for (std::int32_t theme = 0; theme < kThemeCount; theme++)
        for (const UnitPoint point :
             {UnitPoint{kNan, kNan}, UnitPoint{kNan, 300}, UnitPoint{kInfinity, 300}, UnitPoint{-kInfinity, -kInfinity},
              UnitPoint{kMost, kMost}, UnitPoint{-kMost, 300}, UnitPoint{0, 0}})
            EXPECT_EQ(hit_test(theme, point), kBackground) << point.x << ',' << point.y;
}

TEST(PanelToLogical, DividesByTheScaleAndAddsTheThemesOrigin) {
    const struct {
        std::int32_t theme;
        float scale;
        int clientX, clientY;
        UnitPoint logical;
    } rows[] = {
        {kGeneralTheme, 1.0f, 0, 0, {43, 76}},      {kGeneralTheme, 0.5f, 100, 50, {243, 176}},
        {kBoeingTheme, 1.0f, 10, 20, {39, 62}},     {kBoeingTheme, 2.0f, -2, -4, {28, 40}},
        {kAirbusTheme, 0.25f, 100, 25, {418, 141}}, {kAirbusTheme, 4.0f, 1, 1, {18.25f, 41.25f}},
        {kAirbusTheme, 1.0f, -18, -41, {0, 0}},     {kGeneralTheme, 0.5f, -32768, 32767, {-65493, 65610}},
    };
    for (const auto& row : rows) {
        const UnitPoint point = panel_to_logical(row.theme, row.scale, row.clientX, row.clientY);
        EXPECT_EQ(point.x, row.logical.x) << row.theme << ' ' << row.scale;
        EXPECT_EQ(point.y, row.logical.y) << row.theme << ' ' << row.scale;
    }
}

TEST(PanelToLogical, AScaleThatIsNoneCountsAsOne) {
    for (const float scale : {0.0f, -0.0f, -2.0f, std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()}) {
        const UnitPoint point = panel_to_logical(kBoeingTheme, scale, 100, 200);
        EXPECT_EQ(point.x, 129.0f) << scale;
        EXPECT_EQ(point.y, 242.0f) << scale;
    }
}

TEST(PanelToLogical, ExtremeCoordinatesAreBackground) {
    constexpr int kMost = std::numeric_limits<int>::max();
    constexpr int kLeast = std::numeric_limits<int>::min();
    for (const float scale : {std::numeric_limits<float>::denorm_min(), 0.4f, 1e30f})
        for (const int x : {kMost, kLeast})
            EXPECT_EQ(hit_test(kGeneralTheme, panel_to_logical(kGeneralTheme, scale, x, kLeast)), kBackground) << scale;
}
