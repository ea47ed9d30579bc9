#include "panel/ui_thread_win.h"
#include "messages/message_window_win.h"
#include "panel/panel_window_win.h"
#include "panel/theme_art_win.h"
#include "ui/gdiplus_win.h"
#include "ui/window_class_win.h"

namespace {

// Until the panel's quit message. A close that comes while the system moves the panel ends in the system's own loop,
// which may keep the quit message to itself; the missing window tells then.
void serveMessages(const std::atomic<HWND>& panel_window) {
    MSG message;
    while (panel_window != nullptr && GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

}  // namespace

void run_ui_thread(UiRooms rooms) {
    SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    const GdiPlusSession gdiPlus;
    const ComApartment com;
    const ThemeArt theme_art = loadThemeArt(rooms.module);
    const WindowClass panelClass(rooms.module, kPanelClass, &PanelWindow::wndProc);
    const WindowClass messageClass(rooms.module, kMessageClass, &MessageWindow::wndProc);
    MessageWindow messages(rooms);
    messages.create();
    PanelWindow panel(rooms, theme_art);
    if (!panel.create()) return;
    panel.present_panel();
    // A shutdown that began before the handle was published found no window to close.
    if (rooms.stop) PostMessageW(rooms.panel_window, WM_CLOSE, kCloseByShutdown, 0);
    serveMessages(rooms.panel_window);
}
