#include "plugin/ui_thread_win.h"
#include "messages/message_window_win.h"
#include "panel/panel_window_win.h"
#include "panel/theme_art_win.h"
#include "ui/gdiplus_win.h"
#include "ui/message_loop_win.h"

namespace {

constexpr DWORD kTryAgainMs = 50;

PanelWindowContext panelContextOf(PluginState& plugin) {
    return {
        .module = plugin.module,
        .clock = plugin.clock,
        .settings = plugin.settings,
        .radios = plugin.radios,
        .talk = plugin.talk,
        .voice = plugin.voice,
        .unreadTexts = plugin.messages.unread,
        .languageIndex = plugin.languageIndex,
        .actions = plugin.panelActions,
        .stop = plugin.stopUi,
        .publicWindow = plugin.panel_window,
    };
}

MessageWindowContext messageContextOf(PluginState& plugin) {
    return {
        .module = plugin.module,
        .clock = plugin.clock,
        .settings = plugin.settings,
        .store = plugin.messages,
        .link = plugin.messageWindow,
        .languageIndex = plugin.languageIndex,
        .neighbour = plugin.panel_window,
    };
}

void serveWindows(PluginState& plugin) {
    useMonitorDpi();
    const GraphicsSession graphics;
    const ThemeArt theme_art = loadThemeArt(plugin.module);
    const WindowClass panelClass(plugin.module, kPanelClass);
    const WindowClass messageClass(plugin.module, kMessageClass);
    MessageWindow messages(messageContextOf(plugin));
    messages.create();
    PanelWindow panel(panelContextOf(plugin), theme_art);
    if (!panel.create()) return;
    panel.present_panel();
    // A shutdown that began before the handle was published had no window to close.
    if (plugin.stopUi) PostMessageW(plugin.panel_window, WM_CLOSE, kCloseByShutdown, 0);
    serveMessages(plugin.panel_window);
}

}  // namespace

void runUiThread(PluginState& plugin) noexcept {
    while (!plugin.stopUi) {
        try {
            return serveWindows(plugin);
        } catch (...) {
            // Mostly no memory to begin with: there may be some later.
        }
        MSG message;
        PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);  // a window that went would end the next try
        Sleep(kTryAgainMs);
    }
}
