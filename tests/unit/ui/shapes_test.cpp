#include "ui/shapes.h"
#include <gtest/gtest.h>
#include <array>

TEST(Shapes, DistancesAreNegativeInsideAndZeroOnTheOutline) {
    const UnitRect rect = {10, 20, 40, 20};
    EXPECT_NEAR(roundedRectDistance(rect, 5, {30, 30}), -10.0f, 1e-4f);
    EXPECT_NEAR(roundedRectDistance(rect, 5, {10, 30}), 0.0f, 1e-4f);
    EXPECT_NEAR(roundedRectDistance(rect, 5, {30, 45}), 5.0f, 1e-4f);
    EXPECT_NEAR(roundedRectDistance(rect, 5, {10, 20}), 5.0f * 0.41421f, 1e-3f);
    EXPECT_NEAR(ellipseDistance(rect, {10, 30}), 0.0f, 1e-4f);
    EXPECT_NEAR(ellipseDistance(rect, {30, 20}), 0.0f, 1e-4f);
    EXPECT_LT(ellipseDistance(rect, {30, 30}), -5.0f);
    EXPECT_GT(ellipseDistance(rect, {11, 21}), 1.0f);
}

TEST(Shapes, ACirclesDistanceIsExact) {
    const UnitRect circle = {0, 0, 20, 20};
    EXPECT_NEAR(ellipseDistance(circle, {10, 3}), -3.0f, 1e-4f);
    EXPECT_NEAR(ellipseDistance(circle, {10 + 3 * 5, 10 + 4 * 5}), 15.0f, 1e-4f);
    EXPECT_NEAR(ellipseDistance(circle, {10, 10}), -10.0f, 1e-4f);
}

TEST(Shapes, APolygonsDistanceDoesNotDependOnItsDirection) {
    const std::array<UnitPoint, 4> clockwise = {UnitPoint{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const std::array<UnitPoint, 4> other = {UnitPoint{0, 0}, {0, 10}, {10, 10}, {10, 0}};
    for (const auto& corners : {clockwise, other}) {
        EXPECT_NEAR(convexDistance(corners, {5, 2}), -2.0f, 1e-4f);
        EXPECT_NEAR(convexDistance(corners, {5, -2}), 2.0f, 1e-4f);
        EXPECT_NEAR(convexDistance(corners, {13, 14}), 5.0f, 1e-4f);  // round a corner
    }
}

TEST(Shapes, NothingIsFarAway) {
    EXPECT_GT(convexDistance({}, {5, 2}), 1e6f);
    EXPECT_GT(ellipseDistance({5, 5, 0, 0}, {50, 5}), 1.0f);
}

TEST(Shapes, CoverageGoesFromOneToNoneWithinAPixel) {
    EXPECT_EQ(coverageOf(-3.0f), 1.0f);
    EXPECT_EQ(coverageOf(0.0f), 0.5f);
    EXPECT_EQ(coverageOf(0.7f), 0.0f);
}
