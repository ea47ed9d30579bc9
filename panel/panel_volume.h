// panel_volume.h - the panel's volume knob: 0..100 percent, 80 is unity, 100 is +6 dB.
#pragma once
#include "bridge/command_queue.h"
#include "settings/settings_store.h"

// The knob of a radio (1, 2), percent 0..100. Without follow_volume it is receive_volume. With it, the first of these:
// a queued write (its localVolume if 0 or more), receive_volume if above unity, the simulator's COM volume.
float panel_volume(const Commands& commands, const SimState& sim, const Settings& settings, std::int32_t radio);

inline constexpr std::uint64_t kVolumeSaveMs = 300;  // from the wheel's last notch until settings.ini is written

// When settings.ini follows a turn of the knob.
enum class VolumeSave {
    kAfterPause,    // kVolumeSaveMs after the last turn
    kWithNextSave,  // whoever turns it sees to that: a drag does when it ends
};

// [ui] Turns the knob of a radio (1, 2) to percent, clamped to 0..100. With follow_volume the simulator's radio is
// asked to change (a status text says so if it refuses); without it receive_volume changes.
void set_panel_volume(SimRadios& radios, SettingsStore& settings, std::int32_t radio, float percent,
                      std::uint64_t nowMs, VolumeSave save = VolumeSave::kAfterPause);
