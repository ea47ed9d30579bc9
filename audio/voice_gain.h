// voice_gain.h - the plain arithmetic on blocks of 16-bit samples: gain, level and the speaker equalizer.
// [audio] Pure functions of their arguments; nothing locks, allocates or throws. n >= 0 values.
#pragma once

// A sample value as 16 bits: truncated toward zero, clamped to -32768..32767. x is not NaN.
short truncateToSample(float x);

// In place, each value times gain (finite, linear) in float, then truncateToSample.
void applyGain(short* samples, int n, float gain);

// Root mean square, 0..32768; n > 0. The sums are exact for any block that a host sends.
double blockRms(const short* samples, int n);

// The equalizer gain after a block of this level and duration: gain moved toward one tenth of full scale, with time
// constants of 25 ms falling and 0.4 s rising. Silence and breath (180 or less) leave it unchanged.
float followLevel(float gain, double rms, double seconds);
