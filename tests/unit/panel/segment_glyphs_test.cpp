#include "panel/segment_glyphs.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace {

const UnitRect kCells[] = {{0, 0, 45.05f, 85.0f}, {1500.5f, 260.25f, 45.05f, 85.0f}, {-30, -20, 10, 60}, {3, 4, 60, 20},
                           {100, 100, 0.5f, 1},   {2000, 300, 35.68f, 67.32f}};
constexpr float kSlants[] = {0.0f, 0.05f, 0.12f, -0.08f, 0.5f, -3.0f, 100.0f};

std::string segmentNames(char digit) {
    std::string names;
    for (int k = 0; k < kSegmentCount; k++)
        if ((segmentsOf(digit) >> k & 1) != 0) names += static_cast<char>('a' + k);
    return names;
}

double areaOf(const SegmentOutline& outline) {
    double twice = 0;
    for (int i = 0; i < outline.count; i++) {
        const UnitPoint& p = outline.corners[static_cast<std::size_t>(i)];
        const UnitPoint& q = outline.corners[static_cast<std::size_t>((i + 1) % outline.count)];
        twice +=
            static_cast<double>(p.x) * static_cast<double>(q.y) - static_cast<double>(q.x) * static_cast<double>(p.y);
    }
    return std::fabs(twice) / 2;
}

UnitPoint centreOf(const SegmentOutline& outline) {
    UnitPoint sum;
    for (int i = 0; i < outline.count; i++) {
        sum.x += outline.corners[static_cast<std::size_t>(i)].x / static_cast<float>(outline.count);
        sum.y += outline.corners[static_cast<std::size_t>(i)].y / static_cast<float>(outline.count);
    }
    return sum;
}

// Even-odd rule.
bool contains(const SegmentOutline& outline, double x, double y) {
    bool inside = false;
    for (int i = 0; i < outline.count; i++) {
        const UnitPoint& p = outline.corners[static_cast<std::size_t>(i)];
        const UnitPoint& q = outline.corners[static_cast<std::size_t>((i + 1) % outline.count)];
        const double px = static_cast<double>(p.x), py = static_cast<double>(p.y);
        const double qx = static_cast<double>(q.x), qy = static_cast<double>(q.y);
        if ((py > y) != (qy > y) && x < (qx - px) * (y - py) / (qy - py) + px) inside = !inside;
    }
    return inside;
}

}  // namespace

TEST(SegmentGlyphs, EveryCharacterLightsItsSegments) {
    const struct {
        char digit;
        std::string segments;
    } rows[] = {{'0', "abcdef"}, {'1', "bc"},  {'2', "abdeg"},   {'3', "abcdg"},  {'4', "bcfg"}, {'5', "acdfg"},
                {'6', "acdefg"}, {'7', "abc"}, {'8', "abcdefg"}, {'9', "abcdfg"}, {'-', "g"},    {' ', ""}};
    for (const auto& row : rows) EXPECT_EQ(segmentNames(row.digit), row.segments) << row.digit;
}

TEST(SegmentGlyphs, AnythingElseIsBlank) {
    int lit = 0;
    for (int c = -128; c < 128; c++)
        if (segmentsOf(static_cast<char>(c)) != 0) lit++;
    EXPECT_EQ(lit, 11);
    for (const char c : {'/', ':', 'A', '.', '\0', '\xFF'}) EXPECT_EQ(segmentsOf(c), 0) << c;
}

TEST(SegmentGlyphs, EverySegmentStaysWithinItsCell) {
    for (const UnitRect& cell : kCells)
        for (const float slant : kSlants)
            for (int segment = 0; segment < kSegmentCount; segment++) {
                const SegmentOutline outline = segmentOutline(cell, segment, slant);
                ASSERT_GE(outline.count, 4);
                ASSERT_LE(outline.count, 6);
                for (int i = 0; i < outline.count; i++) {
                    const UnitPoint& corner = outline.corners[static_cast<std::size_t>(i)];
                    EXPECT_GE(corner.x, cell.x) << segment << ' ' << slant;
                    EXPECT_LE(corner.x, cell.x + cell.width) << segment << ' ' << slant;
                    EXPECT_GE(corner.y, cell.y) << segment << ' ' << slant;
                    EXPECT_LE(corner.y, cell.y + cell.height) << segment << ' ' << slant;
                }
                EXPECT_GT(areaOf(outline), 0.005 * static_cast<double>(cell.width * cell.height)) << segment << slant;
            }
}

TEST(SegmentGlyphs, SegmentsFillTheCellToItsEdges) {
    const UnitRect cell = kCells[0];
    for (const float slant : {0.0f, 0.1f, -0.1f}) {
        float left = 1e9f, right = -1e9f, top = 1e9f, bottom = -1e9f;
        for (int segment = 0; segment < kSegmentCount; segment++) {
            const SegmentOutline outline = segmentOutline(cell, segment, slant);
            for (int i = 0; i < outline.count; i++) {
                const UnitPoint& corner = outline.corners[static_cast<std::size_t>(i)];
                left = std::min(left, corner.x);
                right = std::max(right, corner.x);
                top = std::min(top, corner.y);
                bottom = std::max(bottom, corner.y);
            }
        }
        EXPECT_NEAR(left, 0.0f, 0.3f) << slant;
        EXPECT_NEAR(right, cell.width, 0.3f) << slant;
        EXPECT_NEAR(top, 0.0f, 0.01f);
        EXPECT_NEAR(bottom, cell.height, 0.01f);
    }
}

