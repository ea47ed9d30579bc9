// window_class_win.h - a window class that is ours as long as its owner lives: a later load of the DLL must not find
// our old procedure in it.
#pragma once
#include <windows.h>

class WindowClass {
  public:
    WindowClass(HINSTANCE module, const wchar_t* name, WNDPROC procedure) : module_(module), name_(name) {
        WNDCLASSEXW description = {};
        description.cbSize = sizeof description;
        description.lpfnWndProc = procedure;
        description.hInstance = module;
        description.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // IDC_ARROW
        description.lpszClassName = name;
        RegisterClassExW(&description);
    }
    ~WindowClass() { UnregisterClassW(name_, module_); }
    WindowClass(const WindowClass&) = delete;
    WindowClass& operator=(const WindowClass&) = delete;

  private:
    HINSTANCE module_;
    const wchar_t* name_;
};
