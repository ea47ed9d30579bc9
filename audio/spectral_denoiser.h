// spectral_denoiser.h - removes steady noise from a microphone: a short-time Fourier transform of 256 samples with a
// hop of 128, one sample in, one sample out. Input and output are sample values (full scale 32767).
// [audio] One thread per state; fixed size, nothing here allocates, locks or throws.
#pragma once
#include <array>
#include <cstdint>

inline constexpr int kDenoiserFrame = 256;
inline constexpr int kDenoiserHop = 128;
inline constexpr int kDenoiserBins = 129;  // 0..128: the rest of the spectrum is their mirror

// The default is the fresh state: silence so far, nothing learned.
struct SpectralDenoiser {
    std::array<float, kDenoiserFrame> input{};   // ring, the last 256 samples
    std::array<float, kDenoiserHop> overlap{};   // second half of the previous frame's output
    std::array<float, kDenoiserBins> noise{};    // noise magnitude of each bin
    std::array<float, kDenoiserBins> gains{};    // suppression gain of each bin, set to 1 on first use
    std::array<float, kDenoiserFrame> output{};  // ring, samples ready to be returned
    std::int32_t inputPosition = 0;              // next to write, so also the oldest
    std::int32_t hopCount = 0;                   // samples since the last frame, 0..127
    std::int32_t writePosition = 0;              // of output
    std::int32_t readPosition = 0;
    std::int32_t outputCount = 0;
    float speechPresence = 1.0f;    // smoothed speech flag, 0..1
    bool initialised = false;       // gains are set
    bool hasNoiseEstimate = false;  // a frame has run
};

// One sample in, one out; speech says whether the speaker was heard. A frame runs inside every 128th call, which
// already returns that frame's first sample: the first 127 calls of a fresh state return 0, and a sample comes out 255
// calls after it went in (before the first one, only rounding noise).
float denoiseSample(SpectralDenoiser& state, float x, bool speech);

// The same in runs, for callers that derive the speech flags from what the denoiser returns. Between frames the
// returned samples do not depend on the flags, so a run is taken first and its flags are passed in afterwards:
//   samplesBeforeFrame(state)        how many calls (0..127) can be made before the one that runs a frame
//   takeRun(state, in, out, n)       n <= samplesBeforeFrame calls' worth of samples
//   trackSpeech(state, flags, n)     the same n calls' speech flags, 0 or 1, in order
//   denoiseSample(...)               the call that runs the frame
int samplesBeforeFrame(const SpectralDenoiser& state);
void takeRun(SpectralDenoiser& state, const float* in, float* out, int n);
void trackSpeech(SpectralDenoiser& state, const std::uint8_t* flags, int n);
