#include "panel/panel_volume.h"
#include <algorithm>

void setPanelVolume(CommandQueue& queue, SharedSimState& sim, SettingsStore& settings, std::int32_t com, float percent,
                    std::uint64_t nowMs) {
    const float volume = std::clamp(percent, 0.0f, 100.0f);
    if (!copySettings(settings).follow_volume) {
        updateSettings(settings, [&](Settings& live) { live.receive_volume = volume; });
        return;
    }
    // enqueue says "Volume controlled by simulator" when the slot is not writable.
    const double simulatorVolume = std::min(static_cast<double>(volume) / 80.0, 1.0);
    enqueue(queue, sim, com, kSlotVolume, simulatorVolume, volume, nowMs);
}
