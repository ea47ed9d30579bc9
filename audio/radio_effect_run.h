// radio_effect_run.h - the radio effect after the denoiser, over a run of one channel's values.
// [audio] Fixed size, on the stack; nothing here allocates, locks or throws.
#pragma once
#include <cstdint>
#include "audio/radio_effect.h"

inline constexpr int kRadioRun = 480;    // longest run, 10 ms; each value of it takes 19 bytes of the stack
inline constexpr int kRadioPadding = 4;  // arrays worked on in groups of four have room for a whole last group

// Processes n (1..kRadioRun) values of x. noise holds the generator's -1..1 for each value, and at noise[-1] that of
// the channel's previous value (hissIn); null: no hiss. voiceFlags gets the squelch's state (0 or 1) after each value.
// out and voiceFlags are written in whole groups of four and have room for n + kRadioPadding.
void runRadio(RadioChannel& channel, const float* x, const float* noise, short* out, std::uint8_t* voiceFlags, int n);
