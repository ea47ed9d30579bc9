// radio_effect_bandpass.h - the eight one-pole stages of the radio's band-pass, as two vectors. Lane k of the high-pass
// works on value t-k, lane k of the low-pass on value t-4-k, so every stage takes what its neighbour produced in the
// previous step:
//
//     step      HP0  HP1  HP2  HP3  LP0  LP1  LP2  LP3  -> value of the run
//     t=0        0
//     t=1        1    0
//     ...
//     t=7        7    6    5    4    3    2    1    0       0
//     t=8        8    7    6    5    4    3    2    1       1
//
// In the first and the last kBandPassSkew steps of a run the lanes without a value are masked out and keep their
// memory: between runs it equals that of a chain that works on one value at a time. [audio] Values; nothing here
// allocates, locks or throws. Sums and products run in a fixed order, which is part of the result.
#pragma once
#include <emmintrin.h>
#include "audio/radio_effect.h"
#include "audio/radio_effect_lanes.h"

inline constexpr int kBandPassSkew = 7;

// Every lane to its right neighbour, the last to the first.
inline __m128 rotate(__m128 lanes) {
    return _mm_shuffle_ps(lanes, lanes, _MM_SHUFFLE(2, 1, 0, 3));
}

struct BandPass {
    __m128 highPassIn;
    __m128 highPassOut;
    __m128 lowPass;
    __m128 highPassPassed;  // highPassOut and lowPass rotated: what each stage hands to the next
    __m128 lowPassPassed;
};

inline BandPass makeBandPass(__m128 highPassIn, __m128 highPassOut, __m128 lowPass) {
    return {highPassIn, highPassOut, lowPass, rotate(highPassOut), rotate(lowPass)};
}

inline BandPass loadBandPass(const RadioChannel& c) {
    return makeBandPass(_mm_loadu_ps(c.highPassIn.data()), _mm_loadu_ps(c.highPassOut.data()),
                        _mm_loadu_ps(c.lowPass.data()));
}

inline void storeBandPass(const BandPass& b, RadioChannel& c) {
    _mm_storeu_ps(c.highPassIn.data(), b.highPassIn);
    _mm_storeu_ps(c.highPassOut.data(), b.highPassOut);
    _mm_storeu_ps(c.lowPass.data(), b.lowPass);
}

// One step of all eight stages: x goes into the first.
inline BandPass stepBandPass(const BandPass& b, float x) {
    const __m128 highPassIn = _mm_move_ss(b.highPassPassed, _mm_set_ss(x));
    const __m128 lowPassIn = _mm_move_ss(b.lowPassPassed, b.highPassPassed);
    // 330 Hz: 1 / (1 + 2 pi 330/48000)
    const __m128 highPassOut =
        _mm_add_ps(_mm_sub_ps(highPassIn, b.highPassIn), _mm_mul_ps(_mm_set1_ps(0.9585918f), b.highPassOut));
    // 2800 Hz: 1 - e^(-2 pi 2800/48000)
    const __m128 lowPass =
        _mm_add_ps(b.lowPass, _mm_mul_ps(_mm_sub_ps(lowPassIn, b.lowPass), _mm_set1_ps(0.30685714f)));
    return makeBandPass(highPassIn, highPassOut, lowPass);
}

// The last low-pass stage's output, in lane 0.
inline __m128 outputOf(const BandPass& b) {
    return b.lowPassPassed;
}

// All ones in lane k if 0 <= first - k < n.
inline __m128 lanesWithin(int first, int n) {
    const __m128i value = _mm_sub_epi32(_mm_set1_epi32(first), _mm_set_epi32(3, 2, 1, 0));
    const __m128i early = _mm_cmplt_epi32(value, _mm_setzero_si128());
    return _mm_castsi128_ps(_mm_andnot_si128(early, _mm_cmplt_epi32(value, _mm_set1_epi32(n))));
}

// Step t of a run of n values; stages that have no value in it are masked out.
inline BandPass stepBandPassEdge(const BandPass& b, const float* x, int t, int n) {
    const BandPass next = stepBandPass(b, t < n ? x[t] : 0.0f);
    const __m128 highPass = lanesWithin(t, n);
    const __m128 lowPass = lanesWithin(t - 4, n);
    return makeBandPass(selectLanes(highPass, next.highPassIn, b.highPassIn),
                        selectLanes(highPass, next.highPassOut, b.highPassOut),
                        selectLanes(lowPass, next.lowPass, b.lowPass));
}
