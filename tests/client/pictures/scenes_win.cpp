#include "tests/client/pictures/scenes_win.h"
#include <algorithm>
#include "panel/panel_picture.h"

namespace {

void flyAlong(FakeTelemetry& flown) {
    flown.radios[0] = {.activeKhz = 118005, .standbyKhz = 121500, .spacing = 1};
    flown.radios[1] = {.activeKhz = 124350, .standbyKhz = 135975, .spacing = 0, .volume = 0.5};
}

void flyWithoutFrequencies(FakeTelemetry& flown) {
    flyAlong(flown);
    for (FakeRadio& radio : flown.radios) radio.activeKhz = radio.standbyKhz = 0;
}

void flyWithLockedRadios(FakeTelemetry& flown) {
    flyAlong(flown);
    for (FakeRadio& radio : flown.radios) radio.writable = false;
}

void holdSwapKey(Stage& stage) {
    stage.panel.press(stage.panel.pointOn(kSwapKey));
}

void talkBothWays(Stage& stage) {
    stage.session.host.setTalking(kSchid, kOwnClient, true);
    stage.session.host.setTalking(kSchid, kOtherClient, true);
}

// The simulator's side does not answer: the turn stays on its way for seconds.
void turnStandby(Stage& stage) {
    stage.panel.wheel(stage.theme == kGeneralTheme ? kStandbyMhzDigits : kLargeKnob, 3 * WHEEL_DELTA);
}

void turnKnobs(Stage& stage) {
    stage.panel.wheel(kVolumeKnob, -30 * WHEEL_DELTA);
    if (stage.theme == kGeneralTheme) return;
    stage.panel.wheel(kLargeKnob, 3 * WHEEL_DELTA);
    stage.panel.wheel(kSmallKnob, -2 * WHEEL_DELTA);
}

// Both status lines at their longest: a radio without a grid is turned, and a move into a channel is not answered.
void flyWithoutGrid(FakeTelemetry& flown) {
    flyAlong(flown);
    for (FakeRadio& radio : flown.radios) radio.spacing = -1;
}

void sayTheMost(Stage& stage) {
    stage.session.host.setMoveRule(kApproach118005, {.answer = MoveAnswer::kSilence});
    stage.session.host.moveByHand(kSchid, kOwnClient, kLobby);
    stage.panel.wheel(stage.theme == kGeneralTheme ? kStandbyMhzDigits : kLargeKnob, WHEEL_DELTA);
}

void receiveText(Stage& stage) {
    HostTextMessage text;
    text.fromName = "Tower";
    text.message = "PDC 1423 GCLP RWY 03L SQUAWK 2211";
    stage.session.plugin.deliver(text);
}

bool isTipShown(const Stage&) {
    return findPanelTip() && IsWindowVisible(findPanelTip());
}

void hover(Stage& stage, POINT client) {
    POINT at = client;
    ClientToScreen(stage.panel.window(), &at);
    SetCursorPos(at.x, at.y);  // the tip follows the real cursor
    stage.panel.move(client);
}

void hoverVolume(Stage& stage) {
    hover(stage, stage.panel.pointOn(kVolumeKnob));
}

// A held knob is shaded, and it has turned.
void holdKnob(Stage& stage) {
    POINT at = stage.panel.pointOn(stage.theme == kGeneralTheme ? kVolumeKnob : kLargeKnob);
    hover(stage, at);
    stage.session.waitUntil([&] { return isTipShown(stage); });  // the real mouse has arrived and moves no more
    at.y -= 16;
    stage.panel.press(at);
    for (int i = 0; i < 4; i++) {
        at.y += 4;
        stage.panel.move(at);
    }
}

// --- what the panel shows, in its own picture ---

PixelRect pixelsOf(const Stage& stage, const UnitRect& part) {
    const POINT first = stage.panel.toClient({part.x, part.y});
    const POINT last = stage.panel.toClient({part.x + part.width, part.y + part.height});
    return {static_cast<std::int32_t>(first.x), static_cast<std::int32_t>(first.y), static_cast<std::int32_t>(last.x),
            static_cast<std::int32_t>(last.y)};
}

// Whether this part of the theme's layout looks different from before the act.
bool isChanged(const Stage& stage, const UnitRect& part) {
    const ArgbImage now = askForPicture(stage.panel.window());
    const PixelRect area = pixelsOf(stage, part);
    return now.pixels.size() == stage.before.pixels.size() &&
           cropImage(now, area).pixels != cropImage(stage.before, area).pixels;
}

bool isElementChanged(const Stage& stage, std::int32_t element) {
    const PanelHotspot* hotspot = findHotspot(themeLayout(stage.theme), element);
    return hotspot && (isChanged(stage, hotspot->rect) || isChanged(stage, hotspot->indicator));
}

// The left one: the right one is about the channel.
bool isStatusChanged(const Stage& stage) {
    UnitRect line = themeLayout(stage.theme).statusStrip;
    line.width /= 2;
    return isChanged(stage, line);
}

// The left half is the left line's, the right end the right one's.
bool areBothStatusesChanged(const Stage& stage) {
    UnitRect end = themeLayout(stage.theme).statusStrip;
    end.x += end.width * 0.75f;
    end.width /= 4;
    return isStatusChanged(stage) && isChanged(stage, end);
}

bool hasDeadDigits(const Stage& stage) {
    const ArgbImage now = askForPicture(stage.panel.window());
    const ArgbImage display = cropImage(now, pixelsOf(stage, themeLayout(stage.theme).displays[0]));
    return std::ranges::find(display.pixels, kDisconnectedArgb) != display.pixels.end();
}

bool isKnobHeld(const Stage& stage) {
    GUITHREADINFO thread = {};
    thread.cbSize = sizeof thread;
    return GetGUIThreadInfo(GetWindowThreadProcessId(stage.panel.window(), nullptr), &thread) &&
           thread.hwndCapture == stage.panel.window() &&
           isElementChanged(stage, stage.theme == kGeneralTheme ? kVolumeKnob : kLargeKnob);
}

bool isSwapKeyDown(const Stage& stage) {
    return isElementChanged(stage, kSwapKey);
}

bool areLampsLit(const Stage& stage) {
    return isChanged(stage, themeLayout(stage.theme).txLamp) && isChanged(stage, themeLayout(stage.theme).rxLamp);
}

// The turn is with the simulator's side, and the panel shows that.
bool isWritePending(const Stage& stage) {
    return fileBytes(stage.session.dataFolder / "command.json") > 0 && isStatusChanged(stage) &&
           isChanged(stage, themeLayout(stage.theme).displays[1]);
}

bool areKnobsTurned(const Stage& stage) {
    return isElementChanged(stage, kVolumeKnob) &&
           (stage.theme == kGeneralTheme || isElementChanged(stage, kLargeKnob));
}

bool isTextKeyLit(const Stage& stage) {
    return isElementChanged(stage, stage.theme == kGeneralTheme ? kTextKey : kCustomKeyA);
}

// Everything lights up that can, including custom keys: AUTO, COM2, target STANDBY, pin.
constexpr const char* kLampSettings =
    "radio=COM2\r\ntarget=1\r\npin=1\r\nbind_B=2\r\nbind_C=4\r\nbind_D=6\r\nbind_E=7\r\n";

// clang-format off
constexpr Scene kPanelScenes[] = {
    // name          settings                aircraft               act           window     moment              150 %  shows
    {"connected",    "",                     flyAlong,              nullptr,      findPanel, Moment::kStill,     true,  isConnected},
    {"disconnected", "",                     nullptr,               nullptr,      findPanel, Moment::kStill,     true,  hasDeadDigits},
    {"pressed",      "",                     flyAlong,              holdSwapKey,  findPanel, Moment::kStill,     true,  isSwapKeyDown},
    {"held",         "",                     flyAlong,              holdKnob,     findPanel, Moment::kStill,     false, isKnobHeld},
    {"lamps",        kLampSettings,          flyAlong,              talkBothWays, findPanel, Moment::kStill,     true,  areLampsLit},
    {"pending",      "enabled=0\r\n",        flyAlong,              turnStandby,  findPanel, Moment::kStill,     true,  isWritePending},
    {"turned",       "follow_volume=0\r\n",  flyAlong,              turnKnobs,    findPanel, Moment::kStill,     false, areKnobsTurned},
    {"text",         "text_auto_open=0\r\n", flyAlong,              receiveText,  findPanel, Moment::kBrightest, true,  isTextKeyLit},
    {"unknown",      "",                     flyWithoutFrequencies, nullptr,      findPanel, Moment::kStill,     false, isConnected},
    {"refused",      "",                     flyWithLockedRadios,   turnStandby,  findPanel, Moment::kStill,     false, isStatusChanged},
    {"longest50",    "panel_scale=50\r\n",   flyWithoutGrid,        sayTheMost,   findPanel, Moment::kStill,     true,  areBothStatusesChanged},
    {"longest100",   "",                     flyWithoutGrid,        sayTheMost,   findPanel, Moment::kStill,     true,  areBothStatusesChanged},
    {"longest200",   "panel_scale=200\r\n",  flyWithoutGrid,        sayTheMost,   findPanel, Moment::kStill,     false, areBothStatusesChanged},
    {"tip",          "",                     flyAlong,              hoverVolume,  findPanel, Moment::kStill,     false, isTipShown},
    {"scale50",      "panel_scale=50\r\n",   flyAlong,              nullptr,      findPanel, Moment::kStill,     true,  isConnected},
    {"text50",       "panel_scale=50\r\ntext_auto_open=0\r\n", flyAlong, receiveText, findPanel, Moment::kBrightest, false, isTextKeyLit},
    {"scale200",     "panel_scale=200\r\n",  flyAlong,              nullptr,      findPanel, Moment::kStill,     true,  isConnected},
    {"opacity50",    "opacity=50\r\n",       flyAlong,              nullptr,      findPanel, Moment::kStill,     false, isConnected},
};
// clang-format on

}  // namespace

bool isConnected(const Stage& stage) {
    return !askForPicture(stage.panel.window()).isEmpty() && !hasDeadDigits(stage);
}

std::span<const Scene> panelScenes() {
    return kPanelScenes;
}
