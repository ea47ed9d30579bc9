// panel_bench_win.cpp - what the radio panel costs: the processor time of its thread while it stands still, while a
// knob turns or the TEXT lamp flashes, and while it is hidden, beside a window that draws itself plainly thirty times a
// second; and what the process holds after 10,000 presentations in changing themes and sizes.
//   panel_bench [SECONDS]      seconds of each measurement, 20; under Wine: wine build/windows/bin/panel_bench.exe
// Under Wine these times do not include the work of its server and of the X server.
#include <windows.h>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include "base/clock_win.h"
#include "base/number_text.h"
#include "tests/client/fake_telemetry.h"
#include "tests/client/host_model.h"
#include "tests/client/message_driver_win.h"
#include "tests/client/panel_driver_win.h"
#include "tests/client/plugin_library_win.h"
#include "tests/client/resource_count_win.h"
#include "tests/client/test_machine_win.h"
#include "ui/gdiplus_win.h"

namespace {

constexpr std::uint64_t kFrameMs = 33;  // the panel's timer
constexpr std::uint64_t kPublishEveryMs = 400;
constexpr const char* kThemeNames[] = {"GENERAL", "BOEING", "AIRBUS"};

// --- the plugin in a voice client ---

class Client {
  public:
    Client() {
        host_.addServer(1, 7, 100);
        host_.setCurrentServer(1);
        std::filesystem::create_directories(data_);
    }
    ~Client() {
        if (plugin_.isLoaded()) plugin_.exports().shutdown();
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool load() {
        std::error_code error;
        const auto dll = machine_.path / "corvalis_win64.dll";  // alone in its folder: no worker runs
        std::filesystem::copy_file(productFile("corvalis_win64.dll"), dll, error);
        if (error || !plugin_.load(dll)) return false;
        plugin_.exports().setFunctionPointers(host_.table());
        plugin_.exports().registerPluginID("bench");
        return true;
    }
    // Shows the panel like this; when called again, the window stays and the settings are read anew.
    void show(std::int32_t theme, int scalePercent, bool isVisible = true) {
        writeFile(data_ / "settings.ini", "theme=" + std::to_string(theme) +
                                              "\r\ntext_auto_open=0\r\npanel_scale=" + std::to_string(scalePercent) +
                                              "\r\npanel_visible=" + (isVisible ? "1" : "0") + "\r\n");
        publish();
        plugin_.exports().init();
        waitFor([] { return findPanel() != nullptr; });
        waitFor([=] { return (IsWindowVisible(findPanel()) != 0) == isVisible; });
    }
    void publish() {
        publishedAtMs_ = systemTickMs();
        host_.forgetCalls();  // what the model remembers must not count as the panel's memory
        replaceFile(data_ / "telemetry.json", telemetryText(telemetry_, clock_.unixSeconds()));
    }
    void keepFlying() {
        if (systemTickMs() - publishedAtMs_ >= kPublishEveryMs) publish();
    }
    void toggleMessages() { plugin_.exports().onMenuItemEvent(1, 0, 3, 0); }
    void receiveText() {
        HostTextMessage text;
        text.message = "PDC 1423";
        plugin_.deliver(text);
    }

  private:
    FreshFolder machine_{L"corvalis bench"};
    const std::filesystem::path data_ = machine_.path / "Corvalis";
    EnvironmentValue appData_{L"APPDATA", machine_.path.wstring()};
    SystemClock clock_;
    HostModel host_{clock_};
    PluginLibrary plugin_;
    FakeTelemetry telemetry_;
    std::uint64_t publishedAtMs_ = 0;
};

// --- processor time ---

double threadMs(HANDLE thread) {
    FILETIME created, exited, kernel, user;
    GetThreadTimes(thread, &created, &exited, &kernel, &user);
    const auto ticks = [](const FILETIME& time) {
        return static_cast<double>((static_cast<std::uint64_t>(time.dwHighDateTime) << 32U) | time.dwLowDateTime);
    };
    return (ticks(kernel) + ticks(user)) / 10000.0;
}

class PanelThread {
  public:
    PanelThread()
        : handle_(OpenThread(THREAD_QUERY_INFORMATION, FALSE, GetWindowThreadProcessId(findPanel(), nullptr))) {}
    ~PanelThread() { CloseHandle(handle_); }
    PanelThread(const PanelThread&) = delete;
    PanelThread& operator=(const PanelThread&) = delete;
    double spentMs() const { return threadMs(handle_); }

