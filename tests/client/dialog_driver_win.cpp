#include "tests/client/dialog_driver_win.h"
#include "tests/client/test_machine_win.h"

HWND findDialog() {
    return static_cast<HWND>(findOwnWindow(L"CorvalisSettingsClass"));
}

DialogLayout DialogDriver::layout() const {
    RECT client = {};
    GetClientRect(dialog_, &client);
    return layoutDialog(client.right, client.bottom, GetDpiForWindow(dialog_), page_, 0);
}

POINT DialogDriver::pointOn(int id, int part) const {
    const DialogLayout now = layout();
    const DialogControl* control = findControl(now, id);
    if (!control) return {-1, -1};
    const PixelRect rect = partRect(now, *control, part);
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

void DialogDriver::turnTo(int page) {
    click(kFirstTab + page);
    page_ = page;
}

void DialogDriver::click(int id, int part) const {
    const POINT at = pointOn(id, part);
    press(at);
    release(at);
}

void DialogDriver::drag(int id, float from, float to) const {
    const DialogLayout now = layout();
    const DialogControl* control = findControl(now, id);
    const SliderRange& range = findRow(id)->range;
    const PixelRect track = trackRect(now, *control);
    POINT at = {thumbX(now, *control, range, from), (track.top + track.bottom) / 2};
    press(at);
    at.x = thumbX(now, *control, range, to);
    move(at);
    release(at);
}

void DialogDriver::wheel(int id, int delta) const {
    POINT at = pointOn(id);
    ClientToScreen(dialog_, &at);
    postAt(WM_MOUSEWHEEL, MAKEWPARAM(0, delta), at);
}
