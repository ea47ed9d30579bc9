// dialog_window_win.h - the settings dialog's window: unpacks messages, asks layout, interaction and model, shows the
// picture.
#pragma once
#include <windows.h>
#include <optional>
#include "settings/dialog/dialog_paint_win.h"
#include "settings/dialog/dialog_run_win.h"
#include "ui/memory_surface_win.h"

inline constexpr const wchar_t* kDialogClass = L"CorvalisSettingsClass";

// [dialog] Created once; its class is registered by runSettingsDialog.
class DialogWindow {
  public:
    explicit DialogWindow(DialogRooms rooms);
    DialogWindow(const DialogWindow&) = delete;
    DialogWindow& operator=(const DialogWindow&) = delete;

    bool create();
    // Places and shows it, in front.
    void open();

    static LRESULT CALLBACK wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

  private:
    LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT onCreate();
    LRESULT onDestroy();
    LRESULT onPaint();
    LRESULT onCommand(const DialogCommand& command);
    LRESULT onKey(WPARAM key);
    LRESULT onMouseMove(DialogPoint at);
    LRESULT onMouseLeave();
    LRESULT onLeftDown(DialogPoint at);
    LRESULT onLeftUp(DialogPoint at);
    LRESULT onWheel(int delta, POINT screen);
    LRESULT onCaptureChanged();
    LRESULT onDpiChanged(const RECT& suggested);

    DialogLayout layout() const;
    std::int32_t language() const;
    void carryOut(DialogAction action);
    void commit(const char* logLine);
    void preview();
    // Follows the live settings and the simulator, and paints what has changed.
    void refresh();
    DialogPicture currentPicture();
    void moveTo(const PixelRect& rect);

    DialogRooms rooms_;
    HWND window_ = nullptr;
    DialogModel model_;
    DialogInput input_;
    LiveMemory liveMemory_;
    bool isTrackingMouse_ = false;
    DialogPainter painter_;
    MemorySurface surface_;
    std::optional<DialogPicture> drawn_;  // what the surface shows
};
