#include "tests/client/window_watch_win.h"
#include <atomic>
#include <utility>

namespace {

constexpr DWORD kMarkerMs = 30'000;

std::atomic<HANDLE> gMarkerSeen{nullptr};  // event, while somebody waits for the marker
WindowWatch::Looks gLooks;                 // set before the hooks are, and unchanged while they are set

UINT markerMessage() {
    static const UINT message = RegisterWindowMessageW(L"CorvalisTestMarker");
    return message;
}

LRESULT CALLBACK onMarker(int code, WPARAM removed, LPARAM parameter) {
    const auto& message = *reinterpret_cast<const MSG*>(parameter);
    const HANDLE seen = gMarkerSeen;
    if (code == HC_ACTION && removed == PM_REMOVE && message.message == markerMessage() && seen) SetEvent(seen);
    return CallNextHookEx(nullptr, code, removed, parameter);
}

LRESULT CALLBACK onTaken(int code, WPARAM removed, LPARAM parameter) {
    if (code == HC_ACTION && removed == PM_REMOVE && gLooks.onTaken) gLooks.onTaken(*reinterpret_cast<MSG*>(parameter));
    return CallNextHookEx(nullptr, code, removed, parameter);
}

LRESULT CALLBACK onSent(int code, WPARAM isOwn, LPARAM parameter) {
    const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(parameter);
    MSG message = {};
    message.hwnd = sent.hwnd;
    message.message = sent.message;
    message.wParam = sent.wParam;
    message.lParam = sent.lParam;
    if (code == HC_ACTION && gLooks.onSent) gLooks.onSent(message);
    return CallNextHookEx(nullptr, code, isOwn, parameter);
}

HHOOK hook(int kind, HOOKPROC procedure, HWND window) {
    return SetWindowsHookExW(kind, procedure, nullptr, GetWindowThreadProcessId(window, nullptr));
}

}  // namespace

bool waitForPosted(HWND window) {
    const HANDLE seen = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    gMarkerSeen = seen;
    const HHOOK markerHook = hook(WH_GETMESSAGE, onMarker, window);
    const bool isSeen = markerHook && PostMessageW(window, markerMessage(), 0, 0) &&
                        WaitForSingleObject(seen, kMarkerMs) == WAIT_OBJECT_0;
    if (markerHook) UnhookWindowsHookEx(markerHook);
    SendMessageW(window, WM_NULL, 0, 0);  // now nobody is inside onMarker
    gMarkerSeen = nullptr;
    CloseHandle(seen);
    return isSeen;
}

WindowWatch::WindowWatch(HWND window, Looks looks) : window_(window) {
    gLooks = std::move(looks);
    takenHook_ = hook(WH_GETMESSAGE, onTaken, window);
    sentHook_ = hook(WH_CALLWNDPROC, onSent, window);
}

WindowWatch::~WindowWatch() {
    if (takenHook_) UnhookWindowsHookEx(takenHook_);
    if (sentHook_) UnhookWindowsHookEx(sentHook_);
    SendMessageW(window_, WM_NULL, 0, 0);  // now nobody is inside a look
    gLooks = {};
}
