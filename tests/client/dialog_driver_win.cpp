#include "tests/client/dialog_driver_win.h"
#include "tests/client/test_machine_win.h"

namespace {

constexpr const wchar_t* kDialogClass = L"CorvalisSettingsClass";

BOOL CALLBACK countOwnDialog(HWND window, LPARAM count) {
    wchar_t name[64] = {};
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == GetCurrentProcessId() && GetClassNameW(window, name, 64) > 0 && lstrcmpW(name, kDialogClass) == 0)
        ++*reinterpret_cast<int*>(count);
    return TRUE;
}

constexpr UINT kRunWork = WM_APP + 0x3A7;  // not a message of the dialog, which would ignore it

LRESULT CALLBACK runWork(int code, WPARAM wParam, LPARAM lParam) {
    const auto* message = reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && message->message == kRunWork)
        (*reinterpret_cast<const std::function<void()>*>(message->lParam))();
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace

HWND findDialog() {
    return static_cast<HWND>(findOwnWindow(kDialogClass));
}

bool isDialogShown() {
    const HWND dialog = findDialog();
    return dialog && IsWindowVisible(dialog);
}

int countDialogs() {
    int count = 0;
    EnumWindows(countOwnDialog, reinterpret_cast<LPARAM>(&count));
    return count;
}

DialogLayout DialogDriver::layout() const {
    RECT client = {};
    GetClientRect(dialog_, &client);
    return layoutDialog(client.right, client.bottom, dpi_ != 0 ? dpi_ : GetDpiForWindow(dialog_), page_, 0);
}

POINT DialogDriver::pointOn(int id, int part) const {
    const DialogLayout now = layout();
    const DialogControl* control = findControl(now, id);
    if (!control) return {-1, -1};
    const PixelRect rect = partRect(now, *control, part);
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

POINT DialogDriver::pointOnTitle() const {
    const PixelRect bar = layout().titleBar;
    return {(bar.left + bar.right) / 2, (bar.top + bar.bottom) / 2};
}

void DialogDriver::inOneGo(const std::function<void()>& work) const {
    const DWORD thread = GetWindowThreadProcessId(dialog_, nullptr);
    const HHOOK hook = SetWindowsHookExW(WH_CALLWNDPROC, runWork, nullptr, thread);
    send(kRunWork, 0, reinterpret_cast<LPARAM>(&work));
    if (hook) UnhookWindowsHookEx(hook);
}

void DialogDriver::turnTo(int page) {
    click(kGeneralTab + page);
    page_ = page;
}

void DialogDriver::click(int id, int part) const {
    const POINT at = pointOn(id, part);
    inOneGo([&] {
        press(at);
        release(at);
    });
}

POINT DialogDriver::pointOnTrack(int id, float value) const {
    const DialogLayout now = layout();
    const DialogControl* control = findControl(now, id);
    if (!control) return {-1, -1};
    const PixelRect track = trackRect(now, *control);
    return {thumbX(now, *control, findRow(id)->range, value), (track.top + track.bottom) / 2};
}

void DialogDriver::drag(int id, float from, float to) const {
    inOneGo([&] {
        press(pointOnTrack(id, from));
        move(pointOnTrack(id, to));
        release(pointOnTrack(id, to));
    });
}

void DialogDriver::wheel(int id, int delta) const {
    POINT at = pointOn(id);
    ClientToScreen(dialog_, &at);
    send(WM_MOUSEWHEEL, MAKEWPARAM(0, delta), MAKELPARAM(at.x, at.y));
}
