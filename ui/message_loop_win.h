// message_loop_win.h - what a thread with windows needs besides them.
#pragma once
#include <windows.h>
#include <atomic>

// From here on the thread's windows are told of each monitor's own DPI, and the system scales nothing for them.
void useMonitorDpi();

// Dispatches the thread's messages until the quit message, or until the window is gone: a close that comes while the
// system moves a window is handled in the system's own loop, which may swallow the quit message.
void serveMessages(const std::atomic<HWND>& window);
