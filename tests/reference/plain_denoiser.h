// plain_denoiser.h - the spectral denoiser written out step by step, one bin and one butterfly at a time. Slow and easy
// to check by eye: the fast one must give the same samples, bit for bit.
#pragma once
#include <array>
#include <cstdint>

inline constexpr int kPlainFrame = 256;
inline constexpr int kPlainHop = 128;
inline constexpr int kPlainBins = 129;

struct PlainDenoiser {
    std::array<float, kPlainFrame> window{};  // periodic Hann, filled on first use
    std::array<float, kPlainFrame> input{};   // ring
    std::int32_t inputPosition = 0;           // next to write, so also the oldest
    std::int32_t hopCount = 0;                // samples since the last frame
    std::array<float, kPlainHop> overlap{};
    std::array<float, kPlainBins> noise{};
    float speechPresence = 1.0f;
    std::array<float, kPlainBins> gains{};    // set to 1 on first use
    std::array<float, kPlainFrame> output{};  // ring
    std::int32_t writePosition = 0;
    std::int32_t readPosition = 0;
    std::int32_t outputCount = 0;
    bool initialised = false;
    bool hasNoiseEstimate = false;
};

float denoisePlainSample(PlainDenoiser& state, float x, bool speech);

// Complex, in place, unscaled; n a power of two. direction 1: forward (exponent -2 pi i k / n), -1: inverse.
void plainFft(float* re, float* im, int n, int direction);
