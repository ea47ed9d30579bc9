#include "ui/image_scale.h"
#include <gtest/gtest.h>
#include <cmath>
#include <cstdlib>

namespace {

int channel(std::uint32_t pixel, unsigned shift) {
    return static_cast<int>(pixel >> shift & 0xFFU);
}

bool isPremultiplied(const ArgbImage& image) {
    for (const std::uint32_t pixel : image.pixels)
        for (const unsigned shift : {0U, 8U, 16U})
            if (channel(pixel, shift) > channel(pixel, 24)) return false;
    return true;
}

ArgbImage stripes(std::int32_t size) {
    ArgbImage image(size, size);
    for (std::int32_t y = 0; y < size; y++)
        for (std::int32_t x = 0; x < size; x++) image.row(y)[x] = x % 2 ? 0xFFFFFFFF : 0xFF000000;
    return image;
}

// A round sprite with a bright mark at the top, on nothing.
Sprite knob(std::int32_t size) {
    Sprite sprite;
    const std::int32_t whole = size + 2 * kSpriteMargin;
    sprite.image = ArgbImage(whole, whole);
    const float middle = static_cast<float>(whole) / 2;
    const float radius = static_cast<float>(size) / 2;
    sprite.pivot = {middle, middle};
    sprite.radii = {radius, radius};
    for (std::int32_t y = 0; y < whole; y++) {
        for (std::int32_t x = 0; x < whole; x++) {
            const float dx = static_cast<float>(x) + 0.5f - middle;
            const float dy = static_cast<float>(y) + 0.5f - middle;
            if (std::hypot(dx, dy) > radius) continue;
            sprite.image.row(y)[x] = std::fabs(dx) < 2.0f && dy < 0.0f ? 0xFFFFFFFF : 0xFF404040;
        }
    }
    return sprite;
}

}  // namespace

TEST(ImageScale, AtScaleOneThePictureIsItself) {
    const ArgbImage image = stripes(9);
    EXPECT_EQ(scaleImage(image, {}, 1.0f, 9, 9).pixels, image.pixels);
    EXPECT_EQ(scaleImage(image, {2, 0}, 1.0f, 7, 9).row(0)[0], image.row(0)[2]);
}

TEST(ImageScale, FineStripesShrinkToEvenGrey) {
    const ArgbImage small = scaleImage(stripes(400), {20, 20}, 0.37f, 130, 130);
    for (const std::uint32_t pixel : small.pixels) EXPECT_NEAR(channel(pixel, 8), 127, 6);
}

TEST(ImageScale, APlainPictureStaysPlainAtEveryScale) {
    ArgbImage plain(60, 60);
    plain.pixels.assign(plain.pixels.size(), 0xFF336699);
    for (const float scale : {0.2f, 0.458f, 0.93f, 1.7f}) {
        const ArgbImage scaled = scaleImage(plain, {20, 20}, scale, static_cast<std::int32_t>(20.0f * scale), 4);
        for (const std::uint32_t pixel : scaled.pixels) EXPECT_EQ(pixel, 0xFF336699U) << scale;
    }
}

TEST(ImageScale, SharpEdgesStayPremultiplied) {
    ArgbImage image(40, 40);
    for (std::int32_t y = 10; y < 30; y++)
        for (std::int32_t x = 10; x < 30; x++) image.row(y)[x] = 0xFFFFFFFF;
    for (const float scale : {0.3f, 0.5f, 1.5f}) {
        const ArgbImage scaled = scaleImage(image, {}, scale, static_cast<std::int32_t>(40.0f * scale),
                                            static_cast<std::int32_t>(40.0f * scale));
        EXPECT_TRUE(isPremultiplied(scaled)) << scale;
        EXPECT_EQ(scaled.row(0)[0], 0U) << scale;
    }
}

TEST(ImageScale, ImpossibleSizesAndScalesGiveAnEmptyPicture) {
    EXPECT_TRUE(scaleImage(stripes(4), {}, 0.0f, 4, 4).isEmpty());
    EXPECT_TRUE(scaleImage(stripes(4), {}, -1.0f, 4, 4).isEmpty());
    EXPECT_TRUE(scaleImage(stripes(4), {}, std::nanf(""), 4, 4).isEmpty());
    EXPECT_TRUE(scaleImage(stripes(4), {}, 1.0f, 0, 4).isEmpty());
    EXPECT_EQ(scaleImage(ArgbImage(), {}, 1.0f, 2, 1).pixels, (std::vector<std::uint32_t>{0, 0}));
}

TEST(ImageScale, ASpriteAtRestIsItself) {
    const Sprite sprite = knob(20);
    ArgbImage target(40, 40);
    stampSprite(viewOf(target), sprite, {{20, 20}, 0.0f, 1.0f, 1.0f}, target.bounds());
    const std::int32_t corner = 20 - 10 - kSpriteMargin;
    for (std::int32_t y = 0; y < sprite.image.height; y++)
        for (std::int32_t x = 0; x < sprite.image.width; x++)
            EXPECT_EQ(target.row(corner + y)[corner + x], sprite.image.row(y)[x]) << x << "," << y;
}

TEST(ImageScale, TurnsClockwise) {
    const struct {
        float degrees;
        std::int32_t x, y;  // where the mark is
    } rows[] = {{90, 34, 24}, {180, 24, 34}, {270, 14, 24}, {-90, 14, 24}, {360, 24, 14}};
    for (const auto& row : rows) {
        ArgbImage target(48, 48);
        stampSprite(viewOf(target), knob(30), {{24, 24}, row.degrees, 1.0f, 1.0f}, target.bounds());
        EXPECT_GT(channel(target.row(row.y)[row.x], 8), 0xC0) << row.degrees;
        EXPECT_LT(channel(target.row(48 - row.y)[48 - row.x], 8), 0x60) << row.degrees;
    }
}

TEST(ImageScale, ATurnedSpriteLeavesNoPixelOutsideItsOutline) {
    for (float degrees = 0; degrees < 360; degrees += 17) {
        ArgbImage target(48, 48);
        stampSprite(viewOf(target), knob(30), {{24, 24}, degrees, 1.0f, 1.0f}, target.bounds());
        for (std::int32_t y = 0; y < 48; y++) {
            for (std::int32_t x = 0; x < 48; x++) {
                const double distance = std::hypot(x + 0.5 - 24, y + 0.5 - 24);
                if (distance > 17.5) {
                    EXPECT_EQ(target.row(y)[x], 0U) << x << "," << y << " at " << degrees;
                }
                if (distance < 12.0) {
                    EXPECT_EQ(target.row(y)[x] >> 24U, 255U) << x << "," << y << " at " << degrees;
                }
            }
        }
    }
}

TEST(ImageScale, AShadedSpriteIsDarkerAndAShrunkOneSmaller) {
    ArgbImage target(48, 48);
    stampSprite(viewOf(target), knob(30), {{24, 24}, 0.0f, 0.5f, 0.5f}, target.bounds());
    EXPECT_NEAR(channel(target.row(28)[24], 8), 0x20, 1);
    EXPECT_EQ(target.row(24)[24 + 10], 0U);
}

TEST(ImageScale, SpritesBeyondTheTargetTouchNothing) {
    for (const UnitPoint at : {UnitPoint{-1000, 5}, UnitPoint{5, 1e6f}, UnitPoint{-20, -20}}) {
        ArgbImage target(10, 10);
        stampSprite(viewOf(target), knob(30), {at, 45.0f, 1.0f, 1.0f}, {-100, -100, 100, 100});
        for (const std::uint32_t pixel : target.pixels) EXPECT_EQ(pixel, 0U);
    }
}
