#include "panel/panel_window_win.h"
#include <windowsx.h>
#include "panel/panel_requests.h"
#include "panel/panel_tooltip.h"
#include "panel/panel_volume.h"
#include "settings/interface_texts.h"
#include "ui/pointer_argument_win.h"

namespace {

constexpr const wchar_t* kPanelTitle = L"Corvalis Radio";
constexpr UINT_PTR kTimer = 1;
constexpr UINT kTimerMs = 33;
constexpr UINT kHiddenTimerMs = 66;  // nothing moves, but for the settings that show it again

ClientPoint pointOf(LPARAM position) {
    return {GET_X_LPARAM(position), GET_Y_LPARAM(position)};
}

std::array<std::string_view, 8> actionTextsOf(std::int32_t language) {
    std::array<std::string_view, 8> texts;
    for (std::size_t code = 0; code < texts.size(); code++)
        texts[code] = textOf(language, kTextActionFirst + static_cast<int>(code));
    return texts;
}

}  // namespace

PanelWindow::PanelWindow(const UiRooms& rooms, const ThemeArt& theme_art) : rooms_(rooms), layers_(theme_art) {}

bool PanelWindow::create() {
    const Settings settings = copySettings(rooms_.settings);
    // The first presentation gives it its size.
    CreateWindowExW(WS_EX_LAYERED | WS_EX_TOOLWINDOW, kPanelClass, kPanelTitle, WS_POPUP, settings.panel_x,
                    settings.panel_y, 900, 350, nullptr, nullptr, rooms_.module, this);
    return rooms_.panel_window != nullptr;
}

LRESULT CALLBACK PanelWindow::wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        const auto* create = pointerFrom<CREATESTRUCTW>(lParam);
        static_cast<PanelWindow*>(create->lpCreateParams)->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = pointerFrom<PanelWindow>(GetWindowLongPtrW(window, GWLP_USERDATA));
    try {
        if (self) return self->onMessage(message, wParam, lParam);
    } catch (...) {
        // Out of memory while carrying a message out: the message is lost, the window stays.
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT PanelWindow::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE:
            return onCreate();
        case WM_DESTROY:
            return onDestroy();
        case WM_ERASEBKGND:
            return 1;  // the whole picture is pushed; there is nothing to erase
        case WM_PRINTCLIENT:
            return onPrint(pointerFrom<HDC__>(static_cast<LONG_PTR>(wParam)));
        case WM_CLOSE:
            return onClose(wParam);
        case WM_KILLFOCUS:
        case WM_CANCELMODE:
            return onCancel();
        case WM_WINDOWPOSCHANGED:
            return onWindowPosChanged(wParam, lParam);
        case WM_DISPLAYCHANGE:
        case WM_DPICHANGED:
            return onDisplayChange();
        case WM_SETTINGCHANGE:
            return onSettingChange(wParam, lParam);
        case WM_TIMER:
            return onTimer();
        case WM_MOUSEMOVE:
            return onMouseMove(pointOf(lParam));
        case WM_LBUTTONDOWN:
            return onLeftDown(pointOf(lParam));
        case WM_LBUTTONUP:
            return onLeftUp(pointOf(lParam));
        case WM_MOUSEWHEEL:
            return onWheel(GET_WHEEL_DELTA_WPARAM(wParam), {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        case WM_CAPTURECHANGED:
            return onCaptureChanged();
        case WM_ENTERSIZEMOVE:
            return onEnterMove();
        case WM_EXITSIZEMOVE:
            return onExitMove();
        case WM_MOUSELEAVE:
            return onMouseLeave();
        case kPanelStepMessage:
            return onStep(wParam, lParam);
        case kPanelVolumeMessage:
            return onVolume(wParam, lParam);
        case kPanelSwapMessage:
            return onSwap(wParam);
        default:
            return DefWindowProcW(window_, message, wParam, lParam);
    }
}

LRESULT PanelWindow::onCreate() {
    rooms_.panel_window.exchange(window_);
    startTimer();
    tooltip_.create(window_, rooms_.module);
    return 0;
}

LRESULT PanelWindow::onDestroy() {
    KillTimer(window_, kTimer);
    tooltip_.destroy();
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);  // later messages find only the default procedure
    rooms_.panel_window.exchange(nullptr);
    PostQuitMessage(0);
    return 0;
}

// The picture as it was drawn last: the screen shows it blended with what lies behind.
LRESULT PanelWindow::onPrint(HDC dc) const {
    const ArgbView& picture = surface_.view();
    if (drawn_) BitBlt(dc, 0, 0, picture.width, picture.height, surface_.dc(), 0, 0, SRCCOPY);
    GdiFlush();  // whoever asked may look at the pixels
    return 0;
}

LRESULT PanelWindow::onClose(WPARAM reason) {
    if (rooms_.stop || reason == kCloseByShutdown)
        DestroyWindow(window_);
    else
        updateSettings(rooms_.settings, [](Settings& live) { live.panel_visible = false; });
    return 0;
}

