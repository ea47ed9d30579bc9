#include "exchange/frequency_grid.h"
#include <cstdlib>
#include <vector>

namespace {

constexpr std::int32_t kMegahertz = 1000;  // in kHz

bool hasGrid(std::int32_t spacing) {
    return spacing == kSpacing25 || spacing == kSpacing833;
}

bool isInRange(std::int64_t frequencyKHz, FrequencyRange range) {
    return frequencyKHz >= range.minKHz && frequencyKHz <= range.maxKHz;
}

bool canStep(std::int32_t startKHz, std::int32_t spacing, FrequencyRange range) {
    return hasGrid(spacing) && isInRange(startKHz, range);
}

// The channels of the megahertz that begins at baseKHz, as offsets, without those outside the range.
std::vector<std::int32_t> channelOffsets(std::int32_t baseKHz, std::int32_t spacing, FrequencyRange range) {
    std::vector<std::int32_t> offsets;
    for (std::int32_t offset = 0; offset < kMegahertz; offset += 5)
        if (isOnGrid(offset, spacing) && isInRange(static_cast<std::int64_t>(baseKHz) + offset, range))
            offsets.push_back(offset);
    return offsets;
}

std::int64_t nearestIndex(const std::vector<std::int32_t>& offsets, std::int32_t offset) {
    std::size_t nearest = 0;
    for (std::size_t i = 1; i < offsets.size(); i++)
        if (std::abs(offsets[i] - offset) < std::abs(offsets[nearest] - offset)) nearest = i;
    return static_cast<std::int64_t>(nearest);
}

}  // namespace

bool isOnGrid(std::int32_t frequencyKHz, std::int32_t spacing) {
    if (spacing == kSpacing25) return frequencyKHz % 25 == 0;
    if (spacing == kSpacing833) return frequencyKHz % 5 == 0 && frequencyKHz % 25 != 20;
    return false;
}

std::int32_t stepMegahertz(std::int32_t startKHz, std::int32_t spacing, FrequencyRange range, std::int32_t steps) {
    if (!canStep(startKHz, spacing, range)) return 0;
    const std::int64_t next = startKHz + static_cast<std::int64_t>(steps) * kMegahertz;
    return isInRange(next, range) ? static_cast<std::int32_t>(next) : 0;
}

std::int32_t stepChannel(std::int32_t startKHz, std::int32_t spacing, FrequencyRange range, std::int32_t steps) {
    if (!canStep(startKHz, spacing, range)) return 0;
    const std::int32_t base = startKHz / kMegahertz * kMegahertz;
    const auto offsets = channelOffsets(base, spacing, range);
    if (offsets.empty()) return 0;
    const auto count = static_cast<std::int64_t>(offsets.size());
    const auto index = (count + (nearestIndex(offsets, startKHz - base) + steps) % count) % count;
    return base + offsets[static_cast<std::size_t>(index)];
}
