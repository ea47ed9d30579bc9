// message_requests_win.h - what every thread may know of the message window and ask of it. The UI thread carries out
// each request in turn; none is answered, and without a window a request is lost.
#pragma once
#include <windows.h>
#include <atomic>

struct MessageWindowLink {
    std::atomic<HWND> window{nullptr};   // [ui] stores; null while there is no window
    std::atomic<bool> isVisible{false};  // [ui] stores, [any] loads
};

// Posted to the window (class "CorvalisTextMessage"); no parameters.
enum MessageWindowRequest : UINT {
    kShowMessages = WM_APP + 1,  // show it beside the panel, on its current page; all messages count as read
    kShowNewestMessage,          // the same on the newest page; does nothing if the window is already visible
    kToggleMessages,             // hide it when it is visible, show it otherwise
    kHideMessages,
    kRepaintMessages,  // look for a change now rather than at the next tick
};

// [any] Never waits.
inline void requestOfMessageWindow(const MessageWindowLink& link, MessageWindowRequest request) {
    if (const HWND window = link.window) PostMessageW(window, request, 0, 0);
}
