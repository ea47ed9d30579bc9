// frequency_grid.h - the channels of a COM radio inside one megahertz, and the next one as a knob is turned.
// [any] Pure arithmetic on whole kHz.
#pragma once
#include <cstdint>

inline constexpr std::int32_t kSpacing25 = 0;   // 25 kHz grid: 0, 25, ... 975 kHz
inline constexpr std::int32_t kSpacing833 = 1;  // 8.33 kHz channel names: multiples of 5 except 20, 45, 70, 95 ...

// True if the offset inside its megahertz is a channel of the grid; any other spacing code has no grid.
bool isOnGrid(std::int32_t frequencyKHz, std::int32_t spacing);

struct FrequencyRange {
    std::int32_t minKHz = 0;
    std::int32_t maxKHz = 0;  // inclusive
};

// The large knob: whole megahertz up or down. 0 if the start or the result lies outside the range or spacing has no
// grid.
std::int32_t stepMegahertz(std::int32_t startKHz, std::int32_t spacing, FrequencyRange range, std::int32_t steps);

// The small knob: moves along the channels of the same megahertz and wraps inside it, from the channel nearest to the
// start (the lower of two equally near). 0 if the start lies outside the range or spacing has no grid.
std::int32_t stepChannel(std::int32_t startKHz, std::int32_t spacing, FrequencyRange range, std::int32_t steps);
