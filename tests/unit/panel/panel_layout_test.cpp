#include "panel/panel_layout.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <limits>
#include "tests/unit/panel/panel_tables_copy.h"

namespace {

// Smaller than a screen pixel at any scale, far larger than a float's last bit.
constexpr float kNear = 0.01f;

struct Edges {
    float left, top, right, bottom;
};

Edges edgesOf(const PanelRect& rect) {
    return {rect.x, rect.y, rect.x + rect.width, rect.y + rect.height};
}

PanelPoint centreOf(const PanelRect& rect) {
    return {rect.x + rect.width / 2, rect.y + rect.height / 2};
}

bool overlap(const PanelRect& a, const PanelRect& b) {
    const Edges p = edgesOf(a);
    const Edges q = edgesOf(b);
    return p.left < q.right && q.left < p.right && p.top < q.bottom && q.top < p.bottom;
}

bool isWithin(const PanelRect& inner, const PanelRect& outer) {
    const Edges p = edgesOf(inner);
    const Edges q = edgesOf(outer);
    return p.left >= q.left && p.top >= q.top && p.right <= q.right && p.bottom <= q.bottom;
}

// The element at the rectangle's rim: the knob pair's rim is the large knob.
void expectFillsItsRectangle(std::int32_t theme, const PanelRect& rect, std::int32_t element) {
    const auto [left, top, right, bottom] = edgesOf(rect);
    const PanelPoint middle = centreOf(rect);
    const PanelPoint inside[] = {
        {left, top},      {right - kNear, top},      {left, bottom - kNear}, {right - kNear, bottom - kNear},
        {left, middle.y}, {right - kNear, middle.y}, {middle.x, top},        {middle.x, bottom - kNear},
    };
    for (const PanelPoint& point : inside) EXPECT_EQ(hit_test(theme, point), element) << point.x << ',' << point.y;
    const PanelPoint outside[] = {
        {left - kNear, middle.y}, {right, middle.y}, {middle.x, top - kNear},     {middle.x, bottom}, {right, top},
        {left, bottom},           {right, bottom},   {left - kNear, top - kNear},
    };
    for (const PanelPoint& point : outside) EXPECT_NE(hit_test(theme, point), element) << point.x << ',' << point.y;
}

PanelRect visibleArea(const ThemeLayout& layout) {
    return {layout.origin.x, layout.origin.y, layout.width, layout.height};
}

}  // namespace

TEST(PanelLayout, HasTheThreeThemesWithTheirAreasAndDisplays) {
    for (const ThemeCopy& copy : themeCopies()) {
        SCOPED_TRACE(copy.theme);
        const ThemeLayout& layout = themeLayout(copy.theme);
        EXPECT_EQ(layout.origin.x, copy.origin.x);
        EXPECT_EQ(layout.origin.y, copy.origin.y);
        EXPECT_EQ(layout.width, copy.width);
        EXPECT_EQ(layout.height, copy.height);
        EXPECT_EQ(layout.displays[0], copy.displays[0]);
        EXPECT_EQ(layout.displays[1], copy.displays[1]);
    }
}

TEST(PanelLayout, HasEveryHotspotInItsPlaceAndOrder) {
    for (const ThemeCopy& copy : themeCopies()) {
        const ThemeLayout& layout = themeLayout(copy.theme);
        ASSERT_EQ(layout.hotspots.size(), copy.hotspots.size());
        for (std::size_t i = 0; i < copy.hotspots.size(); i++) {
            SCOPED_TRACE(testing::Message() << "theme " << copy.theme << " element " << copy.hotspots[i].id);
            EXPECT_EQ(layout.hotspots[i].id, copy.hotspots[i].id);
            EXPECT_EQ(layout.hotspots[i].rect, copy.hotspots[i].rect);
            EXPECT_EQ(layout.hotspots[i].round, copy.hotspots[i].round);
            EXPECT_EQ(layout.hotspots[i].indicator, copy.hotspots[i].indicator);
            EXPECT_EQ(layout.hotspots[i].indicatorStyle, copy.hotspots[i].style);
        }
    }
}

