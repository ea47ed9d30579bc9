// dialog_driver_win.h - a user's hand on the settings dialog's real window: finds its controls and turns clicks, drags,
// keys and commands into sent messages, done when they return. Neither the real cursor nor the focus matters.
// [host] Used from the main thread of a test or the pictures.
#pragma once
#include <windows.h>
#include <functional>
#include "settings/dialog/dialog_layout.h"

// The dialog of this process, null while there is none.
HWND findDialog();
bool isDialogShown();
int countDialogs();  // of this process

class DialogDriver {
  public:
    // dpi: what the dialog was told last, 0 for the window's own.
    DialogDriver(HWND dialog, int page, unsigned dpi = 0) : dialog_(dialog), page_(page), dpi_(dpi) {}

    HWND window() const { return dialog_; }
    // The dialog's present layout, not scrolled.
    DialogLayout layout() const;
    // The middle of a control, or of one of its parts; {-1, -1} if the page lacks it.
    POINT pointOn(int id, int part = 0) const;
    // A point of the title bar that moves the window.
    POINT pointOnTitle() const;

    // Runs work on the dialog's own thread as one message: nothing that the system sends, such as a move of the real
    // pointer or a change of focus, comes in between.
    void inOneGo(const std::function<void()>& work) const;

    // Each returns when the dialog has carried it out; nothing comes in between during clicks and drags.
    void turnTo(int page);
    void press(POINT at) const { sendAt(WM_LBUTTONDOWN, MK_LBUTTON, at); }
    void move(POINT at) const { sendAt(WM_MOUSEMOVE, 0, at); }
    void release(POINT at) const { sendAt(WM_LBUTTONUP, 0, at); }
    void click(int id, int part = 0) const;
    // Drags a slider's thumb from its place for `from` to its place for `to`.
    void drag(int id, float from, float to) const;
    // The middle of a slider's thumb at the given value.
    POINT pointOnTrack(int id, float value) const;
    void wheel(int id, int delta) const;
    void key(WPARAM virtualKey) const { send(WM_KEYDOWN, virtualKey, 1); }
    // The key has been down before.
    void repeatKey(WPARAM virtualKey) const { send(WM_KEYDOWN, virtualKey, MAKELPARAM(1, KF_REPEAT)); }
    // option as the dialog's WM_COMMAND takes it: its number + 1 in the upper word, or none.
    void command(int id, int option = -1) const { send(WM_COMMAND, MAKEWPARAM(id, option + 1), 0); }
    void send(UINT message, WPARAM wParam, LPARAM lParam) const { SendMessageW(dialog_, message, wParam, lParam); }

    // Returns at once: for messages that keep the dialog busy until something else ends that.
    void post(UINT message, WPARAM wParam, LPARAM lParam) const { PostMessageW(dialog_, message, wParam, lParam); }

  private:
    void sendAt(UINT message, WPARAM keys, POINT at) const { send(message, keys, MAKELPARAM(at.x, at.y)); }

    HWND dialog_;
    int page_;
    unsigned dpi_;
};
