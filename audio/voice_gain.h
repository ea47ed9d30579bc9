// voice_gain.h - the plain arithmetic on blocks of 16-bit samples: gain, level and the speaker equalizer.
// [audio] Pure functions of their arguments; nothing locks, allocates or throws. n >= 0 values.
#pragma once

// A sample value as 16 bits: truncated toward zero, clamped to -32768..32767. x is a number or infinite.
short truncateToSample(float x);

// In place, each value times gain (finite, linear) in float, then truncateToSample.
void applyGain(short* samples, int n, float gain);

// Root of the mean square, 0..32768; n > 0. Exact sums up to any block a host has.
double blockRms(const short* samples, int n);

// The equalizer gain after a block of this level and duration, coming from gain: toward one tenth of full scale, with
// 25 ms falling and 0.4 s rising. Silence and breath (180 and less) leave it as it is.
float followLevel(float gain, double rms, double seconds);
