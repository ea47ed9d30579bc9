#include "tests/client/window_picture_win.h"
#include <algorithm>
#include "ui/memory_surface_win.h"

namespace {

// What draw puts on a surface of this size.
template <class Draw>
ArgbImage takeDrawing(LONG width, LONG height, Draw draw) {
    MemorySurface surface;
    if (width < 1 || height < 1 || !surface.resize(width, height)) return {};
    const ArgbView& view = surface.view();
    std::fill_n(view.row(0), static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0U);
    draw(surface.dc());
    GdiFlush();
    ArgbImage picture(view.width, view.height);
    std::copy_n(view.row(0), picture.pixels.size(), picture.pixels.begin());
    return picture;
}

}  // namespace

ArgbImage askForPicture(HWND window) {
    RECT client = {};
    if (!window || !GetClientRect(window, &client)) return {};
    return takeDrawing(client.right, client.bottom,
                       [&](HDC dc) { SendMessageW(window, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT); });
}

ArgbImage lookAtScreen(const RECT& part) {
    const LONG width = part.right - part.left, height = part.bottom - part.top;
    return takeDrawing(width, height, [&](HDC dc) {
        const HDC screen = GetDC(nullptr);
        BitBlt(dc, 0, 0, width, height, screen, part.left, part.top, SRCCOPY);
        ReleaseDC(nullptr, screen);
    });
}
