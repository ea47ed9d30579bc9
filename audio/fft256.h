// fft256.h - the Fourier transform of the denoiser: 256 points, a real signal on one side, its spectrum on the other.
// A radix-2 transform in single precision, unscaled; every butterfly is computed as
//     t = w x (re: wr xr - wi xi, im: wr xi + wi xr),   x = u - t,   u = u + t
// in the order of the plain algorithm, so the results are those of the plain algorithm to the last bit.
// [any] Pure functions; nothing locks, allocates or throws.
#pragma once

inline constexpr int kFftBins = 129;  // 0..128: the rest of a real signal's spectrum mirrors them

// re, im: kFftBins values each. x: 256 values.
void forwardFft256(const float* x, float* re, float* im);

// re, im: all 256 bins, conjugate-symmetric. x: the real parts of the result; the imaginary ones are rounding noise.
void inverseFft256(const float* re, const float* im, float* x);
