// message_loop_win.h - what a thread with windows needs besides them.
#pragma once
#include <windows.h>
#include <atomic>
#include <optional>

// From here on the thread's windows are told of each monitor's own DPI, and the system scales nothing for them.
void useMonitorDpi();

// Dispatches the thread's messages until the window is gone. A window that goes posts the quit message, for the
// system's own loop, which runs while the system moves a window; that loop may swallow it or not, and here it is taken
// back: the thread may be another's, and go on. A quit message that comes while the window is there is that other's: it
// ends this loop, and its exit code is the result; the window's owner destroys the window and posts it again.
std::optional<int> serveMessages(const std::atomic<HWND>& window);
