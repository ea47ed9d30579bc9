#include "panel/theme_art_win.h"
#include <cstring>
#include <memory>
#include <new>
#include "ui/gdiplus_win.h"

namespace {

struct ReleaseStream {
    void operator()(IStream* stream) const { stream->Release(); }
};
using StreamOwner = std::unique_ptr<IStream, ReleaseStream>;

// A stream over its own copy of the bytes, freed with the stream; null if out of memory.
StreamOwner streamOf(const void* bytes, std::size_t size) {
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size);
    if (!block) return nullptr;
    void* copy = GlobalLock(block);
    if (copy) std::memcpy(copy, bytes, size);
    GlobalUnlock(block);
    IStream* stream = nullptr;
    if (!copy || FAILED(CreateStreamOnHGlobal(block, TRUE, &stream))) {
        GlobalFree(block);
        return nullptr;
    }
    return StreamOwner(stream);
}

StreamOwner openResource(HINSTANCE module, int id) {
    const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(10));  // RT_RCDATA
    const HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
    const void* bytes = loaded ? LockResource(loaded) : nullptr;
    return bytes ? streamOf(bytes, SizeofResource(module, resource)) : nullptr;
}

// GDI+ converts straight into our pixels.
ArgbImage readPixels(Gdiplus::Bitmap& bitmap) {
    ArgbImage image(static_cast<std::int32_t>(bitmap.GetWidth()), static_cast<std::int32_t>(bitmap.GetHeight()));
    if (image.isEmpty()) return image;
    Gdiplus::BitmapData data = {};
    data.Width = static_cast<UINT>(image.width);
    data.Height = static_cast<UINT>(image.height);
    data.Stride = image.width * static_cast<INT>(sizeof(std::uint32_t));
    data.PixelFormat = PixelFormat32bppPARGB;
    data.Scan0 = image.pixels.data();
    const Gdiplus::Rect whole(0, 0, image.width, image.height);
    const UINT mode = Gdiplus::ImageLockModeRead | Gdiplus::ImageLockModeUserInputBuf;
    if (bitmap.LockBits(&whole, mode, PixelFormat32bppPARGB, &data) != Gdiplus::Ok) return {};
    return bitmap.UnlockBits(&data) == Gdiplus::Ok ? image : ArgbImage();
}

ArgbImage decodePng(IStream* stream) {
    try {
        Gdiplus::Bitmap bitmap(stream);
        return bitmap.GetLastStatus() == Gdiplus::Ok ? readPixels(bitmap) : ArgbImage();
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace

ThemeArt loadThemeArt(HINSTANCE module) {
    ThemeArt theme_art;
    for (int theme = 0; theme < kThemeCount; theme++) {
        const StreamOwner stream = openResource(module, kFirstArtResource + theme);
        if (stream) theme_art[static_cast<std::size_t>(theme)] = decodePng(stream.get());
    }
    return theme_art;
}
