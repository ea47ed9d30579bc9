#include "ui/monitor_win.h"

namespace {

PixelRect workAreaOf(HMONITOR handle, const PixelRect& otherwise) {
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    if (!GetMonitorInfoW(handle, &monitor)) return otherwise;
    return {monitor.rcWork.left, monitor.rcWork.top, monitor.rcWork.right, monitor.rcWork.bottom};
}

}  // namespace

PixelRect workAreaOf(HWND window) {
    return workAreaOf(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), {});
}

PixelRect workAreaOf(const PixelRect& rect) {
    const RECT screen = {rect.left, rect.top, rect.right, rect.bottom};
    return workAreaOf(MonitorFromRect(&screen, MONITOR_DEFAULTTONEAREST), {});
}

PixelRect workAreaOf(PixelPoint point) {
    return workAreaOf(MonitorFromPoint({point.x, point.y}, MONITOR_DEFAULTTONEAREST), {});
}

PixelRect workAreaUnderCursor(const PixelRect& otherwise) {
    POINT cursor = {};
    GetCursorPos(&cursor);
    return workAreaOf(MonitorFromPoint(cursor, MONITOR_DEFAULTTONEAREST), otherwise);
}
