#include "tests/client/window_picture_win.h"
#include <algorithm>
#include "panel/memory_surface_win.h"

namespace {

constexpr std::uint32_t kColours = 0x00FFFFFF;

}  // namespace

ArgbImage coloursOf(const ArgbView& view) {
    GdiFlush();  // before our own code touches the pixels
    ArgbImage image(view.width, view.height);
    std::transform(view.pixels, view.pixels + image.pixels.size(), image.pixels.begin(),
                   [](std::uint32_t pixel) { return pixel & kColours; });
    return image;
}

ArgbImage printWindow(HWND window) {
    RECT client = {};
    MemorySurface surface;
    if (!GetClientRect(window, &client) || !surface.resize(client.right, client.bottom)) return {};
    SendMessageW(window, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(surface.dc()), PRF_CLIENT);
    return coloursOf(surface.view());
}

ArgbImage printScreen(const RECT& part) {
    MemorySurface surface;
    if (!surface.resize(part.right - part.left, part.bottom - part.top)) return {};
    const HDC screen = GetDC(nullptr);
    BitBlt(surface.dc(), 0, 0, part.right - part.left, part.bottom - part.top, screen, part.left, part.top, SRCCOPY);
    ReleaseDC(nullptr, screen);
    return coloursOf(surface.view());
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
