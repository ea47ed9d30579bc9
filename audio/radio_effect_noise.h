// radio_effect_noise.h - the hiss generator: a 32-bit xorshift, the same sequence however it is split into calls.
// [audio] Nothing here allocates, locks or throws.
#pragma once
#include <cstdint>

// The next n draws of the generator, as noise in -1..1; state moves on by n. n >= 0.
void drawNoise(std::uint32_t& state, float* noise, int n);