TEST(SegmentGlyphs, SegmentsDoNotOverlap) {
    for (const UnitRect& cell : kCells)
        for (const float slant : kSlants) {
            std::array<SegmentOutline, kSegmentCount> outlines;
            for (int segment = 0; segment < kSegmentCount; segment++)
                outlines[static_cast<std::size_t>(segment)] = segmentOutline(cell, segment, slant);
            int shared = 0;
            for (int row = 0; row < 60; row++)
                for (int column = 0; column < 40; column++) {
                    const double x =
                        static_cast<double>(cell.x) + static_cast<double>(cell.width) * (column + 0.5) / 40;
                    const double y = static_cast<double>(cell.y) + static_cast<double>(cell.height) * (row + 0.5) / 60;
                    shared += std::ranges::count_if(outlines, [&](const auto& o) { return contains(o, x, y); }) > 1;
                }
            EXPECT_EQ(shared, 0) << cell.width << 'x' << cell.height << ' ' << slant;
        }
}

TEST(SegmentGlyphs, OutlinesAreConvex) {
    for (const UnitRect& cell : kCells)
        for (const float slant : kSlants)
            for (int segment = 0; segment < kSegmentCount; segment++) {
                const SegmentOutline outline = segmentOutline(cell, segment, slant);
                const auto corner = [&](int i) { return outline.corners[static_cast<std::size_t>(i % outline.count)]; };
                int left = 0;
                int right = 0;
                for (int i = 0; i < outline.count; i++) {
                    const UnitPoint p = corner(i), q = corner(i + 1), r = corner(i + 2);
                    const float turn = (q.x - p.x) * (r.y - q.y) - (q.y - p.y) * (r.x - q.x);
                    left += turn < 0.0f;
                    right += turn > 0.0f;
                }
                EXPECT_TRUE((left == 0) != (right == 0)) << segment << ' ' << slant << ' ' << cell.width;
            }
}

TEST(SegmentGlyphs, SegmentsStandWhereTheirLettersSay) {
    const UnitRect cell{10, 20, 50, 100};
    const struct {
        float x, y;  // shares of the cell
    } places[] = {{0.5f, 0.05f}, {0.9f, 0.27f}, {0.9f, 0.73f}, {0.5f, 0.95f},
                  {0.1f, 0.73f}, {0.1f, 0.27f}, {0.5f, 0.5f}};
    for (int segment = 0; segment < kSegmentCount; segment++) {
        const UnitPoint centre = centreOf(segmentOutline(cell, segment, 0.0f));
        EXPECT_NEAR(centre.x, cell.x + places[segment].x * cell.width, 5) << segment;
        EXPECT_NEAR(centre.y, cell.y + places[segment].y * cell.height, 5) << segment;
    }
}

TEST(SegmentGlyphs, TheTopOfASlantedDigitIsRightOfItsBottom) {
    const UnitRect cell{10, 20, 50, 100};
    for (const float slant : {0.1f, 0.2f, -0.1f}) {
        const float top = centreOf(segmentOutline(cell, 0, slant)).x;
        const float bottom = centreOf(segmentOutline(cell, 3, slant)).x;
        EXPECT_NEAR(top - bottom, slant * cell.height, 2.5f) << slant;
    }
}

TEST(SegmentGlyphs, SegmentsThatAreNoneHaveNoOutline) {
    for (const int segment : {-1, 7, 100, std::numeric_limits<int>::min()})
        EXPECT_EQ(segmentOutline(kCells[0], segment, 0.1f).count, 0) << segment;
}

TEST(SegmentGlyphs, CellsWithoutSizeAndSlantsWithoutSenseAreHarmless) {
    for (int segment = 0; segment < kSegmentCount; segment++) {
        const SegmentOutline empty = segmentOutline({5, 6, 0, 0}, segment, 0.1f);
        for (int i = 0; i < empty.count; i++) {
            EXPECT_EQ(empty.corners[static_cast<std::size_t>(i)].x, 5.0f);
            EXPECT_EQ(empty.corners[static_cast<std::size_t>(i)].y, 6.0f);
        }
        const SegmentOutline upright = segmentOutline(kCells[0], segment, 0.0f);
        const SegmentOutline senseless = segmentOutline(kCells[0], segment, std::numeric_limits<float>::quiet_NaN());
        for (int i = 0; i < upright.count; i++)
            EXPECT_EQ(senseless.corners[static_cast<std::size_t>(i)].x, upright.corners[static_cast<std::size_t>(i)].x);
    }
}
