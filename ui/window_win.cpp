#include "ui/window_win.h"
#include <windowsx.h>
#include <cassert>
#include "ui/pointer_argument_win.h"

namespace {

constexpr UINT_PTR kTimer = 1;

// Whether the system is moving a window of this thread.
bool isThreadDragging() {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(GetCurrentThreadId(), &info) && (info.flags & GUI_INMOVESIZE) != 0;
}

}  // namespace

WindowClass::WindowClass(HINSTANCE module, const wchar_t* name) : module_(module), name_(name) {
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    description.lpfnWndProc = &Window::procedure;
    description.hInstance = module;
    description.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // IDC_ARROW
    description.lpszClassName = name;
    RegisterClassExW(&description);
}

Window::~Window() {
    assert(!window_);
}

void Window::destroyWindow() {
    if (window_) DestroyWindow(window_);
}

bool Window::createWindow(const WindowDescription& description) {
    CreateWindowExW(description.extendedStyle, description.className, description.title, description.style,
                    description.place.x, description.place.y, description.size.width, description.size.height, nullptr,
                    nullptr, description.module, this);
    return window_ != nullptr;
}

LRESULT CALLBACK Window::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        auto* self = static_cast<Window*>(pointerFrom<CREATESTRUCTW>(lParam)->lpCreateParams);
        self->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = pointerFrom<Window>(GetWindowLongPtrW(window, GWLP_USERDATA));
    try {
        if (self) return self->take(message, wParam, lParam);
    } catch (...) {
        // Out of memory while carrying a message out: the message is lost, the window stays.
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT Window::take(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_MOUSELEAVE) isTrackingMouse_ = false;
    if (message == WM_WINDOWPOSCHANGING && isDragged_) pointerFrom<WINDOWPOS>(lParam)->flags |= SWP_NOACTIVATE;
    if (message != WM_DESTROY) return onMessage(message, wParam, lParam);
    stopTimer();
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);  // later messages reach only the default procedure
    window_ = nullptr;
    onDestroyed();
    return 0;
}

LRESULT Window::doDefault(UINT message, WPARAM wParam, LPARAM lParam) const {
    return DefWindowProcW(window_, message, wParam, lParam);
}

void Window::startTimer(UINT periodMs) {
    SetTimer(window_, kTimer, periodMs, nullptr);
}

void Window::stopTimer() {
    KillTimer(window_, kTimer);
}

bool Window::trackMouseLeave() {
    if (isTrackingMouse_) return true;
    TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, window_, 0};
    isTrackingMouse_ = TrackMouseEvent(&leave) != FALSE;
    return isTrackingMouse_;
}

LRESULT Window::dragByCaption(PixelPoint at) {
    // Each move serves messages until the button is let go, or until it takes the WM_QUIT of a window that was closed
    // meanwhile. There is only one of those: a move begun within another would leave that one waiting for ever.
    if (isThreadDragging()) return 0;
    POINT screen = {at.x, at.y};
    ClientToScreen(window_, &screen);
    ReleaseCapture();
    // What the default procedure makes of a press on a caption, but for activating the window: whether a click does
    // that has been decided by the answer to WM_MOUSEACTIVATE. Nor may the moves themselves (take).
    isDragged_ = true;
    const LRESULT result = SendMessageW(window_, WM_SYSCOMMAND, SC_MOVE | HTCAPTION, MAKELPARAM(screen.x, screen.y));
    isDragged_ = false;
    return result;
}

PixelSize Window::clientSize() const {
    RECT client = {};
    GetClientRect(window_, &client);
    return {client.right, client.bottom};
}

unsigned Window::dpi() const {
    return GetDpiForWindow(window_);
}

PixelRect Window::screenRect() const {
    RECT rect = {};
    return GetWindowRect(window_, &rect) ? pixelRectOf(rect) : PixelRect{};
}

void Window::moveTo(const PixelRect& rect) {
    SetWindowPos(window_, nullptr, rect.left, rect.top, rect.width(), rect.height(), SWP_NOZORDER | SWP_NOACTIVATE);
}

void Window::moveTo(PixelPoint place) {
    SetWindowPos(window_, nullptr, place.x, place.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Window::raise() {
    SetWindowPos(window_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

PixelPoint pointOf(LPARAM position) {
    return {GET_X_LPARAM(position), GET_Y_LPARAM(position)};
}

PixelRect pixelRectOf(const RECT& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}
