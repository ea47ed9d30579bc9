#include "panel/panel_window_win.h"
#include <windowsx.h>
#include "panel/panel_requests.h"
#include "panel/panel_tooltip.h"
#include "panel/panel_volume.h"
#include "settings/interface_texts.h"
#include "ui/monitor_win.h"
#include "ui/mouse_activation_win.h"
#include "ui/pointer_argument_win.h"

namespace {

constexpr const wchar_t* kPanelTitle = L"Corvalis Radio";
constexpr PixelSize kFirstSize{900, 350};  // until the first presentation
constexpr UINT kTimerMs = 33;
constexpr UINT kHiddenTimerMs = 66;   // nothing moves, and what shows it again comes by kPanelSettingsMessage
constexpr UINT kGetDpiSize = 0x02E4;  // WM_GETDPISCALEDSIZE; older headers lack it

std::array<std::string_view, 8> actionTextsOf(std::int32_t language) {
    std::array<std::string_view, 8> texts;
    for (std::size_t code = 0; code < texts.size(); code++)
        texts[code] = textOf(language, kTextActionNone + static_cast<int>(code));
    return texts;
}

// Gives the mouse back at the end of its scope, also when that is left for want of memory.
class CaptureEnd {
  public:
    CaptureEnd() = default;
    ~CaptureEnd() { ReleaseCapture(); }
    CaptureEnd(const CaptureEnd&) = delete;
    CaptureEnd& operator=(const CaptureEnd&) = delete;
};

}  // namespace

PanelWindow::PanelWindow(const PanelWindowContext& context, const ThemeArt& theme_art)
    : context_(context), layers_(theme_art) {}

bool PanelWindow::create() {
    const Settings settings = copySettings(context_.settings);
    storedPlace_ = {settings.panel_x, settings.panel_y};
    return createWindow({.module = context_.module,
                         .className = kPanelClass,
                         .title = kPanelTitle,
                         .style = WS_POPUP,
                         .extendedStyle = WS_EX_LAYERED | WS_EX_TOOLWINDOW,
                         .place = storedPlace_,
                         .size = kFirstSize});
}

LRESULT PanelWindow::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE:
            return onCreate();
        case WM_ERASEBKGND:
            return 1;  // the whole picture is pushed; there is nothing to erase
        case WM_PRINTCLIENT:
            return onPrint(pointerFrom<HDC__>(static_cast<LONG_PTR>(wParam)));
        case WM_CLOSE:
            return onClose(wParam);
        case WM_MOUSEACTIVATE:
            return onMouseActivate(wParam, lParam);
        case WM_KILLFOCUS:
        case WM_CANCELMODE:
            return onCancel();
        case WM_WINDOWPOSCHANGED:
            return onWindowPosChanged(wParam, lParam);
        case WM_DISPLAYCHANGE:
            return onDisplayChange();
        case WM_DPICHANGED:
            return onDpiChanged(LOWORD(wParam), pointerFrom<const RECT>(lParam));
        case kGetDpiSize:
            return onGetDpiSize(static_cast<unsigned>(wParam), pointerFrom<SIZE>(lParam));
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
        case kPanelSettingsMessage:
            return onSettings();
        default:
            return doDefault(message, wParam, lParam);
    }
}

LRESULT PanelWindow::onCreate() {
    context_.publicWindow.exchange(window());
    keepPace();
    tooltip_.create(window(), context_.module);
    return 0;
}

void PanelWindow::onDestroyed() {
    tooltip_.destroy();
    context_.publicWindow.exchange(nullptr);
    PostQuitMessage(0);
}

// The picture as last drawn: the screen shows it blended with what lies behind.
LRESULT PanelWindow::onPrint(HDC dc) const {
    if (drawn_) surface_.copyTo(dc);
    GdiFlush();  // the caller may read the pixels
    return 0;
}

LRESULT PanelWindow::onClose(WPARAM reason) {
    if (context_.stop || reason == kCloseByShutdown)
        DestroyWindow(window());
    else
        updateSettings(context_.settings, [](Settings& live) { live.panel_visible = false; });
    return 0;
}

// The pilot's keys belong to the aircraft.
LRESULT PanelWindow::onMouseActivate(WPARAM wParam, LPARAM lParam) {
    if (doesClickActivate()) return doDefault(WM_MOUSEACTIVATE, wParam, lParam);
    raise();  // as an activation would: it is in no task bar that could bring it to the front
    return MA_NOACTIVATE;
}

LRESULT PanelWindow::onTimer() {
    tickPanel(model_);
    present_panel();
    updateTooltip();
    return 0;
}

LRESULT PanelWindow::onMouseMove(PixelPoint at) {
    movePanel(model_, panelContext(), at, nowMs());
    model_.mouse_tracking = trackMouseLeave();
    return 0;
}

LRESULT PanelWindow::onMouseLeave() {
    leavePanel(model_);
    hideTooltipUnlessHeld();
    return 0;
}

LRESULT PanelWindow::onLeftDown(PixelPoint at) {
    if (pressPanel(model_, panelContext(), at, nowMs()) == PressResult::kCapture) {
        SetCapture(window());
        return 0;
    }
    tooltip_.hide();
    return dragByCaption(at);
}

