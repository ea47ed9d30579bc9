// panel_model.h - what the mouse does to the radio panel: presses, drags, the wheel, and what the knobs show of it.
// [ui] One model, on the thread of its window. Settings change through the settings store, the radios through the
// command queue; both are copied under their own locks and nothing is called while one is held.
#pragma once
#include <cstdint>
#include "bridge/command_queue.h"
#include "panel/panel_layout.h"
#include "settings/settings_store.h"
#include "ui/geometry.h"

// What a key asks of the rest of the plugin. [ui]
class PanelActions {
  public:
    PanelActions() = default;
    PanelActions(const PanelActions&) = delete;
    PanelActions& operator=(const PanelActions&) = delete;
    virtual ~PanelActions() = default;
    virtual void openSettings() = 0;      // as the menu's entry does
    virtual void toggleTextWindow() = 0;  // hides the message window if it is visible, else shows it beside the panel
};

// What a panel works on; all of it outlives the panel.
struct PanelContext {
    SettingsStore& settings;
    SimRadios& radios;
    PanelActions& actions;
};

// The panel's own state. The default is at rest.
struct PanelModel {
    float panel_scale_factor = 1.0f;           // client pixels per logical unit
    std::int32_t drag_element = kBackground;   // pressed with the left button
    std::int32_t hover_element = kBackground;  // under the mouse after the last hit test
    bool drag_moved = false;                   // a knob was moved: the press is not a click
    std::int32_t press_x = 0;                  // client pixels: where the button went down
    std::int32_t last_drag_y = 0;              // client pixels: the last y of a drag
    std::int32_t drag_radio = 1;               // 1, 2: selected when the press began
    float drag_volume = 0.0f;                  // percent 0..100: panel volume of the drag
    bool mouse_tracking = false;               // a leave notification has been requested
    std::int32_t wheel_element = kBackground;  // of the wheel's last turn
    std::int32_t wheel_radio = 0;
    std::int32_t wheel_remainder = 0;  // of 120 per notch, signed
    float press_level = 0.0f;          // 0..1, eased: how far the pressed key is down
    float large_knob_angle = 0.0f;     // degrees 0..360, clockwise
    float small_knob_angle = 0.0f;
    std::int32_t pressed_element = kBackground;  // what press_level belongs to; outlives drag_element until it is up
};

inline constexpr std::int32_t kWheelNotch = 120;  // WHEEL_DELTA
inline constexpr float kLargeKnobStep = 12.0f;    // degrees per step
inline constexpr float kSmallKnobStep = 14.0f;

// What the window has to do after a press.
enum class PressResult {
    kCapture,     // an element is held: capture the mouse
    kMoveWindow,  // the background: hide the tooltip, start the system's window move
};

// The radio that keys, knobs and wheel work on: settings.radio, 1 if that is neither 1 nor 2.
std::int32_t selectedRadio(const Settings& settings);

// Stores hover_element and returns it.
std::int32_t hoverPanel(PanelModel& model, const PanelContext& context, PixelPoint at);
PressResult pressPanel(PanelModel& model, const PanelContext& context, PixelPoint at, std::uint64_t nowMs);
// A move of the mouse: hover, and the drag of a held knob.
void movePanel(PanelModel& model, const PanelContext& context, PixelPoint at, std::uint64_t nowMs);
// The left button is up: clicks when the press allows it. The caller releases the capture after this, since losing it
// cancels the press.
void releasePanel(PanelModel& model, const PanelContext& context, PixelPoint at, std::uint64_t nowMs);
// The press is over without a click: capture lost, focus lost, mode cancelled.
void cancelPress(PanelModel& model, const PanelContext& context);
// A turn of the wheel by delta (120 per notch, away from the user positive).
void wheelPanel(PanelModel& model, const PanelContext& context, PixelPoint at, std::int32_t delta, std::uint64_t nowMs);
// The mouse has left the window.
void leavePanel(PanelModel& model);
// The element whose tip belongs on the screen; kBackground for none. A held knob keeps its tip whatever passes below
// the mouse, also outside the window; a hidden panel has none.
std::int32_t tipElement(const PanelModel& model, bool isPanelVisible);
// One tick of 33 ms: eases press_level towards 1 while an element is held, else towards 0; within 1/1024 it arrives, so
// that an idle panel stands still.
void tickPanel(PanelModel& model);

// The click of an element, whatever triggers it.
void clickElement(const PanelContext& context, std::int32_t element, std::uint64_t nowMs);

// The element whose action a bind_* code performs (0..7); kBackground for 0 and for any other code.
std::int32_t boundElement(std::int32_t bindingCode);
// The bind_* code of custom key B to E; 0 for any other element.
std::int32_t bindingOf(const Settings& settings, std::int32_t element);

// A step of the frequency knob (bridge's stepFrequency): slot kSlotActive or kSlotStandby, large for whole MHz.
void tune_step(const PanelContext& context, std::int32_t radio, std::int32_t slot, std::int32_t steps, bool large,
               std::uint64_t nowMs);
