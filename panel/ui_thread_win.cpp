#include "panel/ui_thread_win.h"
#include "panel/panel_messages.h"
#include "panel/panel_volume.h"

namespace {

constexpr const wchar_t* kPanelClass = L"CorvalisRadioPanel";
constexpr const wchar_t* kPanelTitle = L"Corvalis Radio";

// The radio panel's window. It has no picture yet and stays hidden; it carries out what is posted to it.
class PanelWindow {
  public:
    explicit PanelWindow(UiRooms& rooms) : rooms_(rooms) {}

    bool create() {
        const Settings settings = copySettings(rooms_.settings);
        CreateWindowExW(WS_EX_LAYERED | WS_EX_TOOLWINDOW, kPanelClass, kPanelTitle, WS_POPUP, settings.panel_x,
                        settings.panel_y, 900, 350, nullptr, nullptr, rooms_.module, this);
        return rooms_.panelWindow != nullptr;
    }

    static LRESULT CALLBACK wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
        if (message == WM_NCCREATE) {
            const auto* create = reinterpret_cast<CREATESTRUCTW*>(lParam);
            SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
        }
        auto* self = reinterpret_cast<PanelWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        try {
            if (self) return self->onMessage(window, message, wParam, lParam);
        } catch (...) {
            // Out of memory while carrying a message out: the message is lost, the window stays.
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

  private:
    LRESULT onMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        switch (message) {
            case WM_CREATE:
                rooms_.panelWindow = window;
                return 0;
            case WM_CLOSE:
                return onClose(window, wParam);
            case WM_DESTROY:
                return onDestroy(window);
            case kPanelStepMessage:
                return onStep(wParam, lParam);
            case kPanelVolumeMessage:
                return onVolume(wParam, lParam);
            case kPanelSwapMessage:
                return onSwap(wParam);
            default:
                return DefWindowProcW(window, message, wParam, lParam);
        }
    }

    LRESULT onClose(HWND window, WPARAM reason) {
        if (rooms_.stop || reason == kCloseByShutdown)
            DestroyWindow(window);
        else
            updateSettings(rooms_.settings, [](Settings& live) { live.panel_visible = false; });
        return 0;
    }

    LRESULT onDestroy(HWND window) {
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        rooms_.panelWindow = nullptr;
        PostQuitMessage(0);
        return 0;
    }

    LRESULT onStep(WPARAM knob, LPARAM steps) {
        const auto com = static_cast<std::int32_t>(knob & 0xFFU);
        const auto slot = static_cast<std::int32_t>((knob >> 8U) & 0xFFU) == kSlotActive ? kSlotActive : kSlotStandby;
        const bool wholeMegahertz = (knob >> 16U & 1U) != 0;
        stepFrequency(rooms_.commands, rooms_.sim, com, slot, wholeMegahertz, static_cast<std::int32_t>(steps),
                      rooms_.clock.tickMs());
        return 0;
    }

    LRESULT onVolume(WPARAM com, LPARAM percent) {
        setPanelVolume(rooms_.commands, rooms_.sim, rooms_.settings, static_cast<std::int32_t>(com),
                       static_cast<float>(percent), rooms_.clock.tickMs());
        return 0;
    }

    LRESULT onSwap(WPARAM com) {
        enqueue(rooms_.commands, rooms_.sim, static_cast<std::int32_t>(com), kSlotSwap, 0.0, -1.0f,
                rooms_.clock.tickMs());
        return 0;
    }

    UiRooms& rooms_;
};

// The class is ours as long as the thread runs: a later load of the DLL must not find our old procedure in it.
class PanelClass {
  public:
    explicit PanelClass(HINSTANCE module) : module_(module) {
        WNDCLASSEXW description = {};
        description.cbSize = sizeof description;
        description.lpfnWndProc = &PanelWindow::wndProc;
        description.hInstance = module;
        description.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // IDC_ARROW
        description.lpszClassName = kPanelClass;
        RegisterClassExW(&description);
    }
    ~PanelClass() { UnregisterClassW(kPanelClass, module_); }
    PanelClass(const PanelClass&) = delete;
    PanelClass& operator=(const PanelClass&) = delete;

  private:
    HINSTANCE module_;
};

void serveMessages() {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

}  // namespace

void runUiThread(UiRooms rooms) {
    SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    const PanelClass panelClass(rooms.module);
    PanelWindow panel(rooms);
    if (!panel.create()) return;
    // A shutdown that began before the handle was published found no window to close.
    if (rooms.stop) PostMessageW(rooms.panelWindow, WM_CLOSE, kCloseByShutdown, 0);
    serveMessages();
}
