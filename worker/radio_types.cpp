#include "worker/radio_types.h"
#include <cmath>
#include <optional>
#include "base/number_text.h"
#include "exchange/frequency_grid.h"

namespace {

// In the order of RadioSlot.
constexpr std::array<std::string_view, kSlotCount> kSlotTitles = {"ACTIVE", "STBY", "volume", "swap"};

// As a whole number inside the snapshot's range; nothing for any other, NaN among them.
std::optional<std::int32_t> wholeInRange(const SimSnapshot& sim, double khz) {
    if (!(khz >= sim.rangeMinKHz && khz <= sim.rangeMaxKHz)) return std::nullopt;
    const auto whole = static_cast<std::int32_t>(khz);
    return static_cast<double>(whole) == khz ? std::optional(whole) : std::nullopt;
}

}  // namespace

std::string radioName(std::size_t radio) {
    return radio == 0 ? "COM1" : "COM2";
}

std::string slotTitle(std::size_t radio, RadioSlot slot) {
    return radioName(radio) + ' ' + std::string(kSlotTitles[slot]);
}

std::string mhzText(double khz) {
    return std::abs(khz) < 1e7 ? formatFixed(khz / 1000.0, 3) : formatGeneral(khz / 1000.0);
}

std::string percentText(double volume) {
    const double percent = std::round(volume * 100.0);
    return (std::abs(percent) < 1e7 ? formatFixed(percent, 0) : formatGeneral(percent)) + " %";
}

bool isChannelOf(const SimSnapshot& sim, std::size_t radio, double khz) {
    const auto whole = wholeInRange(sim, khz);
    return whole && isOnGrid(*whole, sim.radios[radio].spacing);
}

bool isTunable(const SimSnapshot& sim, std::size_t radio, RadioSlot slot, double khz) {
    constexpr std::int32_t kMegahertz = 1000;  // in kHz
    if (isChannelOf(sim, radio, khz)) return true;
    const auto whole = wholeInRange(sim, khz);
    const auto& values = sim.radios[radio];
    const bool hasGrid = values.spacing == kSpacing25 || values.spacing == kSpacing833;
    const auto stands = slot == kSlotActive ? values.active : values.standby;
    return whole && hasGrid && (*whole - stands) % kMegahertz == 0;
}

bool isValueFor(const SimSnapshot& sim, const RadioWrite& write) {
    if (write.slot == kSlotSwap) return true;
    if (write.slot == kSlotVolume) return write.value >= 0.0 && write.value <= 1.0;
    return isTunable(sim, write.radio, write.slot, write.value);
}