LRESULT PanelWindow::onLeftUp(PixelPoint at) {
    const CaptureEnd capture;
    releasePanel(model_, panelContext(), at, nowMs());
    return 0;
}

LRESULT PanelWindow::onWheel(int delta, POINT screen) {
    ScreenToClient(window(), &screen);
    wheelPanel(model_, panelContext(), {screen.x, screen.y}, delta, nowMs());
    return 0;
}

LRESULT PanelWindow::onCaptureChanged() {
    cancelPress(model_, panelContext());
    return 0;
}

LRESULT PanelWindow::onCancel() {
    const CaptureEnd capture;
    tooltip_.hide();
    cancelPress(model_, panelContext());
    return 0;
}

LRESULT PanelWindow::onWindowPosChanged(WPARAM wParam, LPARAM lParam) {
    isVisible_ = IsWindowVisible(window()) != FALSE;
    if (!isVisible_) {
        leavePanel(model_);
        forgetMouseLeave();
        tooltip_.hide();
    }
    return doDefault(WM_WINDOWPOSCHANGED, wParam, lParam);
}

LRESULT PanelWindow::onDisplayChange() {
    pushed_.reset();  // the screen may have lost what it showed
    screenAge_ = 0;
    present_panel();
    return 0;
}

// While the system moves it, the panel takes its new size at once, at the place the system has chosen so that the mouse
// still holds it.
LRESULT PanelWindow::onDpiChanged(unsigned dpi, const RECT* suggested) {
    if (!isMoving_ || !suggested) return onDisplayChange();
    screen_ = {workAreaOf(pixelRectOf(*suggested)), dpi};
    const Settings settings = copySettings(context_.settings);
    showPicture(settings, placeMovedPanel(settings, screen_.workArea, screen_.dpi, {suggested->left, suggested->top}));
    return 0;
}

// The system asks how large the panel will be, before it chooses that place.
LRESULT PanelWindow::onGetDpiSize(unsigned dpi, SIZE* size) {
    if (!isMoving_ || !size) return doDefault(kGetDpiSize, dpi, reinterpret_cast<LPARAM>(size));
    const PanelPlacement there = placePanel(copySettings(context_.settings), workAreaUnderCursor({}), dpi);
    *size = {there.width, there.height};
    return TRUE;
}

LRESULT PanelWindow::onSettingChange(WPARAM wParam, LPARAM lParam) {
    screenAge_ = 0;  // a task bar may have moved
    return doDefault(WM_SETTINGCHANGE, wParam, lParam);
}

LRESULT PanelWindow::onEnterMove() {
    isMoving_ = true;
    stopTimer();
    return 0;
}

LRESULT PanelWindow::onExitMove() {
    isMoving_ = false;
    screenAge_ = 0;
    keepPace();  // first: without memory for the rest the panel must not stand still
    const PixelRect rect = screenRect();
    if (!rect.isEmpty()) {
        storedPlace_ = {rect.left, rect.top};
        updateSettings(context_.settings, [&](Settings& live) {
            live.panel_x = rect.left;
            live.panel_y = rect.top;
        });
    }
    return 0;
}

LRESULT PanelWindow::onStep(WPARAM knob, LPARAM steps) {
    const auto com = static_cast<std::int32_t>(knob & 0xFFU);
    const auto slot = static_cast<std::int32_t>((knob >> 8U) & 0xFFU) == kSlotActive ? kSlotActive : kSlotStandby;
    const bool wholeMegahertz = (knob >> 16U & 1U) != 0;
    tune_step(panelContext(), com, slot, static_cast<std::int32_t>(steps), wholeMegahertz, nowMs());
    return 0;
}

LRESULT PanelWindow::onVolume(WPARAM com, LPARAM percent) {
    set_panel_volume(context_.radios, context_.settings, static_cast<std::int32_t>(com), static_cast<float>(percent),
                     nowMs());
    return 0;
}

LRESULT PanelWindow::onSwap(WPARAM com) {
    enqueue(context_.radios, static_cast<std::int32_t>(com), kSlotSwap, 0.0, -1.0f, nowMs());
    return 0;
}

LRESULT PanelWindow::onSettings() {
    present_panel();
    return 0;
}

void PanelWindow::keepPace() {
    startTimer(IsWindowVisible(window()) ? kTimerMs : kHiddenTimerMs);
}

void PanelWindow::updateTooltip() {
    const std::int32_t element = tipElement(model_, isVisible_);
    if (element == kBackground) return tooltip_.hide();
    TooltipInputs inputs;
    inputs.settings = copySettings(context_.settings);
    inputs.sim = copySimState(context_.radios.sim);
    inputs.volumePercent = panel_volume(copyCommands(context_.radios.commands), inputs.sim, inputs.settings,
                                        selectedRadio(inputs.settings));
    inputs.receiveGain = context_.voice.ReceiveGain;
    inputs.actionTexts = actionTextsOf(context_.languageIndex);
    tooltip_.show(panelTooltip(element, inputs));
}

void PanelWindow::hideTooltipUnlessHeld() {
    if (tipElement(model_, isVisible_) == kBackground) tooltip_.hide();
}
