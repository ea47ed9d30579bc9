// radio_effect_noise.cpp - four stretches of the sequence at a time, one per lane. A step is linear over bits: the
// state after any number of steps is the exclusive or of what each of its bits alone becomes, and kLeap tabulates that
// for one stretch.
#include "audio/radio_effect_noise.h"
#include <emmintrin.h>
#include <array>
#include <cstddef>

namespace {

constexpr int kStretch = 32;  // draws of one lane in a batch
constexpr int kBatch = 4 * kStretch;

constexpr std::uint32_t nextDraw(std::uint32_t s) {
    s ^= s << 13U;
    s ^= s >> 17U;
    s ^= s << 5U;
    return s;
}

constexpr std::uint32_t afterStretch(std::uint32_t s) {
    for (int i = 0; i < kStretch; i++) s = nextDraw(s);
    return s;
}

// What bit k alone becomes after a stretch.
constexpr std::array<std::uint32_t, 32> makeLeap() {
    std::array<std::uint32_t, 32> leap{};
    for (std::size_t k = 0; k < 32; k++) leap[k] = afterStretch(1U << k);
    return leap;
}
alignas(16) constexpr std::array<std::uint32_t, 32> kLeap = makeLeap();

constexpr std::uint32_t leap(std::uint32_t s) {
    std::uint32_t far = 0;
    for (std::size_t k = 0; k < 32; k++) far ^= (0U - (s >> k & 1U)) & kLeap[k];
    return far;
}
static_assert(leap(0x2545F491) == afterStretch(0x2545F491));

inline __m128i nextDraws(__m128i s) {
    s = _mm_xor_si128(s, _mm_slli_epi32(s, 13));
    s = _mm_xor_si128(s, _mm_srli_epi32(s, 17));
    return _mm_xor_si128(s, _mm_slli_epi32(s, 5));
}

// The low 16 bits as -1..1; every step is exact.
inline __m128 noiseOf(__m128i draws) {
    const __m128 value = _mm_cvtepi32_ps(_mm_and_si128(draws, _mm_set1_epi32(0xFFFF)));
    return _mm_sub_ps(_mm_mul_ps(value, _mm_set1_ps(1.0f / 32768.0f)), _mm_set1_ps(1.0f));
}

// kBatch draws: lane k makes those from k * kStretch on.
void drawBatch(std::uint32_t& state, float* noise) {
    const std::uint32_t second = leap(state);
    const std::uint32_t third = leap(second);
    const std::uint32_t fourth = leap(third);
    __m128i s = _mm_set_epi32(static_cast<int>(fourth), static_cast<int>(third), static_cast<int>(second),
                              static_cast<int>(state));
    for (int i = 0; i < kStretch; i += 4) {
        __m128 n[4];
        for (__m128& row : n) {
            s = nextDraws(s);
            row = noiseOf(s);
        }
        _MM_TRANSPOSE4_PS(n[0], n[1], n[2], n[3]);
        for (int k = 0; k < 4; k++) _mm_storeu_ps(noise + std::ptrdiff_t{k} * kStretch + i, n[k]);
    }
    state = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_shuffle_epi32(s, _MM_SHUFFLE(3, 3, 3, 3))));
}

}  // namespace

void drawNoise(std::uint32_t& state, float* noise, int n) {
    int i = 0;
    for (; i + kBatch <= n; i += kBatch) drawBatch(state, noise + i);
    for (; i < n; i++) {
        state = nextDraw(state);
        noise[i] = _mm_cvtss_f32(noiseOf(_mm_cvtsi32_si128(static_cast<int>(state))));
    }
}
