#include "ui/argb_image.h"
#include <gtest/gtest.h>
#include <algorithm>

TEST(ArgbImage, BlendingRoundsEachChannelToTheNearest) {
    for (const std::uint32_t alpha : {0U, 1U, 77U, 128U, 254U, 255U}) {
        for (std::uint32_t value = 0; value < 256; value += 5) {
            const std::uint32_t target = value * 0x01010101U;
            const std::uint32_t kept = (value * (255 - alpha) * 2 + 255) / 510;
            EXPECT_EQ(blendOver(target, alpha << 24U) & 0xFFU, kept) << value << " under " << alpha;
        }
    }
}

TEST(ArgbImage, AnOpaqueSourceHidesAndATransparentOneShowsTheTarget) {
    EXPECT_EQ(blendOver(0xFF123456, 0xFFABCDEF), 0xFFABCDEFU);
    EXPECT_EQ(blendOver(0xFF123456, 0), 0xFF123456U);
}

TEST(ArgbImage, LightAddsUpAndEndsAtWhite) {
    EXPECT_EQ(blendOver(0xFF101010, 0x00202020), 0xFF303030U);
    EXPECT_EQ(blendOver(0xFFF0F0F0, 0x00404040), 0xFFFFFFFFU);
}

TEST(ArgbImage, PremultipliedColoursStayWithinTheirAlpha) {
    EXPECT_EQ(premultiplied(0xFFFF8000, 1.0f), 0xFFFF8000U);
    EXPECT_EQ(premultiplied(0xFFFF8000, 0.0f), 0U);
    EXPECT_EQ(premultiplied(0xFFFF8000, 0.5f), 0x80804000U);
    EXPECT_EQ(premultiplied(0xFF010203, 7.0f), 0xFF010203U);
}

TEST(ArgbImage, StampsAreCutToTheClipAndToBothPictures) {
    ArgbImage source(3, 3);
    source.pixels.assign(9, 0xFFFFFFFF);
    const struct {
        std::int32_t x, y;
        PixelRect clip;
        int touched;
    } rows[] = {{1, 1, {0, 0, 8, 8}, 9}, {-2, -2, {0, 0, 8, 8}, 1},       {7, 7, {0, 0, 8, 8}, 1},
                {1, 1, {2, 2, 3, 8}, 2}, {1, 1, {-50, -50, 50, 50}, 9},   {90, 90, {0, 0, 8, 8}, 0},
                {1, 1, {5, 5, 2, 2}, 0}, {-90, 3, {-100, 0, 100, 100}, 0}};
    for (const auto& row : rows) {
        ArgbImage target(8, 8);
        stampImage(viewOf(target), source, row.x, row.y, row.clip);
        EXPECT_EQ(std::count(target.pixels.begin(), target.pixels.end(), 0xFFFFFFFFU), row.touched)
            << row.x << "," << row.y;
    }
}

TEST(ArgbImage, ACropReachingBeyondThePictureIsTransparentThere) {
    ArgbImage source(2, 2);
    source.pixels = {1, 2, 3, 4};
    const ArgbImage cut = cropImage(source, {-1, 1, 3, 3});
    EXPECT_EQ(cut.pixels, (std::vector<std::uint32_t>{0, 3, 4, 0, 0, 0, 0, 0}));
}

TEST(ArgbImage, UnitingWithAnEmptyRectangleAddsNothing) {
    const PixelRect rect = {3, 4, 5, 6};
    EXPECT_EQ(uniteRects(rect, {}), rect);
    EXPECT_EQ(uniteRects({}, rect), rect);
    EXPECT_EQ(uniteRects(rect, {0, 5, 4, 9}), (PixelRect{0, 4, 5, 9}));
}

TEST(ArgbImage, ASizeBelowOneMakesAnEmptyPicture) {
    EXPECT_TRUE(ArgbImage(0, 5).isEmpty());
    EXPECT_TRUE(ArgbImage(5, -1).isEmpty());
}
