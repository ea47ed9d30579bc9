#include "settings/dialog/dialog_window_win.h"
#include <windowsx.h>
#include <string>
#include "base/wide_text_win.h"
#include "settings/interface_texts.h"
#include "ui/message_loop_win.h"
#include "ui/monitor_win.h"
#include "ui/pointer_argument_win.h"

namespace {

constexpr UINT kTimerMs = 200;  // the live row, and what the panel changes

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

// Only where the system's desktop window manager can do it.
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

// The exit code of a quit message that was not for the dialog.
std::optional<int> runInSlot(const DialogContext& context) {
    const WindowClass dialogClass(context.module, kDialogClass);
    DialogWindow dialog(context);
    if (!dialog.create()) return std::nullopt;
    // A shutdown that began before the handle was published found no window to close.
    if (context.link.slot.isClosing()) PostMessageW(context.link.window, WM_CLOSE, 0, 0);
    dialog.open();
    return serveMessages(context.link.window);
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
    // Posted: the dialog's thread may be about to end, and nobody should wait for it.
    ShowWindowAsync(window, SW_RESTORE);
    SetForegroundWindow(window);
    return true;
}

void runSettingsDialog(const DialogContext& context) {
    useMonitorDpi();
    if (showOpenDialog(context.link) || !context.link.slot.enter()) return;
    const EnteredSlot entered(context.link.slot);
    context.prepare();
    if (const auto code = runInSlot(context)) PostQuitMessage(*code);
}

DialogWindow::DialogWindow(const DialogContext& context) : context_(context) {
    followLive(model_, copySettings(context_.settings));
}

bool DialogWindow::create() {
    const std::wstring title = wideFromUtf8(textOf(language(), kTextWindowTitle));
    return createWindow({.module = context_.module,
                         .className = kDialogClass,
                         .title = title.c_str(),
                         .style = WS_POPUP | WS_CLIPCHILDREN,
                         .extendedStyle = WS_EX_APPWINDOW,
                         .place = {CW_USEDEFAULT, CW_USEDEFAULT},
                         .size = {kDialogWidth, kDialogHeight}});
}

void DialogWindow::open() {
    const PixelRect workArea = workAreaUnderCursor({0, 0, kDialogWidth, kDialogHeight});
    // The monitor's resolution is known once the window is on it: its size there is not the one it comes with.
    for (int i = 0; i < 2; i++) {
        dpi_ = dpi();
        moveTo(placeDialog(workArea, dpi_));
    }
    roundCorners(window());
    ShowWindow(window(), SW_SHOW);
    refresh();
    UpdateWindow(window());
    SetForegroundWindow(window());
    isOpened_ = true;
}

LRESULT DialogWindow::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE:
            return onCreate();
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
            return onKey(wParam, (HIWORD(lParam) & KF_REPEAT) != 0);
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
            return onDpiChanged(LOWORD(wParam), *pointerFrom<const RECT>(lParam));
        case WM_ENTERSIZEMOVE:
            return onHeld();
        case WM_EXITSIZEMOVE:
            return onReleased();
        case WM_PRINTCLIENT:
            return onPrint(pointerFrom<HDC__>(static_cast<LONG_PTR>(wParam)));
        default:
            return doDefault(message, wParam, lParam);
    }
}

LRESULT DialogWindow::onCreate() {
    context_.link.window = window();
    startTimer(kTimerMs);
    return 0;
}

void DialogWindow::onDestroyed() {
    context_.link.window = nullptr;
    // Nobody would take it back from a thread of the host's that serves no messages for us yet.
    if (isOpened_) PostQuitMessage(0);
}

LRESULT DialogWindow::onPaint() {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window(), &paint);
    surface_.copyTo(dc, pixelRectOf(paint.rcPaint));
    EndPaint(window(), &paint);
    return 0;
}

LRESULT DialogWindow::onPrint(HDC dc) {
    const PixelSize client = clientSize();
    surface_.copyTo(dc, {0, 0, client.width, client.height});
    return 0;
}

LRESULT DialogWindow::onCommand(const DialogCommand& command) {
    run(command);
    if (window()) refresh();
    return 0;
}

