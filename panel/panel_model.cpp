#include "panel/panel_model.h"
#include <algorithm>
#include <cmath>
#include <utility>
#include "panel/panel_volume.h"

namespace {

constexpr float kPixelsPerPercent = 3.0f;  // of a volume drag, at scale 1
constexpr std::int64_t kTuningPixels = 2;  // a shorter move of a tuning knob has no effect
constexpr float kPressEase = 0.48f;        // share of the way per tick
constexpr float kPressArrived = 1.0f / 1024.0f;

// A key's press is a click; a knob's is the start of a turn.
bool isKnob(std::int32_t element) {
    return element == kVolumeKnob || element == kSmallKnob || element == kLargeKnob;
}

bool takesWheel(std::int32_t element) {
    return isKnob(element) || (element >= kActiveMhzDigits && element <= kStandbyChannelDigits);
}

bool tunesMegahertz(std::int32_t element) {
    return element == kLargeKnob || element == kActiveMhzDigits || element == kStandbyMhzDigits;
}

std::int32_t tunedSlot(std::int32_t element) {
    return element == kActiveMhzDigits || element == kActiveChannelDigits ? kSlotActive : kSlotStandby;
}

void turnAngle(float& angle, float degreesPerStep, std::int32_t steps) {
    const double turned = static_cast<double>(angle) + static_cast<double>(degreesPerStep) * steps;
    const double folded = std::fmod(turned, 360.0);
    angle = static_cast<float>(folded < 0.0 ? folded + 360.0 : folded);
}

// Only the inner knob turns the inner knob's picture: digit fields turn the outer one whatever they tune.
void turnKnob(PanelModel& model, std::int32_t element, std::int32_t steps) {
    if (element == kSmallKnob)
        turnAngle(model.small_knob_angle, kSmallKnobStep, steps);
    else
        turnAngle(model.large_knob_angle, kLargeKnobStep, steps);
}

std::int32_t hitUnder(PanelModel& model, const Settings& settings, PixelPoint at) {
    const float scale = model.panel_scale_factor;
    model.hover_element = hit_test(settings.theme, panel_to_logical(settings.theme, scale, at.x, at.y));
    return model.hover_element;
}

// A move without height does not turn: the system repeats moves when nothing moved, and a press must not write.
void dragVolume(PanelModel& model, const PanelContext& context, std::int64_t dy, std::uint64_t nowMs) {
    if (dy == 0) return;
    const float turned = static_cast<float>(dy) / (usableScale(model.panel_scale_factor) * kPixelsPerPercent);
    model.drag_volume = std::clamp(model.drag_volume + turned, 0.0f, 100.0f);
    set_panel_volume(context.radios, context.settings, model.drag_radio, model.drag_volume, nowMs,
                     VolumeSave::kWithNextSave);
}

void dragTuning(PanelModel& model, const PanelContext& context, std::int64_t dy, std::uint64_t nowMs) {
    if (std::abs(dy) < kTuningPixels) return;
    const std::int32_t step = dy > 0 ? 1 : -1;
    tune_step(context, model.drag_radio, kSlotStandby, step, model.drag_element == kLargeKnob, nowMs);
    turnKnob(model, model.drag_element, step);
}

void dragKnob(PanelModel& model, const PanelContext& context, PixelPoint at, std::uint64_t nowMs) {
    const std::int64_t dy = std::int64_t{model.last_drag_y} - at.y;  // up is more
    model.last_drag_y = at.y;
    model.drag_moved = true;
    if (model.drag_element == kVolumeKnob)
        dragVolume(model, context, dy, nowMs);
    else
        dragTuning(model, context, dy, nowMs);
}

// Returns what was pressed. A volume that was dragged is saved now, not with each step of the drag.
std::int32_t endPress(PanelModel& model, const PanelContext& context) {
    const std::int32_t pressed = std::exchange(model.drag_element, kBackground);
    if (pressed == kVolumeKnob && model.drag_moved) savePendingSettings(context.settings);
    return pressed;
}

// The whole notches of this turn plus what earlier ones left over; the remainder is kept.
std::int32_t takeNotches(PanelModel& model, std::int32_t element, std::int32_t radio, std::int32_t delta) {
    if (element != model.wheel_element || radio != model.wheel_radio) model.wheel_remainder = 0;
    model.wheel_element = element;
    model.wheel_radio = radio;
    const std::int64_t sum = std::int64_t{model.wheel_remainder} + delta;
    model.wheel_remainder = static_cast<std::int32_t>(sum % kWheelNotch);
    return static_cast<std::int32_t>(sum / kWheelNotch);
}

float volumeOf(const PanelContext& context, const Settings& settings, std::int32_t radio) {
    return panel_volume(copyCommands(context.radios.commands), copySimState(context.radios.sim), settings, radio);
}

}  // namespace

std::int32_t selectedRadio(const Settings& settings) {
    return settings.radio == 2 ? 2 : 1;
}

std::int32_t hoverPanel(PanelModel& model, const PanelContext& context, PixelPoint at) {
    return hitUnder(model, copySettings(context.settings), at);
}

