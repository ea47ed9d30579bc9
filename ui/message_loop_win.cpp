#include "ui/message_loop_win.h"

void useMonitorDpi() {
    SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
}

void serveMessages(const std::atomic<HWND>& window) {
    MSG message;
    while (window != nullptr) {
        if (GetMessageW(&message, nullptr, 0, 0) <= 0) {
            if (window != nullptr) PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
}
