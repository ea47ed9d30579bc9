#include "ui/message_loop_win.h"

void useMonitorDpi() {
    SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
}

std::optional<int> serveMessages(const std::atomic<HWND>& window) {
    MSG message;
    while (window != nullptr) {
        if (GetMessageW(&message, nullptr, 0, 0) <= 0) {
            if (window == nullptr) return std::nullopt;
            return static_cast<int>(message.wParam);
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
    return std::nullopt;
}
