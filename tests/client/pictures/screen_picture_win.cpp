#include "tests/client/pictures/screen_picture_win.h"
#include <algorithm>
#include "ui/gdiplus_win.h"

namespace {

constexpr COLORREF kLight = RGB(226, 229, 233);
constexpr COLORREF kDark = RGB(34, 37, 43);
constexpr const wchar_t* kGroundClass = L"CorvalisPictureGround";
constexpr CLSID kPngEncoder = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
constexpr std::uint32_t kColours = 0x00FFFFFF;
constexpr double kBareShare = 0.1;  // of a part's pixels: more ground than any window's corners let through

void fill(HDC dc, const RECT& rect, COLORREF colour) {
    const HBRUSH brush = CreateSolidBrush(colour);
    FillRect(dc, &rect, brush);
    DeleteObject(brush);
}

}  // namespace

ScreenPicture takePicture(const RECT& part) {
    ScreenPicture picture{part.right - part.left, part.bottom - part.top, {}};
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = picture.width;
    info.bmiHeader.biHeight = -picture.height;  // rows from the top
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP section = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = SelectObject(memory, section);
    if (section && BitBlt(memory, 0, 0, picture.width, picture.height, screen, part.left, part.top, SRCCOPY)) {
        GdiFlush();
        const auto* first = static_cast<const std::uint32_t*>(bits);
        picture.pixels.assign(first, first + static_cast<std::ptrdiff_t>(picture.width) * picture.height);
    }
    for (std::uint32_t& pixel : picture.pixels) pixel &= kColours;
    SelectObject(memory, before);
    DeleteObject(section);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return picture;
}

double brightnessOf(const ScreenPicture& picture) {
    double sum = 0.0;
    for (const std::uint32_t pixel : picture.pixels) {
        sum += static_cast<double>((pixel & 0xFFU) + (pixel >> 8U & 0xFFU) + (pixel >> 16U & 0xFFU));
    }
    return picture.pixels.empty() ? 0.0 : sum / 3.0 / static_cast<double>(picture.pixels.size());
}

bool savePicture(const ScreenPicture& picture, const std::filesystem::path& file) {
    std::vector<std::uint32_t> pixels = picture.pixels;
    if (pixels.empty()) return false;
    Gdiplus::Bitmap bitmap(picture.width, picture.height, picture.width * 4, PixelFormat32bppRGB,
                           reinterpret_cast<BYTE*>(pixels.data()));
    return bitmap.Save(file.c_str(), &kPngEncoder, nullptr) == Gdiplus::Ok;
}

Ground::Ground() {
    WNDCLASSW description = {};
    description.lpfnWndProc = &Ground::wndProc;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = kGroundClass;
    RegisterClassW(&description);
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    middle_ = width / 2;
    window_ = CreateWindowExW(WS_EX_NOACTIVATE | WS_EX_TOOLWINDOW, kGroundClass, L"", WS_POPUP, 0, 0, width, height,
                              nullptr, nullptr, description.hInstance, this);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ShowWindow(window_, SW_SHOWNOACTIVATE);
    divideAt(middle_);
}

Ground::~Ground() {
    DestroyWindow(window_);
    UnregisterClassW(kGroundClass, GetModuleHandleW(nullptr));
}

void Ground::divideAt(int screenX) {
    middle_ = screenX;
    SetWindowPos(window_, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    serve();
}

bool Ground::isBare(const RECT& part) {
    const ScreenPicture picture = takePicture(part);
    const auto bare = std::count_if(picture.pixels.begin(), picture.pixels.end(), [](std::uint32_t pixel) {
        const COLORREF colour = RGB(pixel >> 16U & 0xFFU, pixel >> 8U & 0xFFU, pixel & 0xFFU);
        return colour == kLight || colour == kDark;
    });
    return static_cast<double>(bare) > kBareShare * static_cast<double>(picture.pixels.size());
}

void Ground::serve() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

void Ground::paint() const {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window_, &paint);
    RECT area;
    GetClientRect(window_, &area);
    fill(dc, {0, 0, middle_, area.bottom}, kLight);
    fill(dc, {middle_, 0, area.right, area.bottom}, kDark);
    EndPaint(window_, &paint);
}

LRESULT CALLBACK Ground::wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    const auto* self = reinterpret_cast<const Ground*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message != WM_PAINT || !self) return DefWindowProcW(window, message, wParam, lParam);
    self->paint();
    return 0;
}