LRESULT PanelWindow::onTimer() {
    tickPanel(model_);
    present_panel();
    if (model_.mouse_tracking) showTooltip();
    return 0;
}

LRESULT PanelWindow::onMouseMove(ClientPoint at) {
    movePanel(model_, panelRooms(), at, nowMs());
    if (!model_.mouse_tracking) {
        TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, window_, 0};
        model_.mouse_tracking = TrackMouseEvent(&leave) != FALSE;
    }
    return 0;
}

LRESULT PanelWindow::onMouseLeave() {
    leavePanel(model_);
    tooltip_.hide();
    return 0;
}

LRESULT PanelWindow::onLeftDown(ClientPoint at) {
    if (pressPanel(model_, panelRooms(), at, nowMs()) == PressResult::kCapture) {
        SetCapture(window_);
        return 0;
    }
    tooltip_.hide();
    POINT screen = {at.x, at.y};
    ClientToScreen(window_, &screen);
    ReleaseCapture();
    // As if the caption had been pressed: returns when the system has moved the window.
    return SendMessageW(window_, WM_NCLBUTTONDOWN, HTCAPTION, MAKELPARAM(screen.x, screen.y));
}

LRESULT PanelWindow::onLeftUp(ClientPoint at) {
    releasePanel(model_, panelRooms(), at, nowMs());
    ReleaseCapture();
    return 0;
}

LRESULT PanelWindow::onWheel(int delta, POINT screen) {
    ScreenToClient(window_, &screen);
    wheelPanel(model_, panelRooms(), {screen.x, screen.y}, delta, nowMs());
    return 0;
}

LRESULT PanelWindow::onCaptureChanged() {
    cancelPress(model_);
    return 0;
}

LRESULT PanelWindow::onCancel() {
    cancelPress(model_);
    ReleaseCapture();
    tooltip_.hide();
    return 0;
}

LRESULT PanelWindow::onWindowPosChanged(WPARAM wParam, LPARAM lParam) {
    if (!IsWindowVisible(window_)) tooltip_.hide();
    return DefWindowProcW(window_, WM_WINDOWPOSCHANGED, wParam, lParam);
}

LRESULT PanelWindow::onDisplayChange() {
    pushed_.reset();  // the screen may have lost what it showed
    screenAge_ = 0;
    present_panel();
    return 0;
}

LRESULT PanelWindow::onSettingChange(WPARAM wParam, LPARAM lParam) {
    screenAge_ = 0;  // a task bar may have moved
    return DefWindowProcW(window_, WM_SETTINGCHANGE, wParam, lParam);
}

LRESULT PanelWindow::onEnterMove() {
    isMoving_ = true;
    KillTimer(window_, kTimer);
    return 0;
}

LRESULT PanelWindow::onExitMove() {
    isMoving_ = false;
    screenAge_ = 0;
    RECT rect = {};
    if (GetWindowRect(window_, &rect)) {
        updateSettings(rooms_.settings, [&](Settings& live) {
            live.panel_x = rect.left;
            live.panel_y = rect.top;
        });
    }
    startTimer();
    return 0;
}

LRESULT PanelWindow::onStep(WPARAM knob, LPARAM steps) {
    const auto com = static_cast<std::int32_t>(knob & 0xFFU);
    const auto slot = static_cast<std::int32_t>((knob >> 8U) & 0xFFU) == kSlotActive ? kSlotActive : kSlotStandby;
    const bool wholeMegahertz = (knob >> 16U & 1U) != 0;
    tune_step(panelRooms(), com, slot, static_cast<std::int32_t>(steps), wholeMegahertz, nowMs());
    return 0;
}

LRESULT PanelWindow::onVolume(WPARAM com, LPARAM percent) {
    set_panel_volume(rooms_.commands, rooms_.sim, rooms_.settings, static_cast<std::int32_t>(com),
                     static_cast<float>(percent), nowMs());
    return 0;
}

LRESULT PanelWindow::onSwap(WPARAM com) {
    enqueue(rooms_.commands, rooms_.sim, static_cast<std::int32_t>(com), kSlotSwap, 0.0, -1.0f, nowMs());
    return 0;
}

void PanelWindow::startTimer() {
    SetTimer(window_, kTimer, IsWindowVisible(window_) ? kTimerMs : kHiddenTimerMs, nullptr);
}

void PanelWindow::showTooltip() {
    TooltipInputs inputs;
    inputs.settings = copySettings(rooms_.settings);
    inputs.sim = copySimState(rooms_.sim);
    inputs.volumePercent = panel_volume(rooms_.commands, inputs.sim, inputs.settings, selectedRadio(inputs.settings));
    inputs.receiveGain = rooms_.bridge.ReceiveGain;
    inputs.actionTexts = actionTextsOf(rooms_.languageIndex);
    tooltip_.show(panelTooltip(model_.hover_element, inputs));
}
