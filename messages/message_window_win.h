// message_window_win.h - the window that shows the stored text messages: unpacks its messages for the model, paints.
// Other threads ask for it through message_requests_win.h.
#pragma once
#include <windows.h>
#include "messages/message_model.h"
#include "messages/message_paint_win.h"
#include "messages/message_requests_win.h"
#include "panel/ui_rooms_win.h"
#include "ui/memory_surface_win.h"

inline constexpr const wchar_t* kMessageClass = L"CorvalisTextMessage";

// [ui] One window, created once and hidden; its class is registered by the thread. Needs the thread's GDI+.
class MessageWindow final : private MessageScreen {
  public:
    explicit MessageWindow(const UiRooms& rooms);
    ~MessageWindow() override;

    // Goes on without a window when the system has none: every request is then lost.
    void create();

    static LRESULT CALLBACK wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

  private:
    LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT onCreate();
    LRESULT onDestroy();
    LRESULT onShowWindow(bool isShown);
    LRESULT onMouseMove(PagePoint at);
    LRESULT onMouseLeave();
    LRESULT onDpiChanged(const RECT& suggested);
    LRESULT onPaint();
    LRESULT onPrint(HDC dc);

    void place() override;
    void appear() override;
    void vanish() override;
    void dragFrom(PagePoint at) override;
    std::int32_t clientWidth() const override;
    std::uint32_t dpi() const override;
    MeasureStyledText preparePicture() override;
    void paint(const std::vector<PageItem>& items) override;
    void invalidate() override;
    void invalidate(const PageRect& part) override;
    void update() override;

    void drawOnto(HDC dc) const;
    ScreenRect findPlace() const;

    UiRooms rooms_;
    HWND window_ = nullptr;
    bool isPlacing_ = false;  // place() gives it its size: the system's suggestions do not count
    bool isTrackingMouse_ = false;
    MessagePainter painter_;
    MemorySurface surface_;
    MessageModel model_;
};
