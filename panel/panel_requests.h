// panel_requests.h - what other threads may post to the radio panel's window (class "CorvalisRadioPanel").
// The UI thread carries each out, those for the radios as if the pilot had turned the knob; the sender gets no answer.
#pragma once
#include "settings/settings.h"

inline constexpr unsigned kPanelFirstMessage = 0x8000 + 1;  // WM_APP + 1

// wParam: com (1, 2) | slot (0 active, 1 standby) << 8 | whole megahertz (0, 1) << 16; lParam: steps, signed.
inline constexpr unsigned kPanelStepMessage = kPanelFirstMessage;
// wParam: com (1, 2); lParam: panel volume 0..100 percent, 80 is unity.
inline constexpr unsigned kPanelVolumeMessage = kPanelFirstMessage + 1;
// wParam: com (1, 2).
inline constexpr unsigned kPanelSwapMessage = kPanelFirstMessage + 2;
// No parameters: the settings want the panel shown or hidden; it looks at them at once, not with its next tick.
inline constexpr unsigned kPanelSettingsMessage = kPanelFirstMessage + 3;

// Whether this change of the settings is to be followed by that message. All else waits for the next tick.
inline bool isPanelAsked(const Settings& before, const Settings& now) {
    return before.panel_visible != now.panel_visible;
}
