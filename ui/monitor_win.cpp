#include "ui/monitor_win.h"

ScreenRect workAreaOf(HWND window) {
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    if (!GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor)) return {};
    return {monitor.rcWork.left, monitor.rcWork.top, monitor.rcWork.right, monitor.rcWork.bottom};
}
