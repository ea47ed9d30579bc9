// radio_effect_lanes.h - what the radio effect works out for four values at a time, because none of it depends on
// earlier values: masks, rounding, gains, saturation.
// [audio] Pure functions. Sums and products run in a fixed order, which is part of the result.
#pragma once
#include <emmintrin.h>
#include <cstdint>

inline __m128 selectLanes(__m128 mask, __m128 yes, __m128 no) {
    return _mm_or_ps(_mm_and_ps(mask, yes), _mm_andnot_ps(mask, no));
}

inline __m128 magnitudeOf(__m128 x) {
    return _mm_andnot_ps(_mm_set1_ps(-0.0f), x);
}

// One byte of 0 or 1 for each lane of a comparison.
inline void storeFlags(__m128 mask, std::uint8_t* flags) {
    const __m128i words = _mm_packs_epi32(_mm_castps_si128(mask), _mm_setzero_si128());
    const __m128i bytes = _mm_and_si128(_mm_packs_epi16(words, words), _mm_set1_epi8(1));
    _mm_storeu_si32(flags, bytes);
}

// 0.72 g, where g = (2600 + 0.16 (level - 2600)) / level  if level > 2600: 6.25 : 1
//                   min(2600 / level, 1.4)                else if gate > 0.5 and level > shutBelow: make-up
//                   1                                     else
// One ratio serves both: above 2600 it is below 1, so the limit never touches it; at level 0 it is infinite, not taken.
inline __m128 compressorGain(__m128 level, __m128 gate, __m128 shutBelow) {
    const __m128 knee = _mm_set1_ps(2600.0f);
    const __m128 above = _mm_max_ps(_mm_sub_ps(level, knee), _mm_setzero_ps());
    const __m128 ratio = _mm_div_ps(_mm_add_ps(_mm_mul_ps(above, _mm_set1_ps(0.16f)), knee), level);
    const __m128 makeUp = _mm_and_ps(_mm_cmpgt_ps(gate, _mm_set1_ps(0.5f)), _mm_cmpgt_ps(level, shutBelow));
    const __m128 taken = _mm_or_ps(_mm_cmpgt_ps(level, knee), makeUp);
    const __m128 gain = selectLanes(taken, _mm_min_ps(ratio, _mm_set1_ps(1.4f)), _mm_set1_ps(1.0f));
    return _mm_mul_ps(gain, _mm_set1_ps(0.72f));
}

// The hiss's level, 1300 (1.5 - 0.5 min(level / 2600, 1)): 1950 in silence, falling to 1300 at a voice level of 2600.
inline __m128 hissLevel(__m128 level) {
    const __m128 loud = _mm_min_ps(_mm_div_ps(level, _mm_set1_ps(2600.0f)), _mm_set1_ps(1.0f));
    const __m128 q = _mm_mul_ps(_mm_set1_ps(0.5f), loud);
    return _mm_mul_ps(_mm_sub_ps(_mm_set1_ps(1.5f), q), _mm_set1_ps(1300.0f));
}

// Clamped to -32767..32767 and rounded half away from zero: trunc(x + sign(x) h), where h is the largest float below
// 0.5. The sum of an exact half is rounded to the next whole number; that of anything less stays below it.
inline __m128i roundToSample(__m128 x) {
    const __m128 within = _mm_max_ps(_mm_min_ps(x, _mm_set1_ps(32767.0f)), _mm_set1_ps(-32767.0f));
    const __m128 sign = _mm_and_ps(x, _mm_set1_ps(-0.0f));
    return _mm_cvttps_epi32(_mm_add_ps(within, _mm_or_ps(sign, _mm_set1_ps(0.49999997f))));
}

// Soft saturation, to whole numbers: 1.18 x 20000 u / (1 + 0.35 |u|) with u = v / 10000. That quotient is 2v / 20000 to
// the bit: doubling is exact.
inline __m128 saturate(__m128 v) {
    const __m128 u = _mm_div_ps(v, _mm_set1_ps(10000.0f));
    const __m128 bend = _mm_add_ps(_mm_mul_ps(_mm_set1_ps(0.35f), magnitudeOf(u)), _mm_set1_ps(1.0f));
    const __m128 w = _mm_mul_ps(_mm_mul_ps(_mm_div_ps(u, bend), _mm_set1_ps(20000.0f)), _mm_set1_ps(1.18f));
    return _mm_cvtepi32_ps(roundToSample(w));
}
