#include "tests/soak/growth.h"
#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

namespace {

constexpr double kDeviations = 2.576;  // of a normal distribution, to either side: 99 %

std::vector<double> slopesOf(std::span<const GrowthSample> samples) {
    std::vector<double> slopes;
    slopes.reserve(samples.size() * (samples.size() - 1) / 2);
    for (std::size_t i = 0; i < samples.size(); i++) {
        for (std::size_t k = i + 1; k < samples.size(); k++) {
            const double seconds = samples[k].atSeconds - samples[i].atSeconds;
            if (samples[k].phase == samples[i].phase && seconds > 0.0)
                slopes.push_back((samples[k].value - samples[i].value) / seconds);
        }
    }
    std::sort(slopes.begin(), slopes.end());
    return slopes;
}

double medianOf(const std::vector<double>& sorted) {
    const std::size_t half = sorted.size() / 2;
    return sorted.size() % 2 == 1 ? sorted[half] : (sorted[half - 1] + sorted[half]) / 2.0;
}

// Of the number of rising pairs less that of falling ones, where nothing grows (Kendall 1938); ties would make it
// smaller, so that leaving them out errs on the side of the wider limits.
double deviationOf(std::span<const GrowthSample> samples) {
    std::map<int, double> counts;  // by phase
    for (const GrowthSample& sample : samples) counts[sample.phase]++;
    double variance = 0.0;
    for (const auto& [phase, count] : counts) variance += count * (count - 1.0) * (2.0 * count + 5.0) / 18.0;
    return std::sqrt(variance);
}

}  // namespace

GrowthLine fitGrowth(std::span<const GrowthSample> samples) {
    GrowthLine line;
    if (samples.size() < kFewestSamples) return line;
    const std::vector<double> slopes = slopesOf(samples);
    if (slopes.empty()) return line;
    line.isKnown = true;
    line.spanSeconds = samples.back().atSeconds - samples.front().atSeconds;
    line.slope = medianOf(slopes);
    const double pairs = static_cast<double>(slopes.size());
    const double outside = std::max(0.0, std::floor((pairs - kDeviations * deviationOf(samples)) / 2.0));
    const auto rank = static_cast<std::size_t>(outside);
    line.lowest = slopes[rank];
    line.highest = slopes[slopes.size() - 1 - rank];
    return line;
}

std::span<const GrowthSample> lastHalf(std::span<const GrowthSample> samples) {
    return samples.subspan(samples.size() / 2);
}
