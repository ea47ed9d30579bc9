// panel_volume.h - the panel's volume knob: 0..100 percent, 80 is unity, 100 is +6 dB.
#pragma once
#include "bridge/command_queue.h"
#include "bridge/sim_state.h"
#include "settings/settings_store.h"

// [ui] Turns the knob of a radio (1, 2) to percent, clamped to 0..100. With follow_volume the simulator's radio is
// asked to change (a status text tells when it refuses); without it receive_volume changes.
void setPanelVolume(CommandQueue& queue, SharedSimState& sim, SettingsStore& settings, std::int32_t com, float percent,
                    std::uint64_t nowMs);
