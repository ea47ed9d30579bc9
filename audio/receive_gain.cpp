#include "audio/receive_gain.h"
#include <algorithm>
#include "audio/volume_curve.h"

namespace {

constexpr double kUnityPercent = 80.0;

// Above unity the receive volume boosts whatever is followed.
double boostOf(double receiveVolume) {
    return receiveVolume > kUnityPercent ? percentToGain(receiveVolume) : 1.0;
}

}  // namespace

float receiveGainOf(const Settings& settings, float selectedVolume) {
    if (!settings.master) return 1.0f;
    const double low = settings.volume_min;
    const double span = static_cast<double>(settings.volume_max) - low;
    const double receive = settings.receive_volume;
    double gain = 1.0;
    if (!settings.follow_volume)
        gain = percentToGain(kUnityPercent * low + span * std::min(kUnityPercent, receive)) * boostOf(receive);
    else if (selectedVolume >= 0.0f && selectedVolume <= 1.0f)
        gain = percentToGain(kUnityPercent * (low + span * static_cast<double>(selectedVolume))) * boostOf(receive);
    return static_cast<float>(gain);
}
