#include "audio/volume_curve.h"
#include <algorithm>
#include <cmath>

double percentToGain(double percent) {
    const double p = std::clamp(percent, 0.0, 100.0);
    return p <= 80.0 ? p / 80.0 : std::pow(10.0, (p - 80.0) * 0.3 / 20.0);
}