void DialogWindow::run(const DialogCommand& command) {
    const std::int32_t before = language();
    const DialogAction action = runCommand(input_, model_, command, GetUserDefaultUILanguage());
    if (language() != before) SetWindowTextW(window(), wideFromUtf8(textOf(language(), kTextWindowTitle)).c_str());
    carryOut(action);
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
            DestroyWindow(window());
            break;
        case DialogAction::kClose:
            DestroyWindow(window());
            break;
        case DialogAction::kPreviewMessages:
            context_.previewMessages();
            break;
        case DialogAction::kClearMessages:
            context_.clearMessages();
            break;
    }
}

void DialogWindow::commit(const char* logLine) {
    commitDialog(model_, context_.settings, context_.languageIndex, GetUserDefaultUILanguage());
    context_.logCommit(logLine);
}

LRESULT DialogWindow::onKey(WPARAM key, bool isRepeated) {
    const auto pressed = keyOf(key);
    if (!pressed) return 0;
    if (const auto command = pressKey(input_, model_, layout(), *pressed, isRepeated)) return onCommand(*command);
    refresh();
    return 0;
}

LRESULT DialogWindow::onMouseMove(PixelPoint at) {
    moveMouse(input_, model_, layout(), at);
    trackMouseLeave();
    refresh();
    return 0;
}

LRESULT DialogWindow::onMouseLeave() {
    leaveMouse(input_);
    refresh();
    return 0;
}

LRESULT DialogWindow::onLeftDown(PixelPoint at) {
    const bool isTaken = pressMouse(input_, model_, layout(), at);
    refresh();
    if (isTaken) {
        SetCapture(window());
        return 0;
    }
    if (hitDialog(layout(), at).id != kTitleBarHit) return 0;
    return dragByCaption(at);
}

LRESULT DialogWindow::onLeftUp(PixelPoint at) {
    const auto command = releaseMouse(input_, model_, layout(), at);
    ReleaseCapture();
    if (command) run(*command);
    if (!window()) return 0;
    // A new page or language has forgotten the mouse, which is still here.
    moveMouse(input_, model_, layout(), at);
    refresh();
    return 0;
}

LRESULT DialogWindow::onWheel(int delta, POINT screen) {
    ScreenToClient(window(), &screen);
    turnWheel(input_, model_, layout(), {screen.x, screen.y}, delta);
    refresh();
    return 0;
}

LRESULT DialogWindow::onCaptureChanged() {
    letGo(input_);
    refresh();
    return 0;
}

LRESULT DialogWindow::onDpiChanged(unsigned dpi, const RECT& suggested) {
    dpi_ = dpi;
    isResized_ = isHeld_;
    moveTo(placeForResolution(pixelRectOf(suggested), workAreaOf(window()), dpi_, isHeld_));
    refresh();
    return 0;
}

LRESULT DialogWindow::onHeld() {
    isHeld_ = true;
    isResized_ = false;
    return 0;
}

// In another size than it was taken in, it may have come to hang over an edge.
LRESULT DialogWindow::onReleased() {
    isHeld_ = false;
    if (isResized_) moveTo(moveInto(screenRect(), workAreaOf(window())));
    isResized_ = false;
    return 0;
}

std::int32_t DialogWindow::language() const {
    return dialogLanguage(model_, GetUserDefaultUILanguage());
}

DialogLayout DialogWindow::layout() const {
    const PixelSize client = clientSize();
    return layoutDialog(client.width, client.height, dpi_, model_.page, input_.scroll);
}

DialogPicture DialogWindow::currentPicture() {
    const PixelSize client = clientSize();
    DialogPicture picture{client.width, client.height, dpi_, model_.page, {}, input_};
    picture.view.settings = model_.working;
    picture.view.language = language();
    const std::int32_t com = model_.working.radio;
    picture.view.live = liveStatusOf(context_.liveRadio(com), com, liveMemory_, context_.clock.tickMs());
    return picture;
}

void DialogWindow::refresh() {
    followLive(model_, copySettings(context_.settings));
    const DialogPicture picture = currentPicture();
    if (drawn_ && *drawn_ == picture) return;
    drawn_.reset();
    if (!IsWindowVisible(window()) || !surface_.resize(picture.width, picture.height)) return;
    painter_.paint(surface_, layout(), picture);
    drawn_ = picture;
    InvalidateRect(window(), nullptr, FALSE);
    UpdateWindow(window());
}
