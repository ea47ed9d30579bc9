// message_window_win.h - the window that shows the stored text messages: unpacks its messages for the model, paints.
// Other threads ask for it through message_requests_win.h.
#pragma once
#include <windows.h>
#include "messages/message_model.h"
#include "messages/message_paint_win.h"
#include "messages/message_requests_win.h"
#include "ui/memory_surface_win.h"
#include "ui/window_win.h"

inline constexpr const wchar_t* kMessageClass = L"CorvalisTextMessage";

// What the window works with; all of it outlives the window.
struct MessageWindowContext {
    HINSTANCE module = nullptr;
    const Clock& clock;
    SettingsStore& settings;
    MessageStore& store;
    MessageWindowLink& link;  // what the others know of it
    const std::atomic<std::int32_t>& languageIndex;
    const std::atomic<HWND>& neighbour;  // the window beside which it opens; null while there is none
};

// [ui] One window, created once and hidden; its class is registered by the thread. Needs the thread's GDI+.
class MessageWindow final : private Window, private MessageScreen {
  public:
    explicit MessageWindow(const MessageWindowContext& context);
    ~MessageWindow() override { destroyWindow(); }

    // Goes on without a window if the system has none left: every request is then lost.
    void create();

  private:
    LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void onDestroyed() override;
    LRESULT onCreate();
    LRESULT onShowWindow(bool isShown);
    LRESULT onMouseMove(PixelPoint at);
    LRESULT onMouseLeave();
    LRESULT onMouseActivate();
    LRESULT onDpiChanged(const RECT& suggested);
    LRESULT onPaint();
    LRESULT onPrint(HDC dc);

    void place() override;
    void appear() override;
    void vanish() override;
    void dragFrom(PixelPoint at) override;
    std::int32_t clientWidth() const override;
    std::uint32_t screenDpi() const override;
    MeasureStyledText preparePicture() override;
    void paint(const std::vector<PageItem>& items) override;
    void invalidate() override;
    void invalidate(const UnitRect& part) override;
    void update() override;

    void drawOnto(HDC dc) const;
    PixelRect findPlace() const;

    MessageWindowContext context_;
    bool isPlacing_ = false;  // place() sets the size: the system's suggestions are ignored
    MessagePainter painter_;
    MemorySurface surface_;
    MessageModel model_;
};
