// radio_effect_run.h - the radio effect behind the denoiser, over a run of one channel's values.
// [audio] Fixed size, on the stack; nothing here allocates, locks or throws.
#pragma once
#include <cstdint>
#include "audio/radio_effect.h"

inline constexpr int kRadioRun = 1024;   // longest run
inline constexpr int kRadioPadding = 4;  // what is worked on in groups of four has room for a whole last group

// n in 1..kRadioRun values of x. noise is the generator's -1..1 for each value, with that of the channel's value before
// (hissIn) at noise[-1], or null for no hiss; voiceFlags get the squelch's state (0 or 1) after each value. out and
// voiceFlags are written in whole groups of four and have kRadioPadding more than n.
void runRadio(RadioChannel& channel, const float* x, const float* noise, short* out, std::uint8_t* voiceFlags, int n);