  private:
    HANDLE handle_;
};

void printRow(const std::string& what, double spentMs, double wallMs, const char* limit) {
    std::printf("%-44s %8s ms in %s s  %6s %% of a core   %s\n", what.c_str(), formatFixed(spentMs, 0).c_str(),
                formatFixed(wallMs / 1000.0, 1).c_str(), formatFixed(100.0 * spentMs / wallMs, 2).c_str(), limit);
    std::fflush(stdout);
}

// Runs eachFrame thirty times a second for that time and prints what the panel's thread used meanwhile.
template <class EachFrame>
void measure(Client& client, const std::string& what, std::uint64_t ms, const char* limit, EachFrame eachFrame) {
    const PanelThread thread;
    const double before = thread.spentMs();
    const std::uint64_t start = systemTickMs();
    for (std::uint64_t frame = 0; systemTickMs() - start < ms; frame++) {
        client.keepFlying();
        eachFrame(frame);
        Sleep(kFrameMs);
    }
    printRow(what, thread.spentMs() - before, static_cast<double>(systemTickMs() - start), limit);
}

void settle() {
    Sleep(1500);  // caches are filled, the poll thread has read the aircraft
}

// Watches the lamp above BOEING's TEXT key for more than a flash.
bool textFlashes() {
    const ThemeLayout& layout = themeLayout(kBoeingTheme);
    const UnitRect& lamp = findHotspot(layout, kCustomKeyA)->indicator;
    const float scale = static_cast<float>(PanelDriver(findPanel(), kBoeingTheme).scale());
    POINT at = {static_cast<LONG>((lamp.x + lamp.width / 2.0f - layout.origin.x) * scale),
                static_cast<LONG>((lamp.y + lamp.height / 2.0f - layout.origin.y) * scale)};
    ClientToScreen(findPanel(), &at);
    const HDC screen = GetDC(nullptr);
    const COLORREF first = GetPixel(screen, at.x, at.y);
    const bool flashes = waitFor([&] { return GetPixel(screen, at.x, at.y) != first; }, 1500);
    ReleaseDC(nullptr, screen);
    return flashes;
}

void measurePanel(Client& client, std::uint64_t ms) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        const std::string name = kThemeNames[theme];
        client.show(theme, 100);
        settle();
        const PanelDriver panel(findPanel(), theme);
        measure(client, name + ", standing still", ms, "(limit 1)", [](std::uint64_t) {});
        const std::int32_t knob = theme == kGeneralTheme ? kStandbyChannelDigits : kSmallKnob;
        measure(client, name + (theme == kGeneralTheme ? ", digits tuned" : ", knob turning"), ms, "(limit 15)",
                [&](std::uint64_t frame) { panel.wheel(knob, frame % 60 < 30 ? WHEEL_DELTA : -WHEEL_DELTA); });
    }
    client.show(kBoeingTheme, 100);
    client.receiveText();
    settle();
    if (textFlashes())
        measure(client, "BOEING, TEXT flashing", ms, "(limit 15)", [](std::uint64_t) {});
    else
        std::printf("BOEING, TEXT flashing: not measured, the lamp does not flash\n");
    client.show(kAirbusTheme, 100, false);
    settle();
    measure(client, "hidden", ms, "(limit 0.3)", [](std::uint64_t) {});
    // The message window alone, on the same thread.
    client.toggleMessages();
    client.receiveText();
    settle();
    measure(client, isMessageWindowShown() ? "message window, standing still" : "message window: NOT SHOWN", ms,
            "(limit 2)", [](std::uint64_t) {});
    client.toggleMessages();
    settle();
    measure(client, "message window hidden again", ms, "(limit 0.3)", [](std::uint64_t) {});
}

// --- the baseline: everything drawn anew each time, the obvious first version ---

// The theme's image from the DLL's resources, unchanged.
std::unique_ptr<Gdiplus::Bitmap> loadArt(std::int32_t theme) {
    const HMODULE dll = GetModuleHandleW(L"corvalis_win64.dll");
    const HRSRC resource = FindResourceW(dll, MAKEINTRESOURCEW(2001 + theme), RT_RCDATA);
    if (!resource) return nullptr;
    const DWORD size = SizeofResource(dll, resource);
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size);
    CopyMemory(GlobalLock(block), LockResource(LoadResource(dll, resource)), size);
    GlobalUnlock(block);
    IStream* stream = nullptr;
    if (FAILED(CreateStreamOnHGlobal(block, TRUE, &stream))) return nullptr;
    auto image = std::make_unique<Gdiplus::Bitmap>(stream);
    auto art = std::unique_ptr<Gdiplus::Bitmap>(image->Clone(
        0, 0, static_cast<INT>(image->GetWidth()), static_cast<INT>(image->GetHeight()), PixelFormat32bppARGB));
    image.reset();
    stream->Release();
    return art;
}