TEST(PanelLayout, KeysDisplaysStripAndLampsLieInTheVisibleAreaAndApart) {
    for (const ThemeCopy& copy : themeCopies()) {
        const ThemeLayout& layout = themeLayout(copy.theme);
        std::vector<PanelRect> solid = {layout.displays[0], layout.displays[1], layout.statusStrip, layout.txLamp,
                                        layout.rxLamp};
        for (const PanelHotspot& hotspot : layout.hotspots) solid.push_back(hotspot.rect);
        for (std::size_t i = 0; i < solid.size(); i++) {
            EXPECT_TRUE(isWithin(solid[i], visibleArea(layout))) << copy.theme << ' ' << i;
            EXPECT_GT(solid[i].width, 0.0f);
            EXPECT_GT(solid[i].height, 0.0f);
            for (std::size_t k = 0; k < i; k++)
                EXPECT_FALSE(overlap(solid[i], solid[k])) << copy.theme << ' ' << i << ' ' << k;
        }
    }
}

TEST(PanelLayout, IndicatorsCoverNoOtherKeyAndNeitherStripNorLampsCoverThem) {
    for (const ThemeCopy& copy : themeCopies()) {
        const ThemeLayout& layout = themeLayout(copy.theme);
        for (const PanelHotspot& lit : layout.hotspots) {
            if (lit.indicator == PanelRect{}) continue;
            EXPECT_TRUE(isWithin(lit.indicator, visibleArea(layout))) << copy.theme << ' ' << lit.id;
            for (const PanelHotspot& other : layout.hotspots)
                EXPECT_TRUE(other.id == lit.id || !overlap(lit.indicator, other.rect)) << lit.id << ' ' << other.id;
            for (const PanelRect& rect : {layout.statusStrip, layout.txLamp, layout.rxLamp})
                EXPECT_FALSE(overlap(lit.indicator, rect)) << copy.theme << ' ' << lit.id;
        }
    }
}

TEST(PanelLayout, HasACopyOfEveryTheme) {
    ASSERT_EQ(themeCopies().size(), static_cast<std::size_t>(kThemeCount));
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        EXPECT_EQ(themeCopies()[static_cast<std::size_t>(theme)].theme, theme);
    }
}

