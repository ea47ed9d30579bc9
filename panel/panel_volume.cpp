#include "panel/panel_volume.h"
#include <algorithm>

namespace {

constexpr float kUnityPercent = 80.0f;  // the simulator's full volume

// 0..100; 0 for what is no number.
float percentOf(float percent) {
    return percent > 0.0f ? std::min(percent, 100.0f) : 0.0f;
}

}  // namespace

float panel_volume(CommandQueue& queue, const SimState& sim, const Settings& settings, std::int32_t radio) {
    if (!settings.follow_volume) return percentOf(settings.receive_volume);
    // First of all what is on its way: quick turns add up, also from above unity, where receive_volume holds.
    if (const auto pending = pendingCommand(queue, radio, kSlotVolume))
        return percentOf(pending->localVolume >= 0.0f ? pending->localVolume
                                                      : static_cast<float>(pending->value) * kUnityPercent);
    if (settings.receive_volume > kUnityPercent) return percentOf(settings.receive_volume);
    const RadioReading* reading = radioOf(sim, radio);
    return reading ? percentOf(reading->volume * kUnityPercent) : 0.0f;
}

void set_panel_volume(CommandQueue& queue, SharedSimState& sim, SettingsStore& settings, std::int32_t radio,
                      float percent, std::uint64_t nowMs) {
    const float volume = percentOf(percent);
    if (!copySettings(settings).follow_volume) {
        updateSettings(settings, [&](Settings& live) { live.receive_volume = volume; });
        return;
    }
    // enqueue says "Volume controlled by simulator" when the slot is not writable.
    const double simulatorVolume = std::min(static_cast<double>(volume) / static_cast<double>(kUnityPercent), 1.0);
    enqueue(queue, sim, radio, kSlotVolume, simulatorVolume, volume, nowMs);
}