void presentPlainly(HWND window, Gdiplus::Bitmap& art, const ThemeLayout& layout) {
    const double scale = 900.0 / static_cast<double>(layout.width);
    const int width = 900;
    const int height = static_cast<int>(std::ceil(static_cast<double>(layout.height) * scale));
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    void* bits = nullptr;
    const HBITMAP section = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = SelectObject(memory, section);
    {
        Gdiplus::Bitmap surface(width, height, width * 4, PixelFormat32bppPARGB, static_cast<BYTE*>(bits));
        Gdiplus::Graphics graphics(&surface);
        graphics.Clear(Gdiplus::Color(0, 0, 0, 0));
        graphics.SetInterpolationMode(Gdiplus::InterpolationModeHighQualityBicubic);
        graphics.ScaleTransform(static_cast<float>(scale), static_cast<float>(scale));
        graphics.TranslateTransform(-layout.origin.x, -layout.origin.y);
        graphics.DrawImage(&art, 0, 0, static_cast<INT>(art.GetWidth()), static_cast<INT>(art.GetHeight()));
    }
    POINT position = {80, 80}, source = {0, 0};
    SIZE size = {width, height};
    BLENDFUNCTION blend = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    UpdateLayeredWindow(window, screen, &position, &size, memory, &source, 0, &blend, ULW_ALPHA);
    SelectObject(memory, before);
    DeleteObject(section);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
}

void measureBaseline(std::int32_t theme, std::uint64_t ms) {
    useDevicePixels();
    WNDCLASSW description = {};
    description.lpfnWndProc = DefWindowProcW;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = L"CorvalisPlainPanel";
    RegisterClassW(&description);
    const HWND window = CreateWindowExW(WS_EX_LAYERED | WS_EX_TOOLWINDOW, description.lpszClassName, L"", WS_POPUP, 80,
                                        80, 900, 350, nullptr, nullptr, description.hInstance, nullptr);
    const auto art = loadArt(theme);
    if (!art) {
        std::printf("baseline: the DLL has no artwork\n");
        return;
    }
    ShowWindow(window, SW_SHOWNOACTIVATE);
    SetTimer(window, 1, kFrameMs, nullptr);
    presentPlainly(window, *art, themeLayout(theme));
    const double before = threadMs(GetCurrentThread());
    const std::uint64_t start = systemTickMs();
    int frames = 0;
    MSG message;
    while (systemTickMs() - start < ms && GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (message.message == WM_TIMER) {
            presentPlainly(window, *art, themeLayout(theme));
            frames++;
        }
        DispatchMessageW(&message);
    }
    const auto wallMs = static_cast<double>(systemTickMs() - start);
    const double spentMs = threadMs(GetCurrentThread()) - before;
    printRow(std::string("baseline: ") + kThemeNames[theme] + " drawn anew " +
                 formatFixed(1000.0 * frames / wallMs, 1) + "/s",
             spentMs, wallMs, "");
    DestroyWindow(window);
    UnregisterClassW(description.lpszClassName, description.hInstance);
}

// --- what stays behind ---

void presentManyTimes(Client& client, int presentations) {
    constexpr int kPerSize = 100;
    for (int done = 0, round = 0; done < presentations; round++) {
        const std::int32_t theme = round % kThemeCount;
        client.show(theme, 50 + round * 17 % 100);
        const PanelDriver panel(findPanel(), theme);
        POINT at = panel.pointOn(theme == kGeneralTheme ? kStandbyChannelDigits : kSmallKnob);
        ClientToScreen(findPanel(), &at);
        for (int i = 0; i < kPerSize; i++, done++) {
            client.keepFlying();
            SendMessageW(findPanel(), WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), MAKELPARAM(at.x, at.y));
            SendMessageW(findPanel(), WM_DISPLAYCHANGE, 32, 0);  // presents at once
        }
    }
}

void printResources(const char* when) {
    const ResourceCount count = countResources();
    std::printf("%-32s %6d GDI, %4d USER, %5d handles, %8s KB private\n", when, count.gdiObjects, count.userObjects,
                count.handles, formatFixed(static_cast<double>(count.privateBytes) / 1024.0, 0).c_str());
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    useDevicePixels();
    const auto ms = static_cast<std::uint64_t>(argc > 1 ? std::max(1, std::atoi(argv[1])) : 20) * 1000;
    const GdiPlusSession gdiPlus;
    Client client;
    if (!client.load()) {
        std::printf("The plugin does not load\n");
        return 1;
    }
    measurePanel(client, ms);
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) std::thread(measureBaseline, theme, ms).join();
    client.show(kGeneralTheme, 100);
    presentManyTimes(client, 1000);  // fills what is kept between presentations
    printResources("after 1,000 presentations");
    for (const char* when : {"after 2,500 more", "after 5,000 more", "after 7,500 more", "after 10,000 more"}) {
        presentManyTimes(client, 2500);
        printResources(when);
    }
    return 0;
}
