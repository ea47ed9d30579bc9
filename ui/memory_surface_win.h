// memory_surface_win.h - a picture that both Windows and our own code draw into: a top-down 32-bit DIB section,
// selected into a memory device context.
#pragma once
#include <windows.h>
#include "ui/argb_image.h"

class MemorySurface {
  public:
    MemorySurface() = default;
    ~MemorySurface() { release(); }
    MemorySurface(const MemorySurface&) = delete;
    MemorySurface& operator=(const MemorySurface&) = delete;

    // Makes the surface anew when the size differs; its content is then undefined. False when the system has no room
    // for it: the surface is then empty.
    bool resize(std::int32_t width, std::int32_t height);
    void release();

    // Copies a part, or all, to the same place of another context; does nothing while the surface is empty.
    void copyTo(HDC target, const PixelRect& part) const;
    void copyTo(HDC target) const { copyTo(target, view_.bounds()); }

    HDC dc() const { return dc_; }
    const ArgbView& view() const { return view_; }

  private:
    HDC dc_ = nullptr;
    HBITMAP section_ = nullptr;
    HGDIOBJ before_ = nullptr;  // what the context held; it goes back before the section is freed
    ArgbView view_;
};
