#include "messages/message_window_win.h"
#include <windowsx.h>
#include <memory>
#include "messages/local_time_win.h"
#include "ui/monitor_win.h"
#include "ui/pointer_argument_win.h"

namespace {

constexpr const wchar_t* kMessageTitle = L"Corvalis Text";
constexpr UINT_PTR kTimer = 1;
constexpr UINT kTimerMs = 33;
constexpr BYTE kOpaque = 255;

COLORREF colourOf(const PageItem& item) {
    return RGB(item.colour >> 16U & 0xFFU, item.colour >> 8U & 0xFFU, item.colour & 0xFFU);
}

PagePoint pointOf(LPARAM position) {
    return {GET_X_LPARAM(position), GET_Y_LPARAM(position)};
}

MessageKey keyOf(WPARAM key) {
    switch (key) {
        case VK_ESCAPE:
            return MessageKey::kEscape;
        case VK_UP:
            return MessageKey::kUp;
        case VK_PRIOR:
            return MessageKey::kPageUp;
        case VK_DOWN:
            return MessageKey::kDown;
        case VK_NEXT:
            return MessageKey::kPageDown;
        case VK_DELETE:
            return MessageKey::kDelete;
        default:
            return MessageKey::kOther;
    }
}

}  // namespace

MessageWindow::MessageWindow(const UiRooms& rooms)
    : rooms_(rooms),
      model_({rooms.clock, rooms.settings, rooms.messages, rooms.languageIndex, rooms.messageWindow.isVisible,
              localTimeOf},
             *this) {}

MessageWindow::~MessageWindow() {
    if (window_) DestroyWindow(window_);
}

void MessageWindow::create() {
    CreateWindowExW(WS_EX_LAYERED | WS_EX_TOOLWINDOW | WS_EX_TOPMOST, kMessageClass, kMessageTitle, WS_POPUP, 0, 0,
                    kMessageWidth, kMessageHeight, nullptr, nullptr, rooms_.module, this);
}

LRESULT CALLBACK MessageWindow::wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        const auto* create = pointerFrom<CREATESTRUCTW>(lParam);
        static_cast<MessageWindow*>(create->lpCreateParams)->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = pointerFrom<MessageWindow>(GetWindowLongPtrW(window, GWLP_USERDATA));
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
        case kHideMessages:
            model_.hide();
            return 0;
        case WM_ERASEBKGND:
            return 1;  // painting covers everything
        case WM_PAINT:
            return onPaint();
        case WM_PRINTCLIENT:
            return onPrint(pointerFrom<HDC__>(static_cast<LONG_PTR>(wParam)));
        case WM_TIMER:
        case kRepaintMessages:
            model_.refresh();
            return 0;
        case WM_SHOWWINDOW:
            return onShowWindow(wParam != FALSE);
        case WM_KEYDOWN:
            model_.pressKey(keyOf(wParam));
            return 0;
        case WM_MOUSEMOVE:
            return onMouseMove(pointOf(lParam));
        case WM_MOUSELEAVE:
            return onMouseLeave();
        case WM_LBUTTONDOWN:
            model_.pressAt(pointOf(lParam));
            return 0;
        case WM_MOUSEWHEEL:
            model_.turnWheel(GET_WHEEL_DELTA_WPARAM(wParam));
            return 0;
        case WM_DPICHANGED:
            return onDpiChanged(*pointerFrom<const RECT>(lParam));
        case kShowMessages:
            model_.show();
            return 0;
        case kShowNewestMessage:
            model_.showNewest();
            return 0;
        case kToggleMessages:
            model_.toggle();
            return 0;
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

LRESULT MessageWindow::onMouseMove(PagePoint at) {
    model_.movePointer(at);
    if (!isTrackingMouse_) {
        TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, window_, 0};
        isTrackingMouse_ = TrackMouseEvent(&leave) != FALSE;
    }
    return 0;
}

LRESULT MessageWindow::onMouseLeave() {
    isTrackingMouse_ = false;
    model_.leavePointer();
    return 0;
}

LRESULT MessageWindow::onDpiChanged(const RECT& suggested) {
    if (!isPlacing_) {
        SetWindowPos(window_, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                     suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    model_.refresh();
    return 0;
}

LRESULT MessageWindow::onPaint() {
    PAINTSTRUCT paint;
    drawOnto(BeginPaint(window_, &paint));
    EndPaint(window_, &paint);
    return 0;
}

// For whoever wants the window's picture without the screen: what is in front of it does not matter.
LRESULT MessageWindow::onPrint(HDC dc) {
    drawOnto(dc);
    return 0;
}

void MessageWindow::drawOnto(HDC dc) const {
    if (surface_.dc()) BitBlt(dc, 0, 0, surface_.view().width, surface_.view().height, surface_.dc(), 0, 0, SRCCOPY);
    if (!model_.cursor()) return;
    const RECT block = pagePixels(model_.cursor()->rect, messageScale(dpi()));
    const HBRUSH brush = CreateSolidBrush(colourOf(*model_.cursor()));
    if (brush) FillRect(dc, &block, brush);
    if (brush) DeleteObject(brush);
}

void MessageWindow::place() {
    const ScreenRect place = findPlace();
    isPlacing_ = true;
    SetWindowPos(window_, HWND_TOPMOST, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOACTIVATE);
    isPlacing_ = false;
}

void MessageWindow::appear() {
    ShowWindow(window_, SW_SHOWNOACTIVATE);
    SetWindowPos(window_, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void MessageWindow::vanish() {
    ShowWindow(window_, SW_HIDE);
}

void MessageWindow::dragFrom(PagePoint at) {
    POINT screen = {at.x, at.y};
    ClientToScreen(window_, &screen);
    ReleaseCapture();
    SendMessageW(window_, WM_NCLBUTTONDOWN, HTCAPTION, MAKELPARAM(screen.x, screen.y));
}

std::int32_t MessageWindow::clientWidth() const {
    RECT client = {};
    GetClientRect(window_, &client);
    return client.right;
}

std::uint32_t MessageWindow::dpi() const {
    return GetDpiForWindow(window_);
}

MeasureStyledText MessageWindow::preparePicture() {
    RECT client = {};
    GetClientRect(window_, &client);
    if (!surface_.resize(client.right, client.bottom)) return nullptr;
    const auto measurer = std::make_shared<TextMeasurer>(painter_, surface_, messageScale(dpi()));
    return [measurer](const PageTextStyle& style, std::u16string_view text) { return measurer->measure(style, text); };
}

void MessageWindow::paint(const std::vector<PageItem>& items) {
    painter_.paint(surface_, messageScale(dpi()), items);
}

void MessageWindow::invalidate() {
    InvalidateRect(window_, nullptr, FALSE);
}

void MessageWindow::invalidate(const PageRect& part) {
    const RECT area = pagePixels(part, messageScale(dpi()));
    InvalidateRect(window_, &area, FALSE);
}

void MessageWindow::update() {
    UpdateWindow(window_);
}

ScreenRect MessageWindow::findPlace() const {
    const HWND panel = rooms_.panel_window;
    RECT rect = {};
    if (!panel || !GetWindowRect(panel, &rect))
        return placeMessageWindow(GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
    return placeMessageWindow({rect.left, rect.top, rect.right, rect.bottom}, workAreaOf(panel),
                              GetDpiForWindow(panel));
}
