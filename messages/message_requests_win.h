// message_requests_win.h - what every thread may know of the message window and ask of it. The UI thread carries a
// request out when it comes to it; nothing is answered, and without a window a request is lost.
#pragma once
#include <windows.h>
#include <atomic>

struct MessageWindowLink {
    std::atomic<HWND> window{nullptr};   // [ui] stores; null while there is no window
    std::atomic<bool> isVisible{false};  // [ui] stores, [any] loads
};

// Posted to the window (class "CorvalisTextMessage"); no parameters.
enum MessageWindowRequest : UINT {
    kShowMessages = WM_APP + 1,  // show it beside the panel, on the page it stands on; all messages count as read
    kShowNewestMessage,          // the same on the newest page; nothing when the window is visible already
    kToggleMessages,             // hide it when it is visible, show it otherwise
    kHideMessages,
    kRepaintMessages,  // look for a change now rather than at the next tick
};

// [any] Never waits.
inline void requestOfMessageWindow(const MessageWindowLink& link, MessageWindowRequest request) {
    if (const HWND window = link.window) PostMessageW(window, request, 0, 0);
}
