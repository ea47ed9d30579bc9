#include "tests/soak/system_leaks_win.h"
#include <cwchar>
#include <thread>
#include "base/number_text.h"
#include "tests/client/resource_count_win.h"
#include "ui/gdiplus_win.h"

namespace {

constexpr int kWarmUp = 200, kTimes = 1000;
constexpr double kNone = 16.0;  // bytes each: a good system's heap wavers by a few pages in all

// How many bytes the heap grows by with each call.
template <class Work>
double bytesKeptBy(const Work& work) {
    for (int i = 0; i < kWarmUp; i++) work();
    const auto before = static_cast<double>(heapBytes());
    for (int i = 0; i < kTimes; i++) work();
    return (static_cast<double>(heapBytes()) - before) / kTimes;
}

double bytesForAText() {
    const GraphicsSession session;
    const HDC screen = GetDC(nullptr);
    double bytes = 0.0;
    {
        const Gdiplus::Graphics graphics(screen);
        const Gdiplus::Font font(Gdiplus::FontFamily::GenericMonospace(), 15.0f);
        bytes = bytesKeptBy([&] {
            for (const wchar_t* text : {L"\u0645\u0631\u062D\u0628\u0627", L"\u0928\u092E\u0938\u094D\u0924\u0947"}) {
                Gdiplus::RectF bounds;
                graphics.MeasureString(text, static_cast<INT>(std::wcslen(text)), &font, Gdiplus::PointF(0.0f, 0.0f),
                                       &bounds);
            }
        });
    }
    ReleaseDC(nullptr, screen);
    return bytes / 2.0;
}

void showAWindow() {
    const HWND window = CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    ShowWindow(window, SW_SHOW);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    DestroyWindow(window);
}

double bytesForAThread() {
    return bytesKeptBy([] { std::thread(showAWindow).join(); });
}

}  // namespace

bool SystemLeaks::areNone() const {
    return bytesForAText < kNone && bytesForAThread < kNone;
}

std::string SystemLeaks::inWords() const {
    return "This system itself keeps " + formatFixed(bytesForAText, 0) + " bytes for a text of a complex script and " +
           formatFixed(bytesForAThread, 0) +
           " for a thread whose window was active: memory of the process is shown, the plugin's own is judged";
}

SystemLeaks findSystemLeaks() {
    return {bytesForAText(), bytesForAThread()};
}