TEST(PanelLayout, AnUnknownThemeIsGeneral) {
    for (const std::int32_t theme :
         {-1, 3, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
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
    EXPECT_EQ(findHotspot(boeing, kSettingsKey)->rect, (PanelRect{1721, 187, 83, 76}));
    EXPECT_EQ(findHotspot(boeing, kSmallKnob), findHotspot(boeing, kLargeKnob));
    EXPECT_NE(findHotspot(boeing, kSmallKnob), nullptr);
    EXPECT_EQ(findHotspot(boeing, kCustomKeyC), nullptr);
    EXPECT_EQ(findHotspot(boeing, kBackground), nullptr);
    EXPECT_EQ(findHotspot(themeLayout(kGeneralTheme), kSmallKnob), nullptr);
}

TEST(PanelHitTest, EveryHotspotFillsItsRectangleUpToTheRightAndBottomEdge) {
    for (const ThemeCopy& copy : themeCopies())
        for (const HotspotCopy& hotspot : copy.hotspots) {
            SCOPED_TRACE(testing::Message() << "theme " << copy.theme << " element " << hotspot.id);
            expectFillsItsRectangle(copy.theme, hotspot.rect, hotspot.id);
            const bool isPair = hotspot.id == kLargeKnob;
            EXPECT_EQ(hit_test(copy.theme, centreOf(hotspot.rect)), isPair ? kSmallKnob : hotspot.id);
        }
}

TEST(PanelHitTest, TheSmallKnobReachesTo046OfTheLargeOnesRadius) {
    const struct {
        std::int32_t theme;
        PanelPoint centre;
        float radius;  // of the large knob
    } pairs[] = {{kBoeingTheme, {1589, 618}, 124}, {kAirbusTheme, {1120, 592}, 128}};
    for (const auto& pair : pairs) {
        const float edge = 0.46f * pair.radius;
        const struct {
            float dx, dy;
        } directions[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {0.6f, 0.8f}, {-0.8f, 0.6f}, {-0.6f, -0.8f}, {0.8f, -0.6f}};
        for (const auto& d : directions) {
            const auto at = [&](float r) { return PanelPoint{pair.centre.x + d.dx * r, pair.centre.y + d.dy * r}; };
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
    for (const ThemeCopy& copy : themeCopies()) {
        if (copy.theme == kGeneralTheme) continue;
        for (const PanelRect& display : copy.displays) {
            expectFillsItsRectangle(copy.theme, display, kFrequencyDisplay);
            EXPECT_EQ(hit_test(copy.theme, centreOf(display)), kFrequencyDisplay);
            for (const PanelRect& digit : layoutFrequency(display).digits)
                EXPECT_EQ(hit_test(copy.theme, centreOf(digit)), kFrequencyDisplay);
        }
    }
}

TEST(PanelHitTest, EverywhereElseIsBackground) {
    for (const ThemeCopy& copy : themeCopies()) {
        const auto isActive = [&](PanelPoint point) {
            const auto has = [&](const PanelRect& rect) {
                return point.x >= rect.x && point.x < rect.x + rect.width && point.y >= rect.y &&
                       point.y < rect.y + rect.height;
            };
            return has(copy.displays[0]) || has(copy.displays[1]) ||
                   std::ranges::any_of(copy.hotspots, [&](const HotspotCopy& hotspot) { return has(hotspot.rect); });
        };
        int wrong = 0;
        for (float y = 0; y < copy.origin.y * 2 + copy.height; y += 3)
            for (float x = 0; x < copy.origin.x * 2 + copy.width; x += 3)
                wrong += (hit_test(copy.theme, {x, y}) != kBackground) != isActive({x, y});
        EXPECT_EQ(wrong, 0) << copy.theme;
    }
}

TEST(PanelHitTest, NothingLiesFarOutsideOrNowhere) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kMost = std::numeric_limits<float>::max();
    for (std::int32_t theme = 0; theme < kThemeCount; theme++)
        for (const PanelPoint point :
             {PanelPoint{kNan, kNan}, PanelPoint{kNan, 300}, PanelPoint{kInfinity, 300},
              PanelPoint{-kInfinity, -kInfinity}, PanelPoint{kMost, kMost}, PanelPoint{-kMost, 300}, PanelPoint{0, 0}})
            EXPECT_EQ(hit_test(theme, point), kBackground) << point.x << ',' << point.y;
}

TEST(PanelToLogical, DividesByTheScaleAndAddsTheThemesOrigin) {
    const struct {
        std::int32_t theme;
        float scale;
        int clientX, clientY;
        PanelPoint logical;
    } rows[] = {
        {kGeneralTheme, 1.0f, 0, 0, {43, 76}},      {kGeneralTheme, 0.5f, 100, 50, {243, 176}},
        {kBoeingTheme, 1.0f, 10, 20, {39, 62}},     {kBoeingTheme, 2.0f, -2, -4, {28, 40}},
        {kAirbusTheme, 0.25f, 100, 25, {418, 141}}, {kAirbusTheme, 4.0f, 1, 1, {18.25f, 41.25f}},
        {kAirbusTheme, 1.0f, -18, -41, {0, 0}},     {kGeneralTheme, 0.5f, -32768, 32767, {-65493, 65610}},
    };
    for (const auto& row : rows) {
        const PanelPoint point = panel_to_logical(row.theme, row.scale, row.clientX, row.clientY);
        EXPECT_EQ(point.x, row.logical.x) << row.theme << ' ' << row.scale;
        EXPECT_EQ(point.y, row.logical.y) << row.theme << ' ' << row.scale;
    }
}

TEST(PanelToLogical, AScaleThatIsNoneCountsAsOne) {
    for (const float scale : {0.0f, -0.0f, -2.0f, std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()}) {
        const PanelPoint point = panel_to_logical(kBoeingTheme, scale, 100, 200);
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
