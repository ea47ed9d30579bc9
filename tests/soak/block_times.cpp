#include "tests/soak/block_times.h"
#include <algorithm>
#include <bit>
#include <cmath>

std::size_t BlockTimes::bandOf(std::uint64_t nanoseconds) {
    constexpr std::uint64_t kSteps = 1U << kStepBits;
    if (nanoseconds < kSteps) return static_cast<std::size_t>(nanoseconds);
    const auto shift = static_cast<unsigned>(std::bit_width(nanoseconds)) - 1 - kStepBits;
    const std::uint64_t step = (nanoseconds >> shift) - kSteps;
    return std::min(static_cast<std::size_t>(((shift + 1) << kStepBits) + step), kBands - 1);
}

std::uint64_t BlockTimes::endOf(std::size_t band) {
    constexpr std::uint64_t kSteps = 1U << kStepBits;
    if (band < kSteps) return band;
    const auto shift = static_cast<unsigned>(band >> kStepBits) - 1;
    return ((kSteps + band % kSteps + 1) << shift) - 1;
}

void BlockTimes::add(std::uint64_t nanoseconds) {
    bands_[bandOf(nanoseconds)]++;
    count_++;
    worst_ = std::max(worst_, nanoseconds);
}

void BlockTimes::add(const BlockTimes& others) {
    for (std::size_t i = 0; i < kBands; i++) bands_[i] += others.bands_[i];
    count_ += others.count_;
    worst_ = std::max(worst_, others.worst_);
}

std::uint64_t BlockTimes::percentile(double share) const {
    const auto wanted =
        static_cast<std::uint64_t>(std::ceil(std::clamp(share, 0.0, 1.0) * static_cast<double>(count_)));
    std::uint64_t seen = 0;
    for (std::size_t i = 0; i + 1 < kBands; i++) {
        seen += bands_[i];
        if (seen > 0 && seen >= wanted) return std::min(endOf(i), worst_);
    }
    return worst_;
}
