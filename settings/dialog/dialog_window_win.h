// dialog_window_win.h - the settings dialog's window: unpacks messages, asks layout, interaction and model, shows the
// picture.
#pragma once
#include <windows.h>
#include <optional>
#include "settings/dialog/dialog_paint_win.h"
#include "settings/dialog/settings_dialog_win.h"
#include "ui/memory_surface_win.h"
#include "ui/window_win.h"

inline constexpr const wchar_t* kDialogClass = L"CorvalisSettingsClass";

// [dialog] Created once; its class is registered by runSettingsDialog.
class DialogWindow final : private Window {
  public:
    explicit DialogWindow(const DialogContext& context);
    ~DialogWindow() override { destroyWindow(); }

    bool create();
    // Places and shows it, in front.
    void open();

  private:
    LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void onDestroyed() override;
    LRESULT onCreate();
    LRESULT onPaint();
    LRESULT onCommand(const DialogCommand& command);
    LRESULT onKey(WPARAM key, bool isRepeated);
    LRESULT onMouseMove(PixelPoint at);
    LRESULT onMouseLeave();
    LRESULT onLeftDown(PixelPoint at);
    LRESULT onLeftUp(PixelPoint at);
    LRESULT onWheel(int delta, POINT screen);
    LRESULT onCaptureChanged();
    LRESULT onDpiChanged(unsigned dpi, const RECT& suggested);
    LRESULT onHeld();
    LRESULT onReleased();
    LRESULT onPrint(HDC dc);

    DialogLayout layout() const;
    std::int32_t language() const;
    void run(const DialogCommand& command);
    void carryOut(DialogAction action);
    void commit(const char* logLine);
    // Follows the live settings and the simulator, and paints what has changed.
    void refresh();
    DialogPicture currentPicture();

    const DialogContext& context_;
    DialogModel model_;
    DialogInput input_;
    LiveMemory liveMemory_;
    DialogPainter painter_;
    MemorySurface surface_;
    std::optional<DialogPicture> drawn_;  // what the surface shows
    unsigned dpi_ = 96;                   // of the monitor it is on, as the system told last; its picture's
    bool isHeld_ = false;                 // the system moves it with the mouse
    bool isResized_ = false;              // another resolution since it is held
    bool isOpened_ = false;               // its messages are about to be served
};
