#include "audio/voice_gain.h"
#include <emmintrin.h>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include "audio/exact_math.h"

namespace {

constexpr double kQuietRms = 180.0;    // silence and breath: -45 dBFS
constexpr double kTargetRms = 3277.0;  // one tenth of full scale
constexpr double kLeastGain = 0.25;    // -12 dB
constexpr double kMostGain = 4.0;      // +12 dB
constexpr double kFallSeconds = 0.025;
constexpr double kRiseSeconds = 0.4;

constexpr int kLanes = 8;  // 16-bit values per register

__m128i loadSamples(const short* samples) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples));
}

// Four values times gain, truncated. A product beyond 32 bits converts to the lowest integer, which is right on the
// negative side only, so the positive side is clamped first; packing clamps the rest.
__m128i scaled(__m128i wide, __m128 gain) {
    const __m128 product = _mm_mul_ps(_mm_cvtepi32_ps(wide), gain);
    return _mm_cvttps_epi32(_mm_min_ps(product, _mm_set1_ps(32767.0f)));
}

}  // namespace

short truncateToSample(float x) {
    return static_cast<short>(std::clamp(x, -32768.0f, 32767.0f));
}

// Eight values per step: each is put into both halves of 32 bits, then shifted down with its sign.
void applyGain(short* samples, int n, float gain) {
    const __m128 gains = _mm_set1_ps(gain);
    int i = 0;
    for (; i <= n - kLanes; i += kLanes) {
        const __m128i x = loadSamples(samples + i);
        const __m128i low = scaled(_mm_srai_epi32(_mm_unpacklo_epi16(x, x), 16), gains);
        const __m128i high = scaled(_mm_srai_epi32(_mm_unpackhi_epi16(x, x), 16), gains);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(samples + i), _mm_packs_epi32(low, high));
    }
    for (; i < n; i++) samples[i] = truncateToSample(static_cast<float>(samples[i]) * gain);
}

// Sums of whole numbers: the same as in double as long as those are exact, up to 2^23 values of full scale.
double blockRms(const short* samples, int n) {
    const __m128i zero = _mm_setzero_si128();
    __m128i sums = zero;  // two of 64 bits
    int i = 0;
    for (; i <= n - kLanes; i += kLanes) {
        const __m128i x = loadSamples(samples + i);
        const __m128i pairs = _mm_madd_epi16(x, x);  // at most 2^31, so read without sign
        sums = _mm_add_epi64(sums, _mm_unpacklo_epi32(pairs, zero));
        sums = _mm_add_epi64(sums, _mm_unpackhi_epi32(pairs, zero));
    }
    std::int64_t halves[2];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(halves), sums);
    std::int64_t sum = halves[0] + halves[1];
    for (; i < n; i++) sum += std::int64_t{samples[i]} * samples[i];
    return std::sqrt(static_cast<double>(sum) / n);
}

float followLevel(float gain, double rms, double seconds) {
    if (rms <= kQuietRms) return gain;
    const double from = static_cast<double>(gain);
    const double target = std::clamp(kTargetRms / rms, kLeastGain, kMostGain);
    const double timeConstant = from > target ? kFallSeconds : kRiseSeconds;
    return static_cast<float>(from + (target - from) * (1.0 - exactDecay(-seconds / timeConstant)));
}
