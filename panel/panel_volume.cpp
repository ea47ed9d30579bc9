#include "panel/panel_volume.h"
#include "audio/volume_policy.h"

float panel_volume(const Commands& commands, const SimState& sim, const Settings& settings, std::int32_t radio) {
    if (!settings.follow_volume) return clampVolumePercent(settings.receive_volume);
    // A queued write comes first: quick turns add up, also from above unity, where receive_volume holds.
    if (const auto pending = pendingCommand(commands, radio, kSlotVolume))
        return pending->localVolume >= 0.0f ? clampVolumePercent(pending->localVolume)
                                            : percentOfSimulatorVolume(static_cast<float>(pending->value));
    if (settings.receive_volume > kUnityVolumePercent) return clampVolumePercent(settings.receive_volume);
    const RadioReading* reading = radioOf(sim, radio);
    return reading ? percentOfSimulatorVolume(reading->volume) : 0.0f;
}

void set_panel_volume(SimRadios& radios, SettingsStore& settings, std::int32_t radio, float percent,
                      std::uint64_t nowMs, VolumeSave save) {
    const float volume = clampVolumePercent(percent);
    if (!copySettings(settings).follow_volume) {
        const std::uint64_t saveAtMs = save == VolumeSave::kAfterPause ? nowMs + kVolumeSaveMs : kNoSaveDue;
        changeSettings(
            settings, [&](Settings& live) { live.receive_volume = volume; }, saveAtMs);
        return;
    }
    // enqueue says "Volume controlled by simulator" when the slot is not writable.
    enqueue(radios, radio, kSlotVolume, simulatorVolumeOf(volume), volume, nowMs);
}