PressResult pressPanel(PanelModel& model, const PanelContext& context, PixelPoint at, std::uint64_t /*nowMs*/) {
    endPress(model, context);  // the release of an earlier one may have been lost
    const Settings settings = copySettings(context.settings);
    model.drag_element = hitUnder(model, settings, at);
    if (model.drag_element == kBackground) return PressResult::kMoveWindow;
    model.pressed_element = model.drag_element;
    model.drag_moved = false;
    model.press_x = at.x;
    model.last_drag_y = at.y;
    model.drag_radio = selectedRadio(settings);
    model.drag_volume = volumeOf(context, settings, model.drag_radio);
    return PressResult::kCapture;
}

void movePanel(PanelModel& model, const PanelContext& context, PixelPoint at, std::uint64_t nowMs) {
    hoverPanel(model, context, at);
    if (isKnob(model.drag_element)) dragKnob(model, context, at, nowMs);
}

void releasePanel(PanelModel& model, const PanelContext& context, PixelPoint at, std::uint64_t nowMs) {
    const std::int32_t pressed = endPress(model, context);
    const std::int32_t released = hoverPanel(model, context, at);
    if (pressed == released && !model.drag_moved && !isKnob(pressed)) clickElement(context, pressed, nowMs);
}

void cancelPress(PanelModel& model, const PanelContext& context) {
    endPress(model, context);
}

void wheelPanel(PanelModel& model, const PanelContext& context, PixelPoint at, std::int32_t delta,
                std::uint64_t nowMs) {
    const Settings settings = copySettings(context.settings);
    const std::int32_t element = hitUnder(model, settings, at);
    if (!takesWheel(element)) return;
    const std::int32_t radio = selectedRadio(settings);
    const std::int32_t steps = takeNotches(model, element, radio, delta);
    if (steps == 0) return;
    if (element == kVolumeKnob) {
        const float percent = volumeOf(context, settings, radio) + static_cast<float>(steps);
        set_panel_volume(context.radios, context.settings, radio, percent, nowMs);
        return;
    }
    tune_step(context, radio, tunedSlot(element), steps, tunesMegahertz(element), nowMs);
    turnKnob(model, element, steps);
}

void leavePanel(PanelModel& model) {
    model.mouse_tracking = false;
    model.hover_element = kBackground;
}

std::int32_t tipElement(const PanelModel& model, bool isPanelVisible) {
    if (!isPanelVisible) return kBackground;
    if (isKnob(model.drag_element)) return model.drag_element;
    return model.mouse_tracking ? model.hover_element : kBackground;
}

void tickPanel(PanelModel& model) {
    const float target = model.drag_element != kBackground ? 1.0f : 0.0f;
    model.press_level += (target - model.press_level) * kPressEase;
    if (!(std::fabs(target - model.press_level) >= kPressArrived)) model.press_level = target;
    if (model.press_level == 0.0f) model.pressed_element = kBackground;
}

void clickElement(const PanelContext& context, std::int32_t element, std::uint64_t nowMs) {
    const auto change = [&](auto edit) { updateSettings(context.settings, edit); };
    switch (element) {
        case kSwapKey:
            enqueue(context.radios, selectedRadio(copySettings(context.settings)), kSlotSwap, 0.0, -1.0f, nowMs);
            break;
        case kCom1Key:
            change([](Settings& live) { live.radio = 1; });
            break;
        case kCom2Key:
            change([](Settings& live) { live.radio = 2; });
            break;
        case kActiveKey:
            change([](Settings& live) { live.target = 0; });
            break;
        case kStandbyKey:
            change([](Settings& live) { live.target = 1; });
            break;
        case kAutoKey:
            change([](Settings& live) { live.enabled = !live.enabled; });
            break;
        case kPinKey:
            change([](Settings& live) { live.pin = !live.pin; });
            break;
        case kSettingsKey:
            context.actions.openSettings();
            break;
        case kMinimizeKey:
            change([](Settings& live) { live.panel_visible = false; });
            break;
        case kCustomKeyA:
        case kTextKey:
            context.actions.toggleTextWindow();
            break;
        case kCustomKeyB:
        case kCustomKeyC:
        case kCustomKeyD:
        case kCustomKeyE:
            clickElement(context, boundElement(bindingOf(copySettings(context.settings), element)), nowMs);
            break;
        default:
            break;
    }
}

std::int32_t boundElement(std::int32_t bindingCode) {
    constexpr PanelElement kBound[] = {kBackground, kSwapKey,   kAutoKey,    kCom1Key,
                                       kCom2Key,    kActiveKey, kStandbyKey, kPinKey};
    if (bindingCode < 0 || bindingCode >= static_cast<std::int32_t>(std::size(kBound))) return kBackground;
    return kBound[bindingCode];
}

std::int32_t bindingOf(const Settings& settings, std::int32_t element) {
    switch (element) {
        case kCustomKeyB:
            return settings.bind_B;
        case kCustomKeyC:
            return settings.bind_C;
        case kCustomKeyD:
            return settings.bind_D;
        case kCustomKeyE:
            return settings.bind_E;
        default:
            return 0;
    }
}

void tune_step(const PanelContext& context, std::int32_t radio, std::int32_t slot, std::int32_t steps, bool large,
               std::uint64_t nowMs) {
    stepFrequency(context.radios, radio, slot, large, steps, nowMs);
}
