// plain_radio_effect.h - the radio effect one value at a time, step by step, as a radio engineer would write it down:
// the oracle for audio/radio_effect.h, whose samples must be the same to the last bit.
// A value: nothing here locks, allocates or throws.
#pragma once
#include <array>
#include <cstdint>
#include "tests/reference/plain_denoiser.h"

// Memory of one channel. The default is the fresh state. The names are those of RadioChannel.
struct PlainRadioChannel {
    std::array<float, 4> highPassIn{};
    std::array<float, 4> highPassOut{};
    std::array<float, 4> lowPass{};
    float resonance1 = 0.0f;
    float resonance2 = 0.0f;
    float peakX1 = 0.0f, peakX2 = 0.0f;
    float peakY1 = 0.0f, peakY2 = 0.0f;
    float level = 0.0f;
    float gateGain = 0.0f;
    float floor = 0.0f;
    float burstGain = 1.0f;
    bool burstArmed = true;
    bool voice = true;
    float hissIn = 0.0f;
    float hissHighPass = 0.0f;
    float hissLowPass1 = 0.0f, hissLowPass2 = 0.0f;
    float dcX1 = 0.0f, dcY1 = 0.0f;
    PlainDenoiser denoiser;
};

struct PlainRadioEffectState {
    std::array<PlainRadioChannel, 2> channels;
    std::uint32_t hissState = 0x2545F491;
};

// Like applyRadioEffect.
void plainApplyRadioEffect(short* samples, int count, int channels, PlainRadioEffectState& state, bool hiss,
                           bool predenoise);

// The linear part alone (band-pass, resonance, peaking cut) on one value, for measurements of its response.
float plainRadioFilter(PlainRadioChannel& channel, float x);
