// message_requests_win.h - what every thread may know of the message window and ask of it. The UI thread carries out
// each request in turn; none is answered, and without a window a request is lost.
#pragma once
#include <windows.h>
#include <atomic>

struct MessageWindowLink {
    std::atomic<HWND> window{nullptr};   // [ui] stores; null while there is no window
    std::atomic<bool> isVisible{false};  // [ui] stores, [any] loads
};

// Posted to the window (class "CorvalisTextMessage"); only the last has a parameter.
enum MessageWindowRequest : UINT {
    // Show it beside the panel on the newest page, all messages read; does nothing if it is already visible.
    kShowNewestMessage = WM_APP + 1,
    kToggleMessages,  // hide it when it is visible, show it on its current page otherwise
    kHideMessages,
    kRepaintMessages,  // look for a change now rather than at the next tick
    kShowMessage,      // show it on the message whose number (addMessage) is wParam, also while others arrive
};

// [any] Never waits.
inline void requestOfMessageWindow(const MessageWindowLink& link, MessageWindowRequest request, WPARAM wParam = 0) {
    if (const HWND window = link.window) PostMessageW(window, request, wParam, 0);
}
