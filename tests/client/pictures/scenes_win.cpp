#include "tests/client/pictures/scenes_win.h"

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

void holdKnob(Stage& stage) {
    const std::int32_t knob = stage.theme == kGeneralTheme ? kVolumeKnob : kLargeKnob;
    stage.panel.press(stage.panel.pointOn(knob));
}

void talkBothWays(Stage& stage) {
    stage.session.host.setTalking(kSchid, kOwnClient, true);
    stage.session.host.setTalking(kSchid, kOtherClient, true);
}

// Nobody answers for the simulator: the turn stays on its way for seconds.
void turnStandby(Stage& stage) {
    stage.panel.wheel(stage.theme == kGeneralTheme ? kStandbyMhzDigits : kLargeKnob, 3 * WHEEL_DELTA);
}

void turnKnobs(Stage& stage) {
    stage.panel.wheel(kVolumeKnob, -30 * WHEEL_DELTA);
    if (stage.theme == kGeneralTheme) return;
    stage.panel.wheel(kLargeKnob, 3 * WHEEL_DELTA);
    stage.panel.wheel(kSmallKnob, -2 * WHEEL_DELTA);
}

void receiveText(Stage& stage) {
    HostTextMessage text;
    text.fromName = "Tower";
    text.message = "PDC 1423 GCLP RWY 03L SQUAWK 2211";
    stage.session.plugin.deliver(text);
}

void hover(Stage& stage, std::int32_t element) {
    POINT at = stage.panel.pointOn(element);
    ClientToScreen(stage.panel.window(), &at);
    SetCursorPos(at.x, at.y);  // the tip follows the real cursor
    stage.panel.move(stage.panel.pointOn(element));
}

void hoverVolume(Stage& stage) {
    hover(stage, kVolumeKnob);
}

// Everything that can shine does, on custom keys too: AUTO, COM2, target STANDBY, pin.
constexpr const char* kLampSettings =
    "radio=COM2\r\ntarget=1\r\npin=1\r\nbind_B=2\r\nbind_C=4\r\nbind_D=6\r\nbind_E=7\r\n";

// clang-format off
constexpr Scene kPanelScenes[] = {
    // name          settings                aircraft               act           window     moment              150 %
    {"connected",    "",                     flyAlong,              nullptr,      findPanel, Moment::kStill,     true},
    {"disconnected", "",                     nullptr,               nullptr,      findPanel, Moment::kStill,     true},
    {"pressed",      "",                     flyAlong,              holdSwapKey,  findPanel, Moment::kStill,     true},
    {"held",         "",                     flyAlong,              holdKnob,     findPanel, Moment::kStill,     false},
    {"lamps",        kLampSettings,          flyAlong,              talkBothWays, findPanel, Moment::kStill,     true},
    {"pending",      "enabled=0\r\n",        flyAlong,              turnStandby,  findPanel, Moment::kStill,     true},
    {"turned",       "follow_volume=0\r\n",  flyAlong,              turnKnobs,    findPanel, Moment::kStill,     false},
    {"text",         "text_auto_open=0\r\n", flyAlong,              receiveText,  findPanel, Moment::kBrightest, true},
    {"unknown",      "",                     flyWithoutFrequencies, nullptr,      findPanel, Moment::kStill,     false},
    {"refused",      "",                     flyWithLockedRadios,   turnStandby,  findPanel, Moment::kStill,     false},
    {"tip",          "",                     flyAlong,              hoverVolume,  findPanel, Moment::kStill,     false},
    {"scale50",      "panel_scale=50\r\n",   flyAlong,              nullptr,      findPanel, Moment::kStill,     false},
    {"scale200",     "panel_scale=200\r\n",  flyAlong,              nullptr,      findPanel, Moment::kStill,     true},
    {"opacity50",    "opacity=50\r\n",       flyAlong,              nullptr,      findPanel, Moment::kStill,     false},
};
// clang-format on

}  // namespace

std::span<const Scene> panelScenes() {
    return kPanelScenes;
}
