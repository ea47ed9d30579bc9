// panel_present_win.cpp - how the panel reaches the screen: PanelWindow's presentation.
#include "panel/panel_window_win.h"
#include "ui/monitor_win.h"

namespace {

// The system reports most changes of the screen (onDisplayChange); for the others, such as a task bar that hides, half
// a second is soon enough. Asking costs as much as the rest of an idle tick.
constexpr int kScreenTicks = 15;

bool isSameSize(const PanelPicture& a, const PanelPicture& b) {
    return a.theme == b.theme && a.scale == b.scale && a.width == b.width && a.height == b.height;
}

}  // namespace

void PanelWindow::present_panel() noexcept {
    try {
        present();
    } catch (...) {
        // Out of memory: the screen keeps what it shows, the next tick tries again.
        pushed_.reset();
    }
}

void PanelWindow::present() {
    if (isMoving_) return;
    const Settings settings = copySettings(context_.settings);
    // Nobody sees a hidden panel change; it is drawn before it is shown again.
    if (settings.panel_visible)
        showPicture(settings, findPlacement(settings));
    else
        screenAge_ = 0;
    applyStacking(settings.pin);
    applyVisibility(settings.panel_visible);
}

void PanelWindow::showPicture(const Settings& settings, const PanelPlacement& placement) {
    model_.panel_scale_factor = placement.scale;
    const PanelPicture picture = makePicture(gatherInputs(settings), model_, placement);
    const bool isDrawn = drawn_ && *drawn_ == picture;
    if (isDrawn && pushed_ == placement && isWhereItBelongs(placement)) return;
    if (!surface_.resize(placement.width, placement.height)) return drawn_.reset();
    const PixelRect changed = isDrawn ? PixelRect{} : drawPicture(picture);
    const bool isElsewhere = pushed_ != placement;
    if (!pushPicture(placement, changed)) return pushed_.reset();
    pushed_ = placement;
    if (isElsewhere) screenAge_ = 0;  // another monitor may be the nearest now
}

PanelPlacement PanelWindow::findPlacement(const Settings& settings) {
    if (storedPlace_ != PixelPoint{settings.panel_x, settings.panel_y}) goToStoredPlace(settings);
    if (screenAge_ == 0) {
        screen_ = {workAreaOf(window()), dpi()};
        screenAge_ = kScreenTicks;
    }
    screenAge_--;
    return placePanel(settings, screen_.workArea, screen_.dpi);
}

// Somebody else has stored another place, such as the settings dialog's reset: the monitor is the one nearest to that,
// no longer the window's. The window goes there first, because it has the DPI of the monitor that it is on.
void PanelWindow::goToStoredPlace(const Settings& settings) {
    storedPlace_ = {settings.panel_x, settings.panel_y};  // first: a change of the DPI presents during the move
    const PixelRect workArea = workAreaOf(storedPlace_);
    const PanelPlacement there = placePanel(settings, workArea, dpi());
    moveTo(PixelPoint{there.x, there.y});
    screen_ = {workArea, dpi()};
    screenAge_ = kScreenTicks;
}

PanelInputs PanelWindow::gatherInputs(const Settings& settings) const {
    PanelInputs inputs;
    inputs.settings = settings;
    inputs.sim = copySimState(context_.radios.sim);  // before the commands: an answered one is still among them
    inputs.commands = copyCommands(context_.radios.commands);
    inputs.status = copyStatus(context_.radios.status);
    inputs.ownTransmit = context_.talk.ownTransmit;
    inputs.othersReceiving = context_.talk.othersReceiving;
    inputs.unreadTexts = context_.unreadTexts;
    inputs.nowMs = nowMs();
    return inputs;
}

// What has changed on the surface.
PixelRect PanelWindow::drawPicture(const PanelPicture& picture) {
    PanelLayers& layers = layers_.layersFor(picture.theme, picture.scale, picture.width, picture.height);
    statusStrip_.paint(layers, picture.statusText, picture.channelStatus, context_.languageIndex);
    std::vector<PixelRect> areas = {surface_.view().bounds()};
    if (drawn_ && isSameSize(*drawn_, picture)) areas = changedAreas(layers, *drawn_, picture);
    drawn_.reset();  // until every area is done
    PixelRect changed;
    for (const PixelRect& area : areas) {
        drawPanel(surface_.view(), layers, picture, statusStrip_.images(), area);
        changed = uniteRects(changed, intersectRects(area, surface_.view().bounds()));
    }
    drawn_ = picture;
    return changed;
}

// An empty `changed` means that the surface is unchanged and only place, stacking or opacity differs.
bool PanelWindow::pushPicture(const PanelPlacement& placement, const PixelRect& changed) {
    POINT position = {placement.x, placement.y};
    SIZE size = {placement.width, placement.height};
    POINT origin = {0, 0};
    BLENDFUNCTION blend = {AC_SRC_OVER, 0, placement.alpha, AC_SRC_ALPHA};
    const RECT dirty = {changed.left, changed.top, changed.right, changed.bottom};
    UPDATELAYEREDWINDOWINFO update = {};
    update.cbSize = sizeof update;
    update.pptDst = &position;
    update.psize = &size;
    update.hdcSrc = surface_.dc();
    update.pptSrc = &origin;
    update.pblend = &blend;
    update.dwFlags = ULW_ALPHA;
    if (pushed_ == placement && !changed.isEmpty()) update.prcDirty = &dirty;
    return UpdateLayeredWindowIndirect(window(), &update) != FALSE;
}

// Something else may have moved the window (another program, a monitor that left): it is then put back.
bool PanelWindow::isWhereItBelongs(const PanelPlacement& placement) const {
    const PixelRect rect = screenRect();
    return rect.left == placement.x && rect.top == placement.y;
}

void PanelWindow::applyStacking(bool pin) {
    if (pin == applied_topmost_) return;
    SetWindowPos(window(), pin ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    applied_topmost_ = pin;
}

void PanelWindow::applyVisibility(bool visible) {
    if (visible == (IsWindowVisible(window()) != FALSE)) return;
    ShowWindow(window(), visible ? SW_SHOWNOACTIVATE : SW_HIDE);
    keepPace();
}
