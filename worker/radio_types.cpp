#include "worker/radio_types.h"
#include <cmath>
#include "base/number_text.h"
#include "exchange/frequency_grid.h"

std::string radioName(std::size_t radio) {
    return radio == 0 ? "COM1" : "COM2";
}

std::string slotTitle(std::size_t radio, RadioSlot slot) {
    return radioName(radio) + ' ' + std::string(kSlotNames[slot]);
}

std::string mhzText(double khz) {
    return std::abs(khz) < 1e7 ? formatFixed(khz / 1000.0, 3) : formatGeneral(khz / 1000.0);
}

std::string percentText(double volume) {
    const double percent = std::round(volume * 100.0);
    return (std::abs(percent) < 1e7 ? formatFixed(percent, 0) : formatGeneral(percent)) + " %";
}

bool isChannelOf(const SimSnapshot& sim, std::size_t radio, double khz) {
    if (!(khz >= sim.rangeMinKHz && khz <= sim.rangeMaxKHz)) return false;  // also false for NaN
    const auto whole = static_cast<std::int32_t>(khz);
    return static_cast<double>(whole) == khz && isOnGrid(whole, sim.radios[radio].spacing);
}
