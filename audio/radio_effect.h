// radio_effect.h - the sound of an airband receiver: narrow band, nasal resonance, squelch, compressor, hiss, soft
// saturation. Made for 48 kHz; edits a block of 16-bit samples in place.
// [audio] One thread per state; fixed size, nothing here allocates, locks or throws.
#pragma once
#include <array>
#include <cstdint>
#include "audio/spectral_denoiser.h"

// Memory of one channel. The default is the fresh state.
struct RadioChannel {
    std::array<float, 4> highPassIn{};   // previous input of each high-pass stage
    std::array<float, 4> highPassOut{};  // previous output
    std::array<float, 4> lowPass{};      // output of each low-pass stage
    float resonance1 = 0.0f;             // last resonator output, and the one before
    float resonance2 = 0.0f;
    float peakX1 = 0.0f, peakX2 = 0.0f;  // peaking filter
    float peakY1 = 0.0f, peakY2 = 0.0f;
    float level = 0.0f;      // fast-attack envelope of the filtered voice
    float gateGain = 0.0f;   // squelch gain: towards 0.06 when shut, 1 when open
    float floor = 0.0f;      // slow noise-floor estimate
    float burstGain = 1.0f;  // dips when the squelch opens
    bool burstArmed = true;
    bool voice = true;    // squelch open on the last sample; the denoiser's speech flag
    float hissIn = 0.0f;  // previous noise value
    float hissHighPass = 0.0f;
    float hissLowPass1 = 0.0f, hissLowPass2 = 0.0f;
    float dcX1 = 0.0f, dcY1 = 0.0f;  // DC blocker
    SpectralDenoiser denoiser;
};

struct RadioEffectState {
    std::array<RadioChannel, 2> channels;
    std::uint32_t hissState = 0x2545F491;  // xorshift generator, shared by both channels
};

// Edits exactly count values in place; with 2 or more channels they alternate between two slots. hiss adds the
// band-limited noise of a receiver, predenoise runs the spectral denoiser in front. Does nothing without samples or
// with a count below 1. Any split into blocks gives the same samples.
void applyRadioEffect(short* samples, int count, int channels, RadioEffectState& state, bool hiss, bool predenoise);
