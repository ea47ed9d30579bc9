#include "tests/client/picture_compare.h"
#include <algorithm>

namespace {

constexpr std::uint32_t kColours = 0x00FFFFFF;

}  // namespace

ArgbImage coloursOf(ArgbImage image) {
    for (std::uint32_t& pixel : image.pixels) pixel &= kColours;
    return image;
}

ArgbImage coloursOf(const ArgbView& view) {
    ArgbImage image(view.width, view.height);
    std::copy_n(view.row(0), image.pixels.size(), image.pixels.begin());
    return coloursOf(std::move(image));
}

void blankPixels(ArgbImage& image, const PixelRect& area) {
    const PixelRect inside = intersectRects(image.bounds(), area);
    for (std::int32_t y = inside.top; y < inside.bottom; y++)
        std::fill(image.row(y) + inside.left, image.row(y) + std::max(inside.left, inside.right), 0U);
}

::testing::AssertionResult isSamePicture(const ArgbImage& shown, const ArgbImage& wanted) {
    if (shown.width != wanted.width || shown.height != wanted.height) {
        return ::testing::AssertionFailure() << "it is " << shown.width << " x " << shown.height << ", not "
                                             << wanted.width << " x " << wanted.height;
    }
    std::size_t count = 0, first = 0;
    for (std::size_t i = 0; i < shown.pixels.size(); i++) {
        if (shown.pixels[i] == wanted.pixels[i]) continue;
        if (count == 0) first = i;
        count++;
    }
    if (count == 0) return ::testing::AssertionSuccess();
    const auto width = static_cast<std::size_t>(shown.width);
    return ::testing::AssertionFailure() << count << " pixels differ, first the one at " << first % width << ", "
                                         << first / width << ": " << std::hex << shown.pixels[first] << ", not "
                                         << wanted.pixels[first];
}
