#include "messages/message_window_win.h"
#include <windowsx.h>
#include <memory>
#include "messages/local_time_win.h"
#include "ui/monitor_win.h"
#include "ui/mouse_activation_win.h"
#include "ui/pointer_argument_win.h"

namespace {

constexpr const wchar_t* kMessageTitle = L"Corvalis Text";
constexpr UINT kTimerMs = 33;
constexpr BYTE kOpaque = 255;

COLORREF colourOf(const PageItem& item) {
    return RGB(item.colour >> 16U & 0xFFU, item.colour >> 8U & 0xFFU, item.colour & 0xFFU);
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

MessageWindow::MessageWindow(const MessageWindowContext& context)
    : context_(context),
      model_({.clock = context.clock,
              .settings = context.settings,
              .store = context.store,
              .languageIndex = context.languageIndex,
              .isVisible = context.link.isVisible,
              .localTime = localTimeOf},
             *this) {}

void MessageWindow::create() {
    createWindow({.module = context_.module,
                  .className = kMessageClass,
                  .title = kMessageTitle,
                  .style = WS_POPUP,
                  .extendedStyle = WS_EX_LAYERED | WS_EX_TOOLWINDOW | WS_EX_TOPMOST,
                  .place = {},
                  .size = {kMessageWidth, kMessageHeight}});
}

LRESULT MessageWindow::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE:
            return onCreate();
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
        case WM_MOUSEACTIVATE:
            return onMouseActivate();
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            model_.setKeyboard(message == WM_SETFOCUS);
            return 0;
        case WM_LBUTTONDOWN:
            model_.pressAt(pointOf(lParam));
            return 0;
        case WM_MOUSEWHEEL:
            model_.turnWheel(GET_WHEEL_DELTA_WPARAM(wParam));
            return 0;
        case WM_DPICHANGED:
            return onDpiChanged(*pointerFrom<const RECT>(lParam));
        case kShowNewestMessage:
            model_.showNewest();
            return 0;
        case kShowMessage:
            model_.showMessage(static_cast<std::uint32_t>(wParam));
            return 0;
        case kToggleMessages:
            model_.toggle();
            return 0;
        default:
            return doDefault(message, wParam, lParam);
    }
}

LRESULT MessageWindow::onCreate() {
    // A layered window only appears once its opacity is set.
    SetLayeredWindowAttributes(window(), 0, kOpaque, LWA_ALPHA);
    context_.link.window = window();
    return 0;
}

void MessageWindow::onDestroyed() {
    context_.link.window = nullptr;
    context_.link.isVisible = false;
}

// Nobody sees a hidden window change: the timer runs only while it is shown.
LRESULT MessageWindow::onShowWindow(bool isShown) {
    if (isShown)
        startTimer(kTimerMs);
    else
        stopTimer();
    return 0;
}

LRESULT MessageWindow::onMouseMove(PixelPoint at) {
    model_.movePointer(at);
    trackMouseLeave();
    return 0;
}

LRESULT MessageWindow::onMouseLeave() {
    model_.leavePointer();
    return 0;
}

// The message does not say where the click was: it comes while the click is the system's newest event.
LRESULT MessageWindow::onMouseActivate() {
    POINT at = {};
    const bool isKnown = GetCursorPos(&at) && ScreenToClient(window(), &at);
    const bool wantsKeyboard = isKnown && model_.wantsKeyboard({at.x, at.y});
    return wantsKeyboard || doesClickActivate() ? MA_ACTIVATE : MA_NOACTIVATE;
}

LRESULT MessageWindow::onDpiChanged(const RECT& suggested) {
    if (!isPlacing_) moveTo(pixelRectOf(suggested));
    model_.refresh();
    return 0;
}

LRESULT MessageWindow::onPaint() {
    PAINTSTRUCT paint;
    drawOnto(BeginPaint(window(), &paint));
    EndPaint(window(), &paint);
    return 0;
}

// The window's picture without the screen, whatever is in front of it.
LRESULT MessageWindow::onPrint(HDC dc) {
    drawOnto(dc);
    return 0;
}

void MessageWindow::drawOnto(HDC dc) const {
    surface_.copyTo(dc);
    if (!model_.cursor()) return;
    const RECT block = pagePixels(model_.cursor()->rect, messageScale(dpi()));
    const HBRUSH brush = CreateSolidBrush(colourOf(*model_.cursor()));
    if (brush) FillRect(dc, &block, brush);
    if (brush) DeleteObject(brush);
}

void MessageWindow::place() {
    const PixelRect place = findPlace();
    isPlacing_ = true;
    SetWindowPos(window(), HWND_TOPMOST, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOACTIVATE);
    isPlacing_ = false;
}

void MessageWindow::appear() {
    ShowWindow(window(), SW_SHOWNOACTIVATE);
    SetWindowPos(window(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void MessageWindow::vanish() {
    ShowWindow(window(), SW_HIDE);
}

void MessageWindow::dragFrom(PixelPoint at) {
    dragByCaption(at);
}

std::int32_t MessageWindow::clientWidth() const {
    return clientSize().width;
}

std::uint32_t MessageWindow::screenDpi() const {
    return dpi();
}

MeasureStyledText MessageWindow::preparePicture() {
    const PixelSize client = clientSize();
    if (!surface_.resize(client.width, client.height)) return nullptr;
    const auto measurer = std::make_shared<TextMeasurer>(painter_, surface_, messageScale(dpi()));
    return [measurer](const PageTextStyle& style, std::u16string_view text) { return measurer->measure(style, text); };
}

void MessageWindow::paint(const std::vector<PageItem>& items) {
    painter_.paint(surface_, messageScale(dpi()), items);
}

void MessageWindow::invalidate() {
    InvalidateRect(window(), nullptr, FALSE);
}

void MessageWindow::invalidate(const UnitRect& part) {
    const RECT area = pagePixels(part, messageScale(dpi()));
    InvalidateRect(window(), &area, FALSE);
}

void MessageWindow::update() {
    UpdateWindow(window());
}

PixelRect MessageWindow::findPlace() const {
    const HWND panel = context_.neighbour;
    RECT rect = {};
    if (!panel || !GetWindowRect(panel, &rect))
        return placeMessageWindow(GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
    return placeMessageWindow({rect.left, rect.top, rect.right, rect.bottom}, workAreaOf(panel),
                              GetDpiForWindow(panel));
}
