#include "ui/message_loop_win.h"

void useMonitorDpi() {
    SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
}

void serveMessages(const std::atomic<HWND>& window) {
    MSG message;
    while (window != nullptr && GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}
