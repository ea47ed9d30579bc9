#include "messages/message_window_win.h"
#include <windowsx.h>
#include "base/monitor_win.h"

namespace {

constexpr const wchar_t* kMessageTitle = L"Corvalis Text";
constexpr UINT_PTR kTimer = 1;
constexpr UINT kTimerMs = 33;
constexpr BYTE kOpaque = 255;

TimeOfDay localTimeOf(double unixSeconds) {
    constexpr std::int64_t kUnixEpoch = 116444736000000000LL;  // 1970 in 100 ns since 1601
    const auto ticks = static_cast<std::uint64_t>(kUnixEpoch + static_cast<std::int64_t>(unixSeconds * 10000000.0));
    const FILETIME time = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32U)};
    SYSTEMTIME universal = {}, local = {};
    FileTimeToSystemTime(&time, &universal);
    SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local);
    return {local.wHour, local.wMinute, local.wSecond};
}

COLORREF colourOf(const PageItem& item) {
    return RGB(item.colour >> 16U & 0xFFU, item.colour >> 8U & 0xFFU, item.colour & 0xFFU);
}

}  // namespace

MessageWindow::~MessageWindow() {
    if (window_) DestroyWindow(window_);
}

void MessageWindow::create() {
    CreateWindowExW(WS_EX_LAYERED | WS_EX_TOOLWINDOW | WS_EX_TOPMOST, kMessageClass, kMessageTitle, WS_POPUP, 0, 0,
                    kMessageWidth, kMessageHeight, nullptr, nullptr, rooms_.module, this);
}

LRESULT CALLBACK MessageWindow::wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<CREATESTRUCTW*>(lParam);
        static_cast<MessageWindow*>(create->lpCreateParams)->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<MessageWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    try {
        if (self) return self->onMessage(message, wParam, lParam);
    } catch (...) {
        // Out of memory while carrying a message out: the message is lost, the window stays.
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT MessageWindow::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE:
            return onCreate();
        case WM_DESTROY:
            return onDestroy();
        case WM_CLOSE:
            return hide();
        case WM_ERASEBKGND:
            return 1;  // painting covers everything
        case WM_PAINT:
            return onPaint();
        case WM_TIMER:
        case kRepaintMessages:
            return showChange();
        case WM_SHOWWINDOW:
            return onShowWindow(wParam != FALSE);
        case WM_KEYDOWN:
            return onKey(wParam);
        case WM_MOUSEMOVE:
            return onMouseMove(pointOf(lParam));
        case WM_MOUSELEAVE:
            return onMouseLeave();
        case WM_LBUTTONDOWN:
            return onLeftDown(pointOf(lParam));
        case WM_MOUSEWHEEL:
            return onWheel(GET_WHEEL_DELTA_WPARAM(wParam));
        case WM_DPICHANGED:
            return onDpiChanged(*reinterpret_cast<const RECT*>(lParam));
        case kShowMessages:
            return show();
        case kShowNewestMessage:
            return showNewest();
        case kToggleMessages:
            return rooms_.messageWindow.isVisible ? hide() : show();
        case kHideMessages:
            return hide();
        default:
            return DefWindowProcW(window_, message, wParam, lParam);
    }
}

LRESULT MessageWindow::onCreate() {
    // A layered window appears only once it has been told how.
    SetLayeredWindowAttributes(window_, 0, kOpaque, LWA_ALPHA);
    rooms_.messageWindow.window = window_;
    return 0;
}

LRESULT MessageWindow::onDestroy() {
    KillTimer(window_, kTimer);
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);  // later messages find only the default procedure
    rooms_.messageWindow.window = nullptr;
    rooms_.messageWindow.isVisible = false;
    window_ = nullptr;
    return 0;
}

// Nobody sees a hidden window change: the timer runs while it is shown.
LRESULT MessageWindow::onShowWindow(bool isShown) {
    if (isShown)
        SetTimer(window_, kTimer, kTimerMs, nullptr);
    else
        KillTimer(window_, kTimer);
    return 0;
}

LRESULT MessageWindow::onKey(WPARAM key) {
    switch (key) {
        case VK_ESCAPE:
            return hide();
        case VK_UP:
        case VK_PRIOR:
            return change_page(1);
        case VK_DOWN:
        case VK_NEXT:
            return change_page(-1);
        case VK_DELETE:
            page_.clear(rooms_.messages);
            return showChange();
        default:
            return 0;
    }
}

LRESULT MessageWindow::onMouseMove(PagePoint at) {
    page_.hoverClose(isOnCloseButton(at, clientWidth(), dpi()));
    if (!isTrackingMouse_) {
        TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, window_, 0};
        isTrackingMouse_ = TrackMouseEvent(&leave) != FALSE;
    }
    return showChange();
}

LRESULT MessageWindow::onMouseLeave() {
    isTrackingMouse_ = false;
    page_.hoverClose(false);
    return showChange();
}

