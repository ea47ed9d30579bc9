#include "tests/client/message_driver_win.h"
#include "tests/client/test_machine_win.h"

namespace {

LPARAM clientPoint(double x, double y) {
    const double scale = GetDpiForWindow(findMessageWindow()) / 96.0;
    return MAKELPARAM(static_cast<int>(x * scale), static_cast<int>(y * scale));
}

void send(UINT message, WPARAM wParam, LPARAM lParam) {
    SendMessageW(findMessageWindow(), message, wParam, lParam);
}

}  // namespace

HWND findMessageWindow() {
    return static_cast<HWND>(findOwnWindow(L"CorvalisTextMessage"));
}

bool isMessageWindowShown() {
    return findMessageWindow() && IsWindowVisible(findMessageWindow());
}

RECT messageWindowRect() {
    RECT rect = {};
    GetWindowRect(findMessageWindow(), &rect);
    return rect;
}

void pressMessageKey(WPARAM key) {
    send(WM_KEYDOWN, key, 1);
    send(WM_KEYUP, key, 1);
}

void clickMessageWindow(double x, double y) {
    send(WM_LBUTTONDOWN, MK_LBUTTON, clientPoint(x, y));
    send(WM_LBUTTONUP, 0, clientPoint(x, y));
}

void moveOverMessageWindow(double x, double y) {
    send(WM_MOUSEMOVE, 0, clientPoint(x, y));
}

void turnMessageWheel(int delta) {
    send(WM_MOUSEWHEEL, MAKEWPARAM(0, delta), 0);
}
