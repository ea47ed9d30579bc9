// message_window_win.h - the window that shows the stored text messages: unpacks its messages, asks the page, paints.
// Other threads ask for it through message_requests_win.h.
#pragma once
#include <windows.h>
#include <optional>
#include "messages/message_page.h"
#include "messages/message_paint_win.h"
#include "messages/message_requests_win.h"
#include "panel/memory_surface_win.h"
#include "panel/ui_rooms_win.h"

inline constexpr const wchar_t* kMessageClass = L"CorvalisTextMessage";

// [ui] One window, created once and hidden; its class is registered by the thread. Needs the thread's GDI+.
class MessageWindow {
  public:
    explicit MessageWindow(const UiRooms& rooms) : rooms_(rooms) {}
    ~MessageWindow();
    MessageWindow(const MessageWindow&) = delete;
    MessageWindow& operator=(const MessageWindow&) = delete;

    // Goes on without a window when the system has none: every request is then lost.
    void create();

    static LRESULT CALLBACK wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

  private:
    LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT onCreate();
    LRESULT onDestroy();
    LRESULT onShowWindow(bool isShown);
    LRESULT onKey(WPARAM key);
    LRESULT onMouseMove(PagePoint at);
    LRESULT onMouseLeave();
    LRESULT onLeftDown(PagePoint at);
    LRESULT onWheel(int delta);
    LRESULT onDpiChanged(const RECT& suggested);
    LRESULT onPaint();

    LRESULT show();
    LRESULT showNewest();
    LRESULT hide();
    LRESULT change_page(std::int32_t delta);
    // Draws the page and has it painted if it is another one than before; nothing while the window is hidden.
    LRESULT showChange();
    void drawPage();
    void blinkCursor();

    PageLook currentLook() const;
    ScreenRect findPlace() const;
    static PagePoint pointOf(LPARAM position);
    std::int32_t clientWidth() const;
    std::uint32_t dpi() const;

    UiRooms rooms_;
    HWND window_ = nullptr;
    MessagePage page_;
    bool isPlacing_ = false;  // show() gives it its size: the system's suggestions do not count
    bool isTrackingMouse_ = false;
    MessagePainter painter_;
    MemorySurface surface_;
    std::optional<PageLook> drawn_;   // what the surface shows
    std::optional<PageItem> cursor_;  // painted over it
};
