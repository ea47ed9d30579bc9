#include "audio/volume_policy.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr double kUnity = kUnityVolumePercent;
constexpr double kBoostDbPerPercent = 0.3;

// Above unity the receive volume boosts whatever is followed.
double boostOf(double receiveVolume) {
    return receiveVolume > kUnity ? percentToGain(receiveVolume) : 1.0;
}

}  // namespace

float clampVolumePercent(float percent) {
    return percent > 0.0f ? std::min(percent, 100.0f) : 0.0f;
}

double percentToGain(double percent) {
    const double p = std::clamp(percent, 0.0, 100.0);
    return p <= kUnity ? p / kUnity : std::pow(10.0, (p - kUnity) * kBoostDbPerPercent / 20.0);
}

double simulatorVolumeOf(float percent) {
    return std::min(static_cast<double>(percent) / kUnity, 1.0);
}

float percentOfSimulatorVolume(float volume) {
    return clampVolumePercent(volume * kUnityVolumePercent);
}

float boostPercentOf(float percent) {
    return std::max(percent, kUnityVolumePercent);
}

float receiveGainOf(const Settings& settings, float selectedVolume) {
    if (!settings.master) return 1.0f;
    const double low = settings.volume_min;
    const double span = static_cast<double>(settings.volume_max) - low;
    const double receive = settings.receive_volume;
    double gain = 1.0;
    if (!settings.follow_volume)
        gain = percentToGain(kUnity * low + span * std::min(kUnity, receive)) * boostOf(receive);
    else if (selectedVolume >= 0.0f && selectedVolume <= 1.0f)
        gain = percentToGain(kUnity * (low + span * static_cast<double>(selectedVolume))) * boostOf(receive);
    return static_cast<float>(gain);
}
