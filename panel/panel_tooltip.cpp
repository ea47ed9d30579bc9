#include "panel/panel_tooltip.h"
#include <algorithm>
#include <cstddef>
#include "base/number_text.h"
#include "panel/panel_layout.h"
#include "panel/panel_model.h"

namespace {

constexpr std::int32_t kCursorGapX = 14;  // pixels from the cursor to the tip
constexpr std::int32_t kCursorGapY = 22;

// Along one axis: behind the cursor, or before it where the tip would pass the area's end; within the area if it fits.
std::int32_t besideCursor(std::int32_t cursor, std::int32_t gap, std::int32_t length, std::int32_t start,
                          std::int32_t end) {
    if (cursor + gap + length <= end) return std::max(cursor + gap, start);
    return std::max(std::min(cursor - gap, end) - length, start);
}

// A linear value as whole percent; unknown ones (negative) count as 0.
std::string percentText(float share) {
    return formatFixed(std::max(0.0, static_cast<double>(share) * 100.0), 0) + '%';
}

std::string volumeTip(const TooltipInputs& inputs) {
    const RadioReading& radio = *radioOf(inputs.sim, selectedRadio(inputs.settings));
    const bool follows = inputs.settings.follow_volume;
    std::string tip = "VOLUME: N/A";
    if (!follows || !(radio.volume < 0.0f))
        tip = "VOLUME: " + formatFixed(static_cast<double>(inputs.volumePercent), 0) +
              "%\nCOM: " + percentText(radio.volume) + "   OUTPUT: " + percentText(inputs.receiveGain) +
              "\n80% = unity; 100% = +6 dB";
    if (follows && !radio.writable[kSlotVolume]) tip += "\nVolume controlled by simulator";
    return tip;
}

// An unknown code is a key without an action.
std::string_view actionTip(const TooltipInputs& inputs, std::int32_t element) {
    const std::int32_t code = bindingOf(inputs.settings, element);
    return inputs.actionTexts[boundElement(code) == kBackground ? 0 : static_cast<std::size_t>(code)];
}

std::string_view fixedTip(std::int32_t element) {
    // One row per element that always says the same.
    static constexpr struct {
        PanelElement element;
        std::string_view tip;
    } kTips[] = {
        // clang-format off
        {kSwapKey,              "Swap ACTIVE / STANDBY — simulator confirmation required"},
        {kCom1Key,              "Select COM1 (ACTIVE + STANDBY)"},
        {kCom2Key,              "Select COM2 (ACTIVE + STANDBY)"},
        {kActiveKey,            "RX/TX: ACTIVE"},
        {kStandbyKey,           "RX/TX: STANDBY"},
        {kSmallKnob,            "SMALL KNOB — fractional part (kHz).\nScroll or drag vertically"},
        {kLargeKnob,            "LARGE KNOB — whole MHz.\nScroll or drag vertically"},
        {kSettingsKey,          "Settings"},
        {kMinimizeKey,          "Minimize panel"},
        {kUnassignedKey,        "Not assigned"},
        {kCustomKeyA,           "TEXT — open received text messages (PDC)"},
        {kActiveMhzDigits,      "Scroll to tune MHz — Tunes ACTIVE directly"},
        {kActiveChannelDigits,  "Scroll to tune channel — Tunes ACTIVE directly"},
        {kStandbyMhzDigits,     "Scroll to tune MHz"},
        {kStandbyChannelDigits, "Scroll to tune channel"},
        {kFrequencyDisplay,     "Hover digits to tune"},
        {kTextKey,              "TEXT — received text messages (PDC)"},
        // clang-format on
    };
    const auto* row = std::ranges::find(kTips, element, [](const auto& tip) { return std::int32_t{tip.element}; });
    return row != std::end(kTips) ? row->tip : std::string_view{};
}

}  // namespace

std::string panelTooltip(std::int32_t element, const TooltipInputs& inputs) {
    switch (element) {
        case kAutoKey:
            return inputs.settings.enabled ? "Auto frequency: ON" : "Auto frequency: OFF";
        case kPinKey:
            return inputs.settings.pin ? "Always on top: ON — Click to disable"
                                       : "Always on top: OFF — Click to enable";
        case kVolumeKnob:
            return volumeTip(inputs);
        case kCustomKeyB:
        case kCustomKeyC:
        case kCustomKeyD:
        case kCustomKeyE:
            return std::string(actionTip(inputs, element));
        default:
            return std::string(fixedTip(element));
    }
}

PixelPoint tipPlace(PixelPoint cursor, PixelSize tip, const PixelRect& workArea) {
    if (workArea.isEmpty()) return {cursor.x + kCursorGapX, cursor.y + kCursorGapY};
    return {besideCursor(cursor.x, kCursorGapX, tip.width, workArea.left, workArea.right),
            besideCursor(cursor.y, kCursorGapY, tip.height, workArea.top, workArea.bottom)};
}
