#include "ui/memory_surface_win.h"

bool MemorySurface::resize(std::int32_t width, std::int32_t height) {
    if (dc_ && view_.width == width && view_.height == height) return true;
    release();
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof format.bmiHeader;
    format.bmiHeader.biWidth = width;
    format.bmiHeader.biHeight = -height;  // the first row on top
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
    format.bmiHeader.biCompression = BI_RGB;
    void* pixels = nullptr;
    dc_ = CreateCompatibleDC(nullptr);
    if (dc_) section_ = CreateDIBSection(dc_, &format, DIB_RGB_COLORS, &pixels, nullptr, 0);
    if (!section_ || !pixels) {
        release();
        return false;
    }
    before_ = SelectObject(dc_, section_);
    view_ = {static_cast<std::uint32_t*>(pixels), width, height};
    return true;
}

void MemorySurface::copyTo(HDC target, const PixelRect& part) const {
    if (dc_) BitBlt(target, part.left, part.top, part.width(), part.height(), dc_, part.left, part.top, SRCCOPY);
}

void MemorySurface::release() {
    if (before_) SelectObject(dc_, before_);
    if (section_) DeleteObject(section_);
    if (dc_) DeleteDC(dc_);
    dc_ = nullptr;
    section_ = nullptr;
    before_ = nullptr;
    view_ = {};
}
