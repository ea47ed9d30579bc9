#include "settings/dialog/dialog_window_win.h"
#include <windowsx.h>
#include "base/log_line.h"
#include "base/wide_text_win.h"
#include "settings/interface_texts.h"
#include "ui/monitor_win.h"
#include "ui/pointer_argument_win.h"
#include "ui/window_class_win.h"

namespace {

constexpr UINT_PTR kTimer = 1;
constexpr UINT kTimerMs = 200;  // the live row, and what the panel changes
constexpr const char* kSampleSender = "Beijing Control";
constexpr const char* kSampleText =
    "PDC 2026-09-28 ZBAA\n"
    "CLR TO ZSPD VIA ELKUR W40 YQO\n"
    "INITIAL CLB 3000M\n"
    "SQUAWK 4312\n"
    "DEP RWY 36L\n"
    "WHEN READY CONTACT 121.600";

DialogPoint pointOf(LPARAM position) {
    return {GET_X_LPARAM(position), GET_Y_LPARAM(position)};
}

std::optional<DialogKey> keyOf(WPARAM key) {
    switch (key) {
        case VK_TAB:
            return GetKeyState(VK_SHIFT) < 0 ? DialogKey::kBackTab : DialogKey::kTab;
        case VK_LEFT:
            return DialogKey::kLeft;
        case VK_RIGHT:
            return DialogKey::kRight;
        case VK_UP:
            return DialogKey::kUp;
        case VK_DOWN:
            return DialogKey::kDown;
        case VK_PRIOR:
            return DialogKey::kPageUp;
        case VK_NEXT:
            return DialogKey::kPageDown;
        case VK_HOME:
            return DialogKey::kHome;
        case VK_END:
            return DialogKey::kEnd;
        case VK_SPACE:
            return DialogKey::kSpace;
        case VK_RETURN:
            return DialogKey::kEnter;
        case VK_ESCAPE:
            return DialogKey::kEscape;
        default:
            return std::nullopt;
    }
}

PixelRect workAreaUnderCursor() {
    POINT cursor = {};
    GetCursorPos(&cursor);
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    if (!GetMonitorInfoW(MonitorFromPoint(cursor, MONITOR_DEFAULTTONEAREST), &monitor)) return {0, 0, 940, 660};
    return {monitor.rcWork.left, monitor.rcWork.top, monitor.rcWork.right, monitor.rcWork.bottom};
}

// Where the system has a desktop window manager that can.
void roundCorners(HWND window) {
    using SetAttribute = HRESULT(WINAPI*)(HWND, DWORD, LPCVOID, DWORD);
    constexpr DWORD kCornerPreference = 33;  // DWMWA_WINDOW_CORNER_PREFERENCE
    const DWORD rounded = 2;                 // DWMWCP_ROUND
    const HMODULE library = LoadLibraryExW(L"dwmapi.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (!library) return;
    const auto function = reinterpret_cast<void*>(GetProcAddress(library, "DwmSetWindowAttribute"));
    if (const auto setAttribute = reinterpret_cast<SetAttribute>(function))
        setAttribute(window, kCornerPreference, &rounded, sizeof rounded);
    FreeLibrary(library);
}

// Until the dialog's quit message. A close that comes while the system moves the window ends in the system's own loop,
// which may keep the quit message to itself; the missing window tells then.
void serveMessages(const DialogLink& link) {
    MSG message;
    while (link.window != nullptr && GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void runInSlot(const DialogRooms& rooms) {
    const WindowClass dialogClass(rooms.module, kDialogClass, &DialogWindow::wndProc);
    DialogWindow dialog(rooms);
    if (!dialog.create()) return;
    // A shutdown that began before the handle was published found no window to close.
    if (rooms.link.slot.isClosing()) PostMessageW(rooms.link.window, WM_CLOSE, 0, 0);
    dialog.open();
    serveMessages(rooms.link);
}

class EnteredSlot {
  public:
    explicit EnteredSlot(DialogSlot& slot) : slot_(slot) {}
    ~EnteredSlot() { slot_.leave(); }
    EnteredSlot(const EnteredSlot&) = delete;
    EnteredSlot& operator=(const EnteredSlot&) = delete;

  private:
    DialogSlot& slot_;
};

}  // namespace

bool showOpenDialog(const DialogLink& link) {
    const HWND window = link.window;
    if (!window) return false;
    // Posted: the dialog's thread may be about to end, and nobody is to wait for it.
    ShowWindowAsync(window, SW_RESTORE);
    SetForegroundWindow(window);
    return true;
}

void runSettingsDialog(DialogRooms rooms, const std::function<void()>& prepare) {
    SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    if (showOpenDialog(rooms.link) || !rooms.link.slot.enter()) return;
    const EnteredSlot entered(rooms.link.slot);
    prepare();
    runInSlot(rooms);
}

DialogWindow::DialogWindow(DialogRooms rooms) : rooms_(std::move(rooms)) {
    followLive(model_, copySettings(rooms_.settings));
}

bool DialogWindow::create() {
    const std::wstring title = wideFromUtf8(textOf(language(), kTextWindowTitle));
    CreateWindowExW(WS_EX_APPWINDOW, kDialogClass, title.c_str(), WS_POPUP | WS_CLIPCHILDREN, CW_USEDEFAULT,
                    CW_USEDEFAULT, kDialogWidth, kDialogHeight, nullptr, nullptr, rooms_.module, this);
    return window_ != nullptr;
}

void DialogWindow::open() {
    moveTo(placeDialog(workAreaUnderCursor(), GetDpiForWindow(window_)));
    roundCorners(window_);
    ShowWindow(window_, SW_SHOW);
    refresh();
    UpdateWindow(window_);
    SetForegroundWindow(window_);
}

LRESULT CALLBACK DialogWindow::wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        const auto* create = pointerFrom<CREATESTRUCTW>(lParam);
        static_cast<DialogWindow*>(create->lpCreateParams)->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = pointerFrom<DialogWindow>(GetWindowLongPtrW(window, GWLP_USERDATA));
    try {
        if (self) return self->onMessage(message, wParam, lParam);
    } catch (...) {
        // Out of memory while carrying a message out: the message is lost, the window stays.
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT DialogWindow::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE:
            return onCreate();
        case WM_DESTROY:
            return onDestroy();
        case WM_ERASEBKGND:
            return 1;  // painting covers everything
        case WM_PAINT:
            return onPaint();
        case WM_TIMER:
        case WM_SIZE:
            refresh();
            return 0;
        case WM_COMMAND:
            return onCommand({LOWORD(wParam), static_cast<int>(HIWORD(wParam)) - 1});
        case WM_KEYDOWN:
            return onKey(wParam);
        case WM_MOUSEMOVE:
            return onMouseMove(pointOf(lParam));
        case WM_MOUSELEAVE:
            return onMouseLeave();
        case WM_LBUTTONDOWN:
            return onLeftDown(pointOf(lParam));
        case WM_LBUTTONUP:
            return onLeftUp(pointOf(lParam));
        case WM_MOUSEWHEEL:
            return onWheel(GET_WHEEL_DELTA_WPARAM(wParam), {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        case WM_CAPTURECHANGED:
        case WM_CANCELMODE:
            return onCaptureChanged();
        case WM_DPICHANGED:
            return onDpiChanged(*pointerFrom<const RECT>(lParam));
        default:
            return DefWindowProcW(window_, message, wParam, lParam);
    }
}

LRESULT DialogWindow::onCreate() {
    rooms_.link.window = window_;
    SetTimer(window_, kTimer, kTimerMs, nullptr);
    return 0;
}

LRESULT DialogWindow::onDestroy() {
    KillTimer(window_, kTimer);
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);  // later messages find only the default procedure
    window_ = nullptr;
    rooms_.link.window = nullptr;
    PostQuitMessage(0);
    return 0;
}

LRESULT DialogWindow::onPaint() {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window_, &paint);
    const RECT& part = paint.rcPaint;
    if (surface_.dc())
        BitBlt(dc, part.left, part.top, part.right - part.left, part.bottom - part.top, surface_.dc(), part.left,
               part.top, SRCCOPY);
    EndPaint(window_, &paint);
    return 0;
}

LRESULT DialogWindow::onCommand(const DialogCommand& command) {
    const std::int32_t before = language();
    const DialogAction action = runCommand(input_, model_, command, GetUserDefaultUILanguage());
    if (language() != before) SetWindowTextW(window_, wideFromUtf8(textOf(language(), kTextWindowTitle)).c_str());
    carryOut(action);
    if (window_) refresh();
    return 0;
}

void DialogWindow::carryOut(DialogAction action) {
    switch (action) {
        case DialogAction::kNone:
            break;
        case DialogAction::kApply:
            commit("settings applied (window kept open)");
            break;
        case DialogAction::kSaveAndClose:
            commit("settings saved");
            DestroyWindow(window_);
            break;
        case DialogAction::kClose:
            DestroyWindow(window_);
            break;
        case DialogAction::kPreviewMessages:
            preview();
            break;
        case DialogAction::kClearMessages:
            clearMessages(rooms_.messages);
            break;
    }
}

void DialogWindow::commit(const char* logLine) {
    commitDialog(model_, rooms_.settings, rooms_.languageIndex, GetUserDefaultUILanguage());
    logToHost(rooms_.host, logLine);
}

void DialogWindow::preview() {
    addMessage(rooms_.messages, kSampleSender, kSampleText, kPrivateMessage, 0, rooms_.clock.tickMs());
    rooms_.previewMessages();
}

LRESULT DialogWindow::onKey(WPARAM key) {
    const auto pressed = keyOf(key);
    if (!pressed) return 0;
    if (const auto command = pressKey(input_, model_, layout(), *pressed)) return onCommand(*command);
    refresh();
    return 0;
}

LRESULT DialogWindow::onMouseMove(DialogPoint at) {
    moveMouse(input_, model_, layout(), at);
    if (!isTrackingMouse_) {
        TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, window_, 0};
        isTrackingMouse_ = TrackMouseEvent(&leave) != FALSE;
    }
    refresh();
    return 0;
}

LRESULT DialogWindow::onMouseLeave() {
    isTrackingMouse_ = false;
    leaveMouse(input_);
    refresh();
    return 0;
}

LRESULT DialogWindow::onLeftDown(DialogPoint at) {
    const bool isTaken = pressMouse(input_, model_, layout(), at);
    refresh();
    if (isTaken) {
        SetCapture(window_);
        return 0;
    }
    if (hitDialog(layout(), at).id != kTitleBarHit) return 0;
    POINT screen = {at.x, at.y};
    ClientToScreen(window_, &screen);
    // As if there were a caption: returns when the system has moved the window.
    return SendMessageW(window_, WM_NCLBUTTONDOWN, HTCAPTION, MAKELPARAM(screen.x, screen.y));
}

LRESULT DialogWindow::onLeftUp(DialogPoint at) {
    const auto command = releaseMouse(input_, model_, layout(), at);
    ReleaseCapture();
    if (command) return onCommand(*command);
    refresh();
    return 0;
}

LRESULT DialogWindow::onWheel(int delta, POINT screen) {
    ScreenToClient(window_, &screen);
    turnWheel(input_, model_, layout(), {screen.x, screen.y}, delta);
    refresh();
    return 0;
}

LRESULT DialogWindow::onCaptureChanged() {
    forgetMouse(input_);
    refresh();
    return 0;
}

LRESULT DialogWindow::onDpiChanged(const RECT& suggested) {
    const ScreenRect work = workAreaOf(window_);
    moveTo(placeSuggested({suggested.left, suggested.top, suggested.right, suggested.bottom},
                          {work.left, work.top, work.right, work.bottom}));
    refresh();
    return 0;
}

void DialogWindow::moveTo(const PixelRect& rect) {
    SetWindowPos(window_, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

std::int32_t DialogWindow::language() const {
    return dialogLanguage(model_, GetUserDefaultUILanguage());
}

DialogLayout DialogWindow::layout() const {
    RECT client = {};
    GetClientRect(window_, &client);
    return layoutDialog(client.right, client.bottom, GetDpiForWindow(window_), model_.page, input_.scroll);
}

DialogPicture DialogWindow::currentPicture() {
    RECT client = {};
    GetClientRect(window_, &client);
    DialogPicture picture{client.right, client.bottom, GetDpiForWindow(window_), model_.page, {}, input_};
    picture.view.settings = model_.working;
    picture.view.language = language();
    picture.view.live =
        liveStatusOf(copySimState(rooms_.sim), model_.working.radio, liveMemory_, rooms_.clock.tickMs());
    return picture;
}

void DialogWindow::refresh() {
    followLive(model_, copySettings(rooms_.settings));
    const DialogPicture picture = currentPicture();
    if (drawn_ && *drawn_ == picture) return;
    drawn_.reset();
    if (!IsWindowVisible(window_) || !surface_.resize(picture.width, picture.height)) return;
    painter_.paint(surface_, layout(), picture);
    drawn_ = picture;
    InvalidateRect(window_, nullptr, FALSE);
    UpdateWindow(window_);
}