LRESULT MessageWindow::onLeftDown(PagePoint at) {
    if (isOnCloseButton(at, clientWidth(), dpi())) return hide();
    if (!isOnHeader(at, dpi())) return 0;
    POINT screen = {at.x, at.y};
    ClientToScreen(window_, &screen);
    ReleaseCapture();
    // As if the caption had been pressed: returns when the system has moved the window.
    return SendMessageW(window_, WM_NCLBUTTONDOWN, HTCAPTION, MAKELPARAM(screen.x, screen.y));
}

LRESULT MessageWindow::onWheel(int delta) {
    return change_page(delta < 1 ? -1 : 1);
}

LRESULT MessageWindow::onDpiChanged(const RECT& suggested) {
    if (!isPlacing_) {
        SetWindowPos(window_, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                     suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    return showChange();
}

LRESULT MessageWindow::onPaint() {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window_, &paint);
    if (surface_.dc()) BitBlt(dc, 0, 0, surface_.view().width, surface_.view().height, surface_.dc(), 0, 0, SRCCOPY);
    if (cursor_) {
        const RECT block = pagePixels(cursor_->rect, messageScale(dpi()));
        const HBRUSH brush = CreateSolidBrush(colourOf(*cursor_));
        if (brush) FillRect(dc, &block, brush);
        if (brush) DeleteObject(brush);
    }
    EndPaint(window_, &paint);
    return 0;
}

LRESULT MessageWindow::show() {
    const ScreenRect place = findPlace();
    isPlacing_ = true;
    SetWindowPos(window_, HWND_TOPMOST, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOACTIVATE);
    isPlacing_ = false;
    rooms_.messages.unread = 0;
    rooms_.messageWindow.isVisible = true;
    showChange();  // before it is seen
    ShowWindow(window_, SW_SHOWNOACTIVATE);
    SetWindowPos(window_, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return 0;
}

LRESULT MessageWindow::showNewest() {
    if (rooms_.messageWindow.isVisible) return 0;
    page_.rewind();
    return show();
}

LRESULT MessageWindow::hide() {
    rooms_.messageWindow.isVisible = false;  // first: a message that sees the window gone must be able to open it again
    ShowWindow(window_, SW_HIDE);
    return 0;
}

LRESULT MessageWindow::change_page(std::int32_t delta) {
    page_.change_page(rooms_.messages, delta);
    return showChange();
}

LRESULT MessageWindow::showChange() {
    if (!rooms_.messageWindow.isVisible) return 0;
    if (drawn_ != currentLook()) drawPage();
    blinkCursor();
    UpdateWindow(window_);  // a key's effect is seen at once, also while more of them wait
    return 0;
}

void MessageWindow::drawPage() {
    const PageLook look = currentLook();
    drawn_.reset();  // what fails is tried again at the next tick
    RECT client = {};
    GetClientRect(window_, &client);
    if (!surface_.resize(client.right, client.bottom)) return;
    const float scale = messageScale(look.dpi);
    TextMeasurer measurer(painter_, surface_, scale);
    page_.layOut(rooms_.messages, look,
                 {[&](const PageTextStyle& style, std::u16string_view text) { return measurer.measure(style, text); },
                  localTimeOf, rooms_.clock});
    const PageLook shown = currentLook();  // the page may have moved to where there are messages
    painter_.paint(surface_, scale, page_.items(shown));
    drawn_ = shown;
    InvalidateRect(window_, nullptr, FALSE);
}

// Where the cursor was and where it is are painted; the picture below stays.
void MessageWindow::blinkCursor() {
    const std::optional<PageItem> cursor = page_.cursor(rooms_.clock.tickMs());
    if (cursor == cursor_) return;
    for (const auto& changed : {cursor_, cursor}) {
        if (!changed) continue;
        const RECT block = pagePixels(changed->rect, messageScale(dpi()));
        InvalidateRect(window_, &block, FALSE);
    }
    cursor_ = cursor;
}

PageLook MessageWindow::currentLook() const {
    return page_.look(rooms_.messages, copySettings(rooms_.settings).text_scale, rooms_.languageIndex, dpi());
}

ScreenRect MessageWindow::findPlace() const {
    const HWND panel = rooms_.panel_window;
    RECT rect = {};
    if (!panel || !GetWindowRect(panel, &rect))
        return placeMessageWindow(GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
    return placeMessageWindow({rect.left, rect.top, rect.right, rect.bottom}, workAreaOf(panel),
                              GetDpiForWindow(panel));
}

PagePoint MessageWindow::pointOf(LPARAM position) {
    return {GET_X_LPARAM(position), GET_Y_LPARAM(position)};
}

std::int32_t MessageWindow::clientWidth() const {
    RECT client = {};
    GetClientRect(window_, &client);
    return client.right;
}

std::uint32_t MessageWindow::dpi() const {
    return GetDpiForWindow(window_);
}
