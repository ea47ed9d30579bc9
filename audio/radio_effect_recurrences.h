// radio_effect_recurrences.h - the filters and followers of the radio effect that need their own previous value: one
// small function each, one step per value.
// [audio] Values; nothing here allocates, locks or throws. Sums and products run in a fixed order, which is part of the
// result.
#pragma once
#include <emmintrin.h>

// 1900 Hz, pole radius 0.97: the nasal sound.
struct Resonator {
    float r1, r2;
};

inline float resonate(Resonator& s, float x) {
    const float r = x + 1.8803079f * s.r1 - 0.9409f * s.r2;
    s.r2 = s.r1;
    s.r1 = r;
    return x + 1.1f * r;
}

// Peaking equalizer at 700 Hz (-4 dB, Q 1): its feedback, given the sum of its three forward terms.
struct PeakCut {
    float y1, y2;
};

inline float cutPeak(PeakCut& s, float forward) {
    const float y = forward + 1.8831465f * s.y1 - 0.8910797f * s.y2;
    s.y2 = s.y1;
    s.y1 = y;
    return y;
}

// Noise floor and level in one vector: the floor negated in lane 0, so that both take the higher of their two steps;
// the level in lane 1. Lanes 2 and 3 are idle. Of a follower's two steps the higher is the one with the right rate:
// both have the sign of the difference, and rounding keeps their order.
struct Followers {
    __m128 lanes;
};

// both: the voice in lanes 0 and 1.
inline void follow(Followers& s, __m128 both) {
    const __m128 magnitude = _mm_xor_ps(_mm_andnot_ps(_mm_set1_ps(-0.0f), both), _mm_set_ps(0.0f, 0.0f, 0.0f, -0.0f));
    const __m128 away = _mm_sub_ps(magnitude, s.lanes);
    // Floor: falls ten times as fast as it rises. Level: 3 ms attack, 300 ms release.
    const __m128 up = _mm_mul_ps(away, _mm_set_ps(0.0f, 0.0f, 0.006920388f, 0.00004f));
    const __m128 down = _mm_mul_ps(away, _mm_set_ps(0.0f, 0.0f, 0.000069442f, 0.000004f));
    s.lanes = _mm_add_ps(s.lanes, _mm_max_ps(up, down));
}

// Towards target by the higher of two steps, likewise; both rates are 0 where the gate holds.
inline float pullGate(float gate, float target, float rise, float fall) {
    const float away = target - gate;
    const float up = away * rise;
    const float down = away * fall;
    return gate + (up > down ? up : down);
}

// The dip when the gate opens, back to 1 with a time constant of 150 ms; armed again once the gate has nearly shut.
// gain is never below 0.72, so the minimum sets it to 0.72.
inline void runBurst(float& gain, bool& armed, float gate) {
    if (armed && gate > 0.5f) {
        gain = gain < 0.72f ? gain : 0.72f;
        armed = false;
    } else if (gate < 0.25f) {
        armed = true;
    }
    gain += (1.0f - gain) * 0.000138879f;
}

// 300 Hz high-pass, fed with the difference from the previous value; then two 3000 Hz low-pass stages.
struct HissFilter {
    float highPass, lowPass1, lowPass2;
};

inline float filterHiss(HissFilter& s, float step) {
    s.highPass = step + 0.96221393f * s.highPass;
    s.lowPass1 += (s.highPass - s.lowPass1) * 0.3247681f;
    s.lowPass2 += (s.lowPass1 - s.lowPass2) * 0.3247681f;
    return s.lowPass2;
}

// DC blocker, fed with the difference from the previous value.
inline float blockDc(float y1, float step) {
    return step + 0.999f * y1;
}
