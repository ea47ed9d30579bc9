#include "tests/soak/script_probe_win.h"
#include <cwchar>
#include "tests/client/resource_count_win.h"
#include "ui/gdiplus_win.h"

namespace {

constexpr const wchar_t* kTexts[] = {L"\u0645\u0631\u062D\u0628\u0627", L"\u0928\u092E\u0938\u094D\u0924\u0947"};
constexpr int kWarmUp = 200, kTimes = 2000;

void layOut(const Gdiplus::Graphics& graphics, const Gdiplus::Font& font, int times) {
    Gdiplus::RectF bounds;
    for (int i = 0; i < times; i++) {
        for (const wchar_t* text : kTexts)
            graphics.MeasureString(text, static_cast<INT>(std::wcslen(text)), &font, Gdiplus::PointF(0.0f, 0.0f),
                                   &bounds);
    }
}

double bytesKept(HDC screen) {
    const Gdiplus::Graphics graphics(screen);
    const Gdiplus::Font font(Gdiplus::FontFamily::GenericMonospace(), 15.0f);
    layOut(graphics, font, kWarmUp);
    const std::size_t before = heapBytes();
    layOut(graphics, font, kTimes);
    const std::size_t after = heapBytes();
    return after > before ? static_cast<double>(after - before) / (kTimes * std::size(kTexts)) : 0.0;
}

}  // namespace

double bytesKeptForAComplexText() {
    const GraphicsSession graphics;
    const HDC screen = GetDC(nullptr);
    const double bytes = bytesKept(screen);
    ReleaseDC(nullptr, screen);
    return bytes;
}
