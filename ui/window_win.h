// window_win.h - what all our windows have: a class, a procedure that lets no exception out, a timer, the notice that
// the mouse has left, dragging as if by a caption, and an end.
// A window belongs to the thread that creates it; everything here is called on that thread.
#pragma once
#include <windows.h>
#include "ui/geometry.h"

// A window class, registered as long as this object lives: a later load of the DLL must not find our old procedure in
// it.
class WindowClass {
  public:
    WindowClass(HINSTANCE module, const wchar_t* name);
    ~WindowClass() { UnregisterClassW(name_, module_); }
    WindowClass(const WindowClass&) = delete;
    WindowClass& operator=(const WindowClass&) = delete;

  private:
    HINSTANCE module_;
    const wchar_t* name_;
};

// How a window is made.
struct WindowDescription {
    HINSTANCE module = nullptr;
    const wchar_t* className = nullptr;  // of a WindowClass
    const wchar_t* title = nullptr;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    PixelPoint place;  // CW_USEDEFAULT: where the system chooses
    PixelSize size;
};

class Window {
  public:
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

  protected:
    Window() = default;
    virtual ~Window();

    // A derived class calls this in its destructor: the window, if still there, goes with its owner.
    void destroyWindow();

    // False when the system cannot create one.
    bool createWindow(const WindowDescription& description);
    // Null before and after the window's life.
    HWND window() const { return window_; }
    // The default procedure of the system.
    LRESULT doDefault(UINT message, WPARAM wParam, LPARAM lParam) const;

    virtual LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) = 0;
    // Called for the last message; any later ones reach only the default procedure.
    virtual void onDestroyed() = 0;

    // WM_TIMER every periodMs until stopTimer or the end.
    void startTimer(UINT periodMs);
    void stopTimer();
    // Asks for WM_MOUSELEAVE when the mouse leaves. True if that message will come.
    bool trackMouseLeave();
    // Drags the window as if a caption were pressed at this client point, without activating it; returns when the
    // system has moved it.
    LRESULT dragByCaption(PixelPoint at);

    PixelSize clientSize() const;
    unsigned dpi() const;                // of the monitor that it is on
    PixelRect screenRect() const;        // empty when unknown
    void moveTo(const PixelRect& rect);  // screen pixels; neither raised nor activated

  private:
    friend class WindowClass;
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam);

    HWND window_ = nullptr;
    bool isTrackingMouse_ = false;
};

// A point of the client area as mouse messages carry it.
PixelPoint pointOf(LPARAM position);
PixelRect pixelRectOf(const RECT& rect);
